// Ending a thread from outside, wherever it waits, and what is left of what it waited for.

#include "DeviceThread.h"
#include "platform/core/TestHooks.h"
#include "SocketPlaces.h"

#include <handheld.h>

#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <thread>
#include <vector>

using tavrix::testing::Connection;

namespace
{

/// Ends a thread that waits, and looks at all that is promised of that.
void EndWhileItWaits(DeviceThread& thread, DWORD code)
{
    ASSERT_TRUE(thread.Waits());
    EXPECT_TRUE(TerminateThread(thread.Handle(), code));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread.Handle(), 0)) << "it is gone";
    EXPECT_EQ(code, thread.ExitCode());
    EXPECT_FALSE(thread.HasReturned());
}

const std::string& Much()
{
    static const std::string bytes(32 << 20, 'x');
    return bytes;
}

} // namespace

TEST(TerminateThread, EndsAThreadThatSleeps)
{
    for (const DWORD milliseconds : {DWORD{600000}, INFINITE}) {
        DeviceThread thread([milliseconds] {
            Sleep(milliseconds);
            return DWORD{1};
        });
        EndWhileItWaits(thread, 77);
    }
}

TEST(TerminateThread, EndsAReceivingThreadAlsoWhereTheHostHasNoMoreDescriptors)
{
    OwnPair pair;
    rlimit before = {};
    getrlimit(RLIMIT_NOFILE, &before);
    std::atomic<bool> receiving{false};
    DeviceThread thread([&] {
        // The lowest that is free is the one that a new descriptor would get.
        const int lowest = dup(0);
        close(lowest);
        const rlimit none = {static_cast<rlim_t>(lowest), before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
        receiving = true;
        char text[4];
        return static_cast<DWORD>(recv(pair.handle, text, 4, 0));
    });
    // Nobody can look into the thread's state now.
    EXPECT_TRUE(Eventually([&receiving] { return receiving.load(); }));
    Sleep(200);
    const BOOL ended = TerminateThread(thread.Handle(), 5);
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_TRUE(ended);
    if (!ended)
        pair.peer.Close();
    EXPECT_EQ(5u, thread.ExitCode());
    EXPECT_FALSE(thread.HasReturned());
}

TEST(TerminateThread, LeavesNoThreadBehind)
{
    const long threads = CountThreads();
    {
        DeviceThread thread([] {
            Sleep(INFINITE);
            return DWORD{1};
        });
        EndWhileItWaits(thread, 0xFFFFFFFF);
        EXPECT_TRUE(Eventually([threads] { return CountThreads() <= threads; }));
    }
}

TEST(TerminateThread, AnEventGoesOnWorkingForOthers)
{
    for (const BOOL manual : {TRUE, FALSE}) {
        const HANDLE event = CreateEventW(nullptr, manual, FALSE, nullptr);
        DeviceThread ended([event] { return WaitForSingleObject(event, INFINITE); });
        DeviceThread other([event] { return WaitForSingleObject(event, INFINITE); });
        EndWhileItWaits(ended, 5);
        EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(other.Handle(), 0));
        EXPECT_TRUE(EventModify(event, EVENT_SET));
        EXPECT_EQ(WAIT_OBJECT_0, other.ExitCode());
        EXPECT_TRUE(other.HasReturned());
        EXPECT_EQ(manual ? WAIT_OBJECT_0 : WAIT_TIMEOUT, WaitForSingleObject(event, 0));
        CloseHandle(event);
    }
}

TEST(TerminateThread, AMutexThatWasWaitedForIsNotTaken)
{
    const HANDLE mutex = CreateMutexW(nullptr, TRUE, nullptr);
    DeviceThread ended([mutex] { return WaitForSingleObject(mutex, INFINITE); });
    EndWhileItWaits(ended, 5);
    EXPECT_TRUE(ReleaseMutex(mutex));
    DeviceThread other([mutex] {
        const DWORD result = WaitForSingleObject(mutex, INFINITE);
        ReleaseMutex(mutex);
        return result;
    });
    EXPECT_EQ(WAIT_OBJECT_0, other.ExitCode());
    CloseHandle(mutex);
}

TEST(TerminateThread, AThreadThatWasWaitedForRunsOn)
{
    std::atomic<bool> go{false};
    DeviceThread first([&go] {
        while (!go)
            Sleep(1);
        return DWORD{3};
    });
    DeviceThread ended([&first] { return WaitForSingleObject(first.Handle(), INFINITE); });
    EndWhileItWaits(ended, 5);
    go = true;
    EXPECT_EQ(3u, first.ExitCode());
}

TEST(TerminateThread, AListenerGoesOnListening)
{
    OwnListener listener;
    for (int round = 0; round < 3; ++round) {
        DeviceThread thread([&listener] {
            (void)accept(listener.handle, nullptr, nullptr);
            return DWORD{1};
        });
        EndWhileItWaits(thread, 5);
    }
    const Connection client = listener.Client();
    EXPECT_TRUE(client.IsOpen());
    const OwnedSocket accepted(accept(listener.handle, nullptr, nullptr));
    EXPECT_NE(INVALID_SOCKET, accepted);
}

TEST(TerminateThread, AConnectionGoesOnReceiving)
{
    OwnPair pair;
    char text[8] = {};
    DeviceThread thread([&] {
        (void)recv(pair.handle, text, 7, 0);
        return DWORD{1};
    });
    EndWhileItWaits(thread, 5);
    EXPECT_TRUE(pair.peer.Write("hello"));
    EXPECT_EQ(5, recv(pair.handle, text, 7, 0));
    EXPECT_STREQ("hello", text);
    EXPECT_EQ(2, send(pair.handle, "ok", 2, 0));
    EXPECT_EQ("ok", pair.peer.ReadExactly(2));
}

TEST(TerminateThread, EndsAThreadThatSendsMoreThanThereIsRoomFor)
{
    OwnPair pair;
    DeviceThread thread([&pair] {
        (void)send(pair.handle, Much().data(), static_cast<int>(Much().size()), 0);
        return DWORD{1};
    });
    EndWhileItWaits(thread, 5);
}

TEST(TerminateThread, EndsAThreadThatConnects)
{
    // One connection fills the queue of a listener of no backlog; the next one is not answered.
    OwnListener listener(0);
    const Connection first = listener.Client();
    OwnedSocket second;
    DeviceThread thread([&] {
        (void)ConnectAt(second, Own(), listener.port);
        return DWORD{1};
    });
    EndWhileItWaits(thread, 5);
    // Over, and able to be closed at once.
    EXPECT_EQ(0, closesocket(second));
}

TEST(TerminateThread, WaitsForAThreadAtWorkUntilItsNextWait)
{
    std::atomic<bool> go{false};
    std::atomic<bool> worked{false};
    DeviceThread thread([&] {
        while (!go) {
        }
        worked = true;
        Sleep(1);
        return DWORD{1};
    });
    std::thread later([&go] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        go = true;
    });
    EXPECT_TRUE(TerminateThread(thread.Handle(), 8));
    EXPECT_TRUE(worked) << "it did not return before";
    EXPECT_FALSE(thread.HasReturned());
    EXPECT_EQ(8u, thread.ExitCode());
    later.join();
}

TEST(TerminateThread, AThreadAtWorkMayComeToItsEnd)
{
    std::atomic<bool> go{false};
    DeviceThread thread([&go] {
        while (!go) {
        }
        return DWORD{1};
    });
    std::thread later([&go] { go = true; });
    EXPECT_TRUE(TerminateThread(thread.Handle(), 8));
    EXPECT_TRUE(thread.HasReturned());
    later.join();
}

TEST(TerminateThread, GivesUpAThreadThatWorksOn)
{
    std::atomic<bool> go{false};
    DeviceThread thread([&go] {
        while (!go)
            std::this_thread::yield();
        Sleep(INFINITE);
        return DWORD{1};
    });
    const DWORD start = GetTickCount();
    EXPECT_FALSE(TerminateThread(thread.Handle(), 8));
    EXPECT_GE(GetTickCount() - start, 4990u);
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(thread.Handle(), 0));
    go = true;
    EXPECT_EQ(8u, thread.ExitCode()) << "it is still to end";
    EXPECT_FALSE(thread.HasReturned());
}

TEST(TerminateThread, KeepsTheExitCodeOfAThreadThatHasEnded)
{
    DeviceThread thread([] { return DWORD{3}; });
    EXPECT_EQ(3u, thread.ExitCode());
    EXPECT_TRUE(TerminateThread(thread.Handle(), 8));
    EXPECT_EQ(3u, thread.ExitCode());
}

TEST(TerminateThread, AThreadMayEndItself)
{
    std::atomic<HANDLE> own{nullptr};
    DeviceThread thread([&own] {
        while (own == nullptr)
            Sleep(1);
        TerminateThread(own, 9);
        return DWORD{1};
    });
    own = thread.Handle();
    EXPECT_EQ(9u, thread.ExitCode());
    EXPECT_FALSE(thread.HasReturned());
}

TEST(TerminateThread, OfTwoWhoEndAThreadTheFirstOnesCodeHolds)
{
    DeviceThread thread([] {
        Sleep(INFINITE);
        return DWORD{1};
    });
    std::thread one([&thread] { EXPECT_TRUE(TerminateThread(thread.Handle(), 8)); });
    EXPECT_TRUE(TerminateThread(thread.Handle(), 9));
    one.join();
    EXPECT_TRUE(thread.ExitCode() == 8 || thread.ExitCode() == 9);
    EXPECT_FALSE(thread.HasReturned());
}

TEST(TerminateThread, RefusesWhatIsNoThread)
{
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE stale = nullptr;
    {
        DeviceThread thread([] { return DWORD{3}; });
        stale = thread.Handle();
    }
    for (const HANDLE handle : {event, stale, static_cast<HANDLE>(nullptr)}) {
        SetLastError(0);
        EXPECT_FALSE(TerminateThread(handle, 1));
        EXPECT_EQ(ERROR_INVALID_HANDLE, GetLastError());
    }
    CloseHandle(event);
}

TEST(TerminateThread, NoConnectionIsLostToAThreadThatIsEndedAsItComes)
{
    const tavrix::platform::Holdings before = tavrix::platform::CountHoldings();
    for (int round = 0; round < 300; ++round) {
        OwnListener listener;
        SOCKET accepted = INVALID_SOCKET;
        {
            DeviceThread thread([&] {
                accepted = accept(listener.handle, nullptr, nullptr);
                return DWORD{1};
            });
            std::thread client([&listener] { (void)listener.Client(); });
            for (int turn = 0; turn < round; ++turn)
                std::this_thread::yield();
            EXPECT_TRUE(TerminateThread(thread.Handle(), 8));
            EXPECT_EQ(thread.HasReturned(), accepted != INVALID_SOCKET);
            client.join();
        }
        if (accepted != INVALID_SOCKET) {
            EXPECT_EQ(0, closesocket(accepted));
        }
    }
    EXPECT_TRUE(tavrix::platform::CountHoldings() == before);
}
