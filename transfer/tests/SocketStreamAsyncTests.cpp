// Calls of a stream on threads of their own, and giving them up in every state.

#include "platform/testing/Testing.h"
#include "SocketCalls.h"
#include "SocketTesting.h"
#include "transfer/SocketStream.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

using tavrix::platform::SocketOperation;
using tavrix::testing::Connection;
using tavrix::testing::OwnAddressNumber;
using tavrix::testing::Scope;
using tavrix::testing::SetSocketFault;
using tavrix::testing::WireServer;

namespace
{

const u32 Own = static_cast<u32>(OwnAddressNumber());

bool Ends(SocketStream& stream)
{
    return Eventually([&stream] { return stream.IsCompleted(0) != 0; });
}

/// Asynchronous and connected to a peer that the test scripts.
struct Connected {
    explicit Connected(WireServer::Serve serve) : server(0, std::move(serve)), stream(SOCK_STREAM)
    {
        EXPECT_EQ(1, stream.Connect(Own, server.Port()));
        EXPECT_EQ(1, stream.EnableAsync());
    }

    WireServer server;
    SocketStream stream;
};

/// Asynchronous and listening.
struct Listening {
    Listening() : stream(MakeListener(port)) { EXPECT_EQ(1, stream.EnableAsync()); }

    u16 port = 0;
    SocketStream stream;
};

/// What ends before the call in whose way it is gives it up, but after that call looked.
void FinishLate(SocketCalls& calls, const std::function<void()>& finish)
{
    calls.beforeTerminate = [finish](HANDLE thread) {
        finish();
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, INFINITE));
    };
}

void StaySilent(Connection& peer, int)
{
    (void)peer.ReadAll();
}

} // namespace

TEST(SocketStreamAsync, ReceivingReturnsAtOnceAndTellsItsEnd)
{
    std::atomic<bool> go{false};
    Connected pair([&go](Connection& peer, int) {
        EXPECT_TRUE(Eventually([&go] { return go.load(); }));
        peer.Write("hello");
        (void)peer.ReadAll();
    });
    char text[8] = {};
    u32 got = 77;
    ASSERT_EQ(1, pair.stream.Recv(text, 7, &got));
    EXPECT_EQ(0u, got);
    EXPECT_EQ(0, pair.stream.IsCompleted(0));
    EXPECT_EQ(0, pair.stream.IsCompleted(1));
    go = true;
    ASSERT_TRUE(Ends(pair.stream));
    EXPECT_EQ(1, pair.stream.IsCompleted(0)) << "a look collects nothing";
    EXPECT_EQ(1, pair.stream.GetResult());
    EXPECT_STREQ("hello", text);
    EXPECT_EQ(5u, got);
    EXPECT_EQ(1, pair.stream.IsCompleted(1));
    EXPECT_EQ(0, pair.stream.IsCompleted(1));
    EXPECT_EQ(1, pair.stream.GetResult());
}

TEST(SocketStreamAsync, SendingTellsHowMuchWasSent)
{
    std::string received;
    {
        Connected pair([&received](Connection& peer, int) { received = peer.ReadExactly(10); });
        u32 sent = 77;
        ASSERT_EQ(1, pair.stream.Send("hello", 5, &sent));
        ASSERT_TRUE(Ends(pair.stream));
        EXPECT_EQ(1, pair.stream.IsCompleted(1));
        EXPECT_EQ(1, pair.stream.GetResult());
        EXPECT_EQ(5u, sent);
        ASSERT_EQ(1, pair.stream.Send(" back", 5, nullptr));
        ASSERT_TRUE(Ends(pair.stream));
        EXPECT_EQ(1, pair.stream.GetResult());
        char text[4];
        EXPECT_EQ(1, pair.stream.IsCompleted(1));
        u32 got = 77;
        ASSERT_EQ(1, pair.stream.Recv(text, 4, &got));
        ASSERT_TRUE(Ends(pair.stream)) << "the peer has closed";
        EXPECT_EQ(0u, got);
        EXPECT_EQ(1, pair.stream.GetResult());
    }
    EXPECT_EQ("hello back", received);
}

TEST(SocketStreamAsync, ReadingAndWritingRunAsynchronouslyToo)
{
    Connected pair([](Connection& peer, int) { peer.Write(peer.ReadExactly(2)); });
    u32 length = 2;
    ASSERT_EQ(1, pair.stream.Write("ab", &length));
    EXPECT_EQ(2u, length);
    ASSERT_TRUE(Ends(pair.stream));
    ASSERT_EQ(1, pair.stream.IsCompleted(1));
    char text[3] = {};
    length = 2;
    ASSERT_EQ(1, pair.stream.Read(text, &length));
    ASSERT_TRUE(Ends(pair.stream));
    EXPECT_EQ(text, std::string("ab").substr(0, length));
    EXPECT_NE(0u, length);
}

TEST(SocketStreamAsync, FailuresShowInTheResult)
{
    Scope scope;
    Connected pair(StaySilent);
    SetSocketFault([](SocketOperation operation, int*) {
        return operation == SocketOperation::Send || operation == SocketOperation::Receive;
    });
    char text[4];
    u32 count = 77;
    ASSERT_EQ(1, pair.stream.Send("abc", 3, &count));
    ASSERT_TRUE(Ends(pair.stream));
    EXPECT_EQ(-1, pair.stream.GetResult());
    EXPECT_EQ(0u, count);
    ASSERT_EQ(1, pair.stream.IsCompleted(1));
    ASSERT_EQ(1, pair.stream.Recv(text, 4, &count));
    ASSERT_TRUE(Ends(pair.stream));
    EXPECT_EQ(-1, pair.stream.GetResult());
    EXPECT_EQ(0u, count);
}

TEST(SocketStreamAsync, AClosedStreamTellsItsFailureInTheResultToo)
{
    SocketStream stream(SOCK_STREAM);
    (void)stream.Close();
    EXPECT_EQ(1, stream.EnableAsync());
    u32 count = 77;
    ASSERT_EQ(1, stream.Send("abc", 3, &count));
    ASSERT_TRUE(Ends(stream));
    EXPECT_EQ(1, stream.IsCompleted(1));
    EXPECT_EQ(-1, stream.GetResult());
    EXPECT_EQ(0u, count);
    SocketStream* accepted = &stream;
    ASSERT_EQ(1, stream.Accept(nullptr, &accepted));
    ASSERT_TRUE(Ends(stream));
    EXPECT_EQ(-1, stream.GetResult());
    EXPECT_EQ(nullptr, accepted);
}

TEST(SocketStreamAsync, AcceptingMakesTheStreamOnItsThread)
{
    const NothingRemains nothing;
    {
        SocketCalls calls;
        Listening listener;
        sockaddr_in peer = {};
        SocketStream* accepted = &listener.stream;
        ASSERT_EQ(1, listener.stream.Accept(&peer, &accepted));
        EXPECT_EQ(0, listener.stream.IsCompleted(1));
        Connection client = Client(listener.port);
        ASSERT_TRUE(Ends(listener.stream));
        EXPECT_EQ(1, listener.stream.IsCompleted(1));
        EXPECT_EQ(1, listener.stream.GetResult());
        ASSERT_NE(nullptr, accepted);
        EXPECT_EQ(127u, peer.sin_addr.S_un.S_un_b.s_b1);
        EXPECT_EQ("accept address 16", calls.Entries("accept"));
        EXPECT_EQ(1, accepted->Send("hello", 5, nullptr)) << "the new one is not asynchronous";
        EXPECT_EQ("hello", client.ReadExactly(5));
        EXPECT_EQ(-1, accepted->IsCompleted(0));
        delete accepted;
    }
    EXPECT_TRUE(nothing.IsTrue());
}

TEST(SocketStreamAsync, AcceptingTellsOfAnObjectThatCannotBeMade)
{
    Scope scope;
    Listening listener;
    tavrix::testing::SetAllocationFault([](SIZE_T size) { return size == sizeof(SocketStream); });
    SocketStream* accepted = &listener.stream;
    ASSERT_EQ(1, listener.stream.Accept(nullptr, &accepted));
    Connection client = Client(listener.port);
    ASSERT_TRUE(Ends(listener.stream));
    EXPECT_EQ(-2, listener.stream.GetResult());
    EXPECT_EQ(nullptr, accepted);
    EXPECT_EQ("", client.Read(1)) << "the connection is closed";
}

TEST(SocketStreamAsync, FailsWithoutAThreadOrAnEvent)
{
    Scope scope;
    char text[4];
    u32 count = 77;
    {
        Connected pair(StaySilent);
        tavrix::testing::SetThreadFault([] { return true; });
        EXPECT_EQ(-1, pair.stream.Send("abc", 3, &count));
        EXPECT_EQ(0u, count);
        EXPECT_EQ(-1, pair.stream.Recv(text, 4, nullptr));
        SocketStream* accepted = &pair.stream;
        EXPECT_EQ(-1, pair.stream.Accept(nullptr, &accepted));
        EXPECT_EQ(nullptr, accepted);
        tavrix::testing::SetThreadFault(nullptr);
    }
    SocketCalls calls;
    calls.failEvents = true;
    Connected pair([](Connection& peer, int) { peer.Write(peer.ReadExactly(1)); });
    EXPECT_EQ(-1, pair.stream.Recv(text, 4, nullptr));
    EXPECT_EQ(-1, pair.stream.IsCompleted(0));
    calls.failEvents = false;
    EXPECT_EQ(1, pair.stream.EnableAsync()) << "makes the event that was missing";
    EXPECT_EQ(0, pair.stream.IsCompleted(0));
    EXPECT_EQ(1, pair.stream.Send("a", 1, nullptr));
    EXPECT_TRUE(Ends(pair.stream));
}

TEST(SocketStreamAsync, WithoutAnEventCallsThatBlockStillWork)
{
    SocketCalls calls;
    calls.failEvents = true;
    WireServer server(0, [](Connection& peer, int) { peer.Write(peer.ReadExactly(1)); });
    SocketStream stream(SOCK_STREAM);
    ASSERT_EQ(1, stream.Connect(Own, server.Port()));
    char text[4];
    u32 count = 77;
    EXPECT_EQ(1, stream.Send("a", 1, &count));
    EXPECT_EQ(1, stream.Recv(text, 4, &count));
    EXPECT_EQ(1u, count);
}

TEST(SocketStreamAsync, AnUncollectedCallIsInTheWayOfTheNext)
{
    Connected pair([](Connection& peer, int) {
        peer.Write("abc");
        (void)peer.ReadAll();
    });
    char text[4] = {};
    u32 got = 77;
    ASSERT_EQ(1, pair.stream.Recv(text, 1, &got));
    ASSERT_TRUE(Ends(pair.stream));
    ASSERT_EQ(1u, got);
    u32 other = 77;
    EXPECT_EQ(-1, pair.stream.Recv(text, 1, &other));
    EXPECT_EQ(0u, other) << "cleared though refused";
    other = 77;
    EXPECT_EQ(-1, pair.stream.Send("x", 1, &other));
    EXPECT_EQ(0u, other);
    SocketStream* accepted = &pair.stream;
    EXPECT_EQ(-1, pair.stream.Accept(nullptr, &accepted));
    EXPECT_EQ(nullptr, accepted);
    EXPECT_EQ(1u, got);
    EXPECT_EQ('a', text[0]);
    EXPECT_EQ(1, pair.stream.IsCompleted(1));
    ASSERT_EQ(1, pair.stream.Recv(text, 1, &got));
    ASSERT_TRUE(Ends(pair.stream));
    EXPECT_EQ('b', text[0]);
}

TEST(SocketStreamAsync, TheNextCallEndsTheOneThatStillWaits)
{
    std::atomic<bool> go{false};
    SocketCalls calls;
    Connected pair([&go](Connection& peer, int) {
        EXPECT_TRUE(Eventually([&go] { return go.load(); }));
        peer.Write("hello");
        (void)peer.ReadAll();
    });
    const long threads = CountSettledThreads();
    char first[8] = "before";
    u32 firstGot = 77;
    ASSERT_EQ(1, pair.stream.Recv(first, 7, &firstGot));
    EXPECT_EQ(threads + 1, CountThreads());
    char second[8] = {};
    u32 secondGot = 77;
    ASSERT_EQ(1, pair.stream.Recv(second, 7, &secondGot));
    EXPECT_EQ("TerminateThread ffffffff", calls.Entries("Terminate"));
    EXPECT_TRUE(Eventually([threads] { return CountThreads() == threads + 1; }));
    go = true;
    ASSERT_TRUE(Ends(pair.stream));
    EXPECT_STREQ("hello", second);
    EXPECT_EQ(5u, secondGot);
    EXPECT_STREQ("before", first);
    EXPECT_EQ(0u, firstGot);
}

TEST(SocketStreamAsync, ACallThatEndsAsTheNextBeginsLeavesTheNewWordsAlone)
{
    SocketCalls calls;
    std::atomic<bool> go{false};
    Connected pair([&go](Connection& peer, int) {
        EXPECT_TRUE(Eventually([&go] { return go.load(); }));
        peer.Write("hello");
        (void)peer.ReadAll();
    });
    char first[8] = {};
    u32 got = 77;
    ASSERT_EQ(1, pair.stream.Recv(first, 7, &got));
    FinishLate(calls, [&go] { go = true; });
    char second[8] = "before";
    ASSERT_EQ(1, pair.stream.Recv(second, 7, &got)) << "with the same word";
    EXPECT_EQ(0u, got);
    EXPECT_EQ(0, pair.stream.IsCompleted(0)) << "the second one waits";
    EXPECT_STREQ("before", second);
}

TEST(SocketStreamAsync, AStreamThatIsAcceptedAsTheNextCallBeginsIsDeleted)
{
    const NothingRemains nothing;
    {
        SocketCalls calls;
        Listening listener;
        Connection client;
        FinishLate(calls, [&] { client = Client(listener.port); });
        SocketStream* first = nullptr;
        SocketStream* second = nullptr;
        ASSERT_EQ(1, listener.stream.Accept(nullptr, &first));
        ASSERT_EQ(1, listener.stream.Accept(nullptr, &second));
        EXPECT_EQ(nullptr, first);
        EXPECT_EQ(nullptr, second);
        EXPECT_EQ("", client.Read(1));
        client = Client(listener.port);
        ASSERT_TRUE(Ends(listener.stream));
        EXPECT_EQ(nullptr, first);
        ASSERT_NE(nullptr, second);
        delete second;
    }
    EXPECT_TRUE(nothing.IsTrue());
}

TEST(SocketStreamAsync, AStreamThatIsAcceptedAsTheListenerClosesIsDeleted)
{
    const NothingRemains nothing;
    {
        SocketCalls calls;
        Listening listener;
        SocketStream* accepted = nullptr;
        ASSERT_EQ(1, listener.stream.Accept(nullptr, &accepted));
        Connection client = Client(listener.port);
        ASSERT_TRUE(Eventually([&calls] { return calls.Entries("taken") == "taken"; }));
        EXPECT_EQ(1, listener.stream.Close());
        EXPECT_EQ(nullptr, accepted);
        EXPECT_EQ("", client.Read(1));
        EXPECT_EQ(0, listener.stream.IsCompleted(1)) << "it was given up";
    }
    EXPECT_TRUE(nothing.IsTrue());
}

TEST(SocketStreamAsync, AnUnseenStreamWhoseWordIsClearedIsDeleted)
{
    const NothingRemains nothing;
    {
        Listening listener;
        const long threads = CountSettledThreads();
        SocketStream* accepted = nullptr;
        ASSERT_EQ(1, listener.stream.Accept(nullptr, &accepted));
        Connection client = Client(listener.port);
        ASSERT_TRUE(Eventually([threads] { return CountThreads() == threads; }));
        EXPECT_EQ(-1, listener.stream.Accept(nullptr, &accepted)) << "with the same word";
        EXPECT_EQ(nullptr, accepted);
        EXPECT_EQ("", client.Read(1));
    }
    EXPECT_TRUE(nothing.IsTrue());
}

TEST(SocketStreamAsync, AStreamThatWasSeenIsTheCallers)
{
    const NothingRemains nothing;
    {
        Listening listener;
        SocketStream* accepted = nullptr;
        ASSERT_EQ(1, listener.stream.Accept(nullptr, &accepted));
        Connection client = Client(listener.port);
        ASSERT_TRUE(Ends(listener.stream));
        SocketStream* const seen = accepted;
        EXPECT_EQ(-1, listener.stream.Accept(nullptr, &accepted)) << "refused, with the same word";
        EXPECT_EQ(nullptr, accepted);
        EXPECT_EQ(1, listener.stream.Close());
        EXPECT_EQ(1, seen->Send("hello", 5, nullptr));
        EXPECT_EQ("hello", client.ReadExactly(5));
        delete seen;
    }
    EXPECT_TRUE(nothing.IsTrue());
}

TEST(SocketStreamAsync, CloseGivesEachCallUp)
{
    const std::string much(8 << 20, 'x');
    for (int kind = 0; kind < 2; ++kind) {
        SCOPED_TRACE(kind);
        Connected pair([](Connection& peer, int) {
            while (peer.Pause(1000)) {
            }
        });
        const long threads = CountSettledThreads();
        char text[4];
        u32 count = 77;
        if (kind == 0) {
            ASSERT_EQ(1, pair.stream.Recv(text, 4, &count));
        } else {
            ASSERT_EQ(1, pair.stream.Send(much.data(), static_cast<u32>(much.size()), &count));
        }
        EXPECT_EQ(0, pair.stream.IsCompleted(0));
        EXPECT_EQ(1, pair.stream.Close());
        EXPECT_TRUE(Eventually([threads] { return CountThreads() < threads + 1; }));
        EXPECT_EQ(0u, count);
        EXPECT_EQ(0, pair.stream.IsCompleted(0));
        EXPECT_EQ(1, pair.stream.Close());
    }
}

TEST(SocketStreamAsync, TheSocketIsClosedBeforeTheThreadIsEnded)
{
    SocketCalls calls;
    Connected pair(StaySilent);
    char text[4];
    ASSERT_EQ(1, pair.stream.Recv(text, 4, nullptr));
    ASSERT_EQ(1, pair.stream.Close());
    std::string order;
    for (const std::string& entry : calls.Log())
        if (entry == "closesocket" || entry.starts_with("Terminate"))
            order += entry.substr(0, 1);
    EXPECT_EQ("cT", order);
}

TEST(SocketStreamAsync, EnablingAgainForgetsACallThatHasEnded)
{
    Connected pair([](Connection& peer, int) {
        peer.Write("ab");
        (void)peer.ReadAll();
    });
    char text[4] = {};
    ASSERT_EQ(1, pair.stream.Recv(text, 1, nullptr));
    ASSERT_TRUE(Ends(pair.stream));
    EXPECT_EQ(1, pair.stream.EnableAsync());
    EXPECT_EQ(0, pair.stream.IsCompleted(0));
    ASSERT_EQ(1, pair.stream.Recv(text, 1, nullptr));
    ASSERT_TRUE(Ends(pair.stream));
    EXPECT_EQ('b', text[0]);
}

TEST(SocketStreamAsync, TheObjectMayGoRightAfterTheStart)
{
    const NothingRemains nothing;
    for (int round = 0; round < 100; ++round) {
        const std::unique_ptr<Listening> listener = std::make_unique<Listening>();
        SocketStream* accepted = nullptr;
        ASSERT_EQ(1, listener->stream.Accept(nullptr, &accepted));
    }
    EXPECT_TRUE(nothing.IsTrue());
}

TEST(SocketStreamAsync, NothingRemainsOfClientsThatComeAsItIsGivenUp)
{
    const NothingRemains nothing;
    for (int round = 0; round < 50; ++round) {
        Listening listener;
        SocketStream* accepted = nullptr;
        ASSERT_EQ(1, listener.stream.Accept(nullptr, &accepted));
        std::thread client([&listener] { (void)Client(listener.port); });
        for (int turn = 0; turn < round; ++turn)
            std::this_thread::yield();
        EXPECT_EQ(1, listener.stream.Close());
        client.join();
        EXPECT_EQ(nullptr, accepted);
    }
    EXPECT_TRUE(nothing.IsTrue());
}
