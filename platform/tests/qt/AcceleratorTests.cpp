#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/ControlResources.h"

#include <gtest/gtest.h>
#include <handheld.h>

#include <vector>

using namespace tavrix::testing;

namespace
{

constexpr int Alt = 0x20;

std::vector<WPARAM> commands;
unsigned popups = 0;

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_COMMAND)
        commands.push_back(wParam);
    if (message == WM_INITMENUPOPUP)
        ++popups;
    return DefWindowProcW(window, message, wParam, lParam);
}

class Accelerators : public ::testing::Test
{
protected:
    Accelerators()
    {
        commands.clear();
        popups = 0;
        WNDCLASSW record{};
        record.lpfnWndProc = Procedure;
        record.lpszClassName = TEXT("AcceleratorTestMain");
        RegisterClassW(&record);
        window = CreateWindowExW(0, TEXT("AcceleratorTestMain"), TEXT("main"), WS_VISIBLE, 0, 0,
                                 640, 480, nullptr, nullptr, nullptr, nullptr);
        table = LoadAcceleratorsW(ControlResources(), MAKEINTRESOURCEW(3));
        SetFocus(window);
        Pump(20);
    }
    ~Accelerators() override { DestroyWindow(window); }

    /// The program's loop: what the table takes is not dispatched.
    int Loop()
    {
        int taken = 0;
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (TranslateAcceleratorW(window, table, &message) != 0) {
                ++taken;
                continue;
            }
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        return taken;
    }

    Scope scope;
    HWND window = nullptr;
    HACCEL table = nullptr;
};

} // namespace

TEST_F(Accelerators, AKeyOfTheTableBecomesACommandWithNotifyCodeOne)
{
    ASSERT_NE(table, nullptr);
    TypeKey('O', MK_CONTROL);
    EXPECT_EQ(Loop(), 1);
    EXPECT_EQ(commands, (std::vector<WPARAM>{40003 | 1 << 16}));
}

TEST_F(Accelerators, ModifiersTellOneKeyFromAnother)
{
    TypeKey('S', MK_CONTROL);
    TypeKey('S', MK_CONTROL | MK_SHIFT);
    TypeKey('S');
    TypeKey('O', MK_CONTROL | Alt);
    TypeKey(VK_LEFT);
    EXPECT_EQ(Loop(), 3);
    EXPECT_EQ(commands, (std::vector<WPARAM>{40004 | 1 << 16, 40184 | 1 << 16, 40165 | 1 << 16}));
}

TEST_F(Accelerators, FastKeysKeepTheModifiersOfTheirOwnTime)
{
    for (int i = 0; i < 10; ++i) {
        TypeKey('S', MK_CONTROL | MK_SHIFT);
        TypeKey('S', MK_CONTROL);
    }
    EXPECT_EQ(Loop(), 20); // every key is up again long before the first message is looked at
    for (size_t i = 0; i < commands.size(); ++i)
        EXPECT_EQ(LOWORD(commands[i]), i % 2 == 0 ? 40184 : 40004) << i;
}

TEST_F(Accelerators, ACharacterEntryWaitsForTheCharacter)
{
    TypeKey('Z');
    EXPECT_EQ(Loop(), 1);
    EXPECT_EQ(commands, (std::vector<WPARAM>{40205 | 1 << 16}));
}

TEST_F(Accelerators, AMenuBarsLetterDoesNotSwallowAKeyOfTheTable)
{
    const HWND bar = CommandBar_Create(ControlResources(), window, 1);
    CommandBar_InsertMenubar(bar, ControlResources(), 110, 0); // with "&File"
    Pump(20);
    TypeKey('F', Alt);
    EXPECT_EQ(Loop(), 1);
    EXPECT_EQ(commands, (std::vector<WPARAM>{40777 | 1 << 16}));
    EXPECT_EQ(popups, 0u);
}

TEST_F(Accelerators, ADisabledWindowIsSentNothing)
{
    MSG message{};
    message.hwnd = window;
    message.message = WM_KEYDOWN;
    message.wParam = VK_LEFT;
    EnableWindow(window, FALSE);
    EXPECT_EQ(TranslateAcceleratorW(window, table, &message), 1);
    EXPECT_TRUE(commands.empty());
}

TEST_F(Accelerators, OtherMessagesAndMissingTablesTakeNothing)
{
    MSG message{};
    message.hwnd = window;
    message.message = WM_KEYUP;
    message.wParam = VK_LEFT;
    EXPECT_EQ(TranslateAcceleratorW(window, table, &message), 0);
    message.message = WM_KEYDOWN;
    EXPECT_EQ(TranslateAcceleratorW(window, nullptr, &message), 0);
    EXPECT_EQ(TranslateAcceleratorW(nullptr, table, &message), 0);
    EXPECT_EQ(TranslateAcceleratorW(window, table, nullptr), 0);
    EXPECT_EQ(TranslateAcceleratorW(window, table, &message), 1);
    EXPECT_EQ(LoadAcceleratorsW(ControlResources(), MAKEINTRESOURCEW(999)), nullptr);
}
