// The codec library bound to an output: its destination, its errors and its life. The library
// leaves its calls by a jump to `failure` when it gives up; whoever calls it sets that jump first
// and keeps no local object with a destructor meanwhile. Plain data.
#pragma once

#include "standard-plugins/common/device/OutputFile.h"

#include <setjmp.h>
#include <stdio.h> // the codec's header takes FILE as known

#ifdef _WIN32
#define HAVE_BOOLEAN // the device's own, of another width than the codec's
#endif
#include <jpeglib.h>

// Behind the codec's own header: its numbers depend on the configuration that stands there.
#include <jerror.h>

struct JpegWriting {
    jmp_buf failure;
    /// What the encode comes to; set before each jump.
    WriteProblem problem;
    jpeg_compress_struct codec;
    jpeg_error_mgr errors;
    jpeg_destination_mgr destination;
    OutputFile output;
    JOCTET block[4096];
};

/// Binds the codec's record to this one; makes nothing. For zeroed memory.
void BindWriting(JpegWriting* writing);
/// Leaves the encode with `problem`.
[[noreturn]] void LeaveWriting(JpegWriting* writing, WriteProblem problem);
/// Gives everything back; right in every state, also after a jump.
void CloseWriting(JpegWriting* writing);
