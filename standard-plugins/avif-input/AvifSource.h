// What libavif reads from: the stream in a temporary file, of which the pieces that the library
// asks for are in memory, one at a time. It asks for the boxes and then for each coded item at
// once, so the largest item, not the file, decides; an item of more than 64 MB is refused. The
// library keeps a copy of the items it decodes.
#pragma once

#include "standard-plugins/common/frames/device/FrameSource.h"

#include <avif/avif.h>

struct AvifSource {
    FrameSource source;
    avifIO io;
    /// The piece that was handed out last.
    uint8_t* piece;
    size_t room;
    /// From now on a piece that the file does not hold whole is one to wait for: the library then
    /// keeps what it decoded before. It is set once the boxes are read.
    bool waits;
};

/// PluginDone or a negative result; CloseAvifSource is right after either. `progress` may be null.
int32_t OpenAvifSource(AvifSource* source, PluginStreamRecord* stream, FrameProgress* progress);
void CloseAvifSource(AvifSource* source);
