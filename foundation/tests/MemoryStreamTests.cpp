#include "foundation/MemoryStream.h"
#include "foundation/tests/StreamTesting.h"
#include "platform/testing/Testing.h"

#include <gtest/gtest.h>

#include <limits>

using tavrix::testing::Scope;
using tavrix::testing::SetAllocationFault;

namespace
{

void ExpectClosed(MemoryStream& stream)
{
    WCHAR name[8];
    u64 size = 0;
    const i64 offset = 0;
    u8 byte = 0;
    u32 length = 1;
    PluginStreamRecord record{};
    record.size = sizeof record;
    EXPECT_EQ(-1, stream.GetName(name, 8));
    EXPECT_EQ(-1, stream.GetSize(&size));
    EXPECT_EQ(-1, stream.Seek(&offset, nullptr, 0));
    EXPECT_EQ(-1, stream.Read(&byte, &length));
    EXPECT_EQ(-1, stream.Write(&byte, &length));
    EXPECT_EQ(1u, length);
    EXPECT_EQ(-1, stream.GetInterface(&record));
    EXPECT_EQ(-1, stream.Release());
    EXPECT_EQ(0, stream.Close());
}

} // namespace

TEST(MemoryStream, ClosedAnswersFailed)
{
    MemoryStream stream;
    ExpectClosed(stream);
    u8 bytes[4];
    ASSERT_EQ(1, stream.Open(bytes, 4, 0, TEXT("x")));
    EXPECT_EQ(1, stream.Close());
    ExpectClosed(stream);
}

TEST(MemoryStream, RefusesNullBeforeItLooksAtItsState)
{
    MemoryStream stream;
    WCHAR name[8];
    EXPECT_EQ(-4, stream.GetName(nullptr, 8));
    EXPECT_EQ(-4, stream.GetName(name, 0));
    EXPECT_EQ(-4, stream.GetName(name, -1));
    EXPECT_EQ(-4, stream.GetSize(nullptr));
    EXPECT_EQ(-4, stream.Seek(nullptr, nullptr, 0));
    EXPECT_EQ(-4, stream.GetInterface(nullptr));
}

TEST(MemoryStream, ReadingAndWritingAnswerNullWithTheGeneralFailure)
{
    MemoryStream stream;
    ASSERT_EQ(1, stream.Open(nullptr, 4, 0, nullptr));
    u8 byte = 0;
    u32 length = 1;
    EXPECT_EQ(-1, stream.Read(nullptr, &length));
    EXPECT_EQ(-1, stream.Read(&byte, nullptr));
    EXPECT_EQ(-1, stream.Write(nullptr, &length));
    EXPECT_EQ(-1, stream.Write(&byte, nullptr));
    EXPECT_EQ(1u, length);
    EXPECT_EQ(0u, PositionOf(stream));
}

TEST(MemoryStream, WritingPastTheEndIsCutAndNoFailure)
{
    ExactBytes bytes(10, 0x5A);
    MemoryStream stream;
    ASSERT_EQ(1, stream.Open(bytes.data.get(), 10, 0, nullptr));
    ASSERT_EQ(1, SeekTo(stream, 6, 0));
    u32 length = 0;
    EXPECT_EQ(1, WriteText(stream, "0123456789", &length));
    EXPECT_EQ(4u, length);
    EXPECT_EQ(10u, PositionOf(stream));
    EXPECT_EQ("ZZZZZZ0123", bytes.Text());
    EXPECT_EQ(1, WriteText(stream, "x", &length));
    EXPECT_EQ(0u, length);
}

TEST(MemoryStream, ReadingPastTheEndIsCutAndNoFailure)
{
    ExactBytes bytes("0123456789");
    MemoryStream stream;
    ASSERT_EQ(1, stream.Open(bytes.data.get(), 10, 1, nullptr));
    EXPECT_EQ("0123456", ReadText(stream, 7));
    EXPECT_EQ("789", ReadText(stream, 7));
    EXPECT_EQ("", ReadText(stream, 7));
    EXPECT_EQ(10u, PositionOf(stream));
    ASSERT_EQ(1, SeekTo(stream, 8, 0));
    u8 two[2];
    u32 length = std::numeric_limits<u32>::max();
    EXPECT_EQ(1, stream.Read(two, &length)) << "the largest length wraps nothing";
    EXPECT_EQ(2u, length);
    EXPECT_EQ('9', two[1]);
}

TEST(MemoryStream, ReadOnlyRefusesWrites)
{
    ExactBytes bytes("abcd");
    MemoryStream stream;
    ASSERT_EQ(1, stream.Open(bytes.data.get(), 4, 1, nullptr));
    u32 length = 2;
    EXPECT_EQ(-1, stream.Write("xy", &length));
    EXPECT_EQ(2u, length);
    EXPECT_EQ(0u, PositionOf(stream));
    EXPECT_EQ("abcd", bytes.Text());
    EXPECT_EQ("abcd", ReadText(stream, 4));
    ASSERT_EQ(1, stream.Open(bytes.data.get(), 4, 0, nullptr));
    EXPECT_EQ(1, WriteText(stream, "xy"));
    EXPECT_EQ("xycd", bytes.Text());
}

TEST(MemoryStream, SeekFromTheEndReachesTheCapacityAndNoFurther)
{
    MemoryStream stream;
    ASSERT_EQ(1, stream.Open(nullptr, 30, 0, nullptr));
    u64 position = NoPosition;
    EXPECT_EQ(1, SeekTo(stream, 0, 2, &position));
    EXPECT_EQ(30u, position);
    position = NoPosition;
    EXPECT_EQ(-1, SeekTo(stream, 1, 2, &position));
    EXPECT_EQ(NoPosition, position);
    EXPECT_EQ(30u, PositionOf(stream));
    EXPECT_EQ(1, SeekTo(stream, -30, 2, &position));
    EXPECT_EQ(0u, position);
    EXPECT_EQ(-1, SeekTo(stream, -31, 2));
    EXPECT_EQ(-1, SeekTo(stream, 31, 0));
    EXPECT_EQ(-1, SeekTo(stream, 0, 3));
    EXPECT_EQ(0u, PositionOf(stream));
}

TEST(MemoryStream, MemoryOfItsOwnStartsZeroed)
{
    MemoryStream stream;
    ASSERT_EQ(1, stream.Open(nullptr, 300, 1, nullptr));
    EXPECT_EQ(300u, SizeOf(stream));
    EXPECT_EQ(std::string(300, '\0'), ReadText(stream, 400));
}

TEST(MemoryStream, WithoutMemoryItStaysClosed)
{
    Scope scope;
    MemoryStream stream;
    u8 bytes[4];
    ASSERT_EQ(1, stream.Open(bytes, 4, 0, TEXT("x")));
    SetAllocationFault([](SIZE_T size) { return size == 1000; });
    EXPECT_EQ(-2, stream.Open(nullptr, 1000, 0, TEXT("y")));
    ExpectClosed(stream);
    EXPECT_EQ(1, stream.Open(nullptr, 1001, 0, nullptr));
}

TEST(MemoryStream, BorrowedMemoryStaysTheCallers)
{
    ExactBytes bytes("abcd");
    {
        MemoryStream stream;
        ASSERT_EQ(1, stream.Open(bytes.data.get(), 4, 0, nullptr));
        ASSERT_EQ(1, WriteText(stream, "AB"));
    }
    EXPECT_EQ("ABcd", bytes.Text());
}

TEST(MemoryStream, BorrowedMemoryStaysTheCallersAfterMemoryOfItsOwn)
{
    char* block = static_cast<char*>(GlobalAlloc(GPTR, 4));
    ASSERT_NE(nullptr, block);
    MemoryStream stream;
    ASSERT_EQ(1, stream.Open(nullptr, 4, 0, nullptr));
    ASSERT_EQ(1, stream.Open(block, 4, 0, nullptr));
    ASSERT_EQ(1, stream.Close());
    EXPECT_EQ(4u, GlobalSize(block)) << "the stream has freed it";
    EXPECT_EQ(nullptr, GlobalFree(block));
}

TEST(MemoryStream, OpenClosesFirst)
{
    ExactBytes bytes("abcd");
    MemoryStream stream;
    ASSERT_EQ(1, stream.Open(nullptr, 100, 0, TEXT("first")));
    ASSERT_EQ(1, SeekTo(stream, 50, 0));
    ASSERT_EQ(1, stream.Open(bytes.data.get(), 4, 0, nullptr));
    EXPECT_EQ(u"", NameOf(stream));
    EXPECT_EQ(4u, SizeOf(stream));
    EXPECT_EQ(0u, PositionOf(stream));
    EXPECT_EQ("abcd", ReadText(stream, 9));
}

TEST(MemoryStream, ACapacityOf0IsOpenAndEmpty)
{
    u8 byte = 0x5A;
    for (void* data : {static_cast<void*>(nullptr), static_cast<void*>(&byte)}) {
        MemoryStream stream;
        ASSERT_EQ(1, stream.Open(data, 0, 0, nullptr));
        EXPECT_EQ(0u, SizeOf(stream));
        u32 length = 0;
        EXPECT_EQ(1, WriteText(stream, "x", &length));
        EXPECT_EQ(0u, length);
        EXPECT_EQ("", ReadText(stream, 1));
        EXPECT_EQ(1, SeekTo(stream, 0, 2));
        EXPECT_EQ(1, stream.Close());
    }
    EXPECT_EQ(0x5A, byte);
}

TEST(MemoryStream, IsNamedAsItWasOpened)
{
    MemoryStream stream;
    WCHAR given[] = {u'n', u'a', u'm', u'e', 0};
    ASSERT_EQ(1, stream.Open(nullptr, 1, 0, given));
    given[0] = u'X';
    WCHAR name[8];
    EXPECT_EQ(1, stream.GetName(name, 8));
    EXPECT_EQ(std::u16string(u"name"), name);
    EXPECT_EQ(0, stream.GetName(name, 4));
    EXPECT_EQ(std::u16string(u"nam"), name);
    EXPECT_EQ(0, stream.GetName(name, 1));
    EXPECT_EQ(std::u16string(), name);
}

TEST(MemoryStream, ABufferInsideTheMemoryIsCopiedWhole)
{
    ExactBytes bytes("0123456789");
    MemoryStream stream;
    ASSERT_EQ(1, stream.Open(bytes.data.get(), 10, 0, nullptr));
    ASSERT_EQ(1, SeekTo(stream, 2, 0));
    u32 length = 6;
    EXPECT_EQ(1, stream.Write(bytes.data.get(), &length));
    EXPECT_EQ("0101234589", bytes.Text());
}

TEST(MemoryStream, CanBeGivenOutAndTakenBack)
{
    MemoryStream stream;
    ASSERT_EQ(1, stream.Open(nullptr, 4, 0, nullptr));
    PluginStreamRecord record{};
    record.size = sizeof record;
    EXPECT_EQ(1, stream.GetInterface(&record));
    EXPECT_EQ(1, stream.Release());
    EXPECT_EQ(-1, stream.Release());
    record.size = sizeof record - 1;
    EXPECT_EQ(-98, stream.GetInterface(&record));
}
