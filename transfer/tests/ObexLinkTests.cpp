// Packets at the edge of what is taken, links that break, and the time that is waited.

#include "platform/testing/Faults.h"
#include "platform/testing/Threads.h"
#include "transfer/tests/ObexTesting.h"

using namespace obextest;

TEST(ObexLink, APacketOf512BytesIsTakenAndOneOf513IsNot)
{
    const std::string data(506, 'x');
    std::string heard;
    const Outcome taken =
        Receive([&](Connection& client) { heard = Ask(client, Packet(0x82, Body(data))); });
    EXPECT_EQ(heard, Success);
    EXPECT_EQ(taken.result, 1);
    EXPECT_EQ(taken.object, data);

    for (const char* head : {"82 02 01", "82 02 FF", "82 80 00", "82 FF FF", "80 02 01"}) {
        const Outcome refused = Receive([&](Connection& client) {
            client.Write(Hex(head));
            heard = Rest(client);
        });
        EXPECT_EQ(heard, "") << head;
        EXPECT_EQ(refused.result, -2) << head;
        EXPECT_EQ(refused.object, "") << head;
        EXPECT_EQ(refused.told, (Events{Waiting(), Found()})) << head;
    }
}

TEST(ObexLink, APacketThatTellsLessThanItsHeadIsBroken)
{
    for (const char* head : {"82 00 00", "82 00 01", "82 00 02", "80 00 02"}) {
        std::string heard;
        const Outcome outcome = Receive([&](Connection& client) {
            client.Write(Hex(head));
            heard = Rest(client);
        });
        EXPECT_EQ(heard, "") << head;
        EXPECT_EQ(outcome.result, -1) << head;
    }
}

TEST(ObexLink, ABodyOfAnImpossibleLengthEndsTheLinkAndTheResultIsASuccess)
{
    for (const char* header : {"48 01 FE", "49 01 FE", "48 FF FF", "48 00 02", "49 00 00"}) {
        for (const unsigned opcode : {0x02, 0x82}) {
            std::string heard;
            const Outcome outcome = Receive([&](Connection& client) {
                EXPECT_EQ(Ask(client, Packet(0x02, Body("abc"))), Continue);
                client.Write(Packet(opcode, Hex(header) + std::string(100, 'x')));
                heard = Rest(client);
            });
            EXPECT_EQ(heard, "") << header;
            EXPECT_EQ(outcome.result, 1) << header;
            EXPECT_EQ(outcome.object, "abc") << header;
            EXPECT_EQ(outcome.told, (Events{Waiting(), Found(), Progress(3)})) << header;
        }
    }
}

TEST(ObexLink, ABodyWhoseLengthIsCutEndsTheLinkAsAFailure)
{
    std::string heard;
    const Outcome outcome = Receive([&](Connection& client) {
        client.Write(Packet(0x82, Body("abc") + Hex("48 00")));
        heard = Rest(client);
    });
    EXPECT_EQ(heard, "");
    EXPECT_EQ(outcome.result, -1);
    EXPECT_EQ(outcome.object, "abc");
    EXPECT_EQ(outcome.told, (Events{Waiting(), Found(), Progress(3)}));
}

TEST(ObexLink, WhatFollowsAPacketsHeadMayComeByteByByte)
{
    const std::string whole = Packet(0x82, Hex(NameHeader) + Body("abc"));
    std::string heard;
    const Outcome outcome = Receive([&](Connection& client) {
        client.Write(whole.substr(0, 3));
        for (size_t i = 3; i < whole.size(); ++i) {
            client.Pause(1);
            client.Write(whole.substr(i, 1));
        }
        heard = Answer(client);
    });
    EXPECT_EQ(heard, Success);
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.object, "abc");
}

TEST(ObexLink, AHeadInTwoPiecesIsBroken)
{
    for (const size_t first : {1u, 2u}) {
        std::string heard;
        const Outcome outcome = Receive([&](Connection& client) {
            EXPECT_EQ(Ask(client, Packet(0x02, Body("abc"))), Continue);
            client.Write(Packet(0x82, "").substr(0, first));
            heard = Rest(client); // before the other piece
        });
        EXPECT_EQ(heard, "");
        EXPECT_EQ(outcome.result, -1);
    }
}

TEST(ObexLink, PacketsThatComeTogetherAreTakenOneAfterTheOther)
{
    std::string heard;
    const Outcome outcome = Receive([&](Connection& client) {
        client.Write(Hex(Connect) + Packet(0x02, Body("abc")) + Packet(0x82, Body("def")) +
                     Packet(0x81, ""));
        heard = Rest(client);
    });
    EXPECT_EQ(heard, "A0 00 07 10 00 02 00 90 00 03 A0 00 03 A0 00 03");
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.object, "abcdef");
}

TEST(ObexLink, AClientMayVanishAtAnyByte)
{
    const std::string connect = Hex(Connect);
    const std::string first = Packet(0x02, Hex(NameHeader) + Body("abc"));
    const std::string last = Packet(0x82, Body("def"));
    const std::string whole = connect + first + last + Packet(0x81, "");
    const size_t firstEnd = connect.size() + first.size();
    const size_t lastEnd = firstEnd + last.size();
    ObexServer server;
    for (size_t count = 0; count <= whole.size(); ++count) {
        SCOPED_TRACE(count);
        std::string heard;
        const Outcome outcome = Receive(server, [&](Connection& client) {
            client.Write(whole.substr(0, count));
            client.EndWriting();
            heard = Rest(client);
        });
        std::string answers;
        answers += count >= connect.size() ? Connected : "";
        answers += count >= firstEnd ? std::string(" ") + Continue : "";
        answers += count >= lastEnd ? std::string(" ") + Success : "";
        answers += count >= whole.size() ? std::string(" ") + Success : "";
        EXPECT_EQ(heard, answers);
        EXPECT_EQ(outcome.result, count >= lastEnd ? 1 : -1);
        EXPECT_EQ(outcome.object, count >= lastEnd ? "abcdef" : count >= firstEnd ? "abc" : "");
        EXPECT_EQ(outcome.told.back() == Finished(), count >= lastEnd);
    }
}

TEST(ObexLink, AClientThatBreaksTheLinkAtAnyByteLeavesWhatWasTakenByThen)
{
    const std::string whole = Hex(Connect) + Packet(0x02, Hex(NameHeader) + Body("abc")) +
                              Packet(0x82, Body("def")) + Packet(0x81, "");
    ObexServer server;
    for (size_t count = 0; count <= whole.size(); ++count) {
        SCOPED_TRACE(count);
        const Outcome outcome = Receive(server, [&](Connection& client) {
            client.Write(whole.substr(0, count));
            client.Reset();
        });
        // How much was read before the break is the network's to say.
        EXPECT_EQ(outcome.result, outcome.told.back() == Finished() ? 1 : -1);
        EXPECT_TRUE(std::string("abcdef").starts_with(outcome.object)) << outcome.object;
        EXPECT_TRUE(outcome.result < 0 || outcome.object == "abcdef") << outcome.object;
    }
}

TEST(ObexLink, ASilentClientIsWaitedForUntilItGoes)
{
    std::atomic<bool> received{false};
    UseOwnAddress();
    Client silent([&](Connection& client) {
        client.Pause(1500);
        EXPECT_FALSE(received);
    });
    ObexServer server;
    Sink sink;
    const i32 result = server.Receive(&sink, 60, nullptr, nullptr);
    received = true;
    EXPECT_EQ(result, -1);
}

TEST(ObexLink, WithNoClientInTimeTheAcceptThreadIsGone)
{
    Scope scope;
    UseOwnAddress();
    ObexServer server;
    Sink sink;
    const auto holdings = tavrix::platform::CountHoldings();
    const long threads = CountThreads();
    Listener listener;
    EXPECT_EQ(server.Receive(&sink, 1, Listener::Hear, &listener), -1);
    EXPECT_EQ(listener.told, Events{Waiting()});
    EXPECT_TRUE(tavrix::platform::CountHoldings() == holdings);
    for (int i = 0; i < 1000 && CountThreads() > threads; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(CountThreads(), threads);
    // Nobody listens any more.
    EXPECT_FALSE(ConnectTo(OwnAddress(), 650).IsOpen());
}

TEST(ObexLink, TheTimeIsOverWhenTheTicksHavePassedItAlsoWhereTheyBeginAnew)
{
    for (const DWORD start : {5000u, 0xFFFFFFFFu - 100u}) {
        Scope scope;
        UseOwnAddress();
        SetTickCount(start);
        std::atomic<bool> listening{false};
        std::atomic<bool> over{false};
        SetSocketFault([&](tavrix::platform::SocketOperation operation, int*) {
            if (operation == tavrix::platform::SocketOperation::Accept)
                listening = true;
            return false;
        });
        const auto wait = [](const std::atomic<bool>& word, int milliseconds) {
            for (int i = 0; i < milliseconds && !word; ++i)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
        };
        std::thread clock([&] {
            wait(listening, 10000);
            for (const DWORD passed : {0u, 1u, 1999u, 2000u}) {
                SetTickCount(start + passed);
                wait(over, 200);
                EXPECT_FALSE(over) << passed;
            }
            SetTickCount(start + 2001u);
            wait(over, 20000);
            EXPECT_TRUE(over);
            SetTickCount(start + 100000u); // so that the test ends in any case
        });
        ObexServer server;
        Sink sink;
        EXPECT_EQ(server.Receive(&sink, 2, nullptr, nullptr), -1);
        over = true;
        clock.join();
    }
}

TEST(ObexLink, APeerThatTheLinkDoesNotKnowHasTheEmptyName)
{
    const std::string path = FreshFolder() + "/ir";
    setenv("TAVRIX_IR", ("unix:" + path).c_str(), 1);
    std::thread client([&] {
        Connection connection;
        while (!connection.IsOpen()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            connection = ConnectToPath(path);
        }
        EXPECT_EQ(Ask(connection, Packet(0x82, Body("abc"))), Success);
    });
    ObexServer server;
    Sink sink;
    Listener listener;
    EXPECT_EQ(server.Receive(&sink, LongTime, Listener::Hear, &listener), 1);
    client.join();
    EXPECT_EQ(sink.bytes, "abc");
    EXPECT_EQ(listener.told, (Events{Waiting(), Found(u""), Progress(3), Finished()}));
}
