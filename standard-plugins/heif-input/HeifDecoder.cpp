#include "standard-plugins/heif-input/HeifDecoder.h"

#include "standard-plugins/common/device/BackgroundDialog.h"
#include "standard-plugins/common/frames/FrameMemory.h"
#include "standard-plugins/common/frames/FramePixels.h"
#include "standard-plugins/common/LineWriter.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/heif-input/HeifColors.h"
#include "standard-plugins/heif-input/HeifSource.h"

#include <math.h>
#include <stdlib.h>

namespace
{

const BackgroundSettings backgroundSettings = BACKGROUND_SETTINGS("HeifInput");

const FrameMemory frameMemory = {
    FRAME_MEMORY_SETTING("HeifInputMemory"),
    {PLUGIN_TEXT("This HEIF takes more memory than allowed. The setting HeifInputMemory holds the "
                 "limit in megabytes."),
     PLUGIN_TEXT("この HEIF は許可された量を超えるメモリを必要とします。"
                 "設定 HeifInputMemory が上限 (MB) です。")},
    {PLUGIN_TEXT("HEIF reader"), PLUGIN_TEXT("HEIF 読み込み")}};

struct HeifDecode {
    HeifLibrary library;
    HeifSource source;
    heif_context* context;
    heif_image_handle* picture;
    heif_image* image;
    FrameProgress progress;
    LineWriter lines;
    FramePixels pixels;
    uint32_t width;
    uint32_t height;
    bool hasAlpha;
};

// The coded planes of half-size colours, and the picture as red, green and blue; while one becomes
// the other a third of their kind may exist.
uint32_t BytesPerPixel(bool hasAlpha, bool deep)
{
    const uint32_t bytes = hasAlpha ? 8 : 6;
    return deep ? 2 * bytes : bytes;
}

// The library's limit counts the pixels of a square with this side. It keeps the tiles of a picture
// small too, of which the handle says nothing.
int LargestSquare(TavrixGetPropertyCallback get)
{
    const uint64_t pixels = FrameMemoryLimit(frameMemory, get) / BytesPerPixel(false, false);
    return static_cast<int>(sqrt(static_cast<double>(pixels)));
}

bool IsTooLarge(const heif_error& error)
{
    return error.code == heif_error_Memory_allocation_error &&
           error.subcode == heif_suberror_Security_limit_exceeded;
}

// `message` may be null.
int32_t Parse(HeifDecode* decode, int largestSquare, TavrixMessageCallback message)
{
    if (!OpenHeif(&decode->library))
        return PluginFailed;
    const HeifLibrary& library = decode->library;
    decode->context = library.createContext();
    if (!decode->context)
        return PluginNoMemory;
    library.limitSize(decode->context, largestSquare);
    library.limitThreads(decode->context, 0);
    heif_error error =
        library.read(decode->context, &decode->source.reader, &decode->source, nullptr);
    if (error.code == heif_error_Ok)
        error = library.findPrimary(decode->context, &decode->picture);
    if (IsTooLarge(error)) {
        TellFrameTooLarge(frameMemory, message);
        return PluginNoMemory;
    }
    return error.code == heif_error_Ok ? PluginDone : PluginFailed;
}

int32_t TakeSize(HeifDecode* decode)
{
    const HeifLibrary& library = decode->library;
    const int width = library.width(decode->picture);
    const int height = library.height(decode->picture);
    decode->width = width > 0 ? static_cast<uint32_t>(width) : 0;
    decode->height = height > 0 ? static_cast<uint32_t>(height) : 0;
    decode->hasAlpha = library.hasAlpha(decode->picture) != 0;
    return IsPictureSize(decode->width, decode->height) ? PluginDone : PluginFailed;
}

int32_t DecodeImage(HeifDecode* decode)
{
    const HeifLibrary& library = decode->library;
    heif_decoding_options* options = library.createOptions();
    if (!options)
        return PluginNoMemory;
    options->convert_hdr_to_8bit = 1;
    const heif_error error = library.decode(
        decode->picture, &decode->image, heif_colorspace_RGB,
        decode->hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB, options);
    library.freeOptions(options);
    return error.code == heif_error_Ok && decode->image ? PluginDone : PluginFailed;
}

bool OpenPixels(HeifDecode* decode, const Background& ground)
{
    HeifColors colors;
    ReadHeifColors(&colors, decode->library, decode->picture, decode->image);
    FrameForm form = {};
    form.layout = decode->hasAlpha ? ColorLayout::Rgba8 : ColorLayout::Rgb8;
    form.premultiplied = decode->library.isPremultiplied(decode->picture) != 0;
    form.profile = colors.profile;
    form.profileBytes = colors.bytes;
    form.mostPixels = decode->width;
    const bool opened = OpenFramePixels(&decode->pixels, form, ground);
    FreeHeifColors(&colors);
    return opened;
}

int32_t PutRow(HeifDecode* decode, const uint8_t* source, uint32_t y)
{
    uint8_t* line = LockLine(&decode->lines, y);
    if (!line)
        return decode->lines.result;
    StoreFramePixels(&decode->pixels, source, decode->width, line);
    if (!UnlockLine(&decode->lines, y))
        return decode->lines.result;
    return ReportFramePart(&decode->progress, y + 1, decode->height) ? PluginDone : PluginStopped;
}

// The size of what was decoded counts: the boxes may have told another.
int32_t PutRows(HeifDecode* decode, const Background& ground)
{
    const HeifLibrary& library = decode->library;
    const int width = library.imageWidth(decode->image, heif_channel_interleaved);
    const int height = library.imageHeight(decode->image, heif_channel_interleaved);
    int stride = 0;
    const uint8_t* row = library.plane(decode->image, heif_channel_interleaved, &stride);
    if (!row || width < 1 || height < 1 ||
        !IsPictureSize(static_cast<uint32_t>(width), static_cast<uint32_t>(height)) ||
        stride < width * (decode->hasAlpha ? 4 : 3))
        return PluginFailed;
    decode->width = static_cast<uint32_t>(width);
    decode->height = static_cast<uint32_t>(height);
    if (!OpenPixels(decode, ground))
        return PluginNoMemory;
    SetLinesSize(&decode->lines, decode->width, decode->height);
    for (uint32_t y = 0; y < decode->height; ++y, row += stride) {
        const int32_t result = PutRow(decode, row, y);
        if (result < 0)
            return result;
    }
    return PluginDone;
}

int32_t RunDecode(HeifDecode* decode, const ReadOrder& order)
{
    const int32_t opened = OpenLines(&decode->lines, order.rasters, order.image);
    if (opened < 0)
        return opened;
    StartFrameProgress(&decode->progress, order.progress);
    const int32_t copied = OpenHeifSource(&decode->source, order.stream, &decode->progress);
    if (copied < 0)
        return copied;
    const int32_t parsed = Parse(decode, LargestSquare(order.get), order.message);
    if (parsed < 0)
        return parsed;
    const int32_t sized = TakeSize(decode);
    if (sized < 0)
        return sized;
    const bool deep = decode->library.lumaBits(decode->picture) > 8;
    const int32_t allowed =
        AllowFrame(frameMemory,
                   uint64_t{decode->width} * decode->height * BytesPerPixel(decode->hasAlpha, deep),
                   order.get, order.message);
    if (allowed < 0)
        return allowed;
    const int32_t decoded = DecodeImage(decode);
    if (decoded < 0)
        return decoded;
    const int32_t put = PutRows(decode, ReadBackground(backgroundSettings, order.get));
    const bool sound = decode->library.warnings(decode->image, 0, nullptr, 0) == 0;
    return put < 0 || sound ? put : PluginFailed;
}

int32_t RunHeader(HeifDecode* decode, PluginStreamRecord* stream)
{
    const int32_t copied = OpenHeifSource(&decode->source, stream, nullptr);
    if (copied < 0)
        return copied;
    const int32_t parsed = Parse(decode, static_cast<int>(largestPictureSide), nullptr);
    return parsed < 0 ? parsed : TakeSize(decode);
}

void CloseDecode(HeifDecode* decode)
{
    const HeifLibrary& library = decode->library;
    CloseFramePixels(&decode->pixels);
    if (decode->image)
        library.releaseImage(decode->image);
    if (decode->picture)
        library.releaseHandle(decode->picture);
    if (decode->context)
        library.freeContext(decode->context);
    CloseHeif(&decode->library);
    CloseHeifSource(&decode->source);
    free(decode);
}

} // namespace

int32_t ReadHeifPicture(const ReadOrder& order)
{
    auto* decode = static_cast<HeifDecode*>(calloc(1, sizeof(HeifDecode)));
    if (!decode)
        return PluginNoMemory;
    const int32_t result = RunDecode(decode, order);
    CloseDecode(decode);
    return result;
}

int32_t ReadHeifSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height)
{
    auto* decode = static_cast<HeifDecode*>(calloc(1, sizeof(HeifDecode)));
    if (!decode)
        return PluginNoMemory;
    const int32_t result = RunHeader(decode, stream);
    *width = decode->width;
    *height = decode->height;
    CloseDecode(decode);
    return result;
}

int32_t AskHeifBackground(TavrixWindow owner, TavrixPutPropertyCallback put,
                          TavrixGetPropertyCallback get)
{
    return AskBackground(backgroundSettings, owner, put, get);
}
