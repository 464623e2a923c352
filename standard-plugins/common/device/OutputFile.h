// Where a writing plugin's bytes go: a file of the device, or the host's stream. Through one buffer
// of 64 KB; nothing is ever read back, so that a stream which only measures serves as well. Forward
// only, but for what a file's format has to put right in earlier bytes (OverwriteOutput).
//
// A file is written beside its target, under a name of its own in the same folder, and takes the
// target's place in FinishOutput, at a stroke and once it is whole and on the disk. Until then the
// old file stays as it was, and whatever fails, CloseOutput deletes what was begun. The name is
// made fresh, so that no file of the user is ever overwritten by it; it is short enough for every
// path that the target itself has room for. A target that is a folder or write-protected is refused
// before anything is made.
//
// Order: OpenOutput, any number of WriteOutput and OverwriteOutput, FinishOutput after the last byte, CloseOutput in
// every case. The first failure stays: what follows it fails too and does nothing. Plain data, so
// that a codec's jump may pass over it; zeroed memory is a closed one. Worker thread of the export.
#pragma once

#include "standard-plugins/common/WriteProblem.h"

#include <stddef.h>
#include <windows.h>

struct OutputFile {
    /// Exactly one of the two: the stream, or an open file.
    PluginStreamRecord* stream;
    HANDLE file;
    uint8_t* buffer;
    size_t held;
    /// Bytes given to WriteOutput so far: the offset of the next one.
    uint64_t position;
    /// The first failure; None while all is well.
    WriteProblem problem;
    /// Both empty for a stream. `beside` is empty again when its file is gone.
    TavrixChar target[MAX_PATH];
    TavrixChar beside[MAX_PATH];
};

/// Of `path` and `stream` exactly one is not null, as the host gives them. False with `problem`
/// set: Arguments, Memory, Folder, Protected, DiskFull, Making.
bool OpenOutput(OutputFile* output, const TavrixChar* path, PluginStreamRecord* stream);
/// Takes all bytes or fails with `problem` DiskFull or Writing.
bool WriteOutput(OutputFile* output, const void* bytes, size_t count);
/// Puts `count` bytes in the place of those from `offset` on, all of which were written before: of a
/// file alone. What is written next follows the last byte as before. Fails with `problem` Stream
/// for a stream, Arguments for bytes that are not there yet, DiskFull or Writing.
bool OverwriteOutput(OutputFile* output, uint64_t offset, const void* bytes, size_t count);
/// Writes what is still in the buffer and lets the finished file take its place. True when the
/// target is whole. Otherwise `problem` is set and the old file is as it was.
bool FinishOutput(OutputFile* output);
/// Gives everything back and deletes a file that was not finished. Right in every state.
void CloseOutput(OutputFile* output);
