#include "pixel/StretchRow.h"

#include "pixel/RowKernels.h"

#include <algorithm>
#include <string.h>

namespace
{

constexpr u32 One = 0x10000; // in 16.16
constexpr size_t VectorBytes = 16;

// The byte of the source at which a position's pixel begins.
size_t ByteAt(u32 position)
{
    return size_t{3} * (position >> 16);
}

void StretchPlainly(u8* target, const u8* source, u32 position, u32 step, size_t count)
{
    for (u8* const end = target + 3 * count; target != end; target += 3, position += step) {
        const u8* const pixel = source + ByteAt(position);
        target[0] = pixel[0];
        target[1] = pixel[1];
        target[2] = pixel[2];
    }
}

// Four bytes at a time: the fourth is written over by the next pixel. Not for a row's last pixel,
// nor for one behind which nothing may be read.
void StretchByFours(u8* target, const u8* source, u32 position, u32 step, size_t count)
{
    for (u8* const end = target + 3 * count; target != end; target += 3, position += step) {
        u32 pixel;
        memcpy(&pixel, source + ByteAt(position), sizeof(pixel));
        memcpy(target, &pixel, sizeof(pixel));
    }
}

// How many pixels from `position` on can be read with three bytes more than their own.
size_t CountReadable(const StretchColumns& columns, u32 position, size_t count)
{
    if (count == 0 || columns.sourceBytes < 6)
        return 0;
    const u64 last = columns.sourceBytes / 3 - 1; // of pixels with another behind them
    const u64 end = last << 16;
    if (position >= end)
        return 0;
    if (columns.step == 0)
        return count;
    const u64 inside = (end - position + columns.step - 1) / columns.step;
    return static_cast<size_t>(std::min<u64>(inside, count));
}

void MapBlock(StretchColumns* columns, size_t block, u32 position)
{
    const size_t first = ByteAt(position);
    columns->offsets[block] = static_cast<u32>(first);
    u8* const shuffle = columns->shuffles[block];
    for (size_t i = 0; i < StretchBlockPixels; ++i, position += columns->step)
        for (size_t channel = 0; channel < 3; ++channel)
            shuffle[3 * i + channel] = static_cast<u8>(ByteAt(position) - first + channel);
    shuffle[VectorBytes - 1] = 0; // the next block writes over it
}

} // namespace

void MapColumns(StretchColumns* columns, u32 start, u32 step, size_t count, size_t sourceBytes)
{
    columns->start = start;
    columns->step = step;
    columns->count = count;
    columns->sourceBytes = sourceBytes;
    columns->blocks = 0;
    if (step > One || count == 0)
        return;
    // A block writes a byte of the pixel behind it, which must be there.
    const size_t most = std::min(MostStretchBlocks, (count - 1) / StretchBlockPixels);
    u32 position = start;
    for (; columns->blocks < most; position += static_cast<u32>(StretchBlockPixels) * step) {
        if (ByteAt(position) + VectorBytes > sourceBytes)
            return;
        MapBlock(columns, columns->blocks++, position);
    }
}

void StretchRow24(u8* target, const u8* source, const StretchColumns& columns)
{
    u32 position = columns.start;
    size_t left = columns.count;
    if (left == 0)
        return;
    if (!Overlap(target, 3 * left, source, columns.sourceBytes)) {
        const auto blocks = Kernels().stretchBlocks;
        size_t done = blocks != nullptr ? columns.blocks * StretchBlockPixels : 0;
        if (done > 0)
            blocks(target, source, columns);
        position += static_cast<u32>(done) * columns.step;
        const size_t readable = CountReadable(columns, position, left - done - 1);
        StretchByFours(target + 3 * done, source, position, columns.step, readable);
        position += static_cast<u32>(readable) * columns.step;
        done += readable;
        target += 3 * done;
        left -= done;
    }
    StretchPlainly(target, source, position, columns.step, left);
}
