// A stream's bytes in a temporary file of the device, for formats that are not read forward. The
// file lies in the device's temporary folder under a fresh name, is nobody else's, and goes with
// CloseTemporaryFile. Plain data; zeroed memory is a closed one. Worker thread of the export.
#pragma once

#include "standard-plugins/common/StreamReader.h"

#include <windows.h>

struct TemporaryFile {
    HANDLE file;
    uint64_t size;
    /// Where the file's own position is, so that reads in order need not set it.
    uint64_t position;
    TavrixChar path[MAX_PATH];
};

/// Copies what is left of the stream, to its end. `mayGoOn` is asked for each piece of 64 KB, with
/// the bytes copied so far; it may be null, and false from it ends with PluginFailed. PluginDone,
/// or PluginFailed when the file cannot be made or written; then it is closed.
int32_t CopyToTemporaryFile(TemporaryFile* file, StreamReader* reader,
                            bool (*mayGoOn)(void* self, uint64_t bytes), void* self);
/// Reads `count` bytes from `offset` on; gives how many there were, fewer only at the end or on a
/// failure.
size_t ReadTemporaryFile(TemporaryFile* file, uint64_t offset, void* buffer, size_t count);
void CloseTemporaryFile(TemporaryFile* file);
