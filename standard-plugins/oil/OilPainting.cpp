#include "standard-plugins/oil/OilPainting.h"

#include <stdlib.h>

namespace
{

struct Strokes {
    uint32_t counts[mostOilLevels];
    // Blue, green and red.
    uint32_t sums[mostOilLevels][3];
};

size_t RowBytes(const OilPainting& painting)
{
    return size_t{painting.width} + size_t{2} * painting.reach;
}

// `levels` and `row` begin at pixel 0.
void FillLevels(const OilPainting& painting, const uint8_t* row, uint8_t* levels)
{
    row -= size_t{3} * painting.reach;
    levels -= painting.reach;
    for (size_t i = 0; i < RowBytes(painting); ++i, row += 3) {
        const uint32_t luma = 114U * row[0] + 587U * row[1] + 299U * row[2];
        levels[i] = static_cast<uint8_t>(luma * painting.levels / 256000);
    }
}

// All rows at first, and then only the one that is new.
void FollowRows(OilPainting* painting, const FilterRows& rows)
{
    const uint32_t last = 2 * painting->reach;
    if (rows.y == 0) {
        for (uint32_t i = 0; i < last; ++i)
            FillLevels(*painting, rows.rows[i], painting->rows[i]);
    } else {
        uint8_t* uppermost = painting->rows[0];
        for (uint32_t i = 0; i < last; ++i)
            painting->rows[i] = painting->rows[i + 1];
        painting->rows[last] = uppermost;
    }
    FillLevels(*painting, rows.rows[last], painting->rows[last]);
}

void AddColumn(Strokes* strokes, const OilPainting& painting, const FilterRows& rows, int64_t x)
{
    for (uint32_t i = 0; i <= 2 * painting.reach; ++i) {
        const uint8_t level = painting.rows[i][x];
        const uint8_t* pixel = rows.rows[i] + 3 * x;
        ++strokes->counts[level];
        for (uint32_t channel = 0; channel < 3; ++channel)
            strokes->sums[level][channel] += pixel[channel];
    }
}

void RemoveColumn(Strokes* strokes, const OilPainting& painting, const FilterRows& rows, int64_t x)
{
    for (uint32_t i = 0; i <= 2 * painting.reach; ++i) {
        const uint8_t level = painting.rows[i][x];
        const uint8_t* pixel = rows.rows[i] + 3 * x;
        --strokes->counts[level];
        for (uint32_t channel = 0; channel < 3; ++channel)
            strokes->sums[level][channel] -= pixel[channel];
    }
}

void Paint(const Strokes& strokes, uint32_t levels, uint8_t* pixel)
{
    uint32_t most = 0;
    for (uint32_t level = 1; level < levels; ++level)
        if (strokes.counts[level] > strokes.counts[most])
            most = level;
    const uint32_t count = strokes.counts[most];
    for (uint32_t channel = 0; channel < 3; ++channel)
        pixel[channel] = static_cast<uint8_t>((strokes.sums[most][channel] + count / 2) / count);
}

} // namespace

bool OpenOilPainting(OilPainting* painting, uint32_t width, uint32_t reach, uint32_t levels)
{
    painting->levels = levels;
    painting->reach = reach;
    painting->width = width;
    const uint32_t count = 2 * reach + 1;
    painting->storage = static_cast<uint8_t*>(malloc(RowBytes(*painting) * count));
    painting->rows = static_cast<uint8_t**>(malloc(count * sizeof(uint8_t*)));
    if (!painting->storage || !painting->rows)
        return false;
    for (uint32_t i = 0; i < count; ++i)
        painting->rows[i] = painting->storage + RowBytes(*painting) * i + reach;
    return true;
}

void CloseOilPainting(OilPainting* painting)
{
    free(painting->storage);
    free(painting->rows);
    *painting = {};
}

void WriteOilRow(OilPainting* painting, const FilterRows& rows, uint8_t* out)
{
    FollowRows(painting, rows);
    Strokes strokes = {};
    const int64_t reach = painting->reach;
    for (int64_t x = -reach; x < reach; ++x)
        AddColumn(&strokes, *painting, rows, x);
    for (int64_t x = 0; x < painting->width; ++x) {
        AddColumn(&strokes, *painting, rows, x + reach);
        Paint(strokes, painting->levels, out + 3 * x);
        RemoveColumn(&strokes, *painting, rows, x - reach);
    }
}
