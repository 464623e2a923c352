#include "foundation/BlockStream.h"
#include "foundation/tests/StreamTesting.h"
#include "platform/testing/Testing.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using tavrix::testing::Scope;
using tavrix::testing::SetAllocationFault;

namespace
{

std::string Pattern(size_t length)
{
    std::string text(length, '\0');
    for (size_t i = 0; i < length; ++i)
        text[i] = static_cast<char>('a' + i % 23);
    return text;
}

void ExpectClosed(BlockStream& stream)
{
    WCHAR name[8];
    u64 size = 0;
    const i64 offset = 0;
    u8 byte = 0;
    u32 length = 1;
    PluginStreamRecord record{};
    record.size = sizeof record;
    EXPECT_EQ(-1, stream.GetName(name, 8));
    EXPECT_EQ(-1, stream.SetName(TEXT("x")));
    EXPECT_EQ(-1, stream.GetSize(&size));
    EXPECT_EQ(-1, stream.Seek(&offset, nullptr, 0));
    EXPECT_EQ(-1, stream.Read(&byte, &length));
    EXPECT_EQ(-1, stream.Write(&byte, &length));
    EXPECT_EQ(1u, length);
    EXPECT_EQ(-1, stream.GetInterface(&record));
    EXPECT_EQ(-1, stream.Release());
    EXPECT_EQ(-4, stream.Close()) << "where others do nothing, this one refuses";
}

} // namespace

TEST(BlockStream, ClosedAnswersFailedAndRefusesToClose)
{
    BlockStream stream;
    ExpectClosed(stream);
    ASSERT_EQ(1, stream.Open(8, TEXT("x")));
    ASSERT_EQ(1, WriteText(stream, Pattern(20)));
    EXPECT_EQ(1, stream.Close());
    ExpectClosed(stream);
}

TEST(BlockStream, RefusesNullBeforeItLooksAtItsState)
{
    BlockStream stream;
    WCHAR name[8];
    u8 byte = 0;
    u32 length = 1;
    EXPECT_EQ(-4, stream.GetName(nullptr, 8));
    EXPECT_EQ(-4, stream.GetName(name, 0));
    EXPECT_EQ(-4, stream.GetName(name, -1));
    EXPECT_EQ(-4, stream.GetSize(nullptr));
    EXPECT_EQ(-4, stream.Seek(nullptr, nullptr, 0));
    EXPECT_EQ(-4, stream.Read(nullptr, &length));
    EXPECT_EQ(-4, stream.Read(&byte, nullptr));
    EXPECT_EQ(-4, stream.Write(nullptr, &length));
    EXPECT_EQ(-4, stream.Write(&byte, nullptr));
    EXPECT_EQ(1u, length);
    EXPECT_EQ(-4, stream.GetInterface(nullptr));
}

TEST(BlockStream, BlocksOfNoBytesAreRefusedAndLeaveItClosed)
{
    BlockStream stream;
    EXPECT_EQ(-4, stream.Open(0, nullptr));
    ASSERT_EQ(1, stream.Open(8, TEXT("x")));
    EXPECT_EQ(-4, stream.Open(0, TEXT("y")));
    ExpectClosed(stream);
}

TEST(BlockStream, OpenClosesFirst)
{
    BlockStream stream;
    ASSERT_EQ(1, stream.Open(8, TEXT("x")));
    ASSERT_EQ(1, WriteText(stream, Pattern(20)));
    ASSERT_EQ(1, stream.Open(3, nullptr));
    EXPECT_EQ(u"", NameOf(stream));
    EXPECT_EQ(0u, SizeOf(stream));
    EXPECT_EQ(0u, PositionOf(stream));
    ASSERT_EQ(1, WriteText(stream, "0123456"));
    ASSERT_EQ(1, SeekTo(stream, 0, 0));
    EXPECT_EQ("0123456", ReadText(stream, 20));
}

TEST(BlockStream, IsNamedByOpenAndAnewBySetName)
{
    BlockStream stream;
    ASSERT_EQ(1, stream.Open(8, TEXT("first")));
    EXPECT_EQ(u"first", NameOf(stream));
    EXPECT_EQ(1, stream.SetName(TEXT("second")));
    WCHAR name[8];
    EXPECT_EQ(1, stream.GetName(name, 8));
    EXPECT_EQ(std::u16string(u"second"), name);
    EXPECT_EQ(0, stream.GetName(name, 4));
    EXPECT_EQ(std::u16string(u"sec"), name);
    EXPECT_EQ(1, stream.SetName(nullptr));
    EXPECT_EQ(u"", NameOf(stream));
    ASSERT_EQ(1, stream.SetName(TEXT("third")));
    ASSERT_EQ(1, stream.Close());
    ASSERT_EQ(1, stream.Open(8, nullptr));
    EXPECT_EQ(u"", NameOf(stream));
}

TEST(BlockStream, TheEndInAPartlyUsedBlockIsDoneWithNoBytes)
{
    BlockStream stream;
    ASSERT_EQ(1, stream.Open(1024, nullptr));
    ASSERT_EQ(1, WriteText(stream, Pattern(1500)));
    EXPECT_EQ(1500u, PositionOf(stream));
    u8 byte = 0;
    u32 length = 1;
    EXPECT_EQ(1, stream.Read(&byte, &length));
    EXPECT_EQ(0u, length);
}

TEST(BlockStream, TheEndBehindAFullBlockIsNothingDone)
{
    BlockStream stream;
    ASSERT_EQ(1, stream.Open(1024, nullptr));
    u8 byte = 0;
    u32 length = 1;
    EXPECT_EQ(0, stream.Read(&byte, &length)) << "no block at all";
    EXPECT_EQ(0u, length);
    ASSERT_EQ(1, WriteText(stream, Pattern(2048)));
    length = 1;
    EXPECT_EQ(0, stream.Read(&byte, &length));
    EXPECT_EQ(0u, length);
    EXPECT_EQ(2048u, PositionOf(stream));
}

TEST(BlockStream, ReadsAcrossBlocksAndCutsAtTheEnd)
{
    BlockStream stream;
    ASSERT_EQ(1, stream.Open(8, nullptr));
    ASSERT_EQ(1, WriteText(stream, Pattern(30)));
    ASSERT_EQ(1, SeekTo(stream, 5, 0));
    EXPECT_EQ(Pattern(30).substr(5, 20), ReadText(stream, 20));
    EXPECT_EQ(25u, PositionOf(stream));
    u32 length = 0xFFFFFFFF;
    ExactBytes rest(5);
    EXPECT_EQ(1, stream.Read(rest.data.get(), &length));
    EXPECT_EQ(5u, length);
    EXPECT_EQ(Pattern(30).substr(25), rest.Text());
}

TEST(BlockStream, AWriteOverwritesAndThenAppends)
{
    BlockStream stream;
    ASSERT_EQ(1, stream.Open(4, nullptr));
    ASSERT_EQ(1, WriteText(stream, "0123456789"));
    ASSERT_EQ(1, SeekTo(stream, 3, 0));
    u32 length = 0;
    EXPECT_EQ(1, WriteText(stream, "abc", &length));
    EXPECT_EQ(3u, length);
    EXPECT_EQ(10u, SizeOf(stream));
    EXPECT_EQ(6u, PositionOf(stream));
    EXPECT_EQ(1, WriteText(stream, "ABCDEFGHIJ", &length));
    EXPECT_EQ(10u, length);
    EXPECT_EQ(16u, SizeOf(stream));
    EXPECT_EQ(16u, PositionOf(stream));
    ASSERT_EQ(1, SeekTo(stream, 0, 0));
    EXPECT_EQ("012abcABCDEFGHIJ", ReadText(stream, 99));
}

TEST(BlockStream, ABlockIsMadeOnlyWhenAByteNeedsIt)
{
    Scope scope;
    int made = 0;
    BlockStream stream;
    ASSERT_EQ(1, stream.Open(5, nullptr));
    // A block is told by its size, of exactly that many bytes.
    SetAllocationFault([&made](SIZE_T size) {
        made += size == 5 ? 1 : 0;
        return false;
    });
    u32 length = 0;
    EXPECT_EQ(1, WriteText(stream, "", &length));
    EXPECT_EQ(0u, length);
    EXPECT_EQ(0, made);
    ASSERT_EQ(1, WriteText(stream, "0"));
    EXPECT_EQ(1, made);
    ASSERT_EQ(1, WriteText(stream, "1234"));
    EXPECT_EQ(1, made) << "a full block asks for no next one";
    ASSERT_EQ(1, SeekTo(stream, 0, 0));
    ASSERT_EQ(1, WriteText(stream, "56789"));
    EXPECT_EQ(1, made);
    ASSERT_EQ(1, WriteText(stream, "abcdef"));
    EXPECT_EQ(3, made);
}

TEST(BlockStream, MemoryThatRunsOutInTheMiddleLeavesWhatWasWritten)
{
    Scope scope;
    BlockStream stream;
    ASSERT_EQ(1, stream.Open(4, nullptr));
    ASSERT_EQ(1, WriteText(stream, "0123456789"));
    ASSERT_EQ(1, SeekTo(stream, 9, 0));
    int left = 1;
    SetAllocationFault([&left](SIZE_T size) { return size == 4 && left-- <= 0; });
    u32 length = 0;
    EXPECT_EQ(-2, WriteText(stream, "ABCDEFGHIJKL", &length));
    EXPECT_EQ(7u, length) << "three in the third block, four in the one that could be had";
    EXPECT_EQ(16u, SizeOf(stream));
    EXPECT_EQ(16u, PositionOf(stream));
    EXPECT_EQ(-2, WriteText(stream, "x", &length));
    EXPECT_EQ(0u, length);
    tavrix::testing::Reset();
    EXPECT_EQ(1, WriteText(stream, "HIJKL"));
    ASSERT_EQ(1, SeekTo(stream, 0, 0));
    EXPECT_EQ("012345678ABCDEFGHIJKL", ReadText(stream, 99));
}

TEST(BlockStream, SeeksWithinTheBytesHeld)
{
    BlockStream stream;
    ASSERT_EQ(1, stream.Open(8, nullptr));
    EXPECT_EQ(1, SeekTo(stream, 0, 0));
    EXPECT_EQ(1, SeekTo(stream, 0, 2));
    EXPECT_EQ(-1, SeekTo(stream, 1, 0));
    ASSERT_EQ(1, WriteText(stream, Pattern(10)));
    u64 position = NoPosition;
    EXPECT_EQ(1, SeekTo(stream, 10, 0, &position));
    EXPECT_EQ(10u, position);
    EXPECT_EQ(-1, SeekTo(stream, 11, 0)) << "what the block has room for does not count";
    EXPECT_EQ(1, SeekTo(stream, -4, 1, &position));
    EXPECT_EQ(6u, position);
    EXPECT_EQ(-1, SeekTo(stream, 1, 2));
    EXPECT_EQ(-1, SeekTo(stream, 0, 3));
    EXPECT_EQ(6u, PositionOf(stream));
}

TEST(BlockStream, BlocksOfOneByteHoldAsMuch)
{
    BlockStream stream;
    ASSERT_EQ(1, stream.Open(1, nullptr));
    ASSERT_EQ(1, WriteText(stream, Pattern(100)));
    ASSERT_EQ(1, SeekTo(stream, 0, 0));
    EXPECT_EQ(Pattern(100), ReadText(stream, 1000));
}

TEST(BlockStream, ABlockLargerThanAnyMemoryIsRefusedByTheWrite)
{
    Scope scope;
    BlockStream stream;
    ASSERT_EQ(1, stream.Open(0xFFFFFFFF, nullptr));
    SetAllocationFault([](SIZE_T size) { return size == 0xFFFFFFFF; });
    u32 length = 0;
    EXPECT_EQ(-2, WriteText(stream, "x", &length));
    EXPECT_EQ(0u, length);
    EXPECT_EQ(0u, SizeOf(stream));
}

TEST(BlockStream, AnyOrderOfSeekingReadingAndWritingGivesWhatATextWould)
{
    std::mt19937 random(11);
    for (const u32 blockSize : {1u, 3u, 16u}) {
        BlockStream stream;
        ASSERT_EQ(1, stream.Open(blockSize, nullptr));
        std::string expected;
        size_t position = 0;
        for (int step = 0; step < 3000; ++step) {
            const size_t count = random() % 40;
            u32 length = static_cast<u32>(count);
            switch (random() % 3) {
            case 0: {
                const i64 to = static_cast<i64>(random() % (expected.size() + 1));
                ASSERT_EQ(1, stream.Seek(&to, nullptr, 0));
                position = static_cast<size_t>(to);
                break;
            }
            case 1: {
                const std::string bytes = Pattern(count + random() % 9).substr(0, count);
                ASSERT_EQ(1, stream.Write(bytes.data(), &length));
                ASSERT_EQ(count, length);
                expected.replace(position, std::min(count, expected.size() - position), bytes);
                position += count;
                break;
            }
            default: {
                std::string bytes(count, '\0');
                (void)stream.Read(bytes.data(), &length);
                ASSERT_EQ(expected.substr(position, count), bytes.substr(0, length));
                position += length;
                break;
            }
            }
        }
    }
}

// Were each write a walk over all blocks, this would take some minutes.
TEST(BlockStream, FiftyMegabytesInSmallPiecesComeBackWhole)
{
    constexpr u32 Piece = 505;
    constexpr u32 Pieces = (50u << 20) / Piece;
    const std::string pattern = Pattern(Piece);
    BlockStream stream;
    ASSERT_EQ(1, stream.Open(1024, nullptr));
    for (u32 i = 0; i < Pieces; ++i) {
        u32 length = Piece;
        ASSERT_EQ(1, stream.Write(pattern.data(), &length));
    }
    const i64 start = 0;
    ASSERT_EQ(1, stream.Seek(&start, nullptr, 0));
    std::string piece(Piece, '\0');
    for (u32 i = 0; i < Pieces; ++i) {
        u32 length = Piece;
        ASSERT_EQ(1, stream.Read(piece.data(), &length));
        ASSERT_EQ(pattern, piece) << i;
    }
    EXPECT_EQ(1, stream.Close());
}

TEST(BlockStream, CanBeGivenOutAndTakenBack)
{
    BlockStream stream;
    ASSERT_EQ(1, stream.Open(8, nullptr));
    PluginStreamRecord record{};
    record.size = sizeof record;
    EXPECT_EQ(1, stream.GetInterface(&record));
    EXPECT_EQ(1, stream.Release());
    EXPECT_EQ(-1, stream.Release());
    record.size = sizeof record - 1;
    EXPECT_EQ(-98, stream.GetInterface(&record));
}
