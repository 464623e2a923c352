#include "pixel/Brush.h"

#include <math.h>
#include <new>
#include <string.h>

namespace
{

// Up to here the square of a cell's distance from the centre is a signed 32-bit number.
constexpr u32 LargestRadius = 32767;

// One row of the mask, `dy` below the centre. `falloff` is the exponent's factor.
void FillMaskRow(u8* row, i32 radius, i32 dy, f64 falloff)
{
    for (i32 dx = -radius; dx < radius; ++dx)
        *row++ = static_cast<u8>(255.0 * exp(static_cast<f64>(dx * dx + dy * dy) * falloff));
}

} // namespace

Brush::Brush(Allocator* given)
    : created(0), ownsAllocator(0), mask(nullptr), info(), allocator(given), ownedAllocator(nullptr)
{
    if (allocator == nullptr) {
        ownedAllocator = new (std::nothrow) HeapAllocator(::GetProcessHeap());
        allocator = ownedAllocator;
        ownsAllocator = ownedAllocator != nullptr;
    }
    // A raster that is given none would make a heap of its own.
    if (allocator != nullptr)
        mask = new (std::nothrow) Raster(allocator);
}

Brush::~Brush()
{
    (void)Brush::Destroy();
    // The mask's blocks come from the allocator, which therefore goes last.
    delete mask;
    if (ownsAllocator)
        delete ownedAllocator;
}

i32 Brush::Create(u32 radius, u32 strength, u32 diffusion)
{
    (void)Destroy();
    info = {sizeof(BrushInfo), radius, strength, diffusion, 0};
    if (mask == nullptr || radius > LargestRadius)
        return Failed;
    if (mask->Create(2 * radius, 2 * radius, 8, nullptr, nullptr) < 0)
        return Failed;
    const f64 falloff = -9.0 / static_cast<f64>(radius * radius);
    const i32 reach = static_cast<i32>(radius);
    for (i32 dy = -reach; dy < reach; ++dy) {
        // Meant: the rows stay locked. The mask has no folders and could not be paged anyway.
        u8* row = nullptr;
        if (mask->LockLines(dy + reach, &row, nullptr) < 1)
            return Failed;
        FillMaskRow(row, reach, dy, falloff);
    }
    created = 1;
    return Done;
}

i32 Brush::Destroy()
{
    if (mask != nullptr)
        mask->Reset();
    info = {};
    created = 0;
    return Done;
}

i32 Brush::Stroke(Raster* raster, u32 color, i32 x, i32 y, PixelRect* painted)
{
    if (!created)
        return WrongState;
    if (raster == nullptr)
        return BadArgument;
    // A position at the end of the numbers wraps; what comes of it is ordered and clipped like any
    // other rectangle.
    const u32 column = static_cast<u32>(x);
    const u32 row = static_cast<u32>(y);
    PixelRect rectangle = {
        static_cast<i32>(column - info.radius), static_cast<i32>(row - info.radius),
        static_cast<i32>(column + info.radius), static_cast<i32>(row + info.radius)};
    (void)raster->BlendMask(color, &rectangle, mask, 0, 0);
    if (painted != nullptr)
        *painted = rectangle;
    return Done;
}

i32 Brush::GetInfo(BrushInfo* target) const
{
    if (target == nullptr)
        return Failed;
    const size_t asked = target->size;
    memcpy(target, &info, asked < sizeof(info) ? asked : sizeof(info));
    return Done;
}
