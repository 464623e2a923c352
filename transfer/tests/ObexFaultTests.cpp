// Exchanges in which memory, threads and sockets fail, one place after the other.

#include "platform/testing/Faults.h"
#include "transfer/tests/ObexTesting.h"

using namespace obextest;

namespace
{

// Long enough for a client to get in on a slow machine.
constexpr u32 Seconds = 3;

/// An exchange that a fault may end anywhere. The client sends all at once and waits for no answer.
void RunExchange(ObexServer& server, Outcome* outcome)
{
    *outcome = Receive(
        server,
        [](Connection& client) {
            client.Write(
                Packet(0x80, Hex("10 00 04 00")) +
                Packet(0x02, Hex("01 00 0F 00 61 00 2E 00 70 00 6E 00 67 00 00") + Body("abc")) +
                Packet(0x82, Body("def")) + Packet(0x81, ""));
            client.EndWriting();
            (void)client.ReadAll();
        },
        Seconds);
}

/// What must hold whatever failed.
void ExpectHonest(const Outcome& outcome, bool fired)
{
    ASSERT_FALSE(outcome.told.empty());
    EXPECT_EQ(outcome.told.front(), Waiting());
    EXPECT_TRUE(std::string("abcdef").starts_with(outcome.object)) << outcome.object;
    const bool finished = outcome.told.back() == Finished();
    EXPECT_EQ(outcome.result, finished ? 1 : outcome.result);
    EXPECT_TRUE(finished || outcome.result < 0) << outcome.result;
    EXPECT_EQ(outcome.object == "abcdef" || !finished, true) << outcome.object;
    EXPECT_TRUE(finished || fired);
}

void RunAllFaults(FaultKind kind)
{
    Scope scope;
    Outcome outcome;
    ForEveryFault(
        kind,
        [&] {
            ObexServer server;
            RunExchange(server, &outcome);
        },
        [&](bool fired) { ExpectHonest(outcome, fired); });
}

} // namespace

TEST(ObexFaults, EveryShortageOfMemoryIsSurvived)
{
    RunAllFaults(FaultKind::Allocation);
}

TEST(ObexFaults, AThreadThatCannotBeMadeIsAFailure)
{
    RunAllFaults(FaultKind::Thread);
}

TEST(ObexFaults, EveryCallOnASocketMayFail)
{
    RunAllFaults(FaultKind::Socket);
}

TEST(ObexFaults, AServerWhoseExchangeFailedServesTheNext)
{
    Scope scope;
    ObexServer server;
    for (const FaultKind kind : {FaultKind::Allocation, FaultKind::Thread, FaultKind::Socket}) {
        bool fired = true;
        for (unsigned number = 1; fired; ++number) {
            Outcome outcome;
            ArmedFault fault(kind, number, FaultReach::Once);
            RunExchange(server, &outcome);
            fault.Disarm();
            fired = fault.Fired();
            RunExchange(server, &outcome);
            EXPECT_EQ(outcome.result, 1) << "behind fault " << number;
            EXPECT_EQ(outcome.object, "abcdef") << "behind fault " << number;
        }
    }
}

TEST(ObexFaults, AFailingCallTellsWhichStepFailed)
{
    using tavrix::platform::SocketOperation;
    for (const SocketOperation operation :
         {SocketOperation::Create, SocketOperation::Bind, SocketOperation::Listen,
          SocketOperation::Accept, SocketOperation::Receive}) {
        Scope scope;
        SetSocketFault([=](SocketOperation current, int*) { return current == operation; });
        ObexServer server;
        Outcome outcome;
        RunExchange(server, &outcome);
        EXPECT_EQ(outcome.result, -1);
        const bool connected = operation == SocketOperation::Receive;
        EXPECT_EQ(outcome.told, connected ? (std::vector<Told>{Waiting(), Found()})
                                          : std::vector<Told>{Waiting()});
    }
}

TEST(ObexFaults, AnAnswerThatCannotBeSentDoesNotEndTheExchange)
{
    using tavrix::platform::SocketOperation;
    Scope scope;
    SetSocketFault([](SocketOperation current, int*) { return current == SocketOperation::Send; });
    ObexServer server;
    Outcome outcome;
    RunExchange(server, &outcome);
    // The next packet is there to be read.
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.object, "abcdef");
}

TEST(ObexFaults, AClientForWhichThereIsNoMemoryIsSentAway)
{
    Scope scope;
    UseOwnAddress();
    // The only allocation that is as large as a socket's object, and comes once a client is there.
    std::atomic<bool> accepted{false};
    SetSocketFault([&](tavrix::platform::SocketOperation operation, int*) {
        if (operation == tavrix::platform::SocketOperation::Accept)
            accepted = true;
        return false;
    });
    SetAllocationFault([&](SIZE_T size) { return accepted && size == sizeof(IrdaSocket); });
    const auto holdings = tavrix::platform::CountHoldings();
    ObexServer server;
    Sink sink;
    Listener listener;
    std::string heard = "?";
    i32 result = 0;
    {
        Client client([&](Connection& connection) { heard = Rest(connection); });
        result = server.Receive(&sink, LongTime, Listener::Hear, &listener);
    }
    EXPECT_EQ(result, -2);
    EXPECT_EQ(heard, "");
    EXPECT_EQ(listener.told, std::vector<Told>{Waiting()});
    EXPECT_TRUE(tavrix::platform::CountHoldings() == holdings);
}

TEST(ObexFaults, AReceiptThatComesShortIsGoneOnWithExceptInAHead)
{
    using tavrix::platform::SocketOperation;
    for (const bool head : {false, true}) {
        Scope scope;
        SetSocketFault([=](SocketOperation current, int* length) {
            if (current == SocketOperation::Receive && *length > 1 && (*length == 3) == head)
                *length = 1;
            return false;
        });
        ObexServer server;
        Outcome outcome;
        RunExchange(server, &outcome);
        EXPECT_EQ(outcome.result, head ? -1 : 1);
        EXPECT_EQ(outcome.object, head ? "" : "abcdef");
    }
}
