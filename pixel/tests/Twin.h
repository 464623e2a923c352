// A raster and its plain twin: rows of bytes on which a formula is written out pixel by pixel, with
// what locking, releasing and paging do to each row. An operation is run on the raster and its
// formula on the twin; afterwards bytes (padding too), locks and line files must be the same.
//
//     Twin target(33, 7, 24, seed, Storage::Paging);
//     const WithShortMemory memory;                 // released lines go to files
//     EXPECT_EQ(target.raster.FillRect(color, box), PlainFillRect(target.plain, color, box));
//     ExpectSame({&target});
//
// Each line of the raster is a block of its own from the C run time, so that the address sanitizer
// sees whatever leaves it. `Refuse(n)` makes line n one that will not lock.
#pragma once

#include "image/tests/PagingTest.h"

#include <initializer_list>
#include <random>
#include <set>

/// What a twin's memory does; set by WithShortMemory.
inline bool plainMemoryIsShort = false;

/// For its lifetime no line fits into memory, for rasters and twins alike.
struct WithShortMemory {
    WithShortMemory()
    {
        ShortMemory();
        plainMemoryIsShort = true;
    }
    ~WithShortMemory()
    {
        PlentyOfMemory();
        plainMemoryIsShort = false;
    }
    WithShortMemory(const WithShortMemory&) = delete;
    WithShortMemory& operator=(const WithShortMemory&) = delete;
};

/// The plain side. A line is resident or out (in a file), and locked or not.
struct PlainRaster {
    u32 width = 0;
    u32 height = 0;
    u32 depth = 0;
    u32 stride = 0;
    Rows rows; // `height` rows of `stride` bytes
    bool folders = false;
    std::vector<bool> out;
    std::vector<bool> locked;
    i64 refused = -1; // while it is out this line does not come in

    /// As LockLines for one line: 1, -1 for a bad number, -2 for the refused line. A negative
    /// number counts from the end.
    i32 Lock(i64 line)
    {
        const i64 index = Index(line);
        if (index < 0)
            return -1;
        const size_t at = static_cast<size_t>(index);
        if (out[at]) {
            if (index == refused)
                return -2;
            // Where nothing fits every line that can go makes room.
            if (plainMemoryIsShort && folders)
                for (size_t i = 0; i < out.size(); ++i)
                    if (!locked[i])
                        out[i] = true;
            out[at] = false;
        }
        locked[at] = true;
        return 1;
    }

    /// As ReleaseLines for one line without force: the last line stays locked.
    void Release(i64 line)
    {
        const i64 index = Index(line);
        if (index < 0 || index + 1 >= height)
            return;
        locked[static_cast<size_t>(index)] = false;
        if (plainMemoryIsShort && folders)
            out[static_cast<size_t>(index)] = true;
    }

    /// The bytes of a line; negative counts from the end.
    std::vector<u8>& Row(i64 line) { return rows[static_cast<size_t>(Index(line))]; }

    i64 Index(i64 line) const
    {
        const i64 index = line < 0 ? line + height : line;
        return index < height ? index : -1;
    }

    /// As Raster::Create for a raster that has room: zeroes, resident, unlocked.
    void Make(u32 newWidth, u32 newHeight, u32 newDepth)
    {
        width = newWidth;
        height = newHeight;
        depth = newDepth;
        (void)LineTable::StrideOf(width, depth, &stride);
        rows.assign(height, std::vector<u8>(stride));
        out.assign(height, false);
        locked.assign(height, false);
        folders = false;
        refused = -1;
    }
};

enum class Storage {
    Resident, // no folders, memory plentiful
    Paging    // with folders; lines leave memory under WithShortMemory
};

struct Twin {
    CountingAllocator allocator; // outlives the raster
    Raster raster;
    PlainRaster plain;

    /// Empty on both sides: for targets that an operation creates.
    Twin() : raster(&allocator) {}

    /// Filled with the pattern of `seed`, padding included; every line resident and unlocked.
    Twin(u32 width, u32 height, u32 depth, u32 seed, Storage storage = Storage::Resident) : Twin()
    {
        const bool pages = storage == Storage::Paging;
        PlentyOfMemory();
        EXPECT_EQ(raster.Create(width, height, depth, pages ? FirstFolder : nullptr,
                                pages ? SecondFolder : nullptr),
                  1);
        plain.Make(width, height, depth);
        plain.folders = pages;
        EXPECT_EQ(InfoOf(raster).stride, plain.stride);
        FillPattern(raster, seed);
        plain.rows = PatternRows(seed, height, plain.stride);
    }

    ~Twin()
    {
        raster.Reset();
        EXPECT_EQ(allocator.outstanding, 0) << "blocks that the raster lost";
    }

    Twin(const Twin&) = delete;
    Twin& operator=(const Twin&) = delete;

    /// Copies new bytes into both sides.
    void SetRows(const Rows& rows)
    {
        ASSERT_EQ(rows.size(), plain.rows.size());
        plain.rows = rows;
        for (u32 y = 0; y < plain.height; ++y) {
            u8* row = nullptr;
            ASSERT_EQ(raster.LockLines(static_cast<i32>(y), &row, nullptr), 1);
            std::memcpy(row, rows[y].data(), plain.stride);
        }
        ASSERT_EQ(raster.UnlockAll(), 1);
    }

    /// From now on `line` sits in its file and cannot be locked (NoMemory), until ExpectSame. For a
    /// paging twin of two or more lines, all others of which are in memory, with plentiful memory:
    /// what is refused is the line table at its full height.
    void Refuse(u32 line)
    {
        const u32 table = plain.height * static_cast<u32>(sizeof(void*));
        ASSERT_TRUE(plain.folders);
        ASSERT_GE(plain.height, 2u);
        ASSERT_NE(plain.stride, table) << "the scratch line must not look like a line table";
        PageOut(line);
        plain.refused = line;
        allocator.fails = [table](int, u32 size) { return size == table; };
    }

    /// Moves one line into its file, on both sides.
    void PageOut(u32 line)
    {
        // The last line is never released: its record changes places with the first for a moment.
        const i32 last = static_cast<i32>(plain.height) - 1;
        const bool isLast = line + 1 == plain.height;
        const i32 at = isLast ? 0 : static_cast<i32>(line);
        if (isLast) {
            ASSERT_EQ(raster.SwapLines(0, last), 1);
        }
        ASSERT_EQ(raster.ReleaseLines(at, 1, 1), 1);
        if (isLast) {
            ASSERT_EQ(raster.SwapLines(0, last), 1);
        }
        plain.out[line] = true;
        plain.locked[line] = false;
    }
};

namespace twin_detail
{

// Bytes as text: ordering vectors of bytes makes this compiler's version 12 warn of a length that
// cannot be.
using Contents = std::multiset<std::string>;

inline std::string TextOf(const std::vector<u8>& bytes)
{
    return {bytes.begin(), bytes.end()};
}

inline Contents FilesFound()
{
    Contents found;
    for (const WCHAR* folder : {FirstFolder, SecondFolder})
        for (const auto& file : FilesIn(folder))
            found.insert(TextOf(ReadHostFile(HostFile(folder, file.first))));
    return found;
}

inline Contents FilesMeant(std::initializer_list<Twin*> twins)
{
    Contents meant;
    for (const Twin* twin : twins)
        for (u32 y = 0; y < twin->plain.height; ++y)
            if (twin->plain.out[y])
                meant.insert(TextOf(twin->plain.rows[y]));
    return meant;
}

// What is locked shows when memory is short and a line is fetched: all others go.
inline void ExpectSameLocks(std::initializer_list<Twin*> twins)
{
    bool asked = false;
    {
        const WithShortMemory memory;
        for (Twin* twin : twins) {
            PlainRaster& plain = twin->plain;
            for (u32 y = 0; y < plain.height; ++y)
                if (plain.out[y]) {
                    u8* row = nullptr;
                    EXPECT_EQ(twin->raster.LockLines(static_cast<i32>(y), &row, nullptr), 1);
                    EXPECT_EQ(plain.Lock(y), 1);
                    asked = true;
                    break;
                }
        }
    }
    if (!asked)
        return;
    EXPECT_EQ(FilesFound(), FilesMeant(twins)) << "other lines are locked than should be";
}

inline void ExpectSameBytes(Twin& twin)
{
    PlainRaster& plain = twin.plain;
    const RasterInfo info = InfoOf(twin.raster);
    ASSERT_EQ(info.width, plain.width);
    ASSERT_EQ(info.height, plain.height);
    ASSERT_EQ(info.depth, plain.depth);
    if (plain.height == 0)
        return;
    (void)twin.raster.UnlockAll();
    for (u32 y = 0; y < plain.height; ++y) {
        u8* row = nullptr;
        ASSERT_EQ(twin.raster.LockLines(static_cast<i32>(y), &row, nullptr), 1) << "line " << y;
        for (u32 x = 0; x < plain.stride; ++x)
            ASSERT_EQ(row[x], plain.rows[y][x]) << "line " << y << " byte " << x;
    }
    (void)twin.raster.UnlockAll();
    plain.out.assign(plain.height, false);
    plain.locked.assign(plain.height, false);
}

} // namespace twin_detail

/// Compares all twins that have line files or locks in one go, after the operation and outside
/// WithShortMemory: files by content, locks, then size and bytes. Afterwards every line is resident
/// and unlocked and nothing is refused any more.
inline void ExpectSame(std::initializer_list<Twin*> twins)
{
    using namespace twin_detail;
    for (Twin* twin : twins) {
        twin->plain.refused = -1;
        twin->allocator.fails = nullptr;
    }
    EXPECT_EQ(FilesFound(), FilesMeant(twins)) << "other line files than should be";
    ExpectSameLocks(twins);
    for (Twin* twin : twins)
        ExpectSameBytes(*twin);
}

/// Coordinates on all sides of a raster: mostly near it, sometimes its very edges or far away.
class Places
{
public:
    explicit Places(u32 seed) : random(seed) {}

    i32 Near(u32 size)
    {
        const i64 edge = size;
        const i64 edges[] = {-1, 0, 1, edge - 1, edge, edge + 1};
        if (Below(4) == 0)
            return static_cast<i32>(edges[Below(6)]);
        return static_cast<i32>(static_cast<i64>(Below(3 * size + 5)) - edge - 2);
    }
    /// As Near, and now and then the smallest or largest number there is.
    i32 Anywhere(u32 size)
    {
        const u32 draw = Below(64);
        if (draw == 0)
            return static_cast<i32>(0x80000000);
        if (draw == 1)
            return 0x7FFFFFFF;
        return Near(size);
    }
    u32 Below(u32 count) { return random() % count; }
    u32 Word() { return random(); }

private:
    std::mt19937 random;
};
