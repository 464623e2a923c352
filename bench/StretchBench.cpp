// Nearest-neighbour stretch, copying, and averaging over areas. The formulas of the checks are
// written out here once more, pixel by pixel.

#include "bench/Peers.h"
#include "bench/Table.h"

#include <algorithm>
#include <windows.h>

#if defined(TAVRIX_BENCH_OPENCV)
#include <opencv2/imgproc.hpp>
#endif
#if defined(TAVRIX_BENCH_LIBYUV)
#include <libyuv.h>
#endif

namespace bench
{

namespace
{

constexpr u32 Seed = 11;
constexpr u32 Background = 0x204060FF;

struct Stretch {
    Size from;
    Size to;
};

constexpr Stretch Stretches[] = {
    {{4000, 3000}, {800, 600}},
    {{400, 300}, {800, 600}},
    {{4000, 3000}, {800, 480}},
    {{800, 480}, {4000, 3000}},
};

f64 Last(u32 count)
{
    return static_cast<f64>(count) - 1;
}

i32 StretchWhole(Raster& from, Raster& to, const Stretch& stretch)
{
    return from.StretchRect(&to, 0, 0, Last(stretch.from.width), Last(stretch.from.height), 0, 0,
                            Last(stretch.to.width), Last(stretch.to.height));
}

// Source pixels for one target pixel in 16.16, rounded.
u64 StepOf(u32 from, u32 to)
{
    return ((u64{from} << 17) / to + 1) >> 1;
}

std::string FaultOfStretch(const Picture& drawn, const Picture& source, const Stretch& stretch)
{
    const u64 stepX = StepOf(stretch.from.width, stretch.to.width);
    const u64 stepY = StepOf(stretch.from.height, stretch.to.height);
    return DifferenceFrom(drawn, [&](u32 x, u32 y, u8* pixel) {
        const u8* const from =
            source.At(static_cast<u32>(x * stepX >> 16), static_cast<u32>(y * stepY >> 16));
        std::copy_n(from, 3, pixel);
    });
}

Work OurStretch(const Stretch& stretch)
{
    auto source = std::make_shared<Picture>(MakePicture(stretch.from, Seed));
    RasterPointer from = MakeRaster(*source);
    RasterPointer to = MakeRaster(stretch.to, 24);
    return {[=] { (void)StretchWhole(*from, *to, stretch); },
            [=] { return FaultOfStretch(PictureOf(*to), *source, stretch); }};
}

#if defined(TAVRIX_BENCH_OPENCV) || defined(TAVRIX_BENCH_LIBYUV)
// Others round otherwise, or sample the middle of what a target pixel covers: each pixel must be
// one of those that it covers, or one beside them.
std::string FaultOfPeer(const Picture& drawn, const Picture& source, const Stretch& stretch)
{
    const Size from = stretch.from;
    const Size to = stretch.to;
    const auto isAmong = [&](u32 x, u32 y, const u8* pixel) {
        const u32 bottom = std::min((y + 1) * from.height / to.height, from.height - 1);
        const u32 right = std::min((x + 1) * from.width / to.width, from.width - 1);
        const u32 left = std::max(x * from.width / to.width, 1u) - 1;
        for (u32 row = std::max(y * from.height / to.height, 1u) - 1; row <= bottom; ++row)
            for (u32 column = left; column <= right; ++column)
                if (std::equal(pixel, pixel + 3, source.At(column, row)))
                    return true;
        return false;
    };
    for (u32 y = 0; y < to.height; ++y)
        for (u32 x = 0; x < to.width; ++x)
            if (!isAmong(x, y, drawn.At(x, y)))
                return "pixel " + std::to_string(x) + "," + std::to_string(y) +
                       " is none of those that it covers";
    return {};
}
#endif

#if defined(TAVRIX_BENCH_OPENCV)
Work OpenCvStretch(const Stretch& stretch, int channels)
{
    auto source = std::make_shared<Picture>(MakePicture(stretch.from, Seed));
    const cv::Mat from = MatOf(*source, channels);
    const cv::Mat to(static_cast<int>(stretch.to.height), static_cast<int>(stretch.to.width),
                     CV_8UC(channels));
    return {[=] { cv::resize(from, to, to.size(), 0, 0, cv::INTER_NEAREST); },
            [=] { return FaultOfPeer(PictureOf(to), *source, stretch); }};
}
#endif

#if defined(TAVRIX_BENCH_LIBYUV)
Work LibYuvStretch(const Stretch& stretch)
{
    const Size from = stretch.from;
    const Size to = stretch.to;
    auto source = std::make_shared<Picture>(MakePicture(from, Seed));
    auto read = std::make_shared<std::vector<u8>>(WithAlpha(*source));
    auto written = std::make_shared<std::vector<u8>>(size_t{4} * to.width * to.height);
    return {[=] {
                libyuv::ARGBScale(
                    read->data(), static_cast<int>(from.width * 4), static_cast<int>(from.width),
                    static_cast<int>(from.height), written->data(), static_cast<int>(to.width * 4),
                    static_cast<int>(to.width), static_cast<int>(to.height), libyuv::kFilterNone);
            },
            [=] {
                return FaultOfPeer(PictureOf(written->data(), to, size_t{4} * to.width, 4), *source,
                                   stretch);
            }};
}
#endif

void AddStretch(const Stretch& stretch)
{
    const std::string name = "StretchRect/" + Name(stretch.from) + "/" + Name(stretch.to);
    AddOurs(name, [=] { return OurStretch(stretch); });
#if defined(TAVRIX_BENCH_OPENCV)
    AddPeer(name, "opencv-8uc3", [=] { return OpenCvStretch(stretch, 3); });
    AddPeer(name, "opencv-8uc4", [=] { return OpenCvStretch(stretch, 4); });
#else
    AddMissing(name, "opencv-8uc3", OpenCvPackage);
    AddMissing(name, "opencv-8uc4", OpenCvPackage);
#endif
#if defined(TAVRIX_BENCH_LIBYUV)
    AddPeer(name, "libyuv-32", [=] { return LibYuvStretch(stretch); });
#else
    AddMissing(name, "libyuv-32", LibYuvPackage);
#endif
    AddLimit(name, stretch.to);
}

using Copy = i32 (*)(Raster& from, Raster& to, Size size);

i32 CopyByStretch(Raster& from, Raster& to, Size size)
{
    return StretchWhole(from, to, {size, size});
}

i32 CopyByCopyTo(Raster& from, Raster& to, Size size)
{
    return from.CopyTo(0, 0, static_cast<i32>(size.width), static_cast<i32>(size.height), &to, 0, 0,
                       SRCCOPY);
}

Work OurCopy(Size size, Copy copy)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    RasterPointer from = MakeRaster(*source);
    RasterPointer to = MakeRaster(size, 24);
    return {[=] { (void)copy(*from, *to, size); },
            [=] { return Difference(*source, PictureOf(*to)); }};
}

void AddCopy(const char* operation, Size size, Copy copy)
{
    const std::string name = operation + ("/" + Name(size));
    AddOurs(name, [=] { return OurCopy(size, copy); });
    AddLimit(name, size);
}

// What part of an average falls to the source's pixel `at` along one side: the formula of
// BoxScaleLine, in its 32 bits.
u32 CoverOf(u32 at, u32 target, u32 from, u32 to)
{
    const u32 unit = (to << 10) / from;
    const u32 step = (from << 16) / to;
    const u32 first = (step * target) >> 16;
    const u32 last = (step * (target + 1)) >> 16;
    if (at < first || at > last || at >= from)
        return 0;
    if (at == first)
        return (first + 1) * unit - ((first * unit) & ~0x3FFu);
    return at == last ? (target + 1) * 1024 - last * unit : unit;
}

// Every pixel of an area counts alike.
u32 EvenCoverOf(u32 at, u32 target, u32 from, u32 to)
{
    return at < from && at / (from / to) == target ? 1024 : 0;
}

std::string FaultOfAverage(const Picture& drawn, const Picture& source,
                           u32 (*cover)(u32 at, u32 target, u32 from, u32 to), int tolerance)
{
    const Size from = source.size;
    const Size to = drawn.size;
    return DifferenceFrom(
        drawn,
        [&](u32 x, u32 y, u8* pixel) {
            u32 sums[3] = {};
            u32 weights = 0;
            const u32 left = x * from.width / to.width;
            const u32 top = y * from.height / to.height;
            for (u32 row = top; row <= std::min(top + from.height / to.height, from.height - 1);
                 ++row)
                for (u32 column = left;
                     column <= std::min(left + from.width / to.width, from.width - 1); ++column) {
                    const u32 weight = cover(column, x, from.width, to.width) *
                                           cover(row, y, from.height, to.height) >>
                                       4;
                    weights += weight;
                    for (u32 i = 0; i < 3; ++i)
                        sums[i] += weight * source.At(column, row)[i];
                }
            for (u32 i = 0; i < 3; ++i)
                pixel[i] = static_cast<u8>(sums[i] / weights);
        },
        tolerance);
}

Work OurBoxByRows(Size from, Size to)
{
    auto source = std::make_shared<Picture>(MakePicture(from, Seed));
    RasterPointer raster = MakeRaster(*source);
    auto drawn = std::make_shared<Picture>(to);
    return {[=] {
                for (u32 y = 0; y < to.height; ++y)
                    (void)raster->BoxScaleLine(drawn->At(0, y), y, to.height, to.width);
                raster->UnlockAll();
            },
            [=] { return FaultOfAverage(*drawn, *source, CoverOf, 0); }};
}

Work OurBoxByScaleTo(Size from, Size to)
{
    auto source = std::make_shared<Picture>(MakePicture(from, Seed));
    RasterPointer raster = MakeRaster(*source);
    RasterPointer target = MakeRaster(to, 24);
    return {[=] {
                (void)raster->ScaleTo(target.get(), Background, 1, 1);
                raster->UnlockAll();
                target->UnlockAll();
            },
            [=] { return FaultOfAverage(PictureOf(*target), *source, CoverOf, 0); }};
}

#if defined(TAVRIX_BENCH_OPENCV)
Work OpenCvBox(Size from, Size to)
{
    auto source = std::make_shared<Picture>(MakePicture(from, Seed));
    const cv::Mat read = MatOf(*source);
    const cv::Mat written(static_cast<int>(to.height), static_cast<int>(to.width), CV_8UC3);
    return {[=] { cv::resize(read, written, written.size(), 0, 0, cv::INTER_AREA); },
            [=] { return FaultOfAverage(PictureOf(written), *source, EvenCoverOf, 1); }};
}
#endif

void AddBox(const char* operation, Size from, Size to, Work (*ours)(Size from, Size to))
{
    const std::string name = operation + ("/" + Name(from)) + "/" + Name(to);
    AddOurs(name, [=] { return ours(from, to); });
#if defined(TAVRIX_BENCH_OPENCV)
    AddPeer(name, "opencv-area", [=] { return OpenCvBox(from, to); });
#else
    AddMissing(name, "opencv-area", OpenCvPackage);
#endif
    // It reads all of the source.
    AddLimit(name, from);
}

} // namespace

void AddStretches()
{
    for (const Stretch& stretch : Stretches)
        AddStretch(stretch);
    for (const Size size : Sizes) {
        AddCopy("StretchRect/1:1", size, CopyByStretch);
        AddCopy("CopyTo", size, CopyByCopyTo);
    }
    AddBox("BoxScaleLine", {4000, 3000}, {800, 600}, OurBoxByRows);
    AddBox("BoxScaleLine", {800, 480}, {400, 240}, OurBoxByRows);
    AddBox("ScaleTo/box", {4000, 3000}, {800, 600}, OurBoxByScaleTo);
    AddBox("ScaleTo/box", {800, 480}, {400, 240}, OurBoxByScaleTo);
}

} // namespace bench
