// Which host file stands behind a device path: the mounts, their layers, and what happens where the
// host cannot be written.

#include "platform/tests/core/FileWorld.h"

#include <gtest/gtest.h>

using namespace tavrix::platform;
using namespace tavrix::platform::tests;

TEST(FileTree, RootIsTheHomeFolder)
{
    const FileWorld world;
    ASSERT_TRUE(WriteDevice(u"\\picture.png", "abc"));
    EXPECT_EQ("abc", ReadHost(world.Host("home/picture.png")));
}

TEST(FileTree, ComputerIsTheHostsRoot)
{
    const FileWorld world;
    WriteHost(world.Host("elsewhere.txt"), "far");
    const std::u16string path = tavrix::testing::Wide("/Computer" + world.Host("elsewhere.txt"));
    EXPECT_EQ("far", ReadDevice(path.c_str()));
    EXPECT_EQ("/", tavrix::testing::HostPath(u"\\Computer"));
}

TEST(FileTree, EachMountHasItsHostFolder)
{
    const FileWorld world;
    EXPECT_TRUE(WriteDevice(u"\\My Documents\\a", "1"));
    EXPECT_TRUE(WriteDevice(u"\\Application Data\\Tavrix\\b", "2"));
    EXPECT_TRUE(WriteDevice(u"\\Program Files\\Tavrix\\c", "3"));
    EXPECT_TRUE(WriteDevice(u"\\Storage Card\\d", "4"));
    EXPECT_TRUE(WriteDevice(u"\\Storage Card\\Temp\\e", "5"));
    EXPECT_EQ("1", ReadHost(world.Host("home/Dokumente/a")));
    EXPECT_EQ("2", ReadHost(world.Host("config/tavrix/b")));
    EXPECT_EQ("3", ReadHost(world.Host("data/tavrix/c")));
    EXPECT_EQ("4", ReadHost(world.Host("card/d")));
    EXPECT_EQ("5", ReadHost(world.Host("card/Temp/e")));
}

TEST(FileTree, NamesOfMountsAreTakenInAnyCase)
{
    const FileWorld world;
    EXPECT_TRUE(WriteDevice(u"\\application data\\TAVRIX\\b", "2"));
    EXPECT_EQ("2", ReadHost(world.Host("config/tavrix/b")));
}

TEST(FileTree, FolderOfAMountIsMadeWithItsParentsAtTheFirstWriteAndNotBefore)
{
    const FileWorld world;
    EXPECT_FALSE(Probe(u"\\Application Data\\Tavrix\\x"));
    EXPECT_EQ("(none)", Names(u"\\Application Data\\Tavrix\\*"));
    EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(u"\\Application Data\\Tavrix"));
    EXPECT_FALSE(HostExists(world.Host("config")));
    EXPECT_TRUE(CreateDirectoryW(u"\\Application Data\\Tavrix\\Configuration Files", nullptr));
    EXPECT_TRUE(HostExists(world.Host("config/tavrix/Configuration Files")));
    EXPECT_EQ(std::filesystem::perms::owner_all,
              std::filesystem::status(world.Host("config/tavrix")).permissions());
}

TEST(FileTree, FolderThatIsGoneAgainIsMadeAtTheNextWrite)
{
    const FileWorld world;
    ASSERT_TRUE(WriteDevice(u"\\Application Data\\Tavrix\\x", "1"));
    std::filesystem::remove_all(world.Host("config"));
    EXPECT_TRUE(WriteDevice(u"\\Application Data\\Tavrix\\x", "2"));
    EXPECT_EQ("2", ReadHost(world.Host("config/tavrix/x")));
}

TEST(FileTree, PathBelowAMountThatTheMountLacksDoesNotFallToAShorterOne)
{
    const FileWorld world;
    WriteHost(world.Host("home/My Documents/shadow.txt"), "hidden");
    EXPECT_FALSE(Probe(u"\\My Documents\\shadow.txt"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
}

TEST(FileTree, StorageCardIsAbsentWithoutTheVariable)
{
    const FileWorld world([](Surroundings& s) { s.hasStorageCard = false; });
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(u"\\Storage Card"));
    EXPECT_FALSE(WriteDevice(u"\\Storage Card\\Temp\\000001.tmp", "x"));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
    EXPECT_EQ(std::string::npos, Names(u"\\*").find("Storage Card"));
}

TEST(FileTree, TempOfTheStorageCardIsMadeByThePlatform)
{
    const FileWorld world;
    EXPECT_TRUE(std::filesystem::is_directory(world.Host("card/Temp")));
}

TEST(FileTree, TempOfACardThatCameLaterIsMadeAtTheFirstWrite)
{
    const FileWorld world([](Surroundings& s) { s.storageCard += "/late/card"; });
    EXPECT_FALSE(HostExists(world.Host("card/late")));
    EXPECT_TRUE(WriteDevice(u"\\Storage Card\\Temp\\000001.tmp", "line", CREATE_NEW));
    EXPECT_EQ("line", ReadHost(world.Host("card/late/card/Temp/000001.tmp")));
}

// Layers.

TEST(FileTree, UsersFileWinsOverThatOfTheProgramsFolder)
{
    const FileWorld world;
    WriteHost(world.Host("program/PLUGINS/a.dll"), "theirs");
    EXPECT_EQ("theirs", ReadDevice(u"\\Program Files\\Tavrix\\PLUGINS\\a.dll"));
    WriteHost(world.Host("data/tavrix/PLUGINS/a.dll"), "mine");
    EXPECT_EQ("mine", ReadDevice(u"\\Program Files\\Tavrix\\PLUGINS\\a.dll"));
}

TEST(FileTree, UsersFileWinsAlsoWithAnotherSpelling)
{
    const FileWorld world;
    WriteHost(world.Host("program/PLUGINS/a.dll"), "theirs");
    WriteHost(world.Host("data/tavrix/plugins/A.DLL"), "mine");
    EXPECT_EQ("mine", ReadDevice(u"\\Program Files\\Tavrix\\PLUGINS\\a.dll"));
    EXPECT_EQ("A.DLL", Names(u"\\Program Files\\Tavrix\\PLUGINS\\*.dll"));
}

TEST(FileTree, ListingOfLaidOverFoldersShowsBothAndEachNameOnce)
{
    const FileWorld world;
    WriteHost(world.Host("program/PLUGINS/a.dll"), "");
    WriteHost(world.Host("program/PLUGINS/c.dll"), "");
    WriteHost(world.Host("data/tavrix/PLUGINS/a.dll"), "");
    WriteHost(world.Host("data/tavrix/PLUGINS/b.dll"), "");
    EXPECT_EQ("a.dll|b.dll|c.dll", Names(u"\\Program Files\\Tavrix\\PLUGINS\\*.DLL"));
}

TEST(FileTree, WritesGoToTheUsersLayer)
{
    const FileWorld world;
    ASSERT_TRUE(WriteDevice(u"\\Program Files\\Tavrix\\Tavrix.log", "log"));
    EXPECT_EQ("log", ReadHost(world.Host("data/tavrix/Tavrix.log")));
    EXPECT_FALSE(HostExists(world.Host("program/Tavrix.log")));
}

TEST(FileTree, FileOfTheLowerLayerIsCopiedUpBeforeItIsWritten)
{
    const FileWorld world;
    WriteHost(world.Host("program/Lists/palette.txt"), "0123456789");
    std::filesystem::permissions(world.Host("program/Lists/palette.txt"),
                                 std::filesystem::perms::owner_read);
    const HANDLE file = Open(u"\\Program Files\\Tavrix\\lists\\palette.txt", OPEN_EXISTING);
    ASSERT_NE(INVALID_HANDLE_VALUE, file);
    DWORD done = 0;
    SetFilePointer(file, 4, nullptr, FILE_BEGIN);
    EXPECT_TRUE(WriteFile(file, "XX", 2, &done, nullptr));
    CloseHandle(file);
    EXPECT_EQ("0123XX6789", ReadDevice(u"\\Program Files\\Tavrix\\Lists\\palette.txt"));
    EXPECT_EQ("0123XX6789", ReadHost(world.Host("data/tavrix/Lists/palette.txt")));
    EXPECT_EQ("0123456789", ReadHost(world.Host("program/Lists/palette.txt")));
    EXPECT_EQ("palette.txt", Names(u"\\Program Files\\Tavrix\\Lists\\*"));
}

TEST(FileTree, ReadingALowerFileCopiesNothing)
{
    const FileWorld world;
    WriteHost(world.Host("program/a.dll"), "x");
    EXPECT_EQ("x", ReadDevice(u"\\Program Files\\Tavrix\\a.dll"));
    EXPECT_FALSE(HostExists(world.Host("data")));
}

TEST(FileTree, EmptyingALowerFileLeavesItAndMakesAnEmptyOneAbove)
{
    const FileWorld world;
    WriteHost(world.Host("program/a.txt"), "old");
    ASSERT_TRUE(WriteDevice(u"\\Program Files\\Tavrix\\a.txt", "n"));
    EXPECT_EQ("n", ReadHost(world.Host("data/tavrix/a.txt")));
    EXPECT_EQ("old", ReadHost(world.Host("program/a.txt")));
}

TEST(FileTree, CreateNewRefusesANameOfTheLowerLayer)
{
    const FileWorld world;
    WriteHost(world.Host("program/a.txt"), "old");
    EXPECT_EQ(INVALID_HANDLE_VALUE, Open(u"\\Program Files\\Tavrix\\A.txt", CREATE_NEW));
    EXPECT_EQ(ERROR_FILE_EXISTS, GetLastError());
}

TEST(FileTree, DeletingAFileThatOnlyTheLowerLayerHasFails)
{
    const FileWorld world;
    WriteHost(world.Host("program/a.txt"), "old");
    EXPECT_FALSE(DeleteFileW(u"\\Program Files\\Tavrix\\a.txt"));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
    EXPECT_FALSE(MoveFileW(u"\\Program Files\\Tavrix\\a.txt", u"\\Program Files\\Tavrix\\b.txt"));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
    EXPECT_EQ("old", ReadHost(world.Host("program/a.txt")));
}

TEST(FileTree, DeletingTheUsersFileShowsTheLowerOneAgain)
{
    const FileWorld world;
    WriteHost(world.Host("program/a.txt"), "old");
    WriteHost(world.Host("data/tavrix/a.txt"), "new");
    EXPECT_TRUE(DeleteFileW(u"\\Program Files\\Tavrix\\a.txt"));
    EXPECT_EQ("old", ReadDevice(u"\\Program Files\\Tavrix\\a.txt"));
}

TEST(FileTree, FolderThatTheLowerLayerHasCannotBeRemovedOrMoved)
{
    const FileWorld world;
    std::filesystem::create_directories(world.Host("program/PLUGINS"));
    std::filesystem::create_directories(world.Host("data/tavrix/PLUGINS"));
    EXPECT_FALSE(RemoveDirectoryW(u"\\Program Files\\Tavrix\\PLUGINS"));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
    EXPECT_FALSE(MoveFileW(u"\\Program Files\\Tavrix\\PLUGINS", u"\\Program Files\\Tavrix\\P"));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
}

// A home that cannot be written.

namespace
{

/// Data and settings would lie below a regular file, so that not even root can make them.
void BelowAFile(Surroundings& surroundings)
{
    WriteHost(surroundings.home + "/blocked", "a file");
    surroundings.data = surroundings.home + "/blocked/data";
    surroundings.config = surroundings.home + "/blocked/config";
}

} // namespace

TEST(FileTree, WritesToAMountThatCannotBeMadeStayVisibleForThisRun)
{
    const FileWorld world(BelowAFile);
    ASSERT_TRUE(WriteDevice(u"\\Program Files\\Tavrix\\Tavrix.log", "log"));
    EXPECT_EQ("log", ReadDevice(u"\\Program Files\\Tavrix\\Tavrix.log"));
    ASSERT_TRUE(CreateDirectoryW(u"\\Application Data\\Tavrix\\Configuration Files", nullptr));
    ASSERT_TRUE(WriteDevice(u"\\Application Data\\Tavrix\\Configuration Files\\Tavrix.ini", "ini"));
    EXPECT_EQ("Configuration Files/", Names(u"\\Application Data\\Tavrix\\*"));
    EXPECT_EQ("ini", ReadDevice(u"\\Application Data\\Tavrix\\Configuration Files\\Tavrix.ini"));
    EXPECT_EQ(
        0u,
        tavrix::testing::HostPath(u"\\Program Files\\Tavrix\\Tavrix.log").find(world.Host("tmp")));
}

TEST(FileTree, MountThatCannotBeMadeStillShowsItsLowerLayer)
{
    const FileWorld world(BelowAFile);
    WriteHost(world.Host("program/a.dll"), "theirs");
    ASSERT_TRUE(WriteDevice(u"\\Program Files\\Tavrix\\b.dll", "mine"));
    EXPECT_EQ("a.dll|b.dll", Names(u"\\Program Files\\Tavrix\\*"));
    EXPECT_EQ("theirs", ReadDevice(u"\\Program Files\\Tavrix\\a.dll"));
}

TEST(FileTree, PrivateFolderOfTheRunIsGoneWhenTheProcessEnds)
{
    const FileWorld world(BelowAFile);
    EXPECT_EQ(7, InChild([&world] {
                  ReplaceTree(world.surroundings);
                  return WriteDevice(u"\\Program Files\\Tavrix\\Tavrix.log", "log") ? 7 : 1;
              }));
    for (const auto& entry : std::filesystem::directory_iterator(world.Host("tmp")))
        EXPECT_EQ(std::string::npos, entry.path().string().find("-run-")) << entry.path();
}

TEST(FileTree, SettingsOfAnUnwritableFolderLoadAndAreReplacedForThisRun)
{
    const FileWorld world;
    const std::string settings = world.Host("config/tavrix/Configuration Files/Tavrix.ini");
    WriteHost(settings, "saved");
    for (const std::string& folder :
         {world.Host("config/tavrix/Configuration Files"), world.Host("config/tavrix")})
        std::filesystem::permissions(folder, std::filesystem::perms(0555));
    std::filesystem::permissions(settings, std::filesystem::perms(0444));
    // Root writes everywhere, so the child becomes somebody else, who must reach all this first.
    LetAnyoneReach(world.base);
    std::filesystem::permissions(world.Host("tmp"), std::filesystem::perms(0777));
    const int result = InChild([&world] {
        if (!BecomeOrdinary())
            return 1;
        ReplaceTree(world.surroundings);
        const WCHAR* path = u"\\Application Data\\Tavrix\\Configuration Files\\Tavrix.ini";
        if (ReadDevice(path) != "saved")
            return 2;
        const HANDLE file = Open(path, OPEN_EXISTING);
        if (file == INVALID_HANDLE_VALUE)
            return 3;
        DWORD done = 0;
        if (!WriteFile(file, "S", 1, &done, nullptr) || done != 1)
            return 4;
        CloseHandle(file);
        if (ReadDevice(path) != "Saved")
            return 5;
        if (!WriteDevice(path, "new") || ReadDevice(path) != "new")
            return 6;
        return Names(u"\\Application Data\\Tavrix\\Configuration Files\\*") == "Tavrix.ini" ? 0 : 7;
    });
    EXPECT_EQ(0, result);
    EXPECT_EQ("saved", ReadHost(settings));
    std::filesystem::permissions(world.Host("config/tavrix/Configuration Files"),
                                 std::filesystem::perms::owner_all);
    std::filesystem::permissions(world.Host("config/tavrix"), std::filesystem::perms::owner_all);
}

TEST(FileTree, PictureSavedToAnUnwritableFolderOfThePersonFailsAndDoesNotVanishLater)
{
    const FileWorld world([](Surroundings& s) {
        WriteHost(s.home + "/blocked", "a file");
        s.documents = s.home + "/blocked/documents";
    });
    EXPECT_FALSE(WriteDevice(u"\\My Documents\\picture.png", "x"));
    EXPECT_FALSE(Probe(u"\\My Documents\\picture.png"));
}

// \Temp.

TEST(FileTree, TempIsAPrivateFolder)
{
    const FileWorld world;
    ASSERT_TRUE(WriteDevice(u"\\Temp\\000123.tmp", "line", CREATE_NEW));
    const std::string host = tavrix::testing::HostPath(u"\\Temp\\000123.tmp");
    EXPECT_EQ(0u, host.find(world.Host("tmp/")));
    EXPECT_EQ("line", ReadHost(host));
    EXPECT_EQ(std::filesystem::perms::owner_all,
              std::filesystem::status(std::filesystem::path(host).parent_path()).permissions());
    EXPECT_EQ("000123.tmp", Names(u"\\Temp\\*"));
    EXPECT_EQ("Temp/", Names(u"\\Temp"));
    EXPECT_TRUE(DeleteFileW(u"\\Temp\\000123.tmp"));
    EXPECT_FALSE(HostExists(host));
}

TEST(FileTree, APagingFileIsTheSameUnderEverySpellingOfItsFolder)
{
    const FileWorld world;
    for (const WCHAR* folder : {u"\\Temp\\", u"\\temp\\", u"/Temp/", u"Temp\\", u"\\Temp\\.\\",
                                u"\\\\Temp\\\\", u"\\Temp\\x\\..\\"}) {
        const std::u16string other = std::u16string(folder) + u"000123.tmp";
        ASSERT_TRUE(WriteDevice(u"\\Temp\\000123.tmp", "line", CREATE_NEW));
        EXPECT_EQ("line", ReadDevice(other.c_str()));
        EXPECT_FALSE(WriteDevice(other.c_str(), "again", CREATE_NEW));
        EXPECT_TRUE(DeleteFileW(other.c_str()));
        EXPECT_EQ("(none)", Names(u"\\Temp\\*"));
        ASSERT_TRUE(WriteDevice(other.c_str(), "line", CREATE_NEW));
        EXPECT_EQ("line", ReadDevice(u"\\Temp\\000123.tmp"));
        EXPECT_TRUE(DeleteFileW(u"\\Temp\\000123.tmp"));
    }
    EXPECT_FALSE(DeleteFileW(u"\\Temp\\000123.tmp"));
    EXPECT_EQ(DWORD{ERROR_FILE_NOT_FOUND}, GetLastError());
}

TEST(FileTree, TempIsNotListedInTheRootAndTheOtherMountsAre)
{
    const FileWorld world;
    WriteHost(world.Host("home/file"), "");
    EXPECT_EQ("Application Data/|Computer/|file|My Documents/|Program Files/|Storage Card/",
              Names(u"\\*"));
}

TEST(FileTree, TempHidesNoFolderOfTheUser)
{
    const FileWorld world;
    WriteHost(world.Host("home/temp/holiday.png"), "picture");
    EXPECT_NE(std::string::npos, Names(u"\\*").find("temp/"));
    EXPECT_EQ("picture", ReadDevice(u"\\Temp\\holiday.png"));
    EXPECT_EQ("holiday.png", Names(u"\\Temp\\*"));
    // What a person saves there stays theirs, and the program's own files stay private.
    ASSERT_TRUE(WriteDevice(u"\\Temp\\saved.png", "new"));
    EXPECT_EQ("new", ReadHost(world.Host("home/temp/saved.png")));
    ASSERT_TRUE(WriteDevice(u"\\Temp\\000007.tmp", "line", CREATE_NEW));
    EXPECT_FALSE(HostExists(world.Host("home/temp/000007.tmp")));
    EXPECT_EQ("000007.tmp|holiday.png|saved.png", Names(u"\\Temp\\*"));
    EXPECT_TRUE(DeleteFileW(u"\\Temp\\saved.png"));
    EXPECT_FALSE(HostExists(world.Host("home/temp/saved.png")));
}

TEST(FileTree, WithoutAnyTemporaryFolderPagingFailsAndTheRestWorks)
{
    const FileWorld world([](Surroundings& s) { s.temporaryBases = {s.home + "/absent"}; });
    EXPECT_FALSE(WriteDevice(u"\\Temp\\000001.tmp", "x", CREATE_NEW));
    EXPECT_FALSE(Probe(u"\\Temp\\000001.tmp"));
    EXPECT_TRUE(WriteDevice(u"\\a.txt", "x"));
}

// Spelling.

TEST(FileTree, NameOfAnotherCaseIsFoundAtEveryLevel)
{
    const FileWorld world;
    WriteHost(world.Host("home/Pictures/Été/PHOTO.Jpg"), "x");
    EXPECT_EQ("x", ReadDevice(u"\\pictures\\ÉTÉ\\photo.JPG"));
    EXPECT_EQ("PHOTO.Jpg", Names(u"\\PICTURES\\été\\photo.jpg"));
    EXPECT_TRUE(WriteDevice(u"\\PICTURES\\été\\other.png", "y"));
    EXPECT_EQ("y", ReadHost(world.Host("home/Pictures/Été/other.png")));
}

TEST(FileTree, SpellingGivenWinsWhereBothExist)
{
    const FileWorld world;
    WriteHost(world.Host("home/a.txt"), "small");
    WriteHost(world.Host("home/A.txt"), "capital");
    EXPECT_EQ("small", ReadDevice(u"\\a.txt"));
    EXPECT_EQ("capital", ReadDevice(u"\\A.txt"));
    EXPECT_EQ("capital", ReadDevice(u"\\A.TXT"));
}

TEST(FileTree, WritingUnderAnotherCaseWritesTheFileThatIsThere)
{
    const FileWorld world;
    WriteHost(world.Host("home/a.txt"), "old");
    ASSERT_TRUE(WriteDevice(u"\\A.TXT", "new"));
    EXPECT_EQ("new", ReadHost(world.Host("home/a.txt")));
    EXPECT_FALSE(HostExists(world.Host("home/A.TXT")));
}

TEST(FileTree, TemporaryFoldersTakeNamesAsSpelled)
{
    const FileWorld world;
    for (const WCHAR* folder : {u"\\Temp\\", u"\\Storage Card\\Temp\\"}) {
        const std::u16string small = std::u16string(folder) + u"a.swp";
        const std::u16string capital = std::u16string(folder) + u"A.swp";
        ASSERT_TRUE(WriteDevice(small.c_str(), "x", CREATE_NEW));
        EXPECT_FALSE(Probe(capital.c_str())) << tavrix::testing::Utf8(folder);
        EXPECT_TRUE(WriteDevice(capital.c_str(), "y", CREATE_NEW)) << tavrix::testing::Utf8(folder);
        EXPECT_EQ("x", ReadDevice(small.c_str()));
    }
}

TEST(FileTree, UpwardPartsNeverLeaveTheRoot)
{
    const FileWorld world;
    WriteHost(world.Host("outside.txt"), "out");
    WriteHost(world.Host("home/outside.txt"), "in");
    EXPECT_EQ("in", ReadDevice(u"\\..\\..\\..\\outside.txt"));
    EXPECT_EQ("in", ReadDevice(u"\\My Documents\\..\\..\\.\\outside.txt"));
    EXPECT_EQ("(none)", Names(u"\\..\\data\\*"));
}

TEST(FileTree, SeparatorsMayBeDoubledOrSlashes)
{
    const FileWorld world;
    WriteHost(world.Host("home/a/b.txt"), "x");
    EXPECT_EQ("x", ReadDevice(u"\\\\a\\\\b.txt"));
    EXPECT_EQ("x", ReadDevice(u"/a/b.txt"));
    EXPECT_EQ("x", ReadDevice(u"a\\b.txt"));
}

TEST(FileTree, PathOf259CharactersIsTakenAndOneMoreRefused)
{
    const FileWorld world;
    const std::u16string folder =
        u"\\" + std::u16string(100, u'd') + u"\\" + std::u16string(100, u'e');
    std::filesystem::create_directories(
        world.Host("home/" + std::string(100, 'd') + "/" + std::string(100, 'e')));
    const std::u16string fits = folder + u"\\" + std::u16string(259 - 203, u'f');
    ASSERT_EQ(259u, fits.size());
    EXPECT_TRUE(WriteDevice(fits.c_str(), "x"));
    EXPECT_FALSE(WriteDevice((fits + u"f").c_str(), "x"));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
}

TEST(FileTree, TextWithoutAHostFormIsAnInvalidName)
{
    const FileWorld world;
    const WCHAR path[] = {u'\\', 0xD800, u'x', 0};
    EXPECT_FALSE(WriteDevice(path, "x"));
    EXPECT_EQ(ERROR_INVALID_NAME, GetLastError());
}
