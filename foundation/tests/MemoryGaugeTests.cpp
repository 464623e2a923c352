#include "foundation/MemoryGauge.h"
#include "platform/testing/Testing.h"

#include <gtest/gtest.h>

#include <windows.h>

using tavrix::testing::Scope;
using tavrix::testing::SetFreeMemory;

namespace
{

constexpr u32 Reserve = 640 * 1024;

struct Free {
    explicit Free(unsigned long long bytes)
    {
        SetFreeMemory(bytes);
        MemoryGauge::Sample();
    }
    Scope scope;
};

} // namespace

TEST(MemoryGauge, HasASampleBeforeMain)
{
    // The host that runs the tests has more than the reserve; a gauge never sampled reads 0.
    EXPECT_EQ(1, MemoryGauge::HasRoomFor(0));
}

TEST(MemoryGauge, ExactlyTheNeedAndTheReserveIsNoRoom)
{
    Free free(1000 + Reserve);
    EXPECT_EQ(-1, MemoryGauge::HasRoomFor(1000));
    EXPECT_EQ(1, MemoryGauge::HasRoomFor(999));
}

TEST(MemoryGauge, KeepsItsReserve)
{
    Free free(Reserve);
    EXPECT_EQ(-1, MemoryGauge::HasRoomFor(0));
    SetFreeMemory(Reserve + 1);
    MemoryGauge::Sample();
    EXPECT_EQ(1, MemoryGauge::HasRoomFor(0));
}

TEST(MemoryGauge, ComparesWithTheLastSampleAndNotWithTheDevice)
{
    Free free(10 * Reserve);
    SetFreeMemory(0);
    EXPECT_EQ(1, MemoryGauge::HasRoomFor(Reserve));
    MemoryGauge::Sample();
    EXPECT_EQ(-1, MemoryGauge::HasRoomFor(Reserve));
}

TEST(MemoryGauge, MoreThan32BitsOfMemoryIsNotTruncated)
{
    Free free(0x100000000ull + 5);
    EXPECT_EQ(1, MemoryGauge::HasRoomFor(0x7FFFFFFF));
}

TEST(MemoryGauge, ANeedNearTheTopOf32BitsDoesNotWrap)
{
    Free free(0xFFFFFFFFull);
    EXPECT_EQ(-1, MemoryGauge::HasRoomFor(0xFFFFFFFF));
    EXPECT_EQ(-1, MemoryGauge::HasRoomFor(0xFFFFFFFF - Reserve));
    EXPECT_EQ(1, MemoryGauge::HasRoomFor(0xFFFFFFFE - Reserve));
}

TEST(MemoryGauge, ATickOfTheMessageLoopTakesANewSample)
{
    Free free(10 * Reserve);
    SetFreeMemory(0);
    // The loop's own test of time, so that a gauge without a timer fails and does not hang.
    const UINT_PTR guard = SetTimer(nullptr, 0, 2000, nullptr);
    MSG message{};
    while (MemoryGauge::HasRoomFor(0) > 0 && GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (message.message == WM_TIMER && message.wParam == guard)
            break;
        DispatchMessageW(&message);
    }
    KillTimer(nullptr, guard);
    EXPECT_EQ(-1, MemoryGauge::HasRoomFor(0));
}

TEST(MemoryGauge, SamplesEveryFiveMilliseconds)
{
    Free free(10 * Reserve);
    constexpr DWORD Expected = 20 * 5;
    DWORD quickest = INFINITE;
    // A busy machine makes a round long, but no machine makes it short.
    for (int round = 0; round < 100 && quickest > Expected * 2; ++round) {
        const DWORD begin = GetTickCount();
        // A tick lies between any two changes that are seen one after the other.
        for (int change = 0; change < 20; ++change) {
            const i32 expected = change % 2 == 0 ? -1 : 1;
            SetFreeMemory(change % 2 == 0 ? 0 : 10 * Reserve);
            MSG message{};
            while (MemoryGauge::HasRoomFor(0) != expected) {
                ASSERT_LT(GetTickCount() - begin, 10000u) << "no tick comes";
                if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
                    DispatchMessageW(&message);
            }
        }
        const DWORD time = GetTickCount() - begin;
        EXPECT_GE(time, Expected * 3 / 4);
        quickest = time < quickest ? time : quickest;
    }
    EXPECT_LE(quickest, Expected * 2);
}
