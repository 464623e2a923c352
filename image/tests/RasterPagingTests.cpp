#include "PagingTest.h"

#include "image/Raster.h"

#include <regex>

using tavrix::testing::SetRandom;

namespace
{

using Files = std::map<std::string, size_t>;
using RasterPaging = PagingTest;

constexpr u32 Stride = PagedStride;

} // namespace

TEST_F(RasterPaging, UnderShortMemoryNewLinesBeginAsEmptyFiles)
{
    ShortMemory();
    Raster raster;
    SetRandom({5, 999999, 1000042, 0, 123456});
    ASSERT_EQ(raster.Create(5, 5, 24, FirstFolder, SecondFolder), 1);
    EXPECT_EQ(FilesIn(FirstFolder), (Files{{"000005.tmp", 0},
                                           {"999999.tmp", 0},
                                           {"000042.tmp", 0},
                                           {"000000.tmp", 0},
                                           {"123456.tmp", 0}}));
    EXPECT_TRUE(FilesIn(SecondFolder).empty());
}

TEST_F(RasterPaging, AnUnwrittenLineReadsBlankAndIsWrittenToANewFileOnRelease)
{
    ShortMemory();
    Raster raster;
    SetRandom({1, 2, 3, 77});
    ASSERT_EQ(raster.Create(5, 3, 24, FirstFolder, SecondFolder), 1);
    u8* row = AddressOf(raster, 1);
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(std::vector<u8>(row, row + Stride), std::vector<u8>(Stride));
    EXPECT_EQ(FilesIn(FirstFolder), (Files{{"000001.tmp", 0}, {"000003.tmp", 0}}));
    for (u32 x = 0; x < Stride; ++x)
        row[x] = PatternByte(8, 1, x);
    EXPECT_EQ(raster.ReleaseLines(1, 1, 0), 1);
    EXPECT_EQ(FilesIn(FirstFolder),
              (Files{{"000001.tmp", 0}, {"000003.tmp", 0}, {"000077.tmp", Stride}}));
    EXPECT_EQ(ReadHostFile(HostFile(FirstFolder, "000077.tmp")), PatternRow(8, 1));
    EXPECT_EQ(RowOf(raster, 1), PatternRow(8, 1));
}

TEST_F(RasterPaging, TheRoomForALineIsItsStrideAndTheReserveStrictly)
{
    tavrix::testing::SetFreeMemory(0xA0000 + Stride);
    MemoryGauge::Sample();
    Raster without;
    EXPECT_EQ(without.Create(5, 1, 24, nullptr, nullptr), -1);
    tavrix::testing::SetFreeMemory(0xA0000 + Stride + 1);
    MemoryGauge::Sample();
    EXPECT_EQ(without.Create(5, 1, 24, nullptr, nullptr), 1);
}

TEST_F(RasterPaging, WithoutFoldersARasterRefusesToGrowUnderShortMemory)
{
    Raster raster;
    MakeFilled(raster, 3, 1, nullptr, SecondFolder);
    ShortMemory();
    EXPECT_EQ(raster.InsertLines(1, nullptr), -1);
    EXPECT_EQ(InfoOf(raster).height, 4u);
    Raster fresh;
    EXPECT_EQ(fresh.Create(5, 3, 24, nullptr, nullptr), -1);
    EXPECT_EQ(InfoOf(fresh).height, 3u);
    EXPECT_TRUE(FilesIn(SecondFolder).empty());
}

TEST_F(RasterPaging, WithoutFoldersAReleaseUnderShortMemoryStopsAtTheFirstLine)
{
    Raster raster;
    MakeFilled(raster, 6, 1, nullptr, nullptr);
    u8* rows[3];
    u32 count = 3;
    ASSERT_EQ(raster.LockLines(0, rows, &count), 1);
    ShortMemory();
    EXPECT_EQ(raster.ReleaseLines(0, 3, 0), 0);
    EXPECT_EQ(raster.ReleaseLines(0, 1, 1), 0);
    PlentyOfMemory();
    EXPECT_EQ(RowsOf(raster), PatternRows(1, 6, Stride));
}

TEST_F(RasterPaging, AForcedReleaseWritesTheLineOutAndALockBringsItBack)
{
    Raster raster;
    MakeFilled(raster, 4, 2);
    SetRandom({11});
    EXPECT_EQ(raster.ReleaseLines(1, 1, 1), 1);
    EXPECT_EQ(FilesIn(FirstFolder), (Files{{"000011.tmp", Stride}}));
    EXPECT_EQ(ReadHostFile(HostFile(FirstFolder, "000011.tmp")), PatternRow(2, 1));
    // A line that is out already stays where it is.
    EXPECT_EQ(raster.ReleaseLines(1, 1, 1), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
    EXPECT_EQ(RowsOf(raster), PatternRows(2, 4, Stride));
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
}

TEST_F(RasterPaging, LinesThatGoOutAndComeBackLeaveNoFileOpen)
{
    const auto open = [] { return tavrix::platform::CountHoldings().kernelHandles; };
    Raster raster;
    MakeFilled(raster, 4, 2);
    const size_t before = open();
    SetRandom({5, 5, 6}); // the second line finds its first name taken
    EXPECT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    EXPECT_EQ(raster.ReleaseLines(1, 1, 1), 1);
    EXPECT_EQ(FilesIn(FirstFolder), (Files{{"000005.tmp", Stride}, {"000006.tmp", Stride}}));
    EXPECT_EQ(open(), before) << "written";
    EXPECT_EQ(RowsOf(raster), PatternRows(2, 4, Stride));
    EXPECT_EQ(open(), before) << "read";
    ShortMemory();
    EXPECT_EQ(raster.InsertLines(4, nullptr), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
    EXPECT_EQ(open(), before) << "made empty";
}

TEST_F(RasterPaging, ReleasingTheLastLineLeavesItLocked)
{
    Raster raster;
    MakeFilled(raster, 4, 2);
    u8* const row = AddressOf(raster, 3);
    EXPECT_EQ(raster.ReleaseLines(3, 1, 0), 1);
    EXPECT_EQ(raster.ReleaseLines(-1, 1, 1), 1);
    EXPECT_EQ(raster.ReleaseLines(0, 4, 1), 1);
    EXPECT_EQ(raster.ReleaseLines(2, 2, 1), 1);
    EXPECT_EQ(raster.ReleaseLines(2, 9, 1), 1);
    EXPECT_EQ(raster.ReleaseLines(1, 0xFFFFFFFF, 1), 1);
    EXPECT_TRUE(FilesIn(FirstFolder).empty());

    // It is no victim either, until UnlockAll.
    EXPECT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    ShortMemory();
    ASSERT_NE(AddressOf(raster, 0), nullptr);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 2u);
    EXPECT_EQ(std::vector<u8>(row, row + Stride), PatternRow(2, 3));
    raster.UnlockAll();
    ASSERT_NE(AddressOf(raster, 1), nullptr);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 3u);
    PlentyOfMemory();
    EXPECT_EQ(RowsOf(raster), PatternRows(2, 4, Stride));
}

TEST_F(RasterPaging, LocksDoNotCount)
{
    Raster raster;
    MakeFilled(raster, 3, 2);
    AddressOf(raster, 0);
    AddressOf(raster, 0);
    EXPECT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
}

TEST_F(RasterPaging, UnlockAllPagesNothing)
{
    Raster raster;
    MakeFilled(raster, 3, 2);
    AddressOf(raster, 0);
    ShortMemory();
    EXPECT_EQ(raster.UnlockAll(), 1);
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
}

TEST_F(RasterPaging, ASweepUnderShortMemoryHoldsAboutOneLine)
{
    Raster raster;
    MakeFilled(raster, 20, 4);
    ShortMemory();
    for (i32 y = 0; y < 20; ++y) {
        EXPECT_EQ(RowOf(raster, y), PatternRow(4, static_cast<u32>(y)));
        if (y < 19) {
            EXPECT_EQ(FilesIn(FirstFolder).size(), static_cast<size_t>(y) + 1);
        }
    }
    for (i32 y = 18; y >= 0; --y) {
        EXPECT_EQ(RowOf(raster, y), PatternRow(4, static_cast<u32>(y)));
        EXPECT_EQ(FilesIn(FirstFolder).size(), 19u);
    }
}

TEST_F(RasterPaging, VictimsGoFarthestFirstAndTheLowerOfTwoAlike)
{
    Raster raster;
    MakeFilled(raster, 7, 5);
    SetRandom({100, 1, 2, 3, 4, 5, 6});
    ASSERT_EQ(raster.ReleaseLines(3, 1, 1), 1);
    ShortMemory();
    ASSERT_NE(AddressOf(raster, 3), nullptr);
    const u32 order[] = {6, 0, 5, 1, 4, 2};
    for (u32 i = 0; i < 6; ++i)
        EXPECT_EQ(ReadHostFile(HostFile(FirstFolder, "00000" + std::to_string(i + 1) + ".tmp")),
                  PatternRow(5, order[i]))
            << "victim " << i;
    EXPECT_EQ(FilesIn(FirstFolder).size(), 6u);
}

TEST_F(RasterPaging, VictimsOfALineNearTheTopComeFromTheBottomAndPinnedLinesStay)
{
    Raster raster;
    MakeFilled(raster, 6, 5);
    SetRandom({100, 1, 2, 3});
    ASSERT_EQ(raster.ReleaseLines(1, 1, 1), 1);
    u8* const pinned = AddressOf(raster, 4);
    AddressOf(raster, 2);
    ShortMemory();
    ASSERT_NE(AddressOf(raster, 1), nullptr);
    const u32 order[] = {5, 3, 0};
    for (u32 i = 0; i < 3; ++i)
        EXPECT_EQ(ReadHostFile(HostFile(FirstFolder, "00000" + std::to_string(i + 1) + ".tmp")),
                  PatternRow(5, order[i]))
            << "victim " << i;
    EXPECT_EQ(FilesIn(FirstFolder).size(), 3u);
    EXPECT_EQ(std::vector<u8>(pinned, pinned + Stride), PatternRow(5, 4));
}

TEST_F(RasterPaging, WithEveryLinePinnedALineStillComesIn)
{
    Raster raster;
    MakeFilled(raster, 4, 6);
    ASSERT_EQ(raster.ReleaseLines(1, 1, 1), 1);
    u8* rows[4];
    u32 count = 1;
    ASSERT_EQ(raster.LockLines(0, rows, &count), 1);
    count = 2;
    ASSERT_EQ(raster.LockLines(2, rows, &count), 1);
    ShortMemory();
    EXPECT_EQ(RowOf(raster, 1), PatternRow(6, 1));
}

TEST_F(RasterPaging, SwappingExchangesFileAndMemory)
{
    Raster raster;
    MakeFilled(raster, 4, 7);
    u8* const resident = AddressOf(raster, 0);
    raster.UnlockAll();
    SetRandom({31});
    ASSERT_EQ(raster.ReleaseLines(2, 1, 1), 1);
    ASSERT_EQ(raster.SwapLines(0, 2), 1);
    EXPECT_EQ(FilesIn(FirstFolder), (Files{{"000031.tmp", Stride}}));
    EXPECT_EQ(AddressOf(raster, 2), resident);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
    EXPECT_EQ(RowOf(raster, 0), PatternRow(7, 2));
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
    EXPECT_EQ(RowOf(raster, 2), PatternRow(7, 0));
}

TEST_F(RasterPaging, RemovingAPagedLineDeletesItsFile)
{
    Raster raster;
    MakeFilled(raster, 5, 7);
    ASSERT_EQ(raster.ReleaseLines(1, 2, 1), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 2u);
    ASSERT_EQ(raster.RemoveLines(1, nullptr), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
    const Rows all = PatternRows(7, 5, Stride);
    EXPECT_EQ(RowsOf(raster), (Rows{all[0], all[2], all[3], all[4]}));
}

TEST_F(RasterPaging, AFileLeftByARemovalWithoutMemoryGoesWithTheNextRemoval)
{
    CountingAllocator allocator;
    {
        Raster raster(&allocator);
        MakeFilled(raster, 5, 3);
        ShortMemory();
        ASSERT_EQ(raster.InsertLines(5, nullptr), 1);
        EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
        PlentyOfMemory();
        allocator.fails = [](int, u32) { return true; };
        EXPECT_EQ(raster.RemoveLines(0, nullptr), -2);
        EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
        allocator.fails = nullptr;
        EXPECT_EQ(raster.RemoveLines(0, nullptr), 1);
        EXPECT_TRUE(FilesIn(FirstFolder).empty());
        EXPECT_EQ(RowOf(raster, 0), PatternRow(3, 1));
    }
    EXPECT_EQ(allocator.outstanding, 0);
}

TEST_F(RasterPaging, ResetAndTheDestructorDeleteAllLineFiles)
{
    {
        Raster raster;
        MakeFilled(raster, 6, 7);
        ASSERT_EQ(raster.ReleaseLines(0, 5, 1), 1);
        EXPECT_EQ(FilesIn(FirstFolder).size(), 5u);
        raster.Reset();
        EXPECT_TRUE(FilesIn(FirstFolder).empty());
        MakeFilled(raster, 6, 7);
        ASSERT_EQ(raster.ReleaseLines(0, 5, 1), 1);
        EXPECT_EQ(FilesIn(FirstFolder).size(), 5u);
    }
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
}

TEST_F(RasterPaging, TakeFromAPagedRasterBringsEveryLineOver)
{
    for (const bool shortMemory : {false, true}) {
        Raster source;
        MakeFilled(source, 8, 4);
        ASSERT_EQ(source.ReleaseLines(0, 7, 1), 1);
        EXPECT_EQ(FilesIn(FirstFolder).size(), 7u);
        if (shortMemory)
            ShortMemory();
        Raster target;
        ASSERT_EQ(target.TakeFrom(&source), 1);
        // Each line was the last when it was released, so all are locked and none was written.
        EXPECT_TRUE(FilesIn(FirstFolder).empty());
        EXPECT_EQ(InfoOf(source).height, 1u);
        target.UnlockAll();
        EXPECT_EQ(RowsOf(target), PatternRows(4, 8, Stride));
        PlentyOfMemory();
    }
}

TEST_F(RasterPaging, TheSourceOfATakenPictureRemovesItsLastLinesFile)
{
    Raster source;
    MakeFilled(source, 1, 4);
    u32 one = 1;
    ASSERT_EQ(source.InsertLines(1, &one), 1);
    ASSERT_EQ(source.ReleaseLines(0, 1, 1), 1);
    ASSERT_EQ(source.SwapLines(0, 1), 1);
    ASSERT_EQ(source.RemoveLines(0, nullptr), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
    source.Reset();
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
}

TEST_F(RasterPaging, TakeFromWithoutFoldersFailsUnderShortMemory)
{
    Raster source;
    MakeFilled(source, 4, 4, nullptr, nullptr);
    ShortMemory();
    Raster target;
    EXPECT_EQ(target.TakeFrom(&source), -1);
    EXPECT_EQ(InfoOf(source).height, 4u);
}

TEST_F(RasterPaging, LoadRawPagesAndRefusesARasterWithNoLineInMemory)
{
    std::vector<u8> block;
    for (const auto& row : PatternRows(6, 5, Stride))
        block.insert(block.end(), row.begin(), row.end());
    Raster raster;
    MakeFilled(raster, 5, 1);
    ShortMemory();
    ASSERT_EQ(raster.LoadRaw(block.data()), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 4u);
    EXPECT_EQ(RowsOf(raster), PatternRows(6, 5, Stride));
    Raster paged;
    ASSERT_EQ(paged.Create(5, 5, 24, FirstFolder, nullptr), 1);
    EXPECT_EQ(paged.LoadRaw(block.data()), -3);
}

TEST_F(RasterPaging, FilesAreNamedBySixDigits)
{
    ShortMemory();
    Raster raster;
    ASSERT_EQ(raster.Create(5, 50, 24, FirstFolder, nullptr), 1);
    const std::regex pattern("[0-9]{6}\\.tmp");
    EXPECT_EQ(FilesIn(FirstFolder).size(), 50u);
    for (const auto& file : FilesIn(FirstFolder))
        EXPECT_TRUE(std::regex_match(file.first, pattern)) << file.first;
}
