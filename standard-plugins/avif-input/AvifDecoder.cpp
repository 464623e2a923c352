#include "standard-plugins/avif-input/AvifDecoder.h"

#include "standard-plugins/avif-input/AvifRows.h"
#include "standard-plugins/avif-input/AvifSource.h"
#include "standard-plugins/common/device/BackgroundDialog.h"
#include "standard-plugins/common/frames/FrameMemory.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/reading/ExifOrientation.h"

#include <stdlib.h>

namespace
{

// The most that the library takes as this limit, and more than the memory allowed usually holds.
constexpr uint32_t mostPixels = 1u << 28;
// The table of a sequence's frames is made whole though only the first is shown.
constexpr uint32_t mostFrames = 1u << 16;

const BackgroundSettings backgroundSettings = BACKGROUND_SETTINGS("AvifInput");

const FrameMemory frameMemory = {
    FRAME_MEMORY_SETTING("AvifInputMemory"),
    {PLUGIN_TEXT("This AVIF takes more memory than allowed. The setting AvifInputMemory holds the "
                 "limit in megabytes."),
     PLUGIN_TEXT("この AVIF は許可された量を超えるメモリを必要とします。"
                 "設定 AvifInputMemory が上限 (MB) です。")},
    {PLUGIN_TEXT("AVIF reader"), PLUGIN_TEXT("AVIF 読み込み")}};

struct AvifDecode {
    AvifLibrary library;
    AvifSource source;
    avifDecoder* decoder;
    FrameProgress progress;
    LineWriter lines;
    AvifRows rows;
};

int32_t Parse(AvifDecode* decode)
{
    if (!OpenAvif(&decode->library))
        return PluginFailed;
    decode->decoder = decode->library.createDecoder();
    if (!decode->decoder)
        return PluginNoMemory;
    avifDecoder& decoder = *decode->decoder;
    decoder.maxThreads = 1;
    decoder.allowIncremental = AVIF_TRUE;
    decoder.ignoreExif = AVIF_TRUE;
    decoder.ignoreXMP = AVIF_TRUE;
    decoder.imageSizeLimit = mostPixels;
    decoder.imageDimensionLimit = largestPictureSide;
    decoder.imageCountLimit = mostFrames;
    // Widespread older writers leave out what the strict flags ask for.
    decoder.strictFlags = AVIF_STRICT_DISABLED;
    decode->library.setSource(&decoder, &decode->source.io);
    return decode->library.parse(&decoder) == AVIF_RESULT_OK ? PluginDone : PluginFailed;
}

// The frame in the form that it is coded in; twice for one of tiles, whose parts are decoded one by
// one into the whole.
uint64_t FrameBytes(const avifDecoder& decoder)
{
    const avifImage& image = *decoder.image;
    const uint64_t luma = uint64_t{image.width} * image.height * (image.depth > 8 ? 2 : 1);
    uint64_t bytes = luma;
    if (image.yuvFormat == AVIF_PIXEL_FORMAT_YUV420)
        bytes += luma / 2;
    else if (image.yuvFormat == AVIF_PIXEL_FORMAT_YUV422)
        bytes += luma;
    else if (image.yuvFormat != AVIF_PIXEL_FORMAT_YUV400)
        bytes += 2 * luma;
    return decoder.alphaPresent ? bytes + luma : bytes;
}

int32_t DecodeFrame(AvifDecode* decode, const ReadOrder& order, uint32_t* rowCount)
{
    avifDecoder& decoder = *decode->decoder;
    const int32_t allowed = AllowFrame(frameMemory, FrameBytes(decoder), order.get, order.message);
    if (allowed < 0)
        return allowed;
    // What is coded inside may claim another size than the boxes.
    decoder.imageSizeLimit = decoder.image->width * decoder.image->height;
    decode->source.waits = true;
    const avifResult decoded = decode->library.nextImage(&decoder);
    if (decoded != AVIF_RESULT_OK && decoded != AVIF_RESULT_WAITING_ON_IO)
        return PluginFailed;
    *rowCount = decode->library.decodedRows(&decoder);
    return *rowCount > 0 ? PluginDone : PluginFailed;
}

int32_t RunDecode(AvifDecode* decode, const ReadOrder& order)
{
    const int32_t opened = OpenLines(&decode->lines, order.rasters, order.image);
    if (opened < 0)
        return opened;
    StartFrameProgress(&decode->progress, order.progress);
    const int32_t copied = OpenAvifSource(&decode->source, order.stream, &decode->progress);
    if (copied < 0)
        return copied;
    const int32_t parsed = Parse(decode);
    if (parsed < 0)
        return parsed;
    uint32_t rowCount = 0;
    const int32_t decoded = DecodeFrame(decode, order, &rowCount);
    if (decoded < 0)
        return decoded;
    const avifImage& frame = *decode->decoder->image;
    const int32_t begun =
        OpenAvifRows(&decode->rows, decode->library, frame,
                     ReadBackground(backgroundSettings, order.get), &decode->lines);
    if (begun < 0)
        return begun;
    const int32_t put = PutAvifRows(&decode->rows, rowCount, &decode->progress);
    return put < 0 || rowCount == frame.height ? put : PluginFailed;
}

int32_t RunHeader(AvifDecode* decode, PluginStreamRecord* stream, uint32_t* width, uint32_t* height)
{
    const int32_t copied = OpenAvifSource(&decode->source, stream, nullptr);
    if (copied < 0)
        return copied;
    const int32_t parsed = Parse(decode);
    if (parsed < 0)
        return parsed;
    AvifGeometry geometry;
    if (!FindAvifGeometry(decode->library, *decode->decoder->image, &geometry))
        return PluginFailed;
    const bool swapped = SwapsSides(geometry.orientation);
    *width = swapped ? geometry.part.height : geometry.part.width;
    *height = swapped ? geometry.part.width : geometry.part.height;
    return PluginDone;
}

void CloseDecode(AvifDecode* decode)
{
    CloseAvifRows(&decode->rows);
    if (decode->decoder)
        decode->library.destroyDecoder(decode->decoder);
    CloseAvif(&decode->library);
    CloseAvifSource(&decode->source);
    free(decode);
}

} // namespace

int32_t ReadAvifPicture(const ReadOrder& order)
{
    auto* decode = static_cast<AvifDecode*>(calloc(1, sizeof(AvifDecode)));
    if (!decode)
        return PluginNoMemory;
    const int32_t result = RunDecode(decode, order);
    CloseDecode(decode);
    return result;
}

int32_t ReadAvifSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height)
{
    auto* decode = static_cast<AvifDecode*>(calloc(1, sizeof(AvifDecode)));
    if (!decode)
        return PluginNoMemory;
    const int32_t result = RunHeader(decode, stream, width, height);
    CloseDecode(decode);
    return result;
}

int32_t AskAvifBackground(TavrixWindow owner, TavrixPutPropertyCallback put,
                          TavrixGetPropertyCallback get)
{
    return AskBackground(backgroundSettings, owner, put, get);
}
