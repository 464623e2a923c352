// The window procedure of the main window.

#include "shell/MainFrame.h"

namespace
{

// Set at WM_CREATE. A message that comes before has no object and takes the default road.
MainFrame* frame = nullptr;

LRESULT Create(HWND window, const CREATESTRUCTW* record)
{
    frame = static_cast<MainFrame*>(record->lpCreateParams);
    frame->window = window;
    return frame->OnCreate(record);
}

} // namespace

LRESULT CALLBACK MainWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return Create(window, reinterpret_cast<const CREATESTRUCTW*>(lParam));
    // The window outlives the frame: it is never destroyed by the program and goes with the
    // process.
    if (frame == nullptr || mainFrame != frame || frame->window != window)
        return DefWindowProcW(window, message, wParam, lParam);

    switch (message) {
    case WM_PAINT:
        frame->OnPaint();
        return 0;
    case WM_COMMAND:
        return frame->OnCommand(HIWORD(wParam), LOWORD(wParam), reinterpret_cast<HWND>(lParam));
    case WM_LBUTTONDOWN:
        frame->OnLButtonDown(static_cast<u32>(wParam), lParam);
        return 0;
    case WM_LBUTTONUP:
        frame->OnLButtonUp(static_cast<u32>(wParam), lParam);
        return 0;
    case WM_MOUSEMOVE:
        frame->OnMouseMove(static_cast<u32>(wParam), lParam);
        return 0;
    case WM_SIZE:
        frame->OnSize(static_cast<u32>(wParam), LOWORD(lParam), HIWORD(lParam));
        return 0;
    case WM_CLOSE:
        frame->OnClose();
        return 0;
    case WM_TIMER:
        return frame->OnTimer(static_cast<u32>(wParam));
    case WM_CTLCOLORSTATIC:
        return frame->OnCtlColorStatic();
    case WM_NOTIFY:
        return frame->OnNotify();
    case WM_COPYDATA:
        return frame->OnCopyData(reinterpret_cast<HWND>(wParam),
                                 reinterpret_cast<const COPYDATASTRUCT*>(lParam));
    case WM_APP:
        return frame->OnGetInstance();
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

void MainFrame::OnSize(u32, i32, i32) {}

LRESULT MainFrame::OnTimer(u32 id)
{
    if (id == ClipboardTimer)
        PollClipboard();
    return 0;
}

LRESULT MainFrame::OnCtlColorStatic()
{
    return 0;
}

LRESULT MainFrame::OnNotify()
{
    BringWindowToTop(window);
    SetForegroundWindow(window);
    return 0;
}

LRESULT MainFrame::OnGetInstance()
{
    return reinterpret_cast<LRESULT>(instance);
}
