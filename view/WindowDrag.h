// Dragging a window by a part of its own client area, as the toolbox and the colorbox are dragged
// by their title strips. The window follows the pointer and may leave the screen. User-interface
// thread.
#pragma once

#include <windows.h>

class WindowDrag
{
public:
    /// At a press of the left button: takes the capture. `packedPoint` is the message's, in the
    /// window.
    void Begin(HWND window, LPARAM packedPoint);
    /// At a move: takes the window along. Nothing while the window has no capture.
    void Follow(HWND window, LPARAM packedPoint);
    /// At the lift: takes the window along once more and lets the capture go.
    void End(HWND window, LPARAM packedPoint);

private:
    POINT grip = {0, 0}; // where the pointer holds the window
};
