// What the screen is shown: the ordered dither and the diffusion into four greys.

#include "bench/Peers.h"
#include "bench/Table.h"
#include "pixel/ScreenSurface.h"

#include <handheld.h>

#include <algorithm>
#include <cmath>
#include <set>

#if defined(TAVRIX_BENCH_GRAPHICSMAGICK)
#include <magick/api.h>
#endif
#if defined(TAVRIX_BENCH_LEPTONICA)
#include <leptonica/allheaders.h>
#endif

namespace bench
{

namespace
{

constexpr u32 Seed = 41;
constexpr i32 Brightness[4] = {0, 128, 192, 255}; // of the four greys

// What a window would be painted with.
Picture ShownBy(const ScreenSurface& surface, Size size)
{
    BITMAPINFO format = {};
    format.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    format.bmiHeader.biWidth = static_cast<LONG>(size.width);
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biHeight = static_cast<LONG>(size.height);
    format.bmiHeader.biBitCount = 24;
    void* bits = nullptr;
    const HBITMAP bitmap = ::CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0);
    Picture picture(size);
    if (bitmap == nullptr)
        return picture;
    {
        DrawingContext context;
        if (context.CreateMemory(nullptr) == Done && context.SelectBitmap(bitmap) == Done &&
            ::BitBlt(context.Handle(), 0, 0, static_cast<int>(size.width),
                     static_cast<int>(size.height), surface.GetDC(), 0, 0, SRCCOPY)) {
            const size_t stride = (size_t{3} * size.width + 3) & ~size_t{3};
            for (u32 y = 0; y < size.height; ++y)
                std::copy_n(static_cast<const u8*>(bits) + (size.height - 1 - y) * stride,
                            size_t{3} * size.width, picture.At(0, y));
        }
        (void)context.DeleteMemory();
    }
    ::DeleteObject(bitmap);
    return picture;
}

Work OurPresent(Size size, u32 depth, u32 method,
                std::string (*fault)(const Picture& drawn, const Picture& source))
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    RasterPointer raster = MakeRaster(*source);
    auto surface = std::make_shared<ScreenSurface>();
    const i32 made = surface->Create(size.width, size.height, depth);
    auto result = std::make_shared<i32>(made);
    return {[=] { *result = surface->Present(raster.get(), method); },
            [=]() -> std::string {
                if (made != Done || *result != Done)
                    return NotDone(made) + NotDone(*result);
                return fault(ShownBy(*surface, size), *source);
            }};
}

std::string FaultOfCopy(const Picture& drawn, const Picture& source)
{
    return Difference(source, drawn);
}

std::string FaultOfOrdered(const Picture& drawn, const Picture& source)
{
    static constexpr int thresholds[4][4] = {
        {7, 3, 6, 2}, {1, 5, 0, 4}, {6, 2, 7, 3}, {0, 4, 1, 5}};
    return DifferenceFrom(drawn, [&source](u32 x, u32 y, u8* pixel) {
        for (u32 i = 0; i < 3; ++i)
            pixel[i] = static_cast<u8>(
                std::min((source.At(x, y)[i] + thresholds[y & 3][x & 3]) & ~7, 255));
    });
}

f64 MeanGrey(const Picture& picture)
{
    f64 sum = 0;
    for (size_t i = 0; i < picture.bytes.size(); i += 3)
        sum += 28 * picture.bytes[i] + 151 * picture.bytes[i + 1] + 77 * picture.bytes[i + 2];
    return sum * 3 / 256 / static_cast<f64>(picture.bytes.size());
}

// Diffusion keeps the brightness, and a noisy picture needs every grey. No two runs are alike.
std::string FaultOfGreys(const Picture& drawn, const Picture& source)
{
    std::set<u8> greys;
    for (size_t i = 0; i < drawn.bytes.size(); i += 3) {
        if (drawn.bytes[i] != drawn.bytes[i + 1] || drawn.bytes[i] != drawn.bytes[i + 2])
            return "a pixel is not grey";
        greys.insert(drawn.bytes[i]);
    }
    if (greys.size() != 4)
        return "there are " + std::to_string(greys.size()) + " greys";
    const f64 off = MeanGrey(drawn) - MeanGrey(source);
    return std::abs(off) > 6 ? "the brightness is off by " + std::to_string(off) : std::string();
}

// The formula as it is written down, a pixel after the other.
void DiffuseRow(const u8* source, u32 columns, i32* current, i32* next, u8* levels)
{
    for (u32 x = 0; x < columns; ++x, source += 3) {
        const i32 luma = (28 * source[0] + 77 * source[2] + 151 * source[1]) >> 8;
        const i32 light = luma + current[x] / 16;
        const i32 noise = static_cast<signed char>(::Random() & 255) / 32;
        const u32 level = light < noise + 64    ? 0
                          : light < noise + 128 ? 1
                          : light < noise + 196 ? 2
                                                : 3;
        const i32 error = light - Brightness[level];
        current[x + 1] += 7 * error;
        (next + x)[-1] += 3 * error;
        next[x] += 5 * error;
        next[x + 1] += error;
        levels[x >> 2] = static_cast<u8>(levels[x >> 2] | level << (6 - (x & 3) * 2));
    }
}

Work PlainGreys(Size size)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    const size_t bytes = (size.width + 3) / 4;
    auto levels = std::make_shared<std::vector<u8>>(bytes * size.height);
    return {[=] {
                std::fill(levels->begin(), levels->end(), u8{0});
                std::vector<i32> errors[2] = {std::vector<i32>(size.width + 2),
                                              std::vector<i32>(size.width + 2)};
                for (u32 y = 0; y < size.height; ++y) {
                    std::fill(errors[1].begin(), errors[1].end(), 0);
                    DiffuseRow(source->At(0, y), size.width, errors[0].data() + 1,
                               errors[1].data() + 1, levels->data() + bytes * y);
                    std::swap(errors[0], errors[1]);
                }
            },
            [=] {
                Picture picture(size);
                for (u32 y = 0; y < size.height; ++y)
                    for (u32 x = 0; x < size.width; ++x) {
                        const u32 byte = (*levels)[bytes * y + x / 4];
                        std::fill_n(picture.At(x, y), 3,
                                    static_cast<u8>(Brightness[byte >> (6 - (x & 3) * 2) & 3]));
                    }
                return FaultOfGreys(picture, *source);
            }};
}

// Ours without vectors.
Work PlainOrdered(Size size)
{
    Work work = OurPresent(size, 24, 1, FaultOfOrdered);
    work.run = AtPlainLevel(work.run);
    return work;
}

#if defined(TAVRIX_BENCH_LEPTONICA)
Work LeptonicaGreys(Size size)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    const auto drop = [](PIX* pix) { pixDestroy(&pix); };
    const std::shared_ptr<PIX> color(
        pixCreate(static_cast<int>(size.width), static_cast<int>(size.height), 32), drop);
    for (u32 y = 0; y < size.height; ++y)
        for (u32 x = 0; x < size.width; ++x) {
            const u8* const pixel = source->At(x, y);
            pixSetRGBPixel(color.get(), static_cast<int>(x), static_cast<int>(y), pixel[2],
                           pixel[1], pixel[0]);
        }
    auto drawn = std::make_shared<std::shared_ptr<PIX>>();
    return {[=] {
                const std::shared_ptr<PIX> grey(pixConvertRGBToLuminance(color.get()), drop);
                *drawn = std::shared_ptr<PIX>(pixDitherTo2bpp(grey.get(), 0), drop);
            },
            [=] {
                Picture picture(size);
                for (u32 y = 0; y < size.height; ++y)
                    for (u32 x = 0; x < size.width; ++x) {
                        l_uint32 level = 0;
                        pixGetPixel(drawn->get(), static_cast<int>(x), static_cast<int>(y), &level);
                        std::fill_n(picture.At(x, y), 3, static_cast<u8>(level * 85));
                    }
                return FaultOfGreys(picture, *source);
            }};
}
#endif

#if defined(TAVRIX_BENCH_GRAPHICSMAGICK)
using ImagePointer = std::shared_ptr<Image>;

ImagePointer ImageOf(const Picture& picture)
{
    ExceptionInfo exception;
    GetExceptionInfo(&exception);
    ImagePointer image(ConstituteImage(picture.size.width, picture.size.height, "BGR", CharPixel,
                                       picture.bytes.data(), &exception),
                       DestroyImage);
    DestroyExceptionInfo(&exception);
    return image;
}

Picture PictureOf(const Image* image, Size size)
{
    Picture picture(size);
    ExceptionInfo exception;
    GetExceptionInfo(&exception);
    DispatchImage(image, 0, 0, size.width, size.height, "BGR", CharPixel, picture.bytes.data(),
                  &exception);
    DestroyExceptionInfo(&exception);
    return picture;
}

// Both dithers work in place and see at once what they have dithered before: each run gets a copy.
// Its pixels are copied when they are first written, within the time.
Work MagickWork(Size size, void (*dither)(Image* image),
                std::string (*fault)(const Picture& drawn, const Picture& source))
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    const ImagePointer color = ImageOf(*source);
    auto copy = std::make_shared<ImagePointer>();
    const auto take = [=] {
        ExceptionInfo exception;
        GetExceptionInfo(&exception);
        *copy = ImagePointer(CloneImage(color.get(), 0, 0, MagickTrue, &exception), DestroyImage);
        DestroyExceptionInfo(&exception);
    };
    take();
    Work work;
    work.run = [=] { dither(copy->get()); };
    work.fault = [=] { return fault(PictureOf(copy->get(), size), *source); };
    work.between = take;
    return work;
}

void MagickOrdered(Image* image)
{
    ExceptionInfo exception;
    GetExceptionInfo(&exception);
    RandomChannelThresholdImage(image, "all", "4x4", &exception);
    DestroyExceptionInfo(&exception);
}

// It leaves two levels a channel.
std::string FaultOfMagickOrdered(const Picture& drawn, const Picture& source)
{
    if (std::any_of(drawn.bytes.begin(), drawn.bytes.end(),
                    [](u8 byte) { return byte != 0 && byte != 255; }))
        return "a byte is neither 0 nor 255";
    const f64 off = MeanGrey(drawn) - MeanGrey(source);
    return std::abs(off) > 16 ? "the brightness is off by " + std::to_string(off) : std::string();
}

void MagickGreys(Image* image)
{
    QuantizeInfo info;
    GetQuantizeInfo(&info);
    info.number_colors = 4;
    info.dither = MagickTrue;
    info.colorspace = GRAYColorspace;
    QuantizeImage(&info, image);
}
#endif

void AddCopy(Size size)
{
    const std::string name = "Present/copy/" + Name(size);
    AddOurs(name, [=] { return OurPresent(size, 24, 0, FaultOfCopy); });
    AddLimit(name, size);
}

void AddOrdered(Size size)
{
    const std::string name = "Present/ordered-dither/" + Name(size);
    AddOurs(name, [=] { return OurPresent(size, 24, 1, FaultOfOrdered); });
    AddPeer(name, "plain-loop", [=] { return PlainOrdered(size); });
#if defined(TAVRIX_BENCH_GRAPHICSMAGICK)
    AddPeer(
        name, "graphicsmagick",
        [=] { return MagickWork(size, MagickOrdered, FaultOfMagickOrdered); }, Clock::Process);
#else
    AddMissing(name, "graphicsmagick", GraphicsMagickPackage);
#endif
    AddLimit(name, size);
}

void AddGreys(Size size)
{
    const std::string name = "Present/four-greys/" + Name(size);
    AddOurs(name, [=] { return OurPresent(size, 2, 0, FaultOfGreys); });
    AddPeer(name, "plain-loop", [=] { return PlainGreys(size); });
#if defined(TAVRIX_BENCH_LEPTONICA)
    AddPeer(name, "leptonica", [=] { return LeptonicaGreys(size); });
#else
    AddMissing(name, "leptonica", LeptonicaPackage);
#endif
#if defined(TAVRIX_BENCH_GRAPHICSMAGICK)
    AddPeer(
        name, "graphicsmagick", [=] { return MagickWork(size, MagickGreys, FaultOfGreys); },
        Clock::Process);
#else
    AddMissing(name, "graphicsmagick", GraphicsMagickPackage);
#endif
    AddLimit(name, size);
}

} // namespace

void AddSurfaces()
{
    for (const Size size : Sizes) {
        AddCopy(size);
        AddOrdered(size);
        AddGreys(size);
    }
}

} // namespace bench
