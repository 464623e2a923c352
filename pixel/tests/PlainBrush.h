// The soft brush written out cell by cell: what Brush is held against.
#pragma once

#include "PlainBlend.h"

#include <cmath>

/// The mask of a brush: at the offset (dx, dy) from the centre, 255 * exp(-9 (dx^2 + dy^2) / r^2),
/// truncated.
inline PlainRaster PlainBrushMask(u32 radius)
{
    PlainRaster mask;
    mask.Make(2 * radius, 2 * radius, 8);
    const f64 factor = -9.0 / static_cast<f64>(radius * radius);
    const i32 reach = static_cast<i32>(radius);
    for (i32 dy = -reach; dy < reach; ++dy) {
        EXPECT_EQ(mask.Lock(dy + reach), 1);
        for (i32 dx = -reach; dx < reach; ++dx)
            mask.Row(dy + reach)[static_cast<size_t>(dx + reach)] =
                static_cast<u8>(255.0 * std::exp(static_cast<f64>(dx * dx + dy * dy) * factor));
    }
    return mask;
}

/// Brush::Stroke with a mask of PlainBrushMask.
inline i32 PlainStroke(PlainRaster& mask, PlainRaster& raster, u32 color, i32 x, i32 y,
                       PixelRect* painted)
{
    const i32 radius = static_cast<i32>(mask.width / 2);
    PixelRect rectangle = {x - radius, y - radius, x + radius, y + radius};
    (void)PlainBlendMask(raster, color, &rectangle, &mask, 0, 0);
    if (painted != nullptr)
        *painted = rectangle;
    return Done;
}
