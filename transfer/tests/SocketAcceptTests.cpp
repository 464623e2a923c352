// Accepting on a thread of its own, and giving that up in every state.

#include "platform/testing/Testing.h"
#include "SocketCalls.h"
#include "SocketTesting.h"
#include "transfer/Socket.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

using tavrix::testing::Connection;
using tavrix::testing::Scope;

namespace
{

/// A listener with one asynchronous accept at a time.
struct Listener {
    Listener() : socket(AF_INET, SOCK_STREAM, 0), port(ListenSomewhere(socket)) {}

    i32 Start() { return socket.AcceptAsync(nullptr, nullptr, &accepted); }
    bool Ends()
    {
        return Eventually([this] { return socket.IsCompleted(0) != 0; });
    }

    Socket socket;
    u16 port;
    SOCKET accepted = 7;
};

/// A client connects, and is taken, in the moment between the owner's last look at a waiting
/// accept and its being given up.
struct LateClient {
    explicit LateClient(u16 port)
    {
        calls.beforeTerminate = [this, port](HANDLE thread) {
            client = Client(port);
            EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, INFINITE));
        };
    }

    SocketCalls calls;
    Connection client;
};

} // namespace

TEST(SocketAccept, TellsTheEndOnceItsThreadHasAConnection)
{
    const NothingRemains nothing;
    {
        Listener listener;
        sockaddr_in peer = {};
        i32 length = sizeof(peer);
        ASSERT_EQ(1, listener.socket.AcceptAsync(reinterpret_cast<sockaddr*>(&peer), &length,
                                                 &listener.accepted));
        EXPECT_EQ(0, listener.socket.IsCompleted(0));
        EXPECT_EQ(0, listener.socket.IsCompleted(1));
        Connection client = Client(listener.port);
        ASSERT_TRUE(listener.Ends());
        EXPECT_EQ(1, listener.socket.IsCompleted(0)) << "a look collects nothing";
        EXPECT_EQ(1, listener.socket.IsCompleted(1));
        EXPECT_EQ(0, listener.socket.IsCompleted(1));
        EXPECT_EQ(1, listener.socket.GetAcceptResult());
        EXPECT_EQ(127u, peer.sin_addr.S_un.S_un_b.s_b1);
        EXPECT_EQ(16, length);
        Socket accepted(listener.accepted);
        EXPECT_EQ(1, accepted.Send("hello", 5, nullptr, 0));
        EXPECT_EQ("hello", client.ReadExactly(5));
    }
    EXPECT_TRUE(nothing.IsTrue());
}

TEST(SocketAccept, TellsAnEndWithoutAConnection)
{
    Socket socket(AF_INET, SOCK_STREAM, 0);
    SOCKET accepted = 7;
    ASSERT_EQ(1, socket.AcceptAsync(nullptr, nullptr, &accepted));
    ASSERT_TRUE(Eventually([&socket] { return socket.IsCompleted(1) == 1; }));
    EXPECT_EQ(INVALID_SOCKET, accepted);
    EXPECT_EQ(-1, socket.GetAcceptResult());
}

TEST(SocketAccept, FailsWithoutAThread)
{
    Scope scope;
    Listener listener;
    tavrix::testing::SetThreadFault([] { return true; });
    EXPECT_EQ(-1, listener.Start());
    EXPECT_EQ(INVALID_SOCKET, listener.accepted);
    EXPECT_EQ(0, listener.socket.IsCompleted(1));
    tavrix::testing::SetThreadFault(nullptr);
    EXPECT_EQ(1, listener.Start());
}

TEST(SocketAccept, FailsWithoutAnEventWhereWaitingOneselfWorks)
{
    SocketCalls calls;
    calls.failEvents = true;
    Listener listener;
    ASSERT_TRUE(listener.socket.IsOpen());
    EXPECT_EQ(-1, listener.Start()) << "nobody would ever learn of its end";
    EXPECT_EQ(-1, listener.socket.IsCompleted(1));
    const Connection client = Client(listener.port);
    SOCKET accepted = INVALID_SOCKET;
    EXPECT_EQ(1, listener.socket.AcceptHandle(nullptr, nullptr, &accepted));
    EXPECT_EQ(0, closesocket(accepted));
}

TEST(SocketAccept, ASecondOneEndsTheFirstThatStillWaits)
{
    SocketCalls calls;
    Listener listener;
    const long threads = CountSettledThreads();
    ASSERT_EQ(1, listener.Start());
    EXPECT_EQ(threads + 1, CountThreads());
    SOCKET second = 7;
    ASSERT_EQ(1, listener.socket.AcceptAsync(nullptr, nullptr, &second));
    EXPECT_EQ("TerminateThread ffffffff", calls.Entries("Terminate"));
    EXPECT_TRUE(Eventually([&] { return CountThreads() == threads + 1; }));
    EXPECT_EQ(INVALID_SOCKET, second);
    EXPECT_EQ(0, listener.socket.IsCompleted(0));
    Connection client = Client(listener.port);
    ASSERT_TRUE(listener.Ends());
    EXPECT_EQ(INVALID_SOCKET, listener.accepted) << "the first one's word";
    ASSERT_TRUE(IsLive(second));
    Socket accepted(second);
    EXPECT_EQ(1, accepted.Send("hello", 5, nullptr, 0));
    EXPECT_EQ("hello", client.ReadExactly(5));
}

TEST(SocketAccept, WaitingOneselfEndsTheOneThatStillWaits)
{
    Listener listener;
    const long threads = CountSettledThreads();
    ASSERT_EQ(1, listener.Start());
    // Waits until the other is gone, or it would take the client.
    std::thread late([&] {
        EXPECT_TRUE(Eventually([&] { return CountThreads() == threads + 1; }));
        (void)Client(listener.port).Read(1);
    });
    SOCKET accepted = INVALID_SOCKET;
    EXPECT_EQ(1, listener.socket.AcceptHandle(nullptr, nullptr, &accepted));
    EXPECT_EQ(0, closesocket(accepted));
    late.join();
    EXPECT_EQ(INVALID_SOCKET, listener.accepted);
    EXPECT_EQ(0, listener.socket.IsCompleted(0));
}

TEST(SocketAccept, AnUncollectedOneIsInTheWayOfTheNext)
{
    Listener listener;
    ASSERT_EQ(1, listener.Start());
    const Connection client = Client(listener.port);
    ASSERT_TRUE(listener.Ends());
    const Socket first(listener.accepted);
    ASSERT_TRUE(first.IsOpen());

    SOCKET other = 7;
    EXPECT_EQ(-1, listener.socket.AcceptAsync(nullptr, nullptr, &other));
    EXPECT_EQ(INVALID_SOCKET, other) << "cleared though refused";
    other = 7;
    EXPECT_EQ(-1, listener.socket.AcceptHandle(nullptr, nullptr, &other));
    EXPECT_EQ(INVALID_SOCKET, other);
    Socket* object = &listener.socket;
    EXPECT_EQ(-1, listener.socket.Accept(nullptr, nullptr, &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(-1, listener.Start());
    EXPECT_TRUE(IsLive(first.Handle())) << "once seen the connection is the caller's";

    EXPECT_EQ(1, listener.socket.IsCompleted(1));
    EXPECT_EQ(1, listener.Start());
    const Connection next = Client(listener.port);
    ASSERT_TRUE(listener.Ends());
    EXPECT_TRUE(IsLive(listener.accepted));
    EXPECT_EQ(0, closesocket(listener.accepted));
}

TEST(SocketAccept, CloseGivesAWaitingOneUp)
{
    const NothingRemains nothing;
    Listener listener;
    ASSERT_EQ(1, listener.Start());
    EXPECT_EQ(-1, listener.socket.Close());
    EXPECT_EQ(INVALID_SOCKET, listener.accepted);
    EXPECT_EQ(-1, listener.socket.IsCompleted(0));
    EXPECT_TRUE(nothing.IsTrue()) << "neither event nor thread";
    EXPECT_FALSE(Client(listener.port).IsOpen());
}

TEST(SocketAccept, CloseLeavesAConnectionThatWasSeenToTheCaller)
{
    for (const i32 collected : {0, 1}) {
        const NothingRemains nothing;
        {
            Listener listener;
            ASSERT_EQ(1, listener.Start());
            const Connection client = Client(listener.port);
            ASSERT_TRUE(listener.Ends());
            EXPECT_EQ(1, listener.socket.IsCompleted(collected));
            EXPECT_EQ(-1, listener.socket.Close());
            EXPECT_TRUE(IsLive(listener.accepted));
            EXPECT_EQ(0, closesocket(listener.accepted));
        }
        EXPECT_TRUE(nothing.IsTrue());
    }
}

TEST(SocketAccept, AConnectionThatComesAsTheSocketClosesIsClosedToo)
{
    const NothingRemains nothing;
    {
        Listener listener;
        SocketCalls calls;
        ASSERT_EQ(1, listener.Start());
        Connection client = Client(listener.port);
        ASSERT_TRUE(Eventually([&calls] { return calls.Entries("taken") == "taken"; }));
        (void)listener.socket.Close();
        EXPECT_EQ(INVALID_SOCKET, listener.accepted);
        EXPECT_EQ("", client.Read(1));
    }
    EXPECT_TRUE(nothing.IsTrue());
}

TEST(SocketAccept, AConnectionThatComesAsTheNextCallBeginsIsClosed)
{
    const NothingRemains nothing;
    {
        Listener listener;
        LateClient late(listener.port);
        ASSERT_EQ(1, listener.Start());
        ASSERT_EQ(1, listener.Start()) << "with the same word";
        EXPECT_EQ(INVALID_SOCKET, listener.accepted);
        EXPECT_EQ(0, listener.socket.IsCompleted(0));
        EXPECT_EQ("", late.client.Read(1));
        const Connection client = Client(listener.port);
        ASSERT_TRUE(listener.Ends());
        EXPECT_TRUE(IsLive(listener.accepted));
        EXPECT_EQ(0, closesocket(listener.accepted));
    }
    EXPECT_TRUE(nothing.IsTrue());
}

TEST(SocketAccept, AConnectionOfAnotherWordThatComesAsTheNextCallBeginsIsClosed)
{
    const NothingRemains nothing;
    {
        Listener listener;
        LateClient late(listener.port);
        ASSERT_EQ(1, listener.Start());
        SOCKET second = 7;
        ASSERT_EQ(1, listener.socket.AcceptAsync(nullptr, nullptr, &second));
        EXPECT_EQ(INVALID_SOCKET, listener.accepted);
        EXPECT_EQ(INVALID_SOCKET, second);
        EXPECT_EQ("", late.client.Read(1));
    }
    EXPECT_TRUE(nothing.IsTrue());
}

TEST(SocketAccept, AnUnseenConnectionWhoseWordIsClearedIsClosed)
{
    const NothingRemains nothing;
    {
        Listener listener;
        const long threads = CountSettledThreads();
        ASSERT_EQ(1, listener.Start());
        Connection client = Client(listener.port);
        ASSERT_TRUE(Eventually([threads] { return CountThreads() == threads; }));
        EXPECT_EQ(-1, listener.Start()) << "with the same word";
        EXPECT_EQ(INVALID_SOCKET, listener.accepted);
        EXPECT_EQ("", client.Read(1));
        EXPECT_EQ(1, listener.socket.IsCompleted(1));
    }
    EXPECT_TRUE(nothing.IsTrue());
}

TEST(SocketAccept, TheObjectMayGoRightAfterTheStart)
{
    const NothingRemains nothing;
    for (int round = 0; round < 100; ++round) {
        const std::unique_ptr<Listener> listener = std::make_unique<Listener>();
        ASSERT_EQ(1, listener->Start());
    }
    EXPECT_TRUE(nothing.IsTrue());
}

TEST(SocketAccept, NothingRemainsOfClientsThatComeAsItIsGivenUp)
{
    const NothingRemains nothing;
    for (int round = 0; round < 100; ++round) {
        Listener listener;
        ASSERT_EQ(1, listener.Start());
        std::thread client([&listener, round] {
            const Connection connection = Client(listener.port);
            if (round % 3 == 0)
                std::this_thread::yield();
        });
        if (round % 2 == 0)
            (void)listener.Start();
        for (int turn = 0; turn < round; ++turn)
            std::this_thread::yield();
        (void)listener.socket.Close();
        client.join();
        EXPECT_EQ(INVALID_SOCKET, listener.accepted);
    }
    EXPECT_TRUE(nothing.IsTrue());
}
