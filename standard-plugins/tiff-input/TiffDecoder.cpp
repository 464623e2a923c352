#include "standard-plugins/tiff-input/TiffDecoder.h"

#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/reading/ExifOrientation.h"
#include "standard-plugins/common/reading/OrientedLines.h"
#include "standard-plugins/common/reading/PatientReader.h"
#include "standard-plugins/tiff-input/TiffPixels.h"
#include "standard-plugins/tiff-input/TiffRows.h"

#include <stdlib.h>

namespace
{

constexpr size_t startBytes = 4;

struct TiffDecode {
    PatientReader input;
    TemporaryFile bytes;
    // The first bytes, and how many came.
    uint8_t start[startBytes];
    uint64_t told;
    TiffLibrary library;
    TiffFile file;
    TiffImage image;
    TiffRows rows;
    TiffPixels pixels;
    LineWriter lines;
    OrientedLines oriented;
    uint8_t* row;
};

// Called for each piece that was copied; the piece is still in the buffer.
bool MayCopyOn(void* self, uint64_t copied)
{
    auto* decode = static_cast<TiffDecode*>(self);
    const StreamReader& reader = decode->input.reader;
    const uint64_t before = copied - reader.filled;
    for (uint32_t i = 0; i < reader.filled && before + i < startBytes; ++i)
        decode->start[before + i] = reader.buffer[i];
    if (before < startBytes && copied >= startBytes && !IsTiffStart(decode->start))
        return false;
    constexpr uint64_t bytesBetween = 64 * 1024;
    if (copied < decode->told + bytesBetween)
        return true;
    decode->told = copied;
    return ReportPatiently(&decode->input, 0, 1) && ReportProgressNow(&decode->input.progress, 0);
}

int32_t OpenPicture(TiffDecode* decode)
{
    const int32_t result =
        CopyToTemporaryFile(&decode->bytes, &decode->input.reader, MayCopyOn, decode);
    if (result < 0)
        return result;
    if (!OpenTiffLibrary(&decode->library) ||
        !OpenTiffFile(&decode->file, &decode->library, &decode->bytes) ||
        !ReadTiffImage(&decode->file, &decode->image))
        return PluginFailed;
    return PluginDone;
}

int32_t OpenOutput(TiffDecode* decode, const ReadOrder& order)
{
    const TiffImage& image = decode->image;
    const int32_t result = OpenTiffRows(&decode->rows, &decode->file, &image);
    if (result < 0)
        return result;
    decode->row = static_cast<uint8_t*>(malloc(size_t{3} * image.width));
    if (!decode->row ||
        !OpenTiffPixels(&decode->pixels, &image, ReadBackground(tiffBackground, order.get)) ||
        !OpenOrientedLines(&decode->oriented, &decode->lines, image.width, image.height,
                           image.orientation))
        return PluginNoMemory;
    return PluginDone;
}

int32_t ReadRows(TiffDecode* decode)
{
    const TiffImage& image = decode->image;
    for (uint32_t y = 0; y < image.height; ++y) {
        if (!ReadTiffRow(&decode->rows, y))
            return PluginFailed;
        ConvertTiffRow(&decode->pixels, decode->rows.row, decode->row);
        if (!PutOrientedRow(&decode->oriented, y, decode->row))
            return decode->lines.result;
        if (!ReportPatiently(&decode->input, y + 1, image.height))
            return PluginFailed;
    }
    return PluginDone;
}

// Whether nothing was wrong with what was read, and nothing is missing.
bool IsSound(TiffDecode* decode)
{
    return !IsTroubled(decode->rows) && !decode->file.lostTag && !decode->image.paletteMissing &&
           !decode->pixels.beyond && AreDirectoriesSound(&decode->bytes);
}

int32_t ReadPage(TiffDecode* decode)
{
    int32_t result = ReadRows(decode);
    if (decode->lines.result < 0 || decode->input.stopped)
        return result;
    if (!FinishOrientedLines(&decode->oriented))
        return decode->lines.result;
    if (result == PluginDone && !IsSound(decode))
        result = PluginFailed;
    return result;
}

int32_t RunDecode(TiffDecode* decode, const ReadOrder& order)
{
    int32_t result = OpenPatientReader(&decode->input, order.stream, order.progress);
    if (result == PluginDone)
        result = OpenLines(&decode->lines, order.rasters, order.image);
    if (result == PluginDone)
        result = OpenPicture(decode);
    if (result == PluginDone)
        result = OpenOutput(decode, order);
    return result == PluginDone ? ReadPage(decode) : result;
}

void CloseDecode(TiffDecode* decode)
{
    CloseOrientedLines(&decode->oriented);
    CloseTiffPixels(&decode->pixels);
    CloseTiffRows(&decode->rows);
    CloseTiffFile(&decode->file);
    CloseTiffLibrary(&decode->library);
    CloseTemporaryFile(&decode->bytes);
    ClosePatientReader(&decode->input);
    free(decode->row);
    free(decode);
}

} // namespace

const BackgroundSettings tiffBackground = BACKGROUND_SETTINGS("TiffInput");

int32_t ReadTiffPicture(const ReadOrder& order)
{
    auto* decode = static_cast<TiffDecode*>(calloc(1, sizeof(TiffDecode)));
    if (!decode)
        return PluginNoMemory;
    const int32_t result = RunDecode(decode, order);
    CloseDecode(decode);
    return result;
}

int32_t ReadTiffSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height)
{
    auto* decode = static_cast<TiffDecode*>(calloc(1, sizeof(TiffDecode)));
    if (!decode)
        return PluginNoMemory;
    int32_t result = OpenPatientReader(&decode->input, stream, nullptr);
    if (result == PluginDone)
        result = OpenPicture(decode);
    const TiffImage& image = decode->image;
    const bool swapped = SwapsSides(image.orientation);
    *width = swapped ? image.height : image.width;
    *height = swapped ? image.width : image.height;
    CloseDecode(decode);
    return result;
}
