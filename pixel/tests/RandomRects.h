// Random rectangles of doubles on all sides of a raster, in whole and broken pixels, ordered or
// not.
#pragma once

#include "Twin.h"

class RandomRects
{
public:
    explicit RandomRects(u32 seed) : places(seed) {}

    DoubleRect Around(u32 width, u32 height)
    {
        if (places.Below(4) == 0) // the whole raster
            return {0, 0, width - 1.0, height - 1.0};
        return {Edge(width), Edge(height), Edge(width), Edge(height)};
    }

    /// Somewhere else around a raster, with sizes that are exactly those of `rect`.
    DoubleRect Moved(const DoubleRect& rect, u32 width, u32 height)
    {
        const f64 right = places.Near(width);
        const f64 down = places.Near(height);
        return {rect.left + right, rect.top + down, rect.right + right, rect.bottom + down};
    }

    u32 Below(u32 count) { return places.Below(count); }

private:
    f64 Edge(u32 size)
    {
        const f64 whole = places.Near(size);
        switch (places.Below(4)) {
        case 0:
            return whole + places.Below(8) / 8.0; // exact in binary
        case 1:
            return whole + places.Below(1000) / 1000.0;
        default:
            return whole;
        }
    }

    Places places;
};
