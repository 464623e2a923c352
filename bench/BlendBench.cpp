// Blends: the soft brush's dab, and a picture with alpha over another.

#include "bench/Peers.h"
#include "bench/Table.h"

#include <cmath>
#include <cstring>

#if defined(TAVRIX_BENCH_PIXMAN)
#include <pixman.h>
#endif

namespace bench
{

namespace
{

constexpr u32 Seed = 31;
constexpr u32 Color = 0xC86432FF;
constexpr u8 Bytes[3] = {0x32, 0x64, 0xC8}; // as they lie in a pixel
constexpr u32 Radii[] = {5, 20, 100};

// Of one run, so that a run takes long enough to be timed well.
u32 DabsOf(u32 radius)
{
    return radius < 50 ? 500 : 20;
}

struct Dab {
    i32 left;
    i32 top;
};

// Where they fall: all of each inside the picture.
std::vector<Dab> DabsIn(Size size, u32 radius)
{
    Noise noise(Seed);
    std::vector<Dab> dabs(DabsOf(radius));
    for (Dab& dab : dabs) {
        dab.left = static_cast<i32>(noise.Below(size.width - 2 * radius));
        dab.top = static_cast<i32>(noise.Below(size.height - 2 * radius));
    }
    return dabs;
}

// A Gaussian that has fallen to e^-9 at the rim, as the brush's.
u8 Coverage(u32 x, u32 y, u32 radius)
{
    const f64 dx = static_cast<f64>(x) - radius;
    const f64 dy = static_cast<f64>(y) - radius;
    return static_cast<u8>(255.0 *
                           std::exp(-9.0 * (dx * dx + dy * dy) / (f64{1} * radius * radius)));
}

// The source with every dab on it, pixel by pixel.
Picture Painted(Picture picture, const std::vector<Dab>& dabs, u32 radius)
{
    constexpr u32 alpha = (Color & 255) + 1;
    for (const Dab& dab : dabs)
        for (u32 y = 0; y < 2 * radius; ++y)
            for (u32 x = 0; x < 2 * radius; ++x) {
                const u32 weight = Coverage(x, y, radius) * alpha;
                u8* const pixel =
                    picture.At(static_cast<u32>(dab.left) + x, static_cast<u32>(dab.top) + y);
                for (u32 i = 0; i < 3; ++i)
                    pixel[i] =
                        static_cast<u8>(((0x10000 - weight) * pixel[i] + weight * Bytes[i]) >> 16);
            }
    return picture;
}

Work OurDabs(Size size, u32 radius)
{
    const u32 side = 2 * radius;
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    RasterPointer raster = MakeRaster(*source);
    RasterPointer mask = MakeRaster({side, side}, 8);
    const std::vector<u8*> lines = LinesOf(*mask);
    for (u32 y = 0; y < side; ++y)
        for (u32 x = 0; x < side; ++x)
            lines[y][x] = Coverage(x, y, radius);
    const std::vector<Dab> dabs = DabsIn(size, radius);
    Work work;
    work.items = static_cast<u32>(dabs.size());
    work.run = [=] {
        for (const Dab& dab : dabs) {
            // As the brush asks: a column and a row more than the mask has, which are cut.
            PixelRect rectangle = {dab.left, dab.top, dab.left + static_cast<i32>(side),
                                   dab.top + static_cast<i32>(side)};
            (void)raster->BlendMask(Color, &rectangle, mask.get(), 0, 0);
        }
    };
    work.fault = [=] { return Difference(Painted(*source, dabs, radius), PictureOf(*raster)); };
    return work;
}

#if defined(TAVRIX_BENCH_PIXMAN)
// The image keeps the bytes that it lies on.
std::shared_ptr<pixman_image_t> ImageOf(pixman_format_code_t format, Size size,
                                        const std::shared_ptr<std::vector<u8>>& bytes, u32 stride)
{
    pixman_image_t* const image = pixman_image_create_bits(
        format, static_cast<int>(size.width), static_cast<int>(size.height),
        reinterpret_cast<uint32_t*>(bytes->data()), static_cast<int>(stride));
    return {image, [bytes](pixman_image_t* gone) { pixman_image_unref(gone); }};
}

Work PixmanDabs(Size size, u32 radius)
{
    const u32 side = 2 * radius;
    const u32 stride = (side + 3) & ~3u;
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    auto bytes = std::make_shared<std::vector<u8>>(WithAlpha(*source));
    auto coverage = std::make_shared<std::vector<u8>>(size_t{stride} * side);
    for (u32 y = 0; y < side; ++y)
        for (u32 x = 0; x < side; ++x)
            (*coverage)[size_t{y} * stride + x] = Coverage(x, y, radius);
    const auto target = ImageOf(PIXMAN_x8r8g8b8, size, bytes, size.width * 4);
    const auto mask = ImageOf(PIXMAN_a8, {side, side}, coverage, stride);
    const pixman_color_t color = {Bytes[2] * 257, Bytes[1] * 257, Bytes[0] * 257, 0xFFFF};
    const std::shared_ptr<pixman_image_t> solid(pixman_image_create_solid_fill(&color),
                                                pixman_image_unref);
    const std::vector<Dab> dabs = DabsIn(size, radius);
    Work work;
    work.items = static_cast<u32>(dabs.size());
    work.run = [=] {
        for (const Dab& dab : dabs)
            pixman_image_composite32(PIXMAN_OP_OVER, solid.get(), mask.get(), target.get(), 0, 0, 0,
                                     0, dab.left, dab.top, static_cast<i32>(side),
                                     static_cast<i32>(side));
    };
    // Its weights are of 255 and rounded; where many dabs lie on each other that adds up.
    work.fault = [=] {
        return Difference(Painted(*source, dabs, radius),
                          PictureOf(bytes->data(), size, size_t{4} * size.width, 4), 16);
    };
    return work;
}
#endif

void AddDabs(Size size, u32 radius)
{
    const std::string name = "BlendMask/radius-" + std::to_string(radius) + "/" + Name(size);
    AddOurs(name, [=] { return OurDabs(size, radius); });
#if defined(TAVRIX_BENCH_PIXMAN)
    AddPeer(name, "pixman-32", [=] { return PixmanDabs(size, radius); });
#else
    AddMissing(name, "pixman-32", PixmanPackage);
#endif
    // The rows of one dab, as often as a run has dabs.
    AddLimit(name, 2 * radius, size_t{3} * 2 * radius, DabsOf(radius));
}

// Colours with alpha, four bytes a pixel.
std::vector<u8> MakeOverlay(Size size)
{
    std::vector<u8> bytes(size_t{4} * size.width * size.height);
    Noise(Seed + 1).Fill(bytes.data(), bytes.size());
    return bytes;
}

std::string FaultOfOverlay(const Picture& drawn, const Picture& source,
                           const std::vector<u8>& overlay, int tolerance)
{
    return DifferenceFrom(
        drawn,
        [&](u32 x, u32 y, u8* pixel) {
            const u8* const over = overlay.data() + (size_t{y} * source.size.width + x) * 4;
            for (u32 i = 0; i < 3; ++i)
                pixel[i] = static_cast<u8>(
                    ((over[3] + 1) * over[i] + (255 - over[3]) * source.At(x, y)[i]) >> 8);
        },
        tolerance);
}

Work OurOverlay(Size size)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    auto overlay = std::make_shared<std::vector<u8>>(MakeOverlay(size));
    RasterPointer target = MakeRaster(*source);
    RasterPointer over = MakeRaster(size, 32);
    const std::vector<u8*> lines = LinesOf(*over);
    const size_t row = size_t{4} * size.width;
    for (u32 y = 0; y < size.height; ++y)
        std::memcpy(lines[y], overlay->data() + y * row, row);
    return {[=] {
                (void)over->CompositeTo(0, 0, static_cast<i32>(size.width),
                                        static_cast<i32>(size.height), target.get(), 0, 0);
            },
            [=] { return FaultOfOverlay(PictureOf(*target), *source, *overlay, 0); }};
}

#if defined(TAVRIX_BENCH_PIXMAN)
Work PixmanOverlay(Size size)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    auto overlay = std::make_shared<std::vector<u8>>(MakeOverlay(size));
    auto bytes = std::make_shared<std::vector<u8>>(WithAlpha(*source));
    auto multiplied = std::make_shared<std::vector<u8>>(*overlay);
    for (size_t i = 0; i < multiplied->size(); i += 4)
        for (size_t channel = i; channel < i + 3; ++channel)
            (*multiplied)[channel] =
                static_cast<u8>(((*overlay)[channel] * (*overlay)[i + 3] + 127) / 255);
    const auto target = ImageOf(PIXMAN_x8r8g8b8, size, bytes, size.width * 4);
    const auto over = ImageOf(PIXMAN_a8r8g8b8, size, multiplied, size.width * 4);
    return {[=] {
                pixman_image_composite32(PIXMAN_OP_OVER, over.get(), nullptr, target.get(), 0, 0, 0,
                                         0, 0, 0, static_cast<i32>(size.width),
                                         static_cast<i32>(size.height));
            },
            [=] {
                return FaultOfOverlay(PictureOf(bytes->data(), size, size_t{4} * size.width, 4),
                                      *source, *overlay, 2);
            }};
}
#endif

void AddOverlay(Size size)
{
    const std::string name = "CompositeTo/32-onto-24/" + Name(size);
    AddOurs(name, [=] { return OurOverlay(size); });
#if defined(TAVRIX_BENCH_PIXMAN)
    AddPeer(name, "pixman-32", [=] { return PixmanOverlay(size); });
#else
    AddMissing(name, "pixman-32", PixmanPackage);
#endif
    // What it reads: four bytes a pixel.
    AddLimit(name, size.height, size_t{4} * size.width);
}

} // namespace

void AddBlends()
{
    for (const Size size : Sizes) {
        for (const u32 radius : Radii)
            AddDabs(size, radius);
        AddOverlay(size);
    }
}

} // namespace bench
