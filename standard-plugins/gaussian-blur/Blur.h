// Blurs the host's picture in place, a line at a time: a line is locked, read into the rows that
// the blur holds and let go, and a line is written once every line that it depends on was read.
#pragma once

#include "standard-plugins/common/PluginInfo.h"

#include <tavrix/plugin.h>

/// What Effect hands on, and what was chosen.
struct BlurOrder {
    TavrixImageHandle image;
    RasterFunctionTable* rasters;
    TavrixProgressCallback progress;
    TavrixMessageCallback message;
    /// The radius (sigma) in tenths of a pixel.
    uint32_t radius;
};

/// PluginDone once the whole picture is blurred. Negative otherwise, and the user has been told
/// unless it was he who gave up: then the lines above the one where it ended are blurred, and those
/// below are as they were. Pictures of other depths than 24 bits are refused and not touched.
int32_t BlurPicture(const BlurOrder& order, const BilingualText& caption);
