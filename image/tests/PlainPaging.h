// The paging of rasters written out plainly: logical lines and their files as lists, each operation
// step by step. A test runs an operation on a raster and on its plain form and compares results,
// counts, addresses, bytes and files.
#pragma once

#include "image/tests/PlainLineTable.h"

#include <cstdio>

/// What stands in a logical line's reference: a physical index, or the name of a file. A name that
/// stands there while the line is not in a file is beyond every physical index.
struct PlainRef {
    static constexpr i64 NameBlock = i64{1} << 40;
    i64 physical = 0;
    std::u16string folder;
    std::string name;
};

struct PlainRecord {
    bool swapped = false;
    bool locked = false;
    PlainRef ref;
};

/// The logical layer.
struct PlainPaging {
    explicit PlainPaging(PagingDevice* where) : device(where), table(where) {}
    ~PlainPaging() { Reset(); }
    PlainPaging(const PlainPaging&) = delete;
    PlainPaging& operator=(const PlainPaging&) = delete;

    using Folder = std::optional<std::u16string>;

    PagingDevice* device;
    PlainTable table;
    bool created = false;
    Folder primary;
    Folder secondary;
    std::vector<PlainRecord> lines;
    u32 width = 0;
    u32 height = 0; // as reported: changed before what may fail
    u32 depth = 0;
    u32 stride = 0;
    std::vector<PaletteEntry> palette;

    void Reset()
    {
        for (PlainRecord& line : lines)
            if (line.swapped)
                DeleteFileOf(line);
        lines.clear();
        width = height = depth = stride = 0;
        created = false;
        primary.reset();
        secondary.reset();
        palette.clear();
        table.Clear();
    }

    i32 Create(u32 newWidth, u32 newHeight, u32 newDepth, const Folder& first, const Folder& second)
    {
        // Copies: the folders may be this raster's own.
        const Folder newPrimary = first;
        const Folder newSecondary = second;
        Reset();
        const std::optional<u32> bytes = PlainStride(newWidth, newDepth);
        if (!bytes)
            return -1;
        depth = newDepth;
        stride = *bytes;
        primary = newPrimary;
        secondary = newSecondary;
        created = true;
        width = newWidth;
        const i32 made = table.Create(newWidth, 0, newDepth);
        if (made < 0)
            return made;
        const i32 inserted = InsertLines(0, newHeight);
        height = newHeight;
        return inserted;
    }

    i32 InsertLines(i32 where, u32 count)
    {
        if (!created)
            return -3;
        const i64 at = PlainIndex(where, height);
        if (at < 0 || at > height)
            return -1;
        height += count;
        if (device->noRecords)
            return -2;
        lines.insert(lines.begin() + at, count, PlainRecord{});
        for (u32 i = 0; i < count; ++i) {
            PlainRecord& line = lines[static_cast<size_t>(at) + i];
            if (device->HasRoomFor(stride)) {
                if (table.InsertLines(0, 1) < 0)
                    return -2;
                line = {};
                MoveReferencesUp();
                line.ref = {};
                continue;
            }
            if (!primary)
                return -1;
            PlainRef refused;
            const i32 named = MakeFile(line, &refused);
            // That neither folder takes the file goes unnoticed; the name stays.
            if (named < 0 && !(secondary && !refused.name.empty()))
                return named;
            if (named < 0)
                line.ref = refused;
            line.swapped = true;
        }
        return 1;
    }

    i32 RemoveLines(i32 where, u32 wanted)
    {
        if (!created)
            return -3;
        const i64 at = PlainIndex(where, height);
        if (at < 0 || at >= height)
            return -1;
        i64 count = wanted;
        if (count + at >= height)
            count = i64{height} - count - at;
        count = std::max<i64>(count, 0); // a cut run removes nothing, yet takes its arrays
        height -= static_cast<u32>(count);
        if (device->noRecords)
            return -2;
        const size_t first = static_cast<size_t>(at);
        for (size_t i = first; i < first + static_cast<size_t>(count); ++i) {
            if (lines[i].swapped) {
                DeleteFileOf(lines[i]);
                lines[i] = {};
            } else {
                DropPhysical(lines[first].ref.physical, at, count);
            }
        }
        lines.erase(lines.begin() + at, lines.begin() + at + count);
        return 1;
    }

    i32 SwapLines(i32 a, i32 b)
    {
        if (!created)
            return -3;
        const i64 first = PlainIndex(a, height);
        const i64 second = PlainIndex(b, height);
        if (first < 0 || first >= height || second < 0 || second >= height)
            return -1;
        std::swap(lines[static_cast<size_t>(first)], lines[static_cast<size_t>(second)]);
        return 1;
    }

    i32 FlipVertical()
    {
        if (!created)
            return -3;
        for (u32 i = 0; i < height / 2; ++i) {
            const i32 result = SwapLines(static_cast<i32>(i), static_cast<i32>(height - 1 - i));
            if (result < 1)
                return result;
        }
        return 1;
    }

    /// The blocks that were locked go to `out`, their number to `*count`.
    i32 LockLines(i32 where, u32* count, std::vector<std::shared_ptr<PlainBlock>>* out)
    {
        out->clear();
        if (!created)
            return -3;
        const i64 line = PlainIndex(where, height);
        if (line < 0 || line >= height)
            return -1;
        const u32 wanted = count != nullptr ? *count : 1;
        const i64 n = line + wanted > height ? height - line : i64{wanted};
        for (i64 i = 0; i < n; ++i) {
            PlainRecord& record = lines[static_cast<size_t>(line + i)];
            i32 result = 1;
            if (record.swapped)
                result = SwapInLine(line + i);
            std::shared_ptr<PlainBlock> block;
            if (result >= 0) {
                block = table.Slot(record.ref.physical);
                if (block == nullptr)
                    result = 0;
            }
            if (block == nullptr) {
                if (count != nullptr)
                    *count = static_cast<u32>(i);
                return result;
            }
            record.locked = true;
            out->push_back(block);
        }
        if (count != nullptr)
            *count = static_cast<u32>(n);
        return 1;
    }

    i32 ReleaseLines(i32 where, u32 wanted, i32 force)
    {
        if (!created)
            return -3;
        const i64 line = PlainIndex(where, height);
        if (line < 0 || line >= height)
            return -1;
        i64 count = wanted;
        if (line + count >= height)
            count = height - line - count;
        for (i64 i = 0; i < count; ++i) {
            lines[static_cast<size_t>(line + i)].locked = false;
            if (!device->HasRoomFor(stride) || force != 0)
                if (SwapOutLine(line + i) < 0)
                    return 0;
        }
        return 1;
    }

    i32 UnlockAll()
    {
        if (!created)
            return -3;
        for (PlainRecord& line : lines)
            line.locked = false;
        return 1;
    }

    i32 LoadRaw(const std::vector<u8>& block)
    {
        if (table.Slot(0) == nullptr)
            return -3;
        for (u32 y = 0; y < height; ++y) {
            std::vector<std::shared_ptr<PlainBlock>> row;
            const i32 result = LockLines(static_cast<i32>(y), nullptr, &row);
            if (result < 1)
                return result;
            for (u32 x = 0; x < stride; ++x)
                row[0]->bytes[x] = block[size_t{y} * stride + x];
            (void)ReleaseLines(static_cast<i32>(y), 1, 0);
        }
        return 1;
    }

    i32 TakeFrom(PlainPaging& source)
    {
        const u32 lineCount = source.height;
        const i32 made = Create(source.width, 0, source.depth, source.primary, source.secondary);
        if (made < 0)
            return made;
        for (u32 i = 0; i < lineCount; ++i) {
            const i32 line = static_cast<i32>(i);
            i32 result = InsertLines(line, 1);
            if (result < 0)
                return result;
            std::vector<std::shared_ptr<PlainBlock>> target;
            result = LockLines(line, nullptr, &target);
            if (result < 0)
                return result;
            std::vector<std::shared_ptr<PlainBlock>> row;
            result = source.LockLines(0, nullptr, &row);
            if (result < 0)
                return result;
            if (!target.empty() && !row.empty())
                target[0]->bytes = row[0]->bytes;
            (void)source.RemoveLines(0, 1);
            (void)ReleaseLines(line, 1, 0);
        }
        palette = source.palette;
        return 1;
    }

private:
    static constexpr int MostRedraws = 100;

    enum class Naming { Made, Refused, Exhausted, NoBlock };

    /// Draws a name in `folder` that no file has and makes the file. The name stands in the line's
    /// reference; where the file is refused the reference is zero.
    Naming NameFile(PlainRecord& line, const std::u16string& folder, PlainRef* refused)
    {
        if (!PagingDevice::Take(device->nameBlocks))
            return Naming::NoBlock;
        line.ref.physical = PlainRef::NameBlock;
        line.ref.folder = folder;
        for (int redraws = 0;; ++redraws) {
            char text[16];
            std::snprintf(text, sizeof text, "%06d.tmp",
                          static_cast<int>(device->Draw() % 1000000));
            line.ref.name = text;
            if (!device->Probe(folder, line.ref.name))
                break;
            if (redraws == MostRedraws)
                return Naming::Exhausted;
        }
        if (device->Make(folder, line.ref.name))
            return Naming::Made;
        *refused = line.ref;
        line.ref = {};
        return Naming::Refused;
    }

    static i32 ResultOf(Naming naming)
    {
        return naming == Naming::Made ? 1 : naming == Naming::NoBlock ? -2 : -101;
    }

    /// On the first folder, then on the second. `*refused`: what the last of them took no file for.
    i32 MakeFile(PlainRecord& line, PlainRef* refused)
    {
        Naming naming = NameFile(line, *primary, refused);
        if (naming == Naming::Refused && secondary) {
            *refused = {};
            naming = NameFile(line, *secondary, refused);
        }
        return ResultOf(naming);
    }

    void DeleteFileOf(PlainRecord& line)
    {
        if (!line.ref.name.empty())
            device->Delete(line.ref.folder, line.ref.name);
    }

    bool WriteFileOf(PlainRecord& line, i64 physical)
    {
        const std::shared_ptr<PlainBlock> block = table.Slot(physical);
        if (block != nullptr &&
            device->Write(line.ref.folder, line.ref.name, block->bytes) == stride)
            return true;
        DeleteFileOf(line);
        line.ref = {};
        return false;
    }

    i32 SwapOutLine(i64 index)
    {
        PlainRecord& line = lines[static_cast<size_t>(index)];
        const i64 physical = line.ref.physical;
        if (line.locked)
            return -1;
        if (line.swapped)
            return 0;
        if (!primary)
            return -1;
        PlainRef refused;
        const i32 made = MakeFile(line, &refused);
        if (made < 0)
            return made;
        if (!WriteFileOf(line, physical)) {
            if (!secondary)
                return -101;
            const Naming naming = NameFile(line, *secondary, &refused);
            if (naming != Naming::Made)
                return ResultOf(naming);
            if (!WriteFileOf(line, physical))
                return -101;
        }
        line.swapped = true;
        DropPhysical(physical, index, 1);
        return 1;
    }

    i32 SwapInLine(i64 index)
    {
        while (!device->HasRoomFor(stride)) {
            const i64 victim = PickVictim(index);
            if (victim < 0)
                break;
            if (SwapOutLine(victim) < 0)
                return -101;
        }
        if (table.InsertLines(0, 1) < 0)
            return -2;
        MoveReferencesUp();
        PlainRecord& line = lines[static_cast<size_t>(index)];
        if (!line.ref.name.empty())
            device->Read(line.ref.folder, line.ref.name, table.lines[0]->bytes);
        DeleteFileOf(line);
        line.swapped = false;
        line.ref = {};
        return 1;
    }

    i64 PickVictim(i64 line) const
    {
        const auto canGo = [this](i64 index) {
            const PlainRecord& record = lines[static_cast<size_t>(index)];
            return !record.swapped && !record.locked;
        };
        i64 distance = line;
        i64 top = 0;
        i64 bottom = i64{height} - 1;
        for (;;) {
            if (distance > bottom - line) {
                if (canGo(top))
                    return top;
                ++top;
                --distance;
            } else {
                if (canGo(bottom))
                    return bottom;
                --bottom;
            }
            if (bottom >= line)
                continue;
            if (top > line)
                return -2;
        }
    }

    /// A line has entered at physical index 0.
    void MoveReferencesUp()
    {
        for (PlainRecord& line : lines)
            if (!line.swapped)
                ++line.ref.physical;
    }

    /// Frees a physical line for the sake of `count` lines from `from`, and lowers the references
    /// above it. One that another, pinned line refers to stays where it is: its holder has the
    /// address.
    void DropPhysical(i64 physical, i64 from, i64 count)
    {
        if (physical >= PlainRef::NameBlock / 2)
            return;
        for (size_t i = 0; i < lines.size(); ++i) {
            const i64 index = static_cast<i64>(i);
            const bool goes = index >= from && index < from + count;
            if (!goes && !lines[i].swapped && lines[i].locked && lines[i].ref.physical == physical)
                return;
        }
        // Where the smaller table cannot be had the line goes from the one that is there.
        const i32 status = table.DeleteLines(static_cast<i32>(physical), 1);
        if (status == -2)
            table.lines.erase(table.lines.begin() + physical);
        else if (status < 0)
            return;
        for (PlainRecord& line : lines)
            if (!line.swapped && line.ref.physical > physical)
                --line.ref.physical;
    }
};
