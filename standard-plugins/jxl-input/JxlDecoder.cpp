#include "standard-plugins/jxl-input/JxlDecoder.h"

#include "standard-plugins/common/device/BackgroundDialog.h"
#include "standard-plugins/common/frames/FrameMemory.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/jxl-input/JxlColors.h"
#include "standard-plugins/jxl-input/JxlRows.h"
#include "standard-plugins/jxl-input/JxlSource.h"

#include <stdlib.h>

namespace
{

constexpr uint32_t bytesPerPixel = 16;
constexpr uint32_t bytesPerExtraSample = 16;

const BackgroundSettings backgroundSettings = BACKGROUND_SETTINGS("JxlInput");

const FrameMemory frameMemory = {
    FRAME_MEMORY_SETTING("JxlInputMemory"),
    {PLUGIN_TEXT("This JPEG XL takes more memory than allowed. The setting JxlInputMemory holds "
                 "the limit in megabytes."),
     PLUGIN_TEXT("この JPEG XL は許可された量を超えるメモリを必要とします。"
                 "設定 JxlInputMemory が上限 (MB) です。")},
    {PLUGIN_TEXT("JPEG XL reader"), PLUGIN_TEXT("JPEG XL 読み込み")}};

struct JxlDecode {
    JxlLibrary library;
    JxlDecoder* decoder;
    JxlSource source;
    JxlBasicInfo info;
    JxlColors colors;
    FrameProgress progress;
    LineWriter lines;
    JxlRows rows;
    bool delivers;
};

int32_t OpenDecoder(JxlDecode* decode, PluginStreamRecord* stream, int events)
{
    const int32_t opened = OpenReader(&decode->source.reader, stream);
    if (opened < 0)
        return opened;
    if (!OpenJxl(&decode->library))
        return PluginFailed;
    decode->decoder = decode->library.create(nullptr);
    if (!decode->decoder)
        return PluginNoMemory;
    // To be chosen before the decoder has read anything; it changes premultiplied pictures alone.
    if (decode->library.setUnpremultiply(decode->decoder, JXL_TRUE) != JXL_DEC_SUCCESS ||
        decode->library.subscribe(decode->decoder, events) != JXL_DEC_SUCCESS)
        return PluginFailed;
    return PluginDone;
}

int32_t TakeInfo(JxlDecode* decode)
{
    if (decode->library.getInfo(decode->decoder, &decode->info) != JXL_DEC_SUCCESS ||
        !IsPictureSize(decode->info.xsize, decode->info.ysize))
        return PluginFailed;
    return PluginDone;
}

int32_t AllowPicture(JxlDecode* decode, const ReadOrder& order)
{
    const JxlBasicInfo& info = decode->info;
    const uint64_t bytes =
        uint64_t{info.xsize} * info.ysize *
        (bytesPerPixel + uint64_t{bytesPerExtraSample} * info.num_extra_channels);
    return AllowFrame(frameMemory, bytes, order.get, order.message);
}

int32_t StartRows(JxlDecode* decode, const ReadOrder& order)
{
    decode->rows.lines = &decode->lines;
    decode->rows.progress = &decode->progress;
    const bool opened =
        OpenJxlRows(&decode->rows, decode->info, decode->colors.profile, decode->colors.bytes,
                    ReadBackground(backgroundSettings, order.get));
    if (!opened)
        return PluginNoMemory;
    SetLinesSize(&decode->lines, decode->info.xsize, decode->info.ysize);
    const JxlPixelFormat format = {decode->rows.channels, JXL_TYPE_FLOAT, JXL_NATIVE_ENDIAN, 0};
    decode->delivers = decode->library.setOutput(decode->decoder, &format, PutJxlPart,
                                                 &decode->rows) == JXL_DEC_SUCCESS;
    return decode->delivers ? PluginDone : PluginFailed;
}

// Where the stream has ended: what came of the frame, if the library can show it.
int32_t BreakOff(JxlDecode* decode)
{
    if (decode->delivers)
        (void)decode->library.flush(decode->decoder);
    return PluginFailed;
}

int32_t Feed(JxlDecode* decode)
{
    if (!FeedJxl(&decode->source, decode->library, decode->decoder))
        return BreakOff(decode);
    return ReportStreamBytes(&decode->progress, decode->source.bytes) ? PluginDone : PluginStopped;
}

// One step of the decoder. PluginNothing: it goes on.
int32_t Step(JxlDecode* decode, const ReadOrder& order)
{
    const JxlDecoderStatus status = decode->library.process(decode->decoder);
    if (decode->delivers && decode->rows.result < 0)
        return decode->rows.result;
    int32_t result = PluginFailed;
    switch (status) {
    case JXL_DEC_NEED_MORE_INPUT:
        result = Feed(decode);
        break;
    case JXL_DEC_BASIC_INFO:
        result = TakeInfo(decode);
        if (result >= PluginDone)
            result = AllowPicture(decode, order);
        break;
    case JXL_DEC_COLOR_ENCODING:
        ChooseJxlColors(&decode->colors, decode->library, decode->decoder, decode->info);
        return PluginNothing;
    case JXL_DEC_NEED_IMAGE_OUT_BUFFER:
        result = StartRows(decode, order);
        break;
    case JXL_DEC_FULL_IMAGE:
        return PluginDone;
    default:
        break;
    }
    return result < 0 ? result : int32_t{PluginNothing};
}

int32_t RunDecode(JxlDecode* decode, const ReadOrder& order)
{
    const int32_t linesOpened = OpenLines(&decode->lines, order.rasters, order.image);
    if (linesOpened < 0)
        return linesOpened;
    const int32_t opened = OpenDecoder(
        decode, order.stream, JXL_DEC_BASIC_INFO | JXL_DEC_COLOR_ENCODING | JXL_DEC_FULL_IMAGE);
    if (opened < 0)
        return opened;
    StartFrameProgress(&decode->progress, order.progress);
    int32_t result = PluginNothing;
    while (result == PluginNothing)
        result = Step(decode, order);
    return result;
}

int32_t RunHeader(JxlDecode* decode, PluginStreamRecord* stream)
{
    const int32_t opened = OpenDecoder(decode, stream, JXL_DEC_BASIC_INFO);
    if (opened < 0)
        return opened;
    JxlDecoderStatus status = decode->library.process(decode->decoder);
    while (status == JXL_DEC_NEED_MORE_INPUT &&
           FeedJxl(&decode->source, decode->library, decode->decoder))
        status = decode->library.process(decode->decoder);
    return status == JXL_DEC_BASIC_INFO ? TakeInfo(decode) : int32_t{PluginFailed};
}

void CloseDecode(JxlDecode* decode)
{
    if (decode->decoder)
        decode->library.destroy(decode->decoder);
    CloseJxlRows(&decode->rows);
    FreeJxlColors(&decode->colors);
    CloseJxl(&decode->library);
    CloseReader(&decode->source.reader);
    free(decode);
}

} // namespace

int32_t ReadJxlPicture(const ReadOrder& order)
{
    auto* decode = static_cast<JxlDecode*>(calloc(1, sizeof(JxlDecode)));
    if (!decode)
        return PluginNoMemory;
    const int32_t result = RunDecode(decode, order);
    CloseDecode(decode);
    return result;
}

int32_t ReadJxlSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height)
{
    auto* decode = static_cast<JxlDecode*>(calloc(1, sizeof(JxlDecode)));
    if (!decode)
        return PluginNoMemory;
    const int32_t result = RunHeader(decode, stream);
    *width = decode->info.xsize;
    *height = decode->info.ysize;
    CloseDecode(decode);
    return result;
}

int32_t AskJxlBackground(TavrixWindow owner, TavrixPutPropertyCallback put,
                         TavrixGetPropertyCallback get)
{
    return AskBackground(backgroundSettings, owner, put, get);
}
