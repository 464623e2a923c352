// Whole exchanges over real sockets, with a client that the tests script byte by byte.

#include "platform/testing/Faults.h"
#include "transfer/tests/ObexTesting.h"

using namespace obextest;

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
