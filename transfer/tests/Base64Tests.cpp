#include "transfer/Base64Codec.h"

#include "foundation/BlockStream.h"
#include "foundation/MemoryStream.h"
#include "foundation/tests/LineSources.h"
#include "foundation/tests/StreamTesting.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace
{

/// A sink without end that says how it was written to.
class Sink final : public Stream
{
public:
    i32 Write(const void* buffer, u32* length) override
    {
        if (*length > capacity - text.size())
            *length = static_cast<u32>(capacity - text.size());
        text.append(static_cast<const char*>(buffer), *length);
        return result;
    }
    i32 GetName(WCHAR*, i32) override { return Failed; }
    i32 GetSize(u64*) override { return Failed; }
    i32 Seek(const i64*, u64*, u32) override { return Failed; }
    i32 Read(void*, u32*) override { return Failed; }
    i32 Close() override { return Done; }

    std::string text;
    size_t capacity = 1 << 20;
    i32 result = 1;
};

std::string Encoded(const std::string& bytes, u32 lineLength = 76, i32 expected = 1)
{
    TextStream source(bytes, End::Empty);
    Sink sink;
    EXPECT_EQ(expected, Base64Codec().Encode(&source, &sink, lineLength));
    return sink.text;
}

std::string Decoded(const std::string& text, i32 expected = 1)
{
    TextStream source(text, End::Empty);
    Sink sink;
    EXPECT_EQ(expected, Base64Codec().Decode(&source, &sink));
    return sink.text;
}

// RFC 4648 section 10.
const struct {
    const char* plain;
    const char* encoded;
} vectors[] = {{"", ""},
               {"f", "Zg=="},
               {"fo", "Zm8="},
               {"foo", "Zm9v"},
               {"foob", "Zm9vYg=="},
               {"fooba", "Zm9vYmE="},
               {"foobar", "Zm9vYmFy"}};

std::string RandomBytes(std::mt19937& numbers, size_t count)
{
    std::string bytes;
    for (size_t i = 0; i < count; ++i)
        bytes.push_back(static_cast<char>(numbers()));
    return bytes;
}

} // namespace

TEST(Base64, EncodesTheVectorsOfItsDefinition)
{
    for (const auto& vector : vectors)
        EXPECT_EQ(vector.encoded, Encoded(vector.plain));
}

TEST(Base64, DecodesTheVectorsOfItsDefinition)
{
    for (const auto& vector : vectors)
        EXPECT_EQ(vector.plain, Decoded(vector.encoded));
}

TEST(Base64, UsesTheWholeAlphabetInOrder)
{
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    // Four numbers of six bits lie in three bytes.
    for (unsigned value = 0; value < 64; value += 4) {
        const unsigned group = value << 18 | (value + 1) << 12 | (value + 2) << 6 | (value + 3);
        for (const unsigned shift : {16u, 8u, 0u})
            bytes.push_back(static_cast<char>(group >> shift));
    }
    EXPECT_EQ(alphabet, Encoded(bytes, 0));
    EXPECT_EQ(bytes, Decoded(alphabet));
}

TEST(Base64, ALineEndsWhereItsLengthIsReached)
{
    const std::string line(76, 'A');
    EXPECT_EQ(line.substr(4), Encoded(std::string(54, '\0')));
    EXPECT_EQ(line + "\r\n", Encoded(std::string(57, '\0'))) << "also where nothing follows";
    EXPECT_EQ(line + "\r\nAA==", Encoded(std::string(58, '\0')));
    EXPECT_EQ(line + "\r\n" + line + "\r\n", Encoded(std::string(114, '\0')));
}

TEST(Base64, PaddingCountsAsPartOfItsLine)
{
    EXPECT_EQ(std::string(74, 'A') + "==\r\n", Encoded(std::string(55, '\0')));
    EXPECT_EQ(std::string(75, 'A') + "=\r\n", Encoded(std::string(56, '\0')));
}

TEST(Base64, OnlyALineLengthThatIsMetExactlyEndsALine)
{
    EXPECT_EQ("Zm9v\r\nYmFy\r\n", Encoded("foobar", 4));
    EXPECT_EQ("Zm9vYmFy\r\n", Encoded("foobar", 8));
    for (const u32 never : {0u, 1u, 3u, 6u, 9u})
        EXPECT_EQ("Zm9vYmFy", Encoded("foobar", never)) << never;
}

TEST(Base64, EncodesTheSameHoweverTheBytesCome)
{
    for (const u32 portion : {1u, 2u, 3u, 4u, 7u}) {
        for (const End end : {End::Empty, End::Nothing}) {
            TextStream source("foobarbaz!", end, portion);
            Sink sink;
            EXPECT_EQ(1, Base64Codec().Encode(&source, &sink, 76));
            EXPECT_EQ("Zm9vYmFyYmF6IQ==", sink.text) << portion;
        }
    }
}

TEST(Base64, EncodesABlockStreamThatEndsWithItsLastBlock)
{
    for (const u32 blockSize : {1u, 3u, 4u, 6u, 128u}) {
        BlockStream source;
        ASSERT_EQ(1, source.Open(blockSize, nullptr));
        ASSERT_EQ(1, WriteText(source, "foobar"));
        ASSERT_EQ(1, SeekTo(source, 0, 0));
        Sink sink;
        EXPECT_EQ(1, Base64Codec().Encode(&source, &sink, 76));
        EXPECT_EQ("Zm9vYmFy", sink.text) << blockSize;
    }
}

TEST(Base64, NullStreamsAreRefused)
{
    TextStream source("foo", End::Empty);
    Sink sink;
    EXPECT_EQ(-1, Base64Codec().Encode(nullptr, &sink, 76));
    EXPECT_EQ(-1, Base64Codec().Encode(&source, nullptr, 76));
    EXPECT_EQ(-1, Base64Codec().Decode(nullptr, &sink));
    EXPECT_EQ(-1, Base64Codec().Decode(&source, nullptr));
    EXPECT_EQ(0, source.reads);
}

TEST(Base64, ASourceThatFailsEndsBothWays)
{
    Sink sink;
    TextStream plain("foob", End::Failure);
    EXPECT_EQ(-1, Base64Codec().Encode(&plain, &sink, 76));
    EXPECT_EQ("Zm9v", sink.text);
    TextStream encoded("Zm9v", End::Failure);
    EXPECT_EQ(-1, Base64Codec().Decode(&encoded, &sink));
    EXPECT_EQ("Zm9vfoo", sink.text);
}

TEST(Base64, ASinkThatTakesLessEndsBothWays)
{
    for (size_t capacity = 0; capacity < 82; ++capacity) {
        TextStream source(std::string(60, '\0'), End::Empty);
        Sink sink;
        sink.capacity = capacity;
        EXPECT_EQ(-1, Base64Codec().Encode(&source, &sink, 76));
        EXPECT_EQ((std::string(76, 'A') + "\r\nAAAA").substr(0, capacity), sink.text);
    }
    for (size_t capacity = 0; capacity < 5; ++capacity) {
        TextStream source("Zm9vYmE=", End::Empty);
        Sink sink;
        sink.capacity = capacity;
        EXPECT_EQ(-1, Base64Codec().Decode(&source, &sink));
        EXPECT_EQ(std::string("fooba").substr(0, capacity), sink.text);
    }
}

TEST(Base64, ASinkThatFailsEndsBothWays)
{
    for (const i32 result : {0, -1, -2}) {
        Sink sink;
        sink.result = result;
        TextStream plain("foobar", End::Empty);
        EXPECT_EQ(-1, Base64Codec().Encode(&plain, &sink, 76));
        EXPECT_EQ("Zm9v", sink.text);
        TextStream encoded("Zm9vYmFy", End::Empty);
        EXPECT_EQ(-1, Base64Codec().Decode(&encoded, &sink));
        EXPECT_EQ("Zm9vfoo", sink.text);
    }
}

TEST(Base64, BytesOutsideTheAlphabetArePassedOver)
{
    EXPECT_EQ("foobar", Decoded("Zm9v\r\nYmFy\r\n"));
    EXPECT_EQ("foobar", Decoded(" Z\tm9\vv YmFy\n"));
    EXPECT_EQ("foobar", Decoded("-Z_m.9~v!Y\x7fm\x80"
                                "F\xffy*"));
    EXPECT_EQ("", Decoded("-_.~!\x80\xff \n"));
    for (int byte = 0; byte < 256; ++byte) {
        const char character = static_cast<char>(byte);
        const bool isKept = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
                            (byte >= 'a' && byte <= 'z') || byte == '+' || byte == '/' ||
                            byte == '=';
        // Where it counts, it is one more character than a group has.
        const std::string text = std::string("Zm9v") + character;
        EXPECT_EQ("foo", Decoded(text, isKept ? -1 : 1)) << byte;
    }
}

TEST(Base64, DecodingEndsWithTheFirstPaddedGroup)
{
    EXPECT_EQ("f", Decoded("Zg==Zm9v"));
    EXPECT_EQ("fo", Decoded("Zm8=Zm9v"));
    EXPECT_EQ("f", Decoded("Zg=AZm9v")) << "the third says it alone";
    EXPECT_EQ("f", Decoded("Zg==\xff"
                           "x"))
        << "what follows is not even looked at";
}

TEST(Base64, AnEqualsSignElsewhereIsAZero)
{
    EXPECT_EQ(std::string("\0\x10\x83", 3), Decoded("=BCD"));
    EXPECT_EQ(std::string("\x04\0\x83", 3), Decoded("B=CD"));
    EXPECT_EQ(std::string("\0", 1), Decoded("===="));
}

TEST(Base64, AnEndInsideAGroupFails)
{
    EXPECT_EQ("", Decoded("Z", -1));
    EXPECT_EQ("", Decoded("Zm", -1));
    EXPECT_EQ("", Decoded("Zm9", -1));
    EXPECT_EQ("foo", Decoded("Zm9vY", -1));
    EXPECT_EQ("foo", Decoded("Zm9vYmF \r\n", -1));
    EXPECT_EQ("foo", Decoded("Zm9v \r\n"));
}

TEST(Base64, WhatIsEncodedComesBack)
{
    std::mt19937 numbers(20);
    for (size_t length = 0; length < 300; ++length) {
        const std::string bytes = RandomBytes(numbers, length);
        for (const u32 lineLength : {0u, 4u, 76u})
            EXPECT_EQ(bytes, Decoded(Encoded(bytes, lineLength))) << length;
    }
}

TEST(Base64, AgreesWithTheHostsProgram)
{
    std::mt19937 numbers(21);
    const std::string folder = ::testing::TempDir();
    const std::string file = folder + "/base64-plain";
    for (const size_t length : {1u, 56u, 57u, 58u, 113u, 114u, 115u, 5000u}) {
        const std::string bytes = RandomBytes(numbers, length);
        FILE* const plain = fopen(file.c_str(), "wb");
        ASSERT_NE(nullptr, plain);
        ASSERT_EQ(length, fwrite(bytes.data(), 1, length, plain));
        ASSERT_EQ(0, fclose(plain));
        FILE* const program = popen(("base64 -w 76 '" + file + "'").c_str(), "r");
        ASSERT_NE(nullptr, program);
        // Its lines end in LF, and its last line in any case.
        std::string expected;
        for (int byte = fgetc(program); byte != EOF; byte = fgetc(program))
            expected +=
                byte == '\n' ? std::string("\r\n") : std::string(1, static_cast<char>(byte));
        ASSERT_EQ(0, pclose(program));
        const bool isLineFull = (length + 2) / 3 % 19 == 0;
        if (!isLineFull)
            expected.resize(expected.size() - 2);
        EXPECT_EQ(expected, Encoded(bytes)) << length;
    }
    remove(file.c_str());
}
