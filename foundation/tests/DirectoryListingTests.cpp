// Listings of real folders: many entries, names of every kind, and what is told of a path by
// listing it.
#include "foundation/Directory.h"
#include "foundation/tests/TestFolder.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace
{

using tavrix::testing::Utf8;

struct Listed {
    std::u16string name;
    u32 type;
    u64 size;
};

std::vector<Listed> List(Directory& directory, const WCHAR* pattern)
{
    std::vector<Listed> found;
    FindRecord* record = nullptr;
    if (directory.FindFirst(&record, pattern) < 1)
        return found;
    FileEntry entry{};
    while (directory.FindNext(record, &entry) > 0)
        found.push_back({entry.name, entry.type, entry.size});
    EXPECT_EQ(1, directory.FindClose(record));
    return found;
}

/// Counts what IsFile and IsDirectory are made of.
class CountingDirectory : public Directory
{
public:
    i32 FindFirst(FindRecord** handle, const WCHAR* pattern) override
    {
        ++firsts;
        asked = pattern;
        return Directory::FindFirst(handle, pattern);
    }
    i32 FindNext(FindRecord* handle, FileEntry* entry) override
    {
        ++nexts;
        return Directory::FindNext(handle, entry);
    }
    i32 FindClose(FindRecord* handle) override
    {
        ++closes;
        return Directory::FindClose(handle);
    }
    int firsts = 0;
    int nexts = 0;
    int closes = 0;
    std::u16string asked;
};

} // namespace

TEST(DirectoryListing, AFolderOfManyEntriesIsGivenWholeAndEachOnce)
{
    constexpr int Count = 3000;
    TestFolder folder;
    for (int i = 0; i < Count; ++i)
        folder.Write("file-" + std::to_string(i) + ".dat",
                     std::string(static_cast<size_t>(i % 7), 'x'));
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    std::map<std::u16string, u64> found;
    for (const Listed& entry : List(directory, u"*")) {
        EXPECT_EQ(1u, entry.type);
        EXPECT_TRUE(found.emplace(entry.name, entry.size).second) << Utf8(entry.name.c_str());
    }
    ASSERT_EQ(static_cast<size_t>(Count), found.size());
    for (int i = 0; i < Count; ++i) {
        const std::u16string name = tavrix::testing::Wide("file-" + std::to_string(i) + ".dat");
        ASSERT_TRUE(found.count(name)) << i;
        EXPECT_EQ(static_cast<u64>(i % 7), found[name]) << i;
    }
}

TEST(DirectoryListing, JapaneseNamesArriveWhole)
{
    TestFolder folder;
    folder.Write("写真 その１.png", "12");
    std::filesystem::create_directory(folder.Host("設定ファイル"));
    folder.Write("設定ファイル/中身", "");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    EXPECT_EQ(1, directory.IsFile(u"写真 その１.png"));
    EXPECT_EQ(1, directory.IsDirectory(u"設定ファイル"));
    EXPECT_EQ(1, directory.IsFile(u"設定ファイル/中身"));
    const std::vector<Listed> found = List(directory, u"*.png");
    ASSERT_EQ(1u, found.size());
    EXPECT_EQ(std::u16string(u"写真 その１.png"), found[0].name);
    EXPECT_EQ(2u, found[0].size);
    ASSERT_EQ(1, directory.Enter(u"設定ファイル"));
    const std::vector<Listed> inside = List(directory, u"*");
    ASSERT_EQ(1u, inside.size());
    EXPECT_EQ(std::u16string(u"中身"), inside[0].name);
}

TEST(DirectoryListing, ACharacterOutsideTheBasicPlaneTakesTwoUnits)
{
    TestFolder folder;
    folder.Write("\xF0\xA0\xAE\xB7\xE9\x87\x8E", ""); // U+20BB7 U+91CE
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    const std::vector<Listed> found = List(directory, u"*");
    ASSERT_EQ(1u, found.size());
    EXPECT_EQ((std::u16string{0xD842, 0xDFB7, 0x91CE}), found[0].name);
}

TEST(DirectoryListing, TheLongestNamesOfTheHostArriveWhole)
{
    TestFolder folder;
    const std::string name(255, 'n');
    folder.Write(name, "abc");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    const std::vector<Listed> found = List(directory, u"n*");
    ASSERT_EQ(1u, found.size());
    EXPECT_EQ(std::u16string(255, u'n'), found[0].name);
    EXPECT_EQ(3u, found[0].size);
}

TEST(DirectoryListing, HiddenFilesAreListedLikeOthers)
{
    TestFolder folder;
    folder.Write(".hidden", "1");
    std::filesystem::create_directory(folder.Host(".folder"));
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    const std::vector<Listed> found = List(directory, u"*");
    ASSERT_EQ(2u, found.size());
    EXPECT_EQ(std::u16string(u".folder"), found[0].name);
    EXPECT_EQ(2u, found[0].type);
    EXPECT_EQ(std::u16string(u".hidden"), found[1].name);
    EXPECT_EQ(1u, found[1].type);
    EXPECT_EQ(1, directory.IsFile(u".hidden"));
    EXPECT_EQ(1, directory.IsDirectory(u".folder"));
}

TEST(DirectoryListing, ASizeBeyond32BitsIsWhole)
{
    TestFolder folder;
    folder.Write("large", "");
    std::filesystem::resize_file(folder.Host("large"), 0x1'2345'6789ull);
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    const std::vector<Listed> found = List(directory, u"large");
    ASSERT_EQ(1u, found.size());
    EXPECT_EQ(0x1'2345'6789ull, found[0].size);
}

TEST(DirectoryListing, AFolderHasNoSize)
{
    TestFolder folder;
    std::filesystem::create_directory(folder.Host("sub"));
    folder.Write("sub/a", "1234");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    const std::vector<Listed> found = List(directory, u"*");
    ASSERT_EQ(1u, found.size());
    EXPECT_EQ(2u, found[0].type);
    EXPECT_EQ(0u, found[0].size);
}

TEST(DirectoryListing, TheFirstEntryIsHeldFromTheBeginningOn)
{
    TestFolder folder;
    folder.Write("only", "12345");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    FindRecord* record = nullptr;
    ASSERT_EQ(1, directory.FindFirst(&record, u"*"));
    std::filesystem::remove(folder.Host("only"));
    FileEntry entry{};
    EXPECT_EQ(1, directory.FindNext(record, &entry));
    EXPECT_EQ(std::u16string(u"only"), entry.name);
    EXPECT_EQ(5u, entry.size);
    EXPECT_EQ(0, directory.FindNext(record, &entry));
    EXPECT_EQ(1, directory.FindClose(record));
}

TEST(DirectoryListing, TheLastEntryClosesThePlatformsSearch)
{
    TestFolder folder;
    folder.Write("a", "");
    folder.Write("b", "");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    FindRecord* record = nullptr;
    ASSERT_EQ(1, directory.FindFirst(&record, u"*"));
    const HANDLE search = record->find;
    EXPECT_NE(INVALID_HANDLE_VALUE, search);
    FileEntry entry{};
    EXPECT_EQ(1, directory.FindNext(record, &entry));
    EXPECT_EQ(search, record->find);
    EXPECT_EQ(0, record->finished);
    // The entry is given though behind it there is none any more.
    EXPECT_EQ(1, directory.FindNext(record, &entry));
    EXPECT_EQ(std::u16string(u"b"), entry.name);
    EXPECT_EQ(INVALID_HANDLE_VALUE, record->find);
    EXPECT_EQ(1, record->finished);
    EXPECT_FALSE(::FindClose(search)) << "the platform's handle is still open";
    EXPECT_EQ(0, directory.FindNext(record, &entry));
    EXPECT_EQ(1, directory.FindClose(record));
}

TEST(DirectoryListing, ClosingEarlyClosesThePlatformsSearch)
{
    TestFolder folder;
    folder.Write("a", "");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    FindRecord* record = nullptr;
    ASSERT_EQ(1, directory.FindFirst(&record, u"*"));
    const HANDLE search = record->find;
    EXPECT_EQ(1, directory.FindClose(record));
    EXPECT_FALSE(::FindClose(search)) << "the platform's handle is still open";
}

TEST(DirectoryListing, FindNextRefusesANullEntry)
{
    TestFolder folder;
    folder.Write("a", "");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    FindRecord* record = nullptr;
    ASSERT_EQ(1, directory.FindFirst(&record, u"*"));
    EXPECT_EQ(-4, directory.FindNext(record, nullptr));
    FileEntry entry{};
    EXPECT_EQ(1, directory.FindNext(record, &entry)) << "the refused call took the entry";
    EXPECT_EQ(1, directory.FindClose(record));
}

TEST(DirectoryListing, IsFileAndIsDirectoryListTheExactPath)
{
    TestFolder folder;
    folder.Write("a", "");
    CountingDirectory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    EXPECT_EQ(1, directory.IsFile(u"a"));
    EXPECT_EQ(u"a", directory.asked);
    EXPECT_EQ(-1, directory.IsDirectory(u"a"));
    EXPECT_EQ(2, directory.firsts);
    EXPECT_EQ(2, directory.nexts);
    EXPECT_EQ(2, directory.closes);
    // What is not found has nothing to close.
    EXPECT_EQ(-1, directory.IsFile(u"absent"));
    EXPECT_EQ(3, directory.firsts);
    EXPECT_EQ(2, directory.nexts);
    EXPECT_EQ(2, directory.closes);
    EXPECT_EQ(-4, directory.IsFile(nullptr));
    EXPECT_EQ(3, directory.firsts);
}

TEST(DirectoryListing, APatternIsToldByWhatItFindsFirst)
{
    TestFolder folder;
    folder.Write("a.bin", "");
    std::filesystem::create_directory(folder.Host("b.bin"));
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    EXPECT_EQ(1, directory.IsFile(u"*.bin"));
    EXPECT_EQ(-1, directory.IsDirectory(u"*.bin"));
    EXPECT_EQ(1, directory.IsDirectory(u"b*"));
}

TEST(DirectoryListing, AFolderThatIsAbsentHasNoListing)
{
    TestFolder folder;
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Path(u"absent").c_str()));
    FindRecord mark{};
    FindRecord* record = &mark;
    EXPECT_EQ(-1, directory.FindFirst(&record, u"*"));
    EXPECT_EQ(nullptr, record);
}
