#include "PagingTest.h"

#include "image/Raster.h"

namespace
{

using RasterTest = PagingTest; // plentiful memory, nothing pages unless a test asks for it

/// The statuses of locking each line, and which lines share an address.
std::vector<i32> LockStatuses(Raster& raster)
{
    std::vector<i32> statuses;
    for (u32 y = 0; y < InfoOf(raster).height; ++y) {
        u8* row = nullptr;
        statuses.push_back(raster.LockLines(static_cast<i32>(y), &row, nullptr));
    }
    raster.UnlockAll();
    return statuses;
}

/// Lines marked by their first byte, 1 from the top.
void Mark(Raster& raster)
{
    for (u32 y = 0; y < InfoOf(raster).height; ++y)
        *AddressOf(raster, static_cast<i32>(y)) = static_cast<u8>(y + 1);
    raster.UnlockAll();
}

std::vector<int> Marks(Raster& raster)
{
    std::vector<int> marks;
    for (u32 y = 0; y < InfoOf(raster).height; ++y) {
        const u8* const row = AddressOf(raster, static_cast<i32>(y));
        marks.push_back(row != nullptr ? *row : -1);
    }
    raster.UnlockAll();
    return marks;
}

using List = std::vector<int>;
using Statuses = std::vector<i32>;

} // namespace

TEST_F(RasterTest, CreateReportsSizeDepthAndStride)
{
    Raster raster;
    ASSERT_EQ(raster.Create(5, 3, 24, nullptr, nullptr), 1);
    const RasterInfo info = InfoOf(raster);
    EXPECT_EQ(info.size, 24u);
    EXPECT_EQ(info.width, 5u);
    EXPECT_EQ(info.height, 3u);
    EXPECT_EQ(info.depth, 24u);
    EXPECT_EQ(info.stride, 16u);
    EXPECT_EQ(info.colorCount, 0u);
    EXPECT_EQ(RowsOf(raster), Rows(3, std::vector<u8>(16)));
}

TEST_F(RasterTest, CreateWithNoLinesIsLiveAndHasNothingToLock)
{
    Raster raster;
    ASSERT_EQ(raster.Create(5, 0, 24, nullptr, nullptr), 1);
    u8* row = nullptr;
    EXPECT_EQ(raster.LockLines(0, &row, nullptr), -1);
    EXPECT_EQ(raster.LockLines(-1, &row, nullptr), -1);
    EXPECT_EQ(raster.UnlockAll(), 1);
    EXPECT_EQ(raster.FlipVertical(), 1);
    EXPECT_EQ(raster.InsertLines(0, nullptr), 1);
    EXPECT_EQ(raster.LockLines(0, &row, nullptr), 1);
}

TEST_F(RasterTest, ARefusedDepthLeavesTheRasterEmpty)
{
    for (u32 depth : {0u, 1u, 2u, 12u, 48u}) {
        Raster raster;
        ASSERT_EQ(raster.Create(5, 3, 24, FirstFolder, nullptr), 1);
        EXPECT_EQ(raster.Create(5, 3, depth, FirstFolder, SecondFolder), -1);
        const RasterInfo info = InfoOf(raster);
        EXPECT_EQ(info.size, 24u);
        EXPECT_EQ(info.width + info.height + info.depth + info.stride, 0u);
        SwapDirs folders = {TEXT("x"), TEXT("x")};
        EXPECT_EQ(raster.GetSwapDirs(&folders), 1);
        EXPECT_EQ(folders.primary, nullptr);
        EXPECT_EQ(folders.secondary, nullptr);
        EXPECT_EQ(raster.UnlockAll(), -3);
    }
}

TEST_F(RasterTest, AStrideBeyond31BitsIsRefusedAndLeavesTheRasterEmpty)
{
    Raster raster;
    EXPECT_EQ(raster.Create(0x20000000, 1, 32, nullptr, nullptr), -1);
    EXPECT_EQ(raster.Create(0xFFFFFFFF, 1, 24, nullptr, nullptr), -1);
    EXPECT_EQ(InfoOf(raster).stride, 0u);
}

TEST_F(RasterTest, EveryOperationOnARasterNeverCreatedGivesWrongState)
{
    Raster raster;
    u8* row = nullptr;
    const u8 block[64] = {};
    EXPECT_EQ(raster.InsertLines(0, nullptr), -3);
    EXPECT_EQ(raster.RemoveLines(0, nullptr), -3);
    EXPECT_EQ(raster.SwapLines(0, 0), -3);
    EXPECT_EQ(raster.FlipVertical(), -3);
    EXPECT_EQ(raster.LockLines(0, &row, nullptr), -3);
    EXPECT_EQ(raster.ReleaseLines(0, 1, 0), -3);
    EXPECT_EQ(raster.UnlockAll(), -3);
    EXPECT_EQ(raster.LoadRaw(block), -3);
    raster.Reset();
    EXPECT_EQ(InfoOf(raster).size, 24u);
}

TEST_F(RasterTest, NullPointersAreRefusedBeforeTheState)
{
    Raster raster;
    EXPECT_EQ(raster.GetInfo(nullptr), -4);
    EXPECT_EQ(raster.GetPalette(nullptr), -4);
    EXPECT_EQ(raster.GetSwapDirs(nullptr), -4);
    EXPECT_EQ(raster.LockLines(0, nullptr, nullptr), -4);
    EXPECT_EQ(raster.TakeFrom(nullptr), -4);
    EXPECT_EQ(raster.LoadRaw(nullptr), -2);
}

TEST_F(RasterTest, GetInfoCopiesNoMoreThanTheCallerAsksFor)
{
    Raster raster;
    ASSERT_EQ(raster.Create(5, 3, 24, nullptr, nullptr), 1);
    RasterInfo info;
    std::memset(&info, 0xEE, sizeof(info));
    info.size = 12;
    ASSERT_EQ(raster.GetInfo(&info), 1);
    EXPECT_EQ(info.size, 24u);
    EXPECT_EQ(info.width, 5u);
    EXPECT_EQ(info.height, 3u);
    EXPECT_EQ(info.depth, 0xEEEEEEEEu);
    EXPECT_EQ(info.colorCount, 0xEEEEEEEEu);
    std::memset(&info, 0xEE, sizeof(info));
    info.size = 1000;
    ASSERT_EQ(raster.GetInfo(&info), 1);
    EXPECT_EQ(info.size, 24u);
    EXPECT_EQ(info.depth, 24u);
    EXPECT_EQ(info.colorCount, 0u);
}

TEST_F(RasterTest, GetInfoCountsThePaletteAsItIsNow)
{
    Raster raster;
    ASSERT_EQ(raster.Create(5, 3, 8, nullptr, nullptr), 1);
    ColorTable* palette = nullptr;
    ASSERT_EQ(raster.GetPalette(&palette), 1);
    ASSERT_NE(palette, nullptr);
    ASSERT_EQ(palette->Create(4), 1);
    ASSERT_EQ(palette->Add(1, 2, 3, 4), 1);
    ASSERT_EQ(palette->Add(5, 6, 7, 8), 1);
    EXPECT_EQ(InfoOf(raster).colorCount, 2u);
    raster.Reset();
    EXPECT_EQ(InfoOf(raster).colorCount, 0u);
}

TEST_F(RasterTest, NegativeLinesCountFromTheEnd)
{
    Raster raster;
    ASSERT_EQ(raster.Create(2, 4, 24, nullptr, nullptr), 1);
    EXPECT_EQ(AddressOf(raster, -1), AddressOf(raster, 3));
    EXPECT_EQ(AddressOf(raster, -4), AddressOf(raster, 0));
    u8* row = nullptr;
    EXPECT_EQ(raster.LockLines(-5, &row, nullptr), -1);
    EXPECT_EQ(raster.LockLines(4, &row, nullptr), -1);
    EXPECT_EQ(raster.LockLines(-2147483647 - 1, &row, nullptr), -1);
    EXPECT_EQ(raster.ReleaseLines(-5, 1, 0), -1);
    EXPECT_EQ(raster.ReleaseLines(4, 1, 0), -1);
    EXPECT_EQ(raster.ReleaseLines(-4, 1, 0), 1);
    EXPECT_EQ(raster.SwapLines(0, 4), -1);
    EXPECT_EQ(raster.SwapLines(-5, 0), -1);
    EXPECT_EQ(raster.SwapLines(-1, -4), 1);
    EXPECT_EQ(raster.RemoveLines(4, nullptr), -1);
    EXPECT_EQ(raster.RemoveLines(-5, nullptr), -1);
    EXPECT_EQ(raster.InsertLines(5, nullptr), -1);
    EXPECT_EQ(raster.InsertLines(-5, nullptr), -1);
    EXPECT_EQ(InfoOf(raster).height, 4u);
}

TEST_F(RasterTest, LockingPastTheEndIsCutAndTold)
{
    Raster raster;
    ASSERT_EQ(raster.Create(2, 4, 24, nullptr, nullptr), 1);
    u8* rows[6] = {};
    u32 count = 5;
    EXPECT_EQ(raster.LockLines(2, rows, &count), 1);
    EXPECT_EQ(count, 2u);
    EXPECT_NE(rows[0], nullptr);
    EXPECT_NE(rows[1], nullptr);
    EXPECT_EQ(rows[2], nullptr);
    count = 0xFFFFFFFF;
    EXPECT_EQ(raster.LockLines(1, rows, &count), 1);
    EXPECT_EQ(count, 3u);
    count = 0;
    EXPECT_EQ(raster.LockLines(0, rows, &count), 1);
    EXPECT_EQ(count, 0u);
}

TEST_F(RasterTest, InsertsBlankLinesWhereTold)
{
    Raster raster;
    ASSERT_EQ(raster.Create(2, 3, 24, nullptr, nullptr), 1);
    Mark(raster);
    u32 count = 2;
    ASSERT_EQ(raster.InsertLines(1, &count), 1);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(Marks(raster), (List{1, 0, 0, 2, 3}));
    ASSERT_EQ(raster.InsertLines(5, nullptr), 1);
    EXPECT_EQ(Marks(raster), (List{1, 0, 0, 2, 3, 0}));
    ASSERT_EQ(raster.InsertLines(-2, nullptr), 1);
    EXPECT_EQ(Marks(raster), (List{1, 0, 0, 2, 0, 3, 0}));
    count = 0;
    ASSERT_EQ(raster.InsertLines(0, &count), 1);
    EXPECT_EQ(InfoOf(raster).height, 7u);
}

TEST_F(RasterTest, AnAddressSurvivesInsertionsAndRemovals)
{
    Raster raster;
    ASSERT_EQ(raster.Create(2, 4, 24, nullptr, nullptr), 1);
    u8* const row = AddressOf(raster, 2);
    row[0] = 99;
    ASSERT_EQ(raster.InsertLines(0, nullptr), 1);
    EXPECT_EQ(AddressOf(raster, 3), row);
    ASSERT_EQ(raster.RemoveLines(1, nullptr), 1);
    EXPECT_EQ(AddressOf(raster, 2), row);
    EXPECT_EQ(row[0], 99);
}

TEST_F(RasterTest, AFailedInsertKeepsTheGrownHeightAndTheReferencesAsTheyStood)
{
    CountingAllocator memory;
    {
        Raster raster(&memory);
        ASSERT_EQ(raster.Create(2, 2, 24, nullptr, nullptr), 1);
        Mark(raster);
        u8* const first = AddressOf(raster, 0);
        u8* const last = AddressOf(raster, 1);
        raster.UnlockAll();
        // Of all the blocks taken here only the lines have 8 bytes; the third new one fails.
        int lines = 0;
        memory.fails = [&lines](int, u32 size) { return size == 8 && ++lines == 3; };
        u32 count = 4;
        EXPECT_EQ(raster.InsertLines(1, &count), -2);
        memory.fails = nullptr;
        EXPECT_EQ(InfoOf(raster).height, 6u);
        // Two lines entered at physical index 0 and raised every reference by 2, those of the lines
        // that were not made from 0 to 2 as well, which is where the old last line now stands.
        EXPECT_EQ(AddressOf(raster, 0), first);
        EXPECT_EQ(AddressOf(raster, 5), last);
        EXPECT_EQ(AddressOf(raster, 3), last);
        EXPECT_EQ(AddressOf(raster, 4), last);
        EXPECT_NE(AddressOf(raster, 1), AddressOf(raster, 2));
        EXPECT_EQ(Marks(raster), (List{1, 0, 0, 2, 2, 2}));
    }
    EXPECT_EQ(memory.outstanding, 0);
}

TEST_F(RasterTest, AnInsertWithoutMemoryForItsArraysKeepsTheGrownHeight)
{
    CountingAllocator memory;
    {
        Raster raster(&memory);
        ASSERT_EQ(raster.Create(2, 3, 24, nullptr, nullptr), 1);
        Mark(raster);
        for (int wrong = 1; wrong <= 3; ++wrong) {
            memory.asked = 0;
            memory.fails = [wrong](int number, u32) { return number == wrong; };
            EXPECT_EQ(raster.InsertLines(0, nullptr), -2);
            memory.fails = nullptr;
            EXPECT_EQ(InfoOf(raster).height, 3u + static_cast<u32>(wrong));
        }
        // The lines that have no record lock as lost; the others are what they were.
        EXPECT_EQ(LockStatuses(raster), (Statuses{1, 1, 1, 0, 0, 0}));
        u8* rows[6] = {};
        u32 count = 6;
        EXPECT_EQ(raster.LockLines(0, rows, &count), 0);
        EXPECT_EQ(count, 3u);
        EXPECT_EQ(raster.SwapLines(0, 5), -1);
        EXPECT_EQ(raster.ReleaseLines(1, 4, 0), 1);
        EXPECT_EQ(raster.InsertLines(-1, nullptr), 1);
        EXPECT_EQ(InfoOf(raster).height, 7u);
        EXPECT_EQ(raster.RemoveLines(3, nullptr), 1);
    }
    EXPECT_EQ(memory.outstanding, 0);
}

TEST_F(RasterTest, AHugeHeightIsRefusedForLackOfMemory)
{
    CountingAllocator memory;
    memory.fails = [](int, u32 size) { return size > 1000000; };
    Raster raster(&memory);
    for (u32 height : {0x7FFFFFFFu, 0xFFFFFFFFu}) {
        EXPECT_EQ(raster.Create(1, height, 24, nullptr, nullptr), -2);
        EXPECT_EQ(InfoOf(raster).height, height);
        u8* row = nullptr;
        EXPECT_EQ(raster.LockLines(-1, &row, nullptr), 0);
        EXPECT_EQ(raster.ReleaseLines(0, 0x7FFFFFFF, 0), 1);
        u32 count = 0xFFFFFFFF;
        EXPECT_EQ(raster.InsertLines(0, &count), -2);
    }
}

TEST_F(RasterTest, ATallPictureTakesOneAllocationALineAndAFewMore)
{
    CountingAllocator memory;
    {
        Raster raster(&memory);
        memory.asked = 0;
        memory.bytes = 0;
        ASSERT_EQ(raster.Create(1, 65535, 24, nullptr, nullptr), 1);
        EXPECT_LT(memory.asked, 65535 + 20);
        EXPECT_LT(memory.bytes, 65535ull * 4 + 65535ull * 40);
        *AddressOf(raster, 0) = 7;
        *AddressOf(raster, 65534) = 8;
        EXPECT_EQ(*AddressOf(raster, 0), 7);
    }
    EXPECT_EQ(memory.outstanding, 0);
}

TEST_F(RasterTest, EveryFailedAllocationOfCreateIsReportedAndNothingLeaks)
{
    bool finished = false;
    for (int wrong = 1; !finished; ++wrong) {
        ASSERT_LT(wrong, 200);
        CountingAllocator memory;
        memory.fails = [wrong](int number, u32) { return number == wrong; };
        {
            Raster raster(&memory);
            const i32 status = raster.Create(7, 6, 24, FirstFolder, SecondFolder);
            finished = memory.asked < wrong;
            // The table of a whole run has a stand-in: lines then enter one by one.
            if (status != 1) {
                EXPECT_EQ(status, -2) << "allocation " << wrong;
            }
            if (finished) {
                EXPECT_EQ(status, 1);
            }
            memory.fails = nullptr;
            EXPECT_EQ(raster.Create(7, 6, 24, FirstFolder, SecondFolder), 1);
            EXPECT_EQ(RowsOf(raster), Rows(6, std::vector<u8>(24)));
        }
        EXPECT_EQ(memory.outstanding, 0) << "allocation " << wrong;
    }
}

TEST_F(RasterTest, RemovesALine)
{
    Raster raster;
    ASSERT_EQ(raster.Create(2, 5, 24, nullptr, nullptr), 1);
    Mark(raster);
    ASSERT_EQ(raster.RemoveLines(0, nullptr), 1);
    EXPECT_EQ(Marks(raster), (List{2, 3, 4, 5}));
    ASSERT_EQ(raster.RemoveLines(-2, nullptr), 1);
    EXPECT_EQ(Marks(raster), (List{2, 3, 5}));
    u32 count = 1;
    ASSERT_EQ(raster.RemoveLines(1, &count), 1);
    EXPECT_EQ(Marks(raster), (List{2, 5}));
}

TEST_F(RasterTest, ARemovalThatReachesTheLastLineRemovesNothing)
{
    Raster raster;
    ASSERT_EQ(raster.Create(2, 5, 24, nullptr, nullptr), 1);
    Mark(raster);
    EXPECT_EQ(raster.RemoveLines(4, nullptr), 1);
    EXPECT_EQ(raster.RemoveLines(-1, nullptr), 1);
    u32 count = 5;
    EXPECT_EQ(raster.RemoveLines(0, &count), 1);
    count = 9;
    EXPECT_EQ(raster.RemoveLines(3, &count), 1);
    count = 0xFFFFFFFF;
    EXPECT_EQ(raster.RemoveLines(1, &count), 1);
    EXPECT_EQ(Marks(raster), (List{1, 2, 3, 4, 5}));
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(raster.RemoveLines(0, nullptr), 1);
    EXPECT_EQ(Marks(raster), (List{5}));
}

TEST_F(RasterTest, OfSeveralRemovedLinesEachFreesThePhysicalIndexOfTheFirst)
{
    Raster raster;
    ASSERT_EQ(raster.Create(2, 5, 24, nullptr, nullptr), 1);
    Mark(raster);
    // The lines stand at physical 4, 3, 2, 1, 0. Lines 2 and 3 go: physical 2 is freed, the two
    // above close up, and then physical 2 once more, which by now holds line 1. Line 1 is left with
    // the reference 2, where line 0 has closed up to.
    u32 count = 2;
    ASSERT_EQ(raster.RemoveLines(2, &count), 1);
    EXPECT_EQ(Marks(raster), (List{1, 1, 5}));
}

TEST_F(RasterTest, ARemovalOfSeveralLinesSparesAPinnedLine)
{
    Raster raster;
    ASSERT_EQ(raster.Create(2, 5, 24, nullptr, nullptr), 1);
    Mark(raster);
    u8* const pinned = AddressOf(raster, 1);
    u32 count = 2;
    ASSERT_EQ(raster.RemoveLines(2, &count), 1);
    EXPECT_EQ(*pinned, 2);
    EXPECT_EQ(Marks(raster), (List{1, 2, 5}));
}

TEST_F(RasterTest, ARemovalWithoutMemoryKeepsTheLoweredHeight)
{
    CountingAllocator memory;
    {
        Raster raster(&memory);
        ASSERT_EQ(raster.Create(2, 5, 24, nullptr, nullptr), 1);
        Mark(raster);
        for (int wrong = 1; wrong <= 3; ++wrong) {
            memory.asked = 0;
            memory.fails = [wrong](int number, u32) { return number == wrong; };
            EXPECT_EQ(raster.RemoveLines(0, nullptr), -2);
            memory.fails = nullptr;
            EXPECT_EQ(InfoOf(raster).height, 5u - static_cast<u32>(wrong));
        }
        EXPECT_EQ(Marks(raster), (List{1, 2}));
        ASSERT_EQ(raster.InsertLines(1, nullptr), 1);
        EXPECT_EQ(Marks(raster), (List{1, 0, 2}));
    }
    EXPECT_EQ(memory.outstanding, 0);
}

TEST_F(RasterTest, SwappingLinesMovesNoData)
{
    Raster raster;
    ASSERT_EQ(raster.Create(2, 3, 24, nullptr, nullptr), 1);
    Mark(raster);
    u8* const first = AddressOf(raster, 0);
    u8* const last = AddressOf(raster, 2);
    ASSERT_EQ(raster.SwapLines(0, 2), 1);
    EXPECT_EQ(AddressOf(raster, 0), last);
    EXPECT_EQ(AddressOf(raster, 2), first);
    EXPECT_EQ(Marks(raster), (List{3, 2, 1}));
}

TEST_F(RasterTest, FlippingReversesTheLines)
{
    for (u32 height : {1u, 2u, 5u, 6u}) {
        Raster raster;
        ASSERT_EQ(raster.Create(2, height, 24, nullptr, nullptr), 1);
        Mark(raster);
        EXPECT_EQ(raster.FlipVertical(), 1);
        List expected;
        for (u32 y = height; y > 0; --y)
            expected.push_back(static_cast<int>(y));
        EXPECT_EQ(Marks(raster), expected);
    }
}

TEST_F(RasterTest, LoadRawTakesTheRowsInOrder)
{
    Raster raster;
    ASSERT_EQ(raster.Create(3, 4, 24, nullptr, nullptr), 1);
    std::vector<u8> block;
    for (int i = 0; i < 4 * 12; ++i)
        block.push_back(static_cast<u8>(i * 5 + 1));
    ASSERT_EQ(raster.LoadRaw(block.data()), 1);
    for (int y = 0; y < 4; ++y)
        EXPECT_EQ(RowOf(raster, y),
                  std::vector<u8>(block.begin() + y * 12, block.begin() + (y + 1) * 12));
    Raster empty;
    ASSERT_EQ(empty.Create(3, 0, 24, nullptr, nullptr), 1);
    EXPECT_EQ(empty.LoadRaw(block.data()), -3);
    EXPECT_EQ(empty.LoadRaw(nullptr), -2);
}

TEST_F(RasterTest, TakeFromMovesPixelsFoldersAndPaletteAndLeavesTheLastLine)
{
    Raster source;
    ASSERT_EQ(source.Create(5, 6, 24, FirstFolder, SecondFolder), 1);
    FillPattern(source, 3);
    ColorTable* palette = nullptr;
    ASSERT_EQ(source.GetPalette(&palette), 1);
    ASSERT_EQ(palette->Create(1), 1);
    ASSERT_EQ(palette->Add(9, 8, 7, 6), 1);

    Raster target;
    ASSERT_EQ(target.Create(1, 1, 8, nullptr, nullptr), 1);
    ASSERT_EQ(target.TakeFrom(&source), 1);
    EXPECT_EQ(RowsOf(target), PatternRows(3, 6, 16));
    SwapDirs folders = {};
    ASSERT_EQ(target.GetSwapDirs(&folders), 1);
    EXPECT_EQ(wcscmp(folders.primary, FirstFolder), 0);
    EXPECT_EQ(wcscmp(folders.secondary, SecondFolder), 0);
    ASSERT_EQ(target.GetPalette(&palette), 1);
    PaletteEntry* entries = nullptr;
    ASSERT_EQ(palette->GetData(&entries), 1);
    EXPECT_EQ(palette->Count(), 1u);
    EXPECT_EQ(entries[0].red, 9u);
    EXPECT_EQ(entries[0].fourth, 6u);
    EXPECT_EQ(InfoOf(target).colorCount, 1u);

    EXPECT_EQ(InfoOf(source).height, 1u);
    EXPECT_EQ(RowOf(source, 0), PatternRows(3, 6, 16)[5]);
    EXPECT_EQ(target.TakeFrom(&target), -4);
    EXPECT_EQ(RowsOf(target), PatternRows(3, 6, 16));
}

TEST_F(RasterTest, TakeFromARasterNeverCreatedIsRefused)
{
    Raster source;
    Raster target;
    EXPECT_EQ(target.TakeFrom(&source), -1);
}

// It names four billion lines: each of them would be taken over as a blank one.
TEST_F(RasterTest, TakeFromARasterWhoseRecordsFoundNoMemoryEndsAtOnce)
{
    Raster source;
    Raster target;
    ASSERT_LT(source.Create(3, 4000000000u, 24, nullptr, nullptr), 0);
    EXPECT_EQ(target.TakeFrom(&source), NoMemory);
    RasterInfo info = {};
    info.size = sizeof info;
    EXPECT_EQ(target.GetInfo(&info), Done);
    EXPECT_EQ(info.width, 3u);
    EXPECT_EQ(info.height, 0u);
}

TEST_F(RasterTest, ARasterCanBeCreatedAgainAndAgain)
{
    CountingAllocator memory;
    {
        Raster raster(&memory);
        for (u32 depth : {8u, 16u, 24u, 32u}) {
            ASSERT_EQ(raster.Create(depth, depth + 1, depth, FirstFolder, nullptr), 1);
            EXPECT_EQ(InfoOf(raster).height, depth + 1);
            FillPattern(raster, depth);
        }
        raster.Reset();
        EXPECT_EQ(memory.outstanding, 0);
    }
    EXPECT_EQ(memory.outstanding, 0);
}
