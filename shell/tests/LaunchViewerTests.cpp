// Starting the sibling viewer: what is asked, what it gets and what is told when there is none. The
// viewer is a real program beside ours that writes down what it was given.

#include "platform/testing/Faults.h"
#include "shell/tests/FlowTesting.h"

#include <dlfcn.h>

using namespace flowtest;

namespace
{

constexpr u32 ViewerCommand = 40201;

struct Starting {
    std::u16string path;
    std::u16string commandLine;
    DWORD flags;
};

std::vector<Starting> startings;
std::vector<bool> closedAtResumption; // whether the close was on its way

std::string SeenFile()
{
    return TestHome() + "/seen";
}

/// Puts the viewer into the user's part of the program's folder.
void InstallViewer()
{
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(TestHome()) / "data" / "tavrix";
    fs::create_directories(folder);
    const fs::path viewer = folder / "Mirelook.exe";
    // Renamed at the end, so that the file is whole once it is there.
    std::ofstream(viewer) << "#!/bin/sh\nprintf '%s|' \"$#\" \"$@\" > '" << SeenFile()
                          << ".part'\nmv '" << SeenFile() << ".part' '" << SeenFile() << "'\n";
    fs::permissions(viewer, fs::perms::owner_all);
}

/// How many arguments the viewer got and which, each with a bar behind it; empty when it was not
/// started. Removes the note.
std::string Seen()
{
    if (!PumpUntil([] { return std::filesystem::exists(SeenFile()); }, 5000))
        return {};
    std::ifstream file(SeenFile());
    std::string text((std::istreambuf_iterator<char>(file)), {});
    std::filesystem::remove(SeenFile());
    return text;
}

bool IsClosePosted(const MainFrame& frame)
{
    MSG message = {};
    return PeekMessageW(&message, frame.window, WM_CLOSE, WM_CLOSE, PM_NOREMOVE) != FALSE;
}

} // namespace

// The device's own do the work; what they are asked is kept.

BOOL WINAPI CreateProcessW(LPCWSTR path, LPWSTR commandLine, LPSECURITY_ATTRIBUTES process,
                           LPSECURITY_ATTRIBUTES thread, BOOL inherit, DWORD flags, LPVOID own,
                           LPCWSTR folder, LPSTARTUPINFOW startup, LPPROCESS_INFORMATION made)
{
    startings.push_back({path, commandLine, flags});
    const auto device =
        reinterpret_cast<decltype(&CreateProcessW)>(dlsym(RTLD_NEXT, "CreateProcessW"));
    return device(path, commandLine, process, thread, inherit, flags, own, folder, startup, made);
}

DWORD WINAPI ResumeThread(HANDLE thread)
{
    MSG message = {};
    closedAtResumption.push_back(PeekMessageW(&message, nullptr, WM_CLOSE, WM_CLOSE, PM_NOREMOVE) !=
                                 FALSE);
    const auto device = reinterpret_cast<decltype(&ResumeThread)>(dlsym(RTLD_NEXT, "ResumeThread"));
    return device(thread);
}

TEST(LaunchViewer, ItIsStartedOnTheCurrentFileAndTheProgramStaysWhenTheAnswerIsNo)
{
    Scope scope;
    InstallViewer();
    RunOnPicture([](MainFrame& frame) {
        const struct {
            LANGID language;
            const char16_t* question;
            const char16_t* caption;
        } rows[] = {
            {1033, u"Do you want to close Tavrix before execute Mirelook?", u"Question"},
            {1041, u"Mirelookを起動する前にTavrixを終了させますか？", u"確認"},
        };
        for (const auto& row : rows) {
            SetLanguage(row.language);
            Answering answering(IDNO);
            answering.onBox = [] {
                EXPECT_FALSE(std::filesystem::exists(SeenFile())) << "asked first";
            };
            Send(frame, ViewerCommand);
            ExpectOneBox(frame, answering, row.question, row.caption, 36);
            EXPECT_FALSE(IsClosePosted(frame));
            EXPECT_EQ(Seen(), "1|" + TestHome() + "/picture.png|");
        }
    });
}

TEST(LaunchViewer, YesClosesTheProgramThatTheViewerOutlives)
{
    InstallViewer();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering(IDYES);
        Send(frame, ViewerCommand);
        // Posted: the flow has ended, and the window is still there.
        EXPECT_TRUE(IsClosePosted(frame));
        EXPECT_EQ(frame.handOvers.closed, 0u);
    });
    EXPECT_EQ(Seen(), "1|" + TestHome() + "/picture.png|");
}

TEST(LaunchViewer, ItSleepsUntilTheCloseIsOnItsWay)
{
    InstallViewer();
    RunOnPicture([](MainFrame& frame) {
        for (const int answer : {IDNO, IDYES}) {
            const Answering answering(answer);
            Send(frame, ViewerCommand);
        }
        ASSERT_EQ(startings.size(), 2u);
        for (const Starting& starting : startings) {
            EXPECT_TRUE(starting.path.ends_with(u"\\Mirelook.exe")) << Utf8(starting.path.c_str());
            EXPECT_EQ(starting.commandLine, frame.openedPath);
            EXPECT_EQ(starting.flags, 4u);
        }
        EXPECT_EQ(closedAtResumption, (std::vector<bool>{false, true}));
    });
}

TEST(LaunchViewer, WithoutAFileItIsStartedAlone)
{
    InstallViewer();
    InstallFixture("quick", "INPUT");
    RunProgram(u"", [](MainFrame& frame) {
        const Answering answering(IDNO);
        Send(frame, ViewerCommand);
        EXPECT_EQ(Seen(), "0|");
    });
}

TEST(LaunchViewer, AMissingViewerIsToldInBothLanguagesAndNothingCloses)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        for (const LANGID language : {1033, 1041}) {
            SetLanguage(language);
            const Answering answering(IDYES);
            Send(frame, ViewerCommand);
            const std::vector<BoxCall> boxes = answering.Boxes();
            ASSERT_EQ(boxes.size(), 2u);
            EXPECT_EQ(boxes[1].text, language == 1041 ? u"Mirelookの起動に失敗しました。"
                                                      : u"Failed to execute Mirelook.");
            EXPECT_EQ(boxes[1].caption, language == 1041 ? u"エラー" : u"ERROR");
            EXPECT_EQ(boxes[1].flags, 16u);
            EXPECT_EQ(boxes[1].owner, frame.window);
            EXPECT_FALSE(IsClosePosted(frame));
        }
    });
}

TEST(LaunchViewer, WithoutMemoryForThePathItBeepsAndAsksNothing)
{
    Scope scope;
    InstallViewer();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering(IDYES);
        const unsigned beeps = Beeps();
        bool fired = false;
        // 1024 characters.
        SetAllocationFault([&](SIZE_T size) {
            const bool fires = !fired && size == 2048;
            fired = fired || fires;
            return fires;
        });
        Send(frame, ViewerCommand);
        SetAllocationFault(nullptr);
        EXPECT_TRUE(fired);
        EXPECT_EQ(Beeps(), beeps + 1);
        EXPECT_TRUE(answering.Boxes().empty());
        EXPECT_FALSE(IsClosePosted(frame));
    });
}
