#include "foundation/BlockStream.h"
#include "foundation/CountingStream.h"
#include "foundation/FileStream.h"
#include "foundation/MemoryStream.h"
#include "foundation/tests/StreamTesting.h"
#include "foundation/tests/TestFolder.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{

PluginStreamRecord EmptyRecord()
{
    PluginStreamRecord record{};
    record.size = sizeof record;
    return record;
}

} // namespace

TEST(Stream, GetInterfaceRefusesARecordThatIsTooSmall)
{
    TestFolder folder;
    folder.Write("a.bin", "x");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 1));
    PluginStreamRecord record;
    std::memset(&record, 0x5A, sizeof record);
    record.size = sizeof record - 1;
    const PluginStreamRecord before = record;
    EXPECT_EQ(-98, stream.GetInterface(&record));
    EXPECT_EQ(0, std::memcmp(&before, &record, sizeof record));
    EXPECT_EQ(-1, stream.Release()) << "a refused record was counted";
    EXPECT_EQ(-4, stream.GetInterface(nullptr));
}

TEST(Stream, GetInterfaceFillsTheRecordAndCounts)
{
    TestFolder folder;
    folder.Write("a.bin", "x");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 1));
    PluginStreamRecord record = EmptyRecord();
    record.size = sizeof record + 100;
    EXPECT_EQ(1, stream.GetInterface(&record));
    EXPECT_EQ(sizeof record, record.size);
    EXPECT_EQ(1, stream.GetInterface(&record));
    EXPECT_EQ(1, stream.Release());
    EXPECT_EQ(1, stream.Release());
    EXPECT_EQ(-1, stream.Release());
    EXPECT_EQ(-1, stream.Release());
}

TEST(Stream, TheRecordReadsWritesAndSeeks)
{
    TestFolder folder;
    folder.Write("a.bin", "hello");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 0));
    PluginStreamRecord record = EmptyRecord();
    ASSERT_EQ(1, stream.GetInterface(&record));

    u64 size = 0;
    EXPECT_EQ(1, record.getSize(record.handle, &size));
    EXPECT_EQ(5u, size);
    char buffer[4] = {};
    u32 length = 4;
    EXPECT_EQ(1, record.read(record.handle, buffer, &length));
    EXPECT_EQ(4u, length);
    EXPECT_EQ(0, std::memcmp("hell", buffer, 4));
    const i64 offset = -4;
    u64 position = 99;
    EXPECT_EQ(1, record.seek(record.handle, &offset, &position, 2));
    EXPECT_EQ(1u, position);
    length = 1;
    EXPECT_EQ(1, record.write(record.handle, "u", &length));
    EXPECT_EQ(1u, length);
    EXPECT_EQ(1, stream.Release());
    EXPECT_EQ(1, stream.Close());
    EXPECT_EQ("hullo", folder.Read("a.bin"));
}

TEST(Stream, TheRecordPassesTheStreamsRefusalsOn)
{
    TestFolder folder;
    folder.Write("a.bin", "hello");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 1));
    PluginStreamRecord record = EmptyRecord();
    ASSERT_EQ(1, stream.GetInterface(&record));
    EXPECT_EQ(-4, record.getSize(record.handle, nullptr));
    EXPECT_EQ(-4, record.seek(record.handle, nullptr, nullptr, 0));
    EXPECT_EQ(-4, record.read(record.handle, nullptr, nullptr));
    EXPECT_EQ(-4, record.write(record.handle, nullptr, nullptr));
    (void)stream.Close();
    u64 size = 0;
    EXPECT_EQ(-1, record.getSize(record.handle, &size));
}

TEST(Stream, TheRecordsFunctionsRefuseANullHandle)
{
    TestFolder folder;
    folder.Write("a.bin", "hello");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 1));
    PluginStreamRecord record = EmptyRecord();
    ASSERT_EQ(1, stream.GetInterface(&record));
    u64 size = 0;
    const i64 offset = 0;
    char byte = 0;
    u32 length = 1;
    EXPECT_EQ(-1, record.getSize(nullptr, &size));
    EXPECT_EQ(-1, record.seek(nullptr, &offset, nullptr, 0));
    EXPECT_EQ(-1, record.read(nullptr, &byte, &length));
    EXPECT_EQ(-1, record.write(nullptr, &byte, &length));
}

TEST(Stream, ReleaseOfWhatWasNeverGivenOutChangesNothing)
{
    CountingStream stream;
    EXPECT_EQ(-1, stream.Release());
    EXPECT_EQ(-1, stream.Release());
    PluginStreamRecord record = EmptyRecord();
    ASSERT_EQ(1, stream.GetInterface(&record));
    EXPECT_EQ(1, stream.Release());
    EXPECT_EQ(-1, stream.Release());
}

TEST(Stream, ClosingLeavesTheRecordsCounted)
{
    MemoryStream stream;
    ASSERT_EQ(1, stream.Open(nullptr, 4, 0, nullptr));
    PluginStreamRecord record = EmptyRecord();
    ASSERT_EQ(1, stream.GetInterface(&record));
    ASSERT_EQ(1, stream.Close());
    u64 size = 0;
    EXPECT_EQ(-1, record.getSize(record.handle, &size)) << "still callable, and closed";
    EXPECT_EQ(1, stream.Release());
    EXPECT_EQ(-1, stream.Release());
}

TEST(Stream, TheRecordTellsTheStreamAsItsHandle)
{
    BlockStream stream;
    ASSERT_EQ(1, stream.Open(8, nullptr));
    PluginStreamRecord record = EmptyRecord();
    ASSERT_EQ(1, stream.GetInterface(&record));
    EXPECT_EQ(static_cast<Stream*>(&stream), record.handle);
    EXPECT_EQ(sizeof(void*) == 4 ? 24u : 48u, record.size);
}

namespace
{

struct Answers {
    i32 getSize, read, write;
    u32 readLength;
};

/// The four functions over a stream that stands at the start of five bytes, read "hello".
void ExpectRecord(Stream& stream, const Answers& answers)
{
    PluginStreamRecord record = EmptyRecord();
    ASSERT_EQ(1, stream.GetInterface(&record));
    u64 size = 0;
    EXPECT_EQ(answers.getSize, record.getSize(record.handle, &size));
    EXPECT_EQ(5u, size);
    const ExactBytes bytes(3, '#');
    u32 length = 3;
    EXPECT_EQ(answers.read, record.read(record.handle, bytes.data.get(), &length));
    EXPECT_EQ(answers.readLength, length);
    EXPECT_EQ(answers.readLength == 3 ? "hel" : "###", bytes.Text());
    i64 offset = -1;
    u64 position = 0;
    EXPECT_EQ(1, record.seek(record.handle, &offset, &position, 2));
    EXPECT_EQ(4u, position);
    offset = -5;
    EXPECT_EQ(-1, record.seek(record.handle, &offset, &position, 1));
    length = 1;
    EXPECT_EQ(answers.write, record.write(record.handle, "!", &length));
    EXPECT_EQ(1u, length);
    EXPECT_EQ(answers.write == 1 ? 5u : 4u, PositionOf(stream));
    EXPECT_EQ(1, stream.Release());
}

} // namespace

TEST(Stream, TheRecordWorksOverEveryStreamInMemory)
{
    ExactBytes bytes("hello");
    MemoryStream writable;
    ASSERT_EQ(1, writable.Open(bytes.data.get(), 5, 0, nullptr));
    ExpectRecord(writable, {1, 1, 1, 3});
    EXPECT_EQ("hell!", bytes.Text());

    ExactBytes kept("hello");
    MemoryStream readOnly;
    ASSERT_EQ(1, readOnly.Open(kept.data.get(), 5, 1, nullptr));
    ExpectRecord(readOnly, {1, 1, -1, 3});
    EXPECT_EQ("hello", kept.Text());

    BlockStream blocks;
    ASSERT_EQ(1, blocks.Open(2, nullptr));
    ASSERT_EQ(1, WriteText(blocks, "hello"));
    ASSERT_EQ(1, SeekTo(blocks, 0, 0));
    ExpectRecord(blocks, {1, 1, 1, 3});
    ASSERT_EQ(1, SeekTo(blocks, 0, 0));
    EXPECT_EQ("hell!", ReadText(blocks, 9));
}

TEST(Stream, TheRecordOverACountingStreamReadsNothing)
{
    CountingStream stream;
    u32 length = 5;
    ASSERT_EQ(1, stream.Write(nullptr, &length));
    ASSERT_EQ(1, SeekTo(stream, 0, 0));
    ExpectRecord(stream, {1, -1, 1, 0});
    EXPECT_EQ(5u, SizeOf(stream));
}
