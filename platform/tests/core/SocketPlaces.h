// What the tests of the platform's sockets share: places of this process, and listeners there.
#pragma once

#include "platform/testing/Wire.h"

#include <gtest/gtest.h>

#include <winsock.h>

#include <string>

inline sockaddr_in PlaceAt(ULONG address, USHORT port)
{
    sockaddr_in place = {};
    place.sin_family = AF_INET;
    place.sin_port = htons(port);
    place.sin_addr.S_un.S_addr = htonl(address);
    return place;
}

inline ULONG Own()
{
    return static_cast<ULONG>(tavrix::testing::OwnAddressNumber());
}

inline int BindAt(SOCKET handle, ULONG address, USHORT port)
{
    const sockaddr_in place = PlaceAt(address, port);
    return bind(handle, reinterpret_cast<const sockaddr*>(&place), sizeof(place));
}

inline int ConnectAt(SOCKET handle, ULONG address, USHORT port)
{
    const sockaddr_in place = PlaceAt(address, port);
    return connect(handle, reinterpret_cast<const sockaddr*>(&place), sizeof(place));
}

/// The own address; all zero on failure.
inline sockaddr_in NameOf(SOCKET handle)
{
    sockaddr_in own = {};
    int length = sizeof(own);
    (void)getsockname(handle, reinterpret_cast<sockaddr*>(&own), &length);
    return own;
}

inline USHORT PortOf(SOCKET handle)
{
    return ntohs(NameOf(handle).sin_port);
}

/// A socket that goes with its scope.
class OwnedSocket
{
public:
    explicit OwnedSocket(SOCKET theHandle) : handle(theHandle) {}
    explicit OwnedSocket(int type = SOCK_STREAM) : handle(socket(AF_INET, type, 0)) {}
    ~OwnedSocket() { Close(); }
    OwnedSocket(const OwnedSocket&) = delete;
    OwnedSocket& operator=(const OwnedSocket&) = delete;

    operator SOCKET() const { return handle; }
    void Close()
    {
        if (handle != INVALID_SOCKET)
            (void)closesocket(handle);
        handle = INVALID_SOCKET;
    }

private:
    SOCKET handle;
};

/// Listens on a free port of this process.
struct OwnListener {
    explicit OwnListener(int backlog = 4)
    {
        EXPECT_EQ(0, BindAt(handle, Own(), 0));
        EXPECT_EQ(0, listen(handle, backlog));
        port = PortOf(handle);
    }
    tavrix::testing::Connection Client() const
    {
        return tavrix::testing::ConnectTo(tavrix::testing::OwnAddress(), port);
    }

    OwnedSocket handle;
    USHORT port = 0;
};

/// One end is the platform's, the other one the test's.
struct OwnPair {
    OwnPair()
    {
        OwnListener listener;
        peer = listener.Client();
        handle = accept(listener.handle, nullptr, nullptr);
        EXPECT_NE(INVALID_SOCKET, handle);
    }
    ~OwnPair() { (void)closesocket(handle); }
    OwnPair(const OwnPair&) = delete;
    OwnPair& operator=(const OwnPair&) = delete;

    SOCKET handle = INVALID_SOCKET;
    tavrix::testing::Connection peer;
};
