// Files of the settings' mount that are made always-new: when they take their place, and what this
// process and others see of them until then.

#include "platform/core/Replacement.h"

#include "platform/tests/core/ReplacementWorld.h"

#include <gtest/gtest.h>
#include <thread>

using namespace tavrix::platform;
using namespace tavrix::platform::tests;

// The way of a replacement.

TEST(Replacement, OldFileStaysUntilTheCloseAfterTheWrites)
{
    const SettingsWorld world;
    ASSERT_TRUE(MakeEmpty(Ini));
    EXPECT_EQ("old", world.Text());
    const HANDLE file = Open(Ini, OPEN_EXISTING);
    ASSERT_NE(INVALID_HANDLE_VALUE, file);
    EXPECT_EQ(0u, GetFileSize(file, nullptr));
    EXPECT_EQ(2u, Write(file, "ne"));
    EXPECT_EQ(1u, Write(file, "w"));
    EXPECT_EQ("old", world.Text());
    EXPECT_EQ(1, CountHidden(world.Folder()));
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_EQ("new", world.Text());
    EXPECT_EQ(0, CountHidden(world.Folder()));
    EXPECT_EQ("new", ReadDevice(Ini));
}

TEST(Replacement, FileWrittenThroughTheHandleThatMadeItTakesItsPlaceAtTheClose)
{
    const SettingsWorld world;
    const HANDLE file = Open(Ini, CREATE_ALWAYS);
    EXPECT_EQ(ERROR_ALREADY_EXISTS, GetLastError());
    EXPECT_EQ(3u, Write(file, "new"));
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    char bytes[3] = {};
    DWORD done = 0;
    EXPECT_TRUE(ReadFile(file, bytes, 3, &done, nullptr));
    EXPECT_EQ("new", std::string(bytes, done));
    EXPECT_EQ("old", world.Text());
    CloseHandle(file);
    EXPECT_EQ("new", world.Text());
}

TEST(Replacement, FileThatWasNotThereComesWholeOrNotAtAll)
{
    const SettingsWorld world;
    const WCHAR* fresh = u"\\Application Data\\Tavrix\\fresh";
    ASSERT_TRUE(MakeEmpty(fresh));
    EXPECT_EQ(ERROR_SUCCESS, GetLastError()) << "it was not there";
    EXPECT_FALSE(HostExists(world.Folder() + "/fresh"));
    EXPECT_TRUE(Probe(fresh));
    ASSERT_TRUE(WriteInto(u"\\Application Data\\Tavrix\\FRESH", "text"));
    EXPECT_EQ("text", ReadHost(world.Folder() + "/fresh"));
    EXPECT_EQ("fresh|Tavrix.ini", Names(Everything));
}

TEST(Replacement, FirstFileOfAllMakesTheFolderToo)
{
    const FileWorld world;
    ASSERT_TRUE(WriteDevice(Ini, "first"));
    EXPECT_EQ("first", ReadHost(world.Host("config/tavrix/Tavrix.ini")));
}

TEST(Replacement, ReadingAnEmptyPendingFileAndClosingItLeavesTheOldOne)
{
    const SettingsWorld world;
    ASSERT_TRUE(MakeEmpty(Ini));
    EXPECT_EQ("", ReadDevice(Ini));
    CloseHandle(Open(Ini, OPEN_EXISTING)); // could write and does not
    EXPECT_EQ("old", world.Text());
    EXPECT_EQ(1, CountHidden(world.Folder()));
    ASSERT_TRUE(WriteInto(Ini, "new"));
    EXPECT_EQ("new", world.Text());
}

TEST(Replacement, WriteOfNoBytesIsNoWrite)
{
    const SettingsWorld world;
    ASSERT_TRUE(MakeEmpty(Ini));
    ASSERT_TRUE(WriteInto(Ini, ""));
    EXPECT_EQ("old", world.Text());
}

TEST(Replacement, SettingTheEndCountsAsAWrite)
{
    const SettingsWorld world;
    const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_TRUE(SetEndOfFile(file));
    CloseHandle(file);
    EXPECT_EQ("", world.Text());
}

TEST(Replacement, LastHandleThatMayWriteSettlesIt)
{
    const SettingsWorld world;
    const HANDLE first = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    const HANDLE reader = Open(Ini, OPEN_EXISTING, GENERIC_READ);
    const HANDLE second = Open(Ini, OPEN_EXISTING, GENERIC_WRITE);
    EXPECT_EQ(3u, Write(second, "new"));
    CloseHandle(second);
    EXPECT_EQ("old", world.Text()) << "the first may still write";
    CloseHandle(first);
    EXPECT_EQ("new", world.Text()) << "whoever only reads holds nothing up";
    char bytes[4] = {};
    DWORD done = 0;
    EXPECT_TRUE(ReadFile(reader, bytes, 4, &done, nullptr));
    EXPECT_EQ("new", std::string(bytes, done));
    CloseHandle(reader);
}

TEST(Replacement, HandleThatMadeItButMayNotWriteHoldsNothingUp)
{
    const SettingsWorld world;
    const HANDLE maker = Open(Ini, CREATE_ALWAYS, GENERIC_READ);
    ASSERT_TRUE(WriteInto(Ini, "new"));
    EXPECT_EQ("new", world.Text());
    CloseHandle(maker);
}

TEST(Replacement, AfterItTookItsPlaceItIsWrittenInPlaceAsAnyOther)
{
    const SettingsWorld world;
    ASSERT_TRUE(WriteDevice(Ini, "new"));
    const ino_t before = StatusOf(world.Ini()).st_ino;
    ASSERT_TRUE(WriteInto(Ini, "N"));
    EXPECT_EQ("New", world.Text());
    EXPECT_EQ(before, StatusOf(world.Ini()).st_ino);
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(Replacement, MakingItAnewWhileItIsPendingStartsFromNothing)
{
    const SettingsWorld world;
    const HANDLE first = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_EQ(10u, Write(first, "abandoned!"));
    const HANDLE second = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_EQ(ERROR_ALREADY_EXISTS, GetLastError());
    EXPECT_EQ(1, CountHidden(world.Folder()));
    EXPECT_EQ(3u, Write(second, "new"));
    EXPECT_EQ(4u, Write(first, "more")) << "into the void";
    CloseHandle(second);
    EXPECT_EQ("new", world.Text());
    CloseHandle(first);
    EXPECT_EQ("new", world.Text());
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(Replacement, FailureOfAnEarlierOneDoesNotReachTheNext)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    const HANDLE first = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    FailAt(FileOperation::Write);
    Write(first, "fails");
    tavrix::testing::Reset();
    const HANDLE second = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    Write(second, "new");
    CloseHandle(first);
    EXPECT_EQ("old", world.Text());
    CloseHandle(second);
    EXPECT_EQ("new", world.Text());
}

TEST(Replacement, CreateNewRefusesAPendingFile)
{
    const SettingsWorld world;
    const WCHAR* fresh = u"\\Application Data\\Tavrix\\fresh";
    for (const WCHAR* path : {Ini, fresh}) {
        ASSERT_TRUE(MakeEmpty(path));
        EXPECT_EQ(INVALID_HANDLE_VALUE, Open(path, CREATE_NEW));
        EXPECT_EQ(ERROR_FILE_EXISTS, GetLastError());
        EXPECT_TRUE(WriteInto(path, "new")) << "it is still pending";
    }
    EXPECT_EQ("new", world.Text());
}

TEST(Replacement, CreateNewAndOpenAlwaysMakeTheFileAtOnce)
{
    const SettingsWorld world;
    CloseHandle(Open(u"\\Application Data\\Tavrix\\a", CREATE_NEW));
    CloseHandle(Open(u"\\Application Data\\Tavrix\\b", OPEN_ALWAYS));
    EXPECT_TRUE(HostExists(world.Folder() + "/a"));
    EXPECT_TRUE(HostExists(world.Folder() + "/b"));
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(Replacement, OtherMountsAreEmptiedInPlace)
{
    const SettingsWorld world;
    const std::u16string elsewhere = tavrix::testing::Wide("/Computer" + world.Ini());
    const struct {
        const WCHAR* device;
        std::string host;
    } files[] = {{u"\\a", world.Host("home/a")},
                 {u"\\My Documents\\a", world.Host("home/Dokumente/a")},
                 {u"\\Program Files\\Tavrix\\Tavrix.log", world.Host("data/tavrix/Tavrix.log")},
                 {u"\\Storage Card\\a", world.Host("card/a")},
                 {elsewhere.c_str(), world.Ini()}};
    for (const auto& file : files) {
        WriteHost(file.host, "old");
        const ino_t before = StatusOf(file.host).st_ino;
        const HANDLE opened = Open(file.device, CREATE_ALWAYS);
        EXPECT_EQ("", ReadHost(file.host)) << file.host;
        CloseHandle(opened);
        EXPECT_EQ(before, StatusOf(file.host).st_ino) << file.host;
    }
}

// What this process sees, and what others do.

TEST(Replacement, PendingFileIsTheFileForThisProcess)
{
    const SettingsWorld world("long old text");
    WriteHost(world.Folder() + "/zebra", "z");
    const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_EQ(3u, Write(file, "new"));
    EXPECT_EQ("new", ReadDevice(Ini));
    EXPECT_EQ("new", ReadDevice(u"\\application data\\tavrix\\TAVRIX.INI"));
    EXPECT_EQ(3u, SizeFound(Ini));
    EXPECT_EQ(3u, SizeFound(u"\\Application Data\\Tavrix\\*.ini"));
    EXPECT_EQ("Tavrix.ini|zebra", Names(Everything));
    EXPECT_EQ("Tavrix.ini", Names(u"\\Application Data\\Tavrix\\TAVRIX.INI"));
    EXPECT_EQ(FILE_ATTRIBUTE_NORMAL, GetFileAttributesW(Ini));
    EXPECT_TRUE(CopyFileW(Ini, u"\\copy", TRUE));
    EXPECT_EQ("new", ReadHost(world.Host("home/copy")));
    CloseHandle(file);
}

TEST(Replacement, PendingFileThatIsNewIsListedUnderItsNameAlone)
{
    const SettingsWorld world;
    const HANDLE file = Open(u"\\Application Data\\Tavrix\\Fresh.ini", CREATE_ALWAYS);
    EXPECT_EQ(5u, Write(file, "12345"));
    EXPECT_EQ("Fresh.ini|Tavrix.ini", Names(Everything));
    EXPECT_EQ("Fresh.ini", Names(u"\\Application Data\\Tavrix\\f*"));
    EXPECT_EQ("(none)", Names(u"\\Application Data\\Tavrix\\g*"));
    EXPECT_EQ("Fresh.ini", Names(u"\\Application Data\\Tavrix\\fresh.INI"));
    EXPECT_EQ(5u, SizeFound(u"\\Application Data\\Tavrix\\Fresh.ini"));
    EXPECT_EQ(FILE_ATTRIBUTE_NORMAL, GetFileAttributesW(u"\\Application Data\\Tavrix\\fresh.ini"));
    CloseHandle(file);
}

TEST(Replacement, NoListingShowsTheHiddenFile)
{
    const SettingsWorld world;
    WriteHost(world.Folder() + "/.tavrix-notes", "a person's own");
    ASSERT_TRUE(MakeEmpty(Ini));
    ASSERT_EQ(1, CountHidden(world.Folder()));
    EXPECT_EQ(".tavrix-notes|Tavrix.ini", Names(Everything));
    const std::u16string host = tavrix::testing::Wide("/Computer" + world.Folder() + "/*");
    EXPECT_EQ(".tavrix-notes|Tavrix.ini", Names(host.c_str()));
}

TEST(Replacement, OnlyNamesOfItsOwnKindCountAsHidden)
{
    EXPECT_TRUE(IsReplacementName(".tavrix-1-2.new"));
    EXPECT_TRUE(IsReplacementName(".tavrix-4194304-1000000.new"));
    for (const char* name :
         {"", ".tavrix-", ".tavrix-.new", ".tavrix-12.new", ".tavrix-1-.new", ".tavrix--1.new",
          ".tavrix-1-2", ".tavrix-1-2.new~", ".tavrix-1-2-3.new", ".tavrix-a-1.new",
          ".tavrix-1-b.new", "x.tavrix-1-2.new", "tavrix-1-2.new", ".tavrix.new"})
        EXPECT_FALSE(IsReplacementName(name)) << name;
}

TEST(Replacement, AnotherProcessSeesTheOldFileUntilTheNewOneIsWhole)
{
    const SettingsWorld world;
    const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_EQ(3u, Write(file, "new"));
    EXPECT_EQ("old", ReadElsewhere(world, Ini));
    CloseHandle(file);
    EXPECT_EQ("new", ReadElsewhere(world, Ini));
}

TEST(Replacement, WhoeverHasTheOldFileOpenKeepsItsBytes)
{
    const SettingsWorld world;
    const HANDLE reader = Open(Ini, OPEN_EXISTING, GENERIC_READ);
    ASSERT_TRUE(WriteDevice(Ini, "new"));
    char bytes[4] = {};
    DWORD done = 0;
    EXPECT_TRUE(ReadFile(reader, bytes, 4, &done, nullptr));
    EXPECT_EQ("old", std::string(bytes, done));
    CloseHandle(reader);
}

TEST(Replacement, ForkedChildTouchesNoReplacementOfItsParent)
{
    const SettingsWorld world;
    const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_EQ(3u, Write(file, "new"));
    EXPECT_EQ(0, InChild([&] {
                  if (ReadDevice(Ini) != "old")
                      return 1;
                  CloseHandle(file); // the child's copy of it
                  if (ReadDevice(Ini) != "old")
                      return 2;
                  ReplaceTree(world.surroundings); // its copy of the tree ends
                  return 0;
              }));
    EXPECT_EQ("old", world.Text());
    EXPECT_EQ(1, CountHidden(world.Folder()));
    CloseHandle(file);
    EXPECT_EQ("new", world.Text());
}

// Deleting, moving, copying.

TEST(Replacement, DeletingAPendingFileTakesTheOldOneToo)
{
    const SettingsWorld world;
    const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_EQ(3u, Write(file, "new"));
    EXPECT_TRUE(DeleteFileW(Ini));
    EXPECT_FALSE(Probe(Ini));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
    EXPECT_EQ("(none)", Names(Everything));
    CloseHandle(file); // does not bring it back
    EXPECT_FALSE(HostExists(world.Ini()));
    EXPECT_EQ(0, CountHidden(world.Folder()));
    EXPECT_FALSE(DeleteFileW(Ini));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
}

TEST(Replacement, DeletingAPendingFileThatIsNewLeavesNothing)
{
    const SettingsWorld world;
    const WCHAR* fresh = u"\\Application Data\\Tavrix\\fresh";
    ASSERT_TRUE(MakeEmpty(fresh));
    EXPECT_TRUE(DeleteFileW(fresh));
    EXPECT_FALSE(Probe(fresh));
    EXPECT_EQ(0, CountHidden(world.Folder()));
    EXPECT_EQ("Tavrix.ini", Names(Everything));
}

TEST(Replacement, MovingAPendingFileMovesWhatThisProcessSees)
{
    const SettingsWorld world;
    const WCHAR* moved = u"\\Application Data\\Tavrix\\moved";
    const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_EQ(3u, Write(file, "new"));
    EXPECT_FALSE(MoveFileW(Ini, u"\\none\\moved"));
    EXPECT_EQ("old", world.Text()) << "a move that fails changes nothing";
    EXPECT_TRUE(MoveFileW(Ini, moved));
    EXPECT_EQ(2u, Write(file, "er"));
    CloseHandle(file);
    EXPECT_FALSE(HostExists(world.Ini()));
    EXPECT_EQ("newer", ReadHost(world.Folder() + "/moved"));
    EXPECT_EQ("moved", Names(Everything));
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(Replacement, MovingAPendingFileWhoseWriteFailedFailsAndLeavesTheOldOne)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    FailAt(FileOperation::Write);
    Write(file, "new");
    tavrix::testing::Reset();
    EXPECT_FALSE(MoveFileW(Ini, u"\\Application Data\\Tavrix\\moved"));
    CloseHandle(file);
    EXPECT_EQ("Tavrix.ini", Names(Everything));
    EXPECT_EQ("old", ReadDevice(Ini));
}

TEST(Replacement, PendingFileIsSpelledAnew)
{
    const SettingsWorld world;
    ASSERT_TRUE(WriteDevice(Ini, "new"));
    const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_EQ(5u, Write(file, "newer"));
    EXPECT_TRUE(MoveFileW(Ini, u"\\Application Data\\Tavrix\\TAVRIX.INI"));
    CloseHandle(file);
    EXPECT_EQ("TAVRIX.INI", Names(Everything));
    EXPECT_EQ("newer", ReadDevice(Ini));
}

TEST(Replacement, NothingMovesOntoAPendingFile)
{
    const SettingsWorld world;
    const WCHAR* fresh = u"\\Application Data\\Tavrix\\fresh";
    ASSERT_TRUE(MakeEmpty(fresh));
    EXPECT_FALSE(MoveFileW(Ini, fresh));
    EXPECT_EQ(ERROR_ALREADY_EXISTS, GetLastError());
    EXPECT_FALSE(CopyFileW(Ini, fresh, TRUE));
    EXPECT_EQ(ERROR_FILE_EXISTS, GetLastError());
}

TEST(Replacement, FolderOfAPendingFileNeitherMovesNorGoes)
{
    const SettingsWorld world;
    ASSERT_TRUE(CreateDirectoryW(u"\\Application Data\\Tavrix\\Folder", nullptr));
    const WCHAR* inside = u"\\Application Data\\Tavrix\\Folder\\a";
    ASSERT_TRUE(MakeEmpty(inside));
    EXPECT_FALSE(
        MoveFileW(u"\\Application Data\\Tavrix\\Folder", u"\\Application Data\\Tavrix\\F"));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
    EXPECT_FALSE(RemoveDirectoryW(u"\\Application Data\\Tavrix\\Folder"));
    EXPECT_EQ(ERROR_DIR_NOT_EMPTY, GetLastError());
    ASSERT_TRUE(WriteInto(inside, "x"));
    EXPECT_TRUE(MoveFileW(u"\\Application Data\\Tavrix\\Folder", u"\\Application Data\\Tavrix\\F"));
    EXPECT_EQ("x", ReadDevice(u"\\Application Data\\Tavrix\\F\\a"));
}

TEST(Replacement, CopyOntoAFileReplacesItWhenTheCopyIsWhole)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    WriteHost(world.Host("home/a"), "new");
    std::string during;
    tavrix::testing::SetFileFault([&](FileOperation operation, const WCHAR*, DWORD*) {
        if (operation == FileOperation::Write)
            during = world.Text();
        return false;
    });
    EXPECT_TRUE(CopyFileW(u"\\a", Ini, FALSE));
    EXPECT_EQ("old", during);
    EXPECT_EQ("new", world.Text());
    WriteHost(world.Host("home/empty"), "");
    EXPECT_TRUE(CopyFileW(u"\\empty", Ini, FALSE));
    EXPECT_EQ("", world.Text());
    EXPECT_TRUE(CopyFileW(u"\\a", u"\\Application Data\\Tavrix\\b", TRUE));
    EXPECT_EQ("new", ReadHost(world.Folder() + "/b"));
}

TEST(Replacement, CopyThatFailsLeavesTheFileAsItWas)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    WriteHost(world.Host("home/a"), "new");
    for (const FileOperation failing :
         {FileOperation::Read, FileOperation::Write, FileOperation::Sync, FileOperation::Rename}) {
        FailAt(failing);
        EXPECT_FALSE(CopyFileW(u"\\a", Ini, FALSE));
        tavrix::testing::Reset();
        EXPECT_EQ("old", world.Text());
        EXPECT_EQ("old", ReadDevice(Ini));
        EXPECT_EQ(0, CountHidden(world.Folder()));
    }
}

// Threads.

TEST(Replacement, ThreadsReplaceFilesSideBySide)
{
    const SettingsWorld world;
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([number, &wrong] {
            const std::u16string own =
                u"\\Application Data\\Tavrix\\own" + tavrix::testing::Wide(std::to_string(number));
            for (int i = 0; i < 25; ++i) {
                const std::string text(static_cast<size_t>(1000 + 100 * number + i), 'x');
                wrong += !MakeEmpty(own.c_str());
                wrong += !WriteInto(own.c_str(), text);
                wrong += ReadDevice(own.c_str()) != text;
                // The shared file: each whole or empty, whoever comes between.
                WriteDevice(Ini, std::string(10, static_cast<char>('a' + number)));
                const std::string shared = ReadDevice(Ini);
                wrong +=
                    shared.find_first_not_of(shared.empty() ? 'x' : shared[0]) != std::string::npos;
                wrong += Names(Everything).find("Tavrix.ini") == std::string::npos;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(0, wrong);
    EXPECT_EQ(10u, world.Text().size());
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(Replacement, WhoeverReadsWhileItTakesItsPlaceFindsAFile)
{
    const SettingsWorld world;
    std::atomic<bool> ended{false};
    std::atomic<int> wrong{0};
    std::atomic<int> reads{0};
    std::vector<std::thread> readers;
    for (int number = 0; number < 3; ++number)
        readers.emplace_back([&] {
            for (; !ended; ++reads)
                wrong += ReadDevice(Ini) == "(none)" || SizeFound(Ini) == 999;
        });
    for (int i = 0; i < 400; ++i)
        EXPECT_TRUE(WriteDevice(Ini, "new"));
    ended = true;
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(0, wrong) << "of " << reads;
    EXPECT_GT(reads, 100);
}
