// The rows of the library's picture, brought to the host's: colours converted, laid over the
// background and on the canvas, turned upright.
#pragma once

#include "standard-plugins/common/reading/ColorConversion.h"
#include "standard-plugins/common/reading/OrientedLines.h"
#include "standard-plugins/common/reading/PlacedFrame.h"

struct WebpRows {
    PlacedFrame place;
    Background ground;
    ColorConversion colors;
    OrientedLines oriented;
    /// The library's rows are blue, green, red, alpha; else without alpha.
    bool hasAlpha;
    /// A row of the frame converted, the same laid over the background, a line of the canvas.
    uint8_t* converted;
    uint8_t* row;
    uint8_t* line;
    /// Lines of the canvas that were put.
    uint32_t linesDone;
};

/// `place` and `ground` are set. The results of the contract; PluginNoMemory.
int32_t OpenWebpRows(WebpRows* rows, LineWriter* lines, bool hasAlpha, uint32_t orientation,
                     const void* profile, size_t profileBytes);
/// Whether line `linesDone` can be put once the library has `frameRows` rows.
bool CanPutLine(const WebpRows& rows, uint32_t frameRows);
/// Puts line `linesDone`; `picture` are the frame's rows, `stride` bytes apart. False with the
/// lines' result set.
bool PutNextLine(WebpRows* rows, const uint8_t* picture, size_t stride);
void CloseWebpRows(WebpRows* rows);
