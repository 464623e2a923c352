// Handles: numbers that are told from stale and made-up ones.

#include "platform/core/HandleTable.h"

#include <atomic>
#include <gtest/gtest.h>
#include <set>
#include <thread>
#include <vector>

using namespace tavrix::platform;

namespace
{

std::atomic<int> living{0};

struct Thing : KernelObject {
    Thing() { ++living; }
    ~Thing() override { --living; }
};
struct OtherThing : KernelObject {
};

} // namespace

TEST(FileHandles, HandleFindsItsObjectUntilItIsClosed)
{
    const auto thing = std::make_shared<Thing>();
    const HANDLE handle = AddHandle(thing);
    ASSERT_NE(nullptr, handle);
    EXPECT_EQ(thing, FindObject(handle));
    EXPECT_EQ(thing, FindObjectAs<Thing>(handle));
    EXPECT_EQ(nullptr, FindObjectAs<OtherThing>(handle));
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_EQ(nullptr, FindObject(handle));
    EXPECT_FALSE(CloseHandle(handle));
    EXPECT_EQ(ERROR_INVALID_HANDLE, GetLastError());
}

TEST(FileHandles, ObjectLivesUntilItsLastHandleAndLastUserAreGone)
{
    const int before = living;
    auto thing = std::make_shared<Thing>();
    const HANDLE first = AddHandle(thing);
    const HANDLE second = AddHandle(thing);
    EXPECT_NE(first, second);
    thing.reset();
    CloseHandle(first);
    EXPECT_EQ(before + 1, living);
    std::shared_ptr<KernelObject> user = FindObject(second);
    CloseHandle(second);
    EXPECT_EQ(before + 1, living);
    user.reset();
    EXPECT_EQ(before, living);
}

TEST(FileHandles, MadeUpHandlesFindNothing)
{
    const HANDLE handle = AddHandle(std::make_shared<Thing>());
    const auto number = reinterpret_cast<uintptr_t>(handle);
    for (const uintptr_t other :
         {uintptr_t{0}, ~uintptr_t{0}, number + 1, number + 2, number ^ (uintptr_t{1} << 18),
          number | uintptr_t{1} << 31, uintptr_t{4} * 60000})
        EXPECT_EQ(nullptr, FindObject(reinterpret_cast<HANDLE>(other))) << other;
    EXPECT_EQ(nullptr, AddHandle(nullptr));
    CloseHandle(handle);
}

TEST(FileHandles, StaleHandleIsNotTakenForALaterOne)
{
    const HANDLE stale = AddHandle(std::make_shared<Thing>());
    CloseHandle(stale);
    std::set<HANDLE> seen{stale};
    for (int i = 0; i < 100000; ++i) {
        const HANDLE handle = AddHandle(std::make_shared<Thing>());
        EXPECT_TRUE(seen.insert(handle).second) << i;
        CloseHandle(handle);
    }
    EXPECT_EQ(nullptr, FindObject(stale));
}

TEST(FileHandles, HandlesFitInto31Bits)
{
    std::vector<HANDLE> handles;
    for (int i = 0; i < 20000; ++i)
        handles.push_back(AddHandle(std::make_shared<Thing>()));
    for (const HANDLE handle : handles) {
        EXPECT_GT(reinterpret_cast<intptr_t>(handle), 0);
        EXPECT_LE(reinterpret_cast<intptr_t>(handle), 0x7FFFFFFF);
        EXPECT_TRUE(CloseHandle(handle));
    }
}

TEST(FileHandles, ObjectThatCannotBeWaitedForSaysSo)
{
    Thing thing;
    EXPECT_EQ(WAIT_FAILED, thing.Wait(0));
    EXPECT_EQ(ERROR_INVALID_HANDLE, GetLastError());
}

TEST(FileHandles, OneOfManyThreadsClosesAHandle)
{
    for (int round = 0; round < 200; ++round) {
        const HANDLE handle = AddHandle(std::make_shared<Thing>());
        std::atomic<int> closed{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 3; ++i)
            threads.emplace_back([&] { closed += CloseHandle(handle); });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(1, closed);
    }
}
