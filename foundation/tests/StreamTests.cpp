#include "foundation/FileStream.h"
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
