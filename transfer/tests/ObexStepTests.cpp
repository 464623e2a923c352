// What a receiver owes its caller, one exchange after the other, and its steps by themselves.

#include "platform/testing/Faults.h"
#include "transfer/tests/ObexTesting.h"

using namespace obextest;

TEST(ObexStep, WithoutADestinationItDoesNotEvenWait)
{
    ObexServer server;
    Listener listener;
    EXPECT_EQ(server.Receive(nullptr, LongTime, Listener::Hear, &listener), -4);
    EXPECT_EQ(listener.told, Events{});
}

TEST(ObexStep, AnAddressThatIsTakenIsAFailureAtOnce)
{
    UseOwnAddress();
    const WireServer other(650, [](Connection&, int) {});
    ObexServer server;
    Sink sink;
    Listener listener;
    EXPECT_LT(server.Receive(&sink, LongTime, Listener::Hear, &listener), 0);
    EXPECT_EQ(listener.told, Events{Waiting()});
}

TEST(ObexStep, ADestinationThatFailsIsNotNoticed)
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

TEST(ObexStep, WithoutACallbackItReceivesAllTheSame)
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

TEST(ObexStep, TheNameStaysUntilTheEnd)
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

TEST(ObexStep, ServesOneExchangeAfterTheOtherAndKeepsNothingInBetween)
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

TEST(ObexStep, OnlyOneClientGetsIn)
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

TEST(ObexStep, TakesFiftyMegabytes)
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

TEST(ObexStep, WithoutAClientTheStepsFail)
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

TEST(ObexStep, AResponseIsOneOfTwoAndItsDataHasABound)
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

TEST(ObexStep, APacketIsParsedFromItsFirstPayloadByteOn)
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
