// Pinning lines, and the paging that it and the release bring about.

#include "foundation/MemoryGauge.h"
#include "image/Raster.h"

i32 Raster::LockLines(i32 line, u8** out, u32* count)
{
    if (out == nullptr)
        return BadArgument;
    if (!created)
        return WrongState;
    const u32 first = IndexOf(line, info.height);
    if (first >= info.height)
        return Failed;
    u32 wanted = count != nullptr ? *count : 1;
    if (wanted > info.height - first)
        wanted = info.height - first;
    i32 status = Done;
    u32 done = 0;
    for (; done < wanted; ++done) {
        const u32 current = first + done;
        // A line whose record or physical line was lost in an earlier failure has no data to give.
        if (current >= records) {
            status = NothingDone;
            break;
        }
        if (swapped[current]) {
            status = SwapInLine(current);
            if (status < 0)
                break;
        }
        u8** slot = nullptr;
        if (lineRef[current] >= lineCount ||
            GetLineSlot(static_cast<u32>(lineRef[current]), &slot) < 1) {
            status = NothingDone;
            break;
        }
        locked[current] = 1;
        out[done] = *slot;
        status = Done;
    }
    if (count != nullptr)
        *count = done;
    return status;
}

i32 Raster::ReleaseLines(i32 line, u32 count, i32 force)
{
    if (!created)
        return WrongState;
    const u32 first = IndexOf(line, info.height);
    if (first >= info.height)
        return Failed;
    // Meant: a run that reaches the last line is cut to nothing, so the last line stays pinned and
    // resident until UnlockAll. Plugins were written against lines that behave so.
    i64 cut = count;
    if (u64{first} + count >= info.height)
        cut = i64{info.height} - first - count;
    if (cut < 1)
        return Done;
    for (u32 i = first; i < first + cut && i < records; ++i) {
        locked[i] = 0;
        if ((MemoryGauge::HasRoomFor(info.stride) < 1 || force) && SwapOutLine(i) < 0)
            return NothingDone;
    }
    return Done;
}

bool Raster::GetKeptLines(i64 line, u32 count, u8** out) const
{
    const u32 end = info.height < records ? info.height : records;
    if (line < 0 || line + count > end || !KeepsLines())
        return false;
    const u32* const inFile = swapped + line;
    const uintptr_t* const physical = lineRef + line;
    for (u32 i = 0; i < count; ++i) {
        if (inFile[i] || physical[i] >= lineCount)
            return false;
        out[i] = lines[physical[i]];
    }
    return true;
}

void Raster::PassKeptLines(i64 line, u32 count)
{
    // The last line is not let go of.
    for (u32 i = 0; i < count; ++i)
        locked[line + i] = line + i + 1 == info.height;
}

i32 Raster::UnlockAll()
{
    if (!created)
        return WrongState;
    for (u32 i = 0; i < records; ++i)
        locked[i] = 0;
    return Done;
}
