// Host paths and device paths, and what the environment says about folders.

#include "platform/core/HostPaths.h"
#include "platform/tests/core/FileWorld.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>
#include <pwd.h>

using namespace tavrix::platform;
using namespace tavrix::platform::tests;

namespace
{

/// The device path of a host path, or a word for why there is none.
std::string DeviceText(const std::string& host)
{
    std::u16string path;
    switch (DevicePathOf(host, &path)) {
    case HostPathResult::Done:
        return tavrix::testing::Utf8(path.c_str());
    case HostPathResult::TooLong:
        return "(too long)";
    default:
        return "(no name)";
    }
}

/// Gives a variable another value, or none, until the end of the scope.
class Variable
{
public:
    Variable(const char* variable, const char* value) : name(variable)
    {
        if (const char* before = std::getenv(name))
            saved = before;
        Set(value);
    }
    ~Variable() { Set(saved ? saved->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    void Set(const char* value) const
    {
        if (value != nullptr)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    const char* name;
    std::optional<std::string> saved;
};

} // namespace

TEST(HostPaths, ProgramHasAFixedPath)
{
    EXPECT_EQ(u"\\Program Files\\Tavrix\\Tavrix.exe", std::u16string(ProgramPath));
}

TEST(HostPaths, LongestHostFolderWins)
{
    const FileWorld world;
    EXPECT_EQ("\\a.png", DeviceText(world.Host("home/a.png")));
    EXPECT_EQ("\\My Documents\\b c.png", DeviceText(world.Host("home/Dokumente/b c.png")));
    EXPECT_EQ("\\Application Data\\Tavrix\\x", DeviceText(world.Host("config/tavrix/x")));
    EXPECT_EQ("\\Program Files\\Tavrix\\x", DeviceText(world.Host("data/tavrix/x")));
    EXPECT_EQ("\\Storage Card\\Temp\\x", DeviceText(world.Host("card/Temp/x")));
    EXPECT_EQ("\\Computer\\etc\\hostname", DeviceText("/etc/hostname"));
    EXPECT_EQ("\\Computer", DeviceText("/"));
    EXPECT_EQ("\\", DeviceText(world.Host("home")));
    // A folder whose name only begins like a mount's is another folder.
    EXPECT_EQ("\\Dokumente2\\x", DeviceText(world.Host("home/Dokumente2/x")));
}

TEST(HostPaths, DevicePathLeadsBackToTheSameFile)
{
    const FileWorld world;
    for (const char* name : {"home/a", "home/Dokumente/b", "card/c", "program/d", "data/tavrix/e",
                             "config/tavrix/f", "other/g", "home/Computer/h", "home/Temp/i",
                             "home/Temp/000001.tmp", "home/My Documents/j"}) {
        WriteHost(world.Host(name), name);
        std::u16string path;
        ASSERT_EQ(HostPathResult::Done, DevicePathOf(world.Host(name), &path)) << name;
        EXPECT_EQ(name, ReadDevice(path.c_str())) << tavrix::testing::Utf8(path.c_str());
    }
}

TEST(HostPaths, FileThatTheUsersLayerHidesIsReachedAnotherWay)
{
    const FileWorld world;
    WriteHost(world.Host("program/a.txt"), "lower");
    EXPECT_EQ("\\Program Files\\Tavrix\\a.txt", DeviceText(world.Host("program/a.txt")));
    WriteHost(world.Host("data/tavrix/a.txt"), "upper");
    std::string expected = "\\Computer" + world.Host("program/a.txt");
    std::replace(expected.begin(), expected.end(), '/', '\\');
    EXPECT_EQ(expected, DeviceText(world.Host("program/a.txt")));
}

TEST(HostPaths, RelativePathCountsFromTheCurrentFolder)
{
    const FileWorld world;
    WriteHost(world.Host("home/sub/a.png"), "x");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(world.Host("home/sub"));
    EXPECT_EQ("\\sub\\a.png", DeviceText("a.png"));
    EXPECT_EQ("\\sub\\a.png", DeviceText("./a.png"));
    EXPECT_EQ("\\b.png", DeviceText("../b.png"));
    EXPECT_EQ("\\sub\\-dash", DeviceText("-dash"));
    std::filesystem::current_path(before);
}

TEST(HostPaths, UpwardPartsFollowTheHostsLinks)
{
    const FileWorld world;
    WriteHost(world.Host("home/real/deep/x"), "");
    WriteHost(world.Host("home/real/a.png"), "x");
    std::filesystem::create_directory_symlink(world.Host("home/real/deep"),
                                              world.Host("home/link"));
    EXPECT_EQ("\\real\\a.png", DeviceText(world.Host("home/link/../a.png")));
    EXPECT_EQ("\\link\\x", DeviceText(world.Host("home/link/x")));
    EXPECT_EQ("\\Computer", DeviceText("/../.."));
}

TEST(HostPaths, HomeBehindALinkIsStillTheHome)
{
    const FileWorld world;
    WriteHost(world.Host("home/a.png"), "x");
    std::filesystem::create_directory_symlink(world.Host("home"), world.Host("alias"));
    Surroundings surroundings = world.surroundings;
    surroundings.home = world.Host("alias");
    ReplaceTree(surroundings);
    EXPECT_EQ("\\a.png", DeviceText(world.Host("alias/a.png")));
    EXPECT_EQ("\\a.png", DeviceText(world.Host("home/a.png")));
}

TEST(HostPaths, PathOfMoreThan259CharactersIsRefused)
{
    const FileWorld world;
    // "\" and the name: 258 units of one name would pass, but the host allows 255 bytes a name.
    const std::string folder = world.Host("home/") + std::string(100, 'a') + "/";
    EXPECT_EQ(259u, DeviceText(folder + std::string(157, 'b')).size());
    EXPECT_EQ("(too long)", DeviceText(folder + std::string(158, 'b')));
}

TEST(HostPaths, CharactersAreCountedAndNotBytes)
{
    const FileWorld world;
    std::string name;
    for (int i = 0; i < 80; ++i)
        name += "絵"; // 3 bytes, one character
    EXPECT_EQ("\\" + name + "\\" + name + "\\" + name,
              DeviceText(world.Host("home/") + name + "/" + name + "/" + name));
}

TEST(HostPaths, NameWithoutADeviceFormIsRefused)
{
    const FileWorld world;
    EXPECT_EQ("(no name)", DeviceText(""));
    EXPECT_EQ("(no name)", DeviceText(world.Host("home/back\\slash")));
    EXPECT_EQ("(no name)", DeviceText(world.Host("home/latin\xE9")));
}

TEST(HostPaths, HostPathOfAMissingFileIsWhereItWouldBeWrittenAndMakesNothing)
{
    const FileWorld world;
    EXPECT_EQ(world.Host("config/tavrix/Configuration Files/Tavrix.ini"),
              HostPathOf(u"\\Application Data\\Tavrix\\Configuration Files\\Tavrix.ini"));
    EXPECT_FALSE(HostExists(world.Host("config")));
    EXPECT_EQ("", HostPathOf(nullptr));
    EXPECT_EQ("", HostPathOf(u""));
}

// The environment.

TEST(HostPaths, RelativeXdgVariablesCountAsUnset)
{
    const Variable home("HOME", "/home/someone");
    const Variable data("XDG_DATA_HOME", "relative/data");
    const Variable config("XDG_CONFIG_HOME", "");
    const Surroundings found = ReadSurroundings();
    EXPECT_EQ("/home/someone/.local/share", found.data);
    EXPECT_EQ("/home/someone/.config", found.config);
    EXPECT_EQ("/home/someone/Documents", found.documents);
}

TEST(HostPaths, AbsoluteXdgVariablesHold)
{
    const Variable data("XDG_DATA_HOME", "/srv/data/");
    const Variable config("XDG_CONFIG_HOME", "/srv/config");
    EXPECT_EQ("/srv/data", ReadSurroundings().data);
    EXPECT_EQ("/srv/config", ReadSurroundings().config);
}

TEST(HostPaths, MissingHomeComesFromThePasswordDatabase)
{
    const passwd* entry = getpwuid(getuid());
    ASSERT_NE(nullptr, entry);
    const std::string expected = WithoutTrailingSlash(entry->pw_dir);
    for (const char* value : {static_cast<const char*>(nullptr), "", "relative"}) {
        const Variable home("HOME", value);
        EXPECT_EQ(expected, ReadSurroundings().home);
    }
}

TEST(HostPaths, TemporaryFolderLiesUnderTmpdirElseUnderVarTmp)
{
    {
        const Variable temporary("TMPDIR", "/srv/fast/");
        EXPECT_EQ("/srv/fast", ReadSurroundings().temporaryBases.front());
    }
    for (const char* value : {static_cast<const char*>(nullptr), "", "relative"}) {
        const Variable temporary("TMPDIR", value);
        EXPECT_EQ("/var/tmp", ReadSurroundings().temporaryBases.front());
    }
}

TEST(HostPaths, StorageCardComesFromItsVariable)
{
    EXPECT_FALSE(ReadSurroundings().hasStorageCard);
    const Variable card("TAVRIX_STORAGE_CARD", "/media/card/");
    EXPECT_TRUE(ReadSurroundings().hasStorageCard);
    EXPECT_EQ("/media/card", ReadSurroundings().storageCard);
    const Variable relative("TAVRIX_STORAGE_CARD", "card");
    EXPECT_EQ((std::filesystem::current_path() / "card").string(), ReadSurroundings().storageCard);
}

TEST(HostPaths, ProgramFolderIsThatOfTheRunningFile)
{
    EXPECT_EQ(std::filesystem::read_symlink("/proc/self/exe").parent_path().string(),
              ReadSurroundings().programFolder);
}

TEST(HostPaths, DocumentsFolderIsReadFromTheUsersFolders)
{
    EXPECT_EQ("/home/u/Dokumente", DocumentsFrom("# comment\nXDG_MUSIC_DIR=\"$HOME/Music\"\n"
                                                 "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n",
                                                 "/home/u"));
    EXPECT_EQ("/srv/my \"docs\"",
              DocumentsFrom("  XDG_DOCUMENTS_DIR=\"/srv/my \\\"docs\\\"\"", "/home/u"));
    EXPECT_EQ("/home/u", DocumentsFrom("XDG_DOCUMENTS_DIR=\"$HOME/\"", "/home/u"));
    EXPECT_EQ("/b", DocumentsFrom("XDG_DOCUMENTS_DIR=\"/a\"\nXDG_DOCUMENTS_DIR=\"/b\"\n", "/h"));
    for (const char* bad : {"", "XDG_DOCUMENTS_DIR=\"relative\"", "XDG_DOCUMENTS_DIR=\"/open",
                            "#XDG_DOCUMENTS_DIR=\"/a\"", "XDG_DOCUMENTS_DIR=\"$HOMELESS/a\""})
        EXPECT_EQ("", DocumentsFrom(bad, "/home/u")) << bad;
    const std::string config = tavrix::testing::FreshFolder();
    WriteHost(config + "/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"/srv/papers\"\n");
    const Variable variable("XDG_CONFIG_HOME", config.c_str());
    EXPECT_EQ("/srv/papers", ReadSurroundings().documents);
}
