// The colour table with memory that runs out.
#include "foundation/ColorTable.h"
#include "foundation/tests/FailingAllocator.h"
#include "platform/testing/Faults.h"

#include <gtest/gtest.h>

using namespace tavrix::testing;

TEST(ColorTableFaults, ACapacityThatWrapsIsRefusedWithoutAskingForMemory)
{
    FailingAllocator allocator;
    ColorTable table(&allocator);
    // Times 16 these come to 2^32, 2^32 + 16 and 2^36 - 16.
    for (u32 capacity : {0x10000000u, 0x10000001u, 0xFFFFFFFFu}) {
        ASSERT_EQ(1, table.Create(1));
        EXPECT_EQ(-2, table.Create(capacity)) << capacity;
        EXPECT_EQ(0, allocator.Live());
        EXPECT_EQ(-3, table.Add(0, 0, 0, 0));
        EXPECT_EQ(0u, table.Count());
    }
}

TEST(ColorTableFaults, WithoutAnAllocatorAnswersNoMemory)
{
    ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
    ColorTable table;
    fault.Disarm();
    const PaletteEntry item{1, 2, 3, 4};
    PaletteEntry* data = nullptr;
    EXPECT_EQ(-2, table.Create(1));
    EXPECT_EQ(-2, table.Destroy());
    EXPECT_EQ(-3, table.Add(1, 2, 3, 4));
    EXPECT_EQ(-4, table.SetEntries(nullptr, 1)) << "null is looked at first";
    EXPECT_EQ(-2, table.SetEntries(&item, 1));
    EXPECT_EQ(-3, table.GetData(&data));
    EXPECT_EQ(0, table.GetEntries(nullptr));
    ColorTable other;
    EXPECT_EQ(-2, table.CopyFrom(&other));
    ASSERT_EQ(1, other.SetEntries(&item, 1));
    EXPECT_EQ(-2, table.CopyFrom(&other));
    EXPECT_EQ(1, other.CopyFrom(&table)) << "and is itself a table never created";
}

TEST(ColorTableFaults, SurvivesEveryShortageOfMemory)
{
    ForEveryFault(FaultKind::Allocation, [] {
        const PaletteEntry items[] = {{1, 2, 3, 4}, {5, 6, 7, 8}};
        ColorTable table;
        ColorTable copy;
        const i32 created = table.Create(3);
        EXPECT_TRUE(created == 1 || created == -2) << created;
        EXPECT_EQ(created == 1 ? 1 : -3, table.AddMany(items, 2));
        const i32 copied = copy.CopyFrom(&table);
        EXPECT_TRUE(copied == 1 || copied == -2) << copied;
        if (created == 1 && copied == 1) {
            EXPECT_EQ(2u, copy.Count());
        }
        const i32 set = table.SetEntries(items, 1);
        EXPECT_TRUE(set == 1 || set == -2) << set;
        EXPECT_EQ(set == 1 ? 1u : 0u, table.Count());
        EXPECT_EQ(set == 1 ? -1 : -3, table.Add(0, 0, 0, 0));
    });
}
