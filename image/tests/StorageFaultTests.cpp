// What is left when memory, folders or files fail under a raster: the state is exactly the told
// one, nothing is repaired, and Reset gives everything back.

#include "image/tests/StorageTwin.h"
#include "platform/testing/Faults.h"

namespace
{

using namespace tavrix::testing;
using tavrix::platform::FileOperation;
using Files = std::map<std::string, size_t>;

constexpr u32 Stride = PagedStride;
const std::vector<u8> Blank(PagedStride);

using StorageFaults = PagingTest;

/// Lets operations on files of a folder fail.
void Fail(FileOperation failing, std::u16string folder, DWORD shortBy = 0)
{
    SetFileFault([=](FileOperation operation, const WCHAR* path, DWORD* missing) {
        *missing = shortBy;
        return operation == failing && std::u16string(path).substr(0, folder.size()) == folder;
    });
}

void Fail(FileOperation failing, DWORD shortBy = 0)
{
    Fail(failing, u"\\", shortBy);
}

i32 StatusOf(Raster& raster, i32 line)
{
    u8* row = nullptr;
    return raster.LockLines(line, &row, nullptr);
}

bool IsOneOf(i32 result, std::initializer_list<i32> results)
{
    return std::find(results.begin(), results.end(), result) != results.end();
}

/// Everything a raster does, once. Whatever fails, each result is a told one.
void LiveThrough(bool shortMemory)
{
    shortMemory ? ShortMemory() : PlentyOfMemory();
    Raster raster;
    EXPECT_TRUE(IsOneOf(raster.Create(5, 6, 24, FirstFolder, SecondFolder), {1, -2, -101}));
    u8* rows[8] = {};
    u32 count = 3;
    EXPECT_TRUE(IsOneOf(raster.LockLines(1, rows, &count), {1, 0, -1, -2, -3, -101}));
    for (u32 i = 0; i < count && i < 3 && rows[i] != nullptr; ++i)
        std::memset(rows[i], 7, Stride);
    EXPECT_TRUE(IsOneOf(raster.ReleaseLines(1, 3, 1), {1, 0, -1, -3}));
    count = 2;
    EXPECT_TRUE(IsOneOf(raster.InsertLines(2, &count), {1, -1, -2, -3, -101}));
    EXPECT_TRUE(IsOneOf(raster.SwapLines(0, 3), {1, -1, -3}));
    EXPECT_TRUE(IsOneOf(raster.RemoveLines(1, nullptr), {1, -1, -2, -3}));
    const std::vector<u8> block(Stride * 16, 9);
    EXPECT_TRUE(IsOneOf(raster.LoadRaw(block.data()), {1, 0, -2, -3, -101}));
    EXPECT_TRUE(IsOneOf(raster.FlipVertical(), {1, -1, -3}));
    Raster other;
    EXPECT_TRUE(IsOneOf(other.TakeFrom(&raster), {1, 0, -1, -2, -101}));
    EXPECT_TRUE(IsOneOf(other.UnlockAll(), {1, -3}));
    other.ReleaseLines(0, 3, 1);
}

void ExpectNoFiles(bool)
{
    PlentyOfMemory();
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
    EXPECT_TRUE(FilesIn(SecondFolder).empty());
}

} // namespace

TEST_F(StorageFaults, WhicheverAllocationFailsNoFileAndNoBlockStays)
{
    for (const bool shortMemory : {false, true})
        ForEveryFault(
            FaultKind::Allocation, [shortMemory] { LiveThrough(shortMemory); }, ExpectNoFiles);
}

TEST_F(StorageFaults, WhicheverFileOperationFailsNoFileAndNoBlockStays)
{
    for (const FaultKind kind : {FaultKind::Create, FaultKind::Read, FaultKind::ShortRead,
                                 FaultKind::Write, FaultKind::ShortWrite})
        ForEveryFault(
            kind, [] { LiveThrough(true); }, ExpectNoFiles);
}

// A probe that cannot open a file takes the name for free; the file is then not made anew.
TEST_F(StorageFaults, ATakenNameThatTheProbeDoesNotSeeIsNotOverwritten)
{
    Raster taken;
    MakeFilled(taken, 2, 1);
    SetRandom({7});
    ASSERT_EQ(taken.ReleaseLines(0, 1, 1), 1);
    Raster raster;
    MakeFilled(raster, 3, 2);
    Fail(FileOperation::Open);
    SetRandom({7, 7});
    ASSERT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    SetFileFault(nullptr);
    EXPECT_EQ(ReadHostFile(HostFile(FirstFolder, "000007.tmp")), PatternRow(1, 0));
    EXPECT_EQ(ReadHostFile(HostFile(SecondFolder, "000007.tmp")), PatternRow(2, 0));
    EXPECT_EQ(RowsOf(raster), PatternRows(2, 3, Stride));
    EXPECT_EQ(RowsOf(taken), PatternRows(1, 2, Stride));
}

TEST_F(StorageFaults, OnADiskWithRoomForHalfALineTheCutFileIsDeleted)
{
    for (const WCHAR* second : {static_cast<const WCHAR*>(nullptr), SecondFolder}) {
        Raster raster;
        MakeFilled(raster, 4, 3, FirstFolder, second);
        u8* const lowest = AddressOf(raster, 3);
        raster.UnlockAll();
        SetDiskSpace(Stride / 2);
        SetRandom({1, 2});
        EXPECT_EQ(raster.ReleaseLines(1, 1, 1), 0);
        EXPECT_TRUE(FilesIn(FirstFolder).empty());
        EXPECT_TRUE(FilesIn(SecondFolder).empty());
        EXPECT_EQ(AddressOf(raster, 1), lowest);
        SetDiskSpace(1u << 30);
    }
}

// Nothing is rolled back: the physical line stays, belongs to nobody, and goes with Reset.
TEST_F(StorageFaults, ALineLostToAFullDiskStaysInMemoryUntilReset)
{
    StorageDevice device(1);
    StorageTwin twin(&device);
    ASSERT_EQ(twin.raster.Create(200, 4, 8, FirstFolder, nullptr), 1);
    FillPattern(twin.raster, 3);
    u8* const own = AddressOf(twin.raster, 1);
    u8* const lowest = AddressOf(twin.raster, 3);
    const std::vector<u8> bytes(own, own + 200);
    twin.raster.UnlockAll();
    ASSERT_EQ(twin.allocator.CountOf(200), 4u);
    Fail(FileOperation::Write);
    EXPECT_EQ(twin.raster.ReleaseLines(1, 1, 1), 0);
    SetFileFault(nullptr);
    EXPECT_EQ(twin.allocator.CountOf(200), 4u);
    EXPECT_EQ(std::vector<u8>(own, own + 200), bytes);
    EXPECT_EQ(AddressOf(twin.raster, 1), lowest);
    // What is written through one of the two is read through the other.
    *lowest = 99;
    EXPECT_EQ(*AddressOf(twin.raster, 3), 99);
    twin.raster.Reset();
    EXPECT_EQ(twin.allocator.CountOf(200), 0u);
}

TEST_F(StorageFaults, ALostLineAndItsNeighboursAfterALaterRelease)
{
    Raster raster;
    MakeFilled(raster, 5, 3, FirstFolder, nullptr); // physical: 4, 3, 2, 1, 0
    Fail(FileOperation::Write);
    EXPECT_EQ(raster.ReleaseLines(1, 1, 1), 0);
    SetFileFault(nullptr);
    // Line 1 refers to physical 0, the home of line 4, and is written out from there; line 4 is
    // left with what has closed up to physical 0.
    SetRandom({50});
    EXPECT_EQ(raster.ReleaseLines(1, 1, 1), 1);
    EXPECT_EQ(ReadHostFile(HostFile(FirstFolder, "000050.tmp")), PatternRow(3, 4));
    EXPECT_EQ(RowOf(raster, 4), PatternRow(3, 3));
    EXPECT_EQ(RowOf(raster, 3), PatternRow(3, 3));
    EXPECT_EQ(RowOf(raster, 2), PatternRow(3, 2));
    EXPECT_EQ(RowOf(raster, 0), PatternRow(3, 0));
    EXPECT_EQ(RowOf(raster, 1), PatternRow(3, 4));
}

TEST_F(StorageFaults, RedrawsThatRunOutInTheSecondFolderAreNoStorage)
{
    StorageDevice device(1);
    device.PutFile(SecondFolder, "000007.tmp", {1});
    ShortMemory();
    SetRandom(std::vector<LONG>(102, 7));
    Raster raster;
    EXPECT_EQ(raster.Create(5, 2, 24, MissingFolder, SecondFolder), -101);
    EXPECT_EQ(InfoOf(raster).height, 2u);
    EXPECT_EQ(FilesIn(SecondFolder), (Files{{"000007.tmp", 1}}));
    raster.Reset();
    device.RemoveFiles();
}

TEST_F(StorageFaults, AVictimThatCannotBeWrittenKeepsTheOtherLineInItsFile)
{
    Raster raster;
    MakeFilled(raster, 4, 3);
    ASSERT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    ShortMemory();
    Fail(FileOperation::Write, 1);
    EXPECT_EQ(StatusOf(raster, 0), -101);
    SetFileFault(nullptr);
    PlentyOfMemory();
    EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
    EXPECT_EQ(RowOf(raster, 0), PatternRow(3, 0));
}

TEST_F(StorageFaults, ALineFileThatCannotBeOpenedReadsBlankAndIsDeleted)
{
    Raster raster;
    MakeFilled(raster, 3, 3);
    ASSERT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    Fail(FileOperation::Open);
    EXPECT_EQ(RowOf(raster, 0), Blank);
    SetFileFault(nullptr);
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
    EXPECT_EQ(RowOf(raster, 1), PatternRow(3, 1));
}

TEST_F(StorageFaults, AReadThatEndsEarlyLeavesZerosBehindWhatCame)
{
    Raster raster;
    MakeFilled(raster, 3, 3);
    ASSERT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    Fail(FileOperation::Read, 6);
    std::vector<u8> meant = PatternRow(3, 0);
    std::fill(meant.end() - 6, meant.end(), u8{0});
    EXPECT_EQ(RowOf(raster, 0), meant);
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
}

TEST_F(StorageFaults, OfALineFileThatHasGrownOnlyTheLineIsRead)
{
    StorageDevice device(1);
    Raster raster;
    MakeFilled(raster, 3, 3);
    SetRandom({5});
    ASSERT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    std::vector<u8> bytes(500, 0xFF);
    std::fill_n(bytes.begin(), Stride, u8{0x5A});
    device.PutFile(FirstFolder, "000005.tmp", bytes);
    EXPECT_EQ(RowOf(raster, 0), std::vector<u8>(Stride, 0x5A));
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
}

TEST_F(StorageFaults, AFolderThatTakesNoFilesSendsEachLineToTheOther)
{
    Raster raster;
    MakeFilled(raster, 5, 3);
    Fail(FileOperation::Create, FirstFolder);
    EXPECT_EQ(raster.ReleaseLines(0, 4, 1), 1);
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
    EXPECT_EQ(FilesIn(SecondFolder).size(), 4u);
    EXPECT_EQ(RowsOf(raster), PatternRows(3, 5, Stride));
}

TEST_F(StorageFaults, AFolderThatTakesNoFilesWithoutASecondLosesTheLine)
{
    Raster raster;
    MakeFilled(raster, 5, 3, FirstFolder, nullptr);
    u8* const lowest = AddressOf(raster, 4);
    raster.UnlockAll();
    Fail(FileOperation::Create, FirstFolder);
    EXPECT_EQ(raster.ReleaseLines(0, 4, 1), 0);
    EXPECT_EQ(AddressOf(raster, 0), lowest);
    EXPECT_EQ(RowOf(raster, 1), PatternRow(3, 1));
}

// A new line whose file neither folder takes keeps the name it was to have in the second folder.
TEST_F(StorageFaults, ANewLineWithoutAFileKeepsItsName)
{
    StorageDevice device(1);
    ShortMemory();
    Fail(FileOperation::Create);
    SetRandom({4, 5, 6, 7});
    Raster raster;
    ASSERT_EQ(raster.Create(5, 2, 24, FirstFolder, SecondFolder), 1);
    SetFileFault(nullptr);
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
    EXPECT_TRUE(FilesIn(SecondFolder).empty());
    device.PutFile(SecondFolder, "000005.tmp", std::vector<u8>(Stride, 3));
    EXPECT_EQ(RowOf(raster, 0), std::vector<u8>(Stride, 3));
    EXPECT_EQ(RowOf(raster, 1), Blank);
    EXPECT_EQ(FilesIn(SecondFolder).count("000005.tmp"), 0u);
}

TEST_F(StorageFaults, ALockThatFailsPartWayTellsHowManyLinesAndKeepsThemLocked)
{
    for (u32 failing = 0; failing < 4; ++failing) {
        SCOPED_TRACE(failing);
        StorageDevice device(1);
        StorageTwin twin(&device);
        Raster& raster = twin.raster;
        PlentyOfMemory();
        ASSERT_EQ(raster.Create(200, 6, 8, FirstFolder, nullptr), 1);
        FillPattern(raster, 4);
        ASSERT_EQ(raster.ReleaseLines(0, 4, 1), 1);
        twin.allocator.fails = [failing, made = 0u](u32 size) mutable {
            return size == 200 && made++ == failing;
        };
        u8* rows[5] = {};
        u32 count = 5;
        EXPECT_EQ(raster.LockLines(0, rows, &count), -2);
        twin.allocator.fails = nullptr;
        EXPECT_EQ(count, failing);
        EXPECT_EQ(rows[failing], nullptr);
        // Locked lines are no victims of one that comes in; lines 4 and 5 are.
        ShortMemory();
        EXPECT_EQ(StatusOf(raster, static_cast<i32>(failing)), 1);
        EXPECT_EQ(FilesIn(FirstFolder).size(), 4 - failing - 1 + 2);
        for (u32 i = 0; i < failing; ++i)
            EXPECT_EQ(std::vector<u8>(rows[i], rows[i] + 200), PatternRows(4, 6, 200)[i]);
        PlentyOfMemory();
        EXPECT_EQ(RowsOf(raster), PatternRows(4, 6, 200));
    }
}

TEST_F(StorageFaults, AReleaseThatFailsMidwayHasClearedThatLineAndLeavesTheRestLocked)
{
    Raster raster;
    MakeFilled(raster, 7, 4, FirstFolder, nullptr);
    u8* rows[5] = {};
    u32 count = 5;
    ASSERT_EQ(raster.LockLines(0, rows, &count), 1);
    int written = 0;
    SetFileFault([&written](FileOperation operation, const WCHAR*, DWORD*) {
        return operation == FileOperation::Create && ++written == 3;
    });
    EXPECT_EQ(raster.ReleaseLines(0, 5, 1), 0);
    SetFileFault(nullptr);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 2u);
    // When line 0 comes in under short memory, all lines that are not locked go: the one that
    // failed, and the last two. Lines 3 and 4 stay where they are.
    ShortMemory();
    EXPECT_EQ(StatusOf(raster, 0), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 1u + 3u);
    EXPECT_EQ(std::vector<u8>(rows[3], rows[3] + Stride), PatternRow(4, 3));
    EXPECT_EQ(std::vector<u8>(rows[4], rows[4] + Stride), PatternRow(4, 4));
    EXPECT_EQ(AddressOf(raster, 3), rows[3]);
    EXPECT_EQ(AddressOf(raster, 4), rows[4]);
}

TEST_F(StorageFaults, ACreationThatFailsAtAnyLineReportsTheAskedHeight)
{
    for (u32 made = 0; made < 5; ++made) {
        SCOPED_TRACE(made);
        StorageDevice device(1);
        StorageTwin twin(&device);
        twin.allocator.fails = [made, lines = 0u](u32 size) mutable {
            return size == 200 && lines++ == made;
        };
        EXPECT_EQ(twin.raster.Create(200, 5, 8, FirstFolder, nullptr), -2);
        twin.allocator.fails = nullptr;
        EXPECT_EQ(InfoOf(twin.raster).height, 5u);
        EXPECT_EQ(twin.allocator.CountOf(200), made);
        // Those that were made stand at their places; the others refer to what lies behind them.
        for (u32 y = 0; y < 5; ++y)
            EXPECT_EQ(StatusOf(twin.raster, static_cast<i32>(y)), y < made ? 1 : 0) << y;
        twin.raster.Reset();
        EXPECT_EQ(InfoOf(twin.raster).height, 0u);
        EXPECT_TRUE(twin.allocator.blocks.empty());
    }
}

TEST_F(StorageFaults, ACreationThatFindsNoStorageForALineReportsTheAskedHeightAndResetsCleanly)
{
    for (int taken = 1; taken <= 4; ++taken) {
        SCOPED_TRACE(taken);
        ShortMemory();
        int made = 0;
        SetFileFault([&made, taken](FileOperation operation, const WCHAR*, DWORD*) {
            return operation == FileOperation::Create && ++made == taken;
        });
        Raster raster;
        EXPECT_EQ(raster.Create(5, 4, 24, FirstFolder, nullptr), -101);
        EXPECT_EQ(InfoOf(raster).height, 4u);
        EXPECT_EQ(FilesIn(FirstFolder).size(), static_cast<size_t>(taken) - 1);
        SetFileFault(nullptr);
        raster.Reset();
        EXPECT_TRUE(FilesIn(FirstFolder).empty());
    }
}

TEST_F(StorageFaults, AFolderThatCannotBeCopiedLeavesTheRasterNotCreated)
{
    for (u32 failing = 1; failing <= 2; ++failing) {
        StorageDevice device(1);
        StorageTwin twin(&device);
        twin.allocator.fails = [failing, nth = 0u](u32) mutable { return ++nth == failing; };
        EXPECT_EQ(twin.raster.Create(5, 3, 24, FirstFolder, SecondFolder), -2);
        twin.allocator.fails = nullptr;
        EXPECT_EQ(StatusOf(twin.raster, 0), -3);
        EXPECT_EQ(InfoOf(twin.raster).height, 0u);
    }
}

TEST_F(StorageFaults, TheEndOfARasterDeletesItsFilesInBothFoldersAndNoOthers)
{
    StorageDevice device(1);
    device.PutFile(FirstFolder, "000001.tmp", {1, 2});
    device.PutFile(SecondFolder, "000002.tmp", {3});
    {
        Raster raster;
        MakeFilled(raster, 8, 4);
        ASSERT_EQ(raster.ReleaseLines(0, 3, 1), 1);
        Fail(FileOperation::Create, FirstFolder);
        ASSERT_EQ(raster.ReleaseLines(3, 3, 1), 1);
        SetFileFault(nullptr);
        Fail(FileOperation::Write);
        EXPECT_EQ(raster.ReleaseLines(6, 1, 1), 0);
        SetFileFault(nullptr);
        EXPECT_EQ(FilesIn(FirstFolder).size(), 4u);
        EXPECT_EQ(FilesIn(SecondFolder).size(), 4u);
    }
    EXPECT_EQ(FilesIn(FirstFolder), (Files{{"000001.tmp", 2}}));
    EXPECT_EQ(FilesIn(SecondFolder), (Files{{"000002.tmp", 1}}));
    device.RemoveFiles();
}
