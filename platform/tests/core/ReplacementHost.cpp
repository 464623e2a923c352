// Replaced files on the host: permissions and owners, links, folders and mounts of other kinds, and
// what killed processes leave.

#include "platform/tests/core/ReplacementWorld.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>

using namespace tavrix::platform;
using namespace tavrix::platform::tests;

// Permissions, links, folders.

TEST(ReplacementHost, ItKeepsThePermissionsOfTheOldFile)
{
    const SettingsWorld world;
    for (const mode_t mode : {0640u, 0600u, 0666u, 0644u}) {
        ASSERT_EQ(0, chmod(world.Ini().c_str(), mode));
        const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
        for (const auto& entry : std::filesystem::directory_iterator(world.Folder()))
            EXPECT_EQ(mode, ModeOf(entry.path())) << entry.path();
        EXPECT_EQ(3u, Write(file, "new"));
        CloseHandle(file);
        EXPECT_EQ(mode, ModeOf(world.Ini()));
    }
}

TEST(ReplacementHost, NewFileHasThePermissionsOfAnyNewFile)
{
    const SettingsWorld world;
    const mode_t before = umask(027);
    EXPECT_TRUE(WriteDevice(u"\\Application Data\\Tavrix\\a", "x"));
    const HANDLE file = CreateFileW(u"\\Application Data\\Tavrix\\b", GENERIC_WRITE, 0, nullptr,
                                    CREATE_ALWAYS, FILE_ATTRIBUTE_READONLY, nullptr);
    EXPECT_EQ(1u, Write(file, "x"));
    CloseHandle(file);
    umask(before);
    EXPECT_EQ(0640u, ModeOf(world.Folder() + "/a"));
    EXPECT_EQ(0440u, ModeOf(world.Folder() + "/b"));
}

TEST(ReplacementHost, ItKeepsTheOwnerOfTheOldFileWhereItMay)
{
    const SettingsWorld world;
    // Root gives files away; anybody else keeps what is their own.
    const uid_t owner = geteuid() == 0 ? 1234 : geteuid();
    const gid_t group = geteuid() == 0 ? 2345 : getegid();
    ASSERT_EQ(0, chown(world.Ini().c_str(), owner, group));
    ASSERT_EQ(0, chmod(world.Ini().c_str(), 0640));
    ASSERT_TRUE(WriteDevice(Ini, "new"));
    EXPECT_EQ("new", world.Text());
    EXPECT_EQ(owner, StatusOf(world.Ini()).st_uid);
    EXPECT_EQ(group, StatusOf(world.Ini()).st_gid);
    EXPECT_EQ(0640u, ModeOf(world.Ini()));
}

TEST(ReplacementHost, ALinkStaysALinkAndItsTargetIsReplaced)
{
    const SettingsWorld world;
    std::filesystem::create_directories(world.Host("dotfiles"));
    std::filesystem::rename(world.Ini(), world.Host("dotfiles/tavrix.ini"));
    std::filesystem::create_symlink("../../dotfiles/tavrix.ini", world.Ini());
    const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_EQ(3u, Write(file, "new"));
    EXPECT_EQ("old", ReadHost(world.Host("dotfiles/tavrix.ini")));
    EXPECT_EQ(1, CountHidden(world.Host("dotfiles"))) << "beside the file, to be renamed at all";
    EXPECT_EQ(0, CountHidden(world.Folder()));
    EXPECT_EQ("new", ReadDevice(Ini));
    EXPECT_EQ(3u, SizeFound(Everything));
    CloseHandle(file);
    EXPECT_TRUE(std::filesystem::is_symlink(world.Ini()));
    EXPECT_EQ("new", ReadHost(world.Host("dotfiles/tavrix.ini")));
    EXPECT_EQ(0, CountHidden(world.Host("dotfiles")));
}

TEST(ReplacementHost, ALinkThatLeadsNowhereYetGetsItsTarget)
{
    const SettingsWorld world;
    std::filesystem::create_directories(world.Host("dotfiles"));
    std::filesystem::remove(world.Ini());
    std::filesystem::create_symlink(world.Host("dotfiles/second"), world.Ini());
    std::filesystem::create_symlink("first", world.Host("dotfiles/second"));
    ASSERT_TRUE(MakeEmpty(Ini));
    EXPECT_TRUE(Probe(Ini));
    EXPECT_EQ("Tavrix.ini", Names(Everything));
    ASSERT_TRUE(WriteInto(Ini, "new"));
    EXPECT_EQ("new", ReadHost(world.Host("dotfiles/first")));
    EXPECT_TRUE(std::filesystem::is_symlink(world.Ini()));
    EXPECT_TRUE(std::filesystem::is_symlink(world.Host("dotfiles/second")));
    std::filesystem::remove_all(world.Host("dotfiles"));
    EXPECT_FALSE(MakeEmpty(Ini)) << "no folder to lead to";
}

TEST(ReplacementHost, FileAndLinkToItAreOne)
{
    const SettingsWorld world;
    std::filesystem::create_symlink("Tavrix.ini", world.Folder() + "/link");
    std::filesystem::create_symlink(".", world.Folder() + "/folder");
    const WCHAR* link = u"\\Application Data\\Tavrix\\link";
    ASSERT_TRUE(MakeEmpty(link));
    EXPECT_EQ("", ReadDevice(Ini));
    EXPECT_EQ("", ReadDevice(u"\\Application Data\\Tavrix\\folder\\Tavrix.ini"));
    EXPECT_EQ(0u, SizeFound(u"\\Application Data\\Tavrix\\T*"));
    ASSERT_TRUE(WriteInto(Ini, "new"));
    EXPECT_EQ("new", ReadDevice(link));
    EXPECT_EQ("new", world.Text());
}

TEST(ReplacementHost, DeletingAPendingLinkTakesTheLinkAndLeavesItsTarget)
{
    const SettingsWorld world;
    std::filesystem::create_symlink("Tavrix.ini", world.Folder() + "/link");
    const WCHAR* link = u"\\Application Data\\Tavrix\\link";
    ASSERT_TRUE(MakeEmpty(link));
    EXPECT_TRUE(DeleteFileW(link));
    EXPECT_FALSE(Probe(link));
    EXPECT_EQ("old", ReadDevice(Ini));
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(ReplacementHost, FileThatMayNotBeWrittenIsRefusedAndStays)
{
    const SettingsWorld world;
    LetAnyoneReach(world.base);
    std::filesystem::permissions(world.Folder(), std::filesystem::perms(0777));
    std::filesystem::permissions(world.Host("config"), std::filesystem::perms(0777));
    std::filesystem::permissions(world.Host("tmp"), std::filesystem::perms(0777));
    std::filesystem::permissions(world.Ini(), std::filesystem::perms(0444));
    EXPECT_EQ(0, InChild([&] {
                  if (!BecomeOrdinary())
                      return 1;
                  ReplaceTree(world.surroundings);
                  if (MakeEmpty(Ini) || GetLastError() != ERROR_ACCESS_DENIED)
                      return 2;
                  if (WriteInto(Ini, "X"))
                      return 3;
                  return ReadDevice(Ini) == "old" ? 0 : 4;
              }));
    EXPECT_EQ("old", world.Text());
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(ReplacementHost, FolderThatTakesNoFilesHasItsFilesWrittenInPlace)
{
    const SettingsWorld world;
    const std::string folder = world.Folder() + "/Configuration Files";
    const WCHAR* path = u"\\Application Data\\Tavrix\\Configuration Files\\Tavrix.ini";
    WriteHost(folder + "/Tavrix.ini", "long old text");
    LetAnyoneReach(world.base);
    std::filesystem::permissions(world.Folder(), std::filesystem::perms(0777));
    std::filesystem::permissions(world.Host("config"), std::filesystem::perms(0777));
    std::filesystem::permissions(world.Host("tmp"), std::filesystem::perms(0777));
    std::filesystem::permissions(folder + "/Tavrix.ini", std::filesystem::perms(0666));
    std::filesystem::permissions(folder, std::filesystem::perms(0555));
    const ino_t before = StatusOf(folder + "/Tavrix.ini").st_ino;
    EXPECT_EQ(0, InChild([&] {
                  if (!BecomeOrdinary())
                      return 1;
                  ReplaceTree(world.surroundings);
                  if (MakeEmpty(u"\\Application Data\\Tavrix\\Configuration Files\\fresh"))
                      return 2;
                  if (!MakeEmpty(path) || ReadHost(folder + "/Tavrix.ini") != "")
                      return 3;
                  return WriteInto(path, "new") ? 0 : 4;
              }));
    EXPECT_EQ("new", ReadHost(folder + "/Tavrix.ini"));
    EXPECT_EQ(before, StatusOf(folder + "/Tavrix.ini").st_ino);
    std::filesystem::permissions(folder, std::filesystem::perms(0777));
}

TEST(ReplacementHost, FileWhoseOwnerCannotBeKeptIsWrittenInPlace)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give a file to somebody else to begin with";
    const SettingsWorld world;
    LetAnyoneReach(world.base);
    std::filesystem::permissions(world.Folder(), std::filesystem::perms(0777));
    std::filesystem::permissions(world.Host("config"), std::filesystem::perms(0777));
    std::filesystem::permissions(world.Host("tmp"), std::filesystem::perms(0777));
    std::filesystem::permissions(world.Ini(), std::filesystem::perms(0666));
    const struct stat before = StatusOf(world.Ini());
    EXPECT_EQ(0, InChild([&] {
                  if (!BecomeOrdinary())
                      return 1;
                  ReplaceTree(world.surroundings);
                  return WriteDevice(Ini, "new") ? 0 : 2;
              }));
    EXPECT_EQ("new", world.Text());
    EXPECT_EQ(before.st_ino, StatusOf(world.Ini()).st_ino);
    EXPECT_EQ(before.st_uid, StatusOf(world.Ini()).st_uid);
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(ReplacementHost, FileThatIsAMountOfItsOwnIsWrittenInPlace)
{
    const SettingsWorld world;
    WriteHost(world.Host("bound"), "bound old text");
    EXPECT_EQ(0, InChild([&] {
                  if (!EnterMountSpace())
                      return 1;
                  if (mount(world.Host("bound").c_str(), world.Ini().c_str(), nullptr, MS_BIND,
                            nullptr) != 0)
                      return 2;
                  ReplaceTree(world.surroundings);
                  return WriteDevice(Ini, "new") && ReadDevice(Ini) == "new" ? 0 : 3;
              }))
        << "1 or 2: this host lets no test mount anything in a name space of its own";
    EXPECT_EQ("new", ReadHost(world.Host("bound")));
    EXPECT_EQ("old", world.Text());
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(ReplacementHost, WhereTheMountCannotBeWrittenItHappensInTheFolderOfTheRun)
{
    const tavrix::testing::Scope scope;
    const FileWorld world([](Surroundings& s) {
        WriteHost(s.home + "/blocked", "a file");
        s.config = s.home + "/blocked/config";
    });
    ASSERT_TRUE(WriteDevice(Ini, "first"));
    const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_EQ(6u, Write(file, "second"));
    const std::string host = tavrix::testing::HostPath(Ini);
    EXPECT_EQ(0u, host.find(world.Host("tmp/")));
    EXPECT_EQ("first", ReadHost(host));
    EXPECT_EQ("second", ReadDevice(Ini));
    CloseHandle(file);
    EXPECT_EQ("second", ReadHost(host));
    FailAt(FileOperation::Write);
    EXPECT_FALSE(WriteDevice(Ini, "third"));
    EXPECT_EQ("second", ReadDevice(Ini));
}

TEST(ReplacementHost, OverAFileOfALowerLayerItStandsInTheFolderOfTheRun)
{
    const SettingsWorld world;
    LetAnyoneReach(world.base);
    std::filesystem::permissions(world.Folder(), std::filesystem::perms(0555));
    std::filesystem::permissions(world.Host("tmp"), std::filesystem::perms(0777));
    EXPECT_EQ(0, InChild([&] {
                  const tavrix::testing::Scope scope;
                  if (!BecomeOrdinary())
                      return 1;
                  ReplaceTree(world.surroundings);
                  if (!MakeEmpty(Ini) || ReadDevice(Ini) != "" || SizeFound(Everything) != 0)
                      return 2;
                  FailAt(FileOperation::Write);
                  if (WriteInto(Ini, "new"))
                      return 3;
                  tavrix::testing::Reset();
                  if (ReadDevice(Ini) != "old")
                      return 4;
                  if (!WriteDevice(Ini, "new") || ReadDevice(Ini) != "new")
                      return 5;
                  return Names(Everything) == "Tavrix.ini" ? 0 : 6;
              }));
    EXPECT_EQ("old", world.Text());
    std::filesystem::permissions(world.Folder(), std::filesystem::perms::owner_all);
}

// What killed processes leave.

namespace
{

/// A process that has a replacement pending; killed with its scope.
class Replacer
{
public:
    explicit Replacer(const FileWorld& world)
    {
        int channel[2];
        if (pipe(channel) != 0)
            std::abort();
        process = fork();
        if (process == 0) {
            ReplaceTree(world.surroundings);
            const HANDLE file = Open(Ini, CREATE_ALWAYS, GENERIC_WRITE);
            const char told = Write(file, "half") == 4 ? '+' : '-';
            if (write(channel[1], &told, 1) == 1)
                pause();
            _exit(1);
        }
        close(channel[1]);
        char told = 0;
        EXPECT_EQ(1, read(channel[0], &told, 1));
        EXPECT_EQ('+', told);
        close(channel[0]);
    }
    ~Replacer() { Kill(); }
    Replacer(const Replacer&) = delete;
    Replacer& operator=(const Replacer&) = delete;

    void Kill()
    {
        if (process < 0)
            return;
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
        process = -1;
    }

private:
    pid_t process = -1;
};

} // namespace

TEST(ReplacementHost, NextOneInTheFolderClearsWhatAKilledProcessLeft)
{
    const SettingsWorld world;
    Replacer replacer(world);
    replacer.Kill();
    EXPECT_EQ(1, CountHidden(world.Folder()));
    EXPECT_EQ("old", ReadDevice(Ini));
    EXPECT_EQ("Tavrix.ini", Names(Everything));
    ASSERT_TRUE(MakeEmpty(u"\\Application Data\\Tavrix\\other"));
    EXPECT_EQ(1, CountHidden(world.Folder())) << "the new one's own";
    ASSERT_TRUE(WriteInto(u"\\Application Data\\Tavrix\\other", "x"));
    EXPECT_EQ(0, CountHidden(world.Folder()));
    EXPECT_EQ("old", world.Text());
}

TEST(ReplacementHost, WhatALiveProcessHoldsIsNotCleared)
{
    const SettingsWorld world;
    const Replacer replacer(world);
    ASSERT_TRUE(WriteDevice(Ini, "mine"));
    EXPECT_EQ("mine", world.Text());
    EXPECT_EQ(1, CountHidden(world.Folder()));
    ASSERT_TRUE(MakeEmpty(Ini));
    ASSERT_TRUE(MakeEmpty(u"\\Application Data\\Tavrix\\other"));
    EXPECT_EQ(3, CountHidden(world.Folder())) << "this process's own among them";
}

TEST(ReplacementHost, NothingButItsOwnIsCleared)
{
    const SettingsWorld world;
    const std::string folder = world.Folder();
    for (const char* name : {"/.tavrix-1-1.new", "/.tavrix-abc.new", "/.tavrix-1-1", "/a.new"})
        WriteHost(folder + name, "x");
    WriteHost(world.Host("precious"), "x");
    std::filesystem::create_symlink(world.Host("precious"), folder + "/.tavrix-1-2.new");
    std::filesystem::create_directory(folder + "/.tavrix-1-3.new");
    ASSERT_EQ(0, mkfifo((folder + "/.tavrix-1-4.new").c_str(), 0600));
    if (geteuid() == 0) {
        WriteHost(folder + "/.tavrix-1-5.new", "another user's");
        ASSERT_EQ(0, chown((folder + "/.tavrix-1-5.new").c_str(), 1234, 1234));
    }
    ASSERT_TRUE(WriteDevice(Ini, "new"));
    EXPECT_FALSE(HostExists(folder + "/.tavrix-1-1.new")) << "a file of the right kind goes";
    for (const char* name : {"/.tavrix-abc.new", "/.tavrix-1-1", "/a.new", "/.tavrix-1-2.new",
                             "/.tavrix-1-3.new", "/.tavrix-1-4.new"})
        EXPECT_TRUE(HostExists(folder + name)) << name;
    EXPECT_EQ(geteuid() == 0, HostExists(folder + "/.tavrix-1-5.new"));
    EXPECT_EQ("x", ReadHost(world.Host("precious")));
}

TEST(ReplacementHost, WhatAKilledProcessLeftKeepsNoFolderFromGoing)
{
    const SettingsWorld world;
    ASSERT_TRUE(CreateDirectoryW(u"\\Application Data\\Tavrix\\Folder", nullptr));
    WriteHost(world.Folder() + "/Folder/.tavrix-1-1.new", "x");
    EXPECT_EQ("(none)", Names(u"\\Application Data\\Tavrix\\Folder\\*"));
    EXPECT_TRUE(RemoveDirectoryW(u"\\Application Data\\Tavrix\\Folder"));
    EXPECT_FALSE(HostExists(world.Folder() + "/Folder"));
}

TEST(ReplacementHost, TwoProcessesThatReplaceTheSameFileLeaveOneOfTheTwoWhole)
{
    const SettingsWorld world;
    const std::string first(50000, 'a');
    const std::string second(30000, 'b');
    const auto replaceOften = [&world](const std::string& text) {
        return InChild([&] {
            ReplaceTree(world.surroundings);
            for (int i = 0; i < 20; ++i) {
                if (!WriteDevice(Ini, text))
                    return 1;
            }
            return 0;
        });
    };
    const pid_t other = fork();
    if (other == 0)
        _exit(replaceOften(first));
    EXPECT_EQ(0, replaceOften(second));
    int status = -1;
    waitpid(other, &status, 0);
    EXPECT_EQ(0, status);
    EXPECT_TRUE(world.Text() == first || world.Text() == second);
    EXPECT_EQ(0, CountHidden(world.Folder()));
}
