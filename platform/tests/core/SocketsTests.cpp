// The device's internet sockets against peers on the host's own: connections, data, closing.
// Options, names and addresses: SocketOptionsTests.cpp.

#include "DeviceThread.h"
#include "platform/core/TestHooks.h"
#include "SocketPlaces.h"

#include <handheld.h>

#include <string>
#include <thread>

using tavrix::testing::Connection;
using tavrix::testing::WireServer;

namespace
{

/// All that a sender sends until it ends, from a stream whose reads are short.
std::string ReceiveAll(SOCKET handle)
{
    std::string all;
    std::string part(100000, '\0');
    for (;;) {
        const int got = recv(handle, part.data(), static_cast<int>(part.size()), 0);
        if (got <= 0)
            return got == 0 ? all : "failed";
        all.append(part, 0, static_cast<size_t>(got));
    }
}

/// Bytes that tell their place.
std::string Numbered(size_t size)
{
    std::string bytes(size, '\0');
    unsigned state = 1;
    for (char& byte : bytes) {
        state = state * 1103515245 + 12345;
        byte = static_cast<char>(state >> 16);
    }
    return bytes;
}

} // namespace

TEST(Sockets, UnknownFamiliesAndTypesAreRefused)
{
    EXPECT_EQ(INVALID_SOCKET, socket(99, SOCK_STREAM, 0));
    EXPECT_EQ(INVALID_SOCKET, socket(0, SOCK_STREAM, 0));
    EXPECT_EQ(INVALID_SOCKET, socket(AF_INET, 99, 0));
    EXPECT_EQ(INVALID_SOCKET, socket(22, SOCK_DGRAM, 0));
    EXPECT_NE(INVALID_SOCKET, OwnedSocket(SOCK_STREAM));
    EXPECT_NE(INVALID_SOCKET, OwnedSocket(SOCK_DGRAM));
    EXPECT_NE(INVALID_SOCKET, OwnedSocket(socket(22, SOCK_STREAM, 0)));
}

TEST(Sockets, WhatIsNoOpenSocketIsRefusedByEveryCall)
{
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const SOCKET stale = socket(AF_INET, SOCK_STREAM, 0);
    EXPECT_EQ(0, closesocket(stale));
    for (const SOCKET handle :
         {stale, INVALID_SOCKET, SOCKET{0}, SOCKET{12345}, reinterpret_cast<SOCKET>(event)}) {
        char text[8] = {};
        DWORD value = 0;
        int length = sizeof(value);
        sockaddr_in own = {};
        int ownLength = sizeof(own);
        EXPECT_EQ(SOCKET_ERROR, BindAt(handle, Own(), 0));
        EXPECT_EQ(SOCKET_ERROR, ConnectAt(handle, Own(), 1));
        EXPECT_EQ(SOCKET_ERROR, listen(handle, 1));
        EXPECT_EQ(INVALID_SOCKET, accept(handle, nullptr, nullptr));
        EXPECT_EQ(SOCKET_ERROR, send(handle, text, 1, 0));
        EXPECT_EQ(SOCKET_ERROR, recv(handle, text, 1, 0));
        EXPECT_EQ(SOCKET_ERROR, shutdown(handle, 2));
        EXPECT_EQ(SOCKET_ERROR, getsockopt(handle, SOL_SOCKET, SO_TYPE, text, &length));
        EXPECT_EQ(SOCKET_ERROR, setsockopt(handle, SOL_SOCKET, SO_KEEPALIVE, text, 4));
        EXPECT_EQ(SOCKET_ERROR, getsockname(handle, reinterpret_cast<sockaddr*>(&own), &ownLength));
        EXPECT_EQ(SOCKET_ERROR, closesocket(handle));
    }
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(event, 0)) << "the event is still there";
    CloseHandle(event);
}

TEST(Sockets, ASocketCountsAsAHandleUntilItIsClosed)
{
    const size_t before = tavrix::platform::CountHoldings().kernelHandles;
    OwnedSocket handle;
    EXPECT_EQ(before + 1, tavrix::platform::CountHoldings().kernelHandles);
    handle.Close();
    EXPECT_EQ(before, tavrix::platform::CountHoldings().kernelHandles);
}

TEST(Sockets, AConnectionCarriesBytesBothWays)
{
    WireServer server(0, [](Connection& peer, int) { peer.Write(peer.ReadExactly(5) + " back"); });
    OwnedSocket handle;
    ASSERT_EQ(0, ConnectAt(handle, Own(), server.Port()));
    EXPECT_EQ(5, send(handle, "hello", 5, 0));
    EXPECT_EQ("hello back", ReceiveAll(handle));
    char text[4];
    EXPECT_EQ(0, recv(handle, text, 4, 0)) << "the end stays";
}

TEST(Sockets, ConnectingFailsWhereNobodyListens)
{
    USHORT port = 0;
    {
        OwnListener gone;
        port = gone.port;
    }
    OwnedSocket handle;
    EXPECT_EQ(SOCKET_ERROR, ConnectAt(handle, Own(), port));
    char text[4];
    EXPECT_EQ(SOCKET_ERROR, send(handle, text, 1, 0));
    EXPECT_EQ(SOCKET_ERROR, recv(handle, text, 1, 0));
}

TEST(Sockets, AddressesThatAreNoneAreRefused)
{
    OwnedSocket handle;
    sockaddr_in place = PlaceAt(Own(), 1);
    const auto* const plain = reinterpret_cast<const sockaddr*>(&place);
    EXPECT_EQ(SOCKET_ERROR, bind(handle, nullptr, 16));
    EXPECT_EQ(SOCKET_ERROR, bind(handle, plain, 15));
    EXPECT_EQ(SOCKET_ERROR, connect(handle, nullptr, 16));
    EXPECT_EQ(SOCKET_ERROR, connect(handle, plain, 15));
    place.sin_family = 22;
    EXPECT_EQ(SOCKET_ERROR, bind(handle, plain, 16));
    EXPECT_EQ(SOCKET_ERROR, connect(handle, plain, 16));
}

TEST(Sockets, AcceptTellsThePeersAddress)
{
    OwnListener listener;
    OwnedSocket client;
    ASSERT_EQ(0, BindAt(client, Own(), 0));
    ASSERT_EQ(0, ConnectAt(client, Own(), listener.port));
    sockaddr_in peer = {};
    int length = sizeof(peer);
    const OwnedSocket accepted(
        accept(listener.handle, reinterpret_cast<sockaddr*>(&peer), &length));
    ASSERT_NE(INVALID_SOCKET, accepted);
    EXPECT_EQ(16, length);
    EXPECT_EQ(AF_INET, peer.sin_family);
    EXPECT_EQ(Own(), ntohl(peer.sin_addr.S_un.S_addr));
    EXPECT_EQ(PortOf(client), ntohs(peer.sin_port));
    EXPECT_EQ(listener.port, PortOf(accepted));
}

TEST(Sockets, AcceptFailsOnWhatDoesNotListen)
{
    OwnedSocket handle;
    EXPECT_EQ(INVALID_SOCKET, accept(handle, nullptr, nullptr));
    ASSERT_EQ(0, BindAt(handle, Own(), 0));
    EXPECT_EQ(INVALID_SOCKET, accept(handle, nullptr, nullptr));
    const OwnPair pair;
    EXPECT_EQ(INVALID_SOCKET, accept(pair.handle, nullptr, nullptr));
}

TEST(Sockets, AClientThatHasGoneAgainIsNoFailureOfTheListener)
{
    OwnListener listener;
    listener.Client().Reset();
    Connection client = listener.Client();
    for (bool found = false; !found;) {
        const OwnedSocket accepted(accept(listener.handle, nullptr, nullptr));
        ASSERT_NE(INVALID_SOCKET, accepted);
        found = send(accepted, "x", 1, 0) == 1 && client.Read(1) == "x";
    }
}

TEST(Sockets, OnePlaceHasOneListener)
{
    OwnListener listener;
    OwnedSocket second;
    EXPECT_EQ(SOCKET_ERROR, BindAt(second, Own(), listener.port));
}

TEST(Sockets, APlaceCanBeBoundAnewWhileItsLastConnectionFades)
{
    USHORT port = 0;
    {
        OwnListener listener;
        port = listener.port;
        const Connection client = listener.Client();
        const OwnedSocket accepted(accept(listener.handle, nullptr, nullptr));
        // The side that closes first is the one that fades.
    }
    OwnedSocket again;
    EXPECT_EQ(0, BindAt(again, Own(), port));
    EXPECT_EQ(0, listen(again, 1));
}

TEST(Sockets, MoreThanTheBuffersHoldIsSentWholeAndInOrder)
{
    const std::string bytes = Numbered(24 << 20);
    OwnPair pair;
    std::string received;
    std::thread reader([&] { received = pair.peer.ReadAll(); });
    EXPECT_EQ(static_cast<int>(bytes.size()),
              send(pair.handle, bytes.data(), static_cast<int>(bytes.size()), 0));
    EXPECT_EQ(0, shutdown(pair.handle, 1));
    reader.join();
    EXPECT_TRUE(received == bytes);
}

TEST(Sockets, WhatIsReceivedIsWholeAndInOrder)
{
    const std::string bytes = Numbered(24 << 20);
    OwnPair pair;
    std::thread writer([&] {
        EXPECT_TRUE(pair.peer.Write(bytes));
        pair.peer.EndWriting();
    });
    EXPECT_TRUE(ReceiveAll(pair.handle) == bytes);
    writer.join();
}

TEST(Sockets, LengthsAndBuffersThatCannotBeAreRefused)
{
    OwnPair pair;
    char text[4];
    EXPECT_EQ(SOCKET_ERROR, send(pair.handle, text, -1, 0));
    EXPECT_EQ(SOCKET_ERROR, send(pair.handle, nullptr, 1, 0));
    EXPECT_EQ(0, send(pair.handle, nullptr, 0, 0));
    EXPECT_EQ(0, send(pair.handle, text, 0, 0));
    EXPECT_EQ(SOCKET_ERROR, send(pair.handle, text, 1, 1)) << "no flags are known";
    EXPECT_TRUE(pair.peer.Write("ab"));
    EXPECT_EQ(SOCKET_ERROR, recv(pair.handle, text, -1, 0));
    EXPECT_EQ(SOCKET_ERROR, recv(pair.handle, nullptr, 1, 0));
    EXPECT_EQ(SOCKET_ERROR, recv(pair.handle, text, 1, 1));
    EXPECT_EQ(1, recv(pair.handle, text, 1, 0)) << "nothing was taken";
    EXPECT_EQ('a', text[0]);
}

TEST(Sockets, ALookTakesNothingAway)
{
    OwnPair pair;
    EXPECT_TRUE(pair.peer.Write("a"));
    char text[4] = {};
    EXPECT_EQ(1, recv(pair.handle, text, 4, 2));
    EXPECT_EQ('a', text[0]);
    EXPECT_EQ(1, recv(pair.handle, text, 4, 0));
}

TEST(Sockets, AResetShowsAsAFailureOfReceivingAndSending)
{
    OwnPair pair;
    pair.peer.Reset();
    char text[4] = {};
    EXPECT_EQ(SOCKET_ERROR, recv(pair.handle, text, 4, 0));
    EXPECT_EQ(SOCKET_ERROR, recv(pair.handle, text, 4, 0)) << "and never as an end behind it";
    // Nor does it end the process.
    EXPECT_TRUE(Eventually([&] { return send(pair.handle, text, 4, 0) == SOCKET_ERROR; }));
}

TEST(Sockets, AConnectionIsNotMadeTwiceAndGoesOnAfterTheAttempt)
{
    OwnPair pair;
    const WireServer other(0, [](Connection&, int) {});
    EXPECT_EQ(SOCKET_ERROR, ConnectAt(pair.handle, Own(), other.Port()));
    EXPECT_EQ(SOCKET_ERROR, ConnectAt(pair.handle, Own(), 1));
    ASSERT_TRUE(pair.peer.Write("on"));
    char text[2] = {};
    EXPECT_GT(recv(pair.handle, text, 2, 0), 0);
    EXPECT_EQ('o', text[0]);
}

TEST(Sockets, ShuttingOneHalfDownLeavesTheOtherOpen)
{
    char text[4] = {};
    OwnPair sending;
    EXPECT_EQ(0, shutdown(sending.handle, 0));
    EXPECT_EQ(0, recv(sending.handle, text, 4, 0)) << "nothing is waited for any more";
    EXPECT_EQ(2, send(sending.handle, "ab", 2, 0));
    EXPECT_EQ("ab", sending.peer.ReadExactly(2));

    OwnPair receiving;
    EXPECT_EQ(0, shutdown(receiving.handle, 1));
    EXPECT_EQ("", receiving.peer.Read(1)) << "the other side sees an end";
    EXPECT_EQ(SOCKET_ERROR, send(receiving.handle, "ab", 2, 0));
    EXPECT_TRUE(receiving.peer.Write("cd"));
    EXPECT_EQ(1, recv(receiving.handle, text, 1, 0));

    OwnPair both;
    EXPECT_EQ(0, shutdown(both.handle, 2));
    EXPECT_EQ("", both.peer.Read(1));
    EXPECT_EQ(0, recv(both.handle, text, 4, 0));
    EXPECT_EQ(SOCKET_ERROR, send(both.handle, "ab", 2, 0));
    EXPECT_EQ(SOCKET_ERROR, shutdown(both.handle, 3));
    EXPECT_EQ(SOCKET_ERROR, shutdown(both.handle, -1));
    EXPECT_EQ(SOCKET_ERROR, shutdown(OwnedSocket(), 2)) << "not connected";
}

TEST(Sockets, AListenerCannotBeShutDown)
{
    OwnListener listener;
    EXPECT_EQ(SOCKET_ERROR, shutdown(listener.handle, 2));
    const Connection client = listener.Client();
    EXPECT_NE(INVALID_SOCKET, OwnedSocket(accept(listener.handle, nullptr, nullptr)));
}

TEST(Sockets, ShuttingDownEndsAWaitOnAnotherThread)
{
    OwnPair pair;
    char text[4] = {};
    DeviceThread thread([&] { return static_cast<DWORD>(recv(pair.handle, text, 4, 0)); });
    ASSERT_TRUE(thread.Waits());
    EXPECT_EQ(0, shutdown(pair.handle, 2));
    EXPECT_EQ(0u, thread.ExitCode());
}

TEST(Sockets, ClosingEndsEveryCallThatWaits)
{
    const std::string much(32 << 20, 'x');
    constexpr DWORD Error = static_cast<DWORD>(SOCKET_ERROR);
    char text[4] = {};
    {
        OwnListener listener;
        DeviceThread thread(
            [&] { return static_cast<DWORD>(accept(listener.handle, nullptr, nullptr)); });
        ASSERT_TRUE(thread.Waits());
        listener.handle.Close();
        EXPECT_EQ(Error, thread.ExitCode());
        EXPECT_TRUE(thread.HasReturned());
        EXPECT_FALSE(listener.Client().IsOpen());
    }
    {
        OwnPair pair;
        DeviceThread thread([&] { return static_cast<DWORD>(recv(pair.handle, text, 4, 0)); });
        ASSERT_TRUE(thread.Waits());
        EXPECT_EQ(0, closesocket(pair.handle));
        EXPECT_EQ(Error, thread.ExitCode());
        EXPECT_EQ("", pair.peer.Read(1)) << "the other side learns it, too";
    }
    {
        OwnPair pair;
        DeviceThread thread([&] {
            return static_cast<DWORD>(
                send(pair.handle, much.data(), static_cast<int>(much.size()), 0));
        });
        ASSERT_TRUE(thread.Waits());
        EXPECT_EQ(0, closesocket(pair.handle));
        EXPECT_EQ(Error, thread.ExitCode());
    }
    {
        // One connection fills the queue of a listener of no backlog; the next is not answered.
        OwnListener listener(0);
        const Connection first = listener.Client();
        OwnedSocket second;
        DeviceThread thread(
            [&] { return static_cast<DWORD>(ConnectAt(second, Own(), listener.port)); });
        ASSERT_TRUE(thread.Waits());
        EXPECT_EQ(0, closesocket(second));
        EXPECT_EQ(Error, thread.ExitCode());
    }
}

TEST(Sockets, ClosingEndsEveryoneWhoWaitsOnTheSameSocket)
{
    OwnListener listener;
    const auto wait = [&] { return static_cast<DWORD>(accept(listener.handle, nullptr, nullptr)); };
    DeviceThread first(wait);
    DeviceThread second(wait);
    ASSERT_TRUE(first.Waits());
    ASSERT_TRUE(second.Waits());
    listener.handle.Close();
    EXPECT_EQ(static_cast<DWORD>(SOCKET_ERROR), first.ExitCode());
    EXPECT_EQ(static_cast<DWORD>(SOCKET_ERROR), second.ExitCode());
}

TEST(Sockets, OneThreadMaySendWhileAnotherReceives)
{
    const std::string bytes = Numbered(8 << 20);
    OwnPair pair;
    std::thread echo([&] {
        std::string part;
        while (!(part = pair.peer.Read(65536)).empty())
            pair.peer.Write(part);
        pair.peer.EndWriting();
    });
    DeviceThread sender([&] {
        const int sent = send(pair.handle, bytes.data(), static_cast<int>(bytes.size()), 0);
        (void)shutdown(pair.handle, 1);
        return static_cast<DWORD>(sent);
    });
    EXPECT_TRUE(ReceiveAll(pair.handle) == bytes);
    EXPECT_EQ(bytes.size(), sender.ExitCode());
    echo.join();
}

TEST(Sockets, DatagramsKeepTheirBounds)
{
    OwnedSocket first(SOCK_DGRAM);
    OwnedSocket second(SOCK_DGRAM);
    ASSERT_EQ(0, BindAt(first, Own(), 0));
    ASSERT_EQ(0, BindAt(second, Own(), 0));
    ASSERT_EQ(0, ConnectAt(first, Own(), PortOf(second)));
    ASSERT_EQ(0, ConnectAt(second, Own(), PortOf(first)));
    EXPECT_EQ(3, send(first, "abc", 3, 0));
    EXPECT_EQ(2, send(first, "de", 2, 0));
    char text[8] = {};
    EXPECT_EQ(3, recv(second, text, 8, 0));
    EXPECT_STREQ("abc", text);
    EXPECT_EQ(2, recv(second, text, 8, 0));
}
