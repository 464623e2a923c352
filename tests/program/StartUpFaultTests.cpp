// The whole start, run and end of the program while one thing after the other fails: every run in a
// process of its own. None may crash, hang, leak or upset a sanitizer; each ends with 0 or with the
// -1 of a start in vain; and settings from before are still there.

#include "platform/testing/core/TestHome.h"
#include "platform/testing/core/TestPaths.h"
#include "platform/testing/Faults.h"
#include "platform/testing/Thorough.h"
#include "tests/support/Apart.h"
#include "tests/support/Program.h"

#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

using namespace tavrix::testing;
namespace fs = std::filesystem;

namespace
{

constexpr size_t RunsAtOnce = 4; // they wait more than they work
constexpr int SecondsAtMost = 60;
constexpr int LeakCode = 77;

// Under the sanitizers a run takes several times as long: there every so many-th shortage of memory
// is tried. The build as users get it tries each.
#if defined(__SANITIZE_ADDRESS__)
constexpr unsigned Stride = 7;
#else
constexpr unsigned Stride = 1;
#endif

/// Leaks count as a fault of their own.
bool HasLeaks()
{
#if defined(__SANITIZE_ADDRESS__)
    return __lsan_do_recoverable_leak_check() != 0;
#else
    return false;
#endif
}

std::u16string OldSettings()
{
    std::u16string text = u"\uFEFF[Tavrix]\r\nFaceColor=16909060\r\nDefaultSCALE=33\r\n";
    text += u"[Foreign]\r\n";
    for (int i = 0; i < 40; ++i)
        text += u"key" + Wide(std::to_string(i)) + u"=value " + Wide(std::to_string(i)) + u"\r\n";
    return text;
}

std::string BytesOf(const std::u16string& text)
{
    return {reinterpret_cast<const char*>(text.data()), text.size() * 2};
}

std::string Bytes(const fs::path& path)
{
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

/// What a run leaves and what a fault did in it.
struct FaultyRun {
    unsigned number;
    FaultReach reach;
    std::string home;
    std::unique_ptr<Apart> process;

    fs::path Settings() const { return home + "/config/tavrix/Configuration Files/Tavrix.ini"; }
    bool Fired() const { return Bytes(home + "/fired") == "1"; }
};

/// Closes the window as soon as it stands there by itself.
void CALLBACK CloseWhenUp(HWND, UINT, UINT_PTR timer, DWORD)
{
    if (mainFrame == nullptr || !IsWindowVisible(mainFrame->window) ||
        !IsWindowEnabled(mainFrame->window))
        return;
    KillTimer(nullptr, timer);
    PostMessageW(mainFrame->window, WM_CLOSE, 0, 0);
}

int RunWithFault(FaultKind kind, const FaultyRun& run, std::u16string commandLine)
{
    RegisterProgramResources();
    OnModal([](HWND dialog, bool box) {
        if (box)
            EndDialog(dialog, IDOK);
    });
    SetLanguage(1033);
    SetTimer(nullptr, 0, 5, CloseWhenUp);
    ArmedFault fault(kind, run.number, run.reach);
    const int result =
        wWinMain(GetModuleHandleW(nullptr), nullptr, commandLine.data(), SW_SHOWNORMAL);
    fault.Disarm();
    std::ofstream(run.home + "/fired") << (fault.Fired() ? "1" : "0");
    return HasLeaks() ? LeakCode : result;
}

class StartUpFaults : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const std::string file = TestHome() + "/a.quick";
        std::ofstream(file) << "anything";
        picture = u"\"" + DevicePath(file) + u"\"";
    }

    /// A fresh home with a plugin and settings.
    FaultyRun Prepare(unsigned number, FaultReach reach)
    {
        FaultyRun run{number, reach, TestHome() + "/run" + std::to_string(++homes), nullptr};
        const std::string plugins = run.home + "/data/tavrix/PLUGINS/INPUT";
        fs::create_directories(plugins);
        fs::copy_file(tavrix::testing::InBuild("/tests/shell-fixtures/quick.dll"),
                      plugins + "/quick.dll");
        fs::create_directories(run.Settings().parent_path());
        std::ofstream(run.Settings(), std::ios::binary) << BytesOf(OldSettings());
        return run;
    }

    void Check(FaultyRun& run)
    {
        const ApartResult& result = run.process->Result();
        SCOPED_TRACE(::testing::Message()
                     << "fault " << run.number
                     << (run.reach == FaultReach::Once ? " alone" : " and all behind it"));
        EXPECT_FALSE(result.timedOut) << result.output;
        EXPECT_EQ(result.signal, 0) << result.output;
        EXPECT_TRUE(result.exitCode == 0 || result.exitCode == 255) << result.exitCode << '\n'
                                                                    << result.output;
        EXPECT_EQ(result.output.find("runtime error"), std::string::npos) << result.output;
        EXPECT_EQ(result.output.find("Sanitizer"), std::string::npos) << result.output;
        CheckSettings(run);
    }

    /// Whole as they were, or whole with what this run has changed.
    void CheckSettings(const FaultyRun& run)
    {
        const std::string bytes = Bytes(run.Settings());
        if (bytes == BytesOf(OldSettings()))
            return;
        std::u16string text(bytes.size() / 2, 0);
        std::copy_n(bytes.data(), text.size() * 2, reinterpret_cast<char*>(text.data()));
        EXPECT_EQ(bytes.size() % 2, 0U);
        EXPECT_EQ(text.substr(0, 1), u"\uFEFF");
        EXPECT_TRUE(text.ends_with(u"\r\n"));
        for (const char16_t* kept : {u"[Tavrix]\r\n", u"DefaultSCALE=33\r\n", u"[Foreign]\r\n",
                                     u"key0=value 0\r\n", u"key39=value 39\r\n"})
            EXPECT_NE(text.find(kept), text.npos) << Utf8(kept) << " is gone; left is\n"
                                                  << Utf8(text.c_str());
    }

    /// Faults that lie `stride` apart, of many those that NextPlace chooses, until none fires;
    /// answers the last that did.
    unsigned ForEach(FaultKind kind, FaultReach reach, unsigned stride)
    {
        std::deque<FaultyRun> runs;
        unsigned last = 0;
        bool over = false;
        for (unsigned place = 1; !over || !runs.empty();) {
            if (!over && runs.size() < RunsAtOnce) {
                runs.push_back(Prepare(1 + (place - 1) * stride, reach));
                const FaultyRun& run = runs.back();
                runs.back().process = std::make_unique<Apart>(
                    run.home, [&] { return RunWithFault(kind, run, picture); }, SecondsAtMost);
                place = NextPlace(place);
                continue;
            }
            FaultyRun& first = runs.front();
            Check(first);
            last = first.Fired() ? first.number : last;
            over = over || !first.Fired() || HasFailure();
            if (!HasFailure())
                fs::remove_all(first.home);
            runs.pop_front();
        }
        return last;
    }

    void ForEachReach(FaultKind kind)
    {
        EXPECT_GT(ForEach(kind, FaultReach::Once, 1), 0U) << "nothing was tested";
        EXPECT_GT(ForEach(kind, FaultReach::Onward, 1), 0U);
    }

    std::u16string picture;
    unsigned homes = 0;
};

} // namespace

TEST_F(StartUpFaults, EveryShortageOfMemoryAlone)
{
    EXPECT_GT(ForEach(FaultKind::Allocation, FaultReach::Once, Stride), 600U);
}

TEST_F(StartUpFaults, EveryShortageOfMemoryThatStays)
{
    EXPECT_GT(ForEach(FaultKind::Allocation, FaultReach::Onward, Stride), 600U);
}

TEST_F(StartUpFaults, EveryFileThatCannotBeMade)
{
    ForEachReach(FaultKind::Create);
}

TEST_F(StartUpFaults, EveryFileThatCannotBeOpened)
{
    ForEachReach(FaultKind::Open);
}

TEST_F(StartUpFaults, EveryReadThatFails)
{
    ForEachReach(FaultKind::Read);
}

TEST_F(StartUpFaults, EveryReadThatComesUpShort)
{
    ForEachReach(FaultKind::ShortRead);
}

TEST_F(StartUpFaults, EveryWriteThatFails)
{
    ForEachReach(FaultKind::Write);
}

TEST_F(StartUpFaults, EveryWriteThatComesUpShort)
{
    ForEachReach(FaultKind::ShortWrite);
}

TEST_F(StartUpFaults, EveryThreadThatCannotBeMade)
{
    ForEachReach(FaultKind::Thread);
}
