// Pictures drawn in letters, the sources of the program's icons and bitmaps. "color L R G B A"
// gives letter L a colour; "size N" or "size W H" begins a square or a block of so many letters a
// row; "#" begins a comment outside of a block. A letter without a colour is a fault of the source.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

struct Color {
    uint8_t red = 0, green = 0, blue = 0, alpha = 0;
};

struct Block {
    unsigned width = 0;
    unsigned height = 0;
    std::vector<Color> pixels; // row by row from the top

    const Color& At(unsigned x, unsigned y) const { return pixels[y * width + x]; }
};

/// The blocks of a source in their order; none when it is no picture drawn in letters.
std::vector<Block> ReadBlocks(std::istream& in);

/// Bytes in the order of the device: the lowest first.
class Bytes
{
public:
    void Put(uint32_t value, unsigned count)
    {
        for (unsigned i = 0; i < count; ++i)
            bytes.push_back(static_cast<char>(value >> (8 * i) & 255U));
    }
    void Put(const Bytes& other) { bytes += other.bytes; }
    /// Blue, green and red, and with `depth` 32 alpha.
    void PutPixel(const Color& color, unsigned depth)
    {
        Put(color.blue, 1);
        Put(color.green, 1);
        Put(color.red, 1);
        if (depth == 32)
            Put(color.alpha, 1);
    }
    uint32_t Size() const { return static_cast<uint32_t>(bytes.size()); }
    const std::string& Text() const { return bytes; }

private:
    std::string bytes;
};

/// Reads the source, has `make` turn its blocks into bytes and writes them. The exit status of a
/// program that does just that; an empty result counts as a fault.
int ConvertBlocks(const char* source, const char* target,
                  Bytes (*make)(const std::vector<Block>& blocks));
