// What reaches the program from outside while a dialog of its own is open: nothing of it does
// anything, and a termination signal waits until the dialog has ended.

#include "platform/testing/core/TestHome.h"
#include "resources/Ids.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"
#include "view/tests/ToolWindowTesting.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QUrl>
#include <QWheelEvent>
#include <QWindow>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/testing/core/TestPaths.h"

using namespace toolwindowtest;

namespace
{

constexpr int Width = 300;
constexpr int Height = 200;

QWindow* Host()
{
    for (QWindow* window : QGuiApplication::topLevelWindows())
        if (window->isVisible() && window->parent() == nullptr)
            return window;
    return nullptr;
}

void DropFile(const std::string& file)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(file))});
    QDragEnterEvent enter({300, 300}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(Host(), &enter);
    QDropEvent drop({300, 300}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(Host(), &drop);
}

void TurnWheel(QPoint at)
{
    QWheelEvent event(at, Host()->mapToGlobal(at), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(Host(), &event);
}

/// Beside every dialog, in the picture once that lies at the view's lower left.
constexpr POINT BesideDialogs = {30, 440};

/// All that a person and a desktop can do to the main window. `other` is a picture's file.
void Disturb(MainFrame& frame, const std::string& other)
{
    EXPECT_FALSE(Host()->close());
    DropFile(other);
    TypeKey('A', MK_CONTROL);
    const POINT toolbox = CornerOf(frame.toolbox);
    ClickScreen(toolbox.x + 30, toolbox.y + 20);
    const POINT colorbox = CornerOf(frame.colorbox);
    ClickScreen(colorbox.x + 30, colorbox.y + 20);
    TurnWheel({BesideDialogs.x, BesideDialogs.y});
    ClickScreen(BesideDialogs.x, BesideDialogs.y);
    Pump(100);
}

/// What the disturbances would change: the picture's place in the view and more, and, where no job
/// has it in hand, the picture and its path.
struct State {
    State(MainFrame& frame, bool withPicture)
        : scrollX(frame.scrollX), scrollY(frame.scrollY), selected(frame.selectionActive),
          closed(frame.handOvers.closed)
    {
        if (!withPicture)
            return;
        path = frame.openedPath;
        for (i32 y = 0; y < Height; ++y)
            for (i32 x = 0; x < Width; ++x) {
                u32 color = 0;
                (void)frame.image->GetPixel(x, y, &color);
                pixels.push_back(color);
            }
    }
    bool operator==(const State&) const = default;

    std::u16string path;
    f64 scrollX;
    f64 scrollY;
    u32 selected;
    u32 closed;
    std::vector<u32> pixels;
};

/// The four kinds of modal moments, each brought about by what a person does.
struct Moment {
    const char* name;
    void (*open)(MainFrame& frame);
    int ended; // by this answer; 0: by itself
};

void PrintTo(const Moment& moment, std::ostream* stream)
{
    *stream << moment.name;
}

void ClickFaceSwatch(MainFrame& frame)
{
    const POINT corner = CornerOf(frame.colorbox);
    ClickScreen(corner.x + 10, corner.y + 20);
}

void ClickToolbox(MainFrame& frame)
{
    const POINT corner = CornerOf(frame.toolbox);
    ClickScreen(corner.x + 30, corner.y + 20);
}

/// The question whether to close before the sibling viewer starts.
void AskForViewer(MainFrame& frame)
{
    PostMessageW(frame.window, WM_COMMAND, CommandLaunchViewer, 0);
}

/// A job that makes a new picture once it is let go on.
void RunJob(MainFrame& frame)
{
    const std::string file = TestHome() + "/slow.waiting";
    std::ofstream(file) << "anything";
    std::u16string path = DevicePath(file);
    COPYDATASTRUCT record = {};
    record.cbData = static_cast<DWORD>((path.size() + 1) * sizeof(WCHAR));
    record.lpData = path.data();
    SendMessageW(frame.window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record));
}

constexpr Moment Moments[] = {
    {"Chooser", ClickFaceSwatch, IDCANCEL},
    {"BrushSettings", ClickToolbox, IDCANCEL},
    {"Box", AskForViewer, IDNO},
    {"Job", RunJob, 0},
};

/// Runs the program on a picture with the brush chosen; there `open` is called once, outside any
/// dialog, and `script` in the first dialog that it brings about. Others are given up. The run ends
/// when the window is closed by whatever the script does, or after a while of waiting.
class ModalMoment : public ::testing::TestWithParam<Moment>
{
protected:
    int Run(const std::function<void(MainFrame&, HWND)>& script)
    {
        InstallBundledPlugins();
        InstallPlugin(tavrix::testing::InBuild("/tests/shell-fixtures/waiting.dll"));
        current = this;
        theScript = script;
        OnModal([](HWND dialog, bool box) {
            if (!current->opening || current->scriptRun) {
                if (box)
                    EndDialog(dialog, IDOK);
                return;
            }
            current->scriptRun = true;
            Pump(50);
            current->theScript(*mainFrame, dialog);
            ASSERT_TRUE(IsWindow(dialog)) << "it is still there";
            const int answer = GetParam().ended;
            if (IsJob()) {
                std::ofstream(TestHome() + "/go-on") << "now";
                return;
            }
            if (box)
                EndDialog(dialog, answer);
            else
                PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(answer), 0);
        });
        const UINT_PTR timer = SetTimer(nullptr, 0, 50, Tick);
        // Without steps nothing but the window's own close ends the run.
        const int result = RunProgramOn(WriteTestPng(Width, Height), std::vector<Step>{});
        KillTimer(nullptr, timer);
        EXPECT_TRUE(scriptRun) << "no dialog came up";
        return result;
    }

    static bool IsJob() { return GetParam().ended == 0; }

    bool closedByWaiting = false;
    std::u16string openedLast;
    std::unique_ptr<State> before;
    std::unique_ptr<State> after; // when the dialog has ended and all has been handled

private:
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD)
    {
        if (mainFrame == nullptr || !IsWindowVisible(mainFrame->window))
            return;
        ModalMoment& self = *current;
        MainFrame& frame = *mainFrame;
        if (!self.opening) {
            self.opening = true;
            frame.ChooseTool(CommandBrush);
            frame.scrollX = 0;
            frame.scrollY = Height - 470.0 + frame.clientOriginY;
            frame.RedrawView();
            self.before = std::make_unique<State>(frame, !IsJob());
            GetParam().open(frame);
        } else if (self.scriptRun && IsWindowEnabled(frame.window) && ++self.ticks == 10) {
            self.after = std::make_unique<State>(frame, !IsJob());
            const std::u16string path = frame.openedPath;
            self.openedLast = path.substr(path.find_last_of(u'\\') + 1);
            self.closedByWaiting = true;
            PostMessageW(frame.window, WM_CLOSE, 0, 0);
        }
    }

    static inline ModalMoment* current = nullptr;
    std::function<void(MainFrame&, HWND)> theScript;
    bool opening = false;
    bool scriptRun = false;
    int ticks = 0;
    Scope scope;
};

std::string SettingsText()
{
    namespace fs = std::filesystem;
    for (const auto& entry : fs::recursive_directory_iterator(TestHome() + "/config"))
        if (entry.path().filename() == "Tavrix.ini") {
            std::ostringstream bytes;
            bytes << std::ifstream(entry.path(), std::ios::binary).rdbuf();
            std::string text;
            for (const char unit : bytes.str())
                if (unit != 0)
                    text += unit;
            return text;
        }
    return {};
}

} // namespace

TEST_P(ModalMoment, NothingThatIsDoneToTheMainWindowHasAnEffectThenOrLater)
{
    const std::string other = WriteTestPng(40, 30, "other.png");
    // Whether they do something where no dialog keeps them off is what other tests tell.
    EXPECT_EQ(Run([&](MainFrame& frame, HWND dialog) {
                  Disturb(frame, other);
                  EXPECT_TRUE(IsWindow(dialog));
                  EXPECT_TRUE(State(frame, !IsJob()) == *before);
              }),
              0);
    EXPECT_TRUE(closedByWaiting) << "the request to close was forgotten";
    ASSERT_NE(after, nullptr);
    if (IsJob()) {
        EXPECT_EQ(after->selected, 0U);
        EXPECT_EQ(openedLast, u"slow.waiting") << "what was dropped waits for nothing";
    } else {
        EXPECT_TRUE(*after == *before);
    }
}

TEST_P(ModalMoment, ATerminationSignalClosesTheProgramOnceTheDialogHasEnded)
{
    EXPECT_EQ(Run([&](MainFrame& frame, HWND dialog) {
                  frame.showColorbox = 7; // a value that only the close writes
                  raise(SIGTERM);
                  Pump(150);
                  EXPECT_TRUE(IsWindow(dialog));
                  EXPECT_EQ(frame.handOvers.closed, 0U);
                  EXPECT_EQ(SettingsText().find("ShowColorbox=7"), std::string::npos);
              }),
              0);
    EXPECT_FALSE(closedByWaiting);
    EXPECT_NE(SettingsText().find("ShowColorbox=7"), std::string::npos) << SettingsText();
}

INSTANTIATE_TEST_SUITE_P(Of, ModalMoment, ::testing::ValuesIn(Moments),
                         [](const auto& given) { return std::string(given.param.name); });
