#include "bench/Peers.h"

#include <cstdio>
#include <cstring>

#if defined(TAVRIX_BENCH_GRAPHICSMAGICK)
#include <magick/api.h>
#endif
#if defined(TAVRIX_BENCH_VIPS)
#include <vips/vips.h>
#endif

namespace bench
{

bool StartPeers([[maybe_unused]] const char* program)
{
#if defined(TAVRIX_BENCH_OPENCV)
    cv::setNumThreads(1);
#endif
#if defined(TAVRIX_BENCH_GRAPHICSMAGICK)
    InitializeMagick(program);
    SetMagickResourceLimit(ThreadsResource, 1);
#endif
#if defined(TAVRIX_BENCH_VIPS)
    if (VIPS_INIT(program) != 0) {
        std::fprintf(stderr, "pixel_bench: %s\n", vips_error_buffer());
        return false;
    }
    vips_concurrency_set(1);
    // It would answer the second of two like calls from its cache.
    vips_cache_set_max(0);
#endif
    return true;
}

void EndPeers()
{
#if defined(TAVRIX_BENCH_VIPS)
    vips_shutdown();
#endif
#if defined(TAVRIX_BENCH_GRAPHICSMAGICK)
    DestroyMagick();
#endif
}

#if defined(TAVRIX_BENCH_OPENCV)
cv::Mat MatOf(const Picture& picture, int channels)
{
    const int height = static_cast<int>(picture.size.height);
    const int width = static_cast<int>(picture.size.width);
    cv::Mat mat(height, width, CV_8UC(channels));
    const std::vector<u8> four = channels == 4 ? WithAlpha(picture) : std::vector<u8>();
    const std::vector<u8>& bytes = channels == 4 ? four : picture.bytes;
    std::memcpy(mat.data, bytes.data(), bytes.size());
    return mat;
}

Picture PictureOf(const cv::Mat& mat)
{
    return PictureOf(mat.data, {static_cast<u32>(mat.cols), static_cast<u32>(mat.rows)}, mat.step,
                     static_cast<u32>(mat.channels()));
}
#endif

} // namespace bench
