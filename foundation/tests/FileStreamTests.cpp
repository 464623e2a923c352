#include "foundation/FileStream.h"
#include "foundation/tests/TestFolder.h"

#include <gtest/gtest.h>

#include <cstring>

using tavrix::platform::FileOperation;
using tavrix::testing::Scope;
using tavrix::testing::SetFileFault;

TEST(FileStream, ClosedAnswersFailed)
{
    FileStream stream;
    WCHAR name[8];
    u64 size = 0;
    const i64 offset = 0;
    char byte = 0;
    u32 length = 1;
    PluginStreamRecord record{};
    record.size = sizeof record;
    EXPECT_EQ(-1, stream.GetName(name, 8));
    EXPECT_EQ(-1, stream.GetSize(&size));
    EXPECT_EQ(-1, stream.Seek(&offset, nullptr, 0));
    EXPECT_EQ(-1, stream.Read(&byte, &length));
    EXPECT_EQ(-1, stream.Write(&byte, &length));
    EXPECT_EQ(-1, stream.GetInterface(&record));
    EXPECT_EQ(0, stream.Close());
    EXPECT_EQ(0, stream.CloseFile());
}

TEST(FileStream, RefusesNullBeforeItLooksAtItsState)
{
    FileStream stream;
    char byte = 0;
    u32 length = 1;
    WCHAR name[8];
    EXPECT_EQ(-4, stream.Open(nullptr, 1));
    EXPECT_EQ(-4, stream.GetName(nullptr, 8));
    EXPECT_EQ(-4, stream.GetName(name, 0));
    EXPECT_EQ(-4, stream.GetSize(nullptr));
    EXPECT_EQ(-4, stream.Seek(nullptr, nullptr, 0));
    EXPECT_EQ(-4, stream.Read(nullptr, &length));
    EXPECT_EQ(-4, stream.Read(&byte, nullptr));
    EXPECT_EQ(-4, stream.Write(nullptr, &length));
    EXPECT_EQ(-4, stream.Write(&byte, nullptr));
    EXPECT_EQ(-4, stream.GetInterface(nullptr));
}

TEST(FileStream, OpensWhatExistsAndMakesNothing)
{
    TestFolder folder;
    FileStream stream;
    EXPECT_EQ(-1, stream.Open(folder.Path(u"absent.bin").c_str(), 0));
    EXPECT_FALSE(folder.Has("absent.bin"));
    EXPECT_EQ(0, stream.Close());
}

TEST(FileStream, IsNamedAsTheEndOfItsPath)
{
    TestFolder folder;
    folder.Write("picture.bin", "");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"picture.bin").c_str(), 1));
    WCHAR name[20];
    EXPECT_EQ(1, stream.GetName(name, 20));
    EXPECT_EQ(std::u16string(u"picture.bin"), name);
    EXPECT_EQ(0, stream.GetName(name, 5));
    EXPECT_EQ(std::u16string(u"pict"), name);
}

TEST(FileStream, ReadsToTheEndAndThenNothing)
{
    TestFolder folder;
    folder.Write("a.bin", "hello");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 1));
    char buffer[10];
    u32 length = 10;
    EXPECT_EQ(1, stream.Read(buffer, &length));
    EXPECT_EQ(5u, length);
    length = 10;
    EXPECT_EQ(1, stream.Read(buffer, &length));
    EXPECT_EQ(0u, length);
}

TEST(FileStream, AFailingReadLooksLikeTheEnd)
{
    Scope scope;
    TestFolder folder;
    folder.Write("a.bin", "hello");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 1));
    SetFileFault([](FileOperation operation, const WCHAR*, DWORD*) {
        return operation == FileOperation::Read;
    });
    char buffer[10];
    u32 length = 10;
    EXPECT_EQ(1, stream.Read(buffer, &length));
    EXPECT_EQ(0u, length);
}

TEST(FileStream, AShortWriteShowsInTheCountOnly)
{
    Scope scope;
    TestFolder folder;
    folder.Write("a.bin", "");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 0));
    SetFileFault([](FileOperation operation, const WCHAR*, DWORD* shortBy) {
        *shortBy = 2;
        return operation == FileOperation::Write;
    });
    u32 length = 5;
    EXPECT_EQ(1, stream.Write("hello", &length));
    EXPECT_EQ(3u, length);
    (void)stream.Close();
    EXPECT_EQ("hel", folder.Read("a.bin"));
}

TEST(FileStream, OpenedForReadingWritesNothing)
{
    TestFolder folder;
    folder.Write("a.bin", "hello");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 1));
    u32 length = 1;
    EXPECT_EQ(1, stream.Write("x", &length));
    EXPECT_EQ(0u, length);
    (void)stream.Close();
    EXPECT_EQ("hello", folder.Read("a.bin"));
}

TEST(FileStream, SeeksFromThreeOrigins)
{
    TestFolder folder;
    folder.Write("a.bin", "0123456789");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 1));
    u64 position = 0;
    i64 offset = 4;
    EXPECT_EQ(1, stream.Seek(&offset, &position, 0));
    EXPECT_EQ(4u, position);
    offset = -1;
    EXPECT_EQ(1, stream.Seek(&offset, &position, 1));
    EXPECT_EQ(3u, position);
    offset = -2;
    EXPECT_EQ(1, stream.Seek(&offset, nullptr, 2));
    char byte = 0;
    u32 length = 1;
    EXPECT_EQ(1, stream.Read(&byte, &length));
    EXPECT_EQ('8', byte);
}

TEST(FileStream, SeeksBeyond32Bits)
{
    TestFolder folder;
    folder.Write("a.bin", "x");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 1));
    const i64 offset = 0x123456789ll;
    u64 position = 0;
    EXPECT_EQ(1, stream.Seek(&offset, &position, 0));
    EXPECT_EQ(0x123456789u, position);
}

TEST(FileStream, ARefusedSeekIsNotReported)
{
    TestFolder folder;
    folder.Write("a.bin", "hello");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 1));
    const i64 offset = -1;
    EXPECT_EQ(1, stream.Seek(&offset, nullptr, 0));
}

TEST(FileStream, OpenClosesFirst)
{
    TestFolder folder;
    folder.Write("a.bin", "a");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 1));
    EXPECT_EQ(-1, stream.Open(folder.Path(u"absent.bin").c_str(), 1));
    u64 size = 0;
    EXPECT_EQ(-1, stream.GetSize(&size)) << "the first file is still open";
}

TEST(FileStream, CloseForgetsTheName)
{
    TestFolder folder;
    folder.Write("a.bin", "a");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 1));
    EXPECT_EQ(1, stream.Close());
    EXPECT_EQ(0, stream.Close());
    WCHAR name[8];
    EXPECT_EQ(-1, stream.GetName(name, 8));
}

TEST(FileStream, TellsASizeBeyond32Bits)
{
    TestFolder folder;
    folder.Write("large.bin", "");
    std::filesystem::resize_file(folder.Host("large.bin"), 0x123456789);
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"large.bin").c_str(), 1));
    u64 size = 0;
    EXPECT_EQ(1, stream.GetSize(&size));
    EXPECT_EQ(0x123456789u, size);
}

TEST(FileStream, APathWithoutASeparatorIsTheNameItself)
{
    // Below the root of the tree, where the home folder lies.
    const std::string host = tavrix::testing::HostPath(TEXT("\\plain.bin"));
    std::ofstream(host) << "hello";
    FileStream stream;
    ASSERT_EQ(1, stream.Open(TEXT("plain.bin"), 1));
    WCHAR name[20];
    EXPECT_EQ(1, stream.GetName(name, 20));
    EXPECT_EQ(std::u16string(u"plain.bin"), name);
    EXPECT_EQ(1, stream.Close());
    std::filesystem::remove(host);
}

TEST(FileStream, SeeksBehindTheEndAndBackAgain)
{
    TestFolder folder;
    folder.Write("a.bin", "0123456789");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 0));
    u64 position = 0;
    i64 offset = 3;
    EXPECT_EQ(1, stream.Seek(&offset, &position, 2)) << "the device's own seek is not bounded";
    EXPECT_EQ(13u, position);
    u32 length = 1;
    EXPECT_EQ(1, stream.Write("x", &length));
    u64 size = 0;
    EXPECT_EQ(1, stream.GetSize(&size));
    EXPECT_EQ(14u, size);
    offset = -14;
    EXPECT_EQ(1, stream.Seek(&offset, &position, 1));
    EXPECT_EQ(0u, position);
}

TEST(FileStream, AnUnknownOriginIsNotReportedAndMovesNothing)
{
    TestFolder folder;
    folder.Write("a.bin", "hello");
    FileStream stream;
    ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 1));
    const i64 offset = 3;
    EXPECT_EQ(1, stream.Seek(&offset, nullptr, 7));
    char byte = 0;
    u32 length = 1;
    EXPECT_EQ(1, stream.Read(&byte, &length));
    EXPECT_EQ('h', byte);
}

TEST(FileStream, EndsWithItsObjectAndGivesTheFileBack)
{
    TestFolder folder;
    folder.Write("a.bin", "");
    {
        FileStream stream;
        ASSERT_EQ(1, stream.Open(folder.Path(u"a.bin").c_str(), 0));
        u32 length = 5;
        ASSERT_EQ(1, stream.Write("hello", &length));
    }
    EXPECT_EQ("hello", folder.Read("a.bin"));
}

TEST(FileStream, TheTwoOperationsOfItsParentReachTheFile)
{
    TestFolder folder;
    folder.Write("a.bin", "hello");
    FileStream stream;
    AbstractFileStream& file = stream;
    ASSERT_EQ(1, file.Open(folder.Path(u"a.bin").c_str(), 1));
    u64 size = 0;
    EXPECT_EQ(1, file.GetSize(&size));
    EXPECT_EQ(5u, size);
    EXPECT_EQ(1, file.CloseFile());
    EXPECT_EQ(0, file.CloseFile());
}
