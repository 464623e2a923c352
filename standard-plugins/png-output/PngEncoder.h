// Writes the host's picture as a PNG of true colour, 8 bits a channel, a row at a time: no picture
// is held beside the host's. An interlaced file is written in seven passes, for each of which the
// lines that it needs are read anew.
#pragma once

#include <tavrix/plugin.h>

/// What PutImage hands on, and what was chosen.
struct PngOrder {
    const TavrixChar* path;
    PluginStreamRecord* stream;
    TavrixImageHandle image;
    RasterFunctionTable* rasters;
    PaletteFunctionTable* palettes;
    TavrixProgressCallback progress;
    TavrixMessageCallback message;
    /// 0 to 9, as the compressor counts.
    uint32_t compression;
    bool interlaced;
};

/// PluginDone once the whole file stands. Negative otherwise: then nothing is left of what was
/// begun, a file of that name is as it was, and the user has been told.
int32_t WritePngPicture(const PngOrder& order);
