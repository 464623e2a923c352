#include "standard-plugins/jpeg-input/JpegReading.h"

#include "standard-plugins/common/LineWriter.h"
#include "standard-plugins/common/PluginResult.h"

namespace
{

// The end mark of a JPEG, given once more each time the codec asks beyond the end.
const JOCTET endMark[2] = {0xff, JPEG_EOI};

JpegReading* ReadingOf(j_common_ptr codec)
{
    return static_cast<JpegReading*>(codec->client_data);
}

void OnError(j_common_ptr codec)
{
    const bool isMemory =
        codec->err->msg_code == JERR_OUT_OF_MEMORY || codec->err->msg_code == JERR_NO_BACKING_STORE;
    LeaveReading(ReadingOf(codec), isMemory ? PluginNoMemory : PluginFailed);
}

// Where scans are gathered, what came of them can be shown, once there is a row of blocks.
bool CanGoOnWithoutData(const JpegReading& reading)
{
    const jpeg_decompress_struct& codec = reading.codec;
    const bool hasRow =
        codec.input_scan_number > 1 || (codec.input_scan_number == 1 && codec.input_iMCU_row > 0);
    return reading.endsGently && hasRow;
}

// A restart marker out of order (JWRN_MUST_RESYNC) is not among them: where it costs data, the scan
// runs dry in front of the next one, and that is told too.
bool LosesPixels(int warning)
{
    switch (warning) {
    case JWRN_ARITH_BAD_CODE:
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_JPEG_EOF:
        return true;
    default:
        return false;
    }
}

// The data of a scan ended before its last block: a marker stands there that is no restart marker.
// From here on the decoder would make up the rest of the picture, however large it claims to be.
bool HasRunDry(const jpeg_decompress_struct& codec, int warning)
{
    const bool isRestart = codec.unread_marker >= JPEG_RST0 && codec.unread_marker <= JPEG_RST0 + 7;
    return warning == JWRN_HIT_MARKER && !isRestart;
}

void OnMessage(j_common_ptr common, int level)
{
    constexpr int warningLevel = -1;
    const int warning = common->err->msg_code;
    if (level != warningLevel || !LosesPixels(warning))
        return;
    JpegReading* reading = ReadingOf(common);
    reading->damaged = true;
    if (HasRunDry(reading->codec, warning) && !CanGoOnWithoutData(*reading))
        LeaveReading(reading, PluginFailed);
}

void SaySilence(j_common_ptr) {}

void OnStart(j_decompress_ptr) {}

boolean OnFill(j_decompress_ptr codec)
{
    JpegReading* reading = ReadingOf(reinterpret_cast<j_common_ptr>(codec));
    if (FillReader(&reading->reader)) {
        codec->src->next_input_byte = reading->reader.buffer;
        codec->src->bytes_in_buffer = reading->reader.filled;
        return TRUE;
    }
    if (!CanGoOnWithoutData(*reading))
        LeaveReading(reading, PluginFailed);
    reading->damaged = true;
    codec->src->next_input_byte = endMark;
    codec->src->bytes_in_buffer = sizeof endMark;
    return TRUE;
}

void OnSkip(j_decompress_ptr codec, long count)
{
    if (count <= 0)
        return;
    auto left = static_cast<size_t>(count);
    while (left > codec->src->bytes_in_buffer) {
        left -= codec->src->bytes_in_buffer;
        (void)OnFill(codec);
    }
    codec->src->next_input_byte += left;
    codec->src->bytes_in_buffer -= left;
}

void OnEnd(j_decompress_ptr) {}

} // namespace

int32_t OpenReading(JpegReading* reading, PluginStreamRecord* stream)
{
    reading->result = OpenReader(&reading->reader, stream);
    if (reading->result < 0)
        return reading->result;
    reading->codec.err = jpeg_std_error(&reading->errors);
    reading->codec.client_data = reading;
    reading->errors.error_exit = OnError;
    reading->errors.emit_message = OnMessage;
    reading->errors.output_message = SaySilence;
    reading->source.init_source = OnStart;
    reading->source.fill_input_buffer = OnFill;
    reading->source.skip_input_data = OnSkip;
    reading->source.resync_to_restart = jpeg_resync_to_restart;
    reading->source.term_source = OnEnd;
    return PluginDone;
}

void ReadJpegHeader(JpegReading* reading)
{
    jpeg_create_decompress(&reading->codec);
    reading->codec.src = &reading->source;
    WatchMarkers(&reading->codec, &reading->markers);
    (void)jpeg_read_header(&reading->codec, TRUE);
    if (!IsPictureSize(reading->codec.image_width, reading->codec.image_height))
        LeaveReading(reading, PluginFailed);
}

void LeaveReading(JpegReading* reading, int32_t result)
{
    reading->result = result;
    longjmp(reading->failure, 1);
}

void CloseReading(JpegReading* reading)
{
    jpeg_destroy_decompress(&reading->codec);
    FreeMarkers(&reading->markers);
    CloseReader(&reading->reader);
}
