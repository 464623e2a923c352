// The physical layer of rasters written out plainly, each operation step by step, with the device
// around it: free memory, the numbers of Random, folders and what fails there. A test runs an
// operation on a table and on its plain form and compares results, lines and bytes.
#pragma once

#include "image/tests/PagingTest.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Fails as told, and keeps count of what is not given back.
class KeepingAllocator final : public Allocator
{
public:
    ~KeepingAllocator() override
    {
        for (const auto& block : blocks)
            std::free(block.first);
    }
    i32 Alloc(void** out, u32 size) override
    {
        *out = nullptr;
        if (fails && fails(size))
            return -2;
        *out = std::calloc(1, size == 0 ? 1 : size);
        blocks[*out] = size;
        return 1;
    }
    i32 Free(void* block) override
    {
        EXPECT_EQ(blocks.erase(block), 1u) << "a block that was not given out";
        std::free(block);
        return 1;
    }

    /// How many blocks of a size are out.
    size_t CountOf(u32 size) const
    {
        return static_cast<size_t>(
            std::count_if(blocks.begin(), blocks.end(),
                          [size](const auto& block) { return block.second == size; }));
    }

    std::function<bool(u32 size)> fails;
    std::map<void*, u32> blocks; // with their sizes
};

/// A block of line bytes. `real` is where the raster under test keeps it, once a lock has told.
struct PlainBlock {
    explicit PlainBlock(u32 size) : bytes(size) {}
    std::vector<u8> bytes;
    u8* real = nullptr;
};

/// What fails in a folder, and the files in it.
struct PlainFolder {
    bool exists = true;
    bool refusesFiles = false;       // no file can be made
    u32 writesShortBy = 0;           // every write comes up that much short
    bool hidesFiles = false;         // no file can be opened
    std::optional<u32> readsShortBy; // 0: reads are errors
    std::map<std::string, std::vector<u8>> files;
};

/// What rasters share. Budgets hold for one operation; without a value nothing fails.
struct PagingDevice {
    u32 freeMemory = 1u << 30;
    std::deque<LONG> numbers; // of Random, front next
    std::map<std::u16string, PlainFolder> folders;
    std::optional<u64> diskSpace;
    std::optional<u32> lineBlocks; // that can still be had
    std::optional<u32> nameBlocks;
    bool noTables = false;
    bool noRecords = false;

    bool HasRoomFor(u32 bytes) const { return freeMemory > u64{bytes} + 0xA0000; }

    LONG Draw()
    {
        EXPECT_FALSE(numbers.empty()) << "the test has too few numbers";
        if (numbers.empty())
            return 0;
        const LONG number = numbers.front();
        numbers.pop_front();
        return number;
    }

    static bool Take(std::optional<u32>& budget)
    {
        if (!budget)
            return true;
        if (*budget == 0)
            return false;
        --*budget;
        return true;
    }

    bool Probe(const std::u16string& folder, const std::string& name)
    {
        const PlainFolder& place = folders[folder];
        return place.exists && !place.hidesFiles && place.files.count(name) != 0;
    }

    bool Make(const std::u16string& folder, const std::string& name)
    {
        PlainFolder& place = folders[folder];
        if (!place.exists || place.refusesFiles || place.files.count(name) != 0)
            return false;
        if (diskSpace && *diskSpace == 0)
            return false;
        place.files[name] = {};
        return true;
    }

    /// Answers how many bytes were written.
    size_t Write(const std::u16string& folder, const std::string& name,
                 const std::vector<u8>& bytes)
    {
        PlainFolder& place = folders[folder];
        u64 count = bytes.size() - std::min<u64>(place.writesShortBy, bytes.size());
        if (diskSpace) {
            count = std::min(count, *diskSpace);
            *diskSpace -= count;
        }
        place.files[name].assign(bytes.begin(), bytes.begin() + static_cast<i64>(count));
        return static_cast<size_t>(count);
    }

    void Delete(const std::u16string& folder, const std::string& name)
    {
        folders[folder].files.erase(name);
    }

    void Read(const std::u16string& folder, const std::string& name, std::vector<u8>& into)
    {
        if (!Probe(folder, name))
            return;
        const PlainFolder& place = folders[folder];
        const std::vector<u8>& file = place.files.at(name);
        size_t count = into.size();
        if (place.readsShortBy)
            count =
                *place.readsShortBy == 0 ? 0 : count - std::min<size_t>(*place.readsShortBy, count);
        count = std::min(count, file.size());
        std::copy(file.begin(), file.begin() + static_cast<i64>(count), into.begin());
    }
};

/// Bytes a line, or none for a depth that is refused.
inline std::optional<u32> PlainStride(u32 width, u32 depth)
{
    u64 stride = 0;
    if (depth == 8)
        stride = (u64{width} + 3) & ~u64{3};
    else if (depth == 16)
        stride = (u64{width} * 2 + 3) & ~u64{3};
    else if (depth == 24)
        stride = (3 * (u64{width} + 1)) & ~u64{3};
    else if (depth == 32)
        stride = u64{width} * 4;
    else
        return std::nullopt;
    if (stride > 0x7FFFFFFF)
        return std::nullopt;
    return static_cast<u32>(stride);
}

/// A line number that may count from the end, in 64 bits: below zero or from `count` on is none.
inline i64 PlainIndex(i32 line, u32 count)
{
    return line < 0 ? i64{line} + count : i64{line};
}

/// The physical layer.
struct PlainTable {
    explicit PlainTable(PagingDevice* where) : device(where) {}

    PagingDevice* device;
    bool created = false;
    u32 width = 0;
    u32 depth = 0;
    u32 stride = 0;
    u32 count = 0;                                  // lines in use
    std::vector<std::shared_ptr<PlainBlock>> lines; // the table; longer than `count` after a
                                                    // deletion that failed
    int lostLines = 0; // blocks that stood behind `count` when the table was given up

    void Clear()
    {
        CutTo(count);
        lines.clear();
        created = false;
        width = depth = stride = count = 0;
    }

    i32 Create(u32 newWidth, u32 newLines, u32 newDepth)
    {
        Clear();
        const std::optional<u32> bytes = PlainStride(newWidth, newDepth);
        if (!bytes)
            return -1;
        depth = newDepth;
        stride = *bytes;
        created = true;
        width = newWidth;
        return InsertLines(0, newLines);
    }

    i32 InsertLines(i32 where, u32 added)
    {
        if (!created)
            return -3;
        const i64 at = PlainIndex(where, count);
        if (at < 0 || at > count)
            return -1;
        if (device->noTables && u64{count} + added != 0)
            return -2;
        std::vector<std::shared_ptr<PlainBlock>> made;
        for (u32 i = 0; i < added; ++i) {
            if (!PagingDevice::Take(device->lineBlocks))
                return -2;
            made.push_back(std::make_shared<PlainBlock>(stride));
        }
        CutTo(count);
        lines.insert(lines.begin() + at, made.begin(), made.end());
        count += added;
        return 1;
    }

    i32 DeleteLines(i32 where, u32 removed)
    {
        if (!created)
            return -3;
        const i64 at = PlainIndex(where, count);
        if (at < 0 || at >= count)
            return -1;
        const u32 old = count;
        removed = std::min(removed, count);
        count -= removed;
        if (device->noTables && count != 0)
            return -2;
        CutTo(old);
        const i64 end = std::min<i64>(at + removed, old);
        lines.erase(lines.begin() + at, lines.begin() + end);
        lines.resize(count);
        return 1;
    }

    i32 SwapLines(i32 a, i32 b)
    {
        if (!created)
            return -3;
        const i64 first = PlainIndex(a, count);
        const i64 second = PlainIndex(b, count);
        if (first < 0 || first >= count || second < 0 || second >= count)
            return -1;
        std::swap(lines[static_cast<size_t>(first)], lines[static_cast<size_t>(second)]);
        return 1;
    }

    void CutTo(u32 size)
    {
        lostLines += static_cast<int>(lines.size() - size);
        lines.resize(size);
    }

    /// The block of a physical line, or null.
    std::shared_ptr<PlainBlock> Slot(i64 index) const
    {
        return index >= 0 && index < count ? lines[static_cast<size_t>(index)] : nullptr;
    }

    i32 TakeFrom(PlainTable& source)
    {
        const i32 made = Create(source.width, 0, source.depth);
        if (made < 0)
            return made;
        while (source.count > 0) {
            const i32 inserted = InsertLines(0, 1);
            if (inserted < 0)
                return inserted;
            lines[0]->bytes = source.lines[source.count - 1]->bytes;
            const i32 deleted = source.DeleteLines(-1, 1);
            if (deleted < 0)
                return deleted;
        }
        return 1;
    }
};
