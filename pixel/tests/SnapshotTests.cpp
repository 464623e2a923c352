#include "PlainTurn.h"

#include "platform/testing/Faults.h"

using tavrix::testing::FaultKind;
using tavrix::testing::ForEveryFault;

namespace
{

using Snapshot = PagingTest;

void Check(Twin& source, Twin& target)
{
    SCOPED_TRACE(::testing::Message() << source.plain.width << " x " << source.plain.height << " x "
                                      << source.plain.depth);
    EXPECT_EQ(source.raster.SnapshotTo(&target.raster),
              PlainSnapshotTo(source.plain, &target.plain));
    ExpectSame({&source, &target});
}

std::vector<PaletteEntry> PaletteOf(Raster& raster)
{
    ColorTable* table = nullptr;
    EXPECT_EQ(raster.GetPalette(&table), 1);
    std::vector<PaletteEntry> entries(table->Count());
    if (!entries.empty()) {
        EXPECT_EQ(table->GetEntries(entries.data()), 1);
    }
    return entries;
}

void GivePalette(Raster& raster, u32 count, u32 seed)
{
    ColorTable* table = nullptr;
    ASSERT_EQ(raster.GetPalette(&table), 1);
    ASSERT_EQ(table->Create(count), 1);
    for (u32 i = 0; i < count; ++i)
        ASSERT_EQ(table->Add(seed + i, seed + 2 * i, seed + 3 * i, i), 1);
}

bool SamePalette(const std::vector<PaletteEntry>& a, const std::vector<PaletteEntry>& b)
{
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(PaletteEntry)) == 0);
}

} // namespace

TEST_F(Snapshot, CopiesTheBytesThatBothStridesHaveAtAllDepthsAndWidths)
{
    for (const u32 depth : {8u, 16u, 24u, 32u})
        for (u32 width = 1; width <= 33; ++width) {
            Twin source(width, 1 + width % 5, depth, width);
            Twin target(width, 1 + width % 3, depth, 99);
            Check(source, target);
        }
    Twin wide(1000, 3, 32, 1);
    Twin tall(3, 257, 24, 1);
    Twin target;
    Check(wide, target);
    Check(tall, target);
}

TEST_F(Snapshot, IsTwentyFourBitsWideWhateverTheSourceIs)
{
    for (const u32 depth : {8u, 16u, 24u, 32u}) {
        Twin source(6, 4, depth, 1);
        Twin target;
        EXPECT_EQ(source.raster.SnapshotTo(&target.raster), 1);
        EXPECT_EQ(InfoOf(target.raster).depth, 24u);
        EXPECT_EQ(InfoOf(target.raster).width, 6u);
        EXPECT_EQ(InfoOf(target.raster).height, 4u);
        EXPECT_EQ(InfoOf(target.raster).stride, 20u);
    }
}

TEST_F(Snapshot, HasNoFoldersEvenIfSourceAndTargetHadSome)
{
    Twin source(6, 4, 24, 1, Storage::Paging);
    Twin target(6, 4, 24, 2, Storage::Paging);
    EXPECT_EQ(source.raster.SnapshotTo(&target.raster), 1);
    SwapDirs folders = {};
    EXPECT_EQ(target.raster.GetSwapDirs(&folders), 1);
    EXPECT_EQ(folders.primary, nullptr);
    EXPECT_EQ(folders.secondary, nullptr);
}

TEST_F(Snapshot, RefusesNoTargetAndItself)
{
    Twin source(5, 4, 24, 1);
    EXPECT_EQ(source.raster.SnapshotTo(nullptr), -4);
    EXPECT_EQ(source.raster.SnapshotTo(&source.raster), -4);
    ExpectSame({&source});
}

TEST_F(Snapshot, APictureWithoutPixelsGivesSuchAPicture)
{
    for (const u32 depth : {8u, 24u}) {
        Twin flat(5, 0, depth, 1);
        Twin thin(0, 4, depth, 1);
        Twin target(3, 3, 8, 2);
        Check(flat, target);
        Check(thin, target);
    }
}

TEST_F(Snapshot, DropsWhatTheTargetHeldWithItsFiles)
{
    Twin source(5, 4, 24, 1);
    Twin target(9, 6, 32, 2, Storage::Paging);
    for (u32 line = 0; line < 6; ++line)
        target.PageOut(line);
    Check(source, target);
}

TEST_F(Snapshot, TakesThePaletteInPlaceOfTheTargets)
{
    Twin source(5, 4, 8, 1);
    Twin target(5, 4, 8, 2);
    GivePalette(source.raster, 7, 100);
    GivePalette(target.raster, 3, 50);
    EXPECT_EQ(source.raster.SnapshotTo(&target.raster), 1);
    EXPECT_EQ(PaletteOf(source.raster).size(), 7u);
    EXPECT_TRUE(SamePalette(PaletteOf(target.raster), PaletteOf(source.raster)));
    EXPECT_EQ(InfoOf(target.raster).colorCount, 7u);

    Twin plain(5, 4, 24, 3);
    EXPECT_EQ(plain.raster.SnapshotTo(&target.raster), 1);
    EXPECT_TRUE(PaletteOf(target.raster).empty());
}

TEST_F(Snapshot, EveryLineOfTheSourceIsLockedAfterwards)
{
    for (const u32 depth : {8u, 16u, 24u, 32u}) {
        Twin source(6, 4, depth, 1, Storage::Paging);
        for (u32 line = 0; line < 4; ++line)
            source.PageOut(line);
        Twin target;
        EXPECT_EQ(source.raster.SnapshotTo(&target.raster), 1);
        // Two more lines, one of them out: what is free must go to let it in.
        u32 count = 1;
        EXPECT_EQ(source.raster.InsertLines(4, &count), 1);
        EXPECT_EQ(source.raster.InsertLines(5, &count), 1);
        EXPECT_EQ(source.raster.ReleaseLines(4, 1, 1), 1);
        ASSERT_EQ(FilesIn(FirstFolder).size(), 1u);
        {
            const WithShortMemory memory;
            u8* row = nullptr;
            EXPECT_EQ(source.raster.LockLines(4, &row, nullptr), 1);
        }
        // Line 4 came in for line 5, the one line that was free.
        EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
        source.raster.UnlockAll();
    }
}

TEST_F(Snapshot, UnderShortMemoryNoLineOfTheSourceLeavesOnceItIsIn)
{
    for (const bool in : {true, false}) {
        Twin source(9, 5, 32, 1, Storage::Paging); // lines of 36 bytes, and of 28 in the target
        if (!in)
            for (u32 line = 0; line < 5; ++line)
                source.PageOut(line);
        Twin target;
        {
            const WithShortMemoryBeyond memory(28);
            EXPECT_EQ(source.raster.SnapshotTo(&target.raster),
                      PlainSnapshotTo(source.plain, &target.plain));
            EXPECT_TRUE(FilesIn(FirstFolder).empty());
        }
        ExpectSame({&source, &target});
    }
}

TEST_F(Snapshot, OfSomeLinesInFilesTheOthersMakeRoomUntilTheyAreReached)
{
    for (u32 outside = 0; outside < 32; ++outside) {
        Twin source(9, 5, 32, outside, Storage::Paging);
        for (u32 line = 0; line < 5; ++line)
            if ((outside >> line) & 1)
                source.PageOut(line);
        Twin target;
        {
            const WithShortMemoryBeyond memory(28);
            EXPECT_EQ(source.raster.SnapshotTo(&target.raster),
                      PlainSnapshotTo(source.plain, &target.plain));
        }
        ExpectSame({&source, &target});
    }
}

TEST_F(Snapshot, ATargetThatDoesNotFitIsRefusedWithoutALock)
{
    for (const u32 depth : {8u, 16u, 24u, 32u}) {
        Twin source(6, 4, depth, 1, Storage::Paging);
        for (u32 line = 0; line < 4; ++line)
            source.PageOut(line);
        Twin target(6, 4, 24, 2, Storage::Paging);
        target.PageOut(1);
        {
            const WithShortMemory memory;
            EXPECT_EQ(source.raster.SnapshotTo(&target.raster), -1);
            EXPECT_EQ(PlainSnapshotTo(source.plain, &target.plain), -1);
        }
        target.raster.Reset();
        ExpectSame({&source, &target});
    }
}

TEST_F(Snapshot, ALineThatDoesNotLockEndsItWithTheLinesBeforeItCopiedAndLocked)
{
    for (const u32 depth : {8u, 16u, 24u, 32u})
        for (u32 line = 0; line < 5; ++line) {
            Twin source(11, 5, depth, 1, Storage::Paging);
            source.Refuse(line);
            Twin target;
            EXPECT_EQ(source.raster.SnapshotTo(&target.raster), -2);
            EXPECT_EQ(PlainSnapshotTo(source.plain, &target.plain), -2);
            ExpectSame({&source, &target});
        }
}

TEST_F(Snapshot, ALineWhoseDataIsLostIsPassedOverAndStaysBlank)
{
    Twin source(6, 3, 24, 1);
    source.allocator.fails = [](int, u32) { return true; };
    EXPECT_EQ(source.raster.InsertLines(3, nullptr), -2); // line 3 has no record
    source.allocator.fails = nullptr;
    Twin target;
    EXPECT_EQ(source.raster.SnapshotTo(&target.raster), 1);
    Rows expected = source.plain.rows;
    expected.push_back(std::vector<u8>(20));
    EXPECT_EQ(RowsOf(target.raster), expected);
}

TEST_F(Snapshot, ATargetWithoutMemoryIsReportedAndAMissingPaletteIsNot)
{
    Twin source(5, 4, 24, 1, Storage::Paging);
    GivePalette(source.raster, 4, 9);
    int reported = 0;
    int withoutPalette = 0;
    for (int wrong = 1; withoutPalette == 0; ++wrong) {
        ASSERT_LT(wrong, 200);
        // Create on its own tells what a refused block means to it.
        i32 expected = 0;
        {
            Twin alike;
            alike.allocator.asked = 0;
            alike.allocator.fails = [wrong](int number, u32) { return number == wrong; };
            expected = alike.raster.Create(5, 4, 24, nullptr, nullptr);
        }
        source.PageOut(2);
        Twin target;
        target.allocator.asked = 0;
        target.allocator.fails = [wrong](int number, u32) { return number == wrong; };
        EXPECT_EQ(source.raster.SnapshotTo(&target.raster), expected) << wrong;
        target.allocator.fails = nullptr;
        if (expected < 1) {
            EXPECT_EQ(FilesIn(FirstFolder).size(), 1u) << "no line was to be locked";
            ++reported;
        } else {
            EXPECT_EQ(RowsOf(target.raster), source.plain.rows);
            withoutPalette += PaletteOf(target.raster).empty();
        }
        EXPECT_EQ(RowsOf(source.raster), source.plain.rows);
    }
    EXPECT_GT(reported, 4);
}

TEST_F(Snapshot, NoShortageOfMemoryLeaksOrChangesTheSource)
{
    Twin source(5, 4, 24, 1);
    GivePalette(source.raster, 4, 9);
    ForEveryFault(FaultKind::Allocation, [&source] {
        Raster target; // on a heap of its own
        const i32 result = source.raster.SnapshotTo(&target);
        EXPECT_TRUE(result == Done || result == NoMemory) << result;
        if (result == Done) {
            EXPECT_EQ(RowsOf(target), source.plain.rows);
        }
    });
    EXPECT_EQ(RowsOf(source.raster), source.plain.rows);
}
