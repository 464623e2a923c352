// Puts decoded lines into the host's picture, one locked line at a time. The picture is 24 bits
// deep.
//
// A picture of up to 64 million pixels gets all its lines at once, so that a file that breaks off
// shows its good lines in a picture of the right size. A larger one begins with lines for that many
// pixels and doubles as the lines really come: a header alone can then never make the host allocate
// gigabytes, and a large picture that breaks off ends shortly behind its good lines. One whose
// lines come from the last to the first grows upwards in the same way, and keeps its lower part.
//
// No line stays locked between two calls. Where the host fails to give lines the picture is freed:
// after such a failure its line count and its lines need not agree.
#pragma once

#include <tavrix/plugin.h>

constexpr uint32_t largestPictureSide = 65535;

/// A record of the lines' state; plain data, nothing to give back.
struct LineWriter {
    RasterFunctionTable* rasters;
    TavrixImageHandle image;
    uint32_t width;
    uint32_t height;
    /// Lines that the picture has by now; 0 before the first is asked for.
    uint32_t present;
    /// The lines come from the last one on: those that the picture has are the lowest.
    bool fromTheEnd;
    /// Why LockLine or UnlockLine failed.
    int32_t result;
};

/// Sides of 1 to 65,535 pixels.
bool IsPictureSize(uint32_t width, uint32_t height);
/// PluginDone, or PluginBadArgument for a null picture or a table without the functions used here.
/// The picture is not touched.
int32_t OpenLines(LineWriter* lines, RasterFunctionTable* rasters, TavrixImageHandle image);
/// The size of the picture to come. Nothing is allocated before the first LockLine.
void SetLinesSize(LineWriter* lines, uint32_t width, uint32_t height);
/// Behind SetLinesSize: the lines will be asked for from the last to the first.
void SetLinesFromTheEnd(LineWriter* lines);
/// The bytes of line `y`, or null with `result` set. At most one line is locked at a time.
uint8_t* LockLine(LineWriter* lines, uint32_t y);
/// False with `result` set when the host could not keep the line.
bool UnlockLine(LineWriter* lines, uint32_t y);
