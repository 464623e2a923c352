// Storage and memory that fail while lines go out and come in.

#include "PagingTest.h"

#include "image/Raster.h"

#include <set>
#include <string_view>

using tavrix::platform::FileOperation;
using tavrix::testing::SetFileFault;
using tavrix::testing::SetRandom;

namespace
{

using Files = std::map<std::string, size_t>;
using RasterStorage = PagingTest;

constexpr u32 Stride = PagedStride;

/// Lets every write of a folder come up short.
void FillDisk(std::set<std::u16string> folders)
{
    SetFileFault([folders](FileOperation operation, const WCHAR* path, DWORD* shortBy) {
        *shortBy = 1;
        const std::u16string_view text(path);
        for (const auto& folder : folders)
            if (operation == FileOperation::Write && text.substr(0, folder.size()) == folder)
                return true;
        return false;
    });
}

} // namespace

TEST_F(RasterStorage, NamesThatAreTakenAreDrawnAgain)
{
    Raster taken;
    MakeFilled(taken, 2, 1);
    SetRandom({7});
    ASSERT_EQ(taken.ReleaseLines(0, 1, 1), 1);
    ShortMemory();
    std::vector<LONG> numbers(100, 7);
    numbers.push_back(8);
    SetRandom(numbers);
    Raster raster;
    ASSERT_EQ(raster.Create(5, 1, 24, FirstFolder, SecondFolder), 1);
    EXPECT_EQ(FilesIn(FirstFolder), (Files{{"000007.tmp", Stride}, {"000008.tmp", 0}}));
}

TEST_F(RasterStorage, AfterAHundredRedrawsTheNameSpaceCountsAsExhausted)
{
    Raster taken;
    MakeFilled(taken, 2, 1);
    SetRandom({7});
    ASSERT_EQ(taken.ReleaseLines(0, 1, 1), 1);

    ShortMemory();
    std::vector<LONG> numbers(101, 7);
    numbers.push_back(9);
    SetRandom(numbers);
    Raster raster;
    EXPECT_EQ(raster.Create(5, 3, 24, FirstFolder, SecondFolder), -101);
    EXPECT_EQ(InfoOf(raster).height, 3u);
    EXPECT_TRUE(FilesIn(SecondFolder).empty());
    // Exactly the first number and 100 redraws were used up.
    ASSERT_EQ(raster.Create(5, 1, 24, FirstFolder, SecondFolder), 1);
    EXPECT_EQ(FilesIn(FirstFolder), (Files{{"000007.tmp", Stride}, {"000009.tmp", 0}}));
}

TEST_F(RasterStorage, ALineThatFoundNoNameLeavesNoBlockBehind)
{
    for (const bool whileCreating : {false, true}) {
        Raster taken;
        MakeFilled(taken, 2, 1);
        SetRandom({7});
        ASSERT_EQ(taken.ReleaseLines(0, 1, 1), 1);
        CountingAllocator allocator;
        {
            Raster raster(&allocator);
            if (whileCreating)
                ShortMemory();
            else
                MakeFilled(raster, 4, 3);
            SetRandom(std::vector<LONG>(101, 7));
            if (whileCreating)
                EXPECT_EQ(raster.Create(5, 3, 24, FirstFolder, SecondFolder), -101);
            else
                EXPECT_EQ(raster.ReleaseLines(1, 1, 1), 0);
            u8* row = nullptr;
            EXPECT_EQ(raster.LockLines(whileCreating ? 0 : 1, &row, nullptr), 0);
            EXPECT_EQ(raster.UnlockAll(), 1);
        }
        EXPECT_EQ(allocator.outstanding, 0);
    }
}

TEST_F(RasterStorage, RedrawsThatRunOutOnReleaseLoseTheLineAndNoOther)
{
    Raster raster;
    MakeFilled(raster, 4, 3);
    SetRandom({7});
    ASSERT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    SetRandom(std::vector<LONG>(101, 7));
    EXPECT_EQ(raster.ReleaseLines(1, 1, 1), 0);
    // The reference holds a name now, which is no physical line.
    u8* row = nullptr;
    u32 count = 1;
    EXPECT_EQ(raster.LockLines(1, &row, &count), 0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(RowOf(raster, 0), PatternRow(3, 0));
    EXPECT_EQ(RowOf(raster, 2), PatternRow(3, 2));
    EXPECT_EQ(RowOf(raster, 3), PatternRow(3, 3));
    // As a victim it has nothing to write.
    ASSERT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    ShortMemory();
    EXPECT_EQ(raster.LockLines(0, &row, nullptr), -101);
}

TEST_F(RasterStorage, ALineThatFoundNoNameStaysLostWhileLinesEnterBeforeAndBehindIt)
{
    Raster raster;
    MakeFilled(raster, 4, 3);
    SetRandom({7});
    ASSERT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    SetRandom(std::vector<LONG>(101, 7));
    EXPECT_EQ(raster.ReleaseLines(1, 1, 1), 0);
    u32 count = 3;
    ASSERT_EQ(raster.InsertLines(4, &count), 1);
    ASSERT_EQ(raster.InsertLines(0, nullptr), 1);
    u8* row = nullptr;
    EXPECT_EQ(raster.LockLines(2, &row, nullptr), 0);
    EXPECT_EQ(row, nullptr);
    EXPECT_EQ(RowOf(raster, 3), PatternRow(3, 2));
    // It has nothing to write either, and what was begun goes.
    EXPECT_EQ(raster.ReleaseLines(2, 1, 1), 0);
    EXPECT_EQ(FilesIn(FirstFolder), (Files{{"000007.tmp", Stride}}));
    EXPECT_TRUE(FilesIn(SecondFolder).empty());
}

TEST_F(RasterStorage, ASourceThatHoldsMorePhysicalLinesThanLinesIsTakenWhole)
{
    Raster source;
    MakeFilled(source, 40, 3);
    SetRandom({7});
    ASSERT_EQ(source.ReleaseLines(0, 1, 1), 1);
    SetRandom(std::vector<LONG>(101, 7));
    ASSERT_EQ(source.ReleaseLines(33, 1, 1), 0);
    // The first of them is lost, so that none of them frees a physical line.
    u32 count = 5;
    ASSERT_EQ(source.RemoveLines(33, &count), 1);
    Raster target;
    EXPECT_EQ(target.TakeFrom(&source), 1);
    Rows left = PatternRows(3, 40, Stride);
    left.erase(left.begin() + 33, left.begin() + 38);
    EXPECT_EQ(RowsOf(target), left);
}

TEST_F(RasterStorage, AMissingFirstFolderFallsThroughToTheSecondForEveryFile)
{
    ShortMemory();
    Raster raster;
    ASSERT_EQ(raster.Create(5, 4, 24, MissingFolder, SecondFolder), 1);
    EXPECT_EQ(FilesIn(SecondFolder).size(), 4u);
    FillPattern(raster, 9);
    EXPECT_EQ(FilesIn(SecondFolder).size(), 3u);
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
    PlentyOfMemory();
    EXPECT_EQ(RowsOf(raster), PatternRows(9, 4, Stride));
    EXPECT_TRUE(FilesIn(SecondFolder).empty());
}

TEST_F(RasterStorage, AMissingFirstFolderWithoutASecondIsNoStorage)
{
    ShortMemory();
    Raster raster;
    EXPECT_EQ(raster.Create(5, 4, 24, MissingFolder, nullptr), -101);
    EXPECT_EQ(InfoOf(raster).height, 4u);
}

TEST_F(RasterStorage, NewLinesForWhichNeitherFolderTakesAFileGoUnnoticedAndReadBlank)
{
    ShortMemory();
    Raster raster;
    ASSERT_EQ(raster.Create(5, 4, 24, MissingFolder, MissingFolder), 1);
    EXPECT_EQ(InfoOf(raster).height, 4u);
    EXPECT_EQ(RowOf(raster, 0), std::vector<u8>(Stride));
    PlentyOfMemory();
    EXPECT_EQ(RowOf(raster, 3), std::vector<u8>(Stride));
}

TEST_F(RasterStorage, AReleaseForWhichNeitherFolderTakesAFileLosesThePhysicalIndex)
{
    Raster raster;
    MakeFilled(raster, 4, 3, MissingFolder, MissingFolder);
    u8* const kept = AddressOf(raster, 0);
    u8* const lowest = AddressOf(raster, 3); // came in last: physical line 0
    raster.UnlockAll();
    EXPECT_EQ(raster.ReleaseLines(0, 1, 1), 0);
    EXPECT_EQ(AddressOf(raster, 0), lowest);
    EXPECT_NE(kept, lowest);
    EXPECT_EQ(AddressOf(raster, 3), lowest);
    // A release of several lines stops at the first that fails.
    raster.UnlockAll();
    EXPECT_EQ(raster.ReleaseLines(1, 2, 1), 0);
    EXPECT_EQ(AddressOf(raster, 1), lowest);
    EXPECT_EQ(RowOf(raster, 2), PatternRow(3, 2));
}

TEST_F(RasterStorage, AFullFirstDiskSendsTheLineToTheSecond)
{
    Raster raster;
    MakeFilled(raster, 4, 3);
    FillDisk({FirstFolder});
    SetRandom({21, 22});
    EXPECT_EQ(raster.ReleaseLines(1, 1, 1), 1);
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
    EXPECT_EQ(FilesIn(SecondFolder), (Files{{"000022.tmp", Stride}}));
    EXPECT_EQ(RowsOf(raster), PatternRows(3, 4, Stride));
    EXPECT_TRUE(FilesIn(SecondFolder).empty());
}

TEST_F(RasterStorage, TwoFullDisksLeaveNoFileAndLoseThePhysicalIndex)
{
    Raster raster;
    MakeFilled(raster, 4, 3);
    u8* const lowest = AddressOf(raster, 3);
    raster.UnlockAll();
    FillDisk({FirstFolder, SecondFolder});
    EXPECT_EQ(raster.ReleaseLines(1, 1, 1), 0);
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
    EXPECT_TRUE(FilesIn(SecondFolder).empty());
    EXPECT_EQ(AddressOf(raster, 1), lowest);
    EXPECT_EQ(RowOf(raster, 0), PatternRow(3, 0));
    EXPECT_EQ(RowOf(raster, 2), PatternRow(3, 2));
}

TEST_F(RasterStorage, AFullDiskWithoutASecondFolderIsNoStorageForTheLineThatComesIn)
{
    Raster raster;
    MakeFilled(raster, 4, 3, FirstFolder, nullptr);
    ASSERT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    FillDisk({FirstFolder});
    ShortMemory();
    u8* rows[2];
    u32 count = 2;
    EXPECT_EQ(raster.LockLines(0, rows, &count), -101);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
}

TEST_F(RasterStorage, APinnedLineOutlivesALostLineThatPointsAtIt)
{
    Raster raster;
    MakeFilled(raster, 4, 3);
    FillDisk({FirstFolder, SecondFolder});
    EXPECT_EQ(raster.ReleaseLines(0, 1, 1), 0);
    SetFileFault(nullptr);
    // Line 0 now refers to the physical line of line 3, which is pinned; paging line 0 out must not
    // take it away under its holder.
    u8* const pinned = AddressOf(raster, 3);
    EXPECT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    EXPECT_EQ(std::vector<u8>(pinned, pinned + Stride), PatternRow(3, 3));
    EXPECT_EQ(AddressOf(raster, 3), pinned);
    EXPECT_EQ(RowOf(raster, 1), PatternRow(3, 1));
    EXPECT_EQ(RowOf(raster, 2), PatternRow(3, 2));
}

TEST_F(RasterStorage, InATallPictureAPinnedLineOutlivesALostLineThatPointsAtIt)
{
    for (const u32 height : {64u, 65u, 66u, 128u, 129u, 200u}) {
        Raster raster;
        MakeFilled(raster, height, 3);
        FillDisk({FirstFolder, SecondFolder});
        EXPECT_EQ(raster.ReleaseLines(0, 1, 1), 0);
        SetFileFault(nullptr);
        u8* const pinned = AddressOf(raster, static_cast<i32>(height) - 1);
        EXPECT_EQ(raster.ReleaseLines(0, 1, 1), 1);
        EXPECT_EQ(std::vector<u8>(pinned, pinned + Stride), PatternRow(3, height - 1)) << height;
        EXPECT_EQ(AddressOf(raster, static_cast<i32>(height) - 1), pinned) << height;
        EXPECT_EQ(RowOf(raster, 1), PatternRow(3, 1)) << height;
    }
}

TEST_F(RasterStorage, ALineFileThatIsShortOrGoneReadsAsZerosFromThereOn)
{
    Raster raster;
    MakeFilled(raster, 4, 3);
    SetRandom({1, 2});
    ASSERT_EQ(raster.ReleaseLines(0, 2, 1), 1);
    std::filesystem::resize_file(HostFile(FirstFolder, "000001.tmp"), 5);
    std::filesystem::remove(HostFile(FirstFolder, "000002.tmp"));
    std::vector<u8> cut = PatternRow(3, 0);
    std::fill(cut.begin() + 5, cut.end(), u8{0});
    EXPECT_EQ(RowOf(raster, 0), cut);
    EXPECT_EQ(RowOf(raster, 1), std::vector<u8>(Stride));
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
}

TEST_F(RasterStorage, AFailedReadLeavesABlankLine)
{
    Raster raster;
    MakeFilled(raster, 3, 3);
    ASSERT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    SetFileFault([](FileOperation operation, const WCHAR*, DWORD*) {
        return operation == FileOperation::Read;
    });
    EXPECT_EQ(RowOf(raster, 0), std::vector<u8>(Stride));
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
}

TEST_F(RasterStorage, NoMemoryForALineThatComesInIsReportedAndItsFileStays)
{
    CountingAllocator memory;
    {
        Raster raster(&memory);
        MakeFilled(raster, 4, 3);
        ASSERT_EQ(raster.ReleaseLines(1, 2, 1), 1);
        u8* rows[2] = {};
        for (int wrong = 1; wrong <= 2; ++wrong) {
            u32 count = 3;
            memory.asked = 0;
            memory.fails = [wrong](int number, u32) { return number == wrong; };
            EXPECT_EQ(raster.LockLines(0, rows, &count), -2);
            EXPECT_EQ(count, 1u);
            EXPECT_EQ(FilesIn(FirstFolder).size(), 2u);
        }
        memory.fails = nullptr;
        EXPECT_EQ(RowsOf(raster), PatternRows(3, 4, Stride));
    }
    EXPECT_EQ(memory.outstanding, 0);
}

TEST_F(RasterStorage, NoMemoryForAFileNameLeavesTheLineResident)
{
    CountingAllocator memory;
    {
        Raster raster(&memory);
        MakeFilled(raster, 4, 3);
        memory.fails = [](int, u32) { return true; };
        EXPECT_EQ(raster.ReleaseLines(1, 1, 1), 0);
        memory.fails = nullptr;
        EXPECT_EQ(RowsOf(raster), PatternRows(3, 4, Stride));
    }
    EXPECT_EQ(memory.outstanding, 0);
}

TEST_F(RasterStorage, ALineWrittenWithoutMemoryForTheSmallerTableMakesRoomAndNoOtherIsLost)
{
    CountingAllocator memory;
    Raster raster(&memory);
    MakeFilled(raster, 4, 3);
    const int outstanding = memory.outstanding;
    u8* const pinned = AddressOf(raster, 3);
    u8* const above = AddressOf(raster, 0);
    memory.asked = 0;
    memory.fails = [](int number, u32) { return number == 2; }; // the name, then the table
    EXPECT_EQ(raster.ReleaseLines(1, 1, 1), 1);
    memory.fails = nullptr;
    EXPECT_EQ(memory.outstanding, outstanding) << "the name for the line";
    EXPECT_EQ(AddressOf(raster, 3), pinned);
    EXPECT_EQ(AddressOf(raster, 0), above) << "which stood last in the table";
    EXPECT_EQ(RowsOf(raster), PatternRows(3, 4, Stride));
    EXPECT_EQ(AddressOf(raster, 3), pinned);
    raster.Reset();
    EXPECT_EQ(memory.outstanding, 0);
}
