#include "standard-plugins/gif-input/GifDecoder.h"

#include "standard-plugins/common/LineWriter.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/reading/PatientReader.h"
#include "standard-plugins/common/reading/PlacedFrame.h"
#include "standard-plugins/gif-input/GifCodeCheck.h"
#include "standard-plugins/gif-input/GifLibrary.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr size_t pixelBytes = 3;
constexpr uint32_t noIndex = 256;

struct GifDecode {
    GifLibrary library;
    GifFileType* gif;
    PatientReader input;
    LineWriter lines;
    PlacedFrame place;
    Background ground;
    // Of the frame's data: the library reads the length of a block, then the block.
    GifCodeCheck check;
    bool inFrame;
    bool inBlock;
    uint8_t lastByte;
    // Blue, green, red of each index, and how many the palette has.
    uint8_t table[noIndex][pixelBytes];
    uint32_t colorCount;
    uint32_t transparent;
    bool beyondTable;
    // A row of the frame as indexes and as pixels.
    uint8_t* indexes;
    uint8_t* row;
    uint32_t linesDone;
};

void WatchBlock(GifDecode* decode, const uint8_t* bytes, size_t count)
{
    if (decode->inBlock)
        CheckCodes(&decode->check, bytes, count);
    decode->inBlock = !decode->inBlock && count == 1 && bytes[0] != 0;
}

// The library takes no part of a block. The one in which the stream ends is filled up with zeros,
// so that the codes before them give their pixels; the count of those knows nothing of the zeros,
// and the length of the next block is not there.
int OnRead(GifFileType* gif, GifByteType* bytes, int count)
{
    auto* decode = static_cast<GifDecode*>(gif->UserData);
    if (count <= 0)
        return 0;
    const auto wanted = static_cast<size_t>(count);
    const size_t got = ReadPatiently(&decode->input, bytes, wanted);
    if (got > 0)
        decode->lastByte = bytes[got - 1];
    if (!decode->inFrame)
        return static_cast<int>(got);
    if (decode->inBlock && got < wanted) {
        CheckCodes(&decode->check, bytes, got);
        memset(bytes + got, 0, wanted - got);
        decode->inBlock = false;
        return count;
    }
    WatchBlock(decode, bytes, got);
    return static_cast<int>(got);
}

int32_t OpenGif(GifDecode* decode)
{
    if (!OpenGifLibrary(&decode->library))
        return PluginFailed;
    int error = 0;
    decode->gif = decode->library.open(decode, OnRead, &error);
    if (!decode->gif)
        return PluginFailed;
    decode->place.canvasWidth = static_cast<uint32_t>(decode->gif->SWidth);
    decode->place.canvasHeight = static_cast<uint32_t>(decode->gif->SHeight);
    return IsPictureSize(decode->place.canvasWidth, decode->place.canvasHeight) ? PluginDone
                                                                                : PluginFailed;
}

// GIF89a, 23: the flags' lowest bit says that the fourth byte is a transparent index. It counts for
// the next thing that is drawn, which may be a text.
void TakeExtension(GifDecode* decode, int label, const GifByteType* block)
{
    if (label == PLAINTEXT_EXT_FUNC_CODE)
        decode->transparent = noIndex;
    if (label == GRAPHICS_EXT_FUNC_CODE && block && block[0] == 4)
        decode->transparent = block[1] & 1 ? block[4] : noIndex;
}

bool SkipExtension(GifDecode* decode)
{
    int label = 0;
    GifByteType* block = nullptr;
    if (decode->library.extension(decode->gif, &label, &block) != GIF_OK)
        return false;
    TakeExtension(decode, label, block);
    while (block)
        if (decode->library.extensionNext(decode->gif, &block) != GIF_OK)
            return false;
    return true;
}

bool FindFrame(GifDecode* decode)
{
    decode->transparent = noIndex;
    for (;;) {
        GifRecordType type = UNDEFINED_RECORD_TYPE;
        if (decode->library.recordType(decode->gif, &type) != GIF_OK)
            return false;
        if (type == IMAGE_DESC_RECORD_TYPE)
            return true;
        if (type != EXTENSION_RECORD_TYPE || !SkipExtension(decode))
            return false;
    }
}

bool OpenFrame(GifDecode* decode)
{
    if (decode->library.imageHeader(decode->gif) != GIF_OK)
        return false;
    const uint32_t codeSize = decode->lastByte;
    if (codeSize < 1 || codeSize > 8)
        return false;
    StartCodeCheck(&decode->check, codeSize);
    decode->inFrame = true;
    const GifImageDesc& image = decode->gif->Image;
    PlacedFrame& place = decode->place;
    place.left = static_cast<uint32_t>(image.Left);
    place.top = static_cast<uint32_t>(image.Top);
    place.width = static_cast<uint32_t>(image.Width);
    place.height = static_cast<uint32_t>(image.Height);
    return IsPictureSize(place.width, place.height) && IsCanvasFilled(place);
}

void SetEntry(GifDecode* decode, uint32_t index, uint8_t red, uint8_t green, uint8_t blue)
{
    decode->table[index][0] = blue;
    decode->table[index][1] = green;
    decode->table[index][2] = red;
}

bool PreparePalette(GifDecode* decode)
{
    const ColorMapObject* palette =
        decode->gif->Image.ColorMap ? decode->gif->Image.ColorMap : decode->gif->SColorMap;
    if (!palette || palette->ColorCount < 1 || palette->ColorCount > 256)
        return false;
    decode->colorCount = static_cast<uint32_t>(palette->ColorCount);
    for (uint32_t i = 0; i < decode->colorCount; ++i) {
        const GifColorType& color = palette->Colors[i];
        SetEntry(decode, i, color.Red, color.Green, color.Blue);
    }
    const Background& ground = decode->ground;
    if (decode->transparent < noIndex)
        SetEntry(decode, decode->transparent, ground.red, ground.green, ground.blue);
    return true;
}

bool MakeRows(GifDecode* decode)
{
    decode->indexes = static_cast<uint8_t*>(calloc(decode->place.width, 1));
    decode->row = static_cast<uint8_t*>(malloc(pixelBytes * decode->place.width));
    return decode->indexes && decode->row;
}

void ConvertRow(GifDecode* decode)
{
    uint8_t* target = decode->row;
    for (uint32_t x = 0; x < decode->place.width; ++x, target += pixelBytes) {
        const uint8_t index = decode->indexes[x];
        if (index >= decode->colorCount && index != decode->transparent)
            decode->beyondTable = true;
        memcpy(target, decode->table[index], pixelBytes);
    }
}

int32_t PutLine(GifDecode* decode, uint32_t y, const uint8_t* row)
{
    uint8_t* line = LockLine(&decode->lines, y);
    if (!line)
        return decode->lines.result;
    ComposeLine(decode->place, decode->ground, row, line);
    if (!UnlockLine(&decode->lines, y))
        return decode->lines.result;
    if (!ReportPatiently(&decode->input, ++decode->linesDone, decode->place.canvasHeight))
        return PluginFailed;
    return PluginDone;
}

// The lines from `from` on that the frame does not cross, up to the next that it does.
int32_t PutFreeLines(GifDecode* decode, uint32_t from)
{
    int32_t result = PluginDone;
    for (uint32_t y = from; result == PluginDone && y < decode->place.canvasHeight; ++y) {
        if (CrossesLine(decode->place, y))
            break;
        result = PutLine(decode, y, nullptr);
    }
    return result;
}

// Row `y` of the frame, the one that the data bring as number `index`.
int32_t ReadRow(GifDecode* decode, uint32_t y, uint32_t index)
{
    const PlacedFrame& place = decode->place;
    const int read =
        decode->library.line(decode->gif, decode->indexes, static_cast<int>(place.width));
    if (decode->check.pixels < uint64_t{index + 1} * place.width || decode->input.stopped)
        return PluginFailed;
    int32_t result = index == 0 ? PutFreeLines(decode, 0) : PluginDone;
    ConvertRow(decode);
    if (result == PluginDone && place.top + y < place.canvasHeight)
        result = PutLine(decode, place.top + y, decode->row);
    // The library reads on to the frame's end block with the last row, which is then right.
    return result == PluginDone && read != GIF_OK ? int32_t{PluginFailed} : result;
}

// GIF89a, appendix E: every 8th row from 0, from 4, every 4th from 2, every 2nd from 1.
int32_t ReadRows(GifDecode* decode)
{
    constexpr uint32_t starts[] = {0, 4, 2, 1};
    constexpr uint32_t steps[] = {8, 8, 4, 2};
    const bool interlaced = decode->gif->Image.Interlace;
    uint32_t index = 0;
    for (int pass = 0; pass < (interlaced ? 4 : 1); ++pass) {
        const uint32_t step = interlaced ? steps[pass] : 1;
        for (uint32_t y = starts[pass]; y < decode->place.height; y += step) {
            const int32_t result = ReadRow(decode, y, index++);
            if (result < 0)
                return result;
        }
    }
    return PluginDone;
}

int32_t ReadAll(GifDecode* decode)
{
    int32_t result = OpenGif(decode);
    if (result < 0)
        return result;
    if (!FindFrame(decode) || !OpenFrame(decode) || !PreparePalette(decode))
        return PluginFailed;
    if (!MakeRows(decode))
        return PluginNoMemory;
    const PlacedFrame& place = decode->place;
    SetLinesSize(&decode->lines, place.canvasWidth, place.canvasHeight);
    result = ReadRows(decode);
    if (result == PluginDone && place.top < place.canvasHeight)
        result = PutFreeLines(decode, place.top + place.height);
    if (result == PluginDone && decode->beyondTable)
        return PluginFailed;
    return result;
}

int32_t RunDecode(GifDecode* decode, const ReadOrder& order)
{
    int32_t result = OpenPatientReader(&decode->input, order.stream, order.progress);
    if (result == PluginDone)
        result = OpenLines(&decode->lines, order.rasters, order.image);
    decode->ground = ReadBackground(gifBackground, order.get);
    return result == PluginDone ? ReadAll(decode) : result;
}

void CloseDecode(GifDecode* decode)
{
    if (decode->gif) {
        int error = 0;
        (void)decode->library.close(decode->gif, &error);
    }
    CloseGifLibrary(&decode->library);
    ClosePatientReader(&decode->input);
    free(decode->indexes);
    free(decode->row);
    free(decode);
}

} // namespace

const BackgroundSettings gifBackground = BACKGROUND_SETTINGS("GifInput");

int32_t ReadGifPicture(const ReadOrder& order)
{
    auto* decode = static_cast<GifDecode*>(calloc(1, sizeof(GifDecode)));
    if (!decode)
        return PluginNoMemory;
    const int32_t result = RunDecode(decode, order);
    CloseDecode(decode);
    return result;
}

int32_t ReadGifSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height)
{
    auto* decode = static_cast<GifDecode*>(calloc(1, sizeof(GifDecode)));
    if (!decode)
        return PluginNoMemory;
    int32_t result = OpenPatientReader(&decode->input, stream, nullptr);
    if (result == PluginDone)
        result = OpenGif(decode);
    *width = decode->place.canvasWidth;
    *height = decode->place.canvasHeight;
    CloseDecode(decode);
    return result;
}
