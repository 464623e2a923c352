// The soft brush: an 8-bit mask of coverage, made once when the radius is set, and laid on a
// picture with Raster::BlendMask wherever the pen is reported. There is no state of a stroke.
//
// The mask is 2 * radius pixels on a side. Its cell (i, j) belongs to the offset (i - radius,
// j - radius) from the stamp's centre, so that it has a row and a column more on the negative side,
// and holds 255 * exp(-9 * d * d / (radius * radius)), truncated, with d the offset's length: a
// Gaussian that has fallen to e^-9 at the rim. User-interface thread only.
#pragma once

#include "image/Raster.h"

/// A brush's parameters. `strength` and `diffusion` are kept and reported and have no other effect.
struct BrushInfo {
    u32 size; // of this record; set by the caller of GetInfo
    u32 radius;
    u32 strength;
    u32 diffusion;
    u32 unused; // 0
};

class Brush
{
public:
    /// Null: blocks come from the process's heap.
    explicit Brush(Allocator* allocator = nullptr);
    Brush(const Brush&) = delete;
    Brush& operator=(const Brush&) = delete;

    // The order of the operations is part of the class.

    /// Replaces the mask. Failed when it cannot be made (the old one is gone by then), also above a
    /// radius of 32,767. All its rows stay locked.
    [[nodiscard]] virtual i32 Create(u32 radius, u32 strength, u32 diffusion);
    /// Drops mask and parameters. Always Done.
    virtual i32 Destroy();
    /// Paints one stamp centred on (x, y) of `raster` by BlendMask, whose result is dropped.
    /// `painted` gets the rectangle as BlendMask left it. WrongState before Create, BadArgument for
    /// a null raster, else Done.
    virtual i32 Stroke(Raster* raster, u32 color, i32 x, i32 y, PixelRect* painted);
    virtual ~Brush();

    /// Copies as many bytes as `target->size` says, at most the whole record. Failed for null.
    i32 GetInfo(BrushInfo* target) const;

private:
    i32 created;
    i32 ownsAllocator;
    Raster* mask;
    BrushInfo info;
    Allocator* allocator;
    Allocator* ownedAllocator;
};
