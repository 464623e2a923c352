#include "standard-plugins/bmp-input/BmpRuns.h"

#include "standard-plugins/common/PluginResult.h"

#include <string.h>

namespace
{

constexpr uint64_t mostBlankPixels = uint64_t{64} << 20;

struct Runs {
    RowReading* rows;
    uint32_t bits;
    DibPixels* pixels;
    /// The place of the next pixel; `y` counts rows as they come.
    uint32_t x;
    uint32_t y;
    /// Pixels of the row that lie beyond its end, and how many may.
    uint32_t overhang;
    uint32_t filling;
    /// Something was put into the row.
    bool rowTouched;
    uint64_t blankPixels;
    bool ended;
};

void ClearRow(Runs* runs)
{
    const uint8_t* color = runs->pixels->colors[0];
    for (uint32_t x = 0; x < runs->rows->width; ++x)
        memcpy(runs->rows->row + size_t{3} * x, color, 3);
    runs->rowTouched = false;
    runs->overhang = 0;
}

void PutPixel(Runs* runs, const uint8_t* color)
{
    if (runs->x >= runs->rows->width) {
        runs->rows->damaged |= ++runs->overhang > runs->filling;
        return;
    }
    memcpy(runs->rows->row + size_t{3} * runs->x++, color, 3);
    runs->rowTouched = true;
}

bool EndRow(Runs* runs)
{
    RowReading* rows = runs->rows;
    if (!runs->rowTouched) {
        runs->blankPixels += rows->width;
        if (runs->blankPixels > mostBlankPixels)
            return FailReading(rows, PluginFailed);
    }
    if (!PutRow(rows, LineOfRow(*rows, runs->y)))
        return false;
    ++runs->y;
    ClearRow(runs);
    return true;
}

bool RepeatPixel(Runs* runs, uint32_t count, int value)
{
    uint8_t color[3] = {static_cast<uint8_t>(value), 0, 0};
    if (runs->bits == 24 && !ReadBytes(runs->rows, color + 1, 2))
        return false;
    for (uint32_t i = 0; i < count; ++i) {
        if (runs->bits == 24)
            PutPixel(runs, color);
        else if (runs->bits == 4)
            PutPixel(runs, DibColor(runs->pixels, color[0] >> (i % 2 ? 0 : 4) & 15));
        else
            PutPixel(runs, DibColor(runs->pixels, color[0]));
    }
    return true;
}

bool CopyPixels(Runs* runs, uint32_t count)
{
    uint8_t bytes[255 * 3 + 1];
    const uint32_t used = (count * runs->bits + 7) / 8;
    if (!ReadBytes(runs->rows, bytes, used + used % 2))
        return false;
    for (uint32_t i = 0; i < count; ++i)
        PutPixel(runs, runs->bits == 24 ? bytes + size_t{3} * i
                                        : DibColor(runs->pixels, DibIndex(bytes, i, runs->bits)));
    return true;
}

// A move must stay inside: to the end of a row at most, and to a row that is there.
bool MoveOn(Runs* runs)
{
    uint8_t by[2];
    if (!ReadBytes(runs->rows, by, sizeof by))
        return false;
    if (runs->x + by[0] > runs->rows->width || runs->y + by[1] >= runs->rows->height)
        return FailReading(runs->rows, PluginFailed);
    runs->x += by[0];
    for (uint32_t i = 0; i < by[1]; ++i)
        if (!EndRow(runs))
            return false;
    return true;
}

bool EndPicture(Runs* runs)
{
    runs->ended = true;
    while (runs->y < runs->rows->height)
        if (!EndRow(runs))
            return false;
    return true;
}

bool Escape(Runs* runs, int code)
{
    switch (code) {
    case 0:
        runs->x = 0;
        return EndRow(runs);
    case 1:
        return EndPicture(runs);
    case 2:
        return MoveOn(runs);
    default:
        return CopyPixels(runs, static_cast<uint32_t>(code));
    }
}

// Behind the last row only the end mark may come.
bool ReadCode(Runs* runs)
{
    const int count = NextByte(runs->rows);
    const int value = count < 0 ? -1 : NextByte(runs->rows);
    if (value < 0)
        return false;
    if (runs->y == runs->rows->height && (count != 0 || value != 1))
        return FailReading(runs->rows, PluginFailed);
    return count > 0 ? RepeatPixel(runs, static_cast<uint32_t>(count), value) : Escape(runs, value);
}

} // namespace

bool ReadBmpRuns(RowReading* rows, uint32_t bits, DibPixels* pixels)
{
    Runs runs = {};
    runs.rows = rows;
    runs.bits = bits;
    runs.pixels = pixels;
    runs.filling = static_cast<uint32_t>(DibRowBytes(rows->width, bits) * 8 / bits) - rows->width;
    ClearRow(&runs);
    while (!runs.ended)
        if (!ReadCode(&runs))
            return false;
    return true;
}
