// The replacing of a file at a stroke: what becomes of both files, and that nothing becomes of them
// when it fails.

#include "platform/tests/core/ReplacementWorld.h"

#include <gtest/gtest.h>

#include <handheld.h>

using namespace tavrix::platform;
using namespace tavrix::platform::tests;

namespace
{

constexpr const WCHAR* Target = u"\\picture.png";
constexpr const WCHAR* Source = u"\\made.tmp";

/// A home with the two files.
class TwoFiles : public FileWorld
{
public:
    explicit TwoFiles(const std::function<void(Surroundings&)>& change = {}) : FileWorld(change)
    {
        WriteHost(TargetFile(), "old");
        WriteHost(SourceFile(), "new");
    }
    std::string TargetFile() const { return Host("home/picture.png"); }
    std::string SourceFile() const { return Host("home/made.tmp"); }
    std::string Both() const { return ReadHost(TargetFile()) + "|" + ReadHost(SourceFile()); }
};

/// A folder on another file system than the tests', removed at the end.
class OtherFileSystem
{
public:
    OtherFileSystem()
    {
        // A file system of its own on every Linux host that tests run on.
        std::string name = "/dev/shm/tavrix-test-XXXXXX";
        if (mkdtemp(name.data()) != nullptr)
            path = name;
    }
    ~OtherFileSystem()
    {
        if (!path.empty())
            std::filesystem::remove_all(path);
    }
    OtherFileSystem(const OtherFileSystem&) = delete;
    OtherFileSystem& operator=(const OtherFileSystem&) = delete;

    std::string path;
};

int CountFiles(const std::string& folder)
{
    int count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder))
        ++count;
    return count;
}

/// FALSE with the error, and both files as they were.
void ExpectRefused(const TwoFiles& world, const WCHAR* target, const WCHAR* source, DWORD error,
                   const char* what)
{
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(DeleteAndRenameFile(target, source)) << what;
    EXPECT_EQ(error, GetLastError()) << what;
    EXPECT_EQ("old|new", world.Both()) << what;
}

/// The names of the steps in which it can fail, in the order of their coming.
std::string StepsOf(const WCHAR* target, const WCHAR* source)
{
    std::string steps;
    tavrix::testing::SetFileFault([&](FileOperation operation, const WCHAR* path, DWORD*) {
        static const char* const names[] = {"create", "open", "read",  "write",
                                            "sync",   "name", "folder"};
        steps += names[static_cast<int>(operation)];
        steps += std::u16string(path) == target ? "(target) " : "(source) ";
        return false;
    });
    EXPECT_TRUE(DeleteAndRenameFile(target, source));
    tavrix::testing::Reset();
    return steps;
}

} // namespace

TEST(DeleteAndRename, GivesTheTargetTheContentOfTheSourceWhichIsGone)
{
    const TwoFiles world;
    EXPECT_TRUE(DeleteAndRenameFile(Target, Source));
    EXPECT_EQ("new", ReadHost(world.TargetFile()));
    EXPECT_FALSE(HostExists(world.SourceFile()));
}

TEST(DeleteAndRename, NeedsNoTargetThatIsThere)
{
    const TwoFiles world;
    chmod(world.SourceFile().c_str(), 0640);
    EXPECT_TRUE(DeleteAndRenameFile(u"\\fresh.png", Source));
    EXPECT_EQ("new", ReadHost(world.Host("home/fresh.png")));
    EXPECT_EQ(0640u, ModeOf(world.Host("home/fresh.png")));
    EXPECT_FALSE(HostExists(world.SourceFile()));
}

TEST(DeleteAndRename, TakesTheFileThatHasTheNameInOtherLetters)
{
    const TwoFiles world;
    EXPECT_TRUE(DeleteAndRenameFile(u"\\PICTURE.PNG", u"\\Made.TMP"));
    EXPECT_EQ("new", ReadHost(world.TargetFile()));
    EXPECT_EQ(1, CountFiles(world.Host("home")));
}

TEST(DeleteAndRename, TargetKeepsItsPermissions)
{
    for (const mode_t mode : {0600u, 0644u, 0775u, 0606u}) {
        const TwoFiles world;
        chmod(world.TargetFile().c_str(), mode);
        chmod(world.SourceFile().c_str(), 0640);
        EXPECT_TRUE(DeleteAndRenameFile(Target, Source));
        EXPECT_EQ("new", ReadHost(world.TargetFile()));
        EXPECT_EQ(mode, ModeOf(world.TargetFile()));
    }
}

TEST(DeleteAndRename, WhoHasTheOldFileOpenKeepsReadingIt)
{
    const TwoFiles world;
    const HANDLE file = Open(Target, OPEN_EXISTING, GENERIC_READ);
    EXPECT_TRUE(DeleteAndRenameFile(Target, Source));
    char text[4] = {};
    DWORD done = 0;
    EXPECT_TRUE(ReadFile(file, text, 3, &done, nullptr));
    EXPECT_STREQ("old", text);
    CloseHandle(file);
}

TEST(DeleteAndRename, TargetThatIsALinkStaysOneAndItsFileGetsTheContent)
{
    const TwoFiles world;
    WriteHost(world.Host("home/deep/real.png"), "old");
    chmod(world.Host("home/deep/real.png").c_str(), 0600);
    std::filesystem::create_symlink("deep/real.png", world.Host("home/link.png"));
    EXPECT_TRUE(DeleteAndRenameFile(u"\\link.png", Source));
    EXPECT_TRUE(std::filesystem::is_symlink(world.Host("home/link.png")));
    EXPECT_EQ("new", ReadHost(world.Host("home/deep/real.png")));
    EXPECT_EQ(0600u, ModeOf(world.Host("home/deep/real.png")));
    EXPECT_FALSE(HostExists(world.SourceFile()));
    EXPECT_EQ(1, CountFiles(world.Host("home/deep")));
}

TEST(DeleteAndRename, LinkThatLeadsNowhereGetsItsFile)
{
    const TwoFiles world;
    std::filesystem::create_symlink("real.png", world.Host("home/link.png"));
    EXPECT_TRUE(DeleteAndRenameFile(u"\\link.png", Source));
    EXPECT_TRUE(std::filesystem::is_symlink(world.Host("home/link.png")));
    EXPECT_EQ("new", ReadHost(world.Host("home/real.png")));
}

TEST(DeleteAndRename, LinkIntoAFolderThatIsNotThereFails)
{
    const TwoFiles world;
    std::filesystem::create_symlink("nowhere/real.png", world.Host("home/link.png"));
    ExpectRefused(world, u"\\link.png", Source, ERROR_PATH_NOT_FOUND, "a link into nothing");
}

TEST(DeleteAndRename, SourceThatIsALinkGivesItsContentAndGoes)
{
    const TwoFiles world;
    WriteHost(world.Host("home/real.tmp"), "linked");
    std::filesystem::create_symlink("real.tmp", world.Host("home/link.tmp"));
    EXPECT_TRUE(DeleteAndRenameFile(Target, u"\\link.tmp"));
    EXPECT_FALSE(std::filesystem::is_symlink(world.TargetFile()));
    EXPECT_EQ("linked", ReadHost(world.TargetFile()));
    EXPECT_FALSE(HostExists(world.Host("home/link.tmp")));
    EXPECT_EQ("linked", ReadHost(world.Host("home/real.tmp")));
}

TEST(DeleteAndRename, BetweenFileSystemsACopyTakesThePlaceAndTheSourceGoes)
{
    const OtherFileSystem other;
    const TwoFiles world([&other](Surroundings& s) { s.storageCard = other.path; });
    const std::string text(700000, 'x');
    WriteHost(world.SourceFile(), text);
    WriteHost(other.path + "/picture.png", "old");
    chmod((other.path + "/picture.png").c_str(), 0604);
    EXPECT_TRUE(DeleteAndRenameFile(u"\\Storage Card\\picture.png", Source));
    EXPECT_EQ(text, ReadHost(other.path + "/picture.png"));
    EXPECT_EQ(0604u, ModeOf(other.path + "/picture.png"));
    EXPECT_FALSE(HostExists(world.SourceFile()));
    EXPECT_EQ(0, CountHidden(other.path));
}

TEST(DeleteAndRename, LinkIntoAnotherFileSystemStaysAndItsFileGetsTheContent)
{
    const OtherFileSystem other;
    const TwoFiles world;
    WriteHost(other.path + "/real.png", "old");
    std::filesystem::create_symlink(other.path + "/real.png", world.Host("home/link.png"));
    EXPECT_TRUE(DeleteAndRenameFile(u"\\link.png", Source));
    EXPECT_TRUE(std::filesystem::is_symlink(world.Host("home/link.png")));
    EXPECT_EQ("new", ReadHost(other.path + "/real.png"));
    EXPECT_EQ(1, CountFiles(other.path));
}

TEST(DeleteAndRename, FileIsMadeDurableBeforeItTakesThePlaceAndTheFolderAfterwards)
{
    const OtherFileSystem other;
    const TwoFiles world([&other](Surroundings& s) { s.storageCard = other.path; });
    EXPECT_EQ("open(source) sync(target) name(target) folder(target) ", StepsOf(Target, Source));
    WriteHost(world.SourceFile(), "new");
    EXPECT_EQ("open(source) create(target) read(source) write(target) read(source) sync(target) "
              "name(target) folder(target) ",
              StepsOf(u"\\Storage Card\\a", Source));
}

TEST(DeleteAndRename, FailureOfAnyStepLeavesBothFilesAsTheyWere)
{
    const OtherFileSystem other;
    const tavrix::testing::Scope scope;
    const std::pair<FileOperation, DWORD> failures[] = {{FileOperation::Open, ERROR_ACCESS_DENIED},
                                                        {FileOperation::Create, ERROR_DISK_FULL},
                                                        {FileOperation::Read, 31},
                                                        {FileOperation::Write, ERROR_DISK_FULL},
                                                        {FileOperation::Sync, 31},
                                                        {FileOperation::Rename, 31}};
    for (const bool apart : {false, true})
        for (const auto& [operation, error] : failures) {
            const TwoFiles world([&](Surroundings& s) {
                if (apart)
                    s.storageCard = other.path;
            });
            const WCHAR* target = apart ? u"\\Storage Card\\picture.png" : Target;
            const std::string file = apart ? other.path + "/picture.png" : world.TargetFile();
            WriteHost(file, "old");
            chmod(file.c_str(), 0600);
            chmod(world.SourceFile().c_str(), 0644);
            bool fired = false;
            tavrix::testing::SetFileFault(
                [&, failing = operation](FileOperation asked, const WCHAR*, DWORD*) {
                    fired = fired || asked == failing;
                    return asked == failing;
                });
            const BOOL done = DeleteAndRenameFile(target, Source);
            tavrix::testing::Reset();
            const int step = static_cast<int>(operation);
            if (!fired) {
                EXPECT_TRUE(done) << step;
                EXPECT_FALSE(apart) << step;
                continue;
            }
            EXPECT_FALSE(done) << step;
            EXPECT_EQ(error, GetLastError()) << step;
            EXPECT_EQ("old", ReadHost(file)) << step;
            EXPECT_EQ("new", ReadHost(world.SourceFile())) << step;
            EXPECT_EQ(0600u, ModeOf(file)) << step;
            EXPECT_EQ(0644u, ModeOf(world.SourceFile())) << step;
            EXPECT_EQ(0, CountHidden(std::filesystem::path(file).parent_path())) << step;
        }
}

TEST(DeleteAndRename, FolderThatCannotBeMadeDurableIsNoFailureSinceTheFileStands)
{
    const TwoFiles world;
    const tavrix::testing::Scope scope;
    FailAt(FileOperation::SyncFolder);
    EXPECT_TRUE(DeleteAndRenameFile(Target, Source));
    EXPECT_EQ("new", ReadHost(world.TargetFile()));
}

TEST(DeleteAndRename, DiskThatFillsUpBetweenFileSystemsChangesNothing)
{
    const OtherFileSystem other;
    const tavrix::testing::Scope scope;
    const TwoFiles world([&other](Surroundings& s) { s.storageCard = other.path; });
    WriteHost(other.path + "/picture.png", "old");
    for (const unsigned long long room : {0ull, 1ull, 2ull}) {
        tavrix::testing::SetDiskSpace(room);
        EXPECT_FALSE(DeleteAndRenameFile(u"\\Storage Card\\picture.png", Source));
        EXPECT_EQ(ERROR_DISK_FULL, GetLastError());
        EXPECT_EQ("old", ReadHost(other.path + "/picture.png"));
        EXPECT_EQ("new", ReadHost(world.SourceFile()));
        EXPECT_EQ(0, CountHidden(other.path));
    }
    tavrix::testing::SetDiskSpace(3);
    EXPECT_TRUE(DeleteAndRenameFile(u"\\Storage Card\\picture.png", Source));
}

TEST(DeleteAndRename, WhatCannotBeExchangedIsRefused)
{
    const TwoFiles world;
    std::filesystem::create_directory(world.Host("home/folder"));
    WriteHost(world.Host("program/data.bin"), "program's");
    ExpectRefused(world, Target, u"\\nothing.tmp", ERROR_FILE_NOT_FOUND, "no source");
    ExpectRefused(world, Target, u"\\gone\\made.tmp", ERROR_PATH_NOT_FOUND, "no source folder");
    ExpectRefused(world, u"\\gone\\picture.png", Source, ERROR_PATH_NOT_FOUND, "no target folder");
    ExpectRefused(world, Target, u"\\folder", ERROR_ACCESS_DENIED, "a folder as the source");
    ExpectRefused(world, u"\\folder", Source, ERROR_ACCESS_DENIED, "a folder as the target");
    ExpectRefused(world, u"\\Computer", Source, ERROR_ACCESS_DENIED, "a mount as the target");
    ExpectRefused(world, Target, u"\\Computer", ERROR_ACCESS_DENIED, "a mount as the source");
    ExpectRefused(world, u"\\Program Files", Source, ERROR_ACCESS_DENIED, "a way to a mount");
    ExpectRefused(world, u"\\", Source, ERROR_ACCESS_DENIED, "the root as the target");
    ExpectRefused(world, Target, u"\\", ERROR_ACCESS_DENIED, "the root as the source");
    ExpectRefused(world, u"\\picture.png\\", Source, ERROR_ACCESS_DENIED, "a separator behind it");
    ExpectRefused(world, Target, Target, ERROR_SHARING_VIOLATION, "the file itself");
    ExpectRefused(world, nullptr, Source, ERROR_PATH_NOT_FOUND, "no target path");
    ExpectRefused(world, Target, nullptr, ERROR_PATH_NOT_FOUND, "no source path");
    ExpectRefused(world, std::u16string(260, u'a').c_str(), Source, ERROR_PATH_NOT_FOUND, "long");
    ExpectRefused(world, Target, u"\\Program Files\\Tavrix\\data.bin", ERROR_ACCESS_DENIED,
                  "a source that only the program's folder has");
    EXPECT_EQ("program's", ReadHost(world.Host("program/data.bin")));
}

TEST(DeleteAndRename, SecondNameOfTheSameFileIsRefused)
{
    const TwoFiles world;
    std::filesystem::create_hard_link(world.TargetFile(), world.Host("home/second"));
    ExpectRefused(world, Target, u"\\second", ERROR_SHARING_VIOLATION, "a hard link");
    std::filesystem::create_symlink("picture.png", world.Host("home/third"));
    ExpectRefused(world, Target, u"\\third", ERROR_SHARING_VIOLATION, "a link to the target");
    EXPECT_TRUE(HostExists(world.Host("home/third")));
}

TEST(DeleteAndRename, WhatTheProgramsFolderHasIsReplacedInTheUsersOwn)
{
    const TwoFiles world;
    WriteHost(world.Host("program/data.bin"), "program's");
    chmod(world.Host("program/data.bin").c_str(), 0444);
    EXPECT_TRUE(DeleteAndRenameFile(u"\\Program Files\\Tavrix\\data.bin", Source));
    EXPECT_EQ("new", ReadHost(world.Host("data/tavrix/data.bin")));
    EXPECT_EQ(0644u, ModeOf(world.Host("data/tavrix/data.bin")));
    EXPECT_EQ("program's", ReadHost(world.Host("program/data.bin")));
    EXPECT_EQ("new", ReadDevice(u"\\Program Files\\Tavrix\\data.bin"));
}

TEST(DeleteAndRename, FolderOrFileThatTakesNoWritesIsRefused)
{
    const OtherFileSystem other;
    const TwoFiles world([&other](Surroundings& s) { s.storageCard = other.path; });
    WriteHost(world.Host("home/locked/a"), "old");
    WriteHost(world.Host("home/open/b"), "old");
    WriteHost(other.path + "/locked/d", "kept");
    LetAnyoneReach(world.Host("home"));
    const std::pair<std::string, mode_t> modes[] = {
        {world.Host("home/locked/a"), 0666}, {world.Host("home/locked"), 0555},
        {world.Host("home/open/b"), 0444},   {world.Host("home/open"), 0777},
        {world.Host("home"), 0777},          {other.path + "/locked", 0555},
        {other.path + "/locked/d", 0666},    {other.path, 0777}};
    for (const auto& [path, mode] : modes)
        ASSERT_EQ(0, chmod(path.c_str(), mode)) << path;
    // In a process of its own, since permissions do not hold root back.
    EXPECT_EQ(0, InChild([&] {
                  if (!BecomeOrdinary())
                      return 1;
                  ReplaceTree(world.surroundings);
                  const WCHAR* own = u"\\own.tmp";
                  if (!WriteDevice(own, "own"))
                      return 2;
                  for (const WCHAR* target : {u"\\locked\\a", u"\\locked\\new", u"\\open\\b"}) {
                      SetLastError(ERROR_SUCCESS);
                      if (DeleteAndRenameFile(target, own))
                          return 3;
                      if (GetLastError() != ERROR_ACCESS_DENIED)
                          return 4;
                  }
                  // Sources that could not go from where they are.
                  for (const WCHAR* source : {u"\\locked\\a", u"\\Storage Card\\locked\\d"})
                      if (DeleteAndRenameFile(u"\\open\\c", source) ||
                          GetLastError() != ERROR_ACCESS_DENIED)
                          return 5;
                  return DeleteAndRenameFile(u"\\open\\e", own) ? 0 : 6;
              }));
    EXPECT_EQ("old", ReadHost(world.Host("home/locked/a")));
    EXPECT_EQ("old", ReadHost(world.Host("home/open/b")));
    EXPECT_EQ("kept", ReadHost(other.path + "/locked/d"));
    EXPECT_EQ("own", ReadHost(world.Host("home/open/e")));
    EXPECT_EQ(2, CountFiles(world.Host("home/open")));
    EXPECT_EQ(1, CountFiles(world.Host("home/locked")));
}

TEST(DeleteAndRename, AmongTheSettingsWhatIsPendingGivesWayToTheNewFile)
{
    const SettingsWorld world;
    WriteHost(world.Folder() + "/made.tmp", "new");
    ASSERT_TRUE(MakeEmpty(Ini));
    EXPECT_TRUE(DeleteAndRenameFile(Ini, u"\\Application Data\\Tavrix\\made.tmp"));
    EXPECT_EQ("new", world.Text());
    EXPECT_EQ("new", ReadDevice(Ini));
    EXPECT_EQ("Tavrix.ini", Names(Everything));
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(DeleteAndRename, AmongTheSettingsAPendingSourceIsTakenAsThisProcessSeesIt)
{
    const SettingsWorld world;
    constexpr const WCHAR* fresh = u"\\Application Data\\Tavrix\\fresh.ini";
    const HANDLE file = Open(fresh, CREATE_ALWAYS);
    ASSERT_EQ(5u, Write(file, "fresh"));
    EXPECT_TRUE(DeleteAndRenameFile(Ini, fresh));
    CloseHandle(file);
    EXPECT_EQ("fresh", world.Text());
    EXPECT_EQ("Tavrix.ini", Names(Everything));
    EXPECT_EQ(0, CountHidden(world.Folder()));
}
