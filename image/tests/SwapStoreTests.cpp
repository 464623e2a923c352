// The page store: pages made, locked, fetched and freed.

#include "image/tests/StoredPages.h"

using namespace tavrix::testing;
using tavrix::platform::FileOperation;

TEST_F(SwapStoreOperations, ANewPageIsInMemoryZeroedAndLockedByNobody)
{
    PageHandle page = nullptr;
    ASSERT_EQ(store.Allocate(&page, 40), 1);
    ASSERT_NE(page, nullptr);
    ASSERT_NE(*page, nullptr);
    EXPECT_EQ(store.Unlock(page), 0);
    ExpectHolds(page, std::vector<u8>(40));
    EXPECT_TRUE(SwapFiles().empty());
    EXPECT_EQ(store.Free(page), 1);
}

TEST_F(SwapStoreOperations, UnlockingAPageThatIsNotLockedChangesNothing)
{
    const PageHandle page = Make(40, 1);
    EXPECT_EQ(store.Unlock(page), 0);
    EXPECT_EQ(store.Unlock(page), 0);
    void* block = nullptr;
    ASSERT_EQ(store.Lock(page, &block), 1);
    EXPECT_EQ(SendOut(), -1);
    EXPECT_FALSE(IsOut(page)) << "one lock holds it, whatever was unlocked before";
    EXPECT_EQ(store.Unlock(page), 1);
    EXPECT_EQ(store.Unlock(page), 0);
}

TEST_F(SwapStoreOperations, APageLockedTwiceNeedsTwoUnlocks)
{
    const PageHandle page = Make(40, 1);
    void* first = nullptr;
    void* second = nullptr;
    ASSERT_EQ(store.Lock(page, &first), 1);
    ASSERT_EQ(store.Lock(page, &second), 1);
    EXPECT_EQ(first, second);
    EXPECT_EQ(store.Unlock(page), 1);
    (void)SendOut();
    EXPECT_FALSE(IsOut(page));
    EXPECT_EQ(store.Unlock(page), 1);
    (void)SendOut();
    EXPECT_TRUE(IsOut(page));
}

TEST_F(SwapStoreOperations, ALockedPageIsLockedAgainWhileMemoryIsShort)
{
    const PageHandle page = Make(40, 1);
    void* block = nullptr;
    ASSERT_EQ(store.Lock(page, &block), 1);
    SetFreeMemory(0);
    EXPECT_EQ(store.Lock(page, &block), 1);
    EXPECT_EQ(block, *page);
    EXPECT_EQ(store.Unlock(page), 1);
    EXPECT_EQ(store.Unlock(page), 1);
}

TEST_F(SwapStoreOperations, NullAndUnknownHandlesFail)
{
    const PageHandle page = Make(40, 1);
    void* somewhere = nullptr;
    void* out = nullptr;
    EXPECT_EQ(store.Allocate(nullptr, 4), -1);
    EXPECT_EQ(store.Free(nullptr), -1);
    EXPECT_EQ(store.Free(&somewhere), -1);
    EXPECT_EQ(store.Lock(nullptr, &out), -1);
    EXPECT_EQ(store.Lock(&somewhere, &out), -1);
    EXPECT_EQ(store.Lock(page, nullptr), -1);
    EXPECT_EQ(store.Unlock(nullptr), -1);
    EXPECT_EQ(store.Unlock(&somewhere), -1);
    EXPECT_EQ(store.Unlock(page), 0) << "the refused lock did not count";
    // A page of another store is unknown as well.
    SwapStore other(FirstFolder, Reserve);
    EXPECT_EQ(other.Lock(page, &out), -1);
    EXPECT_EQ(other.Unlock(page), -1);
    EXPECT_EQ(other.Free(page), -1);
}

TEST_F(SwapStoreOperations, WithAllPagesLockedThereIsNoRoomToMake)
{
    void* block = nullptr;
    for (LONG at = 0; at < 3; ++at)
        ASSERT_EQ(store.Lock(Make(40, at), &block), 1);
    EXPECT_EQ(SendOut(), -1);
    for (const PageHandle page : pages)
        EXPECT_FALSE(IsOut(page));
    SetFreeMemory(Reserve);
    PageHandle page = nullptr;
    EXPECT_EQ(store.Allocate(&page, 0), -1);
}

TEST_F(SwapStoreOperations, WithoutAFolderNothingGoesOutAndShortMemoryRefuses)
{
    SwapStore bare(nullptr, Reserve);
    PageHandle page = nullptr;
    ASSERT_EQ(bare.Allocate(&page, 100), 1);
    void* block = nullptr;
    SetFreeMemory(Reserve + 100);
    EXPECT_EQ(bare.MakeRoom(99), 1);
    EXPECT_EQ(bare.MakeRoom(100), -1);
    EXPECT_EQ(bare.Lock(page, &block), -1) << "though it is in memory";
    PageHandle other = page;
    EXPECT_EQ(bare.Allocate(&other, 100), -1);
    EXPECT_EQ(other, nullptr);
    EXPECT_NE(*page, nullptr);
    SetFreeMemory(Reserve + 101);
    EXPECT_EQ(bare.Lock(page, &block), 1);
    EXPECT_EQ(bare.Free(page), 1) << "locked or not";
}

TEST_F(SwapStoreOperations, AShortReadGoesUnnoticedAndItsRestIsZero)
{
    const PageHandle page = Make(40, 1);
    (void)SendOut();
    SetFileFault([](FileOperation operation, const WCHAR*, DWORD* shortBy) {
        *shortBy = 10;
        return operation == FileOperation::Read;
    });
    std::vector<u8> bytes = PageBytes(40, 1);
    std::fill(bytes.begin() + 30, bytes.end(), u8{0});
    ExpectHolds(page, bytes);
    EXPECT_TRUE(SwapFiles().empty());
    SetFileFault(nullptr);
    (void)SendOut();
    SetFileFault([](FileOperation operation, const WCHAR*, DWORD*) {
        return operation == FileOperation::Read;
    });
    ExpectHolds(page, std::vector<u8>(40));
    EXPECT_TRUE(SwapFiles().empty());
}

TEST_F(SwapStoreOperations, APageWhoseFileDoesNotOpenStaysOut)
{
    const PageHandle page = Make(40, 1);
    (void)SendOut();
    void* block = &block;
    SetFileFault([](FileOperation operation, const WCHAR*, DWORD*) {
        return operation == FileOperation::Open;
    });
    EXPECT_EQ(store.Lock(page, &block), -1);
    EXPECT_EQ(block, &block) << "nothing to tell";
    SetFileFault(nullptr);
    EXPECT_TRUE(IsOut(page));
    EXPECT_EQ(store.Unlock(page), 0) << "and is not locked";
    ExpectHolds(page, PageBytes(40, 1));
}

TEST_F(SwapStoreOperations, APageWhoseFileIsGoneFailsAndCanStillBeFreed)
{
    const PageHandle page = Make(40, 1);
    (void)SendOut();
    ClearSwapFiles();
    void* block = nullptr;
    EXPECT_EQ(store.Lock(page, &block), -1);
    EXPECT_TRUE(IsOut(page));
    Forget(page);
    EXPECT_EQ(store.Free(page), 1);
    EXPECT_EQ(store.Lock(page, &block), -1);
}

TEST_F(SwapStoreOperations, LockingWhileMemoryIsShortMaySendOutTheVeryPage)
{
    const PageHandle page = Make(40, 1);
    SetFreeMemory(Reserve + 40);
    void* block = nullptr;
    EXPECT_EQ(store.Lock(page, &block), -1);
    EXPECT_TRUE(IsOut(page));
    EXPECT_EQ(store.Unlock(page), 0);
    SetFreeMemory(Reserve + 41);
    EXPECT_EQ(store.Lock(page, &block), 1);
    EXPECT_EQ(store.Unlock(page), 1);
}

TEST_F(SwapStoreOperations, FetchingAPageSendsOutLargerOnes)
{
    const PageHandle big = Make(400, 1);
    const PageHandle small = Make(40, 2);
    void* block = nullptr;
    ASSERT_EQ(store.Lock(big, &block), 1);
    (void)SendOut();
    ASSERT_TRUE(IsOut(small));
    ASSERT_EQ(store.Unlock(big), 1);
    SetFreeMemory(Reserve + 40);
    SetFileFault([](FileOperation operation, const WCHAR*, DWORD*) {
        if (operation == FileOperation::Write)
            SetFreeMemory(Reserve + 41);
        return false;
    });
    ASSERT_EQ(store.Lock(small, &block), 1);
    EXPECT_TRUE(IsOut(big));
    EXPECT_EQ(SwapFiles(),
              (std::map<std::string, std::vector<u8>>{{"5001.swp", PageBytes(400, 1)}}));
    EXPECT_EQ(store.Unlock(small), 1);
}

TEST_F(SwapStoreOperations, FreeingAPageThatIsOutDeletesItsFile)
{
    const PageHandle page = Make(40, 1);
    (void)Make(40, 2);
    (void)SendOut();
    Forget(page);
    SetFreeMemory(0);
    EXPECT_EQ(store.Free(page), 1) << "takes no room";
    EXPECT_EQ(Names(), (NamesOf{"5002.swp"}));
    EXPECT_EQ(store.Free(page), -1);
}

TEST_F(SwapStoreOperations, APageOfNoBytesGoesOutAndComesBack)
{
    const PageHandle page = Make(0, 1);
    (void)SendOut();
    EXPECT_TRUE(IsOut(page));
    EXPECT_EQ(SwapFiles(), (std::map<std::string, std::vector<u8>>{{"5001.swp", {}}}));
    ExpectHolds(page, {});
    EXPECT_TRUE(SwapFiles().empty());
}

TEST_F(SwapStoreOperations, AStoreThatGoesLeavesTheFilesOfItsPages)
{
    PageHandle page = nullptr;
    {
        SwapStore gone(FirstFolder, Reserve);
        SetRandom({1});
        ASSERT_EQ(gone.Allocate(&page, 40), 1);
        SetFreeMemory(Reserve);
        EXPECT_EQ(gone.MakeRoom(0), -1);
    }
    EXPECT_EQ(Names(), (NamesOf{"5001.swp"}));
    ClearSwapFiles();
    // Its record is nobody's now; the handle points behind the first of its words.
    std::free(reinterpret_cast<u8*>(page) - sizeof(void*));
}
