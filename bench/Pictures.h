// What the benchmarks of pictures share: rasters of seeded noise, their pixels as plain bytes for
// looking at what was drawn, and the copy limit.
//
// Rasters never page here unless a benchmark asks for it: the memory gauge was given a plentiful
// figure at the start and takes no sample later. One thread.
#pragma once

#include "image/Raster.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench
{

struct Size {
    u32 width;
    u32 height;
};

/// The sizes that every operation on whole pictures is measured at.
inline constexpr Size Sizes[] = {{800, 480}, {4000, 3000}};

/// "800x480".
std::string Name(Size size);

/// Numbers that are the same in every run (xorshift, Marsaglia 2003).
class Noise
{
public:
    explicit Noise(u32 seed) : state(seed * u64{0x9E3779B97F4A7C15} + 1) {}
    u64 Next();
    u32 Below(u32 bound) { return static_cast<u32>((Next() >> 32) % bound); }
    void Fill(u8* bytes, size_t count);

private:
    u64 state;
};

/// Three bytes a pixel, blue first, row by row without padding; row 0 is the top.
struct Picture {
    Size size = {};
    std::vector<u8> bytes;

    Picture() = default;
    explicit Picture(Size of) : size(of), bytes(size_t{3} * of.width * of.height) {}
    u8* At(u32 x, u32 y) { return bytes.data() + (size_t{y} * size.width + x) * 3; }
    const u8* At(u32 x, u32 y) const { return bytes.data() + (size_t{y} * size.width + x) * 3; }
};

/// Noise in every byte; the same for the same seed.
Picture MakePicture(Size size, u32 seed);

using RasterPointer = std::shared_ptr<Raster>;

/// A created raster; `folder` null means that it cannot page. Ends the program when it cannot be
/// had.
RasterPointer MakeRaster(Size size, u32 depth, const WCHAR* folder = nullptr);
/// A raster of 24 bits that shows `picture`.
RasterPointer MakeRaster(const Picture& picture);
/// The addresses of all lines of a raster that does not page. They hold until its lines change.
std::vector<u8*> LinesOf(Raster& raster);
/// The colour bytes of a raster of 24 or 32 bits.
Picture PictureOf(Raster& raster);
/// The colour bytes of `stride` bytes a row and `step` bytes a pixel.
Picture PictureOf(const void* bytes, Size size, size_t stride, u32 step);
/// `picture` with a fourth byte of 255 a pixel.
std::vector<u8> WithAlpha(const Picture& picture);

/// Empty when no byte is further than `tolerance` from the expected one, else the first that is.
std::string Difference(const Picture& expected, const Picture& drawn, int tolerance = 0);
/// Compares with the picture that `pixel` tells: it is called with x, y and the three bytes to set.
std::string DifferenceFrom(const Picture& drawn,
                           const std::function<void(u32 x, u32 y, u8* expected)>& pixel,
                           int tolerance = 0);
/// Empty for Done, else what the operation gave.
std::string NotDone(i32 result);

} // namespace bench
