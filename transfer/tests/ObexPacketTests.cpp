// What a receiver makes of the packets' contents, from memory alone.

#include "foundation/tests/StreamTesting.h"
#include "platform/testing/Faults.h"
#include "transfer/tests/ObexTesting.h"

#include <random>

using namespace obextest;

namespace
{

/// A payload that stands alone in memory, with the parser at its start.
struct Payload {
    explicit Payload(const std::string& text) : bytes(text)
    {
        EXPECT_EQ(parser.Open(bytes.data.get(), static_cast<u32>(bytes.size), 1, nullptr), 1);
    }
    ExactBytes bytes;
    MemoryStream parser;
};

/// An object that comes in packet by packet.
struct Incoming {
    Sink sink;
    Listener listener;
    ObexObject object = {&sink, Listener::Hear, &listener, nullptr, 0, 0};

    Incoming() = default;
    ~Incoming() { FreeObexName(object); }
    Incoming(const Incoming&) = delete;
    Incoming& operator=(const Incoming&) = delete;

    i32 Put(const std::string& bytes)
    {
        Payload payload(bytes);
        return ParseObexPut(payload.parser, payload.bytes.data.get(), object);
    }
    const std::vector<Told>& Events() const { return listener.told; }
};

/// Where the parser stands behind a CONNECT.
u64 ConnectReadsUpTo(const std::string& bytes)
{
    Payload payload(bytes);
    ParseObexConnect(payload.parser);
    return PositionOf(payload.parser);
}

template <class Number>
i32 ReadFrom(const std::string& bytes, i32 (*read)(Stream&, Number*), Number* out)
{
    Payload payload(bytes);
    return read(payload.parser, out);
}

/// Answers every read with a code.
class Refusing : public Sink
{
public:
    i32 code = -77;
    i32 Read(void*, u32*) override { return code; }
};

} // namespace

TEST(ObexNumbers, AreReadFromTheHighByteOn)
{
    Payload payload(Hex("FE 81 02 83 04 05 F6"));
    u8 byte = 0;
    u16 word = 0;
    u32 longWord = 0;
    EXPECT_EQ(ReadObexByte(payload.parser, &byte), 1);
    EXPECT_EQ(byte, 0xFE);
    EXPECT_EQ(ReadObexU16(payload.parser, &word), 1);
    EXPECT_EQ(word, 0x8102);
    EXPECT_EQ(ReadObexU32(payload.parser, &longWord), 1);
    EXPECT_EQ(longWord, 0x830405F6U);
}

TEST(ObexNumbers, FewerBytesThanANumberHasAreAFailureThatLeavesItAlone)
{
    u8 byte = 9;
    u16 word = 9;
    u32 longWord = 9;
    EXPECT_EQ(ReadFrom("", ReadObexByte, &byte), -1);
    EXPECT_EQ(ReadFrom("", ReadObexU16, &word), -1);
    EXPECT_EQ(ReadFrom("a", ReadObexU16, &word), -1);
    EXPECT_EQ(ReadFrom("", ReadObexU32, &longWord), -1);
    EXPECT_EQ(ReadFrom("abc", ReadObexU32, &longWord), -1);
    EXPECT_EQ(byte, 9);
    EXPECT_EQ(word, 9);
    EXPECT_EQ(longWord, 9U);
}

TEST(ObexNumbers, TheStreamsOwnFailureIsPassedOn)
{
    Refusing stream;
    u8 byte = 0;
    u16 word = 0;
    u32 longWord = 0;
    EXPECT_EQ(ReadObexByte(stream, &byte), -77);
    EXPECT_EQ(ReadObexU16(stream, &word), -77);
    EXPECT_EQ(ReadObexU32(stream, &longWord), -77);
}

TEST(ObexConnect, IsReadToItsEndHeaderByHeader)
{
    // Version, flags, packet length; Count; Length; one byte; Description "A".
    const std::string whole = Hex("10 00 04 00  C0 00 00 00 01  C3 00 00 00 09  97 05"
                                  "05 00 07 00 41 00 00");
    EXPECT_EQ(ConnectReadsUpTo(whole), whole.size());
}

TEST(ObexConnect, AHeaderOfTheBytesFormEndsTheReadingBehindItsIdentifier)
{
    for (const char* identifier : {"42", "46", "48", "49", "4A", "7F"}) {
        EXPECT_EQ(ConnectReadsUpTo(Hex("10 00 04 00 C0 00 00 00 01 " + std::string(identifier) +
                                       " 00 05 61 62 97 05")),
                  10U)
            << identifier;
    }
}

TEST(ObexConnect, AnyPartOfItCanBeMissing)
{
    const std::string whole = Hex("10 00 04 00 C0 00 00 00 01 05 00 07 00 41 00 00");
    for (size_t size = 0; size <= whole.size(); ++size)
        EXPECT_EQ(ConnectReadsUpTo(whole.substr(0, size)), size);
}

TEST(ObexConnect, ANameInItIsPassedOverUpToItsZero)
{
    const std::string whole = Hex("10 00 02 00  01 00 07 00 41 00 00  97 01");
    EXPECT_EQ(ConnectReadsUpTo(whole), whole.size());
}

TEST(ObexPut, OfNothingTellsAndDeliversNothing)
{
    Incoming incoming;
    EXPECT_EQ(incoming.Put(""), 1);
    EXPECT_EQ(incoming.Events(), Events{});
    EXPECT_EQ(incoming.sink.writes, 0U);
}

TEST(ObexPut, ANameOfLengthFifteenHasSixUnitsOfWhichTheLastIsZero)
{
    Incoming incoming;
    EXPECT_EQ(incoming.Put(Hex("01 00 0F 00 61 00 2E 00 70 00 6E 00 67 00 00")), 1);
    EXPECT_EQ(incoming.Events(), Events{Name(u"a.png")});
    EXPECT_EQ(std::u16string(incoming.object.name, 7), std::u16string(u"a.png\0\0", 7));
}

TEST(ObexPut, ANamesUnitsAreOfAnyScript)
{
    Incoming incoming;
    // U+8D64 U+5916, then a pair for U+1F4F7.
    EXPECT_EQ(incoming.Put(Hex("01 00 0D 8D 64 59 16 D8 3D DC F7 00 00")), 1);
    EXPECT_EQ(incoming.Events(), Events{Name(u"赤外\U0001F4F7")});
}

TEST(ObexPut, ANameWithoutAFinalZeroGetsOne)
{
    Incoming incoming;
    EXPECT_EQ(incoming.Put(Hex("01 00 07 00 61 00 62")), 1);
    EXPECT_EQ(incoming.Events(), Events{Name(u"ab")});
    EXPECT_EQ(incoming.object.name[2], 0);
}

TEST(ObexPut, ANameOfNoUnitsIsTheEmptyNameAndTheNextHeaderFollows)
{
    for (const char* length : {"00 00", "00 01", "00 02", "00 03", "00 04"}) {
        Incoming incoming;
        EXPECT_EQ(incoming.Put(Hex("01 " + std::string(length) + " 48 00 04 7A")), 1) << length;
        EXPECT_EQ(incoming.Events(), (Events{Name(u""), Progress(1)})) << length;
    }
}

TEST(ObexPut, TheOddByteOfANameIsTheNextHeader)
{
    Incoming incoming;
    // Length 6: one unit, and 0x97 with one byte behind it.
    EXPECT_EQ(incoming.Put(Hex("01 00 06 00 61 97 05 48 00 04 7A")), 1);
    EXPECT_EQ(incoming.Events(), (Events{Name(u"a"), Progress(1)}));
}

TEST(ObexPut, ANameThatEndsTooSoonIsToldAsFarAsItCame)
{
    for (const char* rest : {"00 61 00 62", "00 61 00 62 00"}) {
        Incoming incoming;
        EXPECT_EQ(incoming.Put(Hex("01 00 0F " + std::string(rest))), 1) << rest;
        EXPECT_EQ(incoming.Events(), Events{Name(u"ab")}) << rest;
        EXPECT_EQ(std::u16string(incoming.object.name, 7), std::u16string(u"ab\0\0\0\0\0", 7));
    }
    Incoming nothing;
    EXPECT_EQ(nothing.Put(Hex("01 00 0F")), 1);
    EXPECT_EQ(nothing.Events(), Events{Name(u"")});
}

TEST(ObexPut, ANameWithoutItsLengthEndsThePacketUntold)
{
    for (const char* bytes : {"01", "01 00"}) {
        Incoming incoming;
        EXPECT_EQ(incoming.Put(Hex(bytes)), 1);
        EXPECT_EQ(incoming.Events(), Events{});
        EXPECT_EQ(incoming.object.name, nullptr);
    }
}

TEST(ObexPut, TheLongestNameThatALengthCanTellOfIsNoTrouble)
{
    Incoming incoming;
    EXPECT_EQ(incoming.Put(Hex("01 FF FF 00 61")), 1);
    EXPECT_EQ(incoming.Events(), Events{Name(u"a")});
    for (u32 i = 1; i <= (0xFFFF - 3) / 2; ++i)
        ASSERT_EQ(incoming.object.name[i], 0) << i;
}

TEST(ObexPut, AnotherNameTakesTheFirstOnesPlace)
{
    Scope scope;
    const auto before = tavrix::platform::CountHoldings();
    {
        Incoming incoming;
        EXPECT_EQ(incoming.Put(Hex("01 00 07 00 61 00 00 01 00 07 00 62 00 00")), 1);
        const auto one = tavrix::platform::CountHoldings().heapBytes;
        EXPECT_EQ(incoming.Put(Hex("01 00 07 00 63 00 00")), 1);
        EXPECT_EQ(incoming.Events(), (Events{Name(u"a"), Name(u"b"), Name(u"c")}));
        EXPECT_EQ(std::u16string(incoming.object.name), u"c");
        EXPECT_EQ(tavrix::platform::CountHoldings().heapBytes, one);
        FreeObexName(incoming.object);
        EXPECT_EQ(incoming.object.name, nullptr);
    }
    EXPECT_TRUE(tavrix::platform::CountHoldings() == before);
}

TEST(ObexPut, ANameThatMemoryCannotHoldEndsTheExchange)
{
    Scope scope;
    Incoming incoming;
    EXPECT_EQ(incoming.Put(Hex("01 00 07 00 61 00 00")), 1);
    {
        const ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Once);
        EXPECT_EQ(incoming.Put(Hex("01 00 07 00 62 00 00 48 00 04 7A")), -2);
    }
    EXPECT_EQ(incoming.Events(), Events{Name(u"a")});
    EXPECT_EQ(incoming.sink.bytes, "");
    EXPECT_EQ(std::u16string(incoming.object.name), u"a");
}

TEST(ObexPut, ABodysDataGoesToTheDestinationAndIsToldAsASum)
{
    Incoming incoming;
    EXPECT_EQ(incoming.Put(Hex("48 00 06 61 62 63")), 1);
    EXPECT_EQ(incoming.Put(Hex("48 00 04 64 49 00 05 65 66")), 1);
    EXPECT_EQ(incoming.sink.bytes, "abcdef");
    EXPECT_EQ(incoming.Events(), (Events{Progress(3), Progress(4), Progress(6)}));
    EXPECT_EQ(incoming.object.received, 6U);
}

TEST(ObexPut, ABodyOfNoDataIsToldAndAddsNothing)
{
    for (const char* identifier : {"48", "49"}) {
        Incoming incoming;
        EXPECT_EQ(incoming.Put(Hex(std::string(identifier) + " 00 03 48 00 04 7A")), 1);
        EXPECT_EQ(incoming.Events(), (Events{Progress(0), Progress(1)}));
        EXPECT_EQ(incoming.sink.bytes, "z");
    }
}

TEST(ObexPut, TheLongestBodyIsTaken)
{
    Incoming incoming;
    const std::string data(506, 'x');
    EXPECT_EQ(incoming.Put(Hex("48 01 FD") + data), 1);
    EXPECT_EQ(incoming.sink.bytes, data);
    EXPECT_EQ(incoming.Events(), Events{Progress(506)});
}

TEST(ObexPut, ABodyOfAnImpossibleLengthEndsTheExchangeAsASuccess)
{
    for (const char* length : {"00 00", "00 01", "00 02", "01 FE", "01 FF", "80 00", "FF FF"})
        for (const char* identifier : {"48", "49"}) {
            Incoming incoming;
            EXPECT_EQ(incoming.Put(Hex("48 00 04 61") +
                                   Hex(std::string(identifier) + " " + length) +
                                   std::string(600, 'x')),
                      0)
                << length;
            EXPECT_EQ(incoming.Events(), Events{Progress(1)}) << length;
            EXPECT_EQ(incoming.sink.bytes, "a") << length;
        }
}

TEST(ObexPut, ABodyLongerThanThePacketDeliversWhatThereIs)
{
    Incoming incoming;
    EXPECT_EQ(incoming.Put(Hex("48 00 08 61 62")), 1);
    EXPECT_EQ(incoming.Put(Hex("48 00 04")), 1);
    EXPECT_EQ(incoming.sink.bytes, "ab");
    EXPECT_EQ(incoming.Events(), (Events{Progress(2), Progress(2)}));
    EXPECT_EQ(incoming.object.received, 2U);
}

TEST(ObexPut, ABodyWhoseLengthIsCutIsAFailure)
{
    for (const char* bytes : {"48 00 04 61 48", "48 00 04 61 48 00", "48 00 04 61 49 00"}) {
        Incoming incoming;
        EXPECT_EQ(incoming.Put(Hex(bytes)), -1);
        EXPECT_EQ(incoming.Events(), Events{Progress(1)});
    }
}

TEST(ObexPut, WhatTheDestinationFailsToTakeCountsAsReceived)
{
    Incoming failing;
    failing.sink.result = -2;
    EXPECT_EQ(failing.Put(Hex("48 00 06 61 62 63 49 00 05 64 65")), 1);
    EXPECT_EQ(failing.Events(), (Events{Progress(3), Progress(5)}));
    EXPECT_EQ(failing.sink.writes, 2U);

    Incoming slow;
    slow.sink.taken = 1;
    EXPECT_EQ(slow.Put(Hex("48 00 06 61 62 63 49 00 05 64 65")), 1);
    EXPECT_EQ(slow.Events(), (Events{Progress(3), Progress(5)}));
    EXPECT_EQ(slow.sink.bytes, "ad");
}

TEST(ObexPut, TheAnnouncedLengthIsToldFromThenOn)
{
    Incoming incoming;
    EXPECT_EQ(incoming.Put(Hex("48 00 04 61 C3 80 00 00 07 48 00 04 62")), 1);
    EXPECT_EQ(incoming.Put(Hex("48 00 04 63 C3 00 00 00")), 1);
    EXPECT_EQ(incoming.Put(Hex("48 00 04 64 C3 00 00 00 01 48 00 03")), 1);
    EXPECT_EQ(incoming.Events(),
              (Events{Progress(1), Progress(2, 0x80000007), Progress(3, 0x80000007),
                      Progress(4, 0x80000007), Progress(4, 1)}));
}

TEST(ObexPut, HeadersOfOneAndOfFourBytesArePassedOver)
{
    for (const char* header : {"80 48", "97 01", "BF 49", "C0 48 49 01 C3", "C1 00 00 00 00",
                               "CF 00 03 48 00", "FF FF FF FF FF"}) {
        Incoming incoming;
        EXPECT_EQ(incoming.Put(Hex(std::string(header) + " 48 00 04 61")), 1) << header;
        EXPECT_EQ(incoming.Events(), Events{Progress(1)}) << header;
    }
}

TEST(ObexPut, OfHeadersThatAreCutNothingIsTaken)
{
    for (const char* header :
         {"80", "C0", "C0 48 00 04", "C3 00 00 48", "05", "05 00", "05 00 05"}) {
        Incoming incoming;
        EXPECT_EQ(incoming.Put(Hex("48 00 04 61") + Hex(header)), 1) << header;
        EXPECT_EQ(incoming.Events(), Events{Progress(1)}) << header;
    }
}

TEST(ObexPut, ATextIsPassedOverUpToAWordOfZero)
{
    for (const char* header : {"05 00 07 00 61 00 00", // as it should be
                               "00 00 05 00 00",       // no letters
                               "3F 00 09 00 61 01 00 00 00",
                               // A length of zero is taken for the zero at the text's end.
                               "05 00 00",
                               // The length is not followed.
                               "05 00 05 00 61 00 62 00 00"}) {
        Incoming incoming;
        EXPECT_EQ(incoming.Put(Hex(std::string(header) + " 48 00 04 7A")), 1) << header;
        EXPECT_EQ(incoming.Events(), Events{Progress(1)}) << header;
    }
}

TEST(ObexPut, ATextWithoutAZeroRunsOnIntoWhatStandsBehindIt)
{
    Incoming swallowed;
    EXPECT_EQ(swallowed.Put(Hex("05 00 05 00 61 48 00 05 7A 7A")), 1);
    EXPECT_EQ(swallowed.Events(), Events{});

    // The zeros of the first Body's data end it.
    Incoming ended;
    EXPECT_EQ(ended.Put(Hex("05 00 05 00 61 48 00 06 00 00 00 49 00 04 7A")), 1);
    // Words: 0005 0061 4800 0600 0000, then the header 0x49.
    EXPECT_EQ(ended.Events(), Events{Progress(1)});
    EXPECT_EQ(ended.sink.bytes, "z");
}

TEST(ObexPut, AnyOtherHeaderOfTheBytesFormEndsThePacket)
{
    for (unsigned identifier = 0x40; identifier < 0x80; ++identifier) {
        if (identifier == 0x48 || identifier == 0x49)
            continue;
        Incoming incoming;
        EXPECT_EQ(
            incoming.Put(Hex("48 00 04 61") + Packet(identifier, "text") + Hex("48 00 04 62")), 1);
        EXPECT_EQ(incoming.Put(Hex("48 00 04 63")), 1);
        EXPECT_EQ(incoming.sink.bytes, "ac") << identifier;
    }
}

TEST(ObexPut, WithoutACallbackItDeliversAllTheSame)
{
    Incoming incoming;
    incoming.object.callback = nullptr;
    EXPECT_EQ(incoming.Put(Hex("01 00 07 00 61 00 00 48 00 04 7A")), 1);
    EXPECT_EQ(incoming.sink.bytes, "z");
    EXPECT_EQ(incoming.Events(), Events{});
}

TEST(ObexPut, DoesAsItsPlainTwinOnPacketsOfAnyBytes)
{
    std::mt19937 random(20260);
    // Identifiers and small numbers come up often enough to lead somewhere.
    const std::string likely = Hex("01 05 42 48 48 49 80 C0 C3 00 00 00 03 04 06 09 61");
    unsigned delivered = 0;
    unsigned ends[3] = {};
    for (int round = 0; round < 20000; ++round) {
        Incoming incoming;
        Model model;
        for (int packet = 0; packet < 3; ++packet) {
            std::string bytes;
            for (size_t size = random() % 40; size > 0; --size)
                bytes.push_back(random() % 8 == 0 ? static_cast<char>(random())
                                                  : likely[random() % likely.size()]);
            const i32 result = incoming.Put(bytes);
            ASSERT_EQ(result, model.Put(bytes)) << HexOf(bytes);
            ++ends[result + 1];
            ASSERT_EQ(incoming.Events(), model.told) << HexOf(bytes);
            ASSERT_EQ(incoming.sink.bytes, model.object) << HexOf(bytes);
        }
        delivered += incoming.sink.bytes.size();
    }
    EXPECT_GT(delivered, 10000U);
    for (const unsigned count : ends)
        EXPECT_GT(count, 100U);
}
