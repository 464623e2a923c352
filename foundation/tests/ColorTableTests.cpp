#include "foundation/ColorTable.h"
#include "foundation/tests/FailingAllocator.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

bool Same(const PaletteEntry& a, const PaletteEntry& b)
{
    return a.red == b.red && a.green == b.green && a.blue == b.blue && a.fourth == b.fourth;
}

const PaletteEntry Marked{91, 92, 93, 94};

} // namespace

TEST(ColorTable, TakesAsManyEntriesAsItsCapacity)
{
    ColorTable table;
    ASSERT_EQ(1, table.Create(2));
    EXPECT_EQ(1, table.Add(1, 2, 3, 4));
    EXPECT_EQ(1, table.Add(5, 6, 7, 8));
    EXPECT_EQ(-1, table.Add(9, 9, 9, 9));
    EXPECT_EQ(2u, table.Count());
    PaletteEntry entries[2];
    EXPECT_EQ(2, table.GetEntries(nullptr));
    EXPECT_EQ(1, table.GetEntries(entries));
    EXPECT_TRUE(Same({1, 2, 3, 4}, entries[0]));
    EXPECT_TRUE(Same({5, 6, 7, 8}, entries[1]));
}

TEST(ColorTable, NeverCreatedIsInTheWrongState)
{
    ColorTable table;
    PaletteEntry mark = Marked;
    PaletteEntry* data = &mark;
    EXPECT_EQ(-3, table.Add(0, 0, 0, 0));
    EXPECT_EQ(-3, table.AddMany(&mark, 1));
    EXPECT_EQ(-3, table.GetData(&data));
    EXPECT_EQ(nullptr, data);
    EXPECT_EQ(0, table.GetEntries(nullptr));
    EXPECT_EQ(1, table.Destroy());
}

TEST(ColorTable, CreateDropsTheOldEntries)
{
    ColorTable table;
    ASSERT_EQ(1, table.Create(2));
    ASSERT_EQ(1, table.Add(1, 2, 3, 4));
    ASSERT_EQ(1, table.Create(1));
    EXPECT_EQ(0u, table.Count());
    EXPECT_EQ(1, table.Add(5, 6, 7, 8));
    EXPECT_EQ(-1, table.Add(5, 6, 7, 8));
}

TEST(ColorTable, DestroyLeavesItAsNeverCreated)
{
    ColorTable table;
    ASSERT_EQ(1, table.Create(2));
    ASSERT_EQ(1, table.Add(1, 2, 3, 4));
    EXPECT_EQ(1, table.Destroy());
    EXPECT_EQ(0u, table.Count());
    EXPECT_EQ(-3, table.Add(1, 2, 3, 4));
}

TEST(ColorTable, AddManyStopsAtTheFirstFailure)
{
    ColorTable table;
    ASSERT_EQ(1, table.Create(2));
    const PaletteEntry items[] = {{1, 0, 0, 0}, {2, 0, 0, 0}, {3, 0, 0, 0}};
    EXPECT_EQ(-1, table.AddMany(items, 3));
    EXPECT_EQ(2u, table.Count());
}

TEST(ColorTable, AddManyOfNothingIsDone)
{
    ColorTable table;
    EXPECT_EQ(1, table.AddMany(&Marked, 0));
    EXPECT_EQ(1, table.AddMany(nullptr, 0));
    EXPECT_EQ(-4, table.AddMany(nullptr, 1));
}

TEST(ColorTable, SetEntriesFitsTheTableToTheItems)
{
    ColorTable table;
    const PaletteEntry items[] = {{1, 2, 3, 4}, {5, 6, 7, 8}};
    ASSERT_EQ(1, table.SetEntries(items, 2));
    EXPECT_EQ(2u, table.Count());
    EXPECT_EQ(-1, table.Add(0, 0, 0, 0));
    PaletteEntry* data = nullptr;
    ASSERT_EQ(1, table.GetData(&data));
    EXPECT_TRUE(Same(items[1], data[1]));
    EXPECT_EQ(-4, table.SetEntries(nullptr, 2));
    EXPECT_EQ(-4, table.GetData(nullptr));
}

TEST(ColorTable, SetEntriesMayTakeItsOwnArray)
{
    ColorTable table;
    const PaletteEntry items[] = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}};
    ASSERT_EQ(1, table.SetEntries(items, 3));
    PaletteEntry* data = nullptr;
    ASSERT_EQ(1, table.GetData(&data));
    ASSERT_EQ(1, table.SetEntries(data + 1, 2));
    ASSERT_EQ(1, table.GetData(&data));
    EXPECT_TRUE(Same(items[1], data[0]));
    EXPECT_TRUE(Same(items[2], data[1]));
    EXPECT_EQ(1, table.CopyFrom(&table));
    EXPECT_EQ(2u, table.Count());
}

TEST(ColorTable, CopyFromTakesTheEntriesInUse)
{
    ColorTable from;
    ColorTable to;
    ASSERT_EQ(1, from.Create(10));
    ASSERT_EQ(1, from.Add(1, 2, 3, 4));
    EXPECT_EQ(1, to.CopyFrom(&from));
    EXPECT_EQ(1u, to.Count());
    EXPECT_EQ(-1, to.Add(0, 0, 0, 0));
    EXPECT_EQ(-4, to.CopyFrom(nullptr));
}

TEST(ColorTable, CopyOfATableNeverCreatedHasNoCapacity)
{
    ColorTable from;
    ColorTable to;
    ASSERT_EQ(1, to.Create(3));
    EXPECT_EQ(1, to.CopyFrom(&from));
    EXPECT_EQ(0u, to.Count());
    EXPECT_EQ(-1, to.Add(0, 0, 0, 0));
}

TEST(ColorTable, CopyOfATableWithoutEntriesHasNoCapacity)
{
    for (const u32 capacity : {0u, 5u}) {
        ColorTable from;
        ColorTable to;
        ASSERT_EQ(1, from.Create(capacity));
        ASSERT_EQ(1, to.SetEntries(&Marked, 1));
        EXPECT_EQ(1, to.CopyFrom(&from)) << capacity;
        EXPECT_EQ(0u, to.Count());
        EXPECT_EQ(-1, to.Add(0, 0, 0, 0));
        EXPECT_EQ(0, to.GetEntries(nullptr));
    }
}

TEST(ColorTable, ReportsAFailingAllocation)
{
    FailingAllocator allocator;
    {
        ColorTable table(&allocator);
        ASSERT_EQ(1, table.Create(2));
        allocator.AllowOnly(0);
        EXPECT_EQ(-2, table.Create(3));
        EXPECT_EQ(-3, table.Add(0, 0, 0, 0));
        EXPECT_EQ(-2, table.SetEntries(&Marked, 1));
        allocator.AllowAll();
        EXPECT_EQ(1, table.SetEntries(&Marked, 1));
    }
    EXPECT_EQ(0, allocator.Live());
}

TEST(ColorTable, ACapacityBeyond32BitsOfBytesIsRefused)
{
    ColorTable table;
    // Sixteen bytes each would wrap to 16.
    EXPECT_EQ(-2, table.Create(0x10000001));
    EXPECT_EQ(-3, table.Add(0, 0, 0, 0));
}

TEST(FindNearest, TakesTheFirstOfEquals)
{
    ColorTable table;
    const PaletteEntry items[] = {{0, 0, 0, 1}, {0, 0, 0, 2}};
    ASSERT_EQ(1, table.SetEntries(items, 2));
    PaletteEntry best = Marked;
    PaletteEntry second = Marked;
    EXPECT_EQ(1, table.FindNearestTwo(0, 0, 0, 0, &best, &second));
    EXPECT_TRUE(Same({0, 0, 0, 0}, best));
    // A second change would have moved the first entry there.
    EXPECT_TRUE(Same(Marked, second));
}

TEST(FindNearest, WeighsTheColoursAndTellsTheDistance)
{
    ColorTable table;
    // From (100, 100, 100): red 20 off 77*400/256 = 120, green 15 off 151*225/256 = 132,
    // blue 32 off 28*1024/256 = 112.
    const PaletteEntry items[] = {{120, 100, 100, 7}, {100, 85, 100, 7}, {100, 100, 132, 7}};
    ASSERT_EQ(1, table.SetEntries(items, 3));
    PaletteEntry best = Marked;
    EXPECT_EQ(1, table.FindNearest(100, 100, 100, 0, &best));
    EXPECT_TRUE(Same({100, 100, 132, 112}, best));
    ASSERT_EQ(1, table.SetEntries(items, 2));
    EXPECT_EQ(1, table.FindNearest(100, 100, 100, 0, &best));
    EXPECT_TRUE(Same({120, 100, 100, 120}, best));
    ASSERT_EQ(1, table.SetEntries(items + 1, 1));
    EXPECT_EQ(1, table.FindNearest(100, 100, 100, 0, &best));
    EXPECT_TRUE(Same({100, 85, 100, 132}, best));
}

TEST(FindNearest, SumsTheWeightsBeforeItShifts)
{
    ColorTable table;
    // 77 + 151 + 28 = 256: each part alone would shift away to 0.
    const PaletteEntry item{1, 1, 1, 0};
    ASSERT_EQ(1, table.SetEntries(&item, 1));
    PaletteEntry best = Marked;
    EXPECT_EQ(1, table.FindNearest(0, 0, 0, 0, &best));
    EXPECT_EQ(1u, best.fourth);
    EXPECT_EQ(1, table.FindNearest(2, 0, 2, 0, &best));
    EXPECT_EQ(1u, best.fourth);
}

TEST(FindNearest, InAnEmptyTableLeavesTheBestAlone)
{
    ColorTable table;
    PaletteEntry best = Marked;
    EXPECT_EQ(1, table.FindNearest(1, 2, 3, 4, &best));
    EXPECT_TRUE(Same(Marked, best));
    EXPECT_EQ(-4, table.FindNearest(1, 2, 3, 4, nullptr));
}

TEST(FindNearestTwo, SecondIsWhatWasBestBefore)
{
    ColorTable table;
    // Distances of green from 0: 9 -> 47, 3 -> 5, 4 -> 9. The last is nearer than the first and yet
    // is never the second, as it never was best.
    const PaletteEntry items[] = {{0, 9, 0, 0}, {0, 3, 0, 0}, {0, 4, 0, 0}};
    ASSERT_EQ(1, table.SetEntries(items, 3));
    PaletteEntry best = Marked;
    PaletteEntry second = Marked;
    EXPECT_EQ(1, table.FindNearestTwo(0, 0, 0, 0, &best, &second));
    EXPECT_TRUE(Same({0, 3, 0, 5}, best));
    EXPECT_TRUE(Same({0, 9, 0, 47}, second));
}

TEST(FindNearestTwo, WithTheFirstNearestSecondIsWhatTheCallerLeft)
{
    ColorTable table;
    const PaletteEntry items[] = {{0, 3, 0, 0}, {0, 9, 0, 0}};
    ASSERT_EQ(1, table.SetEntries(items, 2));
    PaletteEntry best = Marked;
    PaletteEntry second{};
    EXPECT_EQ(1, table.FindNearestTwo(0, 0, 0, 0, &best, &second));
    EXPECT_TRUE(Same({0, 3, 0, 5}, best));
    EXPECT_TRUE(Same(Marked, second));
    EXPECT_EQ(-4, table.FindNearestTwo(0, 0, 0, 0, nullptr, &second));
    EXPECT_EQ(-4, table.FindNearestTwo(0, 0, 0, 0, &best, nullptr));
}
