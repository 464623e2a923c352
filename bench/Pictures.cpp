#include "bench/Pictures.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace bench
{

namespace
{

[[noreturn]] void End(const char* why)
{
    std::fprintf(stderr, "pixel_bench: %s\n", why);
    std::exit(1);
}

std::string Text(const u8* pixel)
{
    return std::to_string(pixel[0]) + "," + std::to_string(pixel[1]) + "," +
           std::to_string(pixel[2]);
}

} // namespace

std::string Name(Size size)
{
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

u64 Noise::Next()
{
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    return state;
}

void Noise::Fill(u8* bytes, size_t count)
{
    for (; count >= sizeof(u64); bytes += sizeof(u64), count -= sizeof(u64)) {
        const u64 number = Next();
        std::memcpy(bytes, &number, sizeof(number));
    }
    for (; count > 0; --count)
        *bytes++ = static_cast<u8>(Next() >> 24);
}

Picture MakePicture(Size size, u32 seed)
{
    Picture picture(size);
    Noise(seed).Fill(picture.bytes.data(), picture.bytes.size());
    return picture;
}

RasterPointer MakeRaster(Size size, u32 depth, const WCHAR* folder)
{
    auto raster = std::make_shared<Raster>();
    if (raster->Create(size.width, size.height, depth, folder, nullptr) != Done)
        End("a raster cannot be made");
    return raster;
}

RasterPointer MakeRaster(const Picture& picture)
{
    RasterPointer raster = MakeRaster(picture.size, 24);
    const std::vector<u8*> lines = LinesOf(*raster);
    for (u32 y = 0; y < picture.size.height; ++y)
        std::memcpy(lines[y], picture.At(0, y), size_t{3} * picture.size.width);
    return raster;
}

std::vector<u8*> LinesOf(Raster& raster)
{
    RasterInfo info = {};
    info.size = sizeof(info);
    raster.GetInfo(&info);
    std::vector<u8*> lines(info.height);
    u32 count = info.height;
    if (raster.LockLines(0, lines.data(), &count) != Done || count != info.height)
        End("a raster's lines cannot be locked");
    raster.UnlockAll();
    return lines;
}

Picture PictureOf(Raster& raster)
{
    RasterInfo info = {};
    info.size = sizeof(info);
    raster.GetInfo(&info);
    const u32 step = info.depth / 8;
    Picture picture({info.width, info.height});
    const std::vector<u8*> lines = LinesOf(raster);
    for (u32 y = 0; y < info.height; ++y)
        for (u32 x = 0; x < info.width; ++x)
            std::memcpy(picture.At(x, y), lines[y] + size_t{x} * step, 3);
    return picture;
}

Picture PictureOf(const void* bytes, Size size, size_t stride, u32 step)
{
    Picture picture(size);
    for (u32 y = 0; y < size.height; ++y) {
        const u8* row = static_cast<const u8*>(bytes) + y * stride;
        for (u32 x = 0; x < size.width; ++x, row += step)
            std::memcpy(picture.At(x, y), row, 3);
    }
    return picture;
}

std::vector<u8> WithAlpha(const Picture& picture)
{
    std::vector<u8> bytes(picture.bytes.size() / 3 * 4);
    u8* out = bytes.data();
    for (size_t i = 0; i < picture.bytes.size(); i += 3, out += 4) {
        std::memcpy(out, picture.bytes.data() + i, 3);
        out[3] = 255;
    }
    return bytes;
}

std::string Difference(const Picture& expected, const Picture& drawn, int tolerance)
{
    if (expected.size.width != drawn.size.width || expected.size.height != drawn.size.height)
        return "drew " + Name(drawn.size) + " instead of " + Name(expected.size);
    return DifferenceFrom(
        drawn, [&expected](u32 x, u32 y, u8* pixel) { std::memcpy(pixel, expected.At(x, y), 3); },
        tolerance);
}

std::string DifferenceFrom(const Picture& drawn,
                           const std::function<void(u32 x, u32 y, u8* expected)>& pixel,
                           int tolerance)
{
    for (u32 y = 0; y < drawn.size.height; ++y)
        for (u32 x = 0; x < drawn.size.width; ++x) {
            u8 expected[3];
            pixel(x, y, expected);
            const u8* const got = drawn.At(x, y);
            for (int i = 0; i < 3; ++i)
                if (std::abs(expected[i] - got[i]) > tolerance)
                    return "pixel " + std::to_string(x) + "," + std::to_string(y) + " is " +
                           Text(got) + " instead of " + Text(expected);
        }
    return {};
}

std::string NotDone(i32 result)
{
    return result == Done ? std::string() : "the result is " + std::to_string(result);
}

} // namespace bench
