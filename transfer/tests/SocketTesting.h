// What the tests of the sockets share: addresses of this process, waiting for a condition instead
// of for a time, and a look at what is still held.
#pragma once

#include "foundation/Types.h"
#include "platform/core/TestHooks.h"
#include "platform/testing/Threads.h"
#include "platform/testing/Wire.h"

#include <gtest/gtest.h>

#include <winsock.h>

#include <algorithm>
#include <string>

constexpr int SteadyPatience = 60000; // milliseconds; only a test that is about to fail takes them

/// Waits until `ready` answers true; false when it never does.
template <class Ready>
bool Eventually(const Ready& ready)
{
    for (int passed = 0; passed < SteadyPatience; ++passed) {
        if (ready())
            return true;
        Sleep(1);
    }
    return ready();
}

using tavrix::testing::CountThreads;

/// The same once those that have just ended are gone from the host's count, too.
inline long CountSettledThreads()
{
    long least = CountThreads();
    for (int look = 0; look < 10; ++look) {
        Sleep(1);
        least = std::min(least, CountThreads());
    }
    return least;
}

inline sockaddr_in OwnPlace(u16 port)
{
    sockaddr_in place = {};
    place.sin_family = AF_INET;
    place.sin_port = htons(port);
    place.sin_addr.S_un.S_addr = htonl(static_cast<ULONG>(tavrix::testing::OwnAddressNumber()));
    return place;
}

inline const sockaddr* Plain(const sockaddr_in& place)
{
    return reinterpret_cast<const sockaddr*>(&place);
}

/// The port that a bound socket got.
inline u16 PortOf(SOCKET handle)
{
    sockaddr_in own = {};
    int length = sizeof(own);
    return getsockname(handle, reinterpret_cast<sockaddr*>(&own), &length) == 0
               ? ntohs(own.sin_port)
               : u16{0};
}

/// Makes `listener` (a Socket or what is derived from it) listen on a free port; 0 on failure.
template <class Listener>
u16 ListenSomewhere(Listener& listener)
{
    const sockaddr_in place = OwnPlace(0);
    if (listener.Bind(Plain(place), sizeof(place)) < 0 || listener.Listen(4) < 0)
        return 0;
    return PortOf(listener.Handle());
}

/// A socket that listens on a free port of this process, to be adopted.
inline SOCKET MakeListener(u16& port)
{
    const SOCKET listener = socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in place = OwnPlace(0);
    EXPECT_EQ(0, bind(listener, Plain(place), sizeof(place)));
    EXPECT_EQ(0, listen(listener, 4));
    port = PortOf(listener);
    return listener;
}

/// A peer of the test's on a port of this process.
inline tavrix::testing::Connection Client(u16 port)
{
    return tavrix::testing::ConnectTo(tavrix::testing::OwnAddress(), port);
}

/// Whether there is an open socket behind a handle.
inline bool IsLive(SOCKET handle)
{
    DWORD type = 0;
    int length = sizeof(type);
    return getsockopt(handle, SOL_SOCKET, SO_TYPE, reinterpret_cast<char*>(&type), &length) == 0;
}

/// Sees that a scope leaves no handle and no thread behind.
class NothingRemains
{
public:
    NothingRemains() : held(tavrix::platform::CountHoldings()), threads(CountThreads()) {}
    /// Whether all is as it was.
    ::testing::AssertionResult IsTrue() const
    {
        const tavrix::platform::Holdings now = tavrix::platform::CountHoldings();
        if (now != held)
            return ::testing::AssertionFailure()
                   << now.kernelHandles << " handles, before " << held.kernelHandles;
        if (!Eventually([this] { return CountThreads() <= threads; }))
            return ::testing::AssertionFailure() << CountThreads() << " threads";
        return ::testing::AssertionSuccess();
    }

private:
    tavrix::platform::Holdings held;
    long threads;
};
