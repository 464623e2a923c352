#include "pixel/GreyDiffusion.h"

#include <handheld.h>

#include <string.h>
#include <utility>

namespace
{

// The brightness that each level shows.
constexpr i32 Brightness[4] = {0, 128, 192, 255};

u32 LevelOf(i32 light, i32 noise)
{
    if (light < noise + 64)
        return 0;
    if (light < noise + 128)
        return 1;
    // Meant: not the middle between the two brightest levels. The top of the scale has a narrower
    // band than its neighbours.
    return light < noise + 196 ? 2 : 3;
}

// From -4 to 3.
i32 Noise()
{
    return static_cast<signed char>(::Random() & 255) / 32;
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

void DiffuseGreyRow(u8* target, const u8* source, u32 columns, i32* current, i32* next)
{
    for (u32 x = 0; x < columns; ++x, source += 3, ++current, ++next) {
        const i32 luma = (28 * source[0] + 77 * source[2] + 151 * source[1]) >> 8;
        const i32 light = luma + current[0] / 16;
        const u32 level = LevelOf(light, Noise());
        const i32 error = light - Brightness[level];
        current[1] += 7 * error;
        next[-1] += 3 * error;
        next[0] += 5 * error;
        next[1] += error;
        target[x >> 2] = static_cast<u8>(target[x >> 2] | level << (6 - (x & 3) * 2));
    }
}
