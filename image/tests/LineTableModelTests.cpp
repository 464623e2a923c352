// Random runs of every operation on two line tables against the plain form: results, the address of
// every entry, bytes, and what is left after a failure.

#include "image/tests/PlainLineTable.h"

#include <random>

namespace
{

/// A table and its plain form.
struct TableTwin {
    explicit TableTwin(PagingDevice* where) : table(&allocator), plain(where) {}
    ~TableTwin()
    {
        table.Clear();
        plain.Clear();
        EXPECT_EQ(allocator.blocks.size(), static_cast<size_t>(plain.lostLines))
            << "blocks that the table lost";
    }
    TableTwin(const TableTwin&) = delete;
    TableTwin& operator=(const TableTwin&) = delete;

    KeepingAllocator allocator; // outlives the table
    LineTable table;
    PlainTable plain;

    /// Lines are larger than every table.
    void Arm(u32 stride)
    {
        const PagingDevice& device = *plain.device;
        allocator.fails = [stride, lines = device.lineBlocks,
                           noTables = device.noTables](u32 size) mutable {
            if (size == stride)
                return !PagingDevice::Take(lines);
            return noTables && size > 1; // an empty table is no matter
        };
    }

    void ExpectSame(std::mt19937& random)
    {
        LineTableInfo info = {};
        ASSERT_EQ(table.GetInfo(&info), 1);
        EXPECT_EQ(info.width, plain.width);
        EXPECT_EQ(info.depth, plain.depth);
        EXPECT_EQ(info.stride, plain.stride);
        EXPECT_EQ(info.colorCount, 0u);
        ASSERT_EQ(info.lineCount, plain.count);
        for (u32 i = 0; i < plain.count + 2; ++i) {
            u8** slot = nullptr;
            const std::shared_ptr<PlainBlock> block = plain.Slot(i);
            ASSERT_EQ(table.GetLineSlot(i, &slot), block != nullptr ? 1 : -1) << "line " << i;
            if (block != nullptr)
                ExpectSameLine(*block, *slot, random);
        }
    }

    void ExpectSameLine(PlainBlock& block, u8* line, std::mt19937& random) const
    {
        ASSERT_NE(line, nullptr);
        ASSERT_EQ(std::memcmp(line, block.bytes.data(), plain.stride), 0);
        if (block.real != nullptr) {
            ASSERT_EQ(line, block.real) << "a line has moved";
            return;
        }
        block.real = line;
        for (u32 x = 0; x < plain.stride; ++x)
            line[x] = block.bytes[x] = static_cast<u8>(random());
    }
};

class LineTableModel : public ::testing::Test
{
protected:
    void Run(u32 seed, int steps)
    {
        random.seed(seed);
        TableTwin first(&device);
        TableTwin second(&device);
        for (int step = 0; step < steps && !HasFailure(); ++step) {
            SCOPED_TRACE(::testing::Message() << "seed " << seed << " step " << step);
            if (Below(2) == 0)
                Step(first, second);
            else
                Step(second, first);
            first.ExpectSame(random);
            second.ExpectSame(random);
        }
    }

    u32 Below(u32 count) { return static_cast<u32>(random() % count); }

    void Step(TableTwin& twin, TableTwin& other)
    {
        const u32 draw = Below(40);
        SCOPED_TRACE(::testing::Message() << "operation " << draw);
        if (Below(4) == 0)
            device.lineBlocks = Below(4);
        else if (Below(4) == 0)
            device.noTables = true;
        twin.Arm(draw < 3 ? 0 : twin.plain.stride);
        if (draw < 3)
            Create(twin);
        else if (draw < 15)
            Insert(twin);
        else if (draw < 27)
            Delete(twin);
        else if (draw < 35)
            Swap(twin);
        else if (draw < 39)
            Take(twin, other);
        else
            Clear(twin);
        device.lineBlocks.reset();
        device.noTables = false;
        twin.allocator.fails = nullptr;
        other.allocator.fails = nullptr;
    }

    i32 Line(const TableTwin& twin)
    {
        return static_cast<i32>(Below(2 * twin.plain.count + 4)) -
               static_cast<i32>(twin.plain.count) - 2;
    }

    void Create(TableTwin& twin)
    {
        const u32 depths[] = {8, 16, 24, 32, 1};
        const u32 depth = depths[Below(5)];
        const u32 width = 300 + Below(9);
        const u32 lines = Below(8);
        twin.Arm(PlainStride(width, depth).value_or(0));
        const i32 meant = twin.plain.Create(width, lines, depth);
        EXPECT_EQ(twin.table.Create(width, lines, depth), meant);
    }

    void Insert(TableTwin& twin)
    {
        if (twin.plain.count > 14)
            return;
        const i32 at = Line(twin);
        const u32 count = Below(4);
        const i32 meant = twin.plain.InsertLines(at, count);
        EXPECT_EQ(twin.table.InsertLines(at, count), meant) << at << ", " << count;
    }

    void Delete(TableTwin& twin)
    {
        const i32 at = Line(twin);
        const u32 count = Below(10) == 0 ? 0xFFFFFFFFu - Below(9) : Below(5);
        const i32 meant = twin.plain.DeleteLines(at, count);
        EXPECT_EQ(twin.table.DeleteLines(at, count), meant) << at << ", " << count;
    }

    void Swap(TableTwin& twin)
    {
        const i32 a = Line(twin);
        const i32 b = Line(twin);
        const i32 meant = twin.plain.SwapLines(a, b);
        EXPECT_EQ(twin.table.SwapLines(a, b), meant) << a << ", " << b;
    }

    /// Only the table that takes may run out of memory here.
    void Take(TableTwin& twin, TableTwin& source)
    {
        device.noTables = false;
        twin.Arm(source.plain.stride);
        const i32 meant = twin.plain.TakeFrom(source.plain);
        EXPECT_EQ(twin.table.TakeFrom(&source.table), meant);
    }

    void Clear(TableTwin& twin)
    {
        twin.plain.Clear();
        twin.table.Clear();
    }

    PagingDevice device;
    std::mt19937 random;
};

TEST_F(LineTableModel, RandomRunsGiveWhatThePlainStepsGive)
{
    for (u32 seed = 1; seed <= 20 && !HasFailure(); ++seed)
        Run(seed, 400);
}

// Every place and count of a deletion in tables of up to six lines: the count is limited to the
// lines there are and not to those behind the place.
TEST_F(LineTableModel, EveryDeletionOfASmallTableKeepsWhatTheLoweredCountHasPlaceFor)
{
    for (u32 lines = 0; lines <= 6; ++lines)
        for (i32 at = -8; at <= 7; ++at)
            for (u32 count = 0; count <= 8; ++count) {
                SCOPED_TRACE(::testing::Message() << lines << " lines, " << count << " at " << at);
                TableTwin twin(&device);
                ASSERT_EQ(twin.plain.Create(1, lines, 32), 1);
                ASSERT_EQ(twin.table.Create(1, lines, 32), 1);
                twin.ExpectSame(random);
                const i32 meant = twin.plain.DeleteLines(at, count);
                ASSERT_EQ(twin.table.DeleteLines(at, count), meant);
                twin.ExpectSame(random);
            }
}

TEST_F(LineTableModel, AnInsertionThatFailsAtAnyLineLeavesTheOldTableInForce)
{
    for (u32 made = 0; made < 5; ++made) {
        TableTwin twin(&device);
        ASSERT_EQ(twin.plain.Create(100, 3, 8), 1);
        ASSERT_EQ(twin.table.Create(100, 3, 8), 1);
        twin.ExpectSame(random);
        const size_t before = twin.allocator.blocks.size();
        device.lineBlocks = made;
        twin.Arm(100);
        EXPECT_EQ(twin.table.InsertLines(1, 5), -2);
        device.lineBlocks.reset();
        twin.allocator.fails = nullptr;
        EXPECT_EQ(twin.allocator.blocks.size(), before) << "lines of the failed call stayed";
        twin.ExpectSame(random);
    }
}

TEST_F(LineTableModel, TakingATableThatRunsOutOfMemoryLeavesTheUpperLinesInTheSource)
{
    for (u32 room = 0; room <= 4; ++room) {
        SCOPED_TRACE(room);
        TableTwin target(&device);
        TableTwin source(&device);
        ASSERT_EQ(source.plain.Create(100, 4, 8), 1);
        ASSERT_EQ(source.table.Create(100, 4, 8), 1);
        source.ExpectSame(random);
        const std::vector<std::shared_ptr<PlainBlock>> lines = source.plain.lines;
        device.lineBlocks = room;
        target.Arm(100);
        EXPECT_EQ(target.plain.TakeFrom(source.plain), room < 4 ? -2 : 1);
        EXPECT_EQ(target.table.TakeFrom(&source.table), room < 4 ? -2 : 1);
        device.lineBlocks.reset();
        target.allocator.fails = nullptr;
        ASSERT_EQ(target.plain.count, room);
        ASSERT_EQ(source.plain.count, 4 - room);
        for (u32 i = 0; i < room; ++i)
            EXPECT_EQ(target.plain.lines[i]->bytes, lines[4 - room + i]->bytes);
        target.ExpectSame(random);
        source.ExpectSame(random);
    }
}

// Each line is given back as soon as its copy stands, so that at no time there is more than one
// line too many.
TEST_F(LineTableModel, TakingATableHoldsOneExtraLineAtMost)
{
    KeepingAllocator memory;
    size_t most = 0;
    {
        LineTable source(&memory);
        LineTable target(&memory);
        ASSERT_EQ(source.Create(1000, 12, 8), 1);
        memory.fails = [&memory, &most](u32 size) {
            if (size == 1000)
                most = std::max(most, memory.CountOf(1000) + 1);
            return false;
        };
        ASSERT_EQ(target.TakeFrom(&source), 1);
        memory.fails = nullptr;
    }
    EXPECT_EQ(most, 13u);
}

} // namespace
