// Filling and inverting in place, whole pictures.

#include "bench/Peers.h"
#include "bench/Table.h"

#include <algorithm>
#include <cstring>

#if defined(TAVRIX_BENCH_PIXMAN)
#include <pixman.h>
#endif

namespace bench
{

namespace
{

constexpr u32 Seed = 21;
constexpr u32 Opaque = 0xC86432FF;
constexpr u32 Translucent = 0xC8643280;
constexpr u8 Bytes[3] = {0x32, 0x64, 0xC8}; // of both, as they lie in a pixel

PixelRect Whole(Size size)
{
    return {0, 0, static_cast<i32>(size.width) - 1, static_cast<i32>(size.height) - 1};
}

using Fill = i32 (*)(Raster& raster, Size size);
using Formula = u8 (*)(u8 old, u32 channel);

i32 FillWhole(Raster& raster, Size)
{
    return raster.FillAll(Opaque);
}

i32 FillWholeTranslucent(Raster& raster, Size)
{
    return raster.FillAll(Translucent);
}

i32 FillOpaque(Raster& raster, Size size)
{
    return raster.FillRect(Opaque, Whole(size));
}

i32 FillTranslucent(Raster& raster, Size size)
{
    return raster.FillRect(Translucent, Whole(size));
}

i32 Invert(Raster& raster, Size size)
{
    return raster.InvertRect(Whole(size));
}

u8 Stored(u8, u32 channel)
{
    return Bytes[channel];
}

u8 Blended(u8 old, u32 channel)
{
    constexpr u32 weight = (Translucent & 255) + 1;
    return static_cast<u8>(((256 - weight) * old + weight * Bytes[channel]) >> 8);
}

u8 Inverted(u8 old, u32)
{
    return static_cast<u8>(255 - old);
}

std::string FaultOf(const Picture& drawn, const Picture& source, Formula formula, int tolerance = 0)
{
    return DifferenceFrom(
        drawn,
        [&](u32 x, u32 y, u8* pixel) {
            for (u32 i = 0; i < 3; ++i)
                pixel[i] = formula(source.At(x, y)[i], i);
        },
        tolerance);
}

Work OurFill(Size size, Fill fill, Formula formula)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    RasterPointer raster = MakeRaster(*source);
    return {[=] { (void)fill(*raster, size); },
            [=] { return FaultOf(PictureOf(*raster), *source, formula); }};
}

// All bytes alike, which is all that memset can do.
Work MemsetRows(Size size)
{
    RasterPointer raster = MakeRaster(MakePicture(size, Seed));
    const std::vector<u8*> lines = LinesOf(*raster);
    return {[=] {
                for (u8* line : lines)
                    std::memset(line, Bytes[0], size_t{3} * size.width);
            },
            [=] {
                return FaultOf(PictureOf(*raster), Picture(size), [](u8, u32) { return Bytes[0]; });
            }};
}

#if defined(TAVRIX_BENCH_OPENCV)
Work OpenCvFill(Size size)
{
    cv::Mat mat = MatOf(MakePicture(size, Seed));
    return {[=]() mutable { mat.setTo(cv::Scalar(Bytes[0], Bytes[1], Bytes[2])); },
            [=] { return FaultOf(PictureOf(mat), Picture(size), Stored); }};
}

Work OpenCvInvert(Size size)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    const cv::Mat mat = MatOf(*source);
    return {[=] { cv::bitwise_not(mat, mat); },
            [=] { return FaultOf(PictureOf(mat), *source, Inverted); }};
}
#endif

#if defined(TAVRIX_BENCH_PIXMAN)
Work PixmanFill(Size size)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    auto bytes = std::make_shared<std::vector<u8>>(WithAlpha(*source));
    const int width = static_cast<int>(size.width);
    const int height = static_cast<int>(size.height);
    const std::shared_ptr<pixman_image_t> target(
        pixman_image_create_bits(PIXMAN_x8r8g8b8, width, height,
                                 reinterpret_cast<uint32_t*>(bytes->data()), width * 4),
        pixman_image_unref);
    // Colours have 16 bits a channel and are multiplied by alpha beforehand.
    const auto channel = [](u32 value) {
        return static_cast<uint16_t>(value * 257 * ((Translucent & 255) + 1) / 256);
    };
    const pixman_color_t color = {channel(Bytes[2]), channel(Bytes[1]), channel(Bytes[0]),
                                  channel(255)};
    const std::shared_ptr<pixman_image_t> solid(pixman_image_create_solid_fill(&color),
                                                pixman_image_unref);
    return {[=] {
                pixman_image_composite32(PIXMAN_OP_OVER, solid.get(), nullptr, target.get(), 0, 0,
                                         0, 0, 0, 0, width, height);
            },
            [=] {
                return FaultOf(PictureOf(bytes->data(), size, size_t{4} * size.width, 4), *source,
                               Blended, 2);
            }};
}
#endif

void AddOpaque(const char* operation, Size size, Fill fill)
{
    const std::string name = operation + ("/" + Name(size));
    AddOurs(name, [=] { return OurFill(size, fill, Stored); });
#if defined(TAVRIX_BENCH_OPENCV)
    AddPeer(name, "opencv-setto", [=] { return OpenCvFill(size); });
#else
    AddMissing(name, "opencv-setto", OpenCvPackage);
#endif
    AddPeer(name, "memset", [=] { return MemsetRows(size); });
    AddLimit(name, size);
}

void AddTranslucent(const char* operation, Size size, Fill fill)
{
    const std::string name = operation + ("/" + Name(size));
    AddOurs(name, [=] { return OurFill(size, fill, Blended); });
#if defined(TAVRIX_BENCH_PIXMAN)
    AddPeer(name, "pixman-32", [=] { return PixmanFill(size); });
#else
    AddMissing(name, "pixman-32", PixmanPackage);
#endif
    AddLimit(name, size);
}

void AddInvert(Size size)
{
    const std::string name = "InvertRect/" + Name(size);
    AddOurs(name, [=] { return OurFill(size, Invert, Inverted); });
#if defined(TAVRIX_BENCH_OPENCV)
    AddPeer(name, "opencv-not", [=] { return OpenCvInvert(size); });
#else
    AddMissing(name, "opencv-not", OpenCvPackage);
#endif
    AddPeer(name, "memset", [=] { return MemsetRows(size); });
    AddLimit(name, size);
}

} // namespace

void AddFills()
{
    for (const Size size : Sizes) {
        AddOpaque("FillAll", size, FillWhole);
        AddOpaque("FillRect/opaque", size, FillOpaque);
        AddInvert(size);
        AddTranslucent("FillAll/translucent", size, FillWholeTranslucent);
        AddTranslucent("FillRect/translucent", size, FillTranslucent);
    }
}

} // namespace bench
