// Taking over another raster beside the plain road, which goes line by line through the public
// operations: what both are given, and what they leave of both rasters, of files and of memory.
#pragma once

#include "PagingTest.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <random>
#include <set>

namespace taking
{

using tavrix::platform::FileOperation;

// 752 bytes a line: larger than every table here, so that a line's block is told by its size.
inline constexpr u32 Width = 250;
inline constexpr u32 LineBytes = 752;

/// What both allocators of a run share.
struct Memory {
    std::function<bool(u32 size)> refuses;
    u64 live = 0;
    u64 peak = 0;
    u64 asked = 0;
};

class SharedAllocator final : public Allocator
{
public:
    explicit SharedAllocator(Memory& shared) : memory(shared) {}
    ~SharedAllocator() override
    {
        for (const auto& block : blocks)
            std::free(block.first);
    }
    i32 Alloc(void** out, u32 size) override
    {
        *out = nullptr;
        ++memory.asked;
        if (memory.refuses && memory.refuses(size))
            return NoMemory;
        *out = std::calloc(1, size == 0 ? 1 : size);
        blocks[*out] = size;
        memory.live += size;
        memory.peak = std::max(memory.peak, memory.live);
        return Done;
    }
    i32 Free(void* block) override
    {
        memory.live -= blocks.at(block);
        blocks.erase(block);
        std::free(block);
        return Done;
    }
    std::multiset<u32> Sizes() const
    {
        std::multiset<u32> sizes;
        for (const auto& block : blocks)
            sizes.insert(block.second);
        return sizes;
    }

private:
    Memory& memory;
    std::map<void*, u32> blocks;
};

template <class Base>
class Opened : public Base
{
public:
    using Base::Base;
    std::vector<u8*> Physical() const { return {this->lines, this->lines + this->lineCount}; }
    Rows Contents() const
    {
        Rows rows;
        for (const u8* line : Physical())
            rows.emplace_back(line, line + LineBytes);
        return rows;
    }
};

using OpenRaster = Opened<Raster>;
using OpenTable = Opened<LineTable>;

/// What a road leaves of one raster.
struct Left {
    u32 height = 0;
    std::multiset<u32> blocks; // their sizes
    Rows physical;             // in the order of the table
    Rows pinned;               // the same when all that may go has gone
    Rows rows;                 // the lines of the picture
};

struct Case {
    u32 height = 40;
    unsigned seed = 1;
    int out = 0;         // of 4 lines so many are in files
    bool pinned = false; // some are locked
    bool room = true;
    bool probed = true; // in the end it is seen which lines are locked
    const WCHAR* primary = FirstFolder;
    const WCHAR* secondary = SecondFolder;
    std::function<void(OpenRaster& source)> spoil;
    bool leaks = false; // a name or line that belongs to nobody after a failed page-out
    std::optional<FileOperation> failing; // once, from this step of the road on
    size_t failingFrom = 0;
    std::function<void(Memory&)> prepare; // last before the road
};

struct Outcome {
    i32 status = 0;
    Left target;
    Left source;
    std::vector<std::string> steps; // file operations, with the number of files before each
    std::map<std::string, std::vector<u8>> files;
    u64 peak = 0;
    bool failed = false; // a file operation was made to fail
};

inline i32 PlainRoad(Raster& target, Raster& source)
{
    const RasterInfo from = InfoOf(source);
    SwapDirs folders = {};
    (void)source.GetSwapDirs(&folders);
    i32 status = target.Create(from.width, 0, from.depth, folders.primary, folders.secondary);
    if (status < 0)
        return status;
    for (i32 i = 0; i < static_cast<i32>(from.height); ++i) {
        u8* to = nullptr;
        u8* bytes = nullptr;
        if ((status = target.InsertLines(i, nullptr)) < 0)
            return status;
        if ((status = target.LockLines(i, &to, nullptr)) < 0)
            return status;
        if ((status = source.LockLines(0, &bytes, nullptr)) < 0)
            return status;
        if (to != nullptr && bytes != nullptr)
            std::memcpy(to, bytes, from.stride);
        (void)source.RemoveLines(0, nullptr);
        (void)target.ReleaseLines(i, 1, 0);
    }
    ColorTable* colors = nullptr;
    ColorTable* own = nullptr;
    source.GetPalette(&colors);
    target.GetPalette(&own);
    status = own->CopyFrom(colors);
    return status < 0 ? status : Done;
}

inline i32 TakingRoad(Raster& target, Raster& source)
{
    return target.TakeFrom(&source);
}

inline void Build(OpenRaster& source, const Case& c)
{
    ASSERT_EQ(source.Create(Width, c.height, 24, c.primary, c.secondary), 1);
    FillPattern(source, c.seed);
    std::mt19937 random(c.seed);
    for (u32 i = 0; i < c.height; ++i) {
        const i32 line = static_cast<i32>(i);
        ASSERT_EQ(source.SwapLines(line, static_cast<i32>(random() % c.height)), 1);
    }
    for (u32 i = 0; i < c.height; ++i) {
        const i32 line = static_cast<i32>(i);
        if (static_cast<int>(random() % 4) < c.out)
            source.ReleaseLines(line, 1, 1);
        else if (c.pinned && random() % 3 == 0)
            (void)AddressOf(source, line);
    }
    if (c.spoil)
        c.spoil(source);
}

inline Left LookAt(OpenRaster& raster, const SharedAllocator& allocator, bool probed)
{
    Left left;
    left.height = InfoOf(raster).height;
    left.blocks = allocator.Sizes();
    left.physical = raster.Contents();
    // A line that comes in under short memory puts out all that are not locked.
    ShortMemory();
    if (probed && raster.InsertLines(static_cast<i32>(left.height), nullptr) > 0)
        (void)AddressOf(raster, -1);
    left.pinned = raster.Contents();
    PlentyOfMemory();
    for (u32 i = 0; i < left.height; ++i) {
        const u8* const row = AddressOf(raster, static_cast<i32>(i));
        left.rows.push_back(row != nullptr ? std::vector<u8>(row, row + LineBytes)
                                           : std::vector<u8>{});
    }
    return left;
}

inline long CountFiles(const std::string& hostFolder)
{
    return std::distance(std::filesystem::directory_iterator(hostFolder), {});
}

inline Outcome Go(i32 (*road)(Raster&, Raster&), const Case& c)
{
    using namespace tavrix::testing;
    Reset();
    PlentyOfMemory();
    std::vector<LONG> numbers(2000);
    for (size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = static_cast<LONG>(i);
    SetRandom(numbers);
    Outcome outcome;
    Memory memory;
    SharedAllocator ofSource(memory);
    SharedAllocator ofTarget(memory);
    const std::string folders[] = {HostPath(FirstFolder), HostPath(SecondFolder)};
    {
        OpenRaster source(&ofSource);
        OpenRaster target(&ofTarget);
        Build(source, c);
        SetFileFault([&](FileOperation operation, const WCHAR* path, DWORD*) {
            outcome.steps.push_back(std::to_string(static_cast<int>(operation)) + Utf8(path) + " " +
                                    std::to_string(CountFiles(folders[0])) + "+" +
                                    std::to_string(CountFiles(folders[1])));
            if (c.failing != operation || outcome.steps.size() < c.failingFrom || outcome.failed)
                return false;
            outcome.failed = true;
            return true;
        });
        c.room ? PlentyOfMemory() : ShortMemory();
        if (c.prepare)
            c.prepare(memory);
        memory.peak = memory.live;
        outcome.status = road(target, source);
        outcome.peak = memory.peak;
        memory.refuses = nullptr;
        SetFileFault(nullptr);
        for (const WCHAR* folder : {FirstFolder, SecondFolder})
            for (const auto& file : FilesIn(folder))
                outcome.files[HostFile(folder, file.first)] =
                    ReadHostFile(HostFile(folder, file.first));
        outcome.target = LookAt(target, ofTarget, c.probed);
        outcome.source = LookAt(source, ofSource, c.probed);
    }
    if (!c.leaks) {
        EXPECT_EQ(memory.live, 0u);
    }
    return outcome;
}

inline void ExpectSame(const Left& taken, const Left& plain, bool spare)
{
    ASSERT_EQ(taken.height, plain.height);
    ASSERT_EQ(taken.physical, plain.physical);
    ASSERT_EQ(taken.pinned, plain.pinned);
    ASSERT_EQ(taken.rows, plain.rows);
    if (!spare) {
        ASSERT_EQ(taken.blocks, plain.blocks);
    }
}

/// Goes both roads and answers what came of the plain one. `spare`: memory that could not be given
/// back, as none could be had, is forgiven.
inline Outcome ExpectSame(const Case& c, bool spare = false)
{
    const Outcome plain = Go(PlainRoad, c);
    const Outcome taken = Go(TakingRoad, c);
    EXPECT_EQ(taken.status, plain.status);
    EXPECT_EQ(taken.steps, plain.steps);
    EXPECT_EQ(taken.files, plain.files);
    {
        SCOPED_TRACE("target");
        ExpectSame(taken.target, plain.target, spare);
    }
    {
        SCOPED_TRACE("source");
        ExpectSame(taken.source, plain.source, spare);
    }
    return plain;
}

inline std::string Describe(const Case& c)
{
    return std::to_string(c.height) + " lines, seed " + std::to_string(c.seed) + ", " +
           std::to_string(c.out) + " of 4 in files" + (c.room ? "" : ", short memory");
}

/// Refuses one of the blocks that `counts` names, the number-th, or all blocks from that one on.
inline std::function<void(Memory&)> Refusing(std::function<bool(u32 size)> counts, int number,
                                             bool onward)
{
    return [counts, number, onward](Memory& memory) {
        memory.refuses = [counts, number, onward, seen = 0](u32 size) mutable {
            if (onward && seen >= number)
                return true;
            return counts(size) && ++seen == number;
        };
    };
}

inline bool IsLine(u32 size)
{
    return size == LineBytes;
}
inline bool IsName(u32 size)
{
    return size == (6 + 13) * sizeof(WCHAR) || size == (18 + 13) * sizeof(WCHAR);
}

} // namespace taking
