// Taking over another raster's lines.

#include "foundation/MemoryGauge.h"
#include "image/Raster.h"

#include <string.h>
#include <utility>

// The plain road is TakeLine for each line; it rebuilds the records and the table of both rasters
// every time, which is quadratic in the height. TakePortion moves a portion of lines with one
// rebuilding, on either side and of either kind.
//
// The outcome is the same. For each line in its turn the gauge is asked, the empty file made where
// it sees no room, the block taken, the source's line read in, copied and given back, so that the
// files are made and deleted in the same order and never more than one line is held twice. A line
// that fails ends the work there, and then, too, both rasters are brought to exact size and true
// references, as the plain road leaves them. Nor does it run short earlier: a portion's spare
// places are a fraction of the second records and table that each rebuilding of the larger raster
// holds for a moment. Where a portion cannot be had its first line goes the plain road; so does a
// line whose reading in puts others of the source out, and the source's last line, which stays.
i32 Raster::TakeFrom(Raster* source)
{
    if (source == nullptr || source == this)
        return BadArgument;
    RasterInfo from = {};
    from.size = sizeof(from);
    (void)source->GetInfo(&from);
    SwapDirs folders = {};
    (void)source->GetSwapDirs(&folders);
    i32 status = Create(from.width, 0, from.depth, folders.primary, folders.secondary);
    if (status < 0)
        return status;
    // A source whose records found no memory can name billions of lines, and has not one.
    if (from.height > 0 && source->records == 0)
        return NoMemory;
    const u32 portion = from.height / TakenInPortions;
    for (u32 line = 0; line < from.height;) {
        const u32 removable = from.height - 1 - line;
        u32 taken = 0;
        status = Done;
        if (portion > 1 && removable > 0)
            status = TakePortion(source, portion < removable ? portion : removable, &taken);
        if (status > 0 && taken == 0) {
            status = TakeLine(source, line);
            taken = 1;
        }
        if (status < 0)
            return status;
        line += taken;
    }
    if (palette == nullptr || source->palette == nullptr)
        return NoMemory;
    status = palette->CopyFrom(source->palette);
    return status < 0 ? status : Done;
}

i32 Raster::TakeLine(Raster* source, u32 index)
{
    const i32 line = static_cast<i32>(index);
    u8* target = nullptr;
    i32 status = InsertLines(line, nullptr);
    if (status < 0)
        return status;
    status = LockLines(line, &target, nullptr);
    if (status < 0)
        return status;
    status = source->MoveFirstLine(target);
    if (status < 0)
        return status;
    // The line is the last one so far, which this release leaves locked: what has been taken over
    // stays in memory until UnlockAll.
    (void)ReleaseLines(line, 1, 0);
    return Done;
}

i32 Raster::MoveFirstLine(u8* target)
{
    u8* moved = nullptr;
    const i32 status = LockLines(0, &moved, nullptr);
    if (status < 0)
        return status;
    if (target != nullptr && moved != nullptr)
        memcpy(target, moved, stride);
    // Removing the only line does nothing, so the last line is copied and stays.
    (void)RemoveLines(0, nullptr);
    return Done;
}

// Takes up to `count` lines, fewer than the source has. Done with none taken where the next line
// has to go the plain road.
i32 Raster::TakePortion(Raster* source, u32 count, u32* taken)
{
    *taken = 0;
    LineRun run;
    if (!source->IsConsistent() || OpenPortion(&run, count) < 0)
        return Done;
    const u32 start = records;
    u32 victims = source->records;
    u32 done = 0;
    i32 status = Done;
    for (; done < count; ++done) {
        status = MakePinnedLine(&run, start + done);
        if (status < 0)
            break;
        status = source->HandOutLine(done, lines[0], &victims);
        if (status < Done)
            break;
    }
    ClosePortion(&run, start + count);
    source->DropHandedOut(done);
    if (status == NothingDone) {
        status = source->MoveFirstLine(lines[0]);
        ++done;
    }
    *taken = done;
    return status;
}

// Records and table with places for `count` more lines. NoMemory, with nothing changed.
i32 Raster::OpenPortion(LineRun* run, u32 count)
{
    Records made = {};
    if (TakeRecords(u64{records} + count, &made) < 0)
        return NoMemory;
    if (OpenPlaces(run, count) < 0) {
        GiveRecords(&made);
        return NoMemory;
    }
    CopyRecords(made, 0, 0, records);
    InstallRecords(made, records);
    return Done;
}

// `room`: the records that there are places for. Each line entered before all earlier ones, in the
// table of a raster that began empty.
void Raster::ClosePortion(LineRun* run, u32 room)
{
    ClosePlaces(run);
    for (u32 i = 0; i < lineCount; ++i)
        lineRef[i] = lineCount - 1 - i;
    Records made = {};
    if (records < room && TakeRecords(records, &made) > 0) {
        CopyRecords(made, 0, 0, records);
        InstallRecords(made, records);
    }
}

// A blank line at the end, in memory at physical index 0 and locked. Where the gauge sees no room
// its empty file is made all the same and then read in past the reserve: every earlier line is
// locked and none can go for it.
i32 Raster::MakePinnedLine(LineRun* run, u32 line)
{
    // The height grows first and stays grown when what follows fails.
    info.height = line + 1;
    records = line + 1;
    i32 status = Done;
    if (MemoryGauge::HasRoomFor(info.stride) < 1)
        status = MakeBlankFile(line);
    if (status > 0)
        status = EnterLine(run);
    if (status < 0)
        return status;
    if (swapped[line])
        ReadLineFile(line, lines[0]);
    locked[line] = 1;
    return Done;
}

// Copies a line out and frees its block, which leaves a gap in the table. A line in a file gets a
// block that never enters the table. NothingDone where other lines have to go out for it first; for
// `victims` see HasVictimBehind.
i32 Raster::HandOutLine(u32 line, u8* target, u32* victims)
{
    u8* block = nullptr;
    if (swapped[line]) {
        if (MemoryGauge::HasRoomFor(info.stride) < 1 && HasVictimBehind(line, victims))
            return NothingDone;
        block = static_cast<u8*>(TakeBlock(info.stride));
        if (block == nullptr)
            return NoMemory;
        ReadLineFile(line, block);
    } else {
        std::swap(block, lines[lineRef[line]]);
    }
    memcpy(target, block, info.stride);
    GiveBlock(block);
    return Done;
}

// Whether PickVictim would find a line to put out behind `line`, with all before it gone. Lines
// from `*end` on are known to be none; no line becomes one while a portion is taken, so that the
// search goes through the records once.
bool Raster::HasVictimBehind(u32 line, u32* end) const
{
    for (; *end > line + 1; --*end)
        if (!swapped[*end - 1] && !locked[*end - 1])
            return true;
    return false;
}

// Whether the records are as many as the lines, and each physical line belongs to one of them: not
// so after a failure that lost a line.
bool Raster::IsConsistent()
{
    if (records != info.height || lineCount > records)
        return false;
    // Which physical lines have been seen is noted in flags that are there already.
    constexpr u32 Seen = 2;
    u32 resident = 0;
    bool single = true;
    for (u32 i = 0; i < records && single; ++i) {
        if (swapped[i])
            continue;
        const uintptr_t physical = lineRef[i];
        single = physical < lineCount && (locked[physical] & Seen) == 0;
        if (single) {
            locked[physical] |= Seen;
            ++resident;
        }
    }
    for (u32 i = 0; i < records; ++i)
        locked[i] &= ~Seen;
    return single && resident == lineCount;
}

// Removes the first `count` lines, which have been handed out.
void Raster::DropHandedOut(u32 count)
{
    if (count == 0)
        return;
    CloseGaps(count);
    const u32 left = records - count;
    Records made = {};
    if (TakeRecords(left, &made) > 0) {
        CopyRecords(made, 0, count, left);
        InstallRecords(made, left);
    } else {
        CopyRecords({swapped, lineRef, locked}, 0, count, left);
        records = left;
    }
    info.height = left;
}

// Moves the physical lines together and brings the references of the lines from `first` on up to
// date. While it does so, records and table exchange their contents: a record holds the address of
// its line's block, and the table the number of the line that is there, plus 1, or 0 for a gap.
void Raster::CloseGaps(u32 first)
{
    for (u32 i = first; i < records; ++i) {
        if (swapped[i])
            continue;
        u8*& place = lines[lineRef[i]];
        lineRef[i] = reinterpret_cast<uintptr_t>(place);
        place = reinterpret_cast<u8*>(uintptr_t{i} + 1);
    }
    u32 kept = 0;
    for (u32 i = 0; i < lineCount; ++i) {
        const uintptr_t owner = reinterpret_cast<uintptr_t>(lines[i]);
        if (owner == 0)
            continue;
        uintptr_t& reference = lineRef[owner - 1];
        lines[kept] = reinterpret_cast<u8*>(reference);
        reference = kept++;
    }
    lineCount = kept;
    TrimTable();
}
