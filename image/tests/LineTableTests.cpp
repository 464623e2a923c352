#include "PagingTest.h"

#include "image/LineTable.h"

namespace
{

LineTableInfo InfoOf(LineTable& table)
{
    LineTableInfo info = {};
    EXPECT_EQ(table.GetInfo(&info), 1);
    return info;
}

u8* LineOf(LineTable& table, u32 index)
{
    u8** slot = nullptr;
    EXPECT_EQ(table.GetLineSlot(index, &slot), 1) << "line " << index;
    return slot != nullptr ? *slot : nullptr;
}

/// Writes the line's number into its first byte.
void Number(LineTable& table)
{
    for (u32 i = 0; i < InfoOf(table).lineCount; ++i)
        *LineOf(table, i) = static_cast<u8>(i + 1);
}

std::vector<int> Numbers(LineTable& table)
{
    std::vector<int> numbers;
    for (u32 i = 0; i < InfoOf(table).lineCount; ++i)
        numbers.push_back(*LineOf(table, i));
    return numbers;
}

i32 Stride(u32 width, u32 depth)
{
    u32 stride = 0;
    const i32 status = LineTable::StrideOf(width, depth, &stride);
    return status < 0 ? status : static_cast<i32>(stride);
}

using List = std::vector<int>;

} // namespace

TEST(LineTable, StridesFollowTheTableOfDepths)
{
    const List eight = {Stride(1, 8), Stride(4, 8), Stride(5, 8)};
    EXPECT_EQ(eight, (List{4, 4, 8}));
    const List sixteen = {Stride(1, 16), Stride(2, 16), Stride(3, 16)};
    EXPECT_EQ(sixteen, (List{4, 4, 8}));
    const List twentyFour = {Stride(1, 24), Stride(2, 24), Stride(3, 24), Stride(4, 24),
                             Stride(5, 24)};
    EXPECT_EQ(twentyFour, (List{4, 8, 12, 12, 16}));
    const List thirtyTwo = {Stride(1, 32), Stride(3, 32), Stride(1000, 32)};
    EXPECT_EQ(thirtyTwo, (List{4, 12, 4000}));
}

TEST(LineTable, RefusesOtherDepthsAndStridesBeyond31Bits)
{
    for (u32 depth : {0u, 1u, 2u, 4u, 12u, 15u, 48u, 64u})
        EXPECT_EQ(Stride(10, depth), -1) << depth;
    EXPECT_EQ(Stride(0x1FFFFFFF, 32), 0x7FFFFFFC);
    EXPECT_EQ(Stride(0x20000000, 32), -1);
    EXPECT_EQ(Stride(0xFFFFFFFF, 24), -1);
    EXPECT_EQ(Stride(0xFFFFFFFF, 8), -1);
    EXPECT_EQ(LineTable::StrideOf(1, 8, nullptr), -4);
}

TEST(LineTable, CreateMakesBlankLinesAndReportsThem)
{
    LineTable table;
    ASSERT_EQ(table.Create(5, 3, 24), 1);
    const LineTableInfo info = InfoOf(table);
    EXPECT_EQ(info.width, 5u);
    EXPECT_EQ(info.lineCount, 3u);
    EXPECT_EQ(info.depth, 24u);
    EXPECT_EQ(info.stride, 16u);
    EXPECT_EQ(info.colorCount, 0u);
    for (u32 i = 0; i < 3; ++i)
        for (u32 x = 0; x < 16; ++x)
            EXPECT_EQ(LineOf(table, i)[x], 0);
    EXPECT_EQ(table.GetInfo(nullptr), -4);
}

TEST(LineTable, ARefusedDepthLeavesTheTableEmpty)
{
    LineTable table;
    ASSERT_EQ(table.Create(5, 3, 24), 1);
    EXPECT_EQ(table.Create(5, 3, 12), -1);
    const LineTableInfo info = InfoOf(table);
    EXPECT_EQ(info.width + info.lineCount + info.depth + info.stride, 0u);
    EXPECT_EQ(table.InsertLines(0, 1), -3);
}

TEST(LineTable, OperationsOnATableNeverCreatedGiveWrongState)
{
    LineTable table;
    u8** slot = nullptr;
    EXPECT_EQ(table.InsertLines(0, 1), -3);
    EXPECT_EQ(table.DeleteLines(0, 1), -3);
    EXPECT_EQ(table.SwapLines(0, 0), -3);
    EXPECT_EQ(table.GetLineSlot(0, &slot), -1);
    table.Clear();
}

TEST(LineTable, AnEmptyTableHasNoSlots)
{
    LineTable table;
    ASSERT_EQ(table.Create(5, 0, 8), 1);
    u8** slot = nullptr;
    EXPECT_EQ(table.GetLineSlot(0, &slot), -1);
    ASSERT_EQ(table.InsertLines(0, 1), 1);
    EXPECT_EQ(table.GetLineSlot(0, &slot), 1);
    EXPECT_EQ(table.GetLineSlot(1, &slot), -1);
    EXPECT_EQ(table.GetLineSlot(0, nullptr), -1);
}

TEST(LineTable, InsertsBeforeALineAndAtTheEnd)
{
    LineTable table;
    ASSERT_EQ(table.Create(4, 3, 8), 1);
    Number(table);
    ASSERT_EQ(table.InsertLines(1, 2), 1);
    EXPECT_EQ(Numbers(table), (List{1, 0, 0, 2, 3}));
    ASSERT_EQ(table.InsertLines(5, 1), 1);
    EXPECT_EQ(Numbers(table), (List{1, 0, 0, 2, 3, 0}));
    ASSERT_EQ(table.InsertLines(-2, 1), 1);
    EXPECT_EQ(Numbers(table), (List{1, 0, 0, 2, 0, 3, 0}));
    EXPECT_EQ(table.InsertLines(8, 1), -1);
    EXPECT_EQ(table.InsertLines(-8, 1), -1);
    EXPECT_EQ(table.InsertLines(0, 0), 1);
    EXPECT_EQ(InfoOf(table).lineCount, 7u);
}

TEST(LineTable, AFailedInsertChangesNothing)
{
    for (int wrong = 1; wrong <= 4; ++wrong) {
        CountingAllocator memory;
        {
            LineTable table(&memory);
            ASSERT_EQ(table.Create(4, 3, 8), 1);
            Number(table);
            const int before = memory.outstanding;
            memory.asked = 0;
            memory.fails = [wrong](int number, u32) { return number == wrong; };
            EXPECT_EQ(table.InsertLines(1, 3), -2) << "allocation " << wrong;
            EXPECT_EQ(memory.outstanding, before);
            EXPECT_EQ(Numbers(table), (List{1, 2, 3}));
            EXPECT_EQ(table.InsertLines(1, 1), 1);
        }
        EXPECT_EQ(memory.outstanding, 0);
    }
}

TEST(LineTable, AnInsertTooLargeForTheTableFails)
{
    LineTable table;
    ASSERT_EQ(table.Create(4, 2, 8), 1);
    EXPECT_EQ(table.InsertLines(0, 0xFFFFFFFF), -2);
    EXPECT_EQ(InfoOf(table).lineCount, 2u);
}

TEST(LineTable, DeletesFromALineOn)
{
    LineTable table;
    ASSERT_EQ(table.Create(4, 6, 8), 1);
    Number(table);
    ASSERT_EQ(table.DeleteLines(1, 2), 1);
    EXPECT_EQ(Numbers(table), (List{1, 4, 5, 6}));
    ASSERT_EQ(table.DeleteLines(-1, 1), 1);
    EXPECT_EQ(Numbers(table), (List{1, 4, 5}));
    EXPECT_EQ(table.DeleteLines(3, 1), -1);
    EXPECT_EQ(table.DeleteLines(-4, 1), -1);
    ASSERT_EQ(table.DeleteLines(0, 9), 1);
    EXPECT_EQ(InfoOf(table).lineCount, 0u);
    EXPECT_EQ(table.DeleteLines(0, 1), -1);
}

TEST(LineTable, ADeletionPastTheEndStaysInsideTheTable)
{
    CountingAllocator memory;
    {
        LineTable table(&memory);
        ASSERT_EQ(table.Create(4, 5, 8), 1);
        Number(table);
        // The count is limited to the five lines there are, not to the two behind line 3.
        ASSERT_EQ(table.DeleteLines(3, 4), 1);
        EXPECT_EQ(Numbers(table), (List{1}));
    }
    EXPECT_EQ(memory.outstanding, 0);
}

TEST(LineTable, ADeletionWithoutMemoryHasLoweredTheCount)
{
    CountingAllocator memory;
    LineTable table(&memory);
    ASSERT_EQ(table.Create(4, 3, 8), 1);
    Number(table);
    u8* const lost = LineOf(table, 2);
    memory.fails = [](int, u32) { return true; };
    EXPECT_EQ(table.DeleteLines(0, 1), -2);
    EXPECT_EQ(InfoOf(table).lineCount, 2u);
    // No line was freed; the third one belongs to nobody now, and the test gives it back.
    EXPECT_EQ(Numbers(table), (List{1, 2}));
    EXPECT_EQ(*lost, 3);
    memory.fails = nullptr;
    (void)memory.Free(lost);
}

TEST(LineTable, SwapExchangesAddresses)
{
    LineTable table;
    ASSERT_EQ(table.Create(4, 3, 8), 1);
    u8* const first = LineOf(table, 0);
    u8* const last = LineOf(table, 2);
    ASSERT_EQ(table.SwapLines(0, -1), 1);
    EXPECT_EQ(LineOf(table, 0), last);
    EXPECT_EQ(LineOf(table, 2), first);
    EXPECT_EQ(table.SwapLines(0, 3), -1);
    EXPECT_EQ(table.SwapLines(-4, 0), -1);
    EXPECT_EQ(table.SwapLines(1, 1), 1);
}

TEST(LineTable, TakeFromMovesAllLinesInOrder)
{
    LineTable source;
    ASSERT_EQ(source.Create(4, 4, 8), 1);
    Number(source);
    LineTable target;
    ASSERT_EQ(target.Create(9, 2, 32), 1);
    ASSERT_EQ(target.TakeFrom(&source), 1);
    EXPECT_EQ(Numbers(target), (List{1, 2, 3, 4}));
    EXPECT_EQ(InfoOf(target).width, 4u);
    EXPECT_EQ(InfoOf(target).depth, 8u);
    EXPECT_EQ(InfoOf(source).lineCount, 0u);
    EXPECT_EQ(target.TakeFrom(nullptr), -4);
    EXPECT_EQ(target.TakeFrom(&target), -4);
    EXPECT_EQ(Numbers(target), (List{1, 2, 3, 4}));
}

TEST(LineTable, EveryFailedAllocationOfCreateIsReportedAndNothingLeaks)
{
    bool finished = false;
    for (int wrong = 1; !finished; ++wrong) {
        ASSERT_LT(wrong, 100);
        CountingAllocator memory;
        memory.fails = [wrong](int number, u32) { return number == wrong; };
        {
            LineTable table(&memory);
            const i32 status = table.Create(4, 5, 24);
            finished = memory.asked < wrong;
            EXPECT_EQ(status, finished ? 1 : -2);
        }
        EXPECT_EQ(memory.outstanding, 0) << "allocation " << wrong;
    }
}
