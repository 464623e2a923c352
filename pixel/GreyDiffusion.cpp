#include "pixel/GreyDiffusion.h"

#include "pixel/RowKernels.h"

#include <handheld.h>

#include <algorithm>
#include <string.h>
#include <utility>

namespace
{

// Pixels that are drawn together: what one pixel need not wait for the other with is done for all
// of them at once, before and after the errors go from pixel to pixel.
constexpr u32 RunPixels = 64;

// The levels' brightness is 0, 128, 192 and 255, and a pixel's level changes at 64, 128 and 196.
//
// Meant: the highest boundary is 196 and not the middle between the two brightest levels. The top
// of the scale has a narrower band than its neighbours.
constexpr i32 Boundaries[] = {64, 128, 196};

struct Run {
    // Had before. What a pixel must get of the errors before it to reach each higher level, and
    // seven times its brightness with what the pixel to its right gets from the row above.
    i32 boundaries[3][RunPixels];
    i32 handedOn[RunPixels];
    u16 luma[RunPixels];
    // Had on the way: what the pixel did get, and seven times its level's brightness.
    i32 given[RunPixels];
    i32 levels[RunPixels];
    // Had after: the errors, those of the two pixels before the run first; and two bits a pixel.
    i32 errors[RunPixels + 2];
    u8 bits[RunPixels];
};

void Prepare(Run* __restrict run, const u8* source, u32 count, const i32* __restrict current)
{
    signed char random[RunPixels];
    for (u32 i = 0; i < count; ++i)
        random[i] = static_cast<signed char>(::Random() & 255);
    Kernels().lumaRow24(run->luma, source, count);
    for (u32 i = 0; i < count; ++i) {
        const i32 noise = random[i] / 32; // from -4 to 3
        const i32 darkness = noise - run->luma[i];
        run->boundaries[0][i] = Boundaries[0] + darkness;
        run->boundaries[1][i] = Boundaries[1] + darkness;
        run->boundaries[2][i] = Boundaries[2] + darkness;
        run->handedOn[i] = 7 * run->luma[i] + current[i + 1];
    }
}

// Takes the errors through the run: `sixteenths` is what its first pixel gets, the result what the
// first pixel behind it does. The levels are chosen without a branch, as noise cannot be foreseen,
// and seven times their brightness is chosen in place of the brightness: it is all that the next
// pixel waits for.
i32 Diffuse(Run* run, u32 count, i32 sixteenths)
{
    for (u32 i = 0; i < count; ++i) {
        const i32 given = sixteenths / 16;
        // Bits of the middle boundary's step, else none: a third choice would become a branch.
        const i32 middle = (run->boundaries[1][i] - 1 - given) >> 31;
        const i32 low = given >= run->boundaries[0][i] ? 7 * 128 : 0;
        const i32 high =
            (given >= run->boundaries[2][i] ? 7 * (255 - 128) : 7 * (192 - 128)) & middle;
        sixteenths = (run->handedOn[i] - given) + 8 * given - low - high;
        run->given[i] = given;
        run->levels[i] = low + high;
    }
    return sixteenths;
}

void Finish(Run* __restrict run, u32 count, i32* __restrict next)
{
    for (u32 i = 0; i < count; ++i) {
        const u32 seventh = static_cast<u32>(run->levels[i]) * 9363 >> 16; // exact for the four
        run->errors[i + 2] = run->luma[i] + run->given[i] - static_cast<i32>(seventh);
        run->bits[i] = static_cast<u8>((seventh >> 7) + (seventh >> 6 & 1) + (seventh & 1));
    }
    // A pixel has all its errors when the one to its right is drawn.
    for (u32 i = 0; i < count; ++i)
        next[static_cast<ptrdiff_t>(i) - 1] +=
            run->errors[i] + 5 * run->errors[i + 1] + 3 * run->errors[i + 2];
    run->errors[0] = run->errors[count];
    run->errors[1] = run->errors[count + 1];
}

// Four pixels a byte. Those behind the last are 0.
void Pack(u8* target, Run* run, u32 count)
{
    memset(run->bits + count, 0, RunPixels - count);
    for (u32 i = 0; i < count; i += 4)
        *target++ = static_cast<u8>(run->bits[i] << 6 | run->bits[i + 1] << 4 |
                                    run->bits[i + 2] << 2 | run->bits[i + 3]);
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
    run.errors[0] = 0;
    run.errors[1] = 0;
    i32 sixteenths = *current;
    for (u32 done = 0; done < columns; done += RunPixels) {
        const u32 count = std::min(columns - done, RunPixels);
        Prepare(&run, source + size_t{3} * done, count, current + done);
        sixteenths = Diffuse(&run, count, sixteenths);
        Finish(&run, count, next + done);
        Pack(target + done / 4, &run, count);
    }
    next[static_cast<ptrdiff_t>(columns) - 1] += run.errors[0] + 5 * run.errors[1];
    next[columns] += run.errors[1];
}
