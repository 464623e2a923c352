// The streams, their list and the line reader when memory or the disk fails at each place in turn.

#include "foundation/BlockStream.h"
#include "foundation/CountingStream.h"
#include "foundation/FileStream.h"
#include "foundation/LineReader.h"
#include "foundation/MemoryStream.h"
#include "foundation/tests/StreamTesting.h"
#include "foundation/tests/TestFolder.h"
#include "platform/testing/Faults.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using tavrix::testing::ArmedFault;
using tavrix::testing::FaultKind;
using tavrix::testing::FaultReach;
using tavrix::testing::ForEveryFault;
using tavrix::testing::Scope;

TEST(StreamFaults, AMemoryStreamOpensWholeOrStaysClosed)
{
    Scope scope;
    std::vector<i32> results;
    ForEveryFault(FaultKind::Allocation, [&results] {
        MemoryStream stream;
        const i32 result = stream.Open(nullptr, 20, 0, TEXT("name"));
        results.push_back(result);
        u32 length = 0;
        if (result == -2) {
            EXPECT_EQ(-1, WriteText(stream, "x"));
            EXPECT_EQ(0, stream.Close());
            return;
        }
        ASSERT_EQ(1, result);
        // Without memory for its name the stream goes without one.
        const std::u16string name = NameOf(stream);
        EXPECT_TRUE(name == u"name" || name.empty());
        EXPECT_EQ(1, WriteText(stream, "0123456789", &length));
        EXPECT_EQ(10u, length);
        ASSERT_EQ(1, SeekTo(stream, 0, 0));
        EXPECT_EQ(std::string("0123456789") + std::string(10, '\0'), ReadText(stream, 99));
    });
    EXPECT_EQ(1, results.front());
    EXPECT_NE(results.end(), std::find(results.begin(), results.end(), -2));
}

TEST(StreamFaults, ABlockStreamKeepsWhatWasWrittenBeforeMemoryRanOut)
{
    Scope scope;
    const unsigned faults = ForEveryFault(FaultKind::Allocation, [] {
        BlockStream stream;
        ASSERT_EQ(1, stream.Open(8, TEXT("name")));
        std::string held;
        bool refused = false;
        for (const char* part : {"01234", "56789abcdefghijklmnop", "qrs", "tuvwxyz"}) {
            const std::string text = part;
            u32 length = 0;
            const i32 result = WriteText(stream, text, &length);
            ASSERT_LE(length, text.size());
            held += text.substr(0, length);
            if (result == 1) {
                EXPECT_EQ(text.size(), length);
            } else {
                EXPECT_EQ(-2, result);
                EXPECT_EQ(0u, held.size() % 8) << "it ends where a block was missing";
                refused = true;
            }
            EXPECT_EQ(held.size(), SizeOf(stream));
            EXPECT_EQ(held.size(), PositionOf(stream));
        }
        EXPECT_TRUE(refused || held.size() == 36);
        ASSERT_EQ(1, SeekTo(stream, 0, 0));
        EXPECT_EQ(held, ReadText(stream, 99));
        EXPECT_EQ(1, stream.Close());
    });
    EXPECT_EQ(11u, faults) << "the name, five blocks and five nodes";
}

TEST(StreamFaults, ABlockListThatGetsNoNodeIsAsBefore)
{
    Scope scope;
    const unsigned faults = ForEveryFault(FaultKind::Allocation, [] {
        BlockList list;
        int numbers[3];
        std::vector<void*> expected;
        for (int& number : numbers) {
            BlockList::Node* tail = nullptr;
            ASSERT_EQ(1, list.GetTail(&tail));
            const i32 result = list.Insert(&number, tail);
            if (result == 1)
                expected.push_back(&number);
            else
                EXPECT_EQ(-2, result);
        }
        BlockList::Node* node = nullptr;
        ASSERT_EQ(1, list.GetHead(&node));
        for (void* data : expected) {
            ASSERT_NE(nullptr, node);
            EXPECT_EQ(data, node->data);
            node = node->next;
        }
        EXPECT_EQ(nullptr, node);
    });
    EXPECT_EQ(3u, faults);
}

TEST(StreamFaults, ALineReaderWithoutMemoryAttachesNothing)
{
    Scope scope;
    ExactBytes text("ab\ncd\n");
    const unsigned faults = ForEveryFault(FaultKind::Allocation, [&text] {
        MemoryStream source;
        ASSERT_EQ(1, source.Open(text.data.get(), 6, 1, nullptr));
        LineReader reader(nullptr, 4);
        char line[9];
        u32 length = 9;
        const i32 result = reader.Attach(&source);
        if (result == -2) {
            EXPECT_EQ(-1, reader.ReadLine(line, &length));
            EXPECT_EQ(0u, PositionOf(source));
            return;
        }
        ASSERT_EQ(1, result);
        EXPECT_EQ(1, reader.ReadLine(line, &length));
        EXPECT_EQ(2u, length);
    });
    EXPECT_EQ(2u, faults) << "its allocator and its buffer";
}

TEST(StreamFaults, ACountingStreamTakesNoMemory)
{
    Scope scope;
    const ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
    CountingStream stream;
    u32 length = 1000000;
    EXPECT_EQ(1, stream.Write(nullptr, &length));
    EXPECT_EQ(1, SeekTo(stream, 0, 0));
    EXPECT_EQ(1, stream.Close());
    EXPECT_EQ(0u, fault.Seen());
}

TEST(StreamFaults, AFileStreamWithoutMemoryGoesWithoutItsName)
{
    Scope scope;
    TestFolder folder;
    folder.Write("a.bin", "hello");
    const std::u16string path = folder.Path(u"a.bin");
    const unsigned faults = ForEveryFault(FaultKind::Allocation, [&path] {
        FileStream* stream = new FileStream;
        if (stream == nullptr)
            return;
        ASSERT_EQ(1, stream->Open(path.c_str(), 1));
        const std::u16string name = NameOf(*stream);
        EXPECT_TRUE(name == u"a.bin" || name.empty());
        EXPECT_EQ("hello", ReadText(*stream, 9));
        delete stream;
    });
    EXPECT_EQ(2u, faults) << "the stream itself and its name";
}

TEST(StreamFaults, AFileStreamThatDoesNotOpenIsClosed)
{
    Scope scope;
    TestFolder folder;
    folder.Write("a.bin", "hello");
    const std::u16string path = folder.Path(u"a.bin");
    std::vector<i32> results;
    ForEveryFault(FaultKind::Open, [&] {
        FileStream stream;
        for (const i32 readOnly : {1, 0}) {
            const i32 result = stream.Open(path.c_str(), readOnly);
            results.push_back(result);
            if (result == 1) {
                EXPECT_EQ("hello", ReadText(stream, 9));
            } else {
                EXPECT_EQ(-1, result);
                EXPECT_EQ("failed", ReadText(stream, 9));
                EXPECT_EQ(u"?", NameOf(stream));
            }
        }
    });
    EXPECT_NE(results.end(), std::find(results.begin(), results.end(), -1));
}

namespace
{

/// Reads in portions of four bytes until one is empty, as a decoder does; every result is 1.
std::string ReadByFours(Stream& stream)
{
    std::string text;
    u32 length = 4;
    for (int portion = 0; portion < 10 && length > 0; ++portion) {
        char four[4] = {};
        length = 4;
        EXPECT_EQ(1, stream.Read(four, &length));
        text.append(four, std::min(length, 4u));
    }
    EXPECT_EQ(0u, length) << "no end";
    return text;
}

} // namespace

TEST(StreamFaults, AFailingReadOfAFileLooksLikeItsEnd)
{
    Scope scope;
    TestFolder folder;
    folder.Write("a.bin", "0123456789");
    const std::u16string path = folder.Path(u"a.bin");
    std::vector<std::string> texts;
    ForEveryFault(FaultKind::Read, [&] {
        FileStream stream;
        ASSERT_EQ(1, stream.Open(path.c_str(), 1));
        texts.push_back(ReadByFours(stream));
    });
    // Whole at first; then read 1, 2, 3 and the one that finds the end fails, alone and with all
    // behind it; and after each of these rows whole again.
    const std::vector<std::string> expected = {"0123456789", "",           "0123",      "01234567",
                                               "0123456789", "0123456789", "",          "0123",
                                               "01234567",   "0123456789", "0123456789"};
    EXPECT_EQ(expected, texts);
}

TEST(StreamFaults, AShortReadOfAFileLosesNoByte)
{
    Scope scope;
    TestFolder folder;
    folder.Write("a.bin", "0123456789");
    const std::u16string path = folder.Path(u"a.bin");
    ForEveryFault(FaultKind::ShortRead, [&path] {
        FileStream stream;
        ASSERT_EQ(1, stream.Open(path.c_str(), 1));
        const std::string text = ReadByFours(stream);
        // At the very last byte one fewer is none, which looks like the end.
        EXPECT_EQ(std::string("0123456789").substr(0, text.size()), text);
        EXPECT_LE(9u, text.size());
    });
}

namespace
{

/// Writes three parts to an emptied file and answers the counts that came back; every result is 1.
std::vector<u32> WriteThreeParts(const TestFolder& folder, const std::u16string& path)
{
    folder.Write("a.bin", "");
    FileStream stream;
    EXPECT_EQ(1, stream.Open(path.c_str(), 0));
    std::vector<u32> counts;
    for (const char* part : {"0123", "45", "6789"}) {
        u32 length = 0;
        EXPECT_EQ(1, WriteText(stream, part, &length));
        counts.push_back(length);
    }
    return counts;
}

} // namespace

TEST(StreamFaults, AFailingWriteToAFileShowsInItsCountAlone)
{
    Scope scope;
    TestFolder folder;
    const std::u16string path = folder.Path(u"a.bin");
    std::vector<u32> counts;
    std::vector<std::vector<u32>> all;
    const unsigned faults = ForEveryFault(
        FaultKind::Write, [&] { counts = WriteThreeParts(folder, path); },
        [&](bool) {
            std::string expected = counts[0] != 0 ? "0123" : "";
            expected += counts[1] != 0 ? "45" : "";
            expected += counts[2] != 0 ? "6789" : "";
            EXPECT_EQ(expected, folder.Read("a.bin"));
            all.push_back(counts);
        });
    EXPECT_EQ(3u, faults);
    const std::vector<std::vector<u32>> expected = {
        {4, 2, 4},                                   // none
        {0, 2, 4}, {4, 0, 4}, {4, 2, 0}, {4, 2, 4},  // one alone
        {0, 0, 0}, {4, 0, 0}, {4, 2, 0}, {4, 2, 4}}; // and all behind it
    EXPECT_EQ(expected, all);
}

TEST(StreamFaults, AShortWriteToAFileShowsInItsCountAlone)
{
    Scope scope;
    TestFolder folder;
    const std::u16string path = folder.Path(u"a.bin");
    std::vector<u32> counts;
    std::vector<std::string> texts;
    ForEveryFault(
        FaultKind::ShortWrite, [&] { counts = WriteThreeParts(folder, path); },
        [&](bool) {
            const std::string text = folder.Read("a.bin");
            EXPECT_EQ(text.size(), counts[0] + counts[1] + counts[2]);
            texts.push_back(text);
        });
    const std::vector<std::string> expected = {
        "0123456789",                                          // none
        "012456789",  "012346789", "012345678", "0123456789",  // one alone
        "0124678",    "01234678",  "012345678", "0123456789"}; // and all behind it
    EXPECT_EQ(expected, texts);
}

TEST(StreamFaults, AFullDiskShowsInTheCountAlone)
{
    Scope scope;
    TestFolder folder;
    const std::u16string path = folder.Path(u"a.bin");
    folder.Write("a.bin", "");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(path.c_str(), 0));
    tavrix::testing::SetDiskSpace(6);
    u32 length = 0;
    EXPECT_EQ(1, WriteText(stream, "0123", &length));
    EXPECT_EQ(4u, length);
    EXPECT_EQ(1, WriteText(stream, "4567", &length));
    EXPECT_EQ(2u, length);
    EXPECT_EQ(1, WriteText(stream, "6", &length));
    EXPECT_EQ(0u, length);
    EXPECT_EQ(6u, SizeOf(stream));
}
