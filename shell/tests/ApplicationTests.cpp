// The application object by itself: its layout and its message loop. The window that it makes is
// tested with the whole program.

#include "shell/Application.h"

#include "foundation/tests/Slots.h"
#include "resources/Ids.h"
#include "tests/support/Program.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

using namespace tavrix::testing;

namespace
{

std::vector<UINT> received;
std::vector<WPARAM> commands;

LRESULT CALLBACK Record(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_KEYDOWN || message == WM_CHAR || message == WM_COMMAND || message == WM_APP)
        received.push_back(message);
    if (message == WM_COMMAND)
        commands.push_back(wParam);
    return DefWindowProcW(window, message, wParam, lParam);
}

HWND MakeWindow()
{
    RegisterProgramResources();
    WNDCLASSW record = {};
    record.lpfnWndProc = Record;
    record.hInstance = GetModuleHandleW(nullptr);
    record.lpszClassName = TEXT("Recorder");
    RegisterClassW(&record);
    received.clear();
    commands.clear();
    return CreateWindowExW(0, TEXT("Recorder"), TEXT(""), WS_VISIBLE, 0, 0, 100, 100, nullptr,
                           nullptr, record.hInstance, nullptr);
}

HACCEL ProgramAccelerators()
{
    return LoadAcceleratorsW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(AcceleratorTable));
}

} // namespace

#ifdef TAVRIX_SLOTS_CAN_BE_READ
TEST(ApplicationLayout, InitRunAndTheThirdStandInTheirOrder)
{
    EXPECT_TRUE(StandInOrder(&Application::Init, &Application::Run, &Application::Exit));
}
#endif

TEST(ApplicationLayout, TheThirdOperationAnswersOneAndDoesNothing)
{
    Application application;
    EXPECT_EQ(application.Exit(), 1);
}

TEST(ApplicationLayout, FieldsStandInTheirOrderAndStartEmpty)
{
    struct Fields {
        void* table;
        MainFrame* frame;
        HINSTANCE instance;
        HINSTANCE previousInstance;
        const WCHAR* commandLine;
        int showCommand;
        HACCEL accelerators;
    };
    static_assert(sizeof(Fields) == sizeof(Application));
    Application application;
    application.frame = reinterpret_cast<MainFrame*>(8);
    application.instance = reinterpret_cast<HINSTANCE>(16);
    application.commandLine = TEXT("line");
    application.showCommand = 24;
    application.accelerators = reinterpret_cast<HACCEL>(32);
    Fields fields;
    std::memcpy(&fields, static_cast<const void*>(&application), sizeof fields);
    EXPECT_EQ(fields.frame, application.frame);
    EXPECT_EQ(fields.instance, application.instance);
    EXPECT_EQ(fields.previousInstance, nullptr);
    EXPECT_EQ(fields.commandLine, application.commandLine);
    EXPECT_EQ(fields.showCommand, 24);
    EXPECT_EQ(fields.accelerators, application.accelerators);
}

TEST(ApplicationLoop, AKeyThatTheTableTakesIsDispatchedAsWellAndNotTranslated)
{
    Application application;
    HWND window = MakeWindow();
    ASSERT_NE(window, nullptr);
    application.accelerators = ProgramAccelerators();
    ASSERT_NE(application.accelerators, nullptr);
    PostMessageW(window, WM_KEYDOWN, VK_LEFT, 0);
    PostMessageW(window, WM_APP, 0, 0);
    PostQuitMessage(3);
    EXPECT_EQ(application.Run(), 3);
    EXPECT_EQ(received, (std::vector<UINT>{WM_COMMAND, WM_KEYDOWN, WM_APP}));
    ASSERT_EQ(commands.size(), 1u);
    EXPECT_EQ(commands[0], static_cast<WPARAM>(MAKELONG(CommandScrollLeft, 1)));
}

TEST(ApplicationLoop, AKeyThatNoTableTakesIsTranslated)
{
    Application application;
    HWND window = MakeWindow();
    application.accelerators = ProgramAccelerators();
    SetFocus(window);
    TypeKey('X'); // by hand: the character comes with the key
    SetTimer(nullptr, 0, 50, [](HWND, UINT, UINT_PTR, DWORD) { PostQuitMessage(0); });
    EXPECT_EQ(application.Run(), 0);
    EXPECT_EQ(received, (std::vector<UINT>{WM_KEYDOWN, WM_CHAR}));
}

TEST(ApplicationLoop, TheResultIsWhatTheQuitMessageCarries)
{
    Application application;
    (void)MakeWindow();
    PostQuitMessage(-7);
    EXPECT_EQ(application.Run(), -7);
    PostQuitMessage(0);
    EXPECT_EQ(application.Run(), 0);
}
