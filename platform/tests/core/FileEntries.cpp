// What is done to files and folders by name.

#include "platform/tests/core/FileWorld.h"

#include <gtest/gtest.h>

using namespace tavrix::platform;
using namespace tavrix::platform::tests;

TEST(FileEntries, AttributesTellFoldersFilesHiddenAndReadOnlyOnes)
{
    const FileWorld world;
    WriteHost(world.Host("home/a"), "");
    WriteHost(world.Host("home/.hidden"), "");
    WriteHost(world.Host("home/fixed"), "");
    std::filesystem::permissions(world.Host("home/fixed"), std::filesystem::perms(0444));
    EXPECT_EQ(FILE_ATTRIBUTE_NORMAL, GetFileAttributesW(u"\\a"));
    EXPECT_EQ(FILE_ATTRIBUTE_HIDDEN, GetFileAttributesW(u"\\.hidden"));
    EXPECT_EQ(FILE_ATTRIBUTE_READONLY, GetFileAttributesW(u"\\fixed"));
    for (const WCHAR* folder :
         {u"\\", u"\\Temp", u"\\Temp\\", u"\\Storage Card", u"\\Storage Card\\Temp",
          u"\\My Documents", u"\\Application Data", u"\\Application Data\\Tavrix",
          u"\\Program Files", u"\\Program Files\\Tavrix"})
        EXPECT_EQ(FILE_ATTRIBUTE_DIRECTORY, GetFileAttributesW(folder))
            << tavrix::testing::Utf8(folder);
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(u"\\none"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(u"\\none\\none"));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(u"\\a\\"));
}

TEST(FileEntries, DeleteTakesFilesInAnyCaseAndNoFolders)
{
    const FileWorld world;
    WriteHost(world.Host("home/a.txt"), "");
    std::filesystem::create_directory(world.Host("home/folder"));
    EXPECT_TRUE(DeleteFileW(u"\\A.TXT"));
    EXPECT_FALSE(HostExists(world.Host("home/a.txt")));
    EXPECT_FALSE(DeleteFileW(u"\\a.txt"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
    EXPECT_FALSE(DeleteFileW(u"\\Temp\\000001.tmp"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
    for (const WCHAR* folder : {u"\\folder", u"\\Temp", u"\\My Documents", u"\\"}) {
        EXPECT_FALSE(DeleteFileW(folder));
        EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError()) << tavrix::testing::Utf8(folder);
    }
}

TEST(FileEntries, ReadOnlyFileIsNotDeleted)
{
    const FileWorld world;
    WriteHost(world.Host("home/a"), "");
    std::filesystem::permissions(world.Host("home/a"), std::filesystem::perms(0444));
    EXPECT_FALSE(DeleteFileW(u"\\a"));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
}

TEST(FileEntries, DeletingALinkLeavesWhatItPointsTo)
{
    const FileWorld world;
    WriteHost(world.Host("target"), "x");
    std::filesystem::create_symlink(world.Host("target"), world.Host("home/link"));
    EXPECT_TRUE(DeleteFileW(u"\\link"));
    EXPECT_FALSE(HostExists(world.Host("home/link")));
    EXPECT_TRUE(HostExists(world.Host("target")));
}

TEST(FileEntries, MoveGivesAFileAnotherNameAndReplacesNone)
{
    const FileWorld world;
    WriteHost(world.Host("home/a"), "1");
    WriteHost(world.Host("home/b"), "2");
    EXPECT_FALSE(MoveFileW(u"\\a", u"\\B"));
    EXPECT_EQ(ERROR_ALREADY_EXISTS, GetLastError());
    EXPECT_FALSE(MoveFileW(u"\\none", u"\\c"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
    EXPECT_FALSE(MoveFileW(u"\\a", u"\\none\\c"));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
    EXPECT_TRUE(MoveFileW(u"\\a", u"\\My Documents\\c"));
    EXPECT_EQ("1", ReadHost(world.Host("home/Dokumente/c")));
    EXPECT_FALSE(HostExists(world.Host("home/a")));
    EXPECT_EQ("2", ReadHost(world.Host("home/b")));
}

TEST(FileEntries, MoveMayChangeTheCaseOfANameAlone)
{
    const FileWorld world;
    WriteHost(world.Host("home/photo.jpg"), "1");
    EXPECT_TRUE(MoveFileW(u"\\photo.jpg", u"\\Photo.JPG"));
    EXPECT_EQ("1", ReadHost(world.Host("home/Photo.JPG")));
    EXPECT_FALSE(HostExists(world.Host("home/photo.jpg")));
    EXPECT_TRUE(MoveFileW(u"\\Photo.JPG", u"\\Photo.JPG"));
    EXPECT_EQ("1", ReadHost(world.Host("home/Photo.JPG")));
}

TEST(FileEntries, MoveTakesFoldersAndNoMounts)
{
    const FileWorld world;
    WriteHost(world.Host("home/folder/a"), "1");
    EXPECT_TRUE(MoveFileW(u"\\folder", u"\\moved"));
    EXPECT_EQ("1", ReadHost(world.Host("home/moved/a")));
    EXPECT_FALSE(MoveFileW(u"\\moved", u"\\moved\\inside"));
    EXPECT_FALSE(MoveFileW(u"\\Storage Card", u"\\card"));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
}

TEST(FileEntries, MoveToAnotherFileSystemCopiesAndDeletes)
{
    // /dev/shm is a file system of its own on every Linux host that tests run on.
    std::string other = "/dev/shm/tavrix-test-XXXXXX";
    if (mkdtemp(other.data()) == nullptr)
        GTEST_FAIL() << "no second file system";
    struct stat here {
    };
    struct stat there {
    };
    const FileWorld world([&other](Surroundings& s) { s.storageCard = other; });
    ASSERT_EQ(0, stat(world.base.c_str(), &here));
    ASSERT_EQ(0, stat(other.c_str(), &there));
    ASSERT_NE(here.st_dev, there.st_dev);
    WriteHost(world.Host("home/a"), "content");
    EXPECT_TRUE(MoveFileW(u"\\a", u"\\Storage Card\\b"));
    EXPECT_EQ("content", ReadHost(other + "/b"));
    EXPECT_FALSE(HostExists(world.Host("home/a")));
    std::filesystem::remove_all(other);
}

TEST(FileEntries, CopyReplacesUnlessToldToFail)
{
    const FileWorld world;
    const std::string text(700000, 'x');
    WriteHost(world.Host("home/a"), text);
    EXPECT_TRUE(CopyFileW(u"\\a", u"\\My Documents\\b", TRUE));
    EXPECT_EQ(text, ReadHost(world.Host("home/Dokumente/b")));
    EXPECT_FALSE(CopyFileW(u"\\a", u"\\My Documents\\B", TRUE));
    EXPECT_EQ(ERROR_FILE_EXISTS, GetLastError());
    WriteHost(world.Host("home/a"), "short");
    EXPECT_TRUE(CopyFileW(u"\\a", u"\\My Documents\\b", FALSE));
    EXPECT_EQ("short", ReadHost(world.Host("home/Dokumente/b")));
    EXPECT_FALSE(CopyFileW(u"\\none", u"\\c", FALSE));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
    EXPECT_FALSE(CopyFileW(u"\\a", u"\\none\\c", FALSE));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
    EXPECT_FALSE(CopyFileW(u"\\My Documents", u"\\c", FALSE));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
}

TEST(FileEntries, CopyOfAFileOntoItselfLeavesItWhole)
{
    const FileWorld world;
    WriteHost(world.Host("home/a"), "content");
    std::filesystem::create_hard_link(world.Host("home/a"), world.Host("home/twin"));
    for (const WCHAR* target : {u"\\a", u"\\A", u"\\twin"}) {
        EXPECT_FALSE(CopyFileW(u"\\a", target, FALSE));
        EXPECT_EQ(ERROR_SHARING_VIOLATION, GetLastError());
    }
    EXPECT_EQ("content", ReadHost(world.Host("home/a")));
}

TEST(FileEntries, CopyThatFailsLeavesNoHalfFile)
{
    const FileWorld world;
    const tavrix::testing::Scope scope;
    WriteHost(world.Host("home/a"), std::string(700000, 'x'));
    for (const FileOperation failing :
         {FileOperation::Create, FileOperation::Open, FileOperation::Read, FileOperation::Write}) {
        int left = failing == FileOperation::Write ? 2 : 1; // the second block, once
        tavrix::testing::SetFileFault([&](FileOperation operation, const WCHAR*, DWORD*) {
            return operation == failing && --left == 0;
        });
        EXPECT_FALSE(CopyFileW(u"\\a", u"\\b", FALSE));
        EXPECT_FALSE(HostExists(world.Host("home/b")));
    }
}

TEST(FileEntries, CreateDirectoryNeedsItsParentAndANewName)
{
    const FileWorld world;
    EXPECT_FALSE(CreateDirectoryW(u"\\a\\b", nullptr));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
    EXPECT_TRUE(CreateDirectoryW(u"\\a\\", nullptr));
    EXPECT_TRUE(CreateDirectoryW(u"\\A\\b", nullptr));
    EXPECT_TRUE(HostExists(world.Host("home/a/b")));
    for (const WCHAR* there : {u"\\a", u"\\A\\B", u"\\", u"\\Temp", u"\\Application Data",
                               u"\\Application Data\\Tavrix"}) {
        EXPECT_FALSE(CreateDirectoryW(there, nullptr));
        EXPECT_EQ(ERROR_ALREADY_EXISTS, GetLastError()) << tavrix::testing::Utf8(there);
    }
}

TEST(FileEntries, RemoveDirectoryTakesEmptyFoldersOnly)
{
    const FileWorld world;
    WriteHost(world.Host("home/full/a"), "");
    std::filesystem::create_directory(world.Host("home/empty"));
    std::filesystem::create_directory_symlink(world.Host("home/full"), world.Host("home/link"));
    EXPECT_FALSE(RemoveDirectoryW(u"\\full"));
    EXPECT_EQ(ERROR_DIR_NOT_EMPTY, GetLastError());
    EXPECT_FALSE(RemoveDirectoryW(u"\\full\\a"));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
    EXPECT_TRUE(RemoveDirectoryW(u"\\EMPTY"));
    EXPECT_FALSE(HostExists(world.Host("home/empty")));
    EXPECT_TRUE(RemoveDirectoryW(u"\\link"));
    EXPECT_TRUE(HostExists(world.Host("home/full/a")));
    for (const WCHAR* mount : {u"\\", u"\\Temp", u"\\Storage Card", u"\\Application Data"}) {
        EXPECT_FALSE(RemoveDirectoryW(mount));
        EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError()) << tavrix::testing::Utf8(mount);
    }
}
