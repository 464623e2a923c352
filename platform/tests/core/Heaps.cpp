// Private heaps, the process heap and global blocks.

#include "platform/core/Heaps.h"
#include "platform/core/MemoryStatus.h"
#include "platform/testing/Testing.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <vector>

namespace
{

using tavrix::platform::EndOfHostMemory;
using tavrix::platform::HeldBytes;
using tavrix::testing::Scope;
using tavrix::testing::SetAllocationFault;

bool AllZero(const void* block, size_t size)
{
    const auto* bytes = static_cast<const unsigned char*>(block);
    for (size_t at = 0; at < size; ++at)
        if (bytes[at] != 0)
            return false;
    return true;
}

TEST(Heaps, ABlockHasItsSizeAndIsAligned)
{
    const HANDLE heap = HeapCreate(0, 0, 0);
    ASSERT_NE(heap, nullptr);
    for (const SIZE_T size : {0, 1, 15, 16, 17, 12000, 100000}) {
        void* block = HeapAlloc(heap, 0, size);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % (2 * sizeof(void*)), 0u);
        EXPECT_EQ(HeapSize(heap, 0, block), size);
        std::memset(block, 0xAA, size);
        EXPECT_TRUE(HeapFree(heap, 0, block));
    }
    EXPECT_TRUE(HeapDestroy(heap));
}

TEST(Heaps, AZeroedBlockIsZeroThoughItsMemoryWasUsed)
{
    const HANDLE heap = HeapCreate(0, 0, 0);
    for (int turn = 0; turn < 20; ++turn) {
        void* block = HeapAlloc(heap, HEAP_ZERO_MEMORY, 3000);
        EXPECT_TRUE(AllZero(block, 3000));
        std::memset(block, 0xFF, 3000);
        HeapFree(heap, 0, block);
    }
    HeapDestroy(heap);
}

TEST(Heaps, DestroyingAHeapGivesEverythingBack)
{
    const size_t before = HeldBytes();
    const HANDLE heap = HeapCreate(0, 0, 0);
    for (int number = 0; number < 1000; ++number)
        ASSERT_NE(HeapAlloc(heap, 0, 1000), nullptr);
    EXPECT_EQ(HeldBytes(), before + 1000000);
    EXPECT_TRUE(HeapDestroy(heap));
    EXPECT_EQ(HeldBytes(), before);
}

TEST(Heaps, BlocksFreedInAnyOrderLeaveTheOthersAlone)
{
    const HANDLE heap = HeapCreate(0, 0, 0);
    std::vector<unsigned char*> blocks;
    for (unsigned char number = 0; number < 9; ++number) {
        blocks.push_back(static_cast<unsigned char*>(HeapAlloc(heap, 0, 50)));
        std::memset(blocks.back(), number, 50);
    }
    // The newest, the oldest, one in the middle.
    for (const size_t index : {8u, 0u, 4u})
        EXPECT_TRUE(HeapFree(heap, 0, blocks[index]));
    for (const size_t index : {1u, 2u, 3u, 5u, 6u, 7u})
        EXPECT_EQ(blocks[index][49], index);
    EXPECT_TRUE(HeapDestroy(heap));
}

TEST(Heaps, ADestroyedHeapIsGoneAlsoWhenItsPlaceIsUsedAgain)
{
    const HANDLE first = HeapCreate(0, 0, 0);
    EXPECT_TRUE(HeapDestroy(first));
    const HANDLE second = HeapCreate(0, 0, 0);
    EXPECT_NE(first, second);
    EXPECT_EQ(HeapAlloc(first, 0, 10), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(HeapDestroy(first));
    EXPECT_NE(HeapAlloc(second, 0, 10), nullptr);
    EXPECT_TRUE(HeapDestroy(second));
}

TEST(Heaps, FreeingNullOrABlockOfAnotherHeapIsRefused)
{
    const HANDLE heap = HeapCreate(0, 0, 0);
    const HANDLE other = HeapCreate(0, 0, 0);
    void* block = HeapAlloc(other, 0, 100);
    const HGLOBAL global = GlobalAlloc(GPTR, 100);
    EXPECT_FALSE(HeapFree(heap, 0, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(HeapFree(heap, 0, block));
    EXPECT_FALSE(HeapFree(GetProcessHeap(), 0, global));
    EXPECT_EQ(GlobalFree(block), block);
    EXPECT_EQ(HeapSize(heap, 0, block), static_cast<SIZE_T>(-1));
    alignas(16) unsigned char ours[64] = {};
    EXPECT_FALSE(HeapFree(heap, 0, ours + 32));
    EXPECT_FALSE(HeapFree(heap, 0, ours + 33));
    EXPECT_TRUE(HeapFree(other, 0, block));
    EXPECT_EQ(GlobalFree(global), nullptr);
    HeapDestroy(heap);
    HeapDestroy(other);
}

TEST(Heaps, HandlesThatAreNoneAreRefused)
{
    for (const uintptr_t value : {uintptr_t{0}, uintptr_t{1}, uintptr_t{2}, uintptr_t{0x3FFFE},
                                  ~uintptr_t{0}, ~uintptr_t{1}}) {
        const HANDLE heap = reinterpret_cast<HANDLE>(value);
        EXPECT_EQ(HeapAlloc(heap, 0, 1), nullptr) << value;
        EXPECT_FALSE(HeapFree(heap, 0, nullptr)) << value;
        EXPECT_FALSE(HeapDestroy(heap)) << value;
    }
}

TEST(Heaps, TheProcessHeapIsOneAndCannotBeDestroyed)
{
    const HANDLE heap = GetProcessHeap();
    EXPECT_EQ(heap, GetProcessHeap());
    void* block = HeapAlloc(heap, 0, 10);
    EXPECT_FALSE(HeapDestroy(heap));
    EXPECT_EQ(HeapSize(heap, 0, block), 10u);
    EXPECT_TRUE(HeapFree(heap, 0, block));
}

TEST(Heaps, AHeapWithAMaximumGrowsToItAndNoFurther)
{
    const HANDLE heap = HeapCreate(0, 0, 1000);
    void* block = HeapAlloc(heap, 0, 600);
    EXPECT_NE(block, nullptr);
    EXPECT_EQ(HeapAlloc(heap, 0, 401), nullptr);
    EXPECT_NE(HeapAlloc(heap, 0, 400), nullptr);
    HeapFree(heap, 0, block);
    EXPECT_NE(HeapAlloc(heap, 0, 600), nullptr);
    HeapDestroy(heap);
}

TEST(Heaps, AnAbsurdSizeIsRefusedAndLeavesTheFigureAlone)
{
    const size_t before = HeldBytes();
    for (const SIZE_T size : {~SIZE_T{0}, ~SIZE_T{0} - 16, ~SIZE_T{0} / 2}) {
        EXPECT_EQ(HeapAlloc(GetProcessHeap(), 0, size), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(GlobalAlloc(GMEM_FIXED, size), nullptr);
    }
    EXPECT_EQ(HeldBytes(), before);
}

TEST(Heaps, BlocksBeyondWhatTheHostHasAreRefused)
{
    constexpr SIZE_T Part = 1 << 20;
    const auto end = static_cast<SIZE_T>(EndOfHostMemory());
    const HANDLE heap = HeapCreate(0, 0, 0);
    EXPECT_EQ(HeapAlloc(heap, 0, end + 1), nullptr);
    ASSERT_NE(HeapAlloc(heap, 0, Part), nullptr);
    EXPECT_EQ(HeapAlloc(heap, 0, end - Part / 2), nullptr) << "a part is taken already";
    EXPECT_EQ(GlobalAlloc(GMEM_FIXED, end - Part / 2), nullptr);
    EXPECT_NE(HeapAlloc(heap, 0, Part), nullptr);
    EXPECT_TRUE(HeapDestroy(heap));
}

TEST(Heaps, ATestCanLetTheNthAllocationFail)
{
    const Scope scope;
    for (int wanted = 0; wanted < 4; ++wanted) {
        const size_t before = HeldBytes();
        SetAllocationFault([count = 0, wanted](SIZE_T) mutable { return count++ == wanted; });
        void* blocks[3] = {HeapAlloc(GetProcessHeap(), 0, 8), GlobalAlloc(GPTR, 8),
                           HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, 8)};
        for (int number = 0; number < 3; ++number)
            EXPECT_EQ(blocks[number] == nullptr, number == wanted);
        HeapFree(GetProcessHeap(), 0, blocks[0]);
        GlobalFree(blocks[1]);
        HeapFree(GetProcessHeap(), 0, blocks[2]);
        EXPECT_EQ(HeldBytes(), before);
    }
}

TEST(Heaps, OneHeapServesSeveralThreads)
{
    const size_t before = HeldBytes();
    const HANDLE heap = HeapCreate(0, 0, 0);
    std::vector<std::thread> threads;
    for (unsigned char thread = 1; thread <= 4; ++thread)
        threads.emplace_back([heap, thread] {
            std::vector<unsigned char*> kept;
            for (SIZE_T turn = 0; turn < 400; ++turn) {
                auto* block = static_cast<unsigned char*>(HeapAlloc(heap, 0, 1 + turn));
                ASSERT_NE(block, nullptr);
                std::memset(block, thread, 1 + turn);
                if (turn % 3 == 0)
                    EXPECT_TRUE(HeapFree(heap, 0, block));
                else
                    kept.push_back(block);
            }
            for (const unsigned char* block : kept)
                EXPECT_EQ(*block, thread);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(HeapDestroy(heap));
    EXPECT_EQ(HeldBytes(), before);
}

TEST(Heaps, ThousandsOfHeapsCanLiveAtOnce)
{
    std::vector<HANDLE> heaps;
    for (int number = 0; number < 3000; ++number) {
        heaps.push_back(HeapCreate(0, 0, 0));
        ASSERT_NE(heaps.back(), nullptr);
        *static_cast<int*>(HeapAlloc(heaps.back(), 0, sizeof(int))) = number;
    }
    for (const HANDLE heap : heaps)
        EXPECT_TRUE(HeapDestroy(heap));
}

TEST(GlobalBlocks, AFixedBlockIsItsOwnAddressAndNeedsNoLock)
{
    const HGLOBAL block = GlobalAlloc(GPTR, 100);
    ASSERT_NE(block, nullptr);
    EXPECT_TRUE(AllZero(block, 100));
    EXPECT_EQ(GlobalSize(block), 100u);
    EXPECT_EQ(GlobalLock(block), block);
    EXPECT_TRUE(GlobalUnlock(block));
    EXPECT_EQ(GlobalFree(block), nullptr);
}

TEST(GlobalBlocks, TheLastUnlockOfAMovableBlockAnswersFalseWithoutAnError)
{
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 10);
    void* bytes = GlobalLock(block);
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(GlobalLock(block), bytes);
    EXPECT_TRUE(GlobalUnlock(block));
    SetLastError(1);
    EXPECT_FALSE(GlobalUnlock(block));
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    // One too many is an error.
    EXPECT_FALSE(GlobalUnlock(block));
    EXPECT_EQ(GetLastError(), 158u);
    EXPECT_EQ(GlobalFree(block), nullptr);
}

TEST(GlobalBlocks, ALocalBlockIsAGlobalOneAndEachSetOfCallsFreesTheOthers)
{
    const size_t before = HeldBytes();
    const HLOCAL local = LocalAlloc(LMEM_FIXED, 70);
    const HGLOBAL global = GlobalAlloc(GMEM_MOVEABLE, 30);
    ASSERT_NE(local, nullptr);
    ASSERT_NE(global, nullptr);
    EXPECT_EQ(HeldBytes(), before + 100) << "it counts against the device's memory";
    EXPECT_EQ(GlobalSize(local), 70u);
    EXPECT_EQ(LocalSize(global), 30u);
    EXPECT_EQ(GlobalLock(local), local);
    EXPECT_EQ(GlobalFree(local), nullptr);
    EXPECT_EQ(LocalFree(global), nullptr);
    EXPECT_EQ(HeldBytes(), before);
}

TEST(GlobalBlocks, AZeroedLocalBlockIsZeroThoughItsMemoryWasUsed)
{
    for (int turn = 0; turn < 20; ++turn) {
        const HLOCAL block = LocalAlloc(LPTR, 3000);
        EXPECT_TRUE(AllZero(block, 3000));
        std::memset(block, 0xFF, 3000);
        EXPECT_EQ(LocalFree(block), nullptr);
    }
}

TEST(GlobalBlocks, ALocalBlockThatCannotBeMadeIsNull)
{
    const Scope scope;
    EXPECT_EQ(LocalAlloc(LPTR, ~SIZE_T{0}), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    SetAllocationFault([](SIZE_T size) { return size == 8; });
    SetLastError(0);
    EXPECT_EQ(LocalAlloc(LMEM_FIXED, 8), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
}

TEST(GlobalBlocks, NoneButABlockIsFreedOrMeasuredByTheLocalCalls)
{
    EXPECT_EQ(LocalFree(nullptr), nullptr);
    EXPECT_EQ(LocalSize(nullptr), 0u);
    alignas(16) unsigned char ours[64] = {};
    EXPECT_EQ(LocalFree(ours + 32), ours + 32);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(LocalSize(ours + 32), 0u);
}

TEST(GlobalBlocks, NullIsHarmless)
{
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
    EXPECT_EQ(GlobalLock(nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(GlobalUnlock(nullptr));
    EXPECT_EQ(GlobalSize(nullptr), 0u);
}

} // namespace
