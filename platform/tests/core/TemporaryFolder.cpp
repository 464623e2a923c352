// The private folders: who may use them, and what is cleared when.

#include "platform/core/TemporaryFolder.h"
#include "platform/tests/core/FileWorld.h"

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

using namespace tavrix::platform;
using namespace tavrix::platform::tests;

namespace
{

/// How many names a host folder holds.
size_t Count(const std::string& folder)
{
    size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder))
        ++count;
    return count;
}

/// What a process that ended without a chance to clear up leaves behind.
std::string Abandoned(const std::string& base)
{
    std::string path;
    int pipeEnds[2] = {};
    EXPECT_EQ(0, pipe(pipeEnds));
    const pid_t child = fork();
    if (child == 0) {
        TemporaryFolder folder({base});
        WriteHost(folder.Path() + "/000001.tmp", "x");
        WriteHost(folder.Path() + "/4711.swp", "x");
        const std::string& made = folder.Path();
        _exit(write(pipeEnds[1], made.data(), made.size()) < 0);
    }
    waitpid(child, nullptr, 0);
    close(pipeEnds[1]);
    path.resize(4096);
    const ssize_t length = read(pipeEnds[0], path.data(), path.size());
    close(pipeEnds[0]);
    path.resize(length > 0 ? static_cast<size_t>(length) : 0);
    return path;
}

} // namespace

TEST(TemporaryFolder, PagingNamesAreSixDigitsWithTmpAndAnythingWithSwp)
{
    for (const char* name : {"000000.tmp", "123456.tmp", "999999.tmp", "1.swp", "a.swp"})
        EXPECT_TRUE(IsPagingName(name)) << name;
    for (const char* name : {"12345.tmp", "1234567.tmp", "12345a.tmp", "123456.tmpx", "123456",
                             "photo.tmp", "swp", "a.swp2", ""})
        EXPECT_FALSE(IsPagingName(name)) << name;
}

TEST(TemporaryFolder, FolderIsPrivateAndGoneAtTheEnd)
{
    const std::string base = tavrix::testing::FreshFolder();
    {
        const TemporaryFolder folder({base});
        ASSERT_TRUE(folder.Path().starts_with(base + "/"));
        EXPECT_EQ(std::filesystem::perms::owner_all,
                  std::filesystem::status(folder.Path()).permissions());
        WriteHost(folder.Path() + "/000001.tmp", "x");
    }
    EXPECT_EQ(0u, Count(base));
}

TEST(TemporaryFolder, NextBaseIsTakenWhereTheFirstAllowsNone)
{
    const std::string base = tavrix::testing::FreshFolder();
    const TemporaryFolder folder({base + "/absent", base});
    EXPECT_TRUE(folder.Path().starts_with(base + "/tavrix-"));
    const TemporaryFolder none({base + "/absent"});
    EXPECT_EQ("", none.Path());
}

TEST(TemporaryFolder, ProcessesOfAUserShareItAndTheLastClearsIt)
{
    const std::string base = tavrix::testing::FreshFolder();
    auto first = std::make_unique<TemporaryFolder>(std::vector<std::string>{base});
    const TemporaryFolder second({base});
    EXPECT_EQ(first->Path(), second.Path());
    WriteHost(first->Path() + "/000001.tmp", "x");
    first.reset();
    EXPECT_TRUE(HostExists(second.Path() + "/000001.tmp"));
}

TEST(TemporaryFolder, LastProcessClearsWhatAnEarlierOneLeft)
{
    const std::string base = tavrix::testing::FreshFolder();
    {
        const TemporaryFolder mine({base});
        const std::string left = Abandoned(base);
        EXPECT_EQ(mine.Path(), left);
        EXPECT_TRUE(HostExists(left + "/000001.tmp"));
    }
    EXPECT_EQ(0u, Count(base));
}

TEST(TemporaryFolder, StartClearsWhatNoLiveProcessHolds)
{
    const std::string base = tavrix::testing::FreshFolder();
    const std::string left = Abandoned(base);
    ASSERT_TRUE(HostExists(left + "/000001.tmp"));
    ASSERT_TRUE(HostExists(left + "/4711.swp"));
    const TemporaryFolder folder({base});
    EXPECT_EQ(0u, Count(folder.Path()));
}

TEST(TemporaryFolder, StartClearsNothingThatALiveProcessHolds)
{
    const std::string base = tavrix::testing::FreshFolder();
    const TemporaryFolder folder({base});
    WriteHost(folder.Path() + "/000001.tmp", "x");
    EXPECT_EQ(0, InChild([&base] {
                  const TemporaryFolder other({base});
                  return HostExists(other.Path() + "/000001.tmp") ? 0 : 1;
              }));
    EXPECT_TRUE(HostExists(folder.Path() + "/000001.tmp"));
}

TEST(TemporaryFolder, OnlyPagingFilesAreClearedAndTheFolderOnlyWhenEmpty)
{
    const std::string base = tavrix::testing::FreshFolder();
    std::string path;
    {
        const TemporaryFolder folder({base});
        path = folder.Path();
        WriteHost(path + "/000001.tmp", "x");
        WriteHost(path + "/saved.png", "picture");
        WriteHost(path + "/sub/000002.tmp", "x");
        std::filesystem::create_directory(path + "/000003.tmp");
    }
    EXPECT_FALSE(HostExists(path + "/000001.tmp"));
    EXPECT_EQ("picture", ReadHost(path + "/saved.png"));
    EXPECT_TRUE(HostExists(path + "/sub/000002.tmp"));
    EXPECT_TRUE(HostExists(path + "/000003.tmp"));
    const TemporaryFolder again({base});
    EXPECT_EQ("picture", ReadHost(path + "/saved.png"));
}

TEST(TemporaryFolder, ForkedChildDoesNotClearItsParentsFolder)
{
    const std::string base = tavrix::testing::FreshFolder();
    auto folder = std::make_unique<TemporaryFolder>(std::vector<std::string>{base});
    WriteHost(folder->Path() + "/000001.tmp", "x");
    EXPECT_EQ(0, InChild([&folder] {
                  folder.reset();
                  return 0;
              }));
    EXPECT_TRUE(HostExists(folder->Path() + "/000001.tmp"));
    // The lock is still the parent's: another process sees the folder as held.
    EXPECT_EQ(0, InChild([&base] {
                  const TemporaryFolder other({base});
                  return HostExists(other.Path() + "/000001.tmp") ? 0 : 1;
              }));
}

TEST(TemporaryFolder, NameThatSomebodyElseHoldsIsNotTrusted)
{
    const std::string base = tavrix::testing::FreshFolder();
    const std::string elsewhere = tavrix::testing::FreshFolder();
    std::filesystem::create_directory_symlink(elsewhere,
                                              base + "/tavrix-" + std::to_string(geteuid()));
    {
        const TemporaryFolder folder({base});
        EXPECT_TRUE(folder.Path().starts_with(base + "/tavrix-"));
        WriteHost(folder.Path() + "/000001.tmp", "x");
        EXPECT_EQ(0u, Count(elsewhere));
    }
    EXPECT_EQ(1u, Count(base));
}

TEST(TemporaryFolder, OpenPermissionsOfAnEarlierFolderAreClosed)
{
    const std::string base = tavrix::testing::FreshFolder();
    const std::string name = base + "/tavrix-" + std::to_string(geteuid());
    WriteHost(name + "/kept.png", "x");
    std::filesystem::permissions(name, std::filesystem::perms::all);
    const TemporaryFolder folder({base});
    EXPECT_EQ(name, folder.Path());
    EXPECT_EQ(std::filesystem::perms::owner_all, std::filesystem::status(name).permissions());
}

TEST(TemporaryFolder, FolderOfTheDeviceIsGoneWhenTheProcessEndsByExit)
{
    const FileWorld world([](Surroundings& s) {
        std::filesystem::create_directory(s.home + "/tmp");
        s.temporaryBases = {s.home + "/tmp"};
    });
    ReplaceTree(ReadSurroundings());
    ASSERT_EQ(0u, Count(world.Host("home/tmp")));
    EXPECT_EQ(7, InChild([&world] {
                  ReplaceTree(world.surroundings);
                  if (!WriteDevice(u"\\Temp\\000001.tmp", "x", CREATE_NEW))
                      return 1;
                  return Count(world.Host("home/tmp")) == 1 ? 7 : 2;
              }));
    EXPECT_EQ(0u, Count(world.Host("home/tmp")));
}

TEST(TemporaryFolder, RunFolderIsMadeOnDemandAndRemovedWithAllThatItHolds)
{
    const std::string base = tavrix::testing::FreshFolder();
    {
        RunFolder run({base});
        EXPECT_EQ(0u, Count(base));
        WriteHost(run.Path() + "/a/b/settings.ini", "x");
        EXPECT_EQ(run.Path(), run.Path());
        // A starting process leaves it alone.
        const TemporaryFolder other({base});
        EXPECT_EQ("x", ReadHost(run.Path() + "/a/b/settings.ini"));
    }
    EXPECT_EQ(0u, Count(base));
}
