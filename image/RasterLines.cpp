// Inserting, removing and exchanging logical lines.

#include "foundation/MemoryGauge.h"
#include "image/Raster.h"

#include <string.h>
#include <utility>

i32 Raster::TakeRecords(u64 count, Records* out)
{
    out->swapped = static_cast<u32*>(TakeBlock(count * sizeof(u32)));
    out->locked = static_cast<u32*>(TakeBlock(count * sizeof(u32)));
    out->lineRef = static_cast<uintptr_t*>(TakeBlock(count * sizeof(uintptr_t)));
    if (out->swapped != nullptr && out->locked != nullptr && out->lineRef != nullptr)
        return Done;
    GiveRecords(out);
    return NoMemory;
}

void Raster::GiveRecords(Records* taken)
{
    GiveBlock(taken->swapped);
    GiveBlock(taken->locked);
    GiveBlock(taken->lineRef);
    *taken = {};
}

void Raster::CopyRecords(const Records& target, u32 to, u32 from, u32 count) const
{
    if (from >= records)
        return;
    if (count > records - from)
        count = records - from;
    memmove(target.swapped + to, swapped + from, size_t{count} * sizeof(u32));
    memmove(target.locked + to, locked + from, size_t{count} * sizeof(u32));
    memmove(target.lineRef + to, lineRef + from, size_t{count} * sizeof(uintptr_t));
}

void Raster::InstallRecords(const Records& made, u32 count)
{
    Records old = {swapped, lineRef, locked};
    GiveRecords(&old);
    swapped = made.swapped;
    locked = made.locked;
    lineRef = made.lineRef;
    records = count;
}

// Records beyond the height are left over from a removal that found no memory; their files go with
// them.
void Raster::DropRecordsFrom(u32 line)
{
    for (; line < records; ++line)
        if (swapped[line]) {
            DeleteLineFile(line);
            swapped[line] = 0;
        }
}

i32 Raster::InsertLines(i32 at, u32* count)
{
    const u32 wanted = count != nullptr ? *count : 1;
    if (!created)
        return WrongState;
    const u32 oldHeight = info.height;
    const u32 first = IndexOf(at, oldHeight);
    if (first > oldHeight)
        return Failed;
    // The height grows first and stays grown when what follows fails.
    info.height += wanted;
    Records made = {};
    if (TakeRecords(u64{oldHeight} + wanted, &made) < 0)
        return NoMemory;
    CopyRecords(made, 0, 0, first);
    CopyRecords(made, first + wanted, first, oldHeight - first);
    DropRecordsFrom(oldHeight);
    InstallRecords(made, info.height);
    return FillNewLines(first, wanted);
}

// Gives each new line in order a blank physical line, or an empty file where the gauge sees no
// room.
//
// Line by line, each would enter at physical index 0 and raise the reference of every line in
// memory by 1, with the table built anew each time: quadratic in the height. Here the table is
// built ahead for several, and the references are raised once, by the number of lines that entered.
// The outcome is the same: the k-th of n lines that enter ends with n - 1 - k later ones before it,
// a line that was there has n before it, and a new line that was not reached when a step failed has
// had n times 1 added to its 0. Each line still asks the gauge and takes its block in order, so
// that a failure ends the work at the same line with the same result.
i32 Raster::FillNewLines(u32 first, u32 count)
{
    const u32 end = first + count;
    LineRun run;
    u32 entered = 0;
    i32 status = Done;
    u32 line = first;
    for (; line < end; ++line) {
        lineRef[line] = entered;
        if (MemoryGauge::HasRoomFor(info.stride) > 0) {
            status = EnterOneOf(&run, end - line);
            if (status < 0)
                break;
            ++entered;
        } else {
            status = MakeBlankFile(line);
            if (status < 0)
                break;
        }
    }
    ClosePlaces(&run);
    for (u32 i = 0; i < records; ++i) {
        if (swapped[i])
            continue;
        if (i < first || i >= end)
            lineRef[i] += entered;
        else if (i < line)
            lineRef[i] = entered - 1 - lineRef[i];
        else if (i > line)
            lineRef[i] = entered;
    }
    return status;
}

// Whether one of these lines is locked and in a physical line.
bool Raster::IsPinned(uintptr_t physical, u32 from, u32 to) const
{
    constexpr u32 Block = 64;
    for (u32 i = from; i < to;) {
        const u32 end = to - i < Block ? to : i + Block;
        u32 any = 0; // few are locked
        for (u32 k = i; k < end; ++k)
            any |= locked[k];
        for (; any != 0 && i < end; ++i)
            if (locked[i] && !swapped[i] && lineRef[i] == physical)
                return true;
        i = end;
    }
    return false;
}

// Frees a physical line and closes the gap in the references. Lines [removedFrom, removedFrom +
// removedCount) are on their way out and are not looked at.
//
// After a failure to page out, or a removal of several lines, two lines may refer to one physical
// line. An address that LockLines gave stays valid until its release, so a physical line under a
// locked line is let be.
void Raster::DropPhysicalLine(uintptr_t physical, u32 removedFrom, u32 removedCount)
{
    if (physical >= lineCount)
        return;
    const u32 first = removedFrom < records ? removedFrom : records;
    const u32 behind = removedCount < records - first ? first + removedCount : records;
    if (IsPinned(physical, 0, first) || IsPinned(physical, behind, records))
        return;
    // Without memory for the smaller table the line goes within the one that is there: it is in
    // such moments that lines are put out, each makes room, and none may be lost.
    if (LineTable::DeleteLines(static_cast<i32>(physical), 1) < 0) {
        GiveBlock(lines[physical]);
        memmove(lines + physical, lines + physical + 1, (lineCount - physical) * sizeof(u8*));
    }
    // By the sign of the difference: without branch and comparison, processors do several at once.
    // Each line that goes out comes by here.
    constexpr u32 SignBit = sizeof(uintptr_t) * 8 - 1;
    for (u32 i = 0; i < records; ++i)
        lineRef[i] -=
            ((physical - lineRef[i]) >> SignBit) & static_cast<uintptr_t>(swapped[i] == 0);
}

i32 Raster::RemoveLines(i32 at, u32* count)
{
    const u32 asked = count != nullptr ? *count : 1;
    if (!created)
        return WrongState;
    const u32 oldHeight = info.height;
    const u32 first = IndexOf(at, oldHeight);
    if (first >= oldHeight)
        return Failed;
    // Meant: a run that reaches the end is cut to height - count - at, which is 0 or less, so the
    // last line cannot be removed. TakeFrom leaves its source's last line to the source's end.
    const u32 removed = u64{asked} + first >= oldHeight ? 0 : asked;
    // The height drops first and stays lowered when the arrays cannot be had.
    info.height = oldHeight - removed;
    Records made = {};
    if (TakeRecords(info.height, &made) < 0)
        return NoMemory;
    for (u32 line = first; line < first + removed && line < records; ++line) {
        if (swapped[line]) {
            DeleteLineFile(line);
            swapped[line] = 0;
            locked[line] = 0;
        } else {
            // Meant: it is the first removed line's index that each resident line of the run frees.
            // Single removals, the program's only kind, see no difference.
            DropPhysicalLine(lineRef[first], first, removed);
        }
    }
    CopyRecords(made, 0, 0, first);
    CopyRecords(made, first, first + removed, info.height - first);
    DropRecordsFrom(oldHeight);
    InstallRecords(made, info.height);
    return Done;
}

i32 Raster::SwapLines(i32 a, i32 b)
{
    if (!created)
        return WrongState;
    const u32 first = IndexOf(a, info.height);
    const u32 second = IndexOf(b, info.height);
    if (first >= info.height || second >= info.height || first >= records || second >= records)
        return Failed;
    std::swap(swapped[first], swapped[second]);
    std::swap(lineRef[first], lineRef[second]);
    std::swap(locked[first], locked[second]);
    return Done;
}
