#include "foundation/CountingStream.h"
#include "foundation/tests/StreamTesting.h"

#include <gtest/gtest.h>

TEST(CountingStream, TheSizeIsTheFurthestPlaceWritten)
{
    CountingStream stream;
    u32 length = 100;
    EXPECT_EQ(1, stream.Write(nullptr, &length)) << "the buffer is not read";
    EXPECT_EQ(100u, length);
    EXPECT_EQ(1, SeekTo(stream, 10, 0));
    length = 5;
    EXPECT_EQ(1, stream.Write(nullptr, &length));
    EXPECT_EQ(5u, length);
    EXPECT_EQ(15u, PositionOf(stream));
    EXPECT_EQ(100u, SizeOf(stream));
    EXPECT_EQ(1, SeekTo(stream, 0, 2));
    length = 1;
    EXPECT_EQ(1, stream.Write(nullptr, &length));
    EXPECT_EQ(101u, SizeOf(stream));
}

TEST(CountingStream, HasNoName)
{
    CountingStream stream;
    WCHAR name[4] = {u'x', 0};
    EXPECT_EQ(-1, stream.GetName(name, 4));
    EXPECT_EQ(u'x', name[0]);
    EXPECT_EQ(-1, stream.GetName(nullptr, 0));
}

TEST(CountingStream, NeverReads)
{
    CountingStream stream;
    u32 length = 50;
    ASSERT_EQ(1, stream.Write(nullptr, &length));
    ASSERT_EQ(1, SeekTo(stream, 0, 0));
    ExactBytes bytes(4, 0x5A);
    length = 4;
    EXPECT_EQ(-1, stream.Read(bytes.data.get(), &length));
    EXPECT_EQ(0u, length);
    EXPECT_EQ("ZZZZ", bytes.Text());
    EXPECT_EQ(0u, PositionOf(stream));
    length = 4;
    EXPECT_EQ(-1, stream.Read(nullptr, &length));
    EXPECT_EQ(0u, length);
    EXPECT_EQ(-1, stream.Read(bytes.data.get(), nullptr));
}

TEST(CountingStream, RefusesNull)
{
    CountingStream stream;
    EXPECT_EQ(-4, stream.GetSize(nullptr));
    EXPECT_EQ(-4, stream.Seek(nullptr, nullptr, 0));
    EXPECT_EQ(-4, stream.Write("x", nullptr));
    EXPECT_EQ(-4, stream.GetInterface(nullptr));
    EXPECT_EQ(0u, SizeOf(stream));
}

TEST(CountingStream, SeeksWithinWhatWasWritten)
{
    CountingStream stream;
    u32 length = 20;
    ASSERT_EQ(1, stream.Write(nullptr, &length));
    EXPECT_EQ(1, SeekTo(stream, 20, 0));
    EXPECT_EQ(-1, SeekTo(stream, 21, 0));
    EXPECT_EQ(-1, SeekTo(stream, 1, 1));
    EXPECT_EQ(-1, SeekTo(stream, 1, 2));
    EXPECT_EQ(-1, SeekTo(stream, 0, 3));
    EXPECT_EQ(20u, PositionOf(stream));
}

TEST(CountingStream, CloseGoesBackToNothingWritten)
{
    CountingStream stream;
    EXPECT_EQ(1, stream.Close()) << "there is nothing to open";
    u32 length = 20;
    ASSERT_EQ(1, stream.Write(nullptr, &length));
    EXPECT_EQ(1, stream.Close());
    EXPECT_EQ(0u, SizeOf(stream));
    EXPECT_EQ(0u, PositionOf(stream));
    length = 3;
    EXPECT_EQ(1, stream.Write(nullptr, &length));
    EXPECT_EQ(3u, SizeOf(stream));
}

TEST(CountingStream, ThePositionIsA32BitWordAndTheSizeKeepsTheLargest)
{
    CountingStream stream;
    u32 length = 0xFFFFFFFF;
    ASSERT_EQ(1, stream.Write(nullptr, &length));
    EXPECT_EQ(0xFFFFFFFFu, SizeOf(stream));
    EXPECT_EQ(0xFFFFFFFFu, PositionOf(stream));
    length = 11;
    EXPECT_EQ(1, stream.Write(nullptr, &length));
    EXPECT_EQ(11u, length);
    EXPECT_EQ(10u, PositionOf(stream));
    EXPECT_EQ(0xFFFFFFFFu, SizeOf(stream));
}
