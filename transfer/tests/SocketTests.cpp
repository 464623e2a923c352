// What a socket does on the calling thread. Asynchronous accepts: SocketAcceptTests.cpp.

#include "platform/testing/Testing.h"
#include "SocketCalls.h"
#include "SocketTesting.h"
#include "transfer/Socket.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>

using tavrix::platform::SocketOperation;
using tavrix::testing::Connection;
using tavrix::testing::Scope;
using tavrix::testing::SetSocketFault;
using tavrix::testing::WireServer;

namespace
{

constexpr i32 NoSuchFamily = 99;

/// Connected to a peer that the test scripts.
struct Connected {
    explicit Connected(WireServer::Serve serve)
        : server(0, std::move(serve)), socket(AF_INET, SOCK_STREAM, 0)
    {
        const sockaddr_in place = OwnPlace(server.Port());
        EXPECT_EQ(1, socket.Connect(Plain(place), sizeof(place)));
    }

    WireServer server;
    Socket socket;
};

} // namespace

TEST(Socket, TheFirstOneStartsTheDevicesSocketsAndTheLastOneEndsThem)
{
    SocketCalls calls;
    {
        Socket first(AF_INET, SOCK_STREAM, 0);
        EXPECT_EQ("WSAStartup 0101", calls.Entries("WSA"));
        {
            Socket second(AF_INET, SOCK_STREAM, 0);
            Socket closed(NoSuchFamily, 1, 0);
        }
        EXPECT_EQ("WSAStartup 0101", calls.Entries("WSA")) << "one still lives";
        (void)first.Close();
        EXPECT_EQ("WSAStartup 0101", calls.Entries("WSA")) << "closing is not the end of it";
    }
    EXPECT_EQ("WSAStartup 0101; WSACleanup", calls.Entries("WSA"));
    {
        Socket again(INVALID_SOCKET);
    }
    EXPECT_EQ("WSAStartup 0101; WSACleanup; WSAStartup 0101; WSACleanup", calls.Entries("WSA"));
}

TEST(Socket, WithoutAHandleEveryOperationFails)
{
    Socket socket(NoSuchFamily, 1, 0);
    EXPECT_FALSE(socket.IsOpen());
    EXPECT_EQ(INVALID_SOCKET, socket.Handle());
    const sockaddr_in place = OwnPlace(0);
    char text[8] = "before";
    i32 count = 7;
    DWORD value = 0;
    i32 length = sizeof(value);
    EXPECT_EQ(-1, socket.GetHostName(text, sizeof(text)));
    EXPECT_EQ(-1, socket.IsCompleted(0));
    EXPECT_EQ(-1, socket.IsCompleted(1));
    EXPECT_EQ(-1, socket.GetOption(SOL_SOCKET, SO_TYPE, &value, &length));
    EXPECT_EQ(-1, socket.SetOption(SOL_SOCKET, SO_KEEPALIVE, &value, length));
    EXPECT_EQ(-1, socket.Bind(Plain(place), sizeof(place)));
    EXPECT_EQ(-1, socket.Listen(1));
    EXPECT_EQ(-1, socket.Connect(Plain(place), sizeof(place)));
    EXPECT_EQ(-1, socket.Shutdown(2));
    EXPECT_EQ(-1, socket.Send(text, 4, &count, 0));
    EXPECT_EQ(0, count) << "cleared before anything else";
    count = 7;
    EXPECT_EQ(-1, socket.Recv(text, 4, &count, 0));
    EXPECT_EQ(0, count);
    count = 7;
    EXPECT_EQ(-1, socket.RecvAll(text, 4, &count, 0));
    EXPECT_EQ(0, count);
    SOCKET handle = 7;
    EXPECT_EQ(-1, socket.AcceptHandle(nullptr, nullptr, &handle));
    EXPECT_EQ(INVALID_SOCKET, handle);
    handle = 7;
    EXPECT_EQ(-1, socket.AcceptAsync(nullptr, nullptr, &handle));
    EXPECT_EQ(INVALID_SOCKET, handle);
    Socket* accepted = &socket;
    EXPECT_EQ(-1, socket.Accept(nullptr, nullptr, &accepted));
    EXPECT_EQ(nullptr, accepted);
    EXPECT_EQ(-1, socket.Close());
}

TEST(Socket, WhatIsMissingIsToldBeforeThatItIsClosed)
{
    char name[4] = "abc";
    for (const i32 family : {AF_INET, NoSuchFamily}) {
        Socket socket(family, SOCK_STREAM, 0);
        EXPECT_EQ(-4, socket.GetHostName(nullptr, 4));
        EXPECT_EQ(-4, socket.GetHostName(name, 0));
        EXPECT_STREQ("abc", name);
        EXPECT_EQ(-4, socket.AcceptHandle(nullptr, nullptr, nullptr));
        EXPECT_EQ(-1, socket.Accept(nullptr, nullptr, nullptr)) << "meant: not -4";
        EXPECT_EQ(-1, socket.AcceptAsync(nullptr, nullptr, nullptr));
    }
}

TEST(Socket, CloseFailsAlsoWhenItHasClosed)
{
    SocketCalls calls;
    Socket socket(AF_INET, SOCK_STREAM, 0);
    const SOCKET handle = socket.Handle();
    ASSERT_TRUE(IsLive(handle));
    EXPECT_EQ(-1, socket.Close());
    EXPECT_FALSE(socket.IsOpen());
    EXPECT_FALSE(IsLive(handle));
    EXPECT_EQ("shutdown 2; closesocket", calls.Entries("shutdown") + "; " + calls.Entries("close"));
    EXPECT_EQ(-1, socket.Close()) << "and does nothing";
    EXPECT_EQ("closesocket", calls.Entries("close"));
}

TEST(Socket, TheDestructorCloses)
{
    SOCKET handle = INVALID_SOCKET;
    const NothingRemains nothing;
    {
        Socket socket(AF_INET, SOCK_STREAM, 0);
        handle = socket.Handle();
        EXPECT_TRUE(IsLive(handle));
        EXPECT_EQ(0, socket.IsCompleted(0));
    }
    EXPECT_FALSE(IsLive(handle));
    EXPECT_TRUE(nothing.IsTrue());
}

TEST(Socket, TellsTheNameOfThisMachine)
{
    std::string expected;
    std::getline(std::ifstream("/proc/sys/kernel/hostname"), expected);
    Socket socket(AF_INET, SOCK_STREAM, 0);
    char name[256] = "before";
    EXPECT_EQ(1, socket.GetHostName(name, sizeof(name)));
    EXPECT_EQ(expected, name);
    char before[4] = "abc";
    EXPECT_EQ(-1, socket.GetHostName(before, -1));
    EXPECT_EQ(0, before[0]);
    EXPECT_EQ('b', before[1]);
}

TEST(Socket, OptionsGoToTheDeviceAndBack)
{
    Socket socket(AF_INET, SOCK_STREAM, 0);
    DWORD value = 1;
    i32 length = sizeof(value);
    EXPECT_EQ(1, socket.SetOption(SOL_SOCKET, SO_KEEPALIVE, &value, length));
    value = 0;
    EXPECT_EQ(1, socket.GetOption(SOL_SOCKET, SO_KEEPALIVE, &value, &length));
    EXPECT_EQ(1u, value);
    value = 12345;
    EXPECT_EQ(1, socket.SetOption(SOL_SOCKET, SO_RCVTIMEO, &value, length));
    value = 0;
    EXPECT_EQ(1, socket.GetOption(SOL_SOCKET, SO_RCVTIMEO, &value, &length));
    EXPECT_EQ(12345u, value);
    EXPECT_EQ(-1, socket.SetOption(SOL_SOCKET, 0x7777, &value, length));
    EXPECT_EQ(-1, socket.GetOption(SOL_SOCKET, 0x7777, &value, &length));
}

TEST(Socket, SendsAndReceives)
{
    Connected pair([](Connection& peer, int) { peer.Write(peer.ReadExactly(5) + " back"); });
    i32 count = 77;
    EXPECT_EQ(1, pair.socket.Send("hello", 3, &count, 0));
    EXPECT_EQ(3, count);
    EXPECT_EQ(1, pair.socket.Send("lo", 2, nullptr, 0));
    char text[16] = {};
    ASSERT_EQ(1, pair.socket.RecvAll(text, 10, &count, 0));
    EXPECT_EQ(10, count);
    EXPECT_STREQ("hello back", text);
}

TEST(Socket, ReceivesWhatHasComeAndNothingOnceThePeerHasClosed)
{
    Connected pair([](Connection& peer, int) { peer.Write("abc"); });
    char text[16] = {};
    i32 count = 77;
    std::string all;
    while (all.size() < 3) {
        ASSERT_EQ(1, pair.socket.Recv(text, sizeof(text), &count, 0));
        all.append(text, static_cast<size_t>(count));
    }
    EXPECT_EQ("abc", all);
    for (int again = 0; again < 2; ++again) {
        count = 77;
        EXPECT_EQ(1, pair.socket.Recv(text, sizeof(text), &count, 0));
        EXPECT_EQ(0, count);
    }
    EXPECT_EQ(1, pair.socket.Recv(text, sizeof(text), nullptr, 0));
}

TEST(Socket, ReceivingFromAPeerThatResetFailsWithoutACount)
{
    Connected pair([](Connection& peer, int) {
        (void)peer.Read(1);
        peer.Reset();
    });
    ASSERT_EQ(1, pair.socket.Send("x", 1, nullptr, 0));
    char text[16] = {};
    i32 count = 77;
    EXPECT_EQ(-1, pair.socket.Recv(text, sizeof(text), &count, 0));
    EXPECT_EQ(0, count);
}

TEST(Socket, SendingToAPeerThatResetFailsWithoutACount)
{
    // Not before the connection stands: the connecting itself would fail.
    Connected pair([](Connection& peer, int) {
        (void)peer.Read(1);
        peer.Reset();
    });
    ASSERT_EQ(1, pair.socket.Send("x", 1, nullptr, 0));
    const std::string much(65536, 'x');
    i32 count = 77;
    EXPECT_TRUE(Eventually([&] {
        count = 77;
        return pair.socket.Send(much.data(), 65536, &count, 0) == -1;
    }));
    EXPECT_EQ(0, count);
}

TEST(Socket, ReceivingAllWaitsForEveryPiece)
{
    Connected pair([](Connection& peer, int) {
        for (const char* piece : {"0123", "456", "7", "89more"}) {
            peer.Write(piece);
            peer.Pause(20);
        }
    });
    char text[16] = {};
    i32 count = 77;
    EXPECT_EQ(1, pair.socket.RecvAll(text, 10, &count, 0));
    EXPECT_EQ(10, count);
    EXPECT_STREQ("0123456789", text);
    EXPECT_EQ(1, pair.socket.RecvAll(text, 4, nullptr, 0));
    EXPECT_STREQ("more456789", text);
}

TEST(Socket, ReceivingAllIsShortWhereThePeerClosed)
{
    Connected pair([](Connection& peer, int) { peer.Write(std::string(60, 'x')); });
    char bytes[100] = {};
    i32 count = 77;
    EXPECT_EQ(1, pair.socket.RecvAll(bytes, 100, &count, 0));
    EXPECT_EQ(60, count);
    EXPECT_EQ('x', bytes[59]);
    EXPECT_EQ(0, bytes[60]);
}

TEST(Socket, ReceivingAllCountsNothingWhenItFailsHalfWay)
{
    Scope scope;
    Connected pair([](Connection& peer, int) { peer.Write(std::string(100, 'x')); });
    int calls = 0;
    SetSocketFault([&calls](SocketOperation operation, int* length) {
        if (operation != SocketOperation::Receive)
            return false;
        *length = *length < 30 ? *length : 30;
        return ++calls == 3;
    });
    char bytes[100] = {};
    i32 count = 77;
    EXPECT_EQ(-1, pair.socket.RecvAll(bytes, 100, &count, 0));
    EXPECT_EQ(0, count);
    EXPECT_EQ('x', bytes[30]) << "the second piece came";
    EXPECT_EQ(-1, Socket(NoSuchFamily, 1, 0).RecvAll(bytes, 0, &count, 0));
}

TEST(Socket, ReceivingAllOfNothingDoesNotWait)
{
    Connected pair([](Connection& peer, int) { (void)peer.Read(1); });
    i32 count = 77;
    EXPECT_EQ(1, pair.socket.RecvAll(nullptr, 0, &count, 0));
    EXPECT_EQ(0, count);
    count = 77;
    EXPECT_EQ(1, pair.socket.RecvAll(nullptr, -5, &count, 0));
    EXPECT_EQ(0, count);
}

TEST(Socket, FlagsReachTheDevice)
{
    constexpr i32 Peek = 2;
    Connected pair([](Connection& peer, int) { peer.Write("ab"); });
    char text[3] = {};
    i32 count = 0;
    while (count < 2)
        ASSERT_EQ(1, pair.socket.Recv(text, 2, &count, Peek));
    EXPECT_STREQ("ab", text);
    EXPECT_EQ(1, pair.socket.RecvAll(text, 2, &count, 0)) << "a look takes nothing away";
    EXPECT_EQ(2, count);
}

TEST(Socket, ShuttingSendingDownLeavesReceivingOpen)
{
    Connected pair([](Connection& peer, int) { peer.Write(peer.ReadAll() + "!"); });
    ASSERT_EQ(1, pair.socket.Send("abc", 3, nullptr, 0));
    EXPECT_EQ(1, pair.socket.Shutdown(1));
    EXPECT_EQ(-1, pair.socket.Send("d", 1, nullptr, 0));
    char text[8] = {};
    i32 count = 0;
    EXPECT_EQ(1, pair.socket.RecvAll(text, 8, &count, 0));
    EXPECT_STREQ("abc!", text);
    EXPECT_EQ(-1, pair.socket.Shutdown(7));
}

TEST(Socket, ConnectingFailsWhereNobodyListens)
{
    u16 port = 0;
    {
        Socket listener(AF_INET, SOCK_STREAM, 0);
        port = ListenSomewhere(listener);
    }
    ASSERT_NE(0, port);
    Socket socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in place = OwnPlace(port);
    EXPECT_EQ(-1, socket.Connect(Plain(place), sizeof(place)));
    EXPECT_EQ(-1, Socket(AF_INET, SOCK_STREAM, 0).Connect(Plain(place), 3));
}

TEST(Socket, BindingATakenPlaceFails)
{
    Socket listener(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in place = OwnPlace(ListenSomewhere(listener));
    Socket second(AF_INET, SOCK_STREAM, 0);
    EXPECT_EQ(-1, second.Bind(Plain(place), sizeof(place)));
}

TEST(Socket, AcceptsOnTheCallingThread)
{
    Socket listener(AF_INET, SOCK_STREAM, 0);
    const u16 port = ListenSomewhere(listener);
    Connection client = Client(port);
    ASSERT_TRUE(client.IsOpen());
    sockaddr_in peer = {};
    i32 length = sizeof(peer);
    Socket* accepted = nullptr;
    ASSERT_EQ(1, listener.Accept(reinterpret_cast<sockaddr*>(&peer), &length, &accepted));
    ASSERT_NE(nullptr, accepted);
    EXPECT_EQ(AF_INET, peer.sin_family);
    EXPECT_EQ(16, length);
    EXPECT_NE(0, peer.sin_port);
    EXPECT_EQ(127u, peer.sin_addr.S_un.S_un_b.s_b1);
    EXPECT_EQ(1, accepted->Send("hello", 5, nullptr, 0));
    EXPECT_EQ("hello", client.ReadExactly(5));
    delete accepted;
    EXPECT_EQ("", client.Read(1)) << "the object owned the connection";

    client = Client(port);
    SOCKET handle = INVALID_SOCKET;
    EXPECT_EQ(1, listener.AcceptHandle(nullptr, nullptr, &handle));
    EXPECT_TRUE(IsLive(handle));
    EXPECT_EQ(0, closesocket(handle));
}

TEST(Socket, AcceptingFailsOnWhatDoesNotListen)
{
    Socket socket(AF_INET, SOCK_STREAM, 0);
    SOCKET handle = 7;
    EXPECT_EQ(-1, socket.AcceptHandle(nullptr, nullptr, &handle));
    EXPECT_EQ(INVALID_SOCKET, handle);
    Socket* accepted = &socket;
    EXPECT_EQ(-1, socket.Accept(nullptr, nullptr, &accepted));
    EXPECT_EQ(nullptr, accepted);
}

TEST(Socket, AConnectionWhoseObjectCannotBeMadeIsClosed)
{
    Scope scope;
    Socket listener(AF_INET, SOCK_STREAM, 0);
    Connection client = Client(ListenSomewhere(listener));
    ASSERT_TRUE(client.IsOpen());
    tavrix::testing::SetAllocationFault([](SIZE_T size) { return size == sizeof(Socket); });
    Socket* accepted = &listener;
    EXPECT_EQ(-1, listener.Accept(nullptr, nullptr, &accepted));
    EXPECT_EQ(nullptr, accepted);
    EXPECT_EQ("", client.Read(1));
}
