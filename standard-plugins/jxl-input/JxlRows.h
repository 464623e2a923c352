// The library's parts of rows as the host's lines.
#pragma once

#include "standard-plugins/common/frames/FramePixels.h"
#include "standard-plugins/common/frames/FrameProgress.h"
#include "standard-plugins/common/LineWriter.h"

#include <jxl/decode.h>

/// Plain data; zeroed memory is a closed one.
struct JxlRows {
    LineWriter* lines;
    FrameProgress* progress;
    FramePixels pixels;
    uint32_t width;
    uint32_t height;
    uint32_t channels;
    /// The samples of a part as bytes.
    uint8_t* bytes;
    uint64_t pixelsDone;
    /// PluginDone until something fails; then the parts that still come are left.
    int32_t result;
};

/// `profile` may be null. False without memory.
bool OpenJxlRows(JxlRows* rows, const JxlBasicInfo& info, const void* profile, size_t profileBytes,
                 const Background& ground);
/// What the library calls, with a JxlRows and floats.
void PutJxlPart(void* rows, size_t x, size_t y, size_t count, const void* pixels);
void CloseJxlRows(JxlRows* rows);
