// Turning and mirroring whole pictures.

#include "bench/Peers.h"
#include "bench/Table.h"

#include <algorithm>

#if defined(TAVRIX_BENCH_LIBYUV)
#include <libyuv.h>
#endif
#if defined(TAVRIX_BENCH_VIPS)
#include <vips/vips.h>
#endif

namespace bench
{

namespace
{

constexpr u32 Seed = 51;

enum class Turn { Quarter, Half, UpsideDown, Mirror };

Size Turned(Size size, Turn turn)
{
    return turn == Turn::Quarter ? Size{size.height, size.width} : size;
}

std::string FaultOf(const Picture& drawn, const Picture& source, Turn turn)
{
    const Size size = source.size;
    const Size expected = Turned(size, turn);
    if (drawn.size.width != expected.width || drawn.size.height != expected.height)
        return "drew " + Name(drawn.size);
    return DifferenceFrom(drawn, [&](u32 x, u32 y, u8* pixel) {
        const u8* const from = turn == Turn::Quarter ? source.At(y, size.height - 1 - x)
                               : turn == Turn::Half
                                   ? source.At(size.width - 1 - x, size.height - 1 - y)
                               : turn == Turn::Mirror ? source.At(size.width - 1 - x, y)
                                                      : source.At(x, size.height - 1 - y);
        std::copy_n(from, 3, pixel);
    });
}

Work OurTurn(Size size, Turn turn)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    RasterPointer from = MakeRaster(*source);
    RasterPointer to = MakeRaster(Turned(size, turn), 24);
    return {[=] {
                (void)from->Rotated(to.get(), turn == Turn::Quarter ? 90 : 180);
                from->UnlockAll();
                to->UnlockAll();
            },
            [=] { return FaultOf(PictureOf(*to), *source, turn); }};
}

Work OurFlip(Size size, Turn turn)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    RasterPointer raster = MakeRaster(*source);
    return {
        [=] { (void)(turn == Turn::Mirror ? raster->FlipHorizontal() : raster->FlipVertical()); },
        [=] { return FaultOf(PictureOf(*raster), *source, turn); }};
}

#if defined(TAVRIX_BENCH_OPENCV)
Work OpenCvTurn(Size size, Turn turn)
{
    const Size turned = Turned(size, turn);
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    const cv::Mat from = MatOf(*source);
    const cv::Mat to(static_cast<int>(turned.height), static_cast<int>(turned.width), CV_8UC3);
    return {[=] {
                if (turn == Turn::Quarter)
                    cv::rotate(from, to, cv::ROTATE_90_CLOCKWISE);
                else
                    cv::flip(from, to, turn == Turn::Half ? -1 : turn == Turn::Mirror ? 1 : 0);
            },
            [=] { return FaultOf(PictureOf(to), *source, turn); }};
}
#endif

#if defined(TAVRIX_BENCH_LIBYUV)
Work LibYuvTurn(Size size, Turn turn)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    auto from = std::make_shared<std::vector<u8>>(WithAlpha(*source));
    auto to = std::make_shared<std::vector<u8>>(from->size());
    const int stride = static_cast<int>(size.width * 4);
    return {[=] {
                const int width = static_cast<int>(size.width);
                const int height = static_cast<int>(size.height);
                if (turn == Turn::Mirror)
                    libyuv::ARGBMirror(from->data(), stride, to->data(), stride, width, height);
                else
                    libyuv::ARGBRotate(from->data(), stride, to->data(), stride, width, height,
                                       libyuv::kRotate180);
            },
            [=] {
                return FaultOf(PictureOf(to->data(), size, size_t{4} * size.width, 4), *source,
                               turn);
            }};
}
#endif

#if defined(TAVRIX_BENCH_VIPS)
// Into a block of memory that the library takes anew each time.
Work VipsTurn(Size size, Turn turn)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    auto drawn = std::make_shared<std::shared_ptr<void>>();
    return {[=] {
                drawn->reset();
                VipsImage* from = vips_image_new_from_memory(
                    source->bytes.data(), source->bytes.size(), static_cast<int>(size.width),
                    static_cast<int>(size.height), 3, VIPS_FORMAT_UCHAR);
                VipsImage* to = nullptr;
                if (vips_rot(from, &to, turn == Turn::Quarter ? VIPS_ANGLE_D90 : VIPS_ANGLE_D180,
                             nullptr) == 0) {
                    size_t bytes = 0;
                    *drawn = std::shared_ptr<void>(vips_image_write_to_memory(to, &bytes), g_free);
                    g_object_unref(to);
                }
                g_object_unref(from);
            },
            [=]() -> std::string {
                const Size turned = Turned(size, turn);
                if (*drawn == nullptr)
                    return vips_error_buffer();
                return FaultOf(PictureOf(drawn->get(), turned, size_t{3} * turned.width, 3),
                               *source, turn);
            }};
}
#endif

void AddOpenCv([[maybe_unused]] const std::string& name, [[maybe_unused]] Size size,
               [[maybe_unused]] Turn turn)
{
#if defined(TAVRIX_BENCH_OPENCV)
    AddPeer(name, "opencv-8uc3", [=] { return OpenCvTurn(size, turn); });
#else
    AddMissing(name, "opencv-8uc3", OpenCvPackage);
#endif
}

void AddVips([[maybe_unused]] const std::string& name, [[maybe_unused]] Size size,
             [[maybe_unused]] Turn turn)
{
#if defined(TAVRIX_BENCH_VIPS)
    AddPeer(
        name, "vips", [=] { return VipsTurn(size, turn); }, Clock::Process);
#else
    AddMissing(name, "vips", VipsPackage);
#endif
}

void AddLibYuv([[maybe_unused]] const std::string& name, [[maybe_unused]] Size size,
               [[maybe_unused]] Turn turn)
{
#if defined(TAVRIX_BENCH_LIBYUV)
    AddPeer(name, "libyuv-32", [=] { return LibYuvTurn(size, turn); });
#else
    AddMissing(name, "libyuv-32", LibYuvPackage);
#endif
}

void AddQuarter(Size size)
{
    const std::string name = "Rotated/90/" + Name(size);
    AddOurs(name, [=] { return OurTurn(size, Turn::Quarter); });
    AddOpenCv(name, size, Turn::Quarter);
    AddVips(name, size, Turn::Quarter);
    AddLimit(name, size);
}

void AddHalf(Size size)
{
    const std::string name = "Rotated/180/" + Name(size);
    AddOurs(name, [=] { return OurTurn(size, Turn::Half); });
    AddOpenCv(name, size, Turn::Half);
    AddLibYuv(name, size, Turn::Half);
    AddVips(name, size, Turn::Half);
    AddLimit(name, size);
}

// Exchanges lines and moves no pixel.
void AddFlip(Size size)
{
    const std::string name = "FlipVertical/" + Name(size);
    AddOurs(name, [=] { return OurFlip(size, Turn::UpsideDown); });
    AddOpenCv(name, size, Turn::UpsideDown);
    AddLimit(name, size);
}

// In place; the others write another picture.
void AddMirror(Size size)
{
    const std::string name = "FlipHorizontal/" + Name(size);
    AddOurs(name, [=] { return OurFlip(size, Turn::Mirror); });
    AddOpenCv(name, size, Turn::Mirror);
    AddLibYuv(name, size, Turn::Mirror);
    AddLimit(name, size);
}

} // namespace

void AddTurns()
{
    for (const Size size : Sizes) {
        AddQuarter(size);
        AddHalf(size);
        AddFlip(size);
        AddMirror(size);
    }
}

} // namespace bench
