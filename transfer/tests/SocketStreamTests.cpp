// A connection as a stream, with calls that block. Asynchronous ones: SocketStreamAsyncTests.cpp.

#include "foundation/tests/StreamTesting.h"
#include "platform/testing/Testing.h"
#include "SocketCalls.h"
#include "SocketTesting.h"
#include "transfer/SocketStream.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>

using tavrix::platform::SocketOperation;
using tavrix::testing::Connection;
using tavrix::testing::OwnAddressNumber;
using tavrix::testing::Scope;
using tavrix::testing::SetSocketFault;
using tavrix::testing::WireServer;

namespace
{

const u32 Own = static_cast<u32>(OwnAddressNumber());

u8 OwnByte(int number)
{
    return static_cast<u8>(Own >> (24 - 8 * number));
}

/// Closed from the start: there is no such type of socket.
constexpr i32 NoSuchType = 99;

bool LetOptionsFail(SocketOperation operation, int*)
{
    return operation == SocketOperation::Option;
}

} // namespace

TEST(SocketStream, ReadsAndWritesOverTheWire)
{
    WireServer server(0, [](Connection& peer, int) { peer.Write(peer.ReadExactly(5) + " back"); });
    SocketStream stream(SOCK_STREAM);
    ASSERT_EQ(1, stream.Connect(Own, server.Port()));
    u32 count = 77;
    EXPECT_EQ(1, stream.Send("hel", 3, &count));
    EXPECT_EQ(3u, count);
    u32 length = 2;
    EXPECT_EQ(1, stream.Write("lo", &length));
    EXPECT_EQ(2u, length);
    std::string all;
    while (all.size() < 10) {
        const std::string more = ReadText(stream, 4);
        ASSERT_FALSE(more.empty());
        ASSERT_LE(more.size(), 4u);
        all += more;
    }
    EXPECT_EQ("hello back", all);
    char text[4];
    for (int again = 0; again < 2; ++again) {
        EXPECT_EQ(1, stream.Recv(text, 4, &count)) << "the peer has closed";
        EXPECT_EQ(0u, count);
    }
    EXPECT_EQ("", ReadText(stream, 4));
    EXPECT_EQ(1, stream.Recv(text, 4, nullptr));
}

TEST(SocketStream, WritingLeavesTheLengthAsGivenAlsoWhereLessWasSent)
{
    Scope scope;
    WireServer server(0, [](Connection& peer, int) { (void)peer.ReadAll(); });
    SocketStream stream(SOCK_STREAM);
    ASSERT_EQ(1, stream.Connect(Own, server.Port()));
    SetSocketFault([](SocketOperation operation, int* length) {
        if (operation == SocketOperation::Send)
            *length = 1;
        return false;
    });
    u32 length = 5;
    EXPECT_EQ(1, stream.Write("hello", &length));
    EXPECT_EQ(5u, length);
    u32 sent = 77;
    EXPECT_EQ(1, stream.Send("hello", 5, &sent));
    EXPECT_EQ(1u, sent);
    SetSocketFault([](SocketOperation operation, int*) {
        return operation == SocketOperation::Send || operation == SocketOperation::Receive;
    });
    EXPECT_EQ(-1, stream.Write("hello", &length));
    EXPECT_EQ(5u, length);
    EXPECT_EQ(-1, stream.Send("hello", 5, &sent));
    EXPECT_EQ(0u, sent);
    char text[4];
    length = 4;
    EXPECT_EQ(-1, stream.Read(text, &length));
    EXPECT_EQ(0u, length);
}

TEST(SocketStream, HasNoNameNoSizeAndNoPosition)
{
    WireServer server(0, [](Connection& peer, int) { (void)peer.ReadAll(); });
    SocketStream open(SOCK_STREAM);
    ASSERT_EQ(1, open.Connect(Own, server.Port()));
    SocketStream closed(NoSuchType);
    for (SocketStream* stream : {&open, &closed}) {
        WCHAR name[4] = {u'x', 0};
        u64 number = 7;
        const i64 offset = 0;
        EXPECT_EQ(-1, stream->GetName(name, 4));
        EXPECT_EQ(u'x', name[0]);
        EXPECT_EQ(-1, stream->GetSize(&number));
        EXPECT_EQ(-1, stream->Seek(&offset, &number, 1));
        EXPECT_EQ(7u, number);
    }
}

TEST(SocketStream, WhenClosedOperationsFail)
{
    for (const i32 type : {SOCK_STREAM, NoSuchType}) {
        SocketStream stream(type);
        EXPECT_EQ(1, stream.Close());
        EXPECT_EQ(1, stream.Close()) << "as often as one likes";
        char text[4];
        u32 count = 7;
        EXPECT_EQ(-1, stream.SetSendTimeout(1));
        EXPECT_EQ(-1, stream.SetReceiveTimeout(1));
        EXPECT_EQ(-1, stream.GetSendTimeout());
        EXPECT_EQ(-1, stream.GetReceiveTimeout());
        EXPECT_EQ(-1, stream.GetLocalAddress(&count));
        u8 byte = 7;
        EXPECT_EQ(-1, stream.GetLocalAddressBytes(&byte, &byte, &byte, &byte));
        hostent* host = nullptr;
        EXPECT_EQ(-1, stream.ResolveHost(TEXT("localhost"), &host));
        EXPECT_EQ(nullptr, host);
        EXPECT_EQ(-1, stream.Bind(Own, 0));
        EXPECT_EQ(-1, stream.Listen(1));
        EXPECT_EQ(-1, stream.Connect(Own, 1));
        EXPECT_EQ(-1, stream.Send("x", 1, &count));
        EXPECT_EQ(0u, count);
        count = 7;
        EXPECT_EQ(-1, stream.Recv(text, 4, &count));
        EXPECT_EQ(0u, count);
        SocketStream* accepted = &stream;
        EXPECT_EQ(-1, stream.Accept(nullptr, &accepted));
        EXPECT_EQ(nullptr, accepted);
        EXPECT_EQ(-1, stream.IsCompleted(0)) << "not asynchronous";
    }
}

TEST(SocketStream, WhatIsMissingIsToldBeforeThatItIsClosed)
{
    for (const i32 type : {SOCK_STREAM, NoSuchType}) {
        SocketStream stream(type);
        u8 byte = 7;
        hostent* host = nullptr;
        EXPECT_EQ(-4, stream.GetLocalAddress(nullptr));
        EXPECT_EQ(-4, stream.GetLocalAddressBytes(nullptr, &byte, &byte, &byte));
        EXPECT_EQ(-4, stream.GetLocalAddressBytes(&byte, nullptr, &byte, &byte));
        EXPECT_EQ(-4, stream.GetLocalAddressBytes(&byte, &byte, nullptr, &byte));
        EXPECT_EQ(-4, stream.GetLocalAddressBytes(&byte, &byte, &byte, nullptr));
        EXPECT_EQ(7, byte);
        EXPECT_EQ(-4, stream.ResolveHost(TEXT("localhost"), nullptr));
        EXPECT_EQ(-4, stream.ResolveHost(nullptr, &host));
        EXPECT_EQ(-4, stream.Accept(nullptr, nullptr));
    }
}

TEST(SocketStream, TimeOutsGoToTheDeviceInMilliseconds)
{
    SocketCalls calls;
    SocketStream stream(SOCK_STREAM);
    EXPECT_EQ(-1, stream.GetSendTimeout());
    EXPECT_EQ(-1, stream.GetReceiveTimeout());
    EXPECT_EQ(1, stream.SetSendTimeout(7));
    EXPECT_EQ(7, stream.GetSendTimeout());
    EXPECT_EQ(-1, stream.GetReceiveTimeout());
    EXPECT_EQ(1, stream.SetReceiveTimeout(300));
    EXPECT_EQ(300, stream.GetReceiveTimeout());
    EXPECT_EQ(7, stream.GetSendTimeout());
    // 7000 is 0x1B58, 300000 is 0x493E0.
    EXPECT_EQ("setsockopt 65535 4101 581b0000; setsockopt 65535 4102 e0930400",
              calls.Entries("setsockopt"));
}

TEST(SocketStream, RefusedTimeOutsAreForgottenAndOnlyReceivingTells)
{
    Scope scope;
    SocketStream stream(SOCK_STREAM);
    SetSocketFault(LetOptionsFail);
    EXPECT_EQ(1, stream.SetSendTimeout(7)) << "meant: sending does not tell";
    EXPECT_EQ(-1, stream.GetSendTimeout());
    EXPECT_EQ(-1, stream.SetReceiveTimeout(7));
    EXPECT_EQ(-1, stream.GetReceiveTimeout());
    SetSocketFault(nullptr);
    ASSERT_EQ(1, stream.SetSendTimeout(3));
    ASSERT_EQ(1, stream.SetReceiveTimeout(4));
    SetSocketFault(LetOptionsFail);
    EXPECT_EQ(1, stream.SetSendTimeout(7));
    EXPECT_EQ(-1, stream.SetReceiveTimeout(7));
    EXPECT_EQ(3, stream.GetSendTimeout());
    EXPECT_EQ(4, stream.GetReceiveTimeout());
}

TEST(SocketStream, AReceiveTimeOutEndsTheWaiting)
{
    WireServer server(0, [](Connection& peer, int) { (void)peer.ReadAll(); });
    SocketStream stream(SOCK_STREAM);
    ASSERT_EQ(1, stream.Connect(Own, server.Port()));
    ASSERT_EQ(1, stream.SetReceiveTimeout(1));
    const DWORD start = GetTickCount();
    char text[4];
    u32 count = 7;
    EXPECT_EQ(-1, stream.Recv(text, 4, &count));
    EXPECT_EQ(0u, count);
    EXPECT_GE(GetTickCount() - start, 990u);
}

TEST(SocketStream, TellsItsOwnAddress)
{
    Scope scope;
    SocketStream stream(SOCK_STREAM);
    ASSERT_EQ(1, stream.Bind(Own, 0));
    u32 address = 0;
    EXPECT_EQ(1, stream.GetLocalAddress(&address));
    EXPECT_EQ(Own, address);
    u8 bytes[4] = {};
    EXPECT_EQ(1, stream.GetLocalAddressBytes(&bytes[0], &bytes[1], &bytes[2], &bytes[3]));
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(OwnByte(i), bytes[i]) << i;
    SetSocketFault(
        [](SocketOperation operation, int*) { return operation == SocketOperation::Name; });
    EXPECT_EQ(-1, stream.GetLocalAddress(&address));
    EXPECT_EQ(-1, stream.GetLocalAddressBytes(&bytes[0], &bytes[1], &bytes[2], &bytes[3]));
}

TEST(SocketStream, ResolvesNamesOfHosts)
{
    Scope scope;
    SocketStream stream(SOCK_STREAM);
    hostent* host = nullptr;
    for (const WCHAR* name : {TEXT("localhost"), TEXT("127.0.0.1")}) {
        ASSERT_EQ(1, stream.ResolveHost(name, &host));
        ASSERT_NE(nullptr, host);
        EXPECT_EQ(AF_INET, host->h_addrtype);
        ASSERT_EQ(4, host->h_length);
        EXPECT_EQ(0, std::memcmp(host->h_addr_list[0], "\x7F\0\0\x01", 4));
    }
    EXPECT_EQ(-1, stream.ResolveHost(TEXT("localhost:80"), &host));
    EXPECT_EQ(nullptr, host);
    EXPECT_EQ(-1, stream.ResolveHost(TEXT(""), &host));
    // Longer than any name, and of signs that the code page lacks.
    EXPECT_EQ(-1, stream.ResolveHost(std::u16string(5000, u'a').c_str(), &host));
    EXPECT_EQ(-1, stream.ResolveHost(TEXT("\u05D0"), &host));
    SetSocketFault(
        [](SocketOperation operation, int*) { return operation == SocketOperation::Resolve; });
    host = reinterpret_cast<hostent*>(&scope);
    EXPECT_EQ(-1, stream.ResolveHost(TEXT("localhost"), &host));
    EXPECT_EQ(nullptr, host);
}

TEST(SocketStream, AddressesReachTheDeviceInNetworkOrder)
{
    SocketCalls calls;
    SocketStream bound(SOCK_STREAM);
    EXPECT_EQ(1, bound.Bind(0x7F000001, 0));
    // Nobody listens there; what counts is what is asked for.
    SocketStream first(SOCK_STREAM);
    EXPECT_EQ(-1, first.Connect(0x7F000001, 2));
    SocketStream second(SOCK_STREAM);
    EXPECT_EQ(-1, second.Connect(127, 0, 0, 1, 0x0102));
    EXPECT_EQ("bind 16 020000007f0000010000000000000000", calls.Entries("bind"));
    EXPECT_EQ("connect 16 020000027f0000010000000000000000; "
              "connect 16 020001027f0000010000000000000000",
              calls.Entries("connect"));
}

TEST(SocketStream, FourNumbersConnectAsOneDoes)
{
    WireServer server(0, [](Connection& peer, int) { peer.Write("x"); });
    SocketStream stream(SOCK_STREAM);
    ASSERT_EQ(1, stream.Connect(OwnByte(0), OwnByte(1), OwnByte(2), OwnByte(3), server.Port()));
    EXPECT_EQ("x", ReadText(stream, 1));
}

TEST(SocketStream, AcceptsOnTheCallingThread)
{
    SocketCalls calls;
    u16 port = 0;
    SocketStream listener(MakeListener(port));
    Connection client = Client(port);
    sockaddr_in peer = {};
    SocketStream* accepted = nullptr;
    ASSERT_EQ(1, listener.Accept(&peer, &accepted));
    EXPECT_EQ(127u, peer.sin_addr.S_un.S_un_b.s_b1);
    client.Write("hello");
    EXPECT_EQ("hello", ReadText(*accepted, 5));
    delete accepted;
    EXPECT_EQ("", client.Read(1)) << "the object owned the connection";
    client = Client(port);
    ASSERT_EQ(1, listener.Accept(nullptr, &accepted));
    delete accepted;
    EXPECT_EQ("accept address 16; accept null", calls.Entries("accept"));
}

TEST(SocketStream, AcceptingDoesNotNoticeAnObjectThatCannotBeMade)
{
    Scope scope;
    SocketCalls calls;
    u16 port = 0;
    SocketStream listener(MakeListener(port));
    Connection client = Client(port);
    tavrix::testing::SetAllocationFault([](SIZE_T size) { return size == sizeof(SocketStream); });
    SocketStream* accepted = &listener;
    EXPECT_EQ(1, listener.Accept(nullptr, &accepted));
    EXPECT_EQ(nullptr, accepted);
    EXPECT_TRUE(IsLive(calls.accepted)) << "meant: the connection stays open";
    EXPECT_EQ(0, closesocket(calls.accepted));
}

TEST(SocketStream, CloseEndsTheConnectionAndSucceeds)
{
    std::atomic<bool> ended{false};
    WireServer server(0, [&ended](Connection& peer, int) {
        (void)peer.ReadAll();
        ended = true;
    });
    const NothingRemains nothing;
    {
        SocketStream stream(SOCK_STREAM);
        ASSERT_EQ(1, stream.Connect(Own, server.Port()));
        EXPECT_EQ(1, stream.Close());
        EXPECT_TRUE(Eventually([&ended] { return ended.load(); }));
        EXPECT_EQ(-1, stream.Connect(Own, server.Port())) << "it is not opened again";
    }
    EXPECT_TRUE(nothing.IsTrue());
}
