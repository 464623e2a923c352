// Changes the tones of the host's picture in place, a line at a time.
#pragma once

#include "standard-plugins/common/PluginInfo.h"

#include <tavrix/plugin.h>

/// What AdjustImage hands on, and what was chosen.
struct ToneOrder {
    TavrixImageHandle image;
    RasterFunctionTable* rasters;
    TavrixProgressCallback progress;
    TavrixMessageCallback message;
    /// From -100 to 100.
    int32_t brightness;
    int32_t contrast;
};

/// PluginDone once the whole picture is changed. Negative otherwise, and the user has been told
/// unless it was he who gave up: then the lines above the one where it ended are changed, and those
/// below are as they were. Pictures of other depths than 24 bits are refused and not touched.
int32_t AdjustTones(const ToneOrder& order, const BilingualText& caption);
