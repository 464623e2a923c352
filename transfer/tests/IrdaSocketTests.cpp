// Sockets of the infrared family, over the transports that stand for it here.

#include "platform/testing/Testing.h"
#include "SocketCalls.h"
#include "SocketTesting.h"
#include "transfer/IrdaSocket.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

using tavrix::platform::SocketOperation;
using tavrix::testing::Connection;
using tavrix::testing::ConnectTo;
using tavrix::testing::ConnectToPath;
using tavrix::testing::OwnAddress;
using tavrix::testing::Scope;
using tavrix::testing::SetSocketFault;

namespace
{

constexpr char Service[ServiceNameSize] = "OBEX";
constexpr u8 AnyId[4] = {0, 0, 0, 1};

/// The infrared link is a port of this process.
struct OverTcp {
    OverTcp() { setenv("TAVRIX_IR", ("tcp:" + OwnAddress() + ":650").c_str(), 1); }
    ~OverTcp() { unsetenv("TAVRIX_IR"); }
    Connection Client() const { return ConnectTo(OwnAddress(), 650); }
};

/// A path.
struct OverPath {
    OverPath() : path(tavrix::testing::FreshFolder() + "/infrared")
    {
        setenv("TAVRIX_IR", ("unix:" + path).c_str(), 1);
    }
    ~OverPath() { unsetenv("TAVRIX_IR"); }
    Connection Client() const { return ConnectToPath(path); }

    const std::string path;
};

template <class Link>
class IrdaSocketOver : public ::testing::Test
{
protected:
    Link link;
};
using Links = ::testing::Types<OverTcp, OverPath>;
TYPED_TEST_SUITE(IrdaSocketOver, Links);

/// A device that is asked for, as the tests make it up.
struct MadeUpDevice {
    u32 count = 1;
    u8 id[4] = {0xDE, 0xAD, 0xBE, 0xEF};
    char name[22] = {};
    u8 reserved[2] = {'X', 'Y'};
};

void MakeUp(SocketCalls& calls, const MadeUpDevice& device)
{
    calls.devices = [device](char* value, int* length) {
        static_assert(sizeof(device) == 32);
        EXPECT_EQ(32, *length);
        std::memcpy(value, &device, sizeof(device));
        return 0;
    };
}

} // namespace

TYPED_TEST(IrdaSocketOver, AServiceIsReachedByItsName)
{
    IrdaSocket listener;
    ASSERT_EQ(1, listener.Bind(Service));
    ASSERT_EQ(1, listener.Listen());
    IrdaSocket client;
    ASSERT_EQ(1, client.Connect(AnyId, Service));
    IrdaSocket* accepted = nullptr;
    ASSERT_EQ(1, listener.Accept(&accepted));
    ASSERT_NE(nullptr, accepted);
    EXPECT_EQ(1, client.Send("hello", 5, nullptr, 0));
    char text[8] = {};
    i32 got = 0;
    EXPECT_EQ(1, accepted->RecvAll(text, 5, &got, 0));
    EXPECT_STREQ("hello", text);
    delete accepted;
    EXPECT_EQ(1, client.Recv(text, 5, &got, 0));
    EXPECT_EQ(0, got);
}

TYPED_TEST(IrdaSocketOver, AForeignClientReachesTheServiceToo)
{
    const NothingRemains nothing;
    {
        IrdaSocket listener;
        ASSERT_EQ(1, listener.Bind(Service));
        ASSERT_EQ(1, listener.Listen());
        SOCKET handle = 7;
        ASSERT_EQ(1, listener.AcceptAsync(&handle));
        EXPECT_EQ(0, listener.IsCompleted(1));
        Connection client = this->link.Client();
        ASSERT_TRUE(Eventually([&listener] { return listener.IsCompleted(1) == 1; }));
        EXPECT_EQ(1, listener.GetAcceptResult());
        IrdaSocket accepted(handle);
        EXPECT_EQ(1, accepted.Send("hello", 5, nullptr, 0));
        EXPECT_EQ("hello", client.ReadExactly(5));
    }
    EXPECT_TRUE(nothing.IsTrue());
}

TYPED_TEST(IrdaSocketOver, NobodyListensUntilTheServiceIsThere)
{
    IrdaSocket early;
    EXPECT_EQ(-1, early.Connect(AnyId, Service));
    {
        IrdaSocket listener;
        ASSERT_EQ(1, listener.Bind(Service));
        ASSERT_EQ(1, listener.Listen());
        IrdaSocket second;
        EXPECT_EQ(-1, second.Bind(Service)) << "the service is taken";
    }
    IrdaSocket late;
    EXPECT_EQ(-1, late.Connect(AnyId, Service));
    IrdaSocket again;
    EXPECT_EQ(1, again.Bind(Service));
}

TYPED_TEST(IrdaSocketOver, AWaitingAcceptIsGivenUpAndTheServiceGoesOn)
{
    const NothingRemains nothing;
    {
        IrdaSocket listener;
        ASSERT_EQ(1, listener.Bind(Service));
        ASSERT_EQ(1, listener.Listen());
        SOCKET first = 7;
        SOCKET second = 7;
        ASSERT_EQ(1, listener.AcceptAsync(&first));
        ASSERT_EQ(1, listener.AcceptAsync(&second));
        const Connection client = this->link.Client();
        ASSERT_TRUE(Eventually([&listener] { return listener.IsCompleted(1) == 1; }));
        EXPECT_EQ(INVALID_SOCKET, first);
        EXPECT_EQ(0, closesocket(second));
        ASSERT_EQ(1, listener.AcceptAsync(&first));
        EXPECT_EQ(-1, listener.Close());
        EXPECT_FALSE(this->link.Client().IsOpen());
    }
    EXPECT_TRUE(nothing.IsTrue());
}

TYPED_TEST(IrdaSocketOver, NoDeviceIsInRangeWithoutAConnection)
{
    IrdaSocket socket;
    u8 id[4] = {1, 2, 3, 4};
    WCHAR name[4] = {u'a', u'b', u'c', 0};
    EXPECT_EQ(0, socket.GetFirstDevice(id, name, 4));
    EXPECT_EQ(0, std::memcmp(id, "\1\2\3\4", 4));
    EXPECT_EQ(std::u16string(u"abc"), name);
    EXPECT_EQ(0, socket.GetPeerName(name, 4));
    EXPECT_EQ(std::u16string(u"abc"), name);
}

TEST(IrdaSocket, ThePeerIsTheDeviceInRange)
{
    const OverTcp link;
    IrdaSocket listener;
    ASSERT_EQ(1, listener.Bind(Service));
    ASSERT_EQ(1, listener.Listen());
    IrdaSocket client;
    ASSERT_EQ(1, client.Connect(AnyId, Service));
    WCHAR name[64] = {};
    EXPECT_EQ(1, client.GetPeerName(name, 64));
    EXPECT_EQ(tavrix::testing::Wide(OwnAddress()), name);
    u8 id[4] = {};
    WCHAR cut[4] = {u'x', u'x', u'x', u'x'};
    EXPECT_EQ(1, client.GetFirstDevice(id, cut, 3));
    EXPECT_EQ(std::u16string(u"12"), cut);
    EXPECT_EQ(u'x', cut[3]);
    EXPECT_NE(0, std::memcmp(id, "\0\0\0\0", 4));
}

TEST(IrdaSocket, APeerOnAPathHasNoName)
{
    const OverPath link;
    IrdaSocket listener;
    ASSERT_EQ(1, listener.Bind(Service));
    ASSERT_EQ(1, listener.Listen());
    const Connection client = link.Client();
    IrdaSocket* accepted = nullptr;
    ASSERT_EQ(1, listener.Accept(&accepted));
    WCHAR name[4] = {u'a', u'b', u'c', 0};
    EXPECT_EQ(1, accepted->GetPeerName(name, 4));
    EXPECT_EQ(std::u16string(), name);
    delete accepted;
}

TEST(IrdaSocket, WithACapacityOf1OnlyTheTerminatorIsWritten)
{
    SocketCalls calls;
    MadeUpDevice device;
    std::strcpy(device.name, "abc");
    MakeUp(calls, device);
    IrdaSocket socket;
    u8 id[4] = {};
    WCHAR name[3] = {u'x', u'y', u'z'};
    EXPECT_EQ(1, socket.GetFirstDevice(id, name, 1));
    EXPECT_EQ(0, name[0]);
    EXPECT_EQ(u'y', name[1]);
    EXPECT_EQ(0, std::memcmp(id, "\xDE\xAD\xBE\xEF", 4));
    EXPECT_EQ("getsockopt 255 16 32", calls.Entries("getsockopt"));
}

TEST(IrdaSocket, ANameIsWidenedByteByByte)
{
    SocketCalls calls;
    MadeUpDevice device;
    std::strcpy(device.name, "a\x80\xFFz");
    MakeUp(calls, device);
    IrdaSocket socket;
    WCHAR name[8] = {};
    EXPECT_EQ(1, socket.GetPeerName(name, 8));
    const WCHAR expected[] = {u'a', 0x80, 0xFF, u'z', 0};
    EXPECT_EQ(std::u16string(expected), name);
    EXPECT_EQ(1, socket.GetPeerName(name, 5)) << "just room enough";
    EXPECT_EQ(std::u16string(expected), name);
    EXPECT_EQ(1, socket.GetPeerName(name, 4));
    EXPECT_EQ(std::u16string(expected, 3), name);
}

TEST(IrdaSocket, ANameWithoutAZeroEndsWithItsField)
{
    SocketCalls calls;
    MadeUpDevice device;
    std::memset(device.name, 'n', sizeof(device.name));
    MakeUp(calls, device);
    IrdaSocket socket;
    WCHAR name[64] = {};
    EXPECT_EQ(1, socket.GetPeerName(name, 64));
    EXPECT_EQ(std::u16string(22, u'n'), name);
    EXPECT_EQ(1, socket.GetPeerName(name, 22));
    EXPECT_EQ(std::u16string(21, u'n'), name);
}

TEST(IrdaSocket, AddressesHave32Bytes)
{
    SocketCalls calls;
    const char filled[ServiceNameSize + 1] = "ABCDEFGHIJKLMNOPQRSTUVWXY"; // no zero within 25 bytes
    IrdaSocket socket;
    (void)socket.Bind(Service);
    EXPECT_EQ("bind 32 "
              "1600" // family
              "00000000"
              "4f424558" // the name
              "000000000000000000000000000000000000000000"
              "00",
              calls.Entries("bind"));
    const u8 id[4] = {0xA1, 0xB2, 0xC3, 0xD4};
    IrdaSocket client;
    (void)client.Connect(id, filled);
    EXPECT_EQ("connect 32 "
              "1600"
              "a1b2c3d4"
              "4142434445464748494a4b4c4d4e4f50515253545556575859"
              "00",
              calls.Entries("connect"));
}

TEST(IrdaSocket, AllOfTheServicesNameIsCopied)
{
    SocketCalls calls;
    char name[ServiceNameSize] = "OB";
    name[24] = 'z'; // what is behind the first zero goes along
    IrdaSocket socket;
    (void)socket.Bind(name);
    EXPECT_EQ("bind 32 1600000000004f42" + std::string(44, '0') + "7a00", calls.Entries("bind"));
}

TEST(IrdaSocket, ListensWithABacklogOf2)
{
    const OverTcp link;
    SocketCalls calls;
    IrdaSocket socket;
    ASSERT_EQ(1, socket.Bind(Service));
    EXPECT_EQ(1, socket.Listen());
    EXPECT_EQ("listen 2", calls.Entries("listen"));
}

TEST(IrdaSocket, AcceptsWithoutAnAddress)
{
    const OverTcp link;
    SocketCalls calls;
    IrdaSocket socket;
    ASSERT_EQ(1, socket.Bind(Service));
    ASSERT_EQ(1, socket.Listen());
    const Connection first = link.Client();
    const Connection second = link.Client();
    IrdaSocket* accepted = nullptr;
    EXPECT_EQ(1, socket.Accept(&accepted));
    delete accepted;
    SOCKET handle = INVALID_SOCKET;
    ASSERT_EQ(1, socket.AcceptAsync(&handle));
    EXPECT_TRUE(Eventually([&socket] { return socket.IsCompleted(1) == 1; }));
    EXPECT_EQ(0, closesocket(handle));
    EXPECT_EQ("accept null; accept null", calls.Entries("accept"));
}

TEST(IrdaSocket, AConnectionWhoseObjectCannotBeMadeIsClosed)
{
    const Scope scope;
    const OverTcp link;
    IrdaSocket socket;
    ASSERT_EQ(1, socket.Bind(Service));
    ASSERT_EQ(1, socket.Listen());
    Connection client = link.Client();
    tavrix::testing::SetAllocationFault([](SIZE_T size) { return size == sizeof(IrdaSocket); });
    IrdaSocket* accepted = &socket;
    EXPECT_EQ(-1, socket.Accept(&accepted));
    EXPECT_EQ(nullptr, accepted);
    EXPECT_EQ("", client.Read(1));
}

TEST(IrdaSocket, WhatIsMissingIsToldBeforeThatItIsClosed)
{
    u8 id[4] = {};
    WCHAR name[4] = {};
    IrdaSocket open;
    IrdaSocket closed;
    (void)closed.Close();
    for (IrdaSocket* socket : {&open, &closed}) {
        EXPECT_EQ(-4, socket->Bind(nullptr));
        EXPECT_EQ(-4, socket->Connect(nullptr, Service));
        EXPECT_EQ(-4, socket->Connect(AnyId, nullptr));
        EXPECT_EQ(-4, socket->Accept(nullptr));
        EXPECT_EQ(-4, socket->AcceptAsync(nullptr));
        EXPECT_EQ(-4, socket->GetFirstDevice(nullptr, name, 4));
        EXPECT_EQ(-4, socket->GetFirstDevice(id, nullptr, 4));
        EXPECT_EQ(-4, socket->GetFirstDevice(id, name, 0));
        EXPECT_EQ(-4, socket->GetPeerName(nullptr, 4));
        EXPECT_EQ(-4, socket->GetPeerName(name, 0));
    }
}

TEST(IrdaSocket, WhenClosedOperationsFail)
{
    IrdaSocket socket(INVALID_SOCKET);
    u8 id[4] = {};
    WCHAR name[4] = {u'a', 0};
    SOCKET handle = 7;
    IrdaSocket* accepted = &socket;
    EXPECT_EQ(-1, socket.Bind(Service));
    EXPECT_EQ(-1, socket.Connect(AnyId, Service));
    EXPECT_EQ(-1, socket.Listen());
    EXPECT_EQ(-1, socket.Accept(&accepted));
    EXPECT_EQ(nullptr, accepted);
    EXPECT_EQ(-1, socket.AcceptAsync(&handle));
    EXPECT_EQ(INVALID_SOCKET, handle);
    EXPECT_EQ(-1, socket.GetFirstDevice(id, name, 4));
    EXPECT_EQ(-1, socket.GetPeerName(name, 4));
    EXPECT_EQ(u'a', name[0]);
}

TEST(IrdaSocket, AFailingQuestionForDevicesIsPassedOn)
{
    const Scope scope;
    IrdaSocket socket;
    SetSocketFault(
        [](SocketOperation operation, int*) { return operation == SocketOperation::Option; });
    u8 id[4] = {1, 2, 3, 4};
    WCHAR name[4] = {u'a', 0};
    EXPECT_EQ(-1, socket.GetFirstDevice(id, name, 4));
    EXPECT_EQ(-1, socket.GetPeerName(name, 4));
    EXPECT_EQ(u'a', name[0]);
    EXPECT_EQ(1, id[0]);
    // What is no infrared socket cannot tell either.
    IrdaSocket foreign(::socket(AF_INET, SOCK_STREAM, 0));
    SetSocketFault(nullptr);
    EXPECT_EQ(-1, foreign.GetPeerName(name, 4));
}
