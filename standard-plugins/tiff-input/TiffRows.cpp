#include "standard-plugins/tiff-input/TiffRows.h"

#include "standard-plugins/common/PluginResult.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr size_t slackBytes = 4;
constexpr uint64_t mostWholeStrip = 512u << 10;

TiffFile* PlaneFile(TiffRows* rows, uint32_t plane)
{
    return plane == 0 && !rows->others[0].tiff ? rows->first : &rows->others[plane];
}

bool IsPlain(const TiffImage& image)
{
    return !image.tiled && !image.converted && image.compression == COMPRESSION_NONE;
}

// ---- Strips -----------------------------------------------------------------------------------

// As the library does: the order of the bits, then that of the bytes.
void OrderBytes(const TiffRows& rows, uint8_t* row)
{
    const TiffLibrary& library = *rows.library;
    const auto count = static_cast<tmsize_t>(rows.planeBytes);
    if (rows.image->fillOrder == FILLORDER_LSB2MSB)
        library.reverseBits(row, count);
    if (!library.isSwapped(rows.first->tiff))
        return;
    if (rows.image->bits == 16)
        library.swapShorts(reinterpret_cast<uint16_t*>(row), count / 2);
    else if (rows.image->bits == 32)
        library.swapLongs(reinterpret_cast<uint32_t*>(row), count / 4);
}

uint32_t StripOf(const TiffImage& image, uint32_t y, uint32_t plane)
{
    const uint32_t perPlane = (image.height + image.rowsPerStrip - 1) / image.rowsPerStrip;
    return plane * perPlane + y / image.rowsPerStrip;
}

bool ReadPlainRow(TiffRows* rows, uint32_t y, uint32_t plane, uint8_t* row)
{
    const TiffImage& image = *rows->image;
    const uint32_t strip = StripOf(image, y, plane);
    int failed = 0;
    const uint64_t offset = rows->library->stripOffset(rows->first->tiff, strip, &failed);
    if (failed)
        return false;
    const uint64_t stripBytes = rows->library->stripBytes(rows->first->tiff, strip, &failed);
    const uint64_t within = y % image.rowsPerStrip * rows->planeBytes;
    const auto count = static_cast<size_t>(rows->planeBytes);
    if (failed || within + count > stripBytes || offset > rows->bytes->size ||
        ReadTemporaryFile(rows->bytes, offset + within, row, count) < count)
        return false;
    OrderBytes(*rows, row);
    return true;
}

// By the row the library reads what is there of a strip, and is content when the rows come of it.
void LookForStripsEnd(TiffRows* rows, uint32_t strip)
{
    int failed = 0;
    const uint64_t offset = rows->library->stripOffset(rows->first->tiff, strip, &failed);
    const uint64_t bytes = rows->library->stripBytes(rows->first->tiff, strip, &failed);
    if (!failed && (offset > rows->bytes->size || bytes > rows->bytes->size - offset))
        rows->first->troubled = true;
}

bool IsReadByWholeStrips(const TiffImage& image, uint64_t rowBytes)
{
    return !image.tiled && !image.converted && TiffPlanes(image) == 1 &&
           (image.compression == COMPRESSION_ADOBE_DEFLATE ||
            image.compression == COMPRESSION_DEFLATE) &&
           rowBytes <= mostWholeStrip && image.rowsPerStrip <= mostWholeStrip / rowBytes;
}

// Of a strip that breaks off there may be rows before the break: an opening that has not begun with
// the strip yet goes on by the row.
bool GoOnByRows(TiffRows* rows)
{
    free(rows->strip);
    rows->strip = nullptr;
    if (!OpenTiffFile(&rows->others[0], rows->library, rows->bytes))
        return false;
    rows->others[0].troubled = false;
    return true;
}

bool LoadStrip(TiffRows* rows, uint32_t y)
{
    const TiffImage& image = *rows->image;
    const uint32_t left = image.height - y;
    const uint32_t lines = left < image.rowsPerStrip ? left : image.rowsPerStrip;
    const auto wanted = static_cast<tmsize_t>(lines * rows->planeBytes);
    return rows->library->readStrip(rows->first->tiff, StripOf(image, y, 0), rows->strip, wanted) ==
           wanted;
}

// False where the row must be had in another way.
bool TakeRowOfStrip(TiffRows* rows, uint32_t y)
{
    const uint32_t line = y % rows->image->rowsPerStrip;
    if (line == 0 && !LoadStrip(rows, y))
        return false;
    memcpy(rows->row, rows->strip + line * rows->planeBytes, rows->planeBytes);
    return true;
}

bool ReadStripRow(TiffRows* rows, uint32_t y)
{
    const TiffImage& image = *rows->image;
    if (rows->strip) {
        if (y % image.rowsPerStrip == 0)
            LookForStripsEnd(rows, StripOf(image, y, 0));
        if (TakeRowOfStrip(rows, y))
            return true;
        if (!GoOnByRows(rows))
            return false;
    }
    for (uint32_t plane = 0; plane < TiffPlanes(image); ++plane) {
        if (y % image.rowsPerStrip == 0 && !IsPlain(image))
            LookForStripsEnd(rows, StripOf(image, y, plane));
        uint8_t* row = rows->row + plane * rows->planeBytes;
        const bool got = IsPlain(image)
                             ? ReadPlainRow(rows, y, plane, row)
                             : rows->library->readRow(PlaneFile(rows, plane)->tiff, row, y,
                                                      static_cast<uint16_t>(plane)) == 1;
        if (!got)
            return false;
    }
    return true;
}

bool OpenPlanes(TiffRows* rows)
{
    const TiffImage& image = *rows->image;
    if (image.tiled || IsPlain(image))
        return true;
    for (uint32_t plane = 1; plane < TiffPlanes(image); ++plane) {
        if (!OpenTiffFile(&rows->others[plane], rows->library, rows->bytes))
            return false;
        rows->others[plane].troubled = false;
    }
    return true;
}

// ---- Blocks: rows of tiles, converted strips --------------------------------------------------

uint8_t* BlockLine(const TiffRows& rows, uint32_t plane, uint32_t line)
{
    return rows.block + (uint64_t{plane} * rows.blockLines + line) * rows.blockLineBytes;
}

void CopyTile(const TiffRows& rows, uint32_t plane, uint32_t across)
{
    const uint64_t bytes = TiffRowBytes(*rows.image, rows.image->tileWidth);
    for (uint32_t line = 0; line < rows.blockLines; ++line)
        memcpy(BlockLine(rows, plane, line) + across * bytes, rows.piece + line * bytes, bytes);
}

bool LoadTiles(TiffRows* rows, uint32_t top)
{
    const TiffImage& image = *rows->image;
    TIFF* tiff = rows->first->tiff;
    for (uint32_t plane = 0; plane < TiffPlanes(image); ++plane)
        for (uint32_t x = 0; x < image.width; x += image.tileWidth) {
            const uint32_t number =
                rows->library->tileNumber(tiff, x, top, 0, static_cast<uint16_t>(plane));
            const auto wanted = static_cast<tmsize_t>(rows->pieceBytes);
            if (rows->library->readTile(tiff, number, rows->piece, wanted) != wanted)
                return false;
            CopyTile(*rows, plane, x / image.tileWidth);
        }
    return true;
}

// The library's rows run from the bottom up, in pixels that begin with red in memory.
void CopyConverted(const TiffRows& rows, uint32_t lines, uint32_t width, uint32_t x)
{
    constexpr size_t pixelBytes = 4;
    const auto* pixels = reinterpret_cast<const uint32_t*>(rows.piece);
    for (uint32_t line = 0; line < lines; ++line) {
        const uint32_t* source = pixels + size_t{width} * (lines - 1 - line);
        uint8_t* target = BlockLine(rows, 0, line) + pixelBytes * x;
        for (uint32_t i = 0; i < width; ++i, target += pixelBytes) {
            target[0] = static_cast<uint8_t>(TIFFGetR(source[i]));
            target[1] = static_cast<uint8_t>(TIFFGetG(source[i]));
            target[2] = static_cast<uint8_t>(TIFFGetB(source[i]));
            target[3] = static_cast<uint8_t>(TIFFGetA(source[i]));
        }
    }
}

bool LoadConverted(TiffRows* rows, uint32_t top)
{
    const TiffImage& image = *rows->image;
    auto* pixels = reinterpret_cast<uint32_t*>(rows->piece);
    TIFF* tiff = rows->first->tiff;
    if (!image.tiled) {
        const uint32_t left = image.height - top;
        const uint32_t lines = left < rows->blockLines ? left : rows->blockLines;
        if (!rows->library->convertStrip(tiff, top, pixels, 1))
            return false;
        CopyConverted(*rows, lines, image.width, 0);
        return true;
    }
    for (uint32_t x = 0; x < image.width; x += image.tileWidth) {
        if (!rows->library->convertTile(tiff, x, top, pixels, 1))
            return false;
        CopyConverted(*rows, rows->blockLines, image.tileWidth, x);
    }
    return true;
}

bool ReadBlockRow(TiffRows* rows, uint32_t y)
{
    const uint32_t top = y - y % rows->blockLines;
    if (!rows->hasBlock || rows->blockStart != top) {
        rows->hasBlock = false;
        if (!(rows->image->converted ? LoadConverted(rows, top) : LoadTiles(rows, top)))
            return false;
        rows->hasBlock = true;
        rows->blockStart = top;
    }
    for (uint32_t plane = 0; plane < TiffPlanes(*rows->image); ++plane)
        memcpy(rows->row + plane * rows->planeBytes, BlockLine(*rows, plane, y - top),
               rows->planeBytes);
    return true;
}

int32_t MakeBlock(TiffRows* rows)
{
    const TiffImage& image = *rows->image;
    const uint32_t width = image.tiled ? image.tileWidth : image.width;
    const uint64_t across = image.tiled ? (uint64_t{image.width} + width - 1) / width : 1;
    rows->blockLines = image.tiled ? image.tileHeight : image.rowsPerStrip;
    const uint64_t pieceLine = TiffRowBytes(image, width);
    rows->blockLineBytes = pieceLine * across;
    // Each factor is below 2^32 and the first below 2^42: looked at before they are multiplied.
    if (rows->blockLineBytes > mostTiffBytes || rows->blockLines > mostTiffBytes)
        return PluginNoMemory;
    rows->pieceBytes = pieceLine * rows->blockLines;
    const uint64_t blockBytes = rows->blockLineBytes * rows->blockLines;
    if (blockBytes > mostTiffBytes / TiffPlanes(image))
        return PluginNoMemory;
    rows->block = static_cast<uint8_t*>(malloc(blockBytes * TiffPlanes(image)));
    rows->piece = static_cast<uint8_t*>(malloc(rows->pieceBytes));
    return rows->block && rows->piece ? PluginDone : PluginNoMemory;
}

} // namespace

int32_t OpenTiffRows(TiffRows* rows, TiffFile* first, const TiffImage* image)
{
    *rows = {};
    rows->library = first->library;
    rows->bytes = first->bytes;
    rows->image = image;
    rows->first = first;
    rows->planeBytes = TiffRowBytes(*image, image->width);
    rows->row =
        static_cast<uint8_t*>(calloc(rows->planeBytes * TiffPlanes(*image) + slackBytes, 1));
    if (!rows->row)
        return PluginNoMemory;
    if (image->tiled || image->converted) {
        const int32_t result = MakeBlock(rows);
        if (result < 0)
            return result;
    } else if (IsReadByWholeStrips(*image, rows->planeBytes)) {
        // Without it rows are read one by one.
        rows->strip = static_cast<uint8_t*>(malloc(rows->planeBytes * image->rowsPerStrip));
    }
    if (!OpenPlanes(rows))
        return PluginFailed;
    first->troubled = false;
    return PluginDone;
}

bool ReadTiffRow(TiffRows* rows, uint32_t y)
{
    return rows->block ? ReadBlockRow(rows, y) : ReadStripRow(rows, y);
}

bool IsTroubled(const TiffRows& rows)
{
    bool troubled = rows.first->troubled;
    for (const TiffFile& other : rows.others)
        troubled = troubled || other.troubled;
    return troubled;
}

void CloseTiffRows(TiffRows* rows)
{
    for (TiffFile& other : rows->others)
        CloseTiffFile(&other);
    free(rows->row);
    free(rows->strip);
    free(rows->block);
    free(rows->piece);
    *rows = {};
}
