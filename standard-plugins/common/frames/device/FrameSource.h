// A reader's stream as a temporary file, copied under the eyes of the user (FrameProgress). Plain
// data; zeroed memory is a closed one.
#pragma once

#include "standard-plugins/common/device/TemporaryFile.h"
#include "standard-plugins/common/frames/FrameProgress.h"

struct FrameSource {
    StreamReader reader;
    TemporaryFile file;
};

constexpr uint32_t enoughBytes = 12;

/// Copies the stream to its end. Where its first read gives at least `enoughBytes`, `looksRight`
/// may refuse them before anything is copied. PluginDone or a negative result; CloseFrameSource is
/// right after either. `progress` may be null.
int32_t OpenFrameSource(FrameSource* source, PluginStreamRecord* stream, FrameProgress* progress,
                        bool (*looksRight)(const uint8_t* bytes));
void CloseFrameSource(FrameSource* source);
