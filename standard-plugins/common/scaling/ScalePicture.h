// Gives the host's picture another size: what the SCALE plugins of this folder have in common. They
// differ in the kernel alone, and in what they say about themselves.
//
// The kernels are
//     k(x) = 1 - |x| for |x| < 1 (bilinear);
//     k(x) = 3/2 |x|^3 - 5/2 |x|^2 + 1 for |x| < 1 and -1/2 |x|^3 + 5/2 |x|^2 - 4 |x| + 2 from
//     there to |x| < 2 (bicubic, Catmull-Rom);
//     k(x) = sinc(x) sinc(x / 3) for |x| < 3 (Lanczos), with sinc(x) = sin(pi x) / (pi x);
// separable, in each direction stretched by the ratio where the picture becomes smaller.
// (E. Catmull and R. Rom, A Class of Local Interpolating Splines, 1974; R. Keys, Cubic Convolution
// Interpolation for Digital Image Processing, 1981, with a = -1/2; C. Duchon, Lanczos Filtering in
// One and Two Dimensions, 1979; K. Turkowski, Filters for Common Resampling Tasks, 1990.) Pixels
// are squares: pixel j of the result has its middle at (j + 1/2) of its ratio. Weights are divided
// by their sum. Edges are mirrored. All is summed up in floats and rounded once at the end, to the
// nearest. The means of areas have no kernel and need no library: see AreaReducer.
//
// The result is built in a picture of its own, whose lines may lie in files as the host's do, and
// takes the place of the given one when it is whole. Until then the given picture is as it was,
// whatever fails and whenever the user gives up.
#pragma once

#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/scaling/ZimgPass.h"

#include <tavrix/plugin.h>

constexpr uint64_t mostScaledPixels = uint64_t{1} << 30;

/// What ScaleImage hands on.
struct ScaleOrder {
    TavrixImageHandle image;
    RasterFunctionTable* rasters;
    uint32_t width;
    uint32_t height;
    TavrixProgressCallback progress;
    TavrixMessageCallback message;
    ScaleKernel kernel;
};

/// PluginDone when the picture has its new size, also where it had it before. Negative otherwise,
/// and the user has been told unless it was he who gave up: the picture is as it was, but where the
/// host fails in the taking over itself. Refused: depths other than 24 bits, sizes without pixels,
/// sides beyond 65,535, more than mostScaledPixels.
int32_t ScalePicture(const ScaleOrder& order, const BilingualText& caption);
