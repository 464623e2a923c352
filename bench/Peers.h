// The libraries that other programs would use for the same work, each with one thread. The build
// defines TAVRIX_BENCH_OPENCV and its like for those that are there.
#pragma once

#include "bench/Pictures.h"

#if defined(TAVRIX_BENCH_OPENCV)
#include <opencv2/core.hpp>
#endif

namespace bench
{

// The Debian packages that bring them.
inline constexpr const char* OpenCvPackage = "libopencv-imgproc-dev";
inline constexpr const char* LibYuvPackage = "libyuv-dev";
inline constexpr const char* PixmanPackage = "libpixman-1-dev";
inline constexpr const char* GraphicsMagickPackage = "libgraphicsmagick1-dev";
inline constexpr const char* LeptonicaPackage = "libleptonica-dev";
inline constexpr const char* VipsPackage = "libvips-dev";

/// Starts the libraries that must be started. False when one does not start.
bool StartPeers(const char* program);
void EndPeers();

#if defined(TAVRIX_BENCH_OPENCV)
/// A matrix of its own with the picture, of three channels or of four.
cv::Mat MatOf(const Picture& picture, int channels = 3);
Picture PictureOf(const cv::Mat& mat);
#endif

} // namespace bench
