// Files of the settings' mount that are made always-new: what this process sees of them until they
// have taken their place, when they take it, and what stays when they do not.

#include "platform/core/Replacement.h"

#include "platform/tests/core/FileWorld.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>

using namespace tavrix::platform;
using namespace tavrix::platform::tests;

namespace
{

constexpr const WCHAR* Ini = u"\\Application Data\\Tavrix\\Tavrix.ini";
constexpr const WCHAR* Everything = u"\\Application Data\\Tavrix\\*";

/// A device whose settings folder holds one file, "old".
class SettingsWorld : public FileWorld
{
public:
    explicit SettingsWorld(const std::string& old = "old") { WriteHost(Ini(), old); }
    std::string Folder() const { return Host("config/tavrix"); }
    std::string Ini() const { return Folder() + "/Tavrix.ini"; }
    std::string Text() const { return ReadHost(Ini()); }
};

/// Makes the file always-new and closes it, as the program does before it writes.
bool MakeEmpty(const WCHAR* path)
{
    const HANDLE file = Open(path, CREATE_ALWAYS, GENERIC_WRITE);
    return file != INVALID_HANDLE_VALUE && CloseHandle(file);
}

DWORD Write(HANDLE file, const std::string& text)
{
    DWORD done = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &done, nullptr);
    return done;
}

/// Opens what is there, writes and closes.
bool WriteInto(const WCHAR* path, const std::string& text)
{
    return WriteDevice(path, text, OPEN_EXISTING);
}

struct stat StatusOf(const std::string& path)
{
    struct stat info {
    };
    EXPECT_EQ(0, stat(path.c_str(), &info)) << path;
    return info;
}

mode_t ModeOf(const std::string& path)
{
    return StatusOf(path).st_mode & 07777;
}

/// The size that a search tells; 999 when it finds nothing.
DWORD SizeFound(const WCHAR* pattern)
{
    WIN32_FIND_DATAW data{};
    const HANDLE find = FindFirstFileW(pattern, &data);
    if (find == INVALID_HANDLE_VALUE)
        return 999;
    FindClose(find);
    return data.nFileSizeLow;
}

void FailAt(FileOperation failing)
{
    tavrix::testing::SetFileFault(
        [failing](FileOperation operation, const WCHAR*, DWORD*) { return operation == failing; });
}

/// What another process of the same user reads.
std::string ReadElsewhere(const FileWorld& world, const WCHAR* path)
{
    int channel[2];
    if (pipe(channel) != 0)
        return "(no pipe)";
    const int result = InChild([&] {
        ReplaceTree(world.surroundings);
        const std::string text = ReadDevice(path);
        return write(channel[1], text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0
                                                                                                : 1;
    });
    close(channel[1]);
    std::string text(65536, '\0');
    const ssize_t length = read(channel[0], text.data(), text.size());
    close(channel[0]);
    text.resize(length > 0 ? static_cast<size_t>(length) : 0);
    return result == 0 ? text : "(child failed)";
}

} // namespace

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

// Failures.

TEST(Replacement, WriteThatComesUpShortDropsItAtTheClose)
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

TEST(Replacement, FileThatWasNotThereIsNotThereAgainWhenItsWriteFails)
{
    const SettingsWorld world;
    const tavrix::testing::Scope scope;
    FailAt(FileOperation::Write);
    EXPECT_FALSE(WriteDevice(u"\\Application Data\\Tavrix\\fresh", "text"));
    EXPECT_FALSE(Probe(u"\\Application Data\\Tavrix\\fresh"));
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(Replacement, FileThatCannotBeMadeDurableOrRenamedIsDropped)
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

TEST(Replacement, FileIsMadeDurableBeforeItIsRenamedAndTheFolderAfterwards)
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

TEST(Replacement, FailedOpeningForWritingDropsAPendingFile)
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

TEST(Replacement, FailedOpeningWhileAnotherHandleWritesDropsItAtTheLastClose)
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

TEST(Replacement, AfterAFailedMakingTheOldFileIsNotWrittenUntilOneSucceeds)
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

TEST(Replacement, FailedMakingAnewDropsWhatWasPendingAndRefusesWrites)
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

TEST(Replacement, RefusalEndsWithTheFileThatItWasFor)
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

TEST(Replacement, RefusalIsForNoOtherFileAndNoOtherMount)
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

TEST(Replacement, DiskThatATestHasFilledTakesNoReplacement)
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

TEST(Replacement, FolderThatIsGoneMeanwhileTakesTheReplacementAlong)
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

TEST(Replacement, OldFileOutlivesAnUnwrittenOneAtTheEnd)
{
    const SettingsWorld world;
    ASSERT_TRUE(MakeEmpty(Ini));
    ReplaceTree(world.surroundings);
    EXPECT_EQ("old", ReadDevice(Ini));
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(Replacement, EmptyFileThatWasNotThereAppearsAtTheEnd)
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

TEST(Replacement, FileThatIsStillBeingWrittenAtTheEndIsDropped)
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

TEST(Replacement, EndOfTheProcessIsTheEndOfItsReplacements)
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

// Permissions, links, folders.

TEST(Replacement, ItKeepsThePermissionsOfTheOldFile)
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

TEST(Replacement, NewFileHasThePermissionsOfAnyNewFile)
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

TEST(Replacement, ItKeepsTheOwnerOfTheOldFileWhereItMay)
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

TEST(Replacement, ALinkStaysALinkAndItsTargetIsReplaced)
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

TEST(Replacement, ALinkThatLeadsNowhereYetGetsItsTarget)
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

TEST(Replacement, FileAndLinkToItAreOne)
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

TEST(Replacement, DeletingAPendingLinkTakesTheLinkAndLeavesItsTarget)
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

TEST(Replacement, FileThatMayNotBeWrittenIsRefusedAndStays)
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

TEST(Replacement, FolderThatTakesNoFilesHasItsFilesWrittenInPlace)
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

TEST(Replacement, FileWhoseOwnerCannotBeKeptIsWrittenInPlace)
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

TEST(Replacement, FileThatIsAMountOfItsOwnIsWrittenInPlace)
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

TEST(Replacement, WhereTheMountCannotBeWrittenItHappensInTheFolderOfTheRun)
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

TEST(Replacement, OverAFileOfALowerLayerItStandsInTheFolderOfTheRun)
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

TEST(Replacement, NextOneInTheFolderClearsWhatAKilledProcessLeft)
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

TEST(Replacement, WhatALiveProcessHoldsIsNotCleared)
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

TEST(Replacement, NothingButItsOwnIsCleared)
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

TEST(Replacement, WhatAKilledProcessLeftKeepsNoFolderFromGoing)
{
    const SettingsWorld world;
    ASSERT_TRUE(CreateDirectoryW(u"\\Application Data\\Tavrix\\Folder", nullptr));
    WriteHost(world.Folder() + "/Folder/.tavrix-1-1.new", "x");
    EXPECT_EQ("(none)", Names(u"\\Application Data\\Tavrix\\Folder\\*"));
    EXPECT_TRUE(RemoveDirectoryW(u"\\Application Data\\Tavrix\\Folder"));
    EXPECT_FALSE(HostExists(world.Folder() + "/Folder"));
}

TEST(Replacement, TwoProcessesThatReplaceTheSameFileLeaveOneOfTheTwoWhole)
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

TEST(Replacement, NoDescriptorStaysBehind)
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
