// Random rectangles on every side of small rasters, whole and fractional, for holding a stretch
// against its steps written out; on rasters in memory and on ones whose lines are in files.
#pragma once

#include "Rasters.h"

#include <cmath>
#include <random>

struct Sides {
    f64 left, top, right, bottom;
};

/// Source, target and clip of one stretch.
struct StretchCase {
    Sides source, target, clip;
};

/// Widths 1 to 33. `draw(source, target, case)` draws on rasters and answers the result, which is
/// to be 1; `write(source, target, case)` does the same on plain bytes. Both targets are then
/// equal.
template <class Draw, class Write>
void ExpectSameForRandomStretches(u32 seed, Draw draw, Write write)
{
    std::mt19937 random(seed);
    const auto side = [&random](f64 low, f64 high, int kind) {
        const f64 value = low + (high - low) * (random() / 4294967296.0);
        return kind == 0 ? std::floor(value) : kind == 1 ? std::floor(value * 4) / 4 : value;
    };
    const auto sides = [&side](f64 width, f64 height, int kind) {
        return Sides{side(-width, width + 2, kind), side(-height, height + 2, kind),
                     side(0, 2 * width, kind), side(0, 2 * height, kind)};
    };
    for (const bool pages : {false, true})
        for (u32 width = 1; width <= 33; ++width) {
            const Paging paging = pages ? Paging::Under : Paging::None;
            const u32 height = 1 + (width * 7) % 12;
            Raster source;
            Raster target;
            ASSERT_NO_FATAL_FAILURE(MakeRaster(source, width, height, 24, width, paging));
            ASSERT_NO_FATAL_FAILURE(MakeRaster(target, 34 - width, 9, 24, width + 50, paging));
            const Plain from = PlainOf(source);
            Plain expected = PlainOf(target);
            for (int round = 0; round < (pages ? 4 : 150); ++round) {
                const int kind = round % 3;
                const f64 targetWidth = 34.0 - width;
                const StretchCase drawn = {sides(width, height, kind), sides(targetWidth, 9, kind),
                                           sides(targetWidth, 9, kind)};
                write(from, expected, drawn);
                if (pages)
                    ShortMemory();
                ASSERT_EQ(draw(source, target, drawn), 1);
                PlentyOfMemory();
                ASSERT_EQ(PlainOf(target).rows, expected.rows)
                    << "width " << width << " round " << round << (pages ? " paged" : "");
            }
            ASSERT_EQ(PlainOf(source).rows, from.rows);
        }
}
