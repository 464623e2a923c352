// Lines in files: naming them, writing a line out, reading it back, and choosing which line goes.

#include "foundation/MemoryGauge.h"
#include "image/Raster.h"

#include <handheld.h>

namespace
{

constexpr u32 MostRedraws = 100;
constexpr u32 NameRoom = 13; // for the number, the extension and the final zero

// The reference of a line that found no name: beyond every physical line, and far enough from
// either end that counting it up and down with the others keeps it there.
constexpr uintptr_t NoLine = UINTPTR_MAX / 2;

} // namespace

// Draws a name that is free in `folder`, stores it as the line's reference and makes the file.
// Done; Failed when the folder takes no file, with the name left in place; NoStorage when the
// redraws ran out, with a reference to no line at all; NoMemory with the reference untouched.
i32 Raster::NameFile(u32 line, const WCHAR* folder, HANDLE* file)
{
    WCHAR* const name = static_cast<WCHAR*>(TakeBlock((wcslen(folder) + NameRoom) * sizeof(WCHAR)));
    if (name == nullptr)
        return NoMemory;
    lineRef[line] = reinterpret_cast<uintptr_t>(name);
    for (u32 redraws = 0;; ++redraws) {
        ::wsprintfW(name, TEXT("%s%06d.tmp"), folder, static_cast<int>(::Random() % 1000000));
        const HANDLE probe = ::CreateFileW(name, 0, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                           FILE_ATTRIBUTE_NORMAL, nullptr);
        if (probe == INVALID_HANDLE_VALUE)
            break;
        ::CloseHandle(probe);
        if (redraws == MostRedraws) {
            GiveBlock(name);
            lineRef[line] = NoLine;
            return NoStorage;
        }
    }
    *file = ::CreateFileW(name, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                          FILE_ATTRIBUTE_NORMAL, nullptr);
    return *file != INVALID_HANDLE_VALUE ? Done : Failed;
}

// As NameFile in the first folder, then once in the second. Failed is the second folder's, with the
// name left in place; without a second folder NoStorage and no name.
i32 Raster::MakeLineFile(u32 line, HANDLE* file)
{
    const i32 status = NameFile(line, primaryDir, file);
    if (status != Failed)
        return status;
    DropName(line);
    if (secondaryDir == nullptr)
        return NoStorage;
    return NameFile(line, secondaryDir, file);
}

// Puts a new line into an empty file. Failed without a folder; NoMemory; NoStorage.
i32 Raster::MakeBlankFile(u32 line)
{
    if (primaryDir == nullptr)
        return Failed;
    HANDLE file = INVALID_HANDLE_VALUE;
    const i32 status = MakeLineFile(line, &file);
    // Failed: the second folder took no file either. That goes unnoticed here: the line has a name
    // with no file behind it and will read as blank, as one with an empty file does.
    if (status < 0 && status != Failed)
        return status;
    if (status > 0)
        ::CloseHandle(file);
    swapped[line] = 1;
    return Done;
}

// Writes a physical line and closes the file. False when it came up short. A physical line that
// does not exist has nothing to write.
bool Raster::WriteLineFile(HANDLE file, uintptr_t physical)
{
    u8** slot = nullptr;
    DWORD written = 0;
    const bool found = physical < lineCount && GetLineSlot(static_cast<u32>(physical), &slot) > 0;
    if (found)
        ::WriteFile(file, *slot, info.stride, &written, nullptr);
    ::CloseHandle(file);
    return found && written == info.stride;
}

void Raster::DropName(u32 line)
{
    GiveBlock(reinterpret_cast<void*>(lineRef[line]));
    lineRef[line] = 0;
}

void Raster::DeleteLineFile(u32 line)
{
    ::DeleteFileW(reinterpret_cast<const WCHAR*>(lineRef[line]));
    DropName(line);
}

// Done; NothingDone for a line already out; Failed for a locked line or without a folder; NoMemory;
// NoStorage.
//
// After NoStorage the reference holds 0, or no line when the redraws ran out, while the line counts
// as resident: its physical line belongs to nobody until Reset. Meant: no attempt at a rescue may
// write more where storage has just run out. The person is told that the picture may be damaged.
i32 Raster::SwapOutLine(u32 line)
{
    const uintptr_t physical = lineRef[line];
    if (locked[line])
        return Failed;
    if (swapped[line])
        return NothingDone;
    if (primaryDir == nullptr)
        return Failed;
    HANDLE file = INVALID_HANDLE_VALUE;
    i32 status = MakeLineFile(line, &file);
    if (status > 0 && !WriteLineFile(file, physical)) {
        // The disk is full.
        DeleteLineFile(line);
        if (secondaryDir == nullptr)
            return NoStorage;
        status = NameFile(line, secondaryDir, &file);
        if (status > 0 && !WriteLineFile(file, physical)) {
            DeleteLineFile(line);
            return NoStorage;
        }
    }
    if (status == Failed) {
        DropName(line);
        return NoStorage;
    }
    if (status < 0)
        return status;
    swapped[line] = 1;
    DropPhysicalLine(physical, line, 1);
    return Done;
}

i32 Raster::SwapInLine(u32 line)
{
    while (MemoryGauge::HasRoomFor(info.stride) < 1) {
        const i64 victim = PickVictim(line);
        if (victim < 0)
            break;
        if (SwapOutLine(static_cast<u32>(victim)) < 0)
            return NoStorage;
    }
    // With every line pinned this goes past the reserve: a line that is asked for must come.
    if (LineTable::InsertLines(0, 1) < 0)
        return NoMemory;
    for (u32 i = 0; i < records; ++i)
        lineRef[i] += swapped[i] == 0;
    ReadLineFile(line, lines[0]);
    return Done;
}

// Reads a line's file into its new block and deletes it. The line has no reference then.
void Raster::ReadLineFile(u32 line, u8* bytes)
{
    const HANDLE file =
        ::CreateFileW(reinterpret_cast<const WCHAR*>(lineRef[line]), GENERIC_READ, FILE_SHARE_READ,
                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
        // A short or failed read leaves the zeros of the new line: a file that was never filled is
        // a blank line.
        DWORD got = 0;
        ::ReadFile(file, bytes, info.stride, &got, nullptr);
        ::CloseHandle(file);
    }
    swapped[line] = 0;
    DeleteLineFile(line);
}

// The resident, unpinned line farthest from `line`, the lower one of two at the same distance:
// sweeps go from top to bottom, and a band around the current row stays. NoMemory when none can go.
i64 Raster::PickVictim(u32 line) const
{
    const u32 height = info.height < records ? info.height : records;
    i64 distance = line;
    i64 top = 0;
    i64 bottom = i64{height} - 1;
    do {
        if (distance > bottom - line) {
            if (!swapped[top] && !locked[top])
                return top;
            ++top;
            --distance;
        } else {
            if (!swapped[bottom] && !locked[bottom])
                return bottom;
            --bottom;
        }
    } while (bottom >= line || top <= line);
    return NoMemory;
}
