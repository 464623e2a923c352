#include "standard-plugins/webp-input/WebpDecoder.h"

#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/reading/ExifOrientation.h"
#include "standard-plugins/webp-input/WebpBitstream.h"
#include "standard-plugins/webp-input/WebpContainer.h"
#include "standard-plugins/webp-input/WebpLibrary.h"
#include "standard-plugins/webp-input/WebpRows.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr size_t leastPiece = 512;
constexpr size_t mostPiece = 1u << 20;
constexpr size_t frameHeaderBytes = 16;

const BilingualText tooLargeText = {
    PLUGIN_TEXT("This WebP takes more memory than allowed. The setting WebpInputMemory holds the "
                "limit in megabytes."),
    PLUGIN_TEXT("この WebP は許可された量を超えるメモリを必要とします。"
                "設定 WebpInputMemory が上限 (MB) です。")};
const BilingualText captionText = {PLUGIN_TEXT("WebP reader"), PLUGIN_TEXT("WebP 読み込み")};
const PluginSetting memorySetting = {PLUGIN_TEXT("WebpInputMemory"), 1, 4096, 512};

struct WebpDecode {
    WebpLibrary library;
    WebPDecoderConfig config;
    WebPIDecoder* decoder;
    WebpContainer container;
    WebpRows rows;
    LineWriter lines;
    // The frame is one of an animation, whose size stands in its own header.
    bool animated;
    bool hasAlpha;
    // The picture's chunk has come; a file has one of them.
    bool hasBitstream;
    // The picture's data came to their end, and the library found them right.
    bool whole;
    // Rows wait for the orientation.
    bool waits;
    bool rowsOpen;
    uint8_t* piece;
    // All that the library was given so far. It would copy it all with each piece.
    uint8_t* data;
    size_t dataBytes;
    size_t dataRoom;
    TavrixMessageCallback message;
    TavrixGetPropertyCallback get;
};

// ---- Rows -----------------------------------------------------------------------------------

// Where rows wait, decoding them is the first half of the work.
bool ReportRows(WebpDecode* decode, uint32_t decoded)
{
    const uint64_t height = decode->rows.place.canvasHeight;
    const uint64_t frame = decode->rows.place.height;
    if (!decode->waits)
        return ReportPatiently(&decode->container.input, decode->rows.linesDone, height);
    const uint64_t put = decode->rows.linesDone;
    return ReportPatiently(&decode->container.input, decoded * height + put * frame,
                           2 * height * frame);
}

int32_t OpenRows(WebpDecode* decode)
{
    decode->rowsOpen = true;
    const WebpContainer& container = decode->container;
    return OpenWebpRows(&decode->rows, &decode->lines, decode->hasAlpha, container.orientation,
                        container.profile, container.profileBytes);
}

// Puts the lines that the library's rows allow by now.
int32_t PutLines(WebpDecode* decode)
{
    int height = 0;
    int stride = 0;
    const uint8_t* picture =
        decode->library.rows(decode->decoder, &height, nullptr, nullptr, &stride);
    if (!picture || height <= 0)
        return PluginDone;
    const auto decoded = static_cast<uint32_t>(height);
    if (!decode->rowsOpen) {
        const int32_t result = OpenRows(decode);
        if (result < 0)
            return result;
    }
    while (CanPutLine(decode->rows, decoded)) {
        if (!PutNextLine(&decode->rows, picture, static_cast<size_t>(stride)))
            return decode->lines.result;
        if (!ReportRows(decode, decoded))
            return PluginFailed;
    }
    return PluginDone;
}

int32_t PutOrWait(WebpDecode* decode)
{
    if (!decode->waits)
        return PutLines(decode);
    int height = 0;
    (void)decode->library.rows(decode->decoder, &height, nullptr, nullptr, nullptr);
    return ReportRows(decode, height > 0 ? static_cast<uint32_t>(height) : 0) ? int32_t{PluginDone}
                                                                              : PluginFailed;
}

// ---- The picture's data -----------------------------------------------------------------------

bool IsMemoryAllowed(WebpDecode* decode, bool lossless)
{
    const uint64_t pixels = uint64_t{decode->rows.place.width} * decode->rows.place.height;
    // Lossy data have their alpha as a plane of its own first.
    const uint64_t pixelBytes = (decode->hasAlpha ? 4 : 3) + (lossless ? 4 : decode->hasAlpha);
    if (pixels * pixelBytes >> 20 <= ReadSetting(memorySetting, decode->get))
        return true;
    constexpr uint32_t stopIcon = 16;
    if (decode->message)
        (void)decode->message(InLanguage(tooLargeText), InLanguage(captionText), stopIcon);
    return false;
}

int32_t OpenDecoder(WebpDecode* decode, bool lossless)
{
    if (!IsMemoryAllowed(decode, lossless))
        return PluginNoMemory;
    decode->piece = static_cast<uint8_t*>(malloc(mostPiece));
    if (!decode->piece)
        return PluginNoMemory;
    WebPDecoderConfig& config = decode->config;
    if (!decode->library.initialize(&config, WEBP_DECODER_ABI_VERSION))
        return PluginFailed;
    config.output.colorspace = decode->hasAlpha ? MODE_BGRA : MODE_BGR;
    decode->decoder = decode->library.open(nullptr, 0, &config);
    decode->waits = decode->container.awaitsExif;
    return decode->decoder ? PluginDone : PluginNoMemory;
}

bool KeepData(WebpDecode* decode, const uint8_t* bytes, size_t count)
{
    if (count > decode->dataRoom - decode->dataBytes) {
        const size_t room = 2 * decode->dataRoom + count;
        auto* data = static_cast<uint8_t*>(realloc(decode->data, room));
        if (!data)
            return false;
        decode->data = data;
        decode->dataRoom = room;
    }
    memcpy(decode->data + decode->dataBytes, bytes, count);
    decode->dataBytes += count;
    return true;
}

// Gives bytes to the library. PluginNothing: more are wanted.
int32_t Append(WebpDecode* decode, const uint8_t* bytes, size_t count)
{
    if (!KeepData(decode, bytes, count))
        return PluginNoMemory;
    const VP8StatusCode status =
        decode->library.update(decode->decoder, decode->data, decode->dataBytes);
    const bool goesOn = status == VP8_STATUS_OK || status == VP8_STATUS_SUSPENDED;
    decode->whole = status == VP8_STATUS_OK;
    const int32_t result = PutOrWait(decode);
    if (result < 0)
        return result;
    if (!goesOn)
        return status == VP8_STATUS_OUT_OF_MEMORY ? PluginNoMemory : PluginFailed;
    return decode->whole ? PluginDone : PluginNothing;
}

// A hundredth of the chunk at a time, for the progress.
int32_t AppendChunk(WebpDecode* decode, WebpChunk* chunk)
{
    size_t most = chunk->bytes / 100;
    most = most < leastPiece ? leastPiece : most > mostPiece ? mostPiece : most;
    int32_t result = PluginNothing;
    while (result == PluginNothing && chunk->left > 0) {
        const size_t wanted = most < chunk->left ? most : static_cast<size_t>(chunk->left);
        const size_t got = ReadChunkBytes(&decode->container, chunk, decode->piece, wanted);
        if (decode->container.input.stopped)
            return PluginFailed;
        result = got > 0 ? Append(decode, decode->piece, got) : int32_t{PluginFailed};
        if (got < wanted && result == PluginNothing)
            result = PluginFailed;
    }
    return result;
}

// The alpha of lossy data comes first. It is told to the library only where the sizes are known.
int32_t ReadAlpha(WebpDecode* decode, WebpChunk* chunk)
{
    const PlacedFrame& place = decode->rows.place;
    // Raw alpha is a byte a pixel, and compression that needs much more is none.
    const uint64_t most = uint64_t{4} * place.width * place.height + 65536;
    if (decode->decoder || place.width == 0 || chunk->bytes > most)
        return PluginFailed;
    decode->hasAlpha = true;
    int32_t result = OpenDecoder(decode, false);
    if (result == PluginDone)
        result = Append(decode, chunk->header, chunkHeaderBytes);
    return result < 0 ? result : AppendChunk(decode, chunk);
}

bool PlaceFrame(WebpDecode* decode, const WebpBitstream& bitstream)
{
    PlacedFrame& place = decode->rows.place;
    const WebpContainer& container = decode->container;
    if (!decode->animated) {
        const bool extended = container.canvasWidth != 0;
        place = {extended ? container.canvasWidth : bitstream.width,
                 extended ? container.canvasHeight : bitstream.height,
                 0,
                 0,
                 0,
                 0};
        place.width = place.canvasWidth;
        place.height = place.canvasHeight;
    }
    return place.width == bitstream.width && place.height == bitstream.height &&
           IsPictureSize(place.canvasWidth, place.canvasHeight);
}

int32_t ReadBitstream(WebpDecode* decode, WebpChunk* chunk)
{
    uint8_t start[bitstreamStart] = {};
    WebpBitstream bitstream;
    const bool lossless = chunk->name == ChunkName("VP8L");
    if (decode->hasBitstream || (lossless && decode->decoder))
        return PluginFailed;
    decode->hasBitstream = true;
    const size_t got = ReadChunkBytes(&decode->container, chunk, start, sizeof start);
    // Lossless pictures may be shorter than what a lossy one begins with.
    if (got < (lossless ? size_t{5} : sizeof start) ||
        !ReadBitstreamStart(start, chunk->bytes, lossless, &bitstream) ||
        !PlaceFrame(decode, bitstream))
        return PluginFailed;
    int32_t result = PluginNothing;
    if (!decode->decoder) {
        decode->hasAlpha = bitstream.hasAlpha;
        result = OpenDecoder(decode, lossless);
    }
    if (result >= 0)
        result = Append(decode, chunk->header, chunkHeaderBytes);
    if (result == PluginNothing)
        result = Append(decode, start, got);
    return result == PluginNothing ? AppendChunk(decode, chunk) : result;
}

// ---- The container's chunks ---------------------------------------------------------------------

// One that may belong to the first frame; everything else is passed over.
int32_t ReadPart(WebpDecode* decode, WebpChunk* chunk)
{
    if (decode->whole)
        return PluginDone;
    switch (chunk->name) {
    case ChunkName("ALPH"):
        return ReadAlpha(decode, chunk);
    case ChunkName("VP8 "):
    case ChunkName("VP8L"):
        return ReadBitstream(decode, chunk);
    default:
        return PluginDone;
    }
}

// The header of a frame (RFC 9649, 2.7.1.1): its place by halves, its sides less one.
bool ReadFrameHeader(WebpDecode* decode, WebpChunk* frame)
{
    uint8_t bytes[frameHeaderBytes];
    if (ReadChunkBytes(&decode->container, frame, bytes, sizeof bytes) < sizeof bytes)
        return false;
    const WebpContainer& container = decode->container;
    PlacedFrame& place = decode->rows.place;
    place = {container.canvasWidth,   container.canvasHeight,  2 * Number24(bytes),
             2 * Number24(bytes + 3), Number24(bytes + 6) + 1, Number24(bytes + 9) + 1};
    decode->animated = true;
    return IsPictureSize(place.canvasWidth, place.canvasHeight) && IsCanvasFilled(place) &&
           place.left + place.width <= place.canvasWidth &&
           place.top + place.height <= place.canvasHeight;
}

// The first frame's own chunks lie within its chunk.
int32_t ReadFrame(WebpDecode* decode, WebpChunk* frame)
{
    if (!ReadFrameHeader(decode, frame))
        return PluginFailed;
    WebpContainer& container = decode->container;
    const uint64_t behind = container.left - frame->left;
    while (!decode->whole && container.left - behind >= chunkHeaderBytes) {
        WebpChunk chunk;
        if (!ReadChunkHeader(&container, &chunk) || chunk.left > container.left - behind)
            return PluginFailed;
        const int32_t result = ReadPart(decode, &chunk);
        if (result < 0)
            return result;
        if (!TakeChunk(&container, &chunk))
            return PluginFailed;
    }
    frame->left = container.left - behind;
    return decode->whole ? PluginDone : PluginFailed;
}

int32_t ReadChunk(WebpDecode* decode, WebpChunk* chunk)
{
    if (chunk->name == ChunkName("ANMF"))
        return decode->whole ? PluginDone : ReadFrame(decode, chunk);
    // Alpha without the header that makes it one has no size yet and is passed over.
    const uint32_t width = decode->container.canvasWidth;
    const uint32_t height = decode->container.canvasHeight;
    if (chunk->name == ChunkName("ALPH") && !decode->whole) {
        if (!IsPictureSize(width, height))
            return width == 0 ? PluginDone : PluginFailed;
        decode->rows.place = {width, height, 0, 0, width, height};
    }
    return ReadPart(decode, chunk);
}

int32_t ReadChunks(WebpDecode* decode)
{
    WebpContainer& container = decode->container;
    if (!ReadRiffHeader(&container))
        return PluginFailed;
    while (container.left > 0) {
        WebpChunk chunk;
        if (!ReadChunkHeader(&container, &chunk))
            return PluginFailed;
        const int32_t result = ReadChunk(decode, &chunk);
        if (result < 0)
            return result;
        if (!TakeChunk(&container, &chunk))
            return PluginFailed;
    }
    return decode->whole ? PluginDone : PluginFailed;
}

// ---- The whole ----------------------------------------------------------------------------------

// The rows that waited, of a broken file too; and those that the orientation gathers.
int32_t Finish(WebpDecode* decode, int32_t result)
{
    if (decode->container.input.stopped)
        return result;
    if (decode->decoder && decode->waits && decode->lines.result >= 0) {
        const int32_t put = PutLines(decode);
        if (put < 0)
            return put;
    }
    if (decode->rowsOpen && decode->rows.oriented.lines && decode->lines.result >= 0 &&
        !FinishOrientedLines(&decode->rows.oriented))
        return decode->lines.result;
    return result;
}

int32_t RunDecode(WebpDecode* decode, const ReadOrder& order)
{
    decode->message = order.message;
    decode->get = order.get;
    decode->rows.ground = ReadBackground(webpBackground, order.get);
    int32_t result = OpenPatientReader(&decode->container.input, order.stream, order.progress);
    if (result == PluginDone)
        result = OpenLines(&decode->lines, order.rasters, order.image);
    if (result < 0)
        return result;
    if (!OpenWebpLibrary(&decode->library))
        return PluginFailed;
    result = ReadChunks(decode);
    return Finish(decode, result);
}

void CloseDecode(WebpDecode* decode)
{
    CloseWebpRows(&decode->rows);
    if (decode->decoder) {
        decode->library.close(decode->decoder);
        decode->library.freeRows(&decode->config.output);
    }
    CloseWebpLibrary(&decode->library);
    CloseContainer(&decode->container);
    free(decode->piece);
    free(decode->data);
    free(decode);
}

// The size of the canvas, or of the first picture's data in a file without one.
int32_t FindSize(WebpContainer* container, uint32_t* width, uint32_t* height)
{
    WebpChunk chunk;
    if (!ReadRiffHeader(container) || !ReadChunkHeader(container, &chunk))
        return PluginFailed;
    const bool lossless = chunk.name == ChunkName("VP8L");
    if (lossless || chunk.name == ChunkName("VP8 ")) {
        uint8_t start[bitstreamStart] = {};
        WebpBitstream bitstream;
        if (ReadChunkBytes(container, &chunk, start, sizeof start) < sizeof start ||
            !ReadBitstreamStart(start, chunk.bytes, lossless, &bitstream))
            return PluginFailed;
        *width = bitstream.width;
        *height = bitstream.height;
    } else if (chunk.name == ChunkName("VP8X") && TakeChunk(container, &chunk)) {
        // How the picture is turned is told behind it.
        while (container->awaitsExif && container->left > 0)
            if (!ReadChunkHeader(container, &chunk) || !TakeChunk(container, &chunk))
                break;
        const bool turned = SwapsSides(container->orientation);
        *width = turned ? container->canvasHeight : container->canvasWidth;
        *height = turned ? container->canvasWidth : container->canvasHeight;
    }
    return IsPictureSize(*width, *height) ? PluginDone : PluginFailed;
}

} // namespace

const BackgroundSettings webpBackground = BACKGROUND_SETTINGS("WebpInput");

int32_t ReadWebpPicture(const ReadOrder& order)
{
    auto* decode = static_cast<WebpDecode*>(calloc(1, sizeof(WebpDecode)));
    if (!decode)
        return PluginNoMemory;
    const int32_t result = RunDecode(decode, order);
    CloseDecode(decode);
    return result;
}

int32_t ReadWebpSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height)
{
    WebpContainer container = {};
    int32_t result = OpenPatientReader(&container.input, stream, nullptr);
    if (result == PluginDone)
        result = FindSize(&container, width, height);
    CloseContainer(&container);
    return result;
}
