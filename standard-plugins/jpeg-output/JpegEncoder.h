// Writes the host's picture as a JPEG of colour, a row at a time. A baseline file leaves the
// encoder as its rows come. A progressive one is made from the coefficients of the whole picture,
// which the encoder holds meanwhile; what they take is computed before and refused above a limit:
// 512 MB, or the number of megabytes under `JpegOutputMemory` in the settings.
#pragma once

#include <tavrix/plugin.h>

/// How many pixels share a colour. The numbers are stored in the settings.
enum class ChromaSampling : uint32_t {
    Automatic, // every pixel has its own from quality 90 on, every four share one below
    Every444,
    Two422,
    Four420
};

/// What PutImage hands on, and what was chosen.
struct JpegOrder {
    const TavrixChar* path;
    PluginStreamRecord* stream;
    TavrixImageHandle image;
    RasterFunctionTable* rasters;
    PaletteFunctionTable* palettes;
    TavrixProgressCallback progress;
    TavrixMessageCallback message;
    /// 1 to 100, the codec library's scale.
    uint32_t quality;
    ChromaSampling sampling;
    bool progressive;
    /// The most that a progressive file's coefficients may take.
    uint32_t megabytes;
};

/// PluginDone once the whole file stands. Negative otherwise: then nothing is left of what was
/// begun, a file of that name is as it was, and the user has been told.
int32_t WriteJpegPicture(const JpegOrder& order);
