#include "pixel/GreyDiffusion.h"

#include "pixel/RowKernels.h"

#include <handheld.h>

#include <algorithm>
#include <string.h>
#include <utility>

namespace
{

// Pixels whose noise and brightness are had first, so that only the errors go from pixel to pixel.
constexpr u32 RunPixels = 64;

struct Run {
    i32 noise[RunPixels];
    u16 luma[RunPixels];
};

// From -4 to 3.
i32 Noise()
{
    return static_cast<signed char>(::Random() & 255) / 32;
}

void Prepare(Run* run, const u8* source, u32 count)
{
    for (u32 i = 0; i < count; ++i)
        run->noise[i] = Noise();
    Kernels().lumaRow24(run->luma, source, count);
}

// The errors of the last two pixels, the nearest first.
struct Errors {
    i32 last;
    i32 before;
};

// All bits from a boundary on, else none. No branch: noise cannot be foreseen.
i32 From(i32 light, i32 boundary)
{
    return (boundary - 1 - light) >> 31;
}

// Draws a pixel and gives its level. The pixel before it has all its errors then and hands them
// down.
//
// Meant: the highest boundary is 196 and not the middle between the two brightest levels. The top
// of the scale has a narrower band than its neighbours.
u32 DiffusePixel(Errors* errors, i32 luma, i32 noise, const i32* current, i32* next)
{
    const i32 light = luma + (*current + 7 * errors->last) / 16;
    const i32 above = light - noise;
    // The levels' brightness is 0, 128, 192 and 255.
    const i32 error =
        (light - (From(above, 64) & 128)) - ((From(above, 128) & 64) + (From(above, 196) & 63));
    next[-1] += errors->before + 5 * errors->last + 3 * error;
    *errors = {error, errors->last};
    return static_cast<u32>(-(From(above, 64) + From(above, 128) + From(above, 196)));
}

} // namespace

GreyErrors::GreyErrors(Allocator* given)
    : allocator(given), columns(0), block(nullptr), current(nullptr), next(nullptr)
{
}

GreyErrors::~GreyErrors()
{
    if (block != nullptr)
        (void)allocator->Free(block);
}

i32 GreyErrors::Create(u32 newColumns)
{
    const u64 bytes = (u64{newColumns} + 2) * 2 * sizeof(i32);
    if (bytes > UINT32_MAX)
        return NoMemory;
    void* made = nullptr;
    const i32 status = allocator->Alloc(&made, static_cast<u32>(bytes));
    if (status < 1)
        return status;
    block = static_cast<i32*>(made);
    columns = newColumns;
    current = block + 1;
    next = current + columns + 2;
    return Done;
}

void GreyErrors::Advance()
{
    std::swap(current, next);
    // With the cells beside the row, which would otherwise add up from row to row.
    memset(next - 1, 0, (size_t{columns} + 2) * sizeof(i32));
}

void DiffuseGreyRow(u8* target, const u8* source, u32 columns, const i32* current, i32* next)
{
    Run run;
    Errors errors = {};
    u32 levels = 0; // of the pixels up to this one, two bits each
    for (u32 done = 0; done < columns; done += RunPixels) {
        const u32 count = std::min(columns - done, RunPixels);
        Prepare(&run, source + size_t{3} * done, count);
        for (u32 i = 0; i < count; ++i, ++current, ++next) {
            const u32 level = DiffusePixel(&errors, run.luma[i], run.noise[i], current, next);
            levels = levels << 2 | level;
            if ((i & 3) == 3 || i == count - 1)
                target[(done + i) >> 2] = static_cast<u8>(levels << (3 - (i & 3)) * 2);
        }
    }
    // `next` is that of the pixel behind the row.
    next[-1] += errors.before + 5 * errors.last;
    next[0] += errors.last;
}
