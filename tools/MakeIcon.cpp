// Turns a picture drawn in letters into an icon file: make-icon SOURCE.txt TARGET.ico
//
// In the source "color L R G B A" gives letter L a colour and "size N" begins a square of N rows of
// N letters; "#" begins a comment. Each square becomes one 32-bit image of the icon.

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace
{

struct Color {
    uint8_t red = 0, green = 0, blue = 0, alpha = 0;
};

struct Square {
    unsigned size = 0;
    std::vector<std::string> rows;
};

bool ReadSource(std::istream& in, std::map<char, Color>& colors, std::vector<Square>& squares)
{
    std::string line;
    while (std::getline(in, line)) {
        if (!squares.empty() && squares.back().rows.size() < squares.back().size) {
            if (line.size() != squares.back().size)
                return false;
            squares.back().rows.push_back(line);
            continue;
        }
        std::istringstream words(line);
        std::string word;
        if (!(words >> word) || word[0] == '#')
            continue;
        if (word == "size") {
            Square square;
            if (!(words >> square.size) || square.size == 0 || square.size > 256)
                return false;
            squares.push_back(square);
        } else if (word == "color") {
            char letter = 0;
            unsigned red = 0, green = 0, blue = 0, alpha = 0;
            if (!(words >> letter >> red >> green >> blue >> alpha))
                return false;
            colors[letter] = {static_cast<uint8_t>(red), static_cast<uint8_t>(green),
                              static_cast<uint8_t>(blue), static_cast<uint8_t>(alpha)};
        } else {
            return false;
        }
    }
    return !squares.empty() && squares.back().rows.size() == squares.back().size;
}

class Bytes
{
public:
    void Put(uint32_t value, unsigned count)
    {
        for (unsigned i = 0; i < count; ++i)
            bytes.push_back(static_cast<char>(value >> (8 * i) & 255U));
    }
    void Put(const Bytes& other) { bytes += other.bytes; }
    uint32_t Size() const { return static_cast<uint32_t>(bytes.size()); }
    const std::string& Text() const { return bytes; }

private:
    std::string bytes;
};

/// A bitmap header of twice the height, the pixels from the bottom, and a mask that is all zero:
/// the alpha channel says what shows.
Bytes ImageOf(const Square& square, const std::map<char, Color>& colors)
{
    Bytes image;
    image.Put(40, 4);
    image.Put(square.size, 4);
    image.Put(square.size * 2, 4);
    image.Put(1, 2);
    image.Put(32, 2);
    for (int i = 0; i < 6; ++i)
        image.Put(0, 4);
    for (unsigned y = square.size; y-- > 0;)
        for (char letter : square.rows[y]) {
            const auto found = colors.find(letter);
            const Color color = found == colors.end() ? Color{} : found->second;
            image.Put(color.blue, 1);
            image.Put(color.green, 1);
            image.Put(color.red, 1);
            image.Put(color.alpha, 1);
        }
    const unsigned maskStride = (square.size + 31) / 32 * 4;
    for (unsigned i = 0; i < maskStride * square.size; ++i)
        image.Put(0, 1);
    return image;
}

Bytes IconOf(const std::vector<Square>& squares, const std::map<char, Color>& colors)
{
    Bytes icon;
    icon.Put(0, 2);
    icon.Put(1, 2);
    icon.Put(static_cast<uint32_t>(squares.size()), 2);
    uint32_t offset = 6 + 16 * static_cast<uint32_t>(squares.size());
    std::vector<Bytes> images;
    for (const Square& square : squares) {
        images.push_back(ImageOf(square, colors));
        icon.Put(square.size & 255U, 1);
        icon.Put(square.size & 255U, 1);
        icon.Put(0, 2);
        icon.Put(1, 2);
        icon.Put(32, 2);
        icon.Put(images.back().Size(), 4);
        icon.Put(offset, 4);
        offset += images.back().Size();
    }
    for (const Bytes& image : images)
        icon.Put(image);
    return icon;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: make-icon SOURCE.txt TARGET.ico\n";
        return 2;
    }
    std::ifstream in(argv[1]);
    std::map<char, Color> colors;
    std::vector<Square> squares;
    if (!in || !ReadSource(in, colors, squares)) {
        std::cerr << argv[1] << ": not a picture drawn in letters\n";
        return 1;
    }
    std::ofstream out(argv[2], std::ios::binary);
    out << IconOf(squares, colors).Text();
    return out.flush() ? 0 : 1;
}
