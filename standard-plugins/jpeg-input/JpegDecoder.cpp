#include "standard-plugins/jpeg-input/JpegDecoder.h"

#include "standard-plugins/common/LineWriter.h"
#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/ProgressThrottle.h"
#include "standard-plugins/common/reading/ExifOrientation.h"
#include "standard-plugins/common/reading/OrientedLines.h"
#include "standard-plugins/jpeg-input/JpegColors.h"
#include "standard-plugins/jpeg-input/JpegReading.h"

#include <limits.h>
#include <stdlib.h>
#include <string.h>

namespace
{

constexpr uint32_t defaultMegabytes = 512;
// What the codec may take beside the coefficients.
constexpr uint32_t besidesMegabytes = 16;
// Each scan walks over the whole picture, so that a small file of very many scans would take hours.
// No encoder comes near this number.
constexpr int mostScans = 200;
// How many scans a progressive file usually has: a guess that only the bar depends on.
constexpr uint32_t usualScans = 10;
constexpr uint32_t stopIcon = 16;

const BilingualText tooLargeText = {
    PLUGIN_TEXT("This progressive JPEG takes more memory than allowed. The setting JpegInputMemory "
                "holds the limit in megabytes."),
    PLUGIN_TEXT("このプログレッシブ JPEG は許可された量を超えるメモリを必要とします。"
                "設定 JpegInputMemory が上限 (MB) です。")};
const BilingualText captionText = {PLUGIN_TEXT("JPEG reader"), PLUGIN_TEXT("JPEG 読み込み")};

struct JpegDecode {
    JpegReading reading;
    jpeg_progress_mgr monitor;
    LineWriter lines;
    OrientedLines turned;
    JpegColors colors;
    uint32_t divisor;
    ProgressThrottle progress;
    TavrixMessageCallback message;
    TavrixGetPropertyCallback get;
    // The scans of a file of several are being gathered.
    bool gathering;
    uint32_t rowsGathered;
};

uint32_t MegabyteLimit(TavrixGetPropertyCallback get)
{
    Variant item = {};
    item.name = PLUGIN_TEXT("JpegInputMemory");
    item.type = VariantUnsigned;
    if (!get || get(&item) < 1 || item.type != VariantUnsigned || item.value == 0)
        return defaultMegabytes;
    // What the codec's own limit, a long, can hold on every system.
    constexpr uint32_t most = (INT_MAX >> 20) - besidesMegabytes;
    return item.value < most ? static_cast<uint32_t>(item.value) : most;
}

uint64_t CoefficientBytes(const jpeg_decompress_struct& codec)
{
    uint64_t blocks = 0;
    for (int i = 0; i < codec.num_components; ++i) {
        const jpeg_component_info& component = codec.comp_info[i];
        const auto across = static_cast<uint64_t>(component.h_samp_factor);
        const auto down = static_cast<uint64_t>(component.v_samp_factor);
        blocks += (component.width_in_blocks + across - 1) / across * across *
                  ((component.height_in_blocks + down - 1) / down * down);
    }
    return blocks * sizeof(JBLOCK);
}

void RefuseLargeScans(JpegDecode* decode)
{
    jpeg_decompress_struct& codec = decode->reading.codec;
    const uint64_t limit = static_cast<uint64_t>(MegabyteLimit(decode->get)) << 20;
    codec.mem->max_memory_to_use = static_cast<long>(limit + (uint64_t{besidesMegabytes} << 20));
    if (!jpeg_has_multiple_scans(&codec) || CoefficientBytes(codec) <= limit)
        return;
    if (decode->message)
        (void)decode->message(InLanguage(tooLargeText), InLanguage(captionText), stopIcon);
    LeaveReading(&decode->reading, PluginNoMemory);
}

// Called by the codec for each row of blocks. Gathering the scans is the first half of the work;
// how many scans come nobody knows, so the bar stops at the half and waits there.
void OnCodecProgress(j_common_ptr common)
{
    auto* reading = static_cast<JpegReading*>(common->client_data);
    auto* decode = reinterpret_cast<JpegDecode*>(reading);
    if (!decode->gathering)
        return;
    const jpeg_decompress_struct& codec = reading->codec;
    if (codec.input_scan_number > mostScans)
        LeaveReading(reading, PluginFailed);
    const uint64_t usualRows = static_cast<uint64_t>(codec.total_iMCU_rows) * usualScans;
    const uint32_t rows = ++decode->rowsGathered;
    const uint64_t counted = rows < usualRows ? rows : usualRows;
    const auto done = static_cast<uint32_t>(counted * codec.image_height / usualRows);
    const bool goesOn = rows < usualRows || rows % (codec.total_iMCU_rows / 10 + 1) != 0
                            ? ReportProgress(&decode->progress, done)
                            : ReportProgressNow(&decode->progress, done);
    if (!goesOn)
        LeaveReading(reading, PluginFailed);
}

void StartCodec(JpegDecode* decode)
{
    jpeg_decompress_struct& codec = decode->reading.codec;
    const bool inked = codec.jpeg_color_space == JCS_CMYK || codec.jpeg_color_space == JCS_YCCK;
    codec.out_color_space = inked ? JCS_CMYK : JCS_EXT_BGR;
    codec.dct_method = JDCT_ISLOW;
    codec.scale_num = 1;
    codec.scale_denom = decode->divisor;
    decode->monitor.progress_monitor = OnCodecProgress;
    codec.progress = &decode->monitor;
    decode->gathering = jpeg_has_multiple_scans(&codec) != 0;
    decode->reading.endsGently = decode->gathering;
    (void)jpeg_start_decompress(&codec);
    decode->gathering = false;
}

// Inks lie in `row` and go to `light`; other colours stay in `row`.
const uint8_t* ConvertRow(JpegDecode* decode, uint8_t* row, uint8_t* light)
{
    const jpeg_decompress_struct& codec = decode->reading.codec;
    if (codec.out_color_space != JCS_CMYK) {
        ConvertJpegRow(decode->colors, row, codec.output_width);
        return row;
    }
    ConvertJpegInk(decode->colors, row, codec.output_width, codec.saw_Adobe_marker != FALSE, light);
    return light;
}

uint8_t* MakeRow(jpeg_decompress_struct* codec, uint32_t components)
{
    return codec->mem->alloc_sarray(reinterpret_cast<j_common_ptr>(codec), JPOOL_IMAGE,
                                    codec->output_width * components, 1)[0];
}

void OpenTurned(JpegDecode* decode)
{
    const jpeg_decompress_struct& codec = decode->reading.codec;
    if (!OpenOrientedLines(&decode->turned, &decode->lines, codec.output_width, codec.output_height,
                           OrientationOf(decode->reading.markers)))
        LeaveReading(&decode->reading, PluginNoMemory);
}

// A row is decoded before its line is locked: the picture is allocated only for a file that brings
// one, and no line is locked when the codec jumps.
void ReadRows(JpegDecode* decode, uint32_t doneBefore)
{
    jpeg_decompress_struct& codec = decode->reading.codec;
    JSAMPROW row = MakeRow(&codec, static_cast<uint32_t>(codec.output_components));
    uint8_t* light = MakeRow(&codec, 3);
    OpenTurned(decode);
    while (codec.output_scanline < codec.output_height) {
        const uint32_t y = codec.output_scanline;
        if (jpeg_read_scanlines(&codec, &row, 1) != 1)
            LeaveReading(&decode->reading, PluginFailed);
        if (!PutOrientedRow(&decode->turned, y, ConvertRow(decode, row, light)))
            LeaveReading(&decode->reading, decode->lines.result);
        if (!ReportProgress(&decode->progress, doneBefore + y + 1))
            LeaveReading(&decode->reading, PluginFailed);
    }
}

void ReadAll(JpegDecode* decode, TavrixProgressCallback progress)
{
    jpeg_decompress_struct& codec = decode->reading.codec;
    ReadJpegHeader(&decode->reading);
    RefuseLargeScans(decode);
    const uint32_t doneBefore = jpeg_has_multiple_scans(&codec) ? codec.image_height : 0;
    const uint32_t rows = (codec.image_height + decode->divisor - 1) / decode->divisor;
    StartProgress(&decode->progress, progress, doneBefore + rows);
    OpenJpegColors(&decode->colors, decode->reading);
    StartCodec(decode);
    ReadRows(decode, doneBefore);
    // To the end mark: a file that breaks off behind its last row is still a broken one.
    (void)jpeg_finish_decompress(&codec);
    decode->reading.result = decode->reading.damaged ? PluginFailed : PluginDone;
}

int32_t RunDecode(JpegDecode* decode, const ReadOrder& order)
{
    const int32_t opened = OpenReading(&decode->reading, order.stream);
    if (opened < 0)
        return opened;
    const int32_t linesOpened = OpenLines(&decode->lines, order.rasters, order.image);
    if (linesOpened < 0)
        return linesOpened;
    decode->message = order.message;
    decode->get = order.get;
    if (setjmp(decode->reading.failure) == 0)
        ReadAll(decode, order.progress);
    // Of a file that breaks off too, what came of it is shown.
    if (!FinishOrientedLines(&decode->turned))
        return decode->lines.result;
    return decode->reading.result;
}

int32_t RunHeader(JpegReading* reading, PluginStreamRecord* stream)
{
    const int32_t opened = OpenReading(reading, stream);
    if (opened < 0)
        return opened;
    if (setjmp(reading->failure) == 0) {
        ReadJpegHeader(reading);
        reading->result = PluginDone;
    }
    return reading->result;
}

} // namespace

int32_t ReadJpegPicture(const ReadOrder& order)
{
    return ReadSmallJpeg(order, 1);
}

int32_t ReadSmallJpeg(const ReadOrder& order, uint32_t divisor)
{
    auto* decode = static_cast<JpegDecode*>(calloc(1, sizeof(JpegDecode)));
    if (!decode)
        return PluginNoMemory;
    decode->divisor = divisor;
    const int32_t result = RunDecode(decode, order);
    CloseOrientedLines(&decode->turned);
    CloseJpegColors(&decode->colors);
    CloseReading(&decode->reading);
    free(decode);
    return result;
}

int32_t ReadJpegSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height)
{
    auto* reading = static_cast<JpegReading*>(calloc(1, sizeof(JpegReading)));
    if (!reading)
        return PluginNoMemory;
    const int32_t result = RunHeader(reading, stream);
    const bool turned = SwapsSides(OrientationOf(reading->markers));
    *width = turned ? reading->codec.image_height : reading->codec.image_width;
    *height = turned ? reading->codec.image_width : reading->codec.image_height;
    CloseReading(reading);
    free(reading);
    return result;
}
