// What the tests of the tool windows and their dialogs share: an owner, the program's resources,
// the tool strip's own bytes, and where things lie on the device screen.
#pragma once

#include "platform/testing/WindowTesting.h"
#include "resources/Ids.h"
#include "tests/support/Program.h"

#include <gtest/gtest.h>

namespace toolwindowtest
{

using namespace tavrix::testing;

constexpr uint32_t FaceColor = 0xECE9D8; // the strip's ground, blue D8, green E9, red EC

inline LRESULT CALLBACK OwnerProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return DefWindowProcW(window, message, wParam, lParam);
}

/// A main window that fills the screen, in one of the two languages.
class Windows : public ::testing::Test
{
protected:
    Windows()
    {
        SetLanguage(1033);
        RegisterProgramResources();
        WNDCLASSW record = {};
        record.lpfnWndProc = OwnerProcedure;
        record.lpszClassName = TEXT("ToolWindowOwner");
        RegisterClassW(&record);
        owner = CreateWindowExW(0, TEXT("ToolWindowOwner"), TEXT(""), WS_VISIBLE, CW_USEDEFAULT,
                                CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr,
                                nullptr, nullptr);
        Pump(30);
    }
    ~Windows() override { DestroyWindow(owner); }

    Scope scope;
    HINSTANCE instance = GetModuleHandleW(nullptr);
    HWND owner = nullptr;
};

inline RECT PlaceOf(HWND window)
{
    RECT place = {};
    GetWindowRect(window, &place);
    return place;
}

inline POINT CornerOf(HWND window)
{
    const RECT place = PlaceOf(window);
    return {place.left, place.top};
}

inline void ExpectCorner(HWND window, LONG x, LONG y)
{
    EXPECT_EQ(CornerOf(window).x, x);
    EXPECT_EQ(CornerOf(window).y, y);
}

/// The colour of the tool strip (180 by 20 pixels of three bytes) at a pixel.
inline uint32_t StripColor(int x, int y)
{
    const HMODULE module = GetModuleHandleW(nullptr);
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(BinaryTools), TEXT("binary"));
    if (found == nullptr || SizeofResource(module, found) != 10800)
        return 0xFFFFFFFF;
    const auto* bytes = static_cast<const BYTE*>(LockResource(LoadResource(module, found)));
    const BYTE* pixel = bytes + (y * 180 + x) * 3;
    return uint32_t{pixel[2]} << 16 | uint32_t{pixel[1]} << 8 | pixel[0];
}

/// Presses the left button at a window's own point and keeps it down.
inline void PressIn(HWND window, int x, int y)
{
    const POINT corner = CornerOf(window);
    PressScreen(corner.x + x, corner.y + y);
    Pump(20);
}

inline void ClickIn(HWND window, int x, int y)
{
    const POINT corner = CornerOf(window);
    ClickScreen(corner.x + x, corner.y + y);
    Pump(20);
}

/// The pixel in the middle of a control, as the person sees it.
inline uint32_t MiddleOf(HWND control)
{
    const RECT place = PlaceOf(control);
    return ScreenPixels().At((place.left + place.right) / 2, (place.top + place.bottom) / 2);
}

} // namespace toolwindowtest
