// What a dialog is made of, for tests that meet dialogs that they do not know. On the
// user-interface thread, in the headless platform.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace tavrix::testing
{

/// The controls of a window that can be seen and take input, in no particular order.
std::vector<HWND> ControlsOf(HWND window);
/// The corner of a window on the device screen, and its size. Empty for a stale handle.
RECT PlaceOnScreen(HWND window);
/// Clicks a point of a window, counted from its corner, through the toolkit.
void ClickWindow(HWND window, int x, int y, bool twice = false);

/// Whether a menu or another popup of the toolkit's is open.
bool IsPopupOpen();
/// The text of the entry that is lit in the open menu; empty without one.
std::u16string LitMenuEntry();
/// Closes every open popup.
void ClosePopups();

/// Drops a file of the host on the middle of the device screen.
void DropFile(const std::string& hostPath);
/// Turns the wheel by one notch at a point of the device screen: up for 1, down for -1.
void TurnWheel(int x, int y, int notches);

} // namespace tavrix::testing
