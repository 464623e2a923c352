#include "foundation/Directory.h"
#include "foundation/tests/TestFolder.h"

#include <gtest/gtest.h>

#include <set>

using tavrix::testing::HostPath;
using tavrix::testing::Scope;
using tavrix::testing::SetAllocationFault;

namespace
{

bool Exists(const WCHAR* devicePath)
{
    return std::filesystem::exists(HostPath(devicePath));
}

std::u16string BaseOf(Directory& directory)
{
    WCHAR buffer[300] = u"";
    EXPECT_EQ(1, directory.GetBase(buffer, 300));
    return buffer;
}

} // namespace

TEST(Directory, ResolvesAgainstTheRoot)
{
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(u"\\"));
    ASSERT_EQ(1, directory.MakeFile(u"resolve-root", 2));
    EXPECT_TRUE(Exists(u"\\resolve-root"));
}

TEST(Directory, ResolvesAgainstAFolder)
{
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(u"\\Temp"));
    ASSERT_EQ(1, directory.MakeFile(u"resolve-temp", 2));
    EXPECT_TRUE(Exists(u"\\Temp\\resolve-temp"));
    EXPECT_FALSE(Exists(u"\\resolve-temp"));
}

TEST(Directory, ALeadingSeparatorIsNotAbsolute)
{
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(u"\\Temp"));
    ASSERT_EQ(1, directory.MakeFile(u"\\leading", 2));
    EXPECT_TRUE(Exists(u"\\Temp\\leading"));
    EXPECT_FALSE(Exists(u"\\leading"));
}

TEST(Directory, TakesSlashesForSeparators)
{
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(u"\\Temp"));
    WCHAR folder[] = u"a";
    ASSERT_EQ(1, directory.MakeDirectory(folder));
    ASSERT_EQ(1, directory.MakeFile(u"a/b", 2));
    EXPECT_TRUE(Exists(u"\\Temp\\a\\b"));
    ASSERT_EQ(1, directory.MakeFile(u"/from-slash", 2));
    EXPECT_TRUE(Exists(u"\\Temp\\from-slash"));
}

TEST(Directory, WithoutABaseARelativePathStartsAtTheRoot)
{
    Directory directory;
    ASSERT_EQ(1, directory.MakeFile(u"no-base", 2));
    EXPECT_TRUE(Exists(u"\\no-base"));
    ASSERT_EQ(1, directory.MakeFile(u"\\Temp\\no-base", 2));
    EXPECT_TRUE(Exists(u"\\Temp\\no-base"));
}

TEST(Directory, GetBaseIsEmptyWithoutABase)
{
    Directory directory;
    WCHAR buffer[8] = u"old";
    EXPECT_EQ(1, directory.GetBase(buffer, 8));
    EXPECT_EQ(std::u16string(), buffer);
    EXPECT_EQ(-4, directory.GetBase(nullptr, 8));
    EXPECT_EQ(-4, directory.GetBase(buffer, 0));
}

TEST(Directory, GetBaseAppendsToTheText)
{
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(u"\\Temp"));
    WCHAR buffer[20] = u"x";
    EXPECT_EQ(1, directory.GetBase(buffer, 20));
    EXPECT_EQ(std::u16string(u"x\\Temp"), buffer);
    WCHAR small[4] = u"";
    EXPECT_EQ(0, directory.GetBase(small, 4));
    EXPECT_EQ(std::u16string(u"\\Te"), small);
}

TEST(Directory, SetBaseOfNullTakesTheProgramsFolder)
{
    WCHAR folder[300];
    ASSERT_EQ(1, GetApplicationDirectory(folder, 300));
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(u"\\Temp"));
    ASSERT_EQ(1, directory.SetBase(nullptr));
    EXPECT_EQ(std::u16string(folder), BaseOf(directory));
}

TEST(Directory, EnterAppendsANameUnchecked)
{
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(u"\\Temp"));
    EXPECT_EQ(1, directory.Enter(u"\\\\there is none"));
    EXPECT_EQ(u"\\Temp\\there is none", BaseOf(directory));
    EXPECT_EQ(-4, directory.Enter(nullptr));
    EXPECT_EQ(u"\\Temp\\there is none", BaseOf(directory));
}

TEST(Directory, EnterPutsASeparatorAlsoBehindTheRoot)
{
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(u"\\"));
    EXPECT_EQ(1, directory.Enter(u"Temp"));
    EXPECT_EQ(u"\\\\Temp", BaseOf(directory));
    ASSERT_EQ(1, directory.MakeFile(u"entered", 2));
    EXPECT_TRUE(Exists(u"\\Temp\\entered"));
}

TEST(Directory, ABaseIsKeptAsItWasGivenAndItsSlashesAreTurnedWithThePath)
{
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(u"/Temp"));
    EXPECT_EQ(u"/Temp", BaseOf(directory));
    ASSERT_EQ(1, directory.MakeFile(u"from-base", 2));
    EXPECT_TRUE(Exists(u"\\Temp\\from-base"));
}

TEST(Directory, TheBaseIsACopy)
{
    Directory directory;
    WCHAR path[] = u"\\Temp";
    ASSERT_EQ(1, directory.SetBase(path));
    path[1] = u'x';
    EXPECT_EQ(u"\\Temp", BaseOf(directory));
}

TEST(Directory, EnterWithoutABaseStartsAtTheRoot)
{
    Directory directory;
    EXPECT_EQ(1, directory.Enter(u"Temp"));
    EXPECT_EQ(u"\\Temp", BaseOf(directory));
}

TEST(Directory, TellsFilesFromFolders)
{
    TestFolder folder;
    folder.Write("file", "x");
    std::filesystem::create_directory(folder.Host("folder"));
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    EXPECT_EQ(1, directory.IsFile(u"file"));
    EXPECT_EQ(-1, directory.IsDirectory(u"file"));
    EXPECT_EQ(1, directory.IsDirectory(u"folder"));
    EXPECT_EQ(-1, directory.IsFile(u"folder"));
    EXPECT_EQ(-1, directory.IsFile(u"absent"));
    EXPECT_EQ(-1, directory.IsDirectory(u"absent"));
    EXPECT_EQ(-4, directory.IsFile(nullptr));
    EXPECT_EQ(-4, directory.IsDirectory(nullptr));
}

TEST(Directory, AnEmptyFolderHasNoListing)
{
    TestFolder folder;
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    FindRecord* record = nullptr;
    EXPECT_EQ(-1, directory.FindFirst(&record, u"*"));
    EXPECT_EQ(nullptr, record);
}

TEST(Directory, AListingOfOneEntryEndsWithTheSecondCall)
{
    TestFolder folder;
    folder.Write("only.bin", "12345");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    FindRecord* record = nullptr;
    ASSERT_EQ(1, directory.FindFirst(&record, u"*"));
    FileEntry entry{};
    EXPECT_EQ(1, directory.FindNext(record, &entry));
    EXPECT_EQ(std::u16string(u"only.bin"), entry.name);
    EXPECT_EQ(1u, entry.type);
    EXPECT_EQ(5u, entry.size);
    EXPECT_EQ(0, directory.FindNext(record, &entry));
    EXPECT_EQ(0, directory.FindNext(record, &entry));
    EXPECT_EQ(1, directory.FindClose(record));
}

TEST(Directory, AListingGivesEachEntryOnce)
{
    TestFolder folder;
    folder.Write("a.bin", "");
    folder.Write("b.bin", "");
    folder.Write("c.txt", "");
    std::filesystem::create_directory(folder.Host("d.bin"));
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    FindRecord* record = nullptr;
    ASSERT_EQ(1, directory.FindFirst(&record, u"*.bin"));
    std::multiset<std::u16string> found;
    FileEntry entry{};
    while (directory.FindNext(record, &entry) > 0)
        found.insert(std::u16string(entry.name) + (entry.type == 2 ? u"/" : u""));
    EXPECT_EQ(1, directory.FindClose(record));
    EXPECT_EQ((std::multiset<std::u16string>{u"a.bin", u"b.bin", u"d.bin/"}), found);
}

TEST(Directory, AListingMayBeClosedBeforeItsEnd)
{
    TestFolder folder;
    folder.Write("a", "");
    folder.Write("b", "");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    FindRecord* record = nullptr;
    ASSERT_EQ(1, directory.FindFirst(&record, u"*"));
    EXPECT_EQ(1, directory.FindClose(record));
}

TEST(Directory, ListingsRefuseNull)
{
    Directory directory;
    FindRecord* record = nullptr;
    FileEntry entry{};
    EXPECT_EQ(-4, directory.FindFirst(nullptr, u"*"));
    EXPECT_EQ(-4, directory.FindFirst(&record, nullptr));
    EXPECT_EQ(-4, directory.FindNext(nullptr, &entry));
    EXPECT_EQ(-4, directory.FindClose(nullptr));
}

TEST(Directory, MakesAndRemovesFolders)
{
    TestFolder folder;
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    WCHAR outer[] = u"outer";
    WCHAR inner[] = u"outer/inner";
    EXPECT_EQ(1, directory.MakeDirectory(outer));
    EXPECT_EQ(1, directory.MakeDirectory(inner));
    EXPECT_EQ(std::u16string(u"outer\\inner"), inner) << "the caller's text is to be changed";
    EXPECT_TRUE(folder.Has("outer/inner"));
    EXPECT_EQ(-1, directory.MakeDirectory(inner));
    EXPECT_EQ(-1, directory.RemoveDirectory(outer));
    WCHAR again[] = u"outer/inner";
    EXPECT_EQ(1, directory.RemoveDirectory(again));
    EXPECT_EQ(std::u16string(u"outer\\inner"), again);
    EXPECT_EQ(1, directory.RemoveDirectory(outer));
    EXPECT_EQ(-1, directory.RemoveDirectory(outer));
    EXPECT_EQ(-4, directory.MakeDirectory(nullptr));
    EXPECT_EQ(-4, directory.RemoveDirectory(nullptr));
}

TEST(Directory, DeletesFiles)
{
    TestFolder folder;
    std::filesystem::create_directory(folder.Host("sub"));
    folder.Write("sub/a", "");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    WCHAR path[] = u"sub/a";
    EXPECT_EQ(1, directory.DeleteFile(path));
    EXPECT_EQ(std::u16string(u"sub\\a"), path);
    EXPECT_FALSE(folder.Has("sub/a"));
    EXPECT_EQ(-1, directory.DeleteFile(path));
    EXPECT_EQ(-4, directory.DeleteFile(nullptr));
}

TEST(Directory, MakeFileRefusesOrEmptiesWhatIsThere)
{
    TestFolder folder;
    folder.Write("a", "old");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    EXPECT_EQ(-1, directory.MakeFile(u"a", 1));
    EXPECT_EQ("old", folder.Read("a"));
    EXPECT_EQ(-1, directory.MakeFile(u"a", 7)) << "mode 7 is to act as mode 1";
    EXPECT_EQ("old", folder.Read("a"));
    EXPECT_EQ(1, directory.MakeFile(u"a", 2));
    EXPECT_EQ("", folder.Read("a"));
    EXPECT_EQ(1, directory.MakeFile(u"b", 1));
    EXPECT_EQ(1, directory.MakeFile(u"c", 7));
    EXPECT_EQ(1, directory.MakeFile(u"d", 2));
    EXPECT_TRUE(folder.Has("b") && folder.Has("c") && folder.Has("d"));
    EXPECT_EQ(-4, directory.MakeFile(nullptr, 1));
    EXPECT_EQ(-1, directory.MakeFile(u"no folder\\a", 2));
}

TEST(Directory, CopyAndMoveIgnoreTheBase)
{
    TestFolder folder;
    folder.Write("from", "text");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    EXPECT_EQ(-1, directory.CopyFile(u"from", u"to", 0));
    EXPECT_FALSE(folder.Has("to"));
    EXPECT_EQ(1, directory.CopyFile(folder.Path(u"from").c_str(), folder.Path(u"to").c_str(), 1));
    EXPECT_EQ("text", folder.Read("to"));
    EXPECT_EQ(-1, directory.CopyFile(folder.Path(u"from").c_str(), folder.Path(u"to").c_str(), 1));
    EXPECT_EQ(1, directory.CopyFile(folder.Path(u"from").c_str(), folder.Path(u"to").c_str(), 0));
    EXPECT_EQ(-1, directory.MoveFile(u"to", u"moved"));
    EXPECT_EQ(1, directory.MoveFile(folder.Path(u"to").c_str(), folder.Path(u"moved").c_str()));
    EXPECT_FALSE(folder.Has("to"));
    EXPECT_EQ("text", folder.Read("moved"));
}

TEST(Directory, CopyAndMoveHaveNoCodeForNullOfTheirOwn)
{
    TestFolder folder;
    folder.Write("from", "text");
    Directory directory;
    EXPECT_EQ(-1, directory.CopyFile(nullptr, folder.Path(u"to").c_str(), 0));
    EXPECT_EQ(-1, directory.CopyFile(folder.Path(u"from").c_str(), nullptr, 0));
    EXPECT_EQ(-1, directory.MoveFile(nullptr, folder.Path(u"to").c_str()));
    EXPECT_EQ(-1, directory.MoveFile(folder.Path(u"from").c_str(), nullptr));
    EXPECT_EQ("text", folder.Read("from"));
}

TEST(Directory, MoveDoesNotReplaceWhatIsThere)
{
    TestFolder folder;
    folder.Write("from", "new");
    folder.Write("to", "old");
    Directory directory;
    EXPECT_EQ(-1, directory.MoveFile(folder.Path(u"from").c_str(), folder.Path(u"to").c_str()));
    EXPECT_EQ("old", folder.Read("to"));
    EXPECT_EQ("new", folder.Read("from"));
}

TEST(Directory, SlashesAreTurnedInTheCallersTextAlsoWhenTheDeviceRefuses)
{
    TestFolder folder;
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    WCHAR made[] = u"no/such";
    EXPECT_EQ(-1, directory.MakeDirectory(made));
    EXPECT_EQ(std::u16string(u"no\\such"), made);
    WCHAR removed[] = u"no/such";
    EXPECT_EQ(-1, directory.RemoveDirectory(removed));
    EXPECT_EQ(std::u16string(u"no\\such"), removed);
    WCHAR deleted[] = u"no/such";
    EXPECT_EQ(-1, directory.DeleteFile(deleted));
    EXPECT_EQ(std::u16string(u"no\\such"), deleted);
}

TEST(Directory, AStreamItOpensLiesOnTheGlobalHeap)
{
    TestFolder folder;
    folder.Write("a", "hello");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    FileStream* stream = nullptr;
    ASSERT_EQ(1, directory.OpenFile(u"a", &stream, 1));
    EXPECT_EQ(sizeof(FileStream), GlobalSize(stream));
    EXPECT_EQ(1, directory.CloseFile(&stream));
}

TEST(Directory, AReadOnlyStreamCannotWriteAndAnyOtherCan)
{
    TestFolder folder;
    folder.Write("a", "hello");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    FileStream* stream = nullptr;
    ASSERT_EQ(1, directory.OpenFile(u"a", &stream, 1));
    u32 length = 1;
    EXPECT_EQ(1, stream->Write("J", &length));
    EXPECT_EQ(0u, length);
    EXPECT_EQ(1, directory.CloseFile(&stream));
    ASSERT_EQ(1, directory.OpenFile(u"a", &stream, 0));
    length = 1;
    EXPECT_EQ(1, stream->Write("J", &length));
    EXPECT_EQ(1u, length);
    EXPECT_EQ(1, directory.CloseFile(&stream));
    EXPECT_EQ("Jello", folder.Read("a"));
}

TEST(Directory, OpensAndClosesStreams)
{
    TestFolder folder;
    folder.Write("a", "hello");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    FileStream* stream = nullptr;
    ASSERT_EQ(1, directory.OpenFile(u"a", &stream, 1));
    ASSERT_NE(nullptr, stream);
    u64 size = 0;
    EXPECT_EQ(1, stream->GetSize(&size));
    EXPECT_EQ(5u, size);
    EXPECT_EQ(1, directory.CloseFile(&stream));
    EXPECT_EQ(nullptr, stream);
    EXPECT_EQ(0, directory.CloseFile(&stream));
    EXPECT_EQ(-4, directory.CloseFile(nullptr));
}

TEST(Directory, OpenFileClearsTheStreamWhenItFails)
{
    TestFolder folder;
    folder.Write("a", "hello");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    FileStream other;
    FileStream* stream = &other;
    EXPECT_EQ(-1, directory.OpenFile(u"absent", &stream, 1));
    EXPECT_EQ(nullptr, stream);
    EXPECT_EQ(-4, directory.OpenFile(nullptr, &stream, 1));
    EXPECT_EQ(-4, directory.OpenFile(u"a", nullptr, 1));
    // The object goes on after a failure.
    ASSERT_EQ(1, directory.OpenFile(u"a", &stream, 1));
    EXPECT_EQ(1, directory.CloseFile(&stream));
    // The path of a failed open as the last thing: the destructor gives it back, or the leak shows.
    EXPECT_EQ(-1, directory.OpenFile(u"absent", &stream, 1));
}

TEST(Directory, OpenFileReportsThatAStreamFoundNoMemory)
{
    Scope scope;
    TestFolder folder;
    folder.Write("a", "hello");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    SetAllocationFault([](SIZE_T) { return true; });
    FileStream* stream = nullptr;
    EXPECT_EQ(-2, directory.OpenFile(u"a", &stream, 1));
    EXPECT_EQ(nullptr, stream);
}
