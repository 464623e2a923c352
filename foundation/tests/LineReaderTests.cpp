#include "foundation/LineReader.h"
#include "foundation/MemoryStream.h"
#include "foundation/tests/FailingAllocator.h"
#include "foundation/tests/LineSources.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

TEST(LineReader, ACarriageReturnBeforeTheLineFeedIsNoPartOfTheLine)
{
    TextStream source("ab\r\n\ncd\n\r\n", End::Empty);
    LineReader reader(nullptr, 16);
    ASSERT_EQ(1, reader.Attach(&source));
    ExactBytes buffer(10, '#');
    u32 length = 10;
    EXPECT_EQ(1, reader.ReadLine(reinterpret_cast<char*>(buffer.data.get()), &length));
    EXPECT_EQ(2u, length);
    // The carriage return was stored and has become the terminator.
    EXPECT_EQ(std::string("ab\0#######", 10), buffer.Text());
    EXPECT_EQ(Ended(1, "", 10), NextLine(reader, 10));
    EXPECT_EQ(Ended(1, "cd", 10), NextLine(reader, 10));
    EXPECT_EQ(Ended(1, "", 10), NextLine(reader, 10));
}

TEST(LineReader, AnEmptyLineGives0)
{
    TextStream source("\n", End::Empty);
    LineReader reader(nullptr, 16);
    ASSERT_EQ(1, reader.Attach(&source));
    EXPECT_EQ(Ended(1, "", 5), NextLine(reader, 5));
}

TEST(LineReader, OnlyTheLastCarriageReturnGoesAndOnlyBeforeALineFeed)
{
    TextStream source("a\rb\r\r\n\r\r\nc\r", End::Empty);
    LineReader reader(nullptr, 3);
    ASSERT_EQ(1, reader.Attach(&source));
    const Line first = NextLine(reader, 10);
    EXPECT_EQ(4u, first.length);
    EXPECT_EQ(std::string("a\rb\r\0", 5), first.bytes.substr(0, 5));
    EXPECT_EQ(1u, NextLine(reader, 10).length);
    EXPECT_EQ(Ended(1, "c\r", 10), NextLine(reader, 10)) << "the source ends behind it";
}

TEST(LineReader, ALineThatFillsItsBufferIsCutWithoutATerminator)
{
    TextStream source("abcdefg\nhi\n", End::Empty);
    LineReader reader(nullptr, 4);
    ASSERT_EQ(1, reader.Attach(&source));
    EXPECT_EQ(Full("abc"), NextLine(reader, 3));
    EXPECT_EQ(Full("def"), NextLine(reader, 3));
    EXPECT_EQ(Ended(1, "g", 3), NextLine(reader, 3));
    EXPECT_EQ(Ended(1, "hi", 3), NextLine(reader, 3));
}

TEST(LineReader, ALineOfExactlyItsBufferLeavesAnEmptyOneBehind)
{
    TextStream source("abc\nde\r\n", End::Empty);
    LineReader reader(nullptr, 4);
    ASSERT_EQ(1, reader.Attach(&source));
    EXPECT_EQ(Full("abc"), NextLine(reader, 3));
    EXPECT_EQ(Ended(1, "", 3), NextLine(reader, 3));
    EXPECT_EQ(Full("de\r"), NextLine(reader, 3)) << "its line feed was not seen yet";
    EXPECT_EQ(Ended(1, "", 3), NextLine(reader, 3));
}

TEST(LineReader, ACapacityOf0ReadsNothing)
{
    TextStream source("ab\n", End::Empty);
    LineReader reader(nullptr, 4);
    ASSERT_EQ(1, reader.Attach(&source));
    u32 length = 0;
    EXPECT_EQ(1, reader.ReadLine(nullptr, &length));
    EXPECT_EQ(0u, length);
    EXPECT_EQ(0, source.reads);
    EXPECT_EQ(Ended(1, "ab", 9), NextLine(reader, 9));
}

TEST(LineReader, TheSourcesWayOfEndingIsTheResultOfTheLastLine)
{
    const struct {
        End end;
        i32 result;
    } ways[] = {{End::Empty, 1}, {End::Nothing, -1}, {End::Failure, -1}};
    for (const auto& way : ways) {
        TextStream source("ab\ncd", way.end);
        LineReader reader(nullptr, 4);
        ASSERT_EQ(1, reader.Attach(&source));
        EXPECT_EQ(Ended(1, "ab", 9), NextLine(reader, 9));
        EXPECT_EQ(Ended(way.result, "cd", 9), NextLine(reader, 9)) << "ended, with what came";
        EXPECT_EQ(Ended(way.result, "", 9), NextLine(reader, 9));
    }
}

TEST(LineReader, ReadBytesTellsHowItEnded)
{
    const struct {
        End end;
        i32 afterSome, afterNone;
    } ways[] = {{End::Empty, 1, 0}, {End::Nothing, -1, -1}, {End::Failure, -1, -1}};
    for (const auto& way : ways) {
        TextStream source("0123456", way.end, 3);
        LineReader reader(nullptr, 4);
        ASSERT_EQ(1, reader.Attach(&source));
        ExactBytes four(4, '#');
        u32 count = 4;
        EXPECT_EQ(1, reader.ReadBytes(four.data.get(), &count));
        EXPECT_EQ(4u, count);
        EXPECT_EQ("0123", four.Text());
        count = 4;
        EXPECT_EQ(way.afterSome, reader.ReadBytes(four.data.get(), &count));
        EXPECT_EQ(3u, count);
        EXPECT_EQ("4563", four.Text());
        count = 4;
        EXPECT_EQ(way.afterNone, reader.ReadBytes(four.data.get(), &count));
        EXPECT_EQ(0u, count);
        u8 byte = '#';
        EXPECT_EQ(way.afterNone, reader.ReadBytes(&byte, nullptr));
        EXPECT_EQ('#', byte);
    }
}

TEST(LineReader, ReadBytesWithoutACountReadsOneByte)
{
    TextStream source("xyz", End::Empty);
    LineReader reader(nullptr, 2);
    ASSERT_EQ(1, reader.Attach(&source));
    ExactBytes byte(1);
    for (const char expected : {'x', 'y', 'z'}) {
        EXPECT_EQ(1, reader.ReadBytes(byte.data.get(), nullptr));
        EXPECT_EQ(expected, byte.data[0]);
    }
    u32 none = 0;
    EXPECT_EQ(1, reader.ReadBytes(byte.data.get(), &none));
    EXPECT_EQ(0u, none);
}

TEST(LineReader, TakesNoMoreOutOfTheStreamThanItsBufferHolds)
{
    TextStream source("ab\nrest", End::Empty);
    LineReader reader(nullptr, 1);
    ASSERT_EQ(1, reader.Attach(&source));
    EXPECT_EQ(Ended(1, "ab", 9), NextLine(reader, 9));
    EXPECT_EQ(3u, source.position);
    EXPECT_EQ(1u, source.asked);
}

TEST(LineReader, AtEndAnswersAfterAFill)
{
    const struct {
        End end;
        i32 atEnd;
    } ways[] = {{End::Empty, 0}, {End::Nothing, 1}, {End::Failure, 1}};
    for (const auto& way : ways) {
        TextStream source("ab", way.end);
        LineReader reader(nullptr, 8);
        ASSERT_EQ(1, reader.Attach(&source));
        i32 end = 77;
        EXPECT_EQ(1, reader.AtEnd(&end));
        EXPECT_EQ(0, end);
        EXPECT_EQ(1, source.reads);
        end = 77;
        EXPECT_EQ(1, reader.AtEnd(&end));
        EXPECT_EQ(77, end) << "with bytes in the buffer nothing is said";
        EXPECT_EQ(1, source.reads);
        u8 two[2];
        u32 count = 2;
        ASSERT_EQ(1, reader.ReadBytes(two, &count));
        EXPECT_EQ(1, reader.AtEnd(&end));
        EXPECT_EQ(way.atEnd, end);
        EXPECT_EQ(2, source.reads);
    }
}

TEST(LineReader, FillSaysWhatTheStreamSaid)
{
    const struct {
        End end;
        i32 result;
    } ways[] = {{End::Empty, 1}, {End::Nothing, 0}, {End::Failure, -1}};
    for (const auto& way : ways) {
        TextStream source("abcdef", way.end);
        LineReader reader(nullptr, 4);
        ASSERT_EQ(1, reader.Attach(&source));
        EXPECT_EQ(1, reader.Fill());
        EXPECT_EQ(4u, source.asked);
        EXPECT_EQ(1, reader.Fill()) << "what was in the buffer is lost";
        u8 byte = 0;
        EXPECT_EQ(1, reader.ReadBytes(&byte, nullptr));
        EXPECT_EQ('e', byte);
        EXPECT_EQ(way.result, reader.Fill());
        i32 end = 0;
        EXPECT_EQ(1, reader.AtEnd(&end)) << "nor is a byte left over from before";
        EXPECT_EQ(3, source.reads - 1);
    }
}

TEST(LineReader, WithoutAStreamNothingIsRead)
{
    LineReader reader(nullptr, 4);
    u8 byte = 0;
    char line[4];
    u32 length = 4;
    i32 end = 0;
    EXPECT_EQ(-1, reader.Fill());
    EXPECT_EQ(-1, reader.ReadBytes(&byte, nullptr));
    EXPECT_EQ(-1, reader.ReadBytes(&byte, &length));
    EXPECT_EQ(0u, length);
    length = 4;
    EXPECT_EQ(-1, reader.ReadLine(line, &length));
    EXPECT_EQ(4u, length);
    length = 0;
    EXPECT_EQ(-1, reader.ReadLine(line, &length)) << "before it looks at the capacity";
    EXPECT_EQ(1, reader.AtEnd(&end));
    EXPECT_EQ(1, end);
    EXPECT_EQ(1, reader.Detach());
}

TEST(LineReader, RefusesNull)
{
    TextStream source("ab\n", End::Empty);
    LineReader reader(nullptr, 4);
    EXPECT_EQ(-4, reader.Attach(nullptr));
    ASSERT_EQ(1, reader.Attach(&source));
    EXPECT_EQ(-4, reader.Attach(nullptr));
    EXPECT_EQ(-1, reader.AtEnd(nullptr));
    char line[4];
    u32 length = 4;
    EXPECT_EQ(-1, reader.ReadLine(line, nullptr));
    EXPECT_EQ(-4, reader.ReadLine(nullptr, &length));
    EXPECT_EQ(-4, reader.ReadBytes(nullptr, nullptr));
    EXPECT_EQ(-4, reader.ReadBytes(nullptr, &length));
    EXPECT_EQ(4u, length);
    EXPECT_EQ(0, source.reads);
}

TEST(LineReader, IsAttachedOnceAtATime)
{
    TextStream first("first\n", End::Empty);
    TextStream second("second\n", End::Empty);
    LineReader reader(nullptr, 4);
    ASSERT_EQ(1, reader.Attach(&first));
    EXPECT_EQ(-1, reader.Attach(&second));
    EXPECT_EQ(-1, reader.Attach(&first));
    EXPECT_EQ(Ended(1, "first", 9), NextLine(reader, 9));
    EXPECT_EQ(1, reader.Detach());
    EXPECT_EQ(-1, reader.Fill());
    ASSERT_EQ(1, reader.Attach(&second));
    EXPECT_EQ(Ended(1, "second", 9), NextLine(reader, 9));
}

TEST(LineReader, DetachForgetsWhatWasBuffered)
{
    TextStream first("first\n", End::Empty);
    TextStream second("second\n", End::Empty);
    LineReader reader(nullptr, 4);
    ASSERT_EQ(1, reader.Attach(&first));
    ASSERT_EQ(1, reader.Fill());
    ASSERT_EQ(1, reader.Detach());
    u8 byte = 0;
    EXPECT_EQ(-1, reader.ReadBytes(&byte, nullptr));
    ASSERT_EQ(1, reader.Attach(&second));
    EXPECT_EQ(Ended(1, "second", 9), NextLine(reader, 9));
}

TEST(LineReader, TakesItsBufferFromItsAllocatorAndGivesItBack)
{
    FailingAllocator memory;
    TextStream source("ab\n", End::Empty);
    {
        LineReader reader(&memory, 4);
        EXPECT_EQ(0, memory.Live());
        ASSERT_EQ(1, reader.Attach(&source));
        EXPECT_EQ(1, memory.Live());
        EXPECT_EQ(1, reader.Detach());
        EXPECT_EQ(0, memory.Live());
        memory.AllowOnly(0);
        EXPECT_EQ(-2, reader.Attach(&source));
        EXPECT_EQ(-1, reader.Fill()) << "a failed attach attaches nothing";
        memory.AllowAll();
        ASSERT_EQ(1, reader.Attach(&source));
        EXPECT_EQ(Ended(1, "ab", 9), NextLine(reader, 9));
    }
    EXPECT_EQ(0, memory.Live());
}

TEST(LineReader, ABufferOfNoBytesNeverGetsOne)
{
    TextStream source("ab\n", End::Empty);
    LineReader reader(nullptr, 0);
    ASSERT_EQ(1, reader.Attach(&source));
    u8 byte = 0;
    EXPECT_EQ(0, reader.ReadBytes(&byte, nullptr));
    EXPECT_EQ(Ended(1, "", 9), NextLine(reader, 9));
}

TEST(LineReader, AStreamThatClaimsMoreThanWasAskedForIsNotBelieved)
{
    class Boaster final : public Stream
    {
    public:
        i32 Read(void* buffer, u32* length) override
        {
            std::memset(buffer, 'x', *length);
            *length += 100;
            return 5; // any positive result is success
        }
        i32 GetName(WCHAR*, i32) override { return Failed; }
        i32 GetSize(u64*) override { return Failed; }
        i32 Seek(const i64*, u64*, u32) override { return Failed; }
        i32 Write(const void*, u32*) override { return Failed; }
        i32 Close() override { return Done; }
    } source;
    LineReader reader(nullptr, 4);
    ASSERT_EQ(1, reader.Attach(&source));
    ExactBytes bytes(50, '#');
    u32 count = 50;
    EXPECT_EQ(1, reader.ReadBytes(bytes.data.get(), &count));
    EXPECT_EQ(50u, count);
    EXPECT_EQ(std::string(50, 'x'), bytes.Text());
}

TEST(LineReader, ReadsAMemoryStreamThroughAnyBuffer)
{
    ExactBytes text("one\r\ntwo\n\nfour");
    for (u32 bufferSize = 1; bufferSize <= 20; ++bufferSize) {
        MemoryStream source;
        ASSERT_EQ(1, source.Open(text.data.get(), static_cast<u32>(text.size), 1, nullptr));
        LineReader reader(nullptr, bufferSize);
        ASSERT_EQ(1, reader.Attach(&source));
        EXPECT_EQ(Ended(1, "one", 20).length, NextLine(reader, 20).length);
        EXPECT_EQ(Ended(1, "two", 20), NextLine(reader, 20));
        EXPECT_EQ(Ended(1, "", 20), NextLine(reader, 20));
        EXPECT_EQ(Ended(1, "four", 20), NextLine(reader, 20));
        EXPECT_EQ(Ended(1, "", 20), NextLine(reader, 20));
    }
}
