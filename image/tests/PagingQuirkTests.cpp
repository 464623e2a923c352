// Paging decisions and leftovers that must stay as they are.

#include "PagingTest.h"

#include "image/PagedLineList.h"

using tavrix::platform::FileOperation;
using tavrix::testing::SetFileFault;
using tavrix::testing::SetFreeMemory;
using tavrix::testing::SetRandom;

namespace
{

using PagingQuirks = PagingTest;
using Files = std::map<std::string, size_t>;

} // namespace

TEST_F(PagingQuirks, ARasterGoesByTheLastSampleOfTheGaugeAndAsksNobodyElse)
{
    Raster raster;
    MakeFilled(raster, 3, 1);
    ASSERT_NE(AddressOf(raster, 0), nullptr);
    SetFreeMemory(0); // nobody has sampled it
    EXPECT_EQ(raster.ReleaseLines(0, 1, 0), 1);
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
    Raster unpaged;
    EXPECT_EQ(unpaged.Create(5, 3, 24, nullptr, nullptr), 1);
    MemoryGauge::Sample();
    SetFreeMemory(1u << 30); // nor this
    EXPECT_EQ(raster.ReleaseLines(0, 1, 0), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
    EXPECT_EQ(unpaged.Create(5, 3, 24, nullptr, nullptr), -1);
}

TEST_F(PagingQuirks, AFolderStandsBeforeTheNumberAsItIs)
{
    Raster raster;
    MakeFilled(raster, 2, 1, TEXT("\\Temp\\ab"), nullptr);
    SetRandom({1000005});
    ASSERT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    EXPECT_EQ(FilesIn(FirstFolder), (Files{{"ab000005.tmp", PagedStride}}));
    EXPECT_EQ(RowOf(raster, 0), PatternRow(1, 0));
}

TEST_F(PagingQuirks, ThePictureOfATemporaryWithoutFoldersNoLongerPages)
{
    Raster document;
    Raster temporary;
    MakeFilled(document, 4, 1);
    MakeFilled(temporary, 4, 2, nullptr, nullptr);
    ASSERT_EQ(document.TakeFrom(&temporary), 1);
    SwapDirs folders = {FirstFolder, SecondFolder};
    ASSERT_EQ(document.GetSwapDirs(&folders), 1);
    EXPECT_EQ(folders.primary, nullptr);
    EXPECT_EQ(folders.secondary, nullptr);
    EXPECT_EQ(document.ReleaseLines(0, 1, 1), 0);
    EXPECT_TRUE(FilesIn(FirstFolder).empty());
    EXPECT_TRUE(FilesIn(SecondFolder).empty());
}

TEST_F(PagingQuirks, ASecondFolderAloneIsNotUsed)
{
    Raster raster;
    MakeFilled(raster, 3, 1, nullptr, SecondFolder);
    EXPECT_EQ(raster.ReleaseLines(0, 1, 1), 0);
    EXPECT_TRUE(FilesIn(SecondFolder).empty());
    EXPECT_EQ(RowsOf(raster), PatternRows(1, 3, PagedStride));
}

TEST_F(PagingQuirks, ARasterCopiesItsFoldersAndAStoreReadsItsOwnersText)
{
    WCHAR folder[32];
    std::memcpy(folder, FirstFolder, sizeof(WCHAR) * (wcslen(FirstFolder) + 1));
    Raster raster;
    MakeFilled(raster, 2, 1, folder, nullptr);
    SwapStore store(folder, 1000);
    PageHandle page = nullptr;
    ASSERT_EQ(store.Allocate(&page, 8), 1);
    std::memcpy(folder, SecondFolder, sizeof(WCHAR) * (wcslen(SecondFolder) + 1));
    ASSERT_EQ(raster.ReleaseLines(0, 1, 1), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
    SetFreeMemory(1000);
    EXPECT_EQ(store.MakeRoom(0), -1);
    EXPECT_EQ(*page, nullptr);
    size_t pages = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(tavrix::testing::HostPath(SecondFolder)))
        pages += entry.path().extension() == ".swp";
    EXPECT_EQ(pages, 1u);
    EXPECT_EQ(store.Free(page), 1);
}

TEST_F(PagingQuirks, SwappedLinesTakeTheirLocksWithThem)
{
    Raster raster;
    MakeFilled(raster, 4, 1);
    SetRandom({1, 2, 3});
    ASSERT_EQ(raster.ReleaseLines(2, 1, 1), 1);
    u8* const pinned = AddressOf(raster, 0);
    ASSERT_EQ(raster.SwapLines(0, 1), 1);
    ShortMemory();
    ASSERT_NE(AddressOf(raster, 2), nullptr);
    // Lines 0 and 3 made room, the one holding what was line 1; line 1 is pinned in its place.
    EXPECT_EQ(FilesIn(FirstFolder).size(), 2u);
    EXPECT_EQ(ReadHostFile(HostFile(FirstFolder, "000002.tmp")), PatternRow(1, 1));
    EXPECT_EQ(ReadHostFile(HostFile(FirstFolder, "000003.tmp")), PatternRow(1, 3));
    EXPECT_EQ(AddressOf(raster, 1), pinned);
    EXPECT_EQ(std::vector<u8>(pinned, pinned + PagedStride), PatternRow(1, 0));
}

TEST_F(PagingQuirks, FlippingEndsAtTheFirstExchangeThatFails)
{
    CountingAllocator memory;
    Raster raster(&memory);
    MakeFilled(raster, 3, 1);
    memory.fails = [](int, u32) { return true; };
    EXPECT_EQ(raster.InsertLines(3, nullptr), -2); // line 3 has no record
    memory.fails = nullptr;
    EXPECT_EQ(raster.FlipVertical(), -1);
    for (i32 y = 0; y < 3; ++y)
        EXPECT_EQ(RowOf(raster, y), PatternRow(1, static_cast<u32>(y)));
}

TEST_F(PagingQuirks, NoFileStaysOpenBetweenCalls)
{
    const size_t handles = tavrix::platform::CountHoldings().kernelHandles;
    SwapStore store(FirstFolder, 1000);
    PagedLineList list(&store);
    SetFreeMemory(1u << 30);
    ASSERT_EQ(list.Create(4, 5, 24), 1);
    SetFreeMemory(1000);
    EXPECT_EQ(store.MakeRoom(0), -1);
    EXPECT_EQ(tavrix::platform::CountHoldings().kernelHandles, handles);
    SetFreeMemory(1u << 30);
    u8* line = nullptr;
    ASSERT_EQ(list.LockLine(3, &line), 1);
    EXPECT_EQ(tavrix::platform::CountHoldings().kernelHandles, handles);

    Raster raster;
    MakeFilled(raster, 20, 1);
    ASSERT_EQ(raster.ReleaseLines(0, 19, 1), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 19u);
    EXPECT_EQ(tavrix::platform::CountHoldings().kernelHandles, handles);
    ASSERT_NE(AddressOf(raster, 7), nullptr);
    EXPECT_EQ(tavrix::platform::CountHoldings().kernelHandles, handles);
}
