// Sockets when memory, threads and the device's own calls fail at each place in turn.

#include "platform/testing/Faults.h"
#include "SocketTesting.h"
#include "transfer/IrdaSocket.h"
#include "transfer/SocketStream.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

using tavrix::testing::Connection;
using tavrix::testing::FaultKind;
using tavrix::testing::ForEveryFault;
using tavrix::testing::Scope;
using tavrix::testing::WireServer;

namespace
{

constexpr FaultKind Kinds[] = {FaultKind::Allocation, FaultKind::Thread, FaultKind::Socket};

/// A link between two sockets, an accept on a thread of its own included. True when all went well.
bool TalkOverInfrared()
{
    constexpr char service[ServiceNameSize] = "OBEX";
    constexpr u8 id[4] = {0, 0, 0, 1};
    IrdaSocket listener;
    if (listener.Bind(service) < 0 || listener.Listen() < 0)
        return false;
    SOCKET handle = 7;
    if (listener.AcceptAsync(&handle) < 0) {
        EXPECT_EQ(INVALID_SOCKET, handle);
        return false;
    }
    IrdaSocket client;
    if (client.Connect(id, service) < 0)
        return false; // with the accept still waiting
    EXPECT_TRUE(Eventually([&listener] { return listener.IsCompleted(1) == 1; }));
    if (listener.GetAcceptResult() < 0) {
        EXPECT_EQ(INVALID_SOCKET, handle);
        return false;
    }
    const std::unique_ptr<IrdaSocket> accepted(new (std::nothrow) IrdaSocket(handle));
    if (accepted == nullptr) {
        (void)closesocket(handle);
        return false;
    }
    WCHAR name[32] = {u'?', 0};
    if (accepted->GetPeerName(name, 32) < 1) {
        EXPECT_EQ(u'?', name[0]);
        return false;
    }
    i32 count = 77;
    if (client.Send("hello", 5, &count, 0) < 0) {
        EXPECT_EQ(0, count);
        return false;
    }
    char text[8] = {};
    const i32 result = accepted->RecvAll(text, 5, &count, 0);
    EXPECT_EQ(result == 1 ? 5 : 0, count);
    return result == 1;
}

/// A listener that accepts `kind`-wise, for a client that is the test's.
bool AcceptAStream(bool asynchronous)
{
    u16 port = 0;
    const SOCKET handle = socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in place = OwnPlace(0);
    SocketStream listener(handle);
    if (handle == INVALID_SOCKET || bind(handle, Plain(place), sizeof(place)) != 0 ||
        listener.Listen(2) < 0 || (port = PortOf(handle)) == 0)
        return false;
    if (asynchronous) {
        EXPECT_EQ(1, listener.EnableAsync());
    }
    const Connection client = Client(port);
    SocketStream* accepted = &listener;
    i32 result = listener.Accept(nullptr, &accepted);
    if (result == 1 && asynchronous) {
        EXPECT_TRUE(Eventually([&listener] { return listener.IsCompleted(1) != 0; }));
        result = listener.GetResult();
    }
    EXPECT_EQ(result == 1, accepted != nullptr) << result;
    EXPECT_TRUE(result == 1 || result == -1 || result == -2);
    delete accepted;
    return result == 1;
}

/// A question and its answer by calls of either form.
bool AskAServer(u16 port, bool asynchronous)
{
    SocketStream stream(SOCK_STREAM);
    if (stream.Connect(static_cast<u32>(tavrix::testing::OwnAddressNumber()), port) < 0)
        return false;
    if (asynchronous) {
        EXPECT_EQ(1, stream.EnableAsync());
    }
    const auto end = [&](i32 result) {
        if (result < 0 || !asynchronous)
            return result;
        EXPECT_TRUE(Eventually([&stream] { return stream.IsCompleted(1) != 0; }));
        return stream.GetResult();
    };
    u32 count = 77;
    if (end(stream.Send("?", 1, &count)) < 0) {
        EXPECT_EQ(0u, count);
        return false;
    }
    EXPECT_EQ(1u, count);
    char text[2] = {};
    count = 77;
    const i32 result = end(stream.Recv(text, 1, &count));
    EXPECT_EQ(result == 1 ? 1u : 0u, count);
    EXPECT_STREQ(result == 1 ? "!" : "", text);
    return result == 1;
}

} // namespace

TEST(SocketFaults, AnInfraredLinkLeavesNothingBehindWhereverItBreaks)
{
    const Scope scope;
    setenv("TAVRIX_IR", ("tcp:" + tavrix::testing::OwnAddress() + ":650").c_str(), 1);
    for (const FaultKind kind : Kinds) {
        SCOPED_TRACE(static_cast<int>(kind));
        int whole = 0;
        int broken = 0;
        ForEveryFault(kind, [&] { ++(TalkOverInfrared() ? whole : broken); });
        EXPECT_GT(whole, 0);
        EXPECT_GT(broken, 0);
    }
    unsetenv("TAVRIX_IR");
}

TEST(SocketFaults, AcceptingStreamsLeavesNothingBehind)
{
    const Scope scope;
    for (const FaultKind kind : Kinds) {
        SCOPED_TRACE(static_cast<int>(kind));
        ForEveryFault(kind, [] { (void)AcceptAStream(true); });
    }
    // On the calling thread it may leave a connection open that has no object, meant: only the
    // device's own calls fail.
    const unsigned faults = ForEveryFault(FaultKind::Socket, [] { (void)AcceptAStream(false); });
    EXPECT_GE(faults, 4u);
}

TEST(SocketFaults, ACallOfAStreamFailsWholeOrGoesWell)
{
    const Scope scope;
    WireServer server(0, [](Connection& peer, int) {
        if (!peer.Read(1).empty())
            peer.Write("!");
    });
    for (const FaultKind kind : {FaultKind::Thread, FaultKind::Socket})
        ForEveryFault(kind, [&] { (void)AskAServer(server.Port(), true); });
    const unsigned faults =
        ForEveryFault(FaultKind::Socket, [&] { (void)AskAServer(server.Port(), false); });
    EXPECT_GE(faults, 4u);
}
