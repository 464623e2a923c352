// Settings across what breaks a save: a process killed at any of its steps, a full disk, and each
// failure of the files in turn. Always the whole old settings or the whole new ones are there.
#include "SettingsText.h"

#include "platform/testing/Faults.h"
#include "platform/tests/core/FileWorld.h"
#include "settings/SettingsFile.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstddef>
#include <random>
#include <string>
#include <sys/statvfs.h>

namespace
{

using namespace tavrix::platform;
using namespace tavrix::platform::tests;
using tavrix::testing::FaultKind;
using tavrix::testing::ForEveryFault;
using tavrix::testing::Scope;
using tavrix::testing::SetFileFault;

constexpr const WCHAR* Path = u"\\Application Data\\Tavrix\\Configuration Files\\Tavrix.ini";
constexpr size_t BlockBytes = 32768; // what a save writes at a time

// Settings of `keys` keys with values of `length` characters. Old ones are longer than new ones, so
// that what is written over them in place would show.
struct Settings {
    WCHAR letter;
    u32 keys;
    u32 length;
    std::u16string Name(u32 key) const
    {
        return u"key" + std::u16string(1, static_cast<WCHAR>(u'A' + key));
    }
    std::u16string Value() const { return std::u16string(length, letter); }
    std::string File() const
    {
        std::u16string text = u"[Tavrix]\r\n";
        for (u32 i = 0; i < keys; ++i)
            text += Name(i) + u"=" + Value() + u"\r\n";
        return FileOf(text + u"\r\n");
    }
};

const Settings Old{u'o', 10, 8000}; // five blocks
const Settings New{u'n', 10, 5000}; // four

// Loads what is there and changes every value.
void Fill(SettingsFile* store, const Settings& settings)
{
    (void)store->Load(Path);
    for (u32 i = 0; i < settings.keys; ++i)
        (void)store->SetText(u"Tavrix", settings.Name(i).c_str(), settings.Value().c_str());
}

// Loads, changes every value and saves, as a run of the program does.
void ChangeTo(const Settings& settings, const std::function<void()>& beforeTheSave = {})
{
    SettingsFile store;
    Fill(&store, settings);
    if (beforeTheSave)
        beforeTheSave();
    (void)store.Save(nullptr);
    (void)store.Close(0);
}

// What the next start finds: "old", "new", "nothing", or what is wrong.
std::string Loaded()
{
    SettingsFile store;
    if (store.Load(Path) != 1)
        return "no load";
    const WCHAR* text = nullptr;
    if (store.GetText(u"Tavrix", Old.Name(0).c_str(), &text) < 1) {
        (void)store.Close(0);
        return "nothing";
    }
    const Settings& found = text[0] == Old.letter ? Old : New;
    bool isWhole = true;
    for (u32 i = 0; i < found.keys; ++i)
        isWhole = isWhole && store.GetText(u"Tavrix", found.Name(i).c_str(), &text) >= 1 &&
                  found.Value() == text;
    (void)store.Close(0);
    return !isWhole ? "a mixture" : &found == &Old ? "old" : "new";
}

// A device whose settings folder holds the old settings.
class CrashWorld : public FileWorld
{
public:
    CrashWorld() { BeOld(); }
    void BeOld() const { WriteHost(Ini(), Old.File()); }
    void BeNothing() const { std::filesystem::remove(Ini()); }
    std::string Folder() const { return Host("config/tavrix/Configuration Files"); }
    std::string Ini() const { return Folder() + "/Tavrix.ini"; }
    // The bytes on the host, which tell more than what loads.
    std::string Stands() const
    {
        if (!HostExists(Ini()))
            return "nothing";
        const std::string bytes = ReadHost(Ini());
        return bytes == Old.File() ? "old" : bytes == New.File() ? "new" : "a mixture";
    }
};

// Runs `save` in a process of its own, which kills itself when it comes to the n-th step (from 1)
// of the files after it called what it is given. Answers the letter of that step; 0 when the save
// came to its end before.
char KilledAtStep(const CrashWorld& world, unsigned step,
                  const std::function<void(const std::function<void()>& arm)>& save)
{
    int channel[2];
    if (pipe(channel) != 0)
        std::abort();
    const int result = InChild([&] {
        ReplaceTree(world.surroundings);
        unsigned seen = 0;
        save([&] {
            SetFileFault([&](FileOperation operation, const WCHAR*, DWORD*) {
                if (++seen == step) {
                    const char letter = "COrWsRf"[static_cast<int>(operation)];
                    if (write(channel[1], &letter, 1) == 1)
                        kill(getpid(), SIGKILL);
                }
                return false;
            });
        });
        return 0;
    });
    close(channel[1]);
    char letter = 0;
    const bool told = read(channel[0], &letter, 1) == 1;
    close(channel[0]);
    EXPECT_EQ(told ? -SIGKILL : 0, result);
    return letter;
}

std::ptrdiff_t CountThreads()
{
    const std::filesystem::directory_iterator all("/proc/self/task");
    return std::distance(begin(all), end(all));
}

// Where the program runs in an emulator, that one has a thread of its own.
const std::ptrdiff_t ThreadsAtTheStart = CountThreads();

// A fork takes along one thread alone; the locks of others would stay as they are.
testing::AssertionResult HasOneThread()
{
    const std::ptrdiff_t started = CountThreads() - ThreadsAtTheStart;
    return started == 0 ? testing::AssertionSuccess()
                        : testing::AssertionFailure() << started << " more: no test may fork";
}

} // namespace

TEST(SettingsCrash, FilesOfTheseTestsAreSeveralBlocksLong)
{
    // The mark, the section's line, ten lines of name, "=", value and line end, the empty line.
    EXPECT_EQ(2u + 20 + 10 * (8 + 2 + 16000 + 4) + 4, Old.File().size());
    EXPECT_EQ(2u + 20 + 10 * (8 + 2 + 10000 + 4) + 4, New.File().size());
    EXPECT_GT(Old.File().size(), 4 * BlockBytes);
    EXPECT_GT(New.File().size(), 3 * BlockBytes);
    EXPECT_LT(New.File().size(), 4 * BlockBytes);
}

TEST(SettingsCrash, KilledAtAnyStepOfASaveTheOldOrTheNewSettingsAreWhole)
{
    ASSERT_TRUE(HasOneThread());
    const CrashWorld world;
    std::string steps;
    for (unsigned step = 1; !HasFailure(); ++step) {
        world.BeOld();
        const char letter = KilledAtStep(world, step, [](const auto& arm) { ChangeTo(New, arm); });
        if (letter == 0)
            break;
        SCOPED_TRACE(testing::Message() << "killed at step " << step << ", " << letter);
        steps += letter;
        const char* expected = letter == 'f' ? "new" : "old";
        EXPECT_EQ(expected, world.Stands());
        EXPECT_EQ(expected, Loaded());
        // A hidden file stays from its making to its renaming, and the next save clears it.
        EXPECT_EQ(letter == 'C' || letter == 'f' ? 0 : 1, CountHidden(world.Folder()));
        ChangeTo(New);
        EXPECT_EQ("new", world.Stands());
        EXPECT_EQ(0, CountHidden(world.Folder()));
    }
    // Make, open, four blocks, make durable, rename, make the name durable.
    EXPECT_EQ("COWWWWsRf", steps);
    EXPECT_EQ("new", world.Stands()) << "the save that nothing stops";
}

TEST(SettingsCrash, KilledAtAnyStepOfTheFirstSaveNothingOrAllIsThere)
{
    ASSERT_TRUE(HasOneThread());
    const CrashWorld world;
    // Settings that move here from an older place: half of them here, or an empty file, would hide
    // the old ones from the next start.
    WriteHost(world.Host("home/old.ini"), New.File());
    std::string steps;
    for (unsigned step = 1; !HasFailure(); ++step) {
        world.BeNothing();
        const char letter = KilledAtStep(world, step, [](const auto& arm) {
            SettingsFile store;
            (void)store.Load(u"\\old.ini");
            arm();
            (void)store.Save(Path);
            tavrix::testing::Reset();
            (void)store.Close(0);
        });
        if (letter == 0)
            break;
        steps += letter;
        EXPECT_EQ(letter == 'f' ? "new" : "nothing", world.Stands()) << letter;
    }
    EXPECT_EQ("COWWWWsRf", steps);
    EXPECT_EQ("new", world.Stands());
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(SettingsCrash, KilledAtAnyMomentTheOldOrTheNewSettingsAreWhole)
{
    ASSERT_TRUE(HasOneThread());
    const CrashWorld world;
    std::mt19937 random(20090401);
    std::uniform_int_distribution<useconds_t> moments(0, 40000);
    int leftovers = 0;
    for (int round = 0; round < 60 && !HasFailure(); ++round) {
        int channel[2];
        ASSERT_EQ(0, pipe(channel));
        const pid_t child = fork();
        if (child == 0) {
            ReplaceTree(world.surroundings);
            SettingsFile stores[2];
            Fill(&stores[0], Old);
            Fill(&stores[1], New);
            for (int save = 0;; ++save) {
                (void)stores[save % 2].Save(nullptr);
                if (save == 0 && write(channel[1], "+", 1) != 1)
                    _exit(1);
            }
        }
        close(channel[1]);
        char told = 0;
        EXPECT_EQ(1, read(channel[0], &told, 1));
        close(channel[0]);
        usleep(moments(random));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        SCOPED_TRACE(testing::Message() << "round " << round);
        const std::string stands = world.Stands();
        EXPECT_TRUE(stands == "old" || stands == "new") << stands;
        EXPECT_EQ(stands, Loaded());
        leftovers += CountHidden(world.Folder());
        EXPECT_LE(CountHidden(world.Folder()), 1) << "each run clears what the last one left";
    }
    EXPECT_GT(leftovers, 10) << "hardly any save was under way when it was killed";
    ChangeTo(New);
    EXPECT_EQ("new", world.Stands());
    EXPECT_EQ(0, CountHidden(world.Folder()));
}

TEST(SettingsCrash, EveryFaultOfTheFilesLeavesTheOldOrTheNewSettingsWhole)
{
    const CrashWorld world;
    const struct {
        FaultKind kind;
        unsigned faults;
    } kinds[] = {{FaultKind::Create, 2},      // that of Load, which is refused anyway, and of Save
                 {FaultKind::Open, 2},        // for Load and for Save
                 {FaultKind::Write, 4},       // four blocks
                 {FaultKind::ShortWrite, 4}}; // each one byte short
    for (const auto& each : kinds) {
        SCOPED_TRACE(testing::Message() << "kind " << static_cast<int>(each.kind));
        const unsigned fired = ForEveryFault(
            each.kind,
            [&] {
                world.BeOld();
                ChangeTo(New);
            },
            [&](bool fault) {
                const std::string stands = world.Stands();
                if (each.kind == FaultKind::Create && stands == "new")
                    fault = false; // the one of Load changes nothing
                EXPECT_EQ(fault ? "old" : "new", stands);
                EXPECT_EQ(stands, Loaded()) << "in the same process too";
                EXPECT_EQ(0, CountHidden(world.Folder()));
                ChangeTo(New);
                EXPECT_EQ("new", world.Stands()) << "the next save works";
            });
        EXPECT_EQ(each.faults, fired);
    }
}

TEST(SettingsCrash, EveryShortageOfMemoryInASaveLeavesTheOldOrTheNewSettingsWhole)
{
    const CrashWorld world;
    world.BeOld();
    SettingsFile store;
    Fill(&store, New);
    ForEveryFault(
        FaultKind::Allocation,
        [&] {
            world.BeOld();
            (void)store.Save(nullptr);
        },
        [&](bool fired) {
            const std::string stands = world.Stands();
            EXPECT_TRUE(stands == "new" || (fired && stands == "old")) << stands;
            EXPECT_EQ(0, CountHidden(world.Folder()));
        });
}

TEST(SettingsCrash, ThoseWhoReadTheSettingsMeanwhileKeepTheOldOnes)
{
    ASSERT_TRUE(HasOneThread());
    const CrashWorld world;
    int ready[2];
    int saved[2];
    ASSERT_EQ(0, pipe(ready));
    ASSERT_EQ(0, pipe(saved));
    const pid_t reader = fork();
    if (reader == 0) {
        ReplaceTree(world.surroundings);
        const HANDLE file = Open(Path, OPEN_EXISTING, GENERIC_READ);
        std::string text(Old.File().size() + 1, '\0');
        DWORD first = 0;
        DWORD second = 0;
        char byte = 0;
        // Half before the save and half behind it.
        if (!ReadFile(file, text.data(), 1000, &first, nullptr) || write(ready[1], "+", 1) != 1 ||
            read(saved[0], &byte, 1) != 1 ||
            !ReadFile(file, text.data() + 1000, static_cast<DWORD>(text.size()) - 1000, &second,
                      nullptr))
            _exit(1);
        text.resize(first + second);
        _exit(text == Old.File() ? 0 : 2);
    }
    char byte = 0;
    ASSERT_EQ(1, read(ready[0], &byte, 1));
    ChangeTo(New);
    ASSERT_EQ(1, write(saved[1], "+", 1));
    int status = -1;
    waitpid(reader, &status, 0);
    EXPECT_EQ(0, status);
    EXPECT_EQ("new", world.Stands());
    for (const int end : {ready[0], ready[1], saved[0], saved[1]})
        close(end);
}

// A real full disk.

namespace
{

constexpr const char* NoMounts =
    "this host lets no test mount a small disk in a name space of its own";

// Runs a test in a process that has a small disk for its settings; tells what went wrong.
std::string OnASmallDisk(const CrashWorld& world, const char* options,
                         const std::function<std::string()>& body)
{
    int channel[2];
    if (pipe(channel) != 0)
        return "no pipe";
    const int result = InChild([&] {
        std::string wrong = NoMounts;
        if (EnterMountSpace() && mount("none", world.Host("config").c_str(), "tmpfs",
                                       MS_NOSUID | MS_NODEV, options) == 0) {
            ReplaceTree(world.surroundings);
            std::filesystem::create_directories(world.Folder());
            wrong = body();
        }
        return write(channel[1], wrong.data(), wrong.size()) == static_cast<ssize_t>(wrong.size())
                   ? 0
                   : 1;
    });
    close(channel[1]);
    std::string wrong(4096, '\0');
    const ssize_t length = read(channel[0], wrong.data(), wrong.size());
    close(channel[0]);
    wrong.resize(length > 0 ? static_cast<size_t>(length) : 0);
    return result == 0 ? wrong : "the process ended with " + std::to_string(result);
}

// What is left on the small disk.
size_t RoomIn(const std::string& folder)
{
    struct statvfs info {
    };
    return statvfs(folder.c_str(), &info) == 0 ? info.f_bfree * info.f_bsize : 0;
}

// Takes all of the disk but `room` bytes with another file.
void FillDisk(const std::string& folder, size_t room)
{
    std::filesystem::remove(folder + "/filler");
    const size_t free = RoomIn(folder);
    if (free > room)
        WriteHost(folder + "/filler", std::string(free - room, 'f'));
}

std::string Text(const char* what, size_t room, const std::string& state)
{
    return std::string(what) + " with " + std::to_string(room) + " bytes left: " + state + "\n";
}

} // namespace

TEST(SettingsCrash, SaveOnAFullDiskLeavesTheOldSettingsAndTheNextOneWithRoomWorks)
{
    ASSERT_TRUE(HasOneThread());
    const CrashWorld world;
    // The old file, room for the new one, and some.
    const std::string wrong = OnASmallDisk(world, "size=512k", [&] {
        std::string found;
        const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t needed = (New.File().size() + page - 1) / page * page;
        int failed = 0;
        int succeeded = 0;
        for (size_t room = 0; room <= needed + 2 * page; room += page) {
            std::filesystem::remove(world.Folder() + "/filler");
            world.BeOld();
            FillDisk(world.Folder(), room);
            if (RoomIn(world.Folder()) != room)
                found += Text("could not fill the disk", room, "");
            ChangeTo(New);
            const char* expected = room < needed ? "old" : "new";
            (room < needed ? failed : succeeded) += 1;
            if (world.Stands() != expected)
                found += Text("on the disk", room, world.Stands());
            if (Loaded() != expected)
                found += Text("loaded", room, Loaded());
            if (CountHidden(world.Folder()) != 0)
                found += Text("left behind", room, "a hidden file");
            std::filesystem::remove(world.Folder() + "/filler");
            ChangeTo(New);
            if (world.Stands() != "new")
                found += Text("saved again", room, world.Stands());
        }
        if (failed < 4 || succeeded < 3)
            found += "the disk was never full or never had room\n";
        return found;
    });
    EXPECT_EQ("", wrong);
}

TEST(SettingsCrash, SaveOnADiskThatTakesNoMoreFilesLeavesTheOldSettings)
{
    ASSERT_TRUE(HasOneThread());
    const CrashWorld world;
    const std::string wrong = OnASmallDisk(world, "size=512k,nr_inodes=16", [&] {
        world.BeOld();
        int fillers = 0;
        const auto name = [&](int i) { return world.Folder() + "/f" + std::to_string(i); };
        while (std::ofstream(name(fillers)).is_open())
            ++fillers;
        if (fillers == 0 || fillers > 16)
            return std::string("the disk did not fill up");
        ChangeTo(New);
        if (world.Stands() != "old" || Loaded() != "old")
            return "on the full disk: " + world.Stands() + ", loaded: " + Loaded();
        std::filesystem::remove(name(0));
        ChangeTo(New);
        return world.Stands() == "new" ? std::string() : "with room again: " + world.Stands();
    });
    EXPECT_EQ("", wrong);
}

TEST(SettingsCrash, FullDiskTakesNoSettingsThatWereOnlyJustMade)
{
    ASSERT_TRUE(HasOneThread());
    const CrashWorld world;
    const std::string wrong = OnASmallDisk(world, "size=64k", [&] {
        // Nothing stands there, so Load makes an empty file.
        FillDisk(world.Folder(), 0);
        ChangeTo(New);
        if (ReadHost(world.Ini()) != "" || !HostExists(world.Ini()))
            return "instead of an empty file: " + world.Stands();
        return CountHidden(world.Folder()) == 0 ? std::string() : "a hidden file is left";
    });
    EXPECT_EQ("", wrong);
}
