// A part of a temporary file as a stream that is read forward, so that what reads streams reads it
// too. Nothing to give back; the file has to outlive it.
#pragma once

#include "standard-plugins/common/device/TemporaryFile.h"

struct TemporaryStream {
    /// What the reader gets; it points to this record, which must not move.
    PluginStreamRecord record;
    TemporaryFile* file;
    uint64_t at;
    uint64_t end;
};

/// The bytes of `file` from `from` up to `end`, or to the file's end if that is nearer.
void OpenTemporaryStream(TemporaryStream* stream, TemporaryFile* file, uint64_t from, uint64_t end);
