// The fixture for tests of the page store by hand: a store with a folder, pages with a pattern in
// them, and a look at which are out.
#pragma once

#include "image/tests/PlainSwapStore.h"

inline constexpr u32 Reserve = 1000;
inline constexpr u64 Plenty = 1u << 24;

class SwapStoreOperations : public SwapStoreTest
{
protected:
    void SetUp() override
    {
        SwapStoreTest::SetUp();
        tavrix::testing::SetFreeMemory(Plenty);
        tavrix::testing::SetTickCount(5000);
    }
    void TearDown() override
    {
        tavrix::testing::SetFileFault(nullptr);
        for (const PageHandle page : pages)
            EXPECT_EQ(store.Free(page), 1);
        SwapStoreTest::TearDown();
    }

    /// A page in memory, named by `number`, with a pattern in it.
    PageHandle Make(u32 size, LONG number)
    {
        tavrix::testing::SetFreeMemory(Plenty);
        tavrix::testing::SetRandom({number});
        PageHandle page = nullptr;
        EXPECT_EQ(store.Allocate(&page, size), 1);
        Fill(page, size, static_cast<u32>(number));
        pages.push_back(page);
        return page;
    }
    void Fill(PageHandle page, u32 size, u32 seed)
    {
        void* block = nullptr;
        ASSERT_EQ(store.Lock(page, &block), 1);
        ASSERT_EQ(block, *page);
        std::copy_n(PageBytes(size, seed).begin(), size, static_cast<u8*>(block));
        ASSERT_EQ(store.Unlock(page), 1);
    }
    /// Sends out all that can go.
    i32 SendOut()
    {
        tavrix::testing::SetFreeMemory(Reserve);
        const i32 result = store.MakeRoom(0);
        tavrix::testing::SetFreeMemory(Plenty);
        return result;
    }
    void ExpectHolds(PageHandle page, const std::vector<u8>& bytes)
    {
        tavrix::testing::SetFreeMemory(Plenty);
        void* block = nullptr;
        ASSERT_EQ(store.Lock(page, &block), 1);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(block, *page);
        EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), static_cast<u8*>(block)));
        EXPECT_EQ(store.Unlock(page), 1);
    }
    void Forget(PageHandle page) { pages.erase(std::find(pages.begin(), pages.end(), page)); }
    static bool IsOut(PageHandle page) { return *page == nullptr; }
    static std::vector<std::string> Names()
    {
        std::vector<std::string> names;
        for (const auto& file : SwapFiles())
            names.push_back(file.first);
        return names;
    }
    static void MakeForeign(const std::string& name)
    {
        std::ofstream(HostFile(FirstFolder, name)) << "foreign";
    }

    SwapStore store{FirstFolder, Reserve};
    std::vector<PageHandle> pages;
};

using NamesOf = std::vector<std::string>;
