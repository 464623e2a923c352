// Files that are to be replaced and are not, since something failed or the process ended.

#include "platform/tests/core/ReplacementWorld.h"

#include <gtest/gtest.h>

using namespace tavrix::platform;
using namespace tavrix::platform::tests;

TEST(ReplacementFailures, WriteThatComesUpShortDropsItAtTheClose)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    for (const DWORD missing : {1u, 3u}) {
        ASSERT_TRUE(MakeEmpty(Ini));
        const HANDLE file = Open(Ini, OPEN_EXISTING);
        tavrix::testing::SetFileFault([&](FileOperation operation, const WCHAR*, DWORD* shortBy) {
            *shortBy = missing;
            return operation == FileOperation::Write;
        });
        EXPECT_EQ(3 - missing, Write(file, "new"));
        tavrix::testing::Reset();
        EXPECT_EQ(4u, Write(file, "more")) << "what goes well later heals nothing";
        CloseHandle(file);
        EXPECT_EQ("old", world.Text());
        EXPECT_EQ("old", ReadDevice(Ini)) << "this process sees the old one again";
        EXPECT_EQ("Tavrix.ini", Names(Everything));
        EXPECT_EQ(0, CountHidden(world.Folder()));
    }
}

TEST(ReplacementFailures, FileThatWasNotThereIsNotThereAgainWhenItsWriteFails)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    FailAt(FileOperation::Write);
    EXPECT_FALSE(WriteDevice(u"\\Application Data\\Tavrix\\fresh", "text"));
    EXPECT_FALSE(Probe(u"\\Application Data\\Tavrix\\fresh"));
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(ReplacementFailures, FileThatCannotBeMadeDurableOrRenamedIsDropped)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    for (const FileOperation failing : {FileOperation::Sync, FileOperation::Rename}) {
        FailAt(failing);
        EXPECT_TRUE(WriteDevice(Ini, "new"));
        tavrix::testing::Reset();
        EXPECT_EQ("old", world.Text());
        EXPECT_EQ("old", ReadDevice(Ini));
        EXPECT_EQ(0, CountHidden(world.Folder()));
    }
    FailAt(FileOperation::SyncFolder);
    EXPECT_TRUE(WriteDevice(Ini, "new"));
    EXPECT_EQ("new", world.Text()) << "it has taken its place already";
}

TEST(ReplacementFailures, FileIsMadeDurableBeforeItIsRenamedAndTheFolderAfterwards)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    std::string steps;
    tavrix::testing::SetFileFault([&](FileOperation operation, const WCHAR* path, DWORD*) {
        EXPECT_EQ(std::u16string(Ini), path);
        const char* name = operation == FileOperation::Sync         ? "sync "
                           : operation == FileOperation::Rename     ? "rename "
                           : operation == FileOperation::SyncFolder ? "folder "
                                                                    : "";
        if (*name != 0)
            steps += name + world.Text() + " ";
        return false;
    });
    ASSERT_TRUE(WriteDevice(Ini, "new"));
    EXPECT_EQ("sync old rename old folder new ", steps);
}

TEST(ReplacementFailures, FailedOpeningForWritingDropsAPendingFile)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    ASSERT_TRUE(MakeEmpty(Ini));
    FailAt(FileOperation::Open);
    EXPECT_EQ(INVALID_HANDLE_VALUE, Open(Ini, OPEN_EXISTING, GENERIC_READ));
    EXPECT_EQ(1, CountHidden(world.Folder())) << "reading is another matter";
    EXPECT_EQ(INVALID_HANDLE_VALUE, Open(Ini, OPEN_EXISTING));
    tavrix::testing::Reset();
    EXPECT_EQ(0, CountHidden(world.Folder()));
    EXPECT_EQ("old", ReadDevice(Ini));
}

TEST(ReplacementFailures, FailedOpeningWhileAnotherHandleWritesDropsItAtTheLastClose)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    FailAt(FileOperation::Open);
    EXPECT_EQ(INVALID_HANDLE_VALUE, Open(Ini, OPEN_EXISTING));
    tavrix::testing::Reset();
    EXPECT_EQ(4u, Write(file, "half"));
    EXPECT_EQ("half", ReadDevice(Ini));
    CloseHandle(file);
    EXPECT_EQ("old", ReadDevice(Ini));
    EXPECT_EQ("old", world.Text());
}

TEST(ReplacementFailures, AfterAFailedMakingTheOldFileIsNotWrittenUntilOneSucceeds)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    FailAt(FileOperation::Create);
    EXPECT_FALSE(MakeEmpty(Ini));
    tavrix::testing::Reset();
    // The program writes on, whatever became of the making.
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_EQ(INVALID_HANDLE_VALUE, Open(Ini, OPEN_EXISTING));
        EXPECT_EQ(ERROR_DISK_FULL, GetLastError());
    }
    EXPECT_EQ("old", ReadDevice(Ini));
    ASSERT_TRUE(MakeEmpty(Ini));
    ASSERT_TRUE(WriteInto(Ini, "new"));
    EXPECT_TRUE(WriteInto(Ini, "N"));
    EXPECT_EQ("New", world.Text());
}

TEST(ReplacementFailures, FailedMakingAnewDropsWhatWasPendingAndRefusesWrites)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    ASSERT_TRUE(MakeEmpty(Ini));
    FailAt(FileOperation::Create);
    EXPECT_FALSE(MakeEmpty(Ini));
    tavrix::testing::Reset();
    EXPECT_FALSE(WriteInto(Ini, "new"));
    EXPECT_EQ("old", ReadDevice(Ini));
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(ReplacementFailures, RefusalEndsWithTheFileThatItWasFor)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    FailAt(FileOperation::Create);
    EXPECT_FALSE(MakeEmpty(Ini));
    tavrix::testing::Reset();
    ASSERT_TRUE(DeleteFileW(Ini));
    EXPECT_TRUE(WriteDevice(Ini, "another", CREATE_NEW));
    EXPECT_TRUE(WriteInto(Ini, "A"));
    EXPECT_EQ("Another", world.Text());
}

TEST(ReplacementFailures, RefusalIsForNoOtherFileAndNoOtherMount)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    WriteHost(world.Folder() + "/other", "12345");
    WriteHost(world.Host("home/a"), "12345");
    FailAt(FileOperation::Create);
    EXPECT_FALSE(MakeEmpty(Ini));
    EXPECT_FALSE(MakeEmpty(u"\\a"));
    tavrix::testing::Reset();
    EXPECT_TRUE(WriteInto(u"\\Application Data\\Tavrix\\other", "x"));
    EXPECT_TRUE(WriteInto(u"\\a", "x")) << "as on the device";
    EXPECT_EQ("x2345", ReadHost(world.Host("home/a")));
}

TEST(ReplacementFailures, DiskThatATestHasFilledTakesNoReplacement)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    tavrix::testing::SetDiskSpace(0);
    EXPECT_FALSE(MakeEmpty(Ini));
    EXPECT_EQ(ERROR_DISK_FULL, GetLastError());
    EXPECT_FALSE(WriteInto(Ini, "X"));
    tavrix::testing::SetDiskSpace(2);
    EXPECT_FALSE(WriteDevice(Ini, "new"));
    tavrix::testing::Reset();
    EXPECT_EQ("old", world.Text());
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(ReplacementFailures, FolderThatIsGoneMeanwhileTakesTheReplacementAlong)
{
    const SettingsWorld world;
    const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_EQ(3u, Write(file, "new"));
    std::filesystem::remove_all(world.Folder());
    CloseHandle(file);
    EXPECT_FALSE(Probe(Ini));
    EXPECT_TRUE(WriteDevice(Ini, "newer"));
    EXPECT_EQ("newer", world.Text());
}

// The end.

TEST(ReplacementFailures, OldFileOutlivesAnUnwrittenOneAtTheEnd)
{
    const SettingsWorld world;
    ASSERT_TRUE(MakeEmpty(Ini));
    ReplaceTree(world.surroundings);
    EXPECT_EQ("old", ReadDevice(Ini));
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(ReplacementFailures, EmptyFileThatWasNotThereAppearsAtTheEnd)
{
    const SettingsWorld world;
    ASSERT_TRUE(MakeEmpty(u"\\Application Data\\Tavrix\\empty"));
    ASSERT_TRUE(MakeEmpty(u"\\Application Data\\Tavrix\\taken"));
    WriteHost(world.Folder() + "/taken", "by another process");
    ReplaceTree(world.surroundings);
    EXPECT_EQ("empty|taken|Tavrix.ini", Names(Everything));
    EXPECT_EQ("", ReadDevice(u"\\Application Data\\Tavrix\\empty"));
    EXPECT_EQ("by another process", ReadDevice(u"\\Application Data\\Tavrix\\taken"));
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(ReplacementFailures, FileThatIsStillBeingWrittenAtTheEndIsDropped)
{
    const SettingsWorld world;
    const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    const HANDLE fresh = Open(u"\\Application Data\\Tavrix\\fresh", CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_EQ(4u, Write(file, "half"));
    EXPECT_EQ(4u, Write(fresh, "half"));
    ReplaceTree(world.surroundings);
    CloseHandle(file);
    CloseHandle(fresh);
    EXPECT_EQ("Tavrix.ini", Names(Everything));
    EXPECT_EQ("old", ReadDevice(Ini));
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(ReplacementFailures, EndOfTheProcessIsTheEndOfItsReplacements)
{
    const SettingsWorld world;
    EXPECT_EQ(7, InChild([&] {
                  ReplaceTree(world.surroundings);
                  return MakeEmpty(Ini) && MakeEmpty(u"\\Application Data\\Tavrix\\empty") &&
                                 CountHidden(world.Folder()) == 2
                             ? 7
                             : 1;
              }));
    EXPECT_EQ("empty|Tavrix.ini", Names(Everything));
    EXPECT_EQ("old", ReadDevice(Ini));
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(ReplacementFailures, NoDescriptorStaysBehind)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    const auto countOpen = [] {
        const std::filesystem::directory_iterator all("/proc/self/fd");
        return std::distance(begin(all), end(all));
    };
    ASSERT_TRUE(WriteDevice(Ini, "new"));
    const auto before = countOpen();
    for (const FileOperation failing :
         {FileOperation::Create, FileOperation::Open, FileOperation::Write, FileOperation::Sync,
          FileOperation::Rename, FileOperation::SyncFolder, FileOperation::Read}) {
        FailAt(failing);
        MakeEmpty(Ini);
        WriteInto(Ini, "newer");
        EXPECT_EQ(before, countOpen());
    }
}
