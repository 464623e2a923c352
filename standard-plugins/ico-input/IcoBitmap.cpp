#include "standard-plugins/ico-input/IcoBitmap.h"

#include "standard-plugins/common/dib/DibHeader.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/rows/device/TemporaryStream.h"

#include <stdlib.h>

namespace
{

constexpr uint64_t toTheEnd = ~uint64_t{0};

struct IcoBitmap {
    RowReading* rows;
    TemporaryFile* file;
    DibHeader header;
    DibPixels pixels;
    /// Where the pixels begin in the file, and their bytes; the mask follows them.
    uint64_t pixelOffset;
    uint64_t pixelBytes;
    TemporaryStream pixelPart;
    TemporaryStream maskPart;
    StreamReader maskReader;
    bool hasMask;
    uint8_t* source;
    uint8_t* maskSource;
};

bool ReadHeader(IcoBitmap* icon, const IcoPicture& picture)
{
    RowReading* rows = icon->rows;
    OpenTemporaryStream(&icon->pixelPart, icon->file, picture.offset, toTheEnd);
    if (!SwitchStream(rows, &icon->pixelPart.record) || !ReadDibHeader(rows, &icon->header))
        return false;
    const DibHeader& header = icon->header;
    const bool plain =
        header.compression == DibCompression::None || header.compression == DibCompression::Fields;
    if (!plain || header.height % 2 != 0 ||
        !StartRows(rows, header.width, header.height / 2, !header.topDown))
        return FailReading(rows, PluginFailed);
    if (!ReadDibPalette(rows, header, DibEntriesInFile(header), &icon->pixels))
        return false;
    icon->pixelOffset = picture.offset + rows->position;
    icon->pixelBytes = uint64_t{DibRowBytes(rows->width, header.bits)} * rows->height;
    return true;
}

// Whether any pixel of 32 bits has an alpha that is not 0.
bool FindAlpha(IcoBitmap* icon, bool* found)
{
    RowReading* rows = icon->rows;
    TemporaryStream part;
    OpenTemporaryStream(&part, icon->file, icon->pixelOffset, icon->pixelOffset + icon->pixelBytes);
    StreamReader reader;
    const int32_t opened = OpenReader(&reader, &part.record);
    if (opened < 0)
        return FailReading(rows, opened);
    bool goesOn = true;
    uint8_t pixel[4];
    for (*found = false; goesOn && !*found && ReadExactly(&reader, pixel, sizeof pixel);) {
        *found = pixel[3] != 0;
        if (reader.taken == reader.filled)
            goesOn = ReportProgressNow(&rows->progress, 0);
    }
    CloseReader(&reader);
    return goesOn || FailReading(rows, PluginFailed);
}

bool OpenMask(IcoBitmap* icon)
{
    OpenTemporaryStream(&icon->maskPart, icon->file, icon->pixelOffset + icon->pixelBytes,
                        toTheEnd);
    const int32_t opened = OpenReader(&icon->maskReader, &icon->maskPart.record);
    return opened >= 0 || FailReading(icon->rows, opened);
}

bool PrepareAlpha(IcoBitmap* icon)
{
    DibHeader& header = icon->header;
    bool hasAlpha = header.masks[3] != 0;
    if (header.bits == 32 && header.compression == DibCompression::None) {
        if (!FindAlpha(icon, &hasAlpha))
            return false;
        header.masks[3] = hasAlpha ? 0xff000000u : 0;
    }
    icon->hasMask = !hasAlpha;
    icon->pixels.bits = header.bits;
    SetDibMasks(&icon->pixels, header.masks);
    return !icon->hasMask || OpenMask(icon);
}

void ApplyMask(IcoBitmap* icon)
{
    RowReading* rows = icon->rows;
    if (!ReadExactly(&icon->maskReader, icon->maskSource, DibRowBytes(rows->width, 1))) {
        rows->damaged = true;
        return;
    }
    const Background& ground = icon->pixels.ground;
    for (uint32_t x = 0; x < rows->width; ++x) {
        uint8_t* bgr = rows->row + size_t{3} * x;
        if (DibIndex(icon->maskSource, x, 1) == 0)
            continue;
        bgr[0] = ground.blue;
        bgr[1] = ground.green;
        bgr[2] = ground.red;
    }
}

bool ReadRows(IcoBitmap* icon)
{
    RowReading* rows = icon->rows;
    const size_t rowBytes = DibRowBytes(rows->width, icon->header.bits);
    icon->source = static_cast<uint8_t*>(malloc(rowBytes));
    icon->maskSource = static_cast<uint8_t*>(malloc(DibRowBytes(rows->width, 1)));
    if (!icon->source || !icon->maskSource)
        return FailReading(rows, PluginNoMemory);
    for (uint32_t i = 0; i < rows->height; ++i) {
        if (!ReadBytes(rows, icon->source, rowBytes))
            return false;
        ConvertDibRow(&icon->pixels, icon->source, rows->width, rows->row);
        if (icon->hasMask)
            ApplyMask(icon);
        if (!PutRow(rows, LineOfRow(*rows, i)))
            return false;
    }
    return true;
}

} // namespace

bool ReadIcoBitmap(RowReading* rows, TemporaryFile* file, const IcoPicture& picture,
                   const Background& ground)
{
    auto* icon = static_cast<IcoBitmap*>(calloc(1, sizeof(IcoBitmap)));
    if (!icon)
        return FailReading(rows, PluginNoMemory);
    icon->rows = rows;
    icon->file = file;
    icon->pixels.ground = ground;
    const bool read = ReadHeader(icon, picture) && PrepareAlpha(icon) && ReadRows(icon);
    rows->damaged |= icon->pixels.beyondPalette;
    // What the reading reads from lies in the record that goes now.
    CloseReader(&rows->reader);
    CloseReader(&icon->maskReader);
    free(icon->source);
    free(icon->maskSource);
    free(icon);
    return read;
}
