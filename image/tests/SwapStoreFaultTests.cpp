// The page store and lists over it while memory runs out or files refuse, at every place where they
// can: each page is wholly in memory or wholly in its file afterwards.

#include "image/PagedLineList.h"
#include "image/tests/PlainSwapStore.h"
#include "platform/testing/Faults.h"

#include <optional>

using namespace tavrix::testing;

namespace
{

using SwapStoreFaults = SwapStoreTest;

constexpr u32 Reserve = 1000;
constexpr u64 Plenty = 1u << 24;
constexpr u32 Sizes[] = {300, 40, 90};

bool IsDoneOrFailed(i32 result)
{
    return result == 1 || result == -1;
}

/// Puts the armed fault to rest, so that what is left can be looked at.
void Disarm()
{
    SetAllocationFault(nullptr);
    SetFileFault(nullptr);
}

/// Three pages with patterns in them, or fewer where they cannot be had.
struct Pages {
    explicit Pages(SwapStore& theStore) : store(theStore)
    {
        SetFreeMemory(Plenty);
        for (u32 at = 0; at < 3; ++at) {
            void* mark = nullptr;
            PageHandle handle = &mark;
            const i32 result = store.Allocate(&handle, Sizes[at]);
            EXPECT_TRUE(IsDoneOrFailed(result)) << result;
            EXPECT_EQ(handle != nullptr, result == 1);
            void* block = nullptr;
            if (result != 1)
                continue;
            EXPECT_EQ(store.Lock(handle, &block), 1);
            std::copy_n(PageBytes(Sizes[at], at).begin(), Sizes[at], static_cast<u8*>(block));
            EXPECT_EQ(store.Unlock(handle), 1);
            made[at] = handle;
        }
    }

    /// Locks and unlocks each page while memory lasts for some of them only.
    void Turn()
    {
        for (int round = 0; round < 2; ++round) {
            SetFreeMemory(Reserve);
            EXPECT_TRUE(IsDoneOrFailed(store.MakeRoom(0)));
            SetFreeMemory(round == 0 ? Plenty : Reserve + 100);
            for (const auto& page : made) {
                void* block = nullptr;
                if (!page)
                    continue;
                const i32 result = store.Lock(*page, &block);
                EXPECT_TRUE(IsDoneOrFailed(result)) << result;
                if (result == 1) {
                    EXPECT_EQ(block, **page);
                    EXPECT_EQ(store.Unlock(*page), 1);
                }
            }
        }
    }

    void ExpectWhole()
    {
        SetFreeMemory(Plenty);
        const size_t files = SwapFiles().size();
        size_t out = 0;
        for (u32 at = 0; at < 3; ++at) {
            if (!made[at])
                continue;
            out += **made[at] == nullptr ? 1 : 0;
            void* block = nullptr;
            ASSERT_EQ(store.Unlock(*made[at]), 0) << "left locked";
            ASSERT_EQ(store.Lock(*made[at], &block), 1);
            const std::vector<u8> bytes = PageBytes(Sizes[at], at);
            EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), static_cast<u8*>(block)));
        }
        EXPECT_EQ(files, out) << "a file for each page that is out, and no other";
        EXPECT_TRUE(SwapFiles().empty());
    }

    void Free()
    {
        for (const auto& page : made)
            if (page) {
                EXPECT_EQ(store.Free(*page), 1);
            }
    }

    SwapStore& store;
    std::optional<PageHandle> made[3];
};

void ExpectPagesWhole(FaultKind kind)
{
    ForEveryFault(kind, [] {
        SwapStore store(FirstFolder, Reserve);
        Pages pages(store);
        pages.Turn();
        Disarm();
        pages.ExpectWhole();
        pages.Free();
    });
}

} // namespace

TEST_F(SwapStoreFaults, WhileFilesCannotBeMadePagesStayWhole)
{
    ExpectPagesWhole(FaultKind::Create);
}

TEST_F(SwapStoreFaults, WhileFilesDoNotOpenPagesStayWhole)
{
    ExpectPagesWhole(FaultKind::Open);
}

TEST_F(SwapStoreFaults, WhileNothingCanBeWrittenPagesStayWhole)
{
    ExpectPagesWhole(FaultKind::Write);
}

TEST_F(SwapStoreFaults, WhileWritesComeUpShortPagesStayWhole)
{
    ExpectPagesWhole(FaultKind::ShortWrite);
}

TEST_F(SwapStoreFaults, WhileMemoryRunsOutPagesStayWhole)
{
    ForEveryFault(FaultKind::Allocation, [] {
        std::optional<SwapStore> store;
        store.emplace(FirstFolder, Reserve);
        if (store->MakeRoom(0) == -2) {
            PageHandle handle = nullptr;
            EXPECT_EQ(store->Allocate(&handle, 10), -2);
            return;
        }
        Pages pages(*store);
        pages.Turn();
        Disarm();
        pages.ExpectWhole();
        pages.Free();
    });
}

TEST_F(SwapStoreFaults, FreeingTakesNoMemory)
{
    for (const bool out : {false, true}) {
        SwapStore store(FirstFolder, Reserve);
        Pages pages(store);
        if (out) {
            SetFreeMemory(Reserve);
            EXPECT_EQ(store.MakeRoom(0), -1);
            EXPECT_EQ(SwapFiles().size(), 3u);
        }
        const ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
        pages.Free();
        EXPECT_TRUE(SwapFiles().empty());
    }
}

TEST_F(SwapStoreFaults, WithoutAnAllocatorAnswersNoMemory)
{
    std::optional<ArmedFault> fault(std::in_place, FaultKind::Allocation, 1u, FaultReach::Onward);
    SwapStore store(FirstFolder, Reserve);
    fault.reset();
    SetFreeMemory(Plenty);
    void* somewhere = nullptr;
    void* block = nullptr;
    PageHandle handle = &somewhere;
    EXPECT_EQ(store.MakeRoom(0), -2) << "with all the memory there is";
    EXPECT_EQ(store.Allocate(&handle, 10), -2);
    EXPECT_EQ(handle, nullptr) << "cleared first";
    EXPECT_EQ(store.Free(nullptr), -1) << "null is looked at first";
    EXPECT_EQ(store.Free(&somewhere), -2);
    EXPECT_EQ(store.Lock(&somewhere, &block), -1);
    EXPECT_EQ(store.Unlock(&somewhere), -1);
    SetFreeMemory(0);
    EXPECT_EQ(store.MakeRoom(0), -2);
}

TEST_F(SwapStoreFaults, AListWithoutAStoreAnswersNoMemory)
{
    std::optional<ArmedFault> fault(std::in_place, FaultKind::Allocation, 1u, FaultReach::Onward);
    PagedLineList list;
    fault.reset();
    EXPECT_EQ(list.Create(0, 1, 8), -4);
    EXPECT_EQ(list.Create(4, 1, 8), -2);
    EXPECT_EQ(list.Create(4, 0, 8), -2);
    EXPECT_EQ(list.UnlockAll(), -3) << "not created comes first";
    EXPECT_EQ(list.Destroy(), 0);
}

TEST_F(SwapStoreFaults, AListKeepsItsLinesAndValuesWhereMemoryRunsOut)
{
    for (const bool ownsStore : {false, true}) {
        ForEveryFault(FaultKind::Allocation, [ownsStore] {
            SetFreeMemory(Plenty);
            std::optional<SwapStore> store;
            if (!ownsStore)
                store.emplace(FirstFolder, Reserve);
            PagedLineList list(ownsStore ? nullptr : &*store);
            const i32 created = list.Create(5, 1, 24);
            EXPECT_TRUE(IsDoneOrFailed(created) || created == -2) << created;
            if (created != 1) {
                EXPECT_EQ(list.Destroy(), 0) << "nothing is left";
                return;
            }
            const std::vector<u8> bytes = PageBytes(15, 4);
            const i32 inserted = list.InsertLine(0, bytes.data());
            EXPECT_TRUE(inserted == 1 || inserted < 0) << inserted;
            u32 blank = 3;
            const i32 more = list.InsertBlank(inserted == 1 ? 1 : 0, &blank);
            EXPECT_EQ(more == 1, blank == 3);
            EXPECT_TRUE(more == 1 || more < 0);
            const u32 values[] = {1, 2, 3};
            const i32 set = list.SetValues(values, 3);
            EXPECT_TRUE(set == 1 || set == -2) << set;
            const i32 added = list.AddValue(4);
            EXPECT_TRUE(added == 1 || added == -2) << added;
            const i32 replaced = list.SetValues(values, 2);
            EXPECT_TRUE(replaced == 1 || replaced == -2) << replaced;
            Disarm();
            PagedLineInfo info = {};
            ASSERT_EQ(list.GetInfo(&info), 1);
            EXPECT_EQ(info.lineCount, 1u + (inserted == 1 ? 1u : 0u) + blank);
            const u32 before = (set == 1 ? 3u : 0u) + (added == 1 ? 1u : 0u);
            EXPECT_EQ(info.valueCount, replaced == 1 ? 2u : before);
            for (u32 at = 0; at < info.lineCount; ++at) {
                u8* line = nullptr;
                EXPECT_EQ(list.UnlockLine(static_cast<i32>(at)), 0);
                ASSERT_EQ(list.LockLine(static_cast<i32>(at), &line), 1);
                const bool isFilled = inserted == 1 && at == 0;
                EXPECT_EQ(std::vector<u8>(line, line + 15), isFilled ? bytes : std::vector<u8>(15));
            }
        });
    }
}
