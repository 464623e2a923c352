// The codec library bound to a stream: its source, its errors and its life. The library leaves its
// calls by a jump to `failure` when it gives up; whoever calls it sets that jump first and keeps no
// local object with a destructor meanwhile. Plain data.
#pragma once

#include "standard-plugins/common/StreamReader.h"
#include "standard-plugins/jpeg-input/JpegMarkers.h"

#include <setjmp.h>
#include <stdio.h> // the codec's header takes FILE as known

#include <jpeglib.h>

// Behind the codec's own header: its numbers depend on the configuration that stands there.
#include <jerror.h>

struct JpegReading {
    jmp_buf failure;
    /// What the decode comes to; set before each jump.
    int32_t result;
    jpeg_decompress_struct codec;
    jpeg_error_mgr errors;
    jpeg_source_mgr source;
    StreamReader reader;
    JpegMarkers markers;
    /// One marker at a time.
    uint8_t markerBytes[65533];
    /// Pixels were lost to broken data, though the decoder went on.
    bool damaged;
    /// A file of several scans: where its data end too early, what was gathered can still be shown.
    /// The end of the stream is then answered by an end mark and noted in `damaged`. While false it
    /// ends the decode.
    bool endsGently;
};

/// All of the reading but the jump and the codec's work; PluginDone or a failure.
int32_t OpenReading(JpegReading* reading, PluginStreamRecord* stream);
/// Makes the codec and reads the header. Jumps on a failure.
void ReadJpegHeader(JpegReading* reading);
/// Leaves the decode with `result`.
[[noreturn]] void LeaveReading(JpegReading* reading, int32_t result);
/// Gives everything back; right in every state, also after a jump.
void CloseReading(JpegReading* reading);
