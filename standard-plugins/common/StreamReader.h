// Forward reading of a plugin's stream through one buffer of 64 KB, so that a decoder's small reads
// do not become small reads of a socket. Never seeks and never asks for the size. A stream may give
// fewer bytes than asked; only no bytes, or a failure, is the end, and it stays the end. Plain
// data, so that a decoder's jump out of an error may pass over it; CloseReader gives the buffer
// back.
#pragma once

#include <tavrix/plugin.h>

#include <stddef.h>

struct StreamReader {
    PluginStreamRecord* stream;
    uint8_t* buffer;
    /// Bytes of the buffer that hold data, and how many of them were taken.
    uint32_t filled;
    uint32_t taken;
    bool ended;
};

/// PluginDone, PluginNoMemory, or PluginBadArgument for a null stream or one that cannot read.
int32_t OpenReader(StreamReader* reader, PluginStreamRecord* stream);
/// Also right for a reader that is all zero.
void CloseReader(StreamReader* reader);
/// Replaces the buffer's contents by the next bytes; false at the end of the stream.
bool FillReader(StreamReader* reader);
/// Exactly `count` bytes; false when the stream ends before them.
bool ReadExactly(StreamReader* reader, uint8_t* out, size_t count);
