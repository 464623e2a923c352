#include "foundation/Allocator.h"
#include "platform/testing/Faults.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace
{

using tavrix::testing::FaultKind;
using tavrix::testing::ForEveryFault;
using tavrix::testing::Scope;
using tavrix::testing::SetAllocationFault;

bool IsAllZero(const void* block, size_t size)
{
    const unsigned char* bytes = static_cast<const unsigned char*>(block);
    for (size_t i = 0; i < size; ++i) {
        if (bytes[i] != 0)
            return false;
    }
    return true;
}

// Dirties a block and gives it back, so that the next one is likely to lie on used memory.
void UseAndFree(Allocator& allocator, u32 size)
{
    void* block = nullptr;
    ASSERT_EQ(1, allocator.Alloc(&block, size));
    for (u32 i = 0; i < size; ++i)
        static_cast<unsigned char*>(block)[i] = 0xA5;
    ASSERT_EQ(1, allocator.Free(block));
}

} // namespace

TEST(MallocAllocator, GivesZeroFilledBlocks)
{
    MallocAllocator allocator;
    UseAndFree(allocator, 100);
    void* block = nullptr;
    ASSERT_EQ(1, allocator.Alloc(&block, 100));
    EXPECT_TRUE(IsAllZero(block, 100));
    EXPECT_EQ(1, allocator.Free(block));
}

TEST(MallocAllocator, RefusesNull)
{
    MallocAllocator allocator;
    EXPECT_EQ(-4, allocator.Alloc(nullptr, 1));
    EXPECT_EQ(-4, allocator.Free(nullptr));
}

TEST(MallocAllocator, GivesABlockOfNoBytes)
{
    MallocAllocator allocator;
    void* block = nullptr;
    ASSERT_EQ(1, allocator.Alloc(&block, 0));
    EXPECT_NE(nullptr, block);
    EXPECT_EQ(1, allocator.Free(block));
}

TEST(MallocAllocator, AnswersNoMemoryWhenTheRunTimeHasNone)
{
    Scope scope;
    MallocAllocator allocator;
    int mark = 0;
    void* block = &mark;
    SetAllocationFault([](SIZE_T) { return true; });
    EXPECT_EQ(-2, allocator.Alloc(&block, 8));
    EXPECT_EQ(-4, allocator.Alloc(nullptr, 8)) << "a null output is told first";
    SetAllocationFault(nullptr);
    EXPECT_EQ(nullptr, block);
    EXPECT_EQ(1, allocator.Alloc(&block, 8));
    EXPECT_EQ(1, allocator.Free(block));
}

TEST(HeapAllocator, GivesZeroFilledBlocks)
{
    HeapAllocator allocator;
    UseAndFree(allocator, 100);
    void* block = nullptr;
    ASSERT_EQ(1, allocator.Alloc(&block, 100));
    EXPECT_TRUE(IsAllZero(block, 100));
    EXPECT_EQ(1, allocator.Free(block));
}

TEST(HeapAllocator, RefusesNull)
{
    HeapAllocator allocator;
    EXPECT_EQ(-4, allocator.Alloc(nullptr, 1));
    EXPECT_EQ(-4, allocator.Free(nullptr));
}

TEST(HeapAllocator, RefusesABlockOfAnotherHeap)
{
    HeapAllocator one;
    HeapAllocator other;
    void* block = nullptr;
    ASSERT_EQ(1, one.Alloc(&block, 8));
    EXPECT_EQ(-1, other.Free(block));
    EXPECT_EQ(1, one.Free(block));
}

TEST(HeapAllocator, ClearsTheOutputWhenMemoryIsShort)
{
    Scope scope;
    HeapAllocator allocator;
    int mark = 0;
    void* block = &mark;
    SetAllocationFault([](SIZE_T) { return true; });
    EXPECT_EQ(-2, allocator.Alloc(&block, 8));
    EXPECT_EQ(nullptr, block);
}

TEST(HeapAllocator, AHeapThatIsGoneMakesItsBlocksFail)
{
    const HANDLE heap = HeapCreate(0, 0, 0);
    HeapAllocator allocator(heap);
    void* block = nullptr;
    ASSERT_EQ(1, allocator.Alloc(&block, 8));
    ASSERT_TRUE(HeapDestroy(heap));
    void* other = &block;
    EXPECT_EQ(-2, allocator.Alloc(&other, 8));
    EXPECT_EQ(nullptr, other);
    EXPECT_EQ(-1, allocator.Free(block));
}

TEST(HeapAllocator, TheProcessHeapIsNotItsOwn)
{
    void* block = nullptr;
    {
        HeapAllocator allocator(GetProcessHeap());
        ASSERT_EQ(1, allocator.Alloc(&block, 24));
    }
    EXPECT_EQ(24u, HeapSize(GetProcessHeap(), 0, block));
    HeapAllocator again(GetProcessHeap());
    EXPECT_EQ(1, again.Free(block));
}

TEST(HeapAllocator, NoShortageLeavesAHeapBehind)
{
    ForEveryFault(FaultKind::Allocation, [] {
        HeapAllocator allocator;
        void* block = nullptr;
        for (int i = 0; i < 3; ++i) {
            const i32 result = allocator.Alloc(&block, 100);
            EXPECT_TRUE(result == 1 || result == -2) << result;
        }
        EXPECT_EQ(1, allocator.SetHeap(GetProcessHeap()));
        if (allocator.Alloc(&block, 100) > 0) {
            EXPECT_EQ(1, allocator.Free(block));
        }
        EXPECT_EQ(1, allocator.SetHeap(nullptr));
        (void)allocator.Alloc(&block, 100);
    });
}

TEST(HeapAllocator, LeavesAGivenHeapStanding)
{
    const HANDLE heap = HeapCreate(0, 0, 0);
    ASSERT_NE(nullptr, heap);
    void* block = nullptr;
    {
        HeapAllocator allocator(heap);
        ASSERT_EQ(1, allocator.Alloc(&block, 24));
    }
    EXPECT_EQ(24u, HeapSize(heap, 0, block));
    EXPECT_TRUE(HeapDestroy(heap));
}

TEST(HeapAllocator, GivesEverythingBackAtItsEnd)
{
    // What is still held shows in what the device has left.
    const auto available = [] {
        MEMORYSTATUS status{};
        status.dwLength = sizeof status;
        GlobalMemoryStatus(&status);
        return static_cast<u64>(status.dwAvailPhys);
    };
    void* block = nullptr;
    u64 before = 0;
    {
        HeapAllocator allocator;
        before = available();
        for (int i = 0; i < 10; ++i)
            ASSERT_EQ(1, allocator.Alloc(&block, 100000));
        if (before < UINT32_MAX) {
            EXPECT_LE(available() + 1000000, before);
        }
    }
    EXPECT_EQ(before, available());
}

TEST(HeapAllocator, SetHeapDropsTheOwnedHeap)
{
    const HANDLE heap = HeapCreate(0, 0, 0);
    ASSERT_NE(nullptr, heap);
    HeapAllocator allocator;
    void* old = nullptr;
    ASSERT_EQ(1, allocator.Alloc(&old, 8));
    EXPECT_EQ(1, allocator.SetHeap(heap));
    void* block = nullptr;
    ASSERT_EQ(1, allocator.Alloc(&block, 40));
    EXPECT_EQ(40u, HeapSize(heap, 0, block));
    // Back to a heap of its own; the given one is not touched.
    EXPECT_EQ(1, allocator.SetHeap(nullptr));
    EXPECT_EQ(40u, HeapSize(heap, 0, block));
    EXPECT_TRUE(HeapDestroy(heap));
}

TEST(HeapAllocator, WithoutAnyHeapAnswersWrongStateAndTriesAgain)
{
    std::vector<HANDLE> heaps;
    HeapAllocator allocator;
    for (HANDLE heap = HeapCreate(0, 0, 0); heap != nullptr; heap = HeapCreate(0, 0, 0)) {
        heaps.push_back(heap);
        ASSERT_LT(heaps.size(), 1u << 20) << "the platform never runs out of heaps";
    }
    const HANDLE mine = heaps.back();
    heaps.pop_back();
    ASSERT_EQ(1, allocator.SetHeap(mine)); // frees one place, which is filled again
    heaps.push_back(HeapCreate(0, 0, 0));
    EXPECT_EQ(-1, allocator.SetHeap(nullptr));
    void* block = &heaps;
    EXPECT_EQ(-3, allocator.Alloc(&block, 8));
    EXPECT_EQ(nullptr, block);
    EXPECT_EQ(-3, allocator.Free(&heaps));

    EXPECT_TRUE(HeapDestroy(heaps.back()));
    heaps.pop_back();
    EXPECT_EQ(1, allocator.Alloc(&block, 8));
    EXPECT_NE(nullptr, block);
    HeapDestroy(mine);
    for (HANDLE heap : heaps)
        HeapDestroy(heap);
}
