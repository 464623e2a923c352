// Whole exchanges over real sockets, with a client that the tests script byte by byte.

#include "platform/testing/Faults.h"
#include "transfer/tests/ObexTesting.h"

#include <filesystem>

using namespace obextest;

namespace
{

using Events = std::vector<Told>;

// A CONNECT of version 1.0 with packets of 1,024 bytes, and its answer.
const char Connect[] = "80 00 07 10 00 04 00";
const char Connected[] = "A0 00 07 10 00 02 00";
const char Continue[] = "90 00 03";
const char Success[] = "A0 00 03";
// A name "a.png".
const char NameHeader[] = "01 00 0F 00 61 00 2E 00 70 00 6E 00 67 00 00";

size_t ThreadCount()
{
    size_t count = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/task"))
        ++count;
    return count;
}

} // namespace

TEST(ObexServer, TakesAnObjectInSeveralPacketsAndTellsOfItAsItComes)
{
    std::string heard;
    const Outcome outcome = Receive([&](Connection& client) {
        const auto ask = [&](const char* packet) { heard += Ask(client, Hex(packet)) + " | "; };
        ask("80 00 07 10 00 04 00");
        ask("02 00 1F  01 00 0F 00 61 00 2E 00 70 00 6E 00 67 00 00  C3 00 00 00 05"
            "  48 00 05 61 62  48 00 03");
        ask("02 00 07  48 00 04 63");
        ask("82 00 08  49 00 05 64 65");
        ask("81 00 03");
        heard += Rest(client) + "end";
    });
    EXPECT_EQ(heard, "A0 00 07 10 00 02 00 | 90 00 03 | 90 00 03 | A0 00 03 | A0 00 03 | end");
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.object, "abcde");
    EXPECT_EQ(outcome.told, (Events{Waiting(), Found(), Name(u"a.png"), Progress(2, 5),
                                    Progress(2, 5), Progress(3, 5), Progress(5, 5), Finished()}));
}

TEST(ObexServer, ServesAClientThatDoesNotConnectFirst)
{
    std::string heard;
    const Outcome outcome = Receive([&](Connection& client) {
        heard = Ask(client, Packet(0x82, Hex(NameHeader) + Body("abc")));
    });
    EXPECT_EQ(heard, Success);
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.object, "abc");
    EXPECT_EQ(outcome.told, (Events{Waiting(), Found(), Name(u"a.png"), Progress(3), Finished()}));
}

TEST(ObexServer, WhatAConnectCarriesChangesNothing)
{
    for (const char* payload :
         {"10 00 04 00", "FF FF 00 00", "10 00 FF FF C0 00 00 00 01 C3 00 00 00 63 97 01",
          "10 00 04 00 46 00 13 F9 EC 7B C4 95 3C 11 D2 98 4E 52 54 00 DC 9E 09",
          "10 00 04 00 01 00 07 00 62 00 00", "10 00 04", "10", ""}) {
        std::string heard;
        const Outcome outcome = Receive([&](Connection& client) {
            heard = Ask(client, Packet(0x80, Hex(payload)));
            heard += " | " + Ask(client, Packet(0x82, Body("abc")));
        });
        EXPECT_EQ(heard, "A0 00 07 10 00 02 00 | A0 00 03") << payload;
        EXPECT_EQ(outcome.result, 1) << payload;
        EXPECT_EQ(outcome.told, (Events{Waiting(), Found(), Progress(3), Finished()})) << payload;
    }
}

TEST(ObexServer, AClientThatConnectsAndDisconnectsHasFailed)
{
    for (const char* disconnect : {"81 00 03", "01 00 03"}) {
        std::string heard;
        const Outcome outcome = Receive([&](Connection& client) {
            EXPECT_EQ(Ask(client, Hex(Connect)), Connected);
            client.Write(Hex(disconnect));
            heard = Rest(client);
        });
        EXPECT_EQ(heard, "");
        EXPECT_EQ(outcome.result, -1);
        EXPECT_EQ(outcome.told, (Events{Waiting(), Found()}));
    }
}

TEST(ObexServer, BothOpcodesOfADisconnectAreAnsweredAndNothingElseIs)
{
    for (unsigned opcode = 0; opcode < 256; ++opcode) {
        std::string heard;
        const Outcome outcome = Receive([&](Connection& client) {
            EXPECT_EQ(Ask(client, Packet(0x82, Body("abc"))), Success);
            client.Write(Packet(opcode, ""));
            heard = Rest(client);
        });
        EXPECT_EQ(heard, opcode == 0x01 || opcode == 0x81 ? Success : "") << opcode;
        EXPECT_EQ(outcome.result, 1) << opcode;
        EXPECT_EQ(outcome.told.back(), Finished()) << opcode;
    }
}

TEST(ObexServer, AClientThatGoesWithoutDisconnectingHasDeliveredItsObject)
{
    for (const char* last : {"", "81", "81 00", "81 00 04", "81 00 02", "81 02 01"}) {
        std::string heard;
        const Outcome outcome = Receive([&](Connection& client) {
            EXPECT_EQ(Ask(client, Packet(0x82, Body("abc"))), Success);
            client.Write(Hex(last));
            client.EndWriting();
            heard = Rest(client);
        });
        EXPECT_EQ(heard, "") << last;
        EXPECT_EQ(outcome.result, 1) << last;
        EXPECT_EQ(outcome.told, (Events{Waiting(), Found(), Progress(3), Finished()})) << last;
    }
}

TEST(ObexServer, ASecondObjectOnTheSameLinkIsNotServed)
{
    std::string heard;
    const Outcome outcome = Receive([&](Connection& client) {
        EXPECT_EQ(Ask(client, Packet(0x82, Body("abc"))), Success);
        client.Write(Packet(0x82, Hex(NameHeader) + Body("def")));
        heard = Rest(client);
    });
    EXPECT_EQ(heard, "");
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.object, "abc");
    EXPECT_EQ(outcome.told, (Events{Waiting(), Found(), Progress(3), Finished()}));
}

TEST(ObexServer, AnythingButAPutEndsTheLinkWhereAPutIsDue)
{
    for (unsigned opcode = 0; opcode < 256; ++opcode) {
        if (opcode == 0x80 || opcode == 0x02 || opcode == 0x82)
            continue;
        std::string heard;
        const Outcome outcome = Receive([&](Connection& client) {
            client.Write(Packet(opcode, Body("abc")));
            heard = Rest(client);
        });
        EXPECT_EQ(heard, "") << opcode;
        EXPECT_EQ(outcome.result, -1) << opcode;
        EXPECT_EQ(outcome.told, (Events{Waiting(), Found()})) << opcode;
    }
}

TEST(ObexServer, AnythingButAPutEndsTheLinkBehindAConnectAndBetweenPuts)
{
    for (const unsigned opcode : {0x80, 0x81, 0x01, 0x00, 0x83, 0x03, 0x85, 0x7F, 0xFF}) {
        std::string heard;
        const Outcome connected = Receive([&](Connection& client) {
            EXPECT_EQ(Ask(client, Hex(Connect)), Connected);
            client.Write(Packet(opcode, Hex("10 00 04 00")));
            heard = Rest(client);
        });
        EXPECT_EQ(heard, "") << opcode;
        EXPECT_EQ(connected.result, -1) << opcode;

        const Outcome putting = Receive([&](Connection& client) {
            EXPECT_EQ(Ask(client, Packet(0x02, Body("abc"))), Continue);
            client.Write(Packet(opcode, Body("def")));
            heard = Rest(client);
        });
        EXPECT_EQ(heard, "") << opcode;
        EXPECT_EQ(putting.result, -1) << opcode;
        EXPECT_EQ(putting.object, "abc") << opcode;
        EXPECT_EQ(putting.told, (Events{Waiting(), Found(), Progress(3)})) << opcode;
    }
}

TEST(ObexServer, HeadersComeInAnyOrder)
{
    const std::string length = Hex("C3 00 00 00 06");
    const std::string vendor = Hex("CF 12 34 56 78");
    const std::string name = Hex(NameHeader);
    struct Row {
        const char* client;
        std::string first;
        Events told;
    };
    for (const Row& row : {Row{"the name last",
                               length + Body("abc") + name,
                               {Progress(3, 6), Name(u"a.png"), Progress(6, 6)}},
                           Row{"the length first",
                               length + name + Body("abc"),
                               {Name(u"a.png"), Progress(3, 6), Progress(6, 6)}},
                           Row{"a header of a vendor",
                               name + length + vendor + Body("abc"),
                               {Name(u"a.png"), Progress(3, 6), Progress(6, 6)}},
                           Row{"no name", Body("abc"), {Progress(3), Progress(6)}}}) {
        std::string heard;
        const Outcome outcome = Receive([&](Connection& client) {
            heard = Ask(client, Packet(0x02, row.first));
            heard += " | " + Ask(client, Packet(0x82, Body("def", 0x49)));
        });
        Events told = {Waiting(), Found()};
        told.insert(told.end(), row.told.begin(), row.told.end());
        told.push_back(Finished());
        EXPECT_EQ(heard, "90 00 03 | A0 00 03") << row.client;
        EXPECT_EQ(outcome.result, 1) << row.client;
        EXPECT_EQ(outcome.object, "abcdef") << row.client;
        EXPECT_EQ(outcome.told, told) << row.client;
    }
}

TEST(ObexServer, AnEmptyEndOfBodyFinishesTheObject)
{
    std::string heard;
    const Outcome outcome = Receive([&](Connection& client) {
        heard = Ask(client, Packet(0x02, Body("abc")));
        heard += " | " + Ask(client, Hex("82 00 06 49 00 03"));
    });
    EXPECT_EQ(heard, "90 00 03 | A0 00 03");
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.object, "abc");
    EXPECT_EQ(outcome.told, (Events{Waiting(), Found(), Progress(3), Progress(3), Finished()}));
}

TEST(ObexServer, AFinalPutNeedsNoEndOfBodyAndNoBody)
{
    for (const char* last : {"82 00 07 48 00 04 64", "82 00 03"}) {
        const Outcome outcome = Receive([&](Connection& client) {
            EXPECT_EQ(Ask(client, Packet(0x02, Body("abc"))), Continue);
            EXPECT_EQ(Ask(client, Hex(last)), Success);
        });
        EXPECT_EQ(outcome.result, 1);
        EXPECT_EQ(outcome.object, last[4] == '0' && last[7] == '7' ? "abcd" : "abc");
        EXPECT_EQ(outcome.told.back(), Finished());
    }
}

TEST(ObexServer, ATypeInFrontOfABodyHidesItAndTheNextPacketIsTaken)
{
    std::string heard;
    const Outcome outcome = Receive([&](Connection& client) {
        heard =
            Ask(client, Packet(0x02, Hex(NameHeader) + Packet(0x42, "image/png") + Body("abc")));
        heard += " | " + Ask(client, Packet(0x82, Body("def")));
    });
    EXPECT_EQ(heard, "90 00 03 | A0 00 03");
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.object, "def");
    EXPECT_EQ(outcome.told, (Events{Waiting(), Found(), Name(u"a.png"), Progress(3), Finished()}));
}

TEST(ObexServer, ABrokenHeaderEndsItsPacketWhichIsAnsweredAsUsual)
{
    for (const char* header :
         {"01 00 0F 00 61", "01 00", "05 00 07 00 61", "97", "C3 00 00", "CB"}) {
        std::string heard;
        const Outcome outcome = Receive([&](Connection& client) {
            heard = Ask(client, Packet(0x02, Body("abc") + Hex(header)));
            heard += " | " + Ask(client, Packet(0x82, Body("def")));
        });
        EXPECT_EQ(heard, "90 00 03 | A0 00 03") << header;
        EXPECT_EQ(outcome.result, 1) << header;
        EXPECT_EQ(outcome.object, "abcdef") << header;
    }
}

TEST(ObexServer, APacketOf512BytesIsTakenAndOneOf513IsNot)
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

TEST(ObexServer, APacketThatTellsLessThanItsHeadIsBroken)
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

TEST(ObexServer, ABodyOfAnImpossibleLengthEndsTheLinkAndTheResultIsASuccess)
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

TEST(ObexServer, ABodyWhoseLengthIsCutEndsTheLinkAsAFailure)
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

TEST(ObexServer, WhatFollowsAPacketsHeadMayComeByteByByte)
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

TEST(ObexServer, AHeadInTwoPiecesIsBroken)
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

TEST(ObexServer, PacketsThatComeTogetherAreTakenOneAfterTheOther)
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

TEST(ObexServer, AClientMayVanishAtAnyByte)
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

TEST(ObexServer, AClientThatBreaksTheLinkAtAnyByteLeavesWhatWasTakenByThen)
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

TEST(ObexServer, ASilentClientIsWaitedForUntilItGoes)
{
    std::atomic<bool> received{false};
    UseOwnAddress();
    Client silent([&](Connection& client) {
        client.Pause(1500);
        EXPECT_FALSE(received);
    });
    ObexServer server;
    Sink sink;
    const i32 result = server.Receive(&sink, 1, nullptr, nullptr);
    received = true;
    EXPECT_EQ(result, -1);
}

TEST(ObexServer, WithNoClientInTimeTheAcceptThreadIsGone)
{
    Scope scope;
    UseOwnAddress();
    ObexServer server;
    Sink sink;
    const auto holdings = tavrix::platform::CountHoldings();
    const size_t threads = ThreadCount();
    Listener listener;
    EXPECT_EQ(server.Receive(&sink, 1, Listener::Hear, &listener), -1);
    EXPECT_EQ(listener.told, Events{Waiting()});
    EXPECT_TRUE(tavrix::platform::CountHoldings() == holdings);
    for (int i = 0; i < 1000 && ThreadCount() > threads; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(ThreadCount(), threads);
    // Nobody listens any more.
    EXPECT_FALSE(ConnectTo(OwnAddress(), 650).IsOpen());
}

TEST(ObexServer, TheTimeIsOverWhenTheTicksHavePassedItAlsoWhereTheyBeginAnew)
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

TEST(ObexServer, APeerThatTheLinkDoesNotKnowHasTheEmptyName)
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

TEST(ObexServer, WithoutADestinationItDoesNotEvenWait)
{
    ObexServer server;
    Listener listener;
    EXPECT_EQ(server.Receive(nullptr, LongTime, Listener::Hear, &listener), -4);
    EXPECT_EQ(listener.told, Events{});
}

TEST(ObexServer, AnAddressThatIsTakenIsAFailureAtOnce)
{
    UseOwnAddress();
    const WireServer other(650, [](Connection&, int) {});
    ObexServer server;
    Sink sink;
    Listener listener;
    EXPECT_LT(server.Receive(&sink, LongTime, Listener::Hear, &listener), 0);
    EXPECT_EQ(listener.told, Events{Waiting()});
}

TEST(ObexServer, ADestinationThatFailsIsNotNoticed)
{
    for (const bool fails : {true, false}) {
        UseOwnAddress();
        Sink sink;
        sink.result = fails ? -2 : 1;
        sink.taken = 1;
        Listener listener;
        ObexServer server;
        std::string heard;
        i32 result = 0;
        {
            Client client([&](Connection& connection) {
                heard = Ask(connection, Packet(0x02, Body("abc")));
                heard += " | " + Ask(connection, Packet(0x82, Body("def")));
            });
            result = server.Receive(&sink, LongTime, Listener::Hear, &listener);
        }
        EXPECT_EQ(heard, "90 00 03 | A0 00 03");
        EXPECT_EQ(result, 1);
        EXPECT_EQ(sink.bytes, fails ? "" : "ad");
        EXPECT_EQ(listener.told,
                  (Events{Waiting(), Found(), Progress(3), Progress(6), Finished()}));
    }
}

TEST(ObexServer, WithoutACallbackItReceivesAllTheSame)
{
    UseOwnAddress();
    ObexServer server;
    Sink sink;
    Client client([](Connection& connection) {
        EXPECT_EQ(Ask(connection, Packet(0x82, Hex(NameHeader) + Body("abc"))), Success);
    });
    EXPECT_EQ(server.Receive(&sink, LongTime, nullptr, nullptr), 1);
    EXPECT_EQ(sink.bytes, "abc");
}

TEST(ObexServer, TheNameStaysUntilTheEnd)
{
    struct Keeper {
        const WCHAR* name = nullptr;
        std::u16string atTheEnd;
        static i32 Hear(u32 event, void* argument, void* context)
        {
            auto& keeper = *static_cast<Keeper*>(context);
            if (event == 16)
                keeper.name = static_cast<const WCHAR*>(argument);
            if (event == 240)
                keeper.atTheEnd = keeper.name;
            return 1;
        }
    };
    UseOwnAddress();
    ObexServer server;
    Sink sink;
    Keeper keeper;
    Client client([](Connection& connection) {
        EXPECT_EQ(Ask(connection, Packet(0x02, Hex(NameHeader))), Continue);
        EXPECT_EQ(Ask(connection, Packet(0x82, Body("abc"))), Success);
    });
    EXPECT_EQ(server.Receive(&sink, LongTime, Keeper::Hear, &keeper), 1);
    EXPECT_EQ(keeper.atTheEnd, u"a.png");
}

TEST(ObexServer, ServesOneExchangeAfterTheOtherAndKeepsNothingInBetween)
{
    Scope scope;
    ObexServer server;
    const Script whole = [](Connection& client) {
        EXPECT_EQ(Ask(client, Hex(Connect)), Connected);
        EXPECT_EQ(Ask(client, Packet(0x82, Hex(NameHeader) + Hex("C3 00 00 00 03") + Body("abc"))),
                  Success);
    };
    const Script broken = [](Connection& client) {
        client.Write(Packet(0x82, Hex(NameHeader) + Hex("48 00 00")));
        (void)client.ReadAll();
    };
    const Script vanishing = [](Connection& client) { client.Write("\x82"); };
    const Script plain = [](Connection& client) {
        EXPECT_EQ(Ask(client, Packet(0x82, Body("de"))), Success);
    };
    EXPECT_EQ(Receive(server, whole).result, 1);
    const auto holdings = tavrix::platform::CountHoldings();
    for (const Script& before : {whole, broken, vanishing}) {
        (void)Receive(server, before);
        EXPECT_TRUE(tavrix::platform::CountHoldings() == holdings);
        EXPECT_EQ(server.Close(), 0);
        const Outcome outcome = Receive(server, plain);
        EXPECT_EQ(outcome.result, 1);
        EXPECT_EQ(outcome.object, "de");
        // Neither the name nor the length of the one before.
        EXPECT_EQ(outcome.told, (Events{Waiting(), Found(), Progress(2), Finished()}));
        EXPECT_TRUE(tavrix::platform::CountHoldings() == holdings);
    }
}

TEST(ObexServer, OnlyOneClientGetsIn)
{
    bool refused = false;
    const Outcome outcome = Receive([&](Connection& client) {
        // Once this one is answered the listening is over.
        EXPECT_EQ(Ask(client, Hex(Connect)), Connected);
        refused = !ConnectTo(OwnAddress(), 650).IsOpen();
        EXPECT_EQ(Ask(client, Packet(0x82, Body("abc"))), Success);
    });
    EXPECT_TRUE(refused);
    EXPECT_EQ(outcome.result, 1);
}

TEST(ObexServer, TakesFiftyMegabytes)
{
    /// Keeps a sum that sees bytes that are lost, doubled or out of order.
    class Summing : public Sink
    {
    public:
        u64 size = 0;
        u32 sum = 0;
        static u32 Next(u32 sum, u8 byte) { return sum * 16777619U + byte; }
        i32 Write(const void* buffer, u32* length) override
        {
            for (u32 i = 0; i < *length; ++i)
                sum = Next(sum, static_cast<const u8*>(buffer)[i]);
            size += *length;
            return Done;
        }
    };
    constexpr u32 Total = 50u << 20;
    constexpr u32 Longest = 506;
    UseOwnAddress();
    u32 expected = 0;
    Summing sink;
    Listener listener;
    ObexServer server;
    {
        Client client([&](Connection& connection) {
            for (u32 sent = 0; sent < Total;) {
                std::string data(std::min(Longest, Total - sent), '\0');
                for (char& byte : data) {
                    byte = static_cast<char>(sent++ * 2654435761U >> 24);
                    expected = Summing::Next(expected, static_cast<u8>(byte));
                }
                const bool last = sent == Total;
                ASSERT_EQ(Ask(connection, Packet(last ? 0x82 : 0x02, Body(data))),
                          last ? Success : Continue);
            }
        });
        EXPECT_EQ(server.Receive(&sink, LongTime, Listener::Hear, &listener), 1);
    }
    EXPECT_EQ(sink.size, Total);
    EXPECT_EQ(sink.sum, expected);
    EXPECT_EQ(listener.told[listener.told.size() - 2], Progress(Total));
    EXPECT_EQ(listener.told.back(), Finished());
}

TEST(ObexServer, WithoutAClientTheStepsFail)
{
    ObexServer server;
    u8 opcode = 7;
    u16 word = 0;
    EXPECT_EQ(server.ReadPacket(&opcode), -1);
    EXPECT_EQ(opcode, 7);
    EXPECT_EQ(server.SendResponse(0x20, nullptr, 0), -1);
    EXPECT_EQ(server.ReadByte(&opcode), -1);
    EXPECT_EQ(server.ReadU16(&word), -1);
    EXPECT_EQ(server.Close(), 0);
}

TEST(ObexServer, AResponseIsOneOfTwoAndItsDataHasABound)
{
    UseOwnAddress();
    std::string heard;
    ObexServer server;
    {
        Client client([&](Connection& connection) { heard = Rest(connection); });
        ASSERT_EQ(server.Accept(LongTime), 1);
        std::string data(253, '\0');
        for (size_t i = 0; i < data.size(); ++i)
            data[i] = static_cast<char>(i);
        for (unsigned code = 0; code < 256; ++code) {
            if (code == 0x10 || code == 0x20)
                continue;
            EXPECT_EQ(server.SendResponse(static_cast<u8>(code), nullptr, 0), -1) << code;
        }
        EXPECT_EQ(server.SendResponse(0x20, data.data(), 253), -1);
        EXPECT_EQ(server.SendResponse(0x20, data.data(), -1), -1);
        EXPECT_EQ(server.SendResponse(0x20, nullptr, 1), -4);
        EXPECT_EQ(server.SendResponse(0x10, nullptr, 0), 1);
        EXPECT_EQ(server.SendResponse(0x20, data.data(), 2), 1);
        EXPECT_EQ(server.SendResponse(0x10, data.data(), 252), 1);
        EXPECT_EQ(server.Close(), 1);
        EXPECT_EQ(server.Close(), 0);
    }
    std::string last = "90 00 FF";
    for (int i = 0; i < 252; ++i) {
        char digits[8];
        std::snprintf(digits, sizeof digits, " %02X", i);
        last += digits;
    }
    EXPECT_EQ(heard, "90 00 03 A0 00 05 00 01 " + last);
}

TEST(ObexServer, APacketIsParsedFromItsFirstPayloadByteOn)
{
    UseOwnAddress();
    const Client client([&](Connection& connection) {
        connection.Write(Hex("42 00 0A 01 02 03 04 05 06 07") + Hex("C3 00 03"));
        (void)connection.ReadAll();
    });
    ObexServer server; // goes before the client, which waits for that
    ASSERT_EQ(server.Accept(LongTime), 1);
    u8 opcode = 0;
    u8 byte = 0;
    u16 word = 0;
    u32 longWord = 0;
    ASSERT_EQ(server.ReadPacket(&opcode), 1);
    EXPECT_EQ(opcode, 0x42);
    EXPECT_EQ(server.ReadByte(&byte), 1);
    EXPECT_EQ(byte, 1);
    EXPECT_EQ(server.ReadU16(&word), 1);
    EXPECT_EQ(word, 0x0203);
    EXPECT_EQ(server.ReadU32(&longWord), 1);
    EXPECT_EQ(longWord, 0x04050607U);
    EXPECT_EQ(server.ReadByte(&byte), -1);
    ASSERT_EQ(server.ReadPacket(&opcode), 1);
    EXPECT_EQ(opcode, 0xC3);
    EXPECT_EQ(server.ReadByte(&byte), -1);
}
