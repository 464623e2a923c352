// The page store making room: when pages go out, which, and under what name.

#include "image/tests/StoredPages.h"

#include <handheld.h>

using namespace tavrix::testing;
using tavrix::platform::FileOperation;

using SwapStoreRoom = SwapStoreOperations;

TEST_F(SwapStoreRoom, AFileIsNamedByTickAndRandomNumberAndHoldsThePageAlone)
{
    const PageHandle page = Make(300, 77);
    EXPECT_EQ(SendOut(), -1);
    EXPECT_TRUE(IsOut(page));
    EXPECT_EQ(SwapFiles(),
              (std::map<std::string, std::vector<u8>>{{"5077.swp", PageBytes(300, 77)}}));
    ExpectHolds(page, PageBytes(300, 77));
    EXPECT_TRUE(SwapFiles().empty()) << "read back and deleted";
    EXPECT_FALSE(IsOut(page));
}

TEST_F(SwapStoreRoom, AFilesNumberIsASumOf32BitsInDecimal)
{
    SetTickCount(0xFFFFFFFF);
    (void)Make(9, 8);
    SetTickCount(900000000);
    (void)Make(8, 99999999);
    (void)Make(7, 100000000);
    SetTickCount(0x80000000);
    (void)Make(6, 0x7FFFFFFF);
    (void)SendOut();
    EXPECT_EQ(Names(), (NamesOf{"1000000000.swp", "4294967295.swp", "7.swp", "999999999.swp"}));
}

TEST_F(SwapStoreRoom, MoreThanReserveAndNeedMustBeFree)
{
    const PageHandle page = Make(40, 1);
    SetFreeMemory(Reserve + 501);
    EXPECT_EQ(store.MakeRoom(500), 1);
    EXPECT_FALSE(IsOut(page));
    SetFreeMemory(Reserve + 500);
    EXPECT_EQ(store.MakeRoom(500), -1);
    EXPECT_TRUE(IsOut(page)) << "equality is not enough";
}

TEST_F(SwapStoreRoom, AllocatingAtTheVeryReserveSendsOutFirst)
{
    const PageHandle big = Make(400, 1);
    const PageHandle small = Make(30, 2);
    // The first page written frees one byte, which is what was missing.
    SetFileFault([](FileOperation operation, const WCHAR*, DWORD*) {
        if (operation == FileOperation::Write)
            SetFreeMemory(Reserve + 101);
        return false;
    });
    SetFreeMemory(Reserve + 100);
    SetRandom({3});
    PageHandle page = nullptr;
    EXPECT_EQ(store.Allocate(&page, 100), 1);
    pages.push_back(page);
    EXPECT_TRUE(IsOut(big));
    EXPECT_FALSE(IsOut(small)) << "one was enough";
    EXPECT_FALSE(IsOut(page));
}

TEST_F(SwapStoreRoom, ReserveAndNeedAreSummedBeyond32Bits)
{
    SwapStore greedy(nullptr, 0xFFFFFFFF);
    SetFreeMemory(0xFFFFFFFF);
    EXPECT_EQ(greedy.MakeRoom(0), -1);
    EXPECT_EQ(greedy.MakeRoom(1), -1) << "4294967296, not 0";
    EXPECT_EQ(greedy.MakeRoom(0xFFFFFFFF), -1);
    PageHandle page = nullptr;
    EXPECT_EQ(greedy.Allocate(&page, 2), -1);
    EXPECT_EQ(page, nullptr);
}

TEST_F(SwapStoreRoom, TheLargestGoFirstAndEqualOnesInTheOrderOfTheirMaking)
{
    const u32 sizes[] = {10, 30, 20, 30, 10, 20};
    for (u32 at = 0; at < 6; ++at)
        (void)Make(sizes[at], static_cast<LONG>(at));
    std::vector<std::string> order;
    SetFileFault([&](FileOperation operation, const WCHAR* path, DWORD*) {
        if (operation == FileOperation::Create)
            order.push_back(Utf8(path).substr(Utf8(path).rfind('\\') + 1));
        return false;
    });
    (void)SendOut();
    EXPECT_EQ(order,
              (NamesOf{"5001.swp", "5003.swp", "5002.swp", "5005.swp", "5000.swp", "5004.swp"}));
}

TEST_F(SwapStoreRoom, NobodyLooksAgainBehindTheLastPage)
{
    const PageHandle page = Make(40, 1);
    SetFreeMemory(Reserve);
    SetFileFault([](FileOperation operation, const WCHAR*, DWORD*) {
        if (operation == FileOperation::Write)
            SetFreeMemory(Plenty);
        return false;
    });
    EXPECT_EQ(store.MakeRoom(0), -1) << "there is room now, and the next call will see it";
    EXPECT_TRUE(IsOut(page));
    EXPECT_EQ(store.MakeRoom(0), 1);
}

TEST_F(SwapStoreRoom, AFolderMayOrMayNotEndInABackslash)
{
    SwapStore open(TEXT("\\Temp"), Reserve);
    SwapStore ended(TEXT("\\Temp\\"), Reserve);
    for (SwapStore* each : {&open, &ended}) {
        SetFreeMemory(Plenty);
        SetRandom({9});
        PageHandle page = nullptr;
        ASSERT_EQ(each->Allocate(&page, 5), 1);
        std::vector<std::basic_string<WCHAR>> asked;
        SetFileFault([&](FileOperation, const WCHAR* path, DWORD*) {
            asked.emplace_back(path);
            return false;
        });
        SetFreeMemory(Reserve);
        EXPECT_EQ(each->MakeRoom(0), -1);
        SetFileFault(nullptr);
        EXPECT_EQ(Names(), (NamesOf{"5009.swp"}));
        ASSERT_FALSE(asked.empty());
        for (const auto& path : asked)
            EXPECT_TRUE(path == TEXT("\\Temp\\5009.swp"));
        EXPECT_EQ(each->Free(page), 1);
        EXPECT_TRUE(SwapFiles().empty());
    }
}

TEST_F(SwapStoreRoom, AFolderThatIsNotThereKeepsThePagesInMemory)
{
    SwapStore lost(TEXT("\\No Such Folder\\Deep\\"), Reserve);
    PageHandle page = nullptr;
    ASSERT_EQ(lost.Allocate(&page, 5), 1);
    SetFreeMemory(Reserve);
    EXPECT_EQ(lost.MakeRoom(0), -1);
    EXPECT_NE(*page, nullptr);
    EXPECT_EQ(lost.Free(page), 1);
}

TEST_F(SwapStoreRoom, APageThatTheDiskDoesNotHoldIsPassedOver)
{
    const PageHandle big = Make(400, 1);
    const PageHandle small = Make(30, 2);
    SetDiskSpace(400); // must be above the size
    EXPECT_EQ(SendOut(), -1);
    EXPECT_FALSE(IsOut(big));
    EXPECT_TRUE(IsOut(small));
    SetDiskSpace(401);
    EXPECT_EQ(SendOut(), -1);
    EXPECT_TRUE(IsOut(big));
}

TEST_F(SwapStoreRoom, WhereTheDiskTellsNothingNoFileIsTried)
{
    // Half a character is no name, so the platform does not answer.
    SwapStore nowhere(u"\\Temp\\\xD800", Reserve);
    PageHandle page = nullptr;
    ASSERT_EQ(nowhere.Allocate(&page, 5), 1);
    int asked = 0;
    SetFileFault([&](FileOperation, const WCHAR*, DWORD*) {
        ++asked;
        return false;
    });
    SetFreeMemory(Reserve);
    SetRandom({77});
    EXPECT_EQ(nowhere.MakeRoom(0), -1);
    EXPECT_EQ(::Random(), 77) << "no other name was drawn";
    EXPECT_EQ(asked, 0);
    EXPECT_NE(*page, nullptr);
    EXPECT_EQ(nowhere.Free(page), 1);
}

TEST_F(SwapStoreRoom, FourGigabytesOnTheDiskAreEnoughWhateverTheirLowWord)
{
    const PageHandle page = Make(400, 1);
    SetDiskSpace(1ull << 32);
    EXPECT_EQ(SendOut(), -1);
    EXPECT_TRUE(IsOut(page));
}

TEST_F(SwapStoreRoom, ATakenNameIsLeftAloneAndAnotherDrawn)
{
    const PageHandle page = Make(40, 1);
    MakeForeign("5001.swp");
    MakeForeign("5002.swp");
    SetRandom({2, 3, 4});
    (void)SendOut();
    EXPECT_TRUE(IsOut(page));
    EXPECT_EQ(Names(), (NamesOf{"5001.swp", "5002.swp", "5003.swp"}));
    EXPECT_EQ(SwapFiles()["5003.swp"], PageBytes(40, 1));
    EXPECT_EQ(SwapFiles()["5001.swp"], (std::vector<u8>{'f', 'o', 'r', 'e', 'i', 'g', 'n'}));
    ExpectHolds(page, PageBytes(40, 1));
    EXPECT_EQ(Names(), (NamesOf{"5001.swp", "5002.swp"})) << "its own file alone was deleted";
    // From here on it goes by the new number.
    (void)SendOut();
    EXPECT_EQ(SwapFiles().count("5003.swp"), 1u);
    std::filesystem::remove(HostFile(FirstFolder, "5001.swp"));
    std::filesystem::remove(HostFile(FirstFolder, "5002.swp"));
}

TEST_F(SwapStoreRoom, ARedrawnNumberIsTheTickOfThatMomentAndANewRandomOne)
{
    const PageHandle page = Make(40, 1);
    MakeForeign("5001.swp");
    SetTickCount(7000);
    SetRandom({30});
    (void)SendOut();
    EXPECT_TRUE(IsOut(page));
    EXPECT_EQ(Names(), (NamesOf{"5001.swp", "7030.swp"}));
    ExpectHolds(page, PageBytes(40, 1));
    std::filesystem::remove(HostFile(FirstFolder, "5001.swp"));
}

TEST_F(SwapStoreRoom, TheEleventhNameIsTheLast)
{
    for (const bool isFree : {true, false}) {
        const PageHandle page = Make(40, 1);
        const PageHandle other = Make(30, 500);
        for (int number = 1; number <= (isFree ? 10 : 11); ++number)
            MakeForeign(std::to_string(5000 + number) + ".swp");
        SetRandom({2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13});
        EXPECT_EQ(SendOut(), -1);
        EXPECT_EQ(IsOut(page), isFree);
        EXPECT_EQ(IsOut(other), isFree) << "a page without a name ends the whole walk";
        EXPECT_EQ(SwapFiles().count("5011.swp"), 1u);
        EXPECT_EQ(SwapFiles().count("5012.swp"), 0u);
        for (const PageHandle each : {page, other}) {
            Forget(each);
            EXPECT_EQ(store.Free(each), 1);
        }
        EXPECT_EQ(SwapFiles().size(), isFree ? 10u : 11u);
        ClearSwapFiles();
    }
}

TEST_F(SwapStoreRoom, AFileThatCannotBeMadeIsTriedElevenTimes)
{
    const PageHandle page = Make(40, 1);
    for (const int failures : {10, 11}) {
        int asked = 0;
        SetFileFault([&](FileOperation operation, const WCHAR*, DWORD*) {
            return operation == FileOperation::Create && ++asked <= failures;
        });
        EXPECT_EQ(SendOut(), -1);
        EXPECT_EQ(asked, 11);
        EXPECT_EQ(IsOut(page), failures == 10);
        SetFileFault(nullptr);
        ExpectHolds(page, PageBytes(40, 1));
    }
}

TEST_F(SwapStoreRoom, AFileThatCannotBeOpenedIsDeletedAndTheNextPageTried)
{
    const PageHandle big = Make(40, 1);
    const PageHandle small = Make(30, 2);
    int opened = 0;
    SetFileFault([&](FileOperation operation, const WCHAR*, DWORD*) {
        return operation == FileOperation::Open && ++opened == 1;
    });
    EXPECT_EQ(SendOut(), -1);
    EXPECT_FALSE(IsOut(big));
    EXPECT_TRUE(IsOut(small));
    EXPECT_EQ(Names(), (NamesOf{"5002.swp"}));
}

TEST_F(SwapStoreRoom, AShortWriteDeletesTheFileKeepsTheBlockAndEndsTheWalk)
{
    const PageHandle big = Make(40, 1);
    const PageHandle small = Make(30, 2);
    int written = 0;
    SetFileFault([&](FileOperation operation, const WCHAR*, DWORD* shortBy) {
        *shortBy = 1;
        return operation == FileOperation::Write && ++written == 1;
    });
    EXPECT_EQ(SendOut(), -1);
    EXPECT_EQ(written, 1);
    EXPECT_FALSE(IsOut(big));
    EXPECT_FALSE(IsOut(small));
    EXPECT_TRUE(SwapFiles().empty());
    ExpectHolds(big, PageBytes(40, 1));
    (void)SendOut();
    EXPECT_EQ(Names(), (NamesOf{"5001.swp", "5002.swp"})) << "under their old numbers";
}

TEST_F(SwapStoreRoom, WhatWentOutBeforeAFailureStaysOut)
{
    const PageHandle first = Make(40, 1);
    const PageHandle second = Make(30, 2);
    int written = 0;
    SetFileFault([&](FileOperation operation, const WCHAR*, DWORD* shortBy) {
        *shortBy = 1;
        return operation == FileOperation::Write && ++written == 2;
    });
    EXPECT_EQ(SendOut(), -1);
    EXPECT_TRUE(IsOut(first));
    EXPECT_FALSE(IsOut(second));
}
