// What libheif reads from: the stream in a temporary file. The library takes the boxes and the
// coded items that it decodes into memory, never more than the file holds.
#pragma once

#include "standard-plugins/common/frames/device/FrameSource.h"

#include <libheif/heif.h>

struct HeifSource {
    FrameSource source;
    heif_reader reader;
    uint64_t position;
};

/// PluginDone or a negative result; CloseHeifSource is right after either. `progress` may be null.
int32_t OpenHeifSource(HeifSource* source, PluginStreamRecord* stream, FrameProgress* progress);
void CloseHeifSource(HeifSource* source);
