#include "platform/testing/Faults.h"

#include "platform/core/TestHooks.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <vector>

using namespace tavrix::testing;
namespace fs = std::filesystem;

namespace
{

struct Eight {
    char bytes[8];
};

/// Every way by which the program takes memory, once; answers which of them gave some.
std::vector<bool> TakeMemoryInEveryWay()
{
    std::vector<bool> got;
    void* plain = std::malloc(8);
    got.push_back(plain != nullptr);
    std::free(plain);
    void* zeroed = std::calloc(2, 4);
    got.push_back(zeroed != nullptr);
    std::free(zeroed);
    auto* object = new (std::nothrow) Eight;
    got.push_back(object != nullptr);
    delete object;
    auto* objects = new (std::nothrow) Eight[2];
    got.push_back(objects != nullptr);
    delete[] objects;
    void* block = HeapAlloc(GetProcessHeap(), 0, 8);
    got.push_back(block != nullptr);
    if (block != nullptr)
        HeapFree(GetProcessHeap(), 0, block);
    HGLOBAL global = GlobalAlloc(GMEM_FIXED, 8);
    got.push_back(global != nullptr);
    if (global != nullptr)
        GlobalFree(global);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), 2, 2, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr, nullptr, 0);
    got.push_back(bitmap != nullptr);
    DeleteObject(bitmap);
    return got;
}

/// The device path of a file of the test's own.
std::u16string NewFile(const std::string& name = "file")
{
    std::u16string path = u"\\Computer" + Wide(FreshFolder() + "/" + name);
    for (char16_t& character : path)
        if (character == u'/')
            character = u'\\';
    return path;
}

HANDLE Open(const std::u16string& path, DWORD disposition)
{
    return CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, disposition,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

/// How many bytes a write of `length` puts; -1 for a call that fails.
int Write(HANDLE file, DWORD length)
{
    const std::string bytes(length, 'x');
    DWORD done = 0;
    const BOOL good = WriteFile(file, bytes.data(), length, &done, nullptr);
    return good ? static_cast<int>(done) : -1;
}

int Read(HANDLE file, DWORD length)
{
    std::string bytes(length, 0);
    DWORD done = 0;
    const BOOL good = ReadFile(file, bytes.data(), length, &done, nullptr);
    return good ? static_cast<int>(done) : -1;
}

DWORD WINAPI DoNothing(LPVOID)
{
    return 0;
}

bool MakeThread()
{
    HANDLE thread = CreateThread(nullptr, 0, DoNothing, nullptr, 0, nullptr);
    if (thread == nullptr)
        return false;
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    return true;
}

/// The messages of the failures that `body` brings about, which are no failures of this test.
std::string FailuresOf(const std::function<void()>& body)
{
    ::testing::TestPartResultArray results;
    {
        const ::testing::ScopedFakeTestPartResultReporter reporter(&results);
        body();
    }
    std::string messages;
    for (int i = 0; i < results.size(); ++i)
        messages += results.GetTestPartResult(i).message() + std::string("\n");
    return messages;
}

bool Tells(const std::string& messages, const std::string& text)
{
    return messages.find(text) != std::string::npos;
}

} // namespace

TEST(Faults, EveryAllocationIsCountedOnce)
{
    Scope scope;
    const ArmedFault fault(FaultKind::Allocation, 1000, FaultReach::Once);
    const auto got = TakeMemoryInEveryWay();
    EXPECT_EQ(got, std::vector<bool>(7, true));
    EXPECT_EQ(fault.Seen(), 7U);
    EXPECT_FALSE(fault.Fired());
}

TEST(Faults, ExactlyTheChosenAllocationFails)
{
    Scope scope;
    for (unsigned number = 1; number <= 7; ++number) {
        const ArmedFault fault(FaultKind::Allocation, number, FaultReach::Once);
        std::vector<bool> expected(7, true);
        expected[number - 1] = false;
        EXPECT_EQ(TakeMemoryInEveryWay(), expected) << number;
        EXPECT_TRUE(fault.Fired());
    }
}

TEST(Faults, AnOnwardFaultTakesAllThatFollows)
{
    Scope scope;
    for (unsigned number = 1; number <= 7; ++number) {
        const ArmedFault fault(FaultKind::Allocation, number, FaultReach::Onward);
        std::vector<bool> expected(7, true);
        std::fill(expected.begin() + number - 1, expected.end(), false);
        EXPECT_EQ(TakeMemoryInEveryWay(), expected) << number;
    }
}

TEST(Faults, ThrowingNewNeverFails)
{
    Scope scope;
    const ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
    const std::string text(1000, 'x');
    EXPECT_EQ(text.size(), 1000U);
    EXPECT_EQ(fault.Seen(), 0U);
}

TEST(Faults, DisarmedNothingFails)
{
    Scope scope;
    ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
    fault.Disarm();
    EXPECT_EQ(TakeMemoryInEveryWay(), std::vector<bool>(7, true));
    EXPECT_FALSE(fault.Fired());
}

TEST(Faults, AFileCannotBeMade)
{
    Scope scope;
    const std::u16string path = NewFile();
    {
        const ArmedFault fault(FaultKind::Create, 2, FaultReach::Once);
        HANDLE first = Open(path, CREATE_ALWAYS);
        EXPECT_NE(first, INVALID_HANDLE_VALUE);
        CloseHandle(first);
        EXPECT_EQ(Open(path, CREATE_ALWAYS), INVALID_HANDLE_VALUE);
        EXPECT_TRUE(fault.Fired());
        HANDLE opened = Open(path, OPEN_EXISTING);
        EXPECT_NE(opened, INVALID_HANDLE_VALUE) << "opening is no creating";
        CloseHandle(opened);
    }
}

TEST(Faults, AFileCannotBeOpened)
{
    Scope scope;
    const std::u16string path = NewFile();
    CloseHandle(Open(path, CREATE_ALWAYS));
    const ArmedFault fault(FaultKind::Open, 1, FaultReach::Once);
    EXPECT_EQ(Open(path, OPEN_EXISTING), INVALID_HANDLE_VALUE);
    HANDLE opened = Open(path, OPEN_EXISTING);
    EXPECT_NE(opened, INVALID_HANDLE_VALUE);
    CloseHandle(opened);
}

TEST(Faults, AReadFailsOrComesUpShort)
{
    Scope scope;
    const std::u16string path = NewFile();
    HANDLE file = Open(path, CREATE_ALWAYS);
    ASSERT_EQ(Write(file, 10), 10);
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    {
        const ArmedFault fault(FaultKind::Read, 1, FaultReach::Once);
        EXPECT_EQ(Read(file, 4), -1);
        EXPECT_EQ(Read(file, 4), 4) << "the position stayed";
    }
    {
        const ArmedFault fault(FaultKind::ShortRead, 1, FaultReach::Once);
        EXPECT_EQ(Read(file, 4), 3);
        EXPECT_EQ(Read(file, 4), 3) << "three were left";
    }
    CloseHandle(file);
}

TEST(Faults, AWriteFailsOrComesUpShort)
{
    Scope scope;
    HANDLE file = Open(NewFile(), CREATE_ALWAYS);
    {
        const ArmedFault fault(FaultKind::Write, 1, FaultReach::Once);
        EXPECT_EQ(Write(file, 10), -1);
        EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
        EXPECT_EQ(Write(file, 10), 10);
    }
    {
        const ArmedFault fault(FaultKind::ShortWrite, 1, FaultReach::Once);
        EXPECT_EQ(Write(file, 10), 9);
    }
    EXPECT_EQ(GetFileSize(file, nullptr), 19U);
    CloseHandle(file);
}

TEST(Faults, AThreadCannotBeMade)
{
    Scope scope;
    const ArmedFault fault(FaultKind::Thread, 2, FaultReach::Once);
    EXPECT_TRUE(MakeThread());
    EXPECT_FALSE(MakeThread());
    EXPECT_TRUE(MakeThread());
}

TEST(Faults, AFullDiskTakesWhatFitsAndThenNothing)
{
    Scope scope;
    const std::u16string path = NewFile();
    HANDLE file = Open(path, CREATE_ALWAYS);
    SetDiskSpace(15);
    EXPECT_EQ(Write(file, 10), 10);
    EXPECT_EQ(Write(file, 10), 5);
    EXPECT_EQ(Write(file, 10), -1);
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    EXPECT_EQ(Write(file, 10), 10) << "what is there already needs no room";
    EXPECT_EQ(Write(file, 10), 5);
    CloseHandle(file);
    EXPECT_EQ(Open(path + u"2", CREATE_NEW), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    HANDLE again = Open(path, CREATE_ALWAYS);
    EXPECT_NE(again, INVALID_HANDLE_VALUE) << "emptying needs no room";
    CloseHandle(again);
}

TEST(Faults, TheDeviceTellsTheBoundedDiskSpace)
{
    Scope scope;
    ULARGE_INTEGER free = {};
    ASSERT_TRUE(GetDiskFreeSpaceExW(u"\\Temp", &free, nullptr, nullptr));
    EXPECT_GT(free.QuadPart, 0U);
    SetDiskSpace(0x123456789ULL);
    ULARGE_INTEGER total = {};
    ULARGE_INTEGER all = {};
    ASSERT_TRUE(GetDiskFreeSpaceExW(u"\\Temp", &free, &total, &all));
    EXPECT_EQ(free.QuadPart, 0x123456789ULL);
    EXPECT_EQ(all.QuadPart, 0x123456789ULL);
    EXPECT_GT(total.QuadPart, 0U);
}

TEST(Faults, AMountThatIsNotMadeYetHasTheDiskSpaceOfWhatIsAboveIt)
{
    ULARGE_INTEGER free = {};
    EXPECT_TRUE(GetDiskFreeSpaceExW(u"\\Application Data\\Tavrix", &free, nullptr, nullptr));
    EXPECT_GT(free.QuadPart, 0U);
    EXPECT_FALSE(GetDiskFreeSpaceExW(u"\\Storage Card", &free, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST(FaultLoop, GoesThroughEachFaultAloneAndThenOnward)
{
    Scope scope;
    std::vector<std::vector<bool>> runs;
    std::vector<bool> checks;
    const unsigned faults = ForEveryFault(
        FaultKind::Allocation,
        [&runs] {
            std::vector<bool> got;
            for (int i = 0; i < 2; ++i) {
                void* block = std::malloc(1);
                got.push_back(block != nullptr);
                std::free(block);
            }
            runs.push_back(got);
        },
        [&checks](bool fired) { checks.push_back(fired); });
    EXPECT_EQ(faults, 2U);
    const std::vector<std::vector<bool>> expected = {
        {true, true},                                 // without a fault
        {false, true},  {true, false}, {true, true},  // alone
        {false, false}, {true, false}, {true, true}}; // onward
    EXPECT_EQ(runs, expected);
    EXPECT_EQ(checks, (std::vector<bool>{false, true, true, false, true, true, false}));
}

TEST(FaultLoop, WorksWithEveryKind)
{
    Scope scope;
    for (const FaultKind kind :
         {FaultKind::Create, FaultKind::Open, FaultKind::Read, FaultKind::ShortRead,
          FaultKind::Write, FaultKind::ShortWrite, FaultKind::Thread})
        EXPECT_EQ(ForEveryFault(kind,
                                [] {
                                    const std::u16string path = NewFile();
                                    HANDLE made = Open(path, CREATE_NEW);
                                    Write(made, 3);
                                    CloseHandle(made);
                                    HANDLE opened = Open(path, OPEN_EXISTING);
                                    Read(opened, 3);
                                    CloseHandle(opened);
                                    MakeThread();
                                }),
                  1U)
            << static_cast<int>(kind);
}

TEST(FaultLoop, TheCheckRunsWithNothingArmed)
{
    Scope scope;
    ForEveryFault(
        FaultKind::Allocation,
        [] {
            // Volatile, or the compiler leaves the pair of calls out.
            void* volatile block = std::malloc(1);
            std::free(block);
        },
        [](bool) {
            void* block = std::malloc(1);
            EXPECT_NE(block, nullptr);
            std::free(block);
        });
}

TEST(FaultLoop, ALoopInWhichNothingEverFiresFails)
{
    Scope scope;
    const std::string messages = FailuresOf([] { ForEveryFault(FaultKind::Allocation, [] {}); });
    EXPECT_TRUE(Tells(messages, "no fault fired")) << messages;
}

TEST(FaultLoop, AHandleThatStaysBehindFails)
{
    Scope scope;
    static std::vector<HANDLE> lost;
    const std::string messages = FailuresOf([] {
        ForEveryFault(FaultKind::Allocation, [] {
            HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
            void* block = std::malloc(1);
            if (block == nullptr) {
                lost.push_back(event);
                return; // forgets the handle
            }
            std::free(block);
            CloseHandle(event);
        });
    });
    EXPECT_TRUE(Tells(messages, "left behind")) << messages;
    for (HANDLE event : lost)
        CloseHandle(event);
}

TEST(FaultLoop, DeviceMemoryThatStaysBehindFails)
{
    Scope scope;
    static std::vector<void*> lost;
    const std::string messages = FailuresOf([] {
        ForEveryFault(FaultKind::Allocation, [] {
            void* first = HeapAlloc(GetProcessHeap(), 0, 8);
            void* second = HeapAlloc(GetProcessHeap(), 0, 8);
            if (second == nullptr && first != nullptr) {
                lost.push_back(first);
                return;
            }
            if (first != nullptr)
                HeapFree(GetProcessHeap(), 0, first);
            if (second != nullptr)
                HeapFree(GetProcessHeap(), 0, second);
        });
    });
    EXPECT_TRUE(Tells(messages, "left behind")) << messages;
    for (void* block : lost)
        HeapFree(GetProcessHeap(), 0, block);
}

TEST(FaultLoop, AFailedExpectationEndsTheLoopAndNamesTheFault)
{
    Scope scope;
    const std::string messages = FailuresOf([] {
        ForEveryFault(FaultKind::Allocation, [] {
            void* block = std::malloc(1);
            EXPECT_NE(block, nullptr);
            std::free(block);
        });
    });
    EXPECT_TRUE(Tells(messages, "fault 1 alone")) << messages;
}
