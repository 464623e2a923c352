#include "standard-plugins/common/PictureReader.h"

#include "standard-plugins/common/HostLine.h"

#include <stdlib.h>

#include <string.h>

namespace
{

constexpr uint32_t valueCount = 256;

bool Fail(PictureReader* reader, WriteProblem problem)
{
    reader->problem = problem;
    return false;
}

void UseGreys(PictureReader* reader)
{
    for (uint32_t i = 0; i < valueCount; ++i)
        for (uint8_t& channel : reader->colors[i])
            channel = static_cast<uint8_t>(i);
}

void UseColors(PictureReader* reader, const PaletteEntry* entries, uint32_t count)
{
    for (uint32_t i = 0; i < count && i < valueCount; ++i) {
        reader->colors[i][0] = static_cast<uint8_t>(entries[i].red);
        reader->colors[i][1] = static_cast<uint8_t>(entries[i].green);
        reader->colors[i][2] = static_cast<uint8_t>(entries[i].blue);
    }
}

bool CopyEntries(PictureReader* reader, PaletteFunctionTable* palettes, TavrixPaletteHandle palette)
{
    if (reader->rasters->RasterGetPalette(reader->image, palette) < 1)
        return Fail(reader, WriteProblem::Memory);
    const int32_t count = palettes->PaletteGetEntries(palette, nullptr);
    if (count < 1)
        return Fail(reader, WriteProblem::Memory);
    // The host writes all entries there are, of which a palette may hold more than a byte can name.
    auto* entries =
        static_cast<PaletteEntry*>(calloc(static_cast<size_t>(count), sizeof(PaletteEntry)));
    if (!entries)
        return Fail(reader, WriteProblem::Memory);
    const bool got = palettes->PaletteGetEntries(palette, entries) >= 1;
    if (got)
        UseColors(reader, entries, static_cast<uint32_t>(count));
    free(entries);
    return got || Fail(reader, WriteProblem::Memory);
}

bool CopyPalette(PictureReader* reader, PaletteFunctionTable* palettes)
{
    if (reader->rasters->RasterGetPalette(reader->image, nullptr) < 1) {
        UseGreys(reader);
        return true;
    }
    if (!palettes || palettes->size < sizeof(PaletteFunctionTable) || !palettes->PaletteCreate ||
        !palettes->PaletteDestroy || !palettes->PaletteGetEntries)
        return Fail(reader, WriteProblem::Arguments);
    TavrixPaletteHandle palette = nullptr;
    if (palettes->PaletteCreate(&palette) < 1)
        return Fail(reader, WriteProblem::Memory);
    const bool copied = CopyEntries(reader, palettes, palette);
    (void)palettes->PaletteDestroy(&palette);
    return copied;
}

void ConvertPalette(const PictureReader& reader, const uint8_t* line, uint8_t* rgb)
{
    for (uint32_t x = 0; x < reader.width; ++x, rgb += 3) {
        const uint8_t* color = reader.colors[line[x]];
        rgb[0] = color[0];
        rgb[1] = color[1];
        rgb[2] = color[2];
    }
}

template <uint32_t step>
void ConvertBytes(const PictureReader& reader, const uint8_t* __restrict line,
                  uint8_t* __restrict rgb)
{
    for (uint32_t x = 0; x < reader.width; ++x) {
        rgb[3 * x] = line[step * x + 2];
        rgb[3 * x + 1] = line[step * x + 1];
        rgb[3 * x + 2] = line[step * x];
    }
}

void CopyBytes(const PictureReader& reader, const uint8_t* line, uint8_t* bgr)
{
    memcpy(bgr, line, RowBytes(reader));
}

using Convert = void (*)(const PictureReader& reader, const uint8_t* line, uint8_t* row);

bool ReadLine(PictureReader* reader, uint32_t y, Convert convert, uint8_t* row)
{
    const auto number = static_cast<int32_t>(y);
    void* line = nullptr;
    uint32_t count = 1;
    if (reader->rasters->RasterLockLines(reader->image, number, &line, &count) < 1 || count != 1 ||
        !line)
        return Fail(reader, WriteProblem::Line);
    convert(*reader, static_cast<const uint8_t*>(line), row);
    // A line that cannot go back to its file is lost to the picture, whatever was read of it.
    return UnlockHostLine(reader->rasters, reader->image, number, line) ||
           Fail(reader, WriteProblem::Line);
}

} // namespace

bool OpenPicture(PictureReader* reader, RasterFunctionTable* rasters,
                 PaletteFunctionTable* palettes, TavrixImageHandle image)
{
    *reader = {};
    if (!image || !rasters || rasters->size < sizeof(RasterFunctionTable) ||
        !rasters->RasterGetInfo || !rasters->RasterGetPalette || !rasters->RasterLockLines ||
        !rasters->RasterUnlockLines)
        return Fail(reader, WriteProblem::Arguments);
    reader->rasters = rasters;
    reader->image = image;
    RasterInfo info = {};
    info.size = sizeof info;
    if (rasters->RasterGetInfo(image, &info) < 1 || info.width < 1 || info.height < 1)
        return Fail(reader, WriteProblem::Empty);
    reader->width = info.width;
    reader->height = info.height;
    reader->depth = info.depth;
    if (info.depth == 8)
        return CopyPalette(reader, palettes);
    return info.depth == 24 || info.depth == 32 || Fail(reader, WriteProblem::Depth);
}

bool ReadRow(PictureReader* reader, uint32_t y, uint8_t* rgb)
{
    const Convert convert = reader->depth == 8    ? ConvertPalette
                            : reader->depth == 24 ? ConvertBytes<3>
                                                  : ConvertBytes<4>;
    return ReadLine(reader, y, convert, rgb);
}

bool ReadHostRow(PictureReader* reader, uint32_t y, uint8_t* bgr)
{
    return ReadLine(reader, y, CopyBytes, bgr);
}
