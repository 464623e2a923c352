// Windows under a test's hand: the message loop for a while, pixels, button presses, and a script
// that runs whenever a modal loop starts. On the user-interface thread, in the headless platform.
#pragma once

#include "platform/testing/Testing.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tavrix::testing
{

/// Pixels as the person sees them, 0xRRGGBB each, row by row from the top.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;
    uint32_t At(int x, int y) const
    {
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
};

/// The whole device screen, or one window with what lies on it.
Picture ScreenPixels();
Picture WindowPixels(HWND window);
/// Writes the device screen to a PNG file. False when it cannot be written.
bool SaveScreen(const std::string& hostPath);

/// Runs GetMessageW / TranslateMessage / DispatchMessageW for `milliseconds`, and then until nothing
/// but timers is left to handle.
void Pump(DWORD milliseconds);
/// Runs the loop until `finished` answers true, at most `milliseconds`; tells whether it did.
bool PumpUntil(const std::function<bool()>& finished, DWORD milliseconds = 10000);

/// Presses and releases the left button at a point of the device screen, through the toolkit, with
/// modifiers (MK_CONTROL, MK_SHIFT).
void ClickScreen(int x, int y, int modifiers = 0);
/// The same twice in quick succession: press, release, double click, release.
void DoubleClickScreen(int x, int y);
/// Presses and releases the right button there.
void RightClickScreen(int x, int y);
/// Presses the left button at one point and lets it go at another.
void DragScreen(int x, int y, int toX, int toY);
/// The steps of a drag apart: the left button goes down, the pointer moves (with the button as it
/// is by then), the button comes up. Points may lie beside the device screen; (0, 0) cannot be
/// told.
void PressScreen(int x, int y, int modifiers = 0);
void MoveScreen(int x, int y, int modifiers = 0);
void ReleaseScreen(int x, int y, int modifiers = 0);
/// Gives the control with the focus a text as an input method does: composed first, then done.
void CommitText(const std::u16string& text);
/// Clicks the middle of a control, through the toolkit.
void ClickControl(HWND dialog, int id);
/// Presses and releases a key (VK_ code) with modifiers (MK_CONTROL, MK_SHIFT; alt = 0x20).
void TypeKey(int virtualKey, int modifiers = 0);
/// Presses a key without modifiers and keeps it down, or lets it go again.
void HoldKey(int virtualKey, bool down);
/// A control's text.
std::u16string ControlText(HWND dialog, int id);
/// The text and caption of a message box handed to a modal script.
std::u16string BoxText(HWND box);
std::u16string BoxCaption(HWND box);

/// Runs `script` when a dialog or message box has come up (see TestHooks::modalStarted).
void OnModal(std::function<void(HWND dialog, bool box)> script);

} // namespace tavrix::testing
