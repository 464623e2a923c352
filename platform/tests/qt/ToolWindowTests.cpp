// Small modeless dialogs that draw themselves, are dragged by their own code and have nothing for
// the keyboard.
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/ControlResources.h"
#include "platform/tests/qt/TestWindow.h"

#include <gtest/gtest.h>

#include <cstring>
#include <ctime>
#include <functional>
#include <utility>
#include <vector>

using namespace tavrix::testing;
using tavrix::test::TestWindow;

namespace
{

std::function<INT_PTR(HWND, UINT, WPARAM, LPARAM)> onMessage;

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    return onMessage ? onMessage(dialog, message, wParam, lParam) : 0;
}

class ToolWindow : public ::testing::Test
{
protected:
    ~ToolWindow() override
    {
        onMessage = nullptr;
        if (IsWindow(dialog))
            DestroyWindow(dialog);
    }

    void Make(bool show = true)
    {
        dialog = CreateDialogIndirectParamW(ControlResources(), DialogResource(220), main.handle,
                                            Procedure, 0);
        ASSERT_NE(dialog, nullptr);
        SetWindowPos(dialog, nullptr, 100, 80, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        if (show)
            ShowWindow(dialog, SW_SHOW);
        Pump(30);
        // On a busy machine its first WM_PAINT may take longer, and would wipe what is drawn.
        PumpUntil([this] { return !GetUpdateRect(dialog, nullptr, FALSE) || !IsShown(); });
    }

    bool IsShown() const { return IsWindowVisible(dialog) != FALSE; }

    void Fill(HDC dc, const RECT& area, COLORREF color)
    {
        const HBRUSH brush = CreateSolidBrush(color);
        FillRect(dc, &area, brush);
        DeleteObject(brush);
    }

    Scope scope;
    TestWindow main;
    HWND dialog = nullptr;
};

constexpr RECT Everything{0, 0, 2000, 2000};

} // namespace

TEST_F(ToolWindow, ABrushFillsTheWholeClientAreaAndAHollowOneLeavesTheDrawing)
{
    HBRUSH brush = CreateSolidBrush(RGB(0xD8, 0x10, 0xEC));
    onMessage = [&](HWND, UINT message, WPARAM, LPARAM) -> INT_PTR {
        return message == WM_CTLCOLORDLG ? reinterpret_cast<INT_PTR>(brush) : 0;
    };
    Make();
    RECT client{};
    GetClientRect(dialog, &client);
    POINT origin{0, 0};
    ClientToScreen(dialog, &origin);
    const auto ground = [&](uint32_t wanted) {
        const Picture screen = ScreenPixels();
        for (const LONG y : {LONG{3}, client.bottom / 2, client.bottom - 1})
            for (const LONG x : {LONG{0}, LONG{4}, client.right - 1})
                EXPECT_EQ(screen.At(origin.x + x, origin.y + y), wanted) << x << " " << y;
    };
    ground(0xD810EC);
    DeleteObject(brush);
    brush = static_cast<HBRUSH>(GetStockObject(NULL_BRUSH));
    const HDC dc = GetDC(dialog);
    Fill(dc, Everything, RGB(1, 2, 3));
    ReleaseDC(dialog, dc);
    InvalidateRect(dialog, nullptr, TRUE);
    PumpUntil([this] { return !GetUpdateRect(dialog, nullptr, FALSE); });
    ground(0x010203);
}

TEST_F(ToolWindow, WhatIsBlittedThroughAContextHeldOpenStaysOverMovesHidingAndNeighbours)
{
    Make(false);
    const HWND swatch = GetDlgItem(dialog, 1052);
    const HDC dialogDc = GetDC(dialog);
    const HDC swatchDc = GetDC(swatch);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = 7;
    info.bmiHeader.biHeight = 5;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    void* bits = nullptr;
    const HBITMAP section = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HDC memory = CreateCompatibleDC(dialogDc);
    const HGDIOBJ before = SelectObject(memory, section);
    std::memset(bits, 0x40, 24 * 5);
    // Drawn while it is still hidden.
    BitBlt(dialogDc, 3, 40, 7, 5, memory, 0, 0, SRCCOPY);
    Fill(swatchDc, Everything, RGB(200, 0, 7));
    ShowWindow(dialog, SW_SHOW);
    onMessage = [](HWND, UINT message, WPARAM, LPARAM) -> INT_PTR {
        return message == WM_CTLCOLORDLG ? reinterpret_cast<INT_PTR>(GetStockObject(NULL_BRUSH))
                                         : 0;
    };
    Pump(30);
    BitBlt(dialogDc, 3, 40, 7, 5, memory, 0, 0, SRCCOPY);
    const auto look = [&](uint32_t ground) {
        POINT at{3, 40};
        ClientToScreen(dialog, &at);
        POINT in{0, 0};
        ClientToScreen(swatch, &in);
        const Picture screen = ScreenPixels();
        EXPECT_EQ(screen.At(at.x, at.y), ground);
        EXPECT_EQ(screen.At(at.x + 6, at.y + 4), ground);
        EXPECT_NE(screen.At(at.x + 7, at.y + 4), ground);
        EXPECT_EQ(screen.At(in.x + 1, in.y + 1), 0xC80007u);
    };
    look(0x404040);
    SetWindowPos(dialog, nullptr, 220, 140, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    Pump(20);
    look(0x404040);
    {
        const TestWindow over({}, WS_POPUP | WS_VISIBLE, 210, 130, 200, 200, main.handle);
        Pump(20);
    }
    Pump(20);
    look(0x404040);
    ShowWindow(dialog, SW_HIDE);
    Pump(20);
    ShowWindow(dialog, SW_SHOW);
    Pump(20);
    look(0x404040);
    std::memset(bits, 0x90, 24 * 5);
    BitBlt(dialogDc, 3, 40, 7, 5, memory, 0, 0, SRCCOPY);
    Pump(20);
    look(0x909090);

    DestroyWindow(dialog);
    const Picture gone = ScreenPixels();
    BitBlt(dialogDc, 3, 40, 7, 5, memory, 0, 0, SRCCOPY);
    Fill(swatchDc, Everything, RGB(0, 200, 7));
    Pump(20);
    EXPECT_EQ(ScreenPixels().pixels, gone.pixels);
    EXPECT_TRUE(ReleaseDC(dialog, dialogDc));
    EXPECT_TRUE(ReleaseDC(swatch, swatchDc));
    SelectObject(memory, before);
    DeleteDC(memory);
    DeleteObject(section);
}

TEST_F(ToolWindow, APaintMessageThatTheProgramPostsOrSendsReachesTheProcedure)
{
    int paints = 0;
    onMessage = [&](HWND, UINT message, WPARAM, LPARAM) -> INT_PTR {
        paints += message == WM_PAINT;
        return FALSE;
    };
    Make();
    paints = 0;
    PostMessageW(dialog, WM_PAINT, 0, 0);
    EXPECT_EQ(paints, 0);
    Pump(20);
    EXPECT_EQ(paints, 1);
    SendMessageW(dialog, WM_PAINT, 0, 0);
    EXPECT_EQ(paints, 2);
    Pump(20);
    EXPECT_EQ(paints, 2);
}

TEST_F(ToolWindow, AProcedureThatPaintsWithoutAWordLeavesTheLoopAliveAndIdle)
{
    int paints = 0;
    int ticks = 0;
    bool posted = false;
    onMessage = [&](HWND window, UINT message, WPARAM, LPARAM) -> INT_PTR {
        if (message == WM_TIMER)
            ++ticks;
        posted = posted || message == WM_APP;
        if (message == WM_INITDIALOG) {
            // One of its own on the way before the first of the update region.
            PostMessageW(window, WM_PAINT, 0, 0);
            SetTimer(window, 7, 20, nullptr);
            return TRUE;
        }
        if (message != WM_PAINT)
            return message == WM_TIMER;
        ++paints;
        const HDC dc = GetDC(window);
        Fill(dc, Everything, RGB(9, 8, 7));
        ReleaseDC(window, dc);
        return TRUE;
    };
    Make();
    EXPECT_TRUE(PumpUntil([&] { return ticks >= 3; }, 2000)) << "timers come behind WM_PAINT";
    PostMessageW(dialog, WM_APP, 0, 0);
    EXPECT_TRUE(PumpUntil([&] { return posted; }, 1000));
    EXPECT_GE(paints, 1);
    EXPECT_LE(paints, 3);
    for (int i = 0; i < 3; ++i) {
        const int before = paints;
        InvalidateRect(dialog, nullptr, FALSE);
        Pump(20);
        EXPECT_EQ(paints, before + 1) << "each invalidation is one message";
    }
    KillTimer(dialog, 7);
    const std::clock_t start = std::clock();
    // A wait that ends by itself after 1,000 ms, without the ticks of Pump.
    SetTimer(dialog, 8, 1000, nullptr);
    ticks = 0;
    MSG message;
    int messages = 0;
    for (; ticks == 0 && messages < 1000 && GetMessageW(&message, nullptr, 0, 0); ++messages)
        DispatchMessageW(&message);
    EXPECT_LE(messages, 3);
    const double used = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    EXPECT_LT(used, 0.1) << "seconds of processor time in one of waiting";
    KillTimer(dialog, 8);
}

TEST_F(ToolWindow, APaintThatIsSentDoesNotTakeTheUpdateRegionsOwn)
{
    std::vector<UINT> seen;
    onMessage = [&](HWND, UINT message, WPARAM, LPARAM) -> INT_PTR {
        if (message == WM_PAINT || message == WM_CTLCOLORDLG)
            seen.push_back(message);
        return message == WM_PAINT && seen.size() == 1;
    };
    Make();
    seen.clear();
    InvalidateRect(dialog, nullptr, TRUE);
    SendMessageW(dialog, WM_PAINT, 0, 0);
    EXPECT_TRUE(GetUpdateRect(dialog, nullptr, FALSE));
    Pump(20);
    EXPECT_EQ(seen, (std::vector<UINT>{WM_PAINT, WM_PAINT, WM_CTLCOLORDLG}));
}

TEST_F(ToolWindow, ItMayLiePartlyOrWhollyBesideTheScreen)
{
    Make();
    RECT own{};
    GetWindowRect(dialog, &own);
    const LONG width = own.right - own.left;
    const LONG height = own.bottom - own.top;
    const HDC dc = GetDC(dialog);
    Fill(dc, Everything, RGB(250, 128, 0));
    ReleaseDC(dialog, dc);
    const POINT corners[] = {{-20, -15}, {630, 470}, {-500, 100}, {3000, 2000}, {100, -height}};
    for (const POINT& corner : corners) {
        SetWindowPos(dialog, nullptr, corner.x, corner.y, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        Pump(10);
        RECT now{};
        GetWindowRect(dialog, &now);
        EXPECT_EQ(now.left, corner.x);
        EXPECT_EQ(now.top, corner.y);
        EXPECT_EQ(now.right - now.left, width);
        const Picture screen = ScreenPixels();
        EXPECT_EQ(screen.width, 640) << "the screen does not grow with it";
        const bool onScreen =
            corner.x + width > 0 && corner.x < 640 && corner.y + height > 0 && corner.y < 480;
        size_t shown = 0;
        for (const uint32_t pixel : screen.pixels)
            shown += pixel == 0xFA8000;
        EXPECT_EQ(shown > 0, onScreen) << corner.x << " " << corner.y;
    }
    SetWindowPos(dialog, nullptr, 100, 80, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    Pump(10);
    EXPECT_EQ(ScreenPixels().At(104, 80 + 45), 0xFA8000u);
}

TEST_F(ToolWindow, ItsOwnCodeDragsItByTheCaptureFarBeyondItsEdges)
{
    POINT grip{};
    bool dragging = false;
    int outside = 0;
    onMessage = [&](HWND window, UINT message, WPARAM, LPARAM lParam) -> INT_PTR {
        const POINT at{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
        if (message == WM_LBUTTONDOWN) {
            grip = at;
            dragging = true;
            SetCapture(window);
            return TRUE;
        }
        if (!dragging || (message != WM_MOUSEMOVE && message != WM_LBUTTONUP))
            return FALSE;
        RECT own{};
        GetWindowRect(window, &own);
        RECT client{};
        GetClientRect(window, &client);
        outside += at.x < 0 || at.y < 0 || at.x >= client.right || at.y >= client.bottom;
        SetWindowPos(window, nullptr, own.left + at.x - grip.x, own.top + at.y - grip.y, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        if (message == WM_LBUTTONUP) {
            dragging = false;
            ReleaseCapture();
        }
        return TRUE;
    };
    Make();
    PressScreen(130, 88);
    Pump(10);
    EXPECT_EQ(GetCapture(), dialog);
    const POINT way[] = {{131, 89}, {300, 300}, {20, 10}, {-40, -60}, {700, 500}, {400, 200}};
    for (const POINT& point : way) {
        MoveScreen(point.x, point.y);
        Pump(10);
        RECT now{};
        GetWindowRect(dialog, &now);
        EXPECT_EQ(now.left, 100 + point.x - 130);
        EXPECT_EQ(now.top, 80 + point.y - 88);
    }
    ReleaseScreen(500, 250);
    Pump(10);
    RECT now{};
    GetWindowRect(dialog, &now);
    EXPECT_EQ(now.left, 470);
    EXPECT_EQ(now.top, 242);
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_GE(outside, 5);
    MoveScreen(100, 100);
    Pump(10);
    GetWindowRect(dialog, &now);
    EXPECT_EQ(now.left, 470);
    EXPECT_EQ(main.Count(WM_LBUTTONUP), 0u);
}

TEST_F(ToolWindow, TheKeyboardStaysTheMainWindowsWhateverIsClickedOnIt)
{
    const HACCEL table = LoadAcceleratorsW(ControlResources(), MAKEINTRESOURCEW(3));
    ASSERT_NE(table, nullptr);
    Make(false);
    const auto press = [&](const char* when) {
        main.messages.clear();
        TypeKey(VK_LEFT);
        TypeKey('O', MK_CONTROL);
        MSG message;
        SetTimer(main.handle, 5, 30, nullptr);
        while (main.Count(WM_TIMER) == 0 && GetMessageW(&message, nullptr, 0, 0)) {
            if (!TranslateAcceleratorW(message.hwnd, table, &message))
                TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        KillTimer(main.handle, 5);
        EXPECT_EQ(main.Count(WM_COMMAND), 2u) << when;
        EXPECT_EQ(LOWORD(main.Last(WM_COMMAND).wParam), 40003) << when;
        EXPECT_EQ(GetFocus(), main.handle) << when;
    };
    press("hidden");
    ShowWindow(dialog, SW_SHOW);
    press("shown");
    ClickScreen(130, 140);
    press("clicked");
    ClickControl(dialog, 1052);
    press("a swatch clicked");
    DestroyWindow(dialog);
    press("gone");
    // The template's own style shows this one at once.
    dialog = CreateDialogIndirectParamW(ControlResources(), DialogResource(222), main.handle,
                                        Procedure, 0);
    press("made visible");
    // A button does take it, and leaves it to the main window with its dialog.
    ClickControl(dialog, 5);
    EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 5));
    ShowWindow(dialog, SW_HIDE);
    press("hidden with the focus in it");
    ShowWindow(dialog, SW_SHOW);
    ClickControl(dialog, 5);
    DestroyWindow(dialog);
    press("gone with the focus in it");
}
