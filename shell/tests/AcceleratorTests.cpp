// The table of the keys, row by row: each key with its modifiers sends its command, and the same
// key with others sends none.

#include "resources/Ids.h"
#include "tests/support/Program.h"

#include <gtest/gtest.h>

#include <ostream>

using namespace tavrix::testing;

namespace
{

constexpr int Control = MK_CONTROL;
constexpr int Shift = MK_SHIFT;
constexpr int Alt = 0x20;

struct Row {
    int key;
    int modifiers;
    u32 command;
};

// Typed by hand. Ctrl+Alt+V and Alt+Shift+V mean the same.
constexpr Row rows[] = {
    {'A', Control, 40056}, {'C', Control, 40036},       {'C', Control | Alt, 40194},
    {'D', Control, 40074}, {'K', Control, 40185},       {'L', Control, 40007},
    {'N', Control, 40017}, {'O', Control, 40003},       {'P', Control, 40192},
    {'Q', Control, 1},     {'S', Control, 40004},       {'S', Control | Shift, 40184},
    {'V', Control, 40037}, {'V', Control | Alt, 40195}, {'V', Alt | Shift, 40195},
    {VK_DOWN, 0, 40168},   {VK_F4, Alt, 40002},         {VK_LEFT, 0, 40165},
    {VK_RIGHT, 0, 40166},  {VK_UP, 0, 40167},           {'Z', Control, 40205},
};

std::vector<u32> sent;

LRESULT CALLBACK Note(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_COMMAND)
        sent.push_back(LOWORD(wParam));
    return message == WM_CLOSE ? 0 : DefWindowProcW(window, message, wParam, lParam);
}

/// What the program's table makes of a key.
std::vector<u32> Sent(HWND window, HACCEL table, int key, int modifiers)
{
    sent.clear();
    TypeKey(key, modifiers);
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        if (!TranslateAcceleratorW(window, table, &message))
            DispatchMessageW(&message);
    return sent;
}

} // namespace

TEST(Accelerators, EachKeySendsItsCommandAndWithOtherModifiersNone)
{
    RegisterProgramResources();
    WNDCLASSW record = {};
    record.lpfnWndProc = Note;
    record.hInstance = GetModuleHandleW(nullptr);
    record.lpszClassName = TEXT("KeyNoter");
    RegisterClassW(&record);
    const HWND window = CreateWindowExW(0, TEXT("KeyNoter"), TEXT(""), WS_VISIBLE, 0, 0, 100, 100,
                                        nullptr, nullptr, record.hInstance, nullptr);
    ASSERT_NE(window, nullptr);
    const HACCEL table =
        LoadAcceleratorsW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(AcceleratorTable));
    ASSERT_NE(table, nullptr);
    SetFocus(window);
    for (const Row& row : rows)
        for (const int modifiers : {0, Control, Shift, Alt, Control | Shift, Control | Alt,
                                    Shift | Alt, Control | Shift | Alt}) {
            std::vector<u32> expected;
            for (const Row& other : rows)
                if (other.key == row.key && other.modifiers == modifiers)
                    expected.push_back(other.command);
            EXPECT_EQ(Sent(window, table, row.key, modifiers), expected)
                << row.key << " with " << modifiers;
        }
    DestroyWindow(window);
}
