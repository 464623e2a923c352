// One window of the device as the host carries it: a handle that is checked, a window procedure, a
// place on the device screen, and the widget that shows it. All on the user-interface thread.
//
// Program classes (RegisterClassW) get a raw backing picture and messages; stock controls are Qt
// widgets behind the message interface: their class is registered with a function that makes the
// widget and a window procedure that translates the control's messages.
#pragma once

#include <windows.h>

#include <memory>
#include <string>

class QWidget;

namespace tavrix::platform
{

struct Window;

/// Makes the widget of a stock class below `parent`; the caller places and owns it.
using MakeWidgetFunction = QWidget* (*)(Window& window, QWidget* parent);

struct WindowClass {
    std::u16string name; // compared without regard to case
    UINT style = 0;
    WNDPROC procedure = nullptr;
    HBRUSH background = nullptr;
    MakeWidgetFunction makeWidget = nullptr; // null: a program class with a backing picture
    /// WM_PAINT comes from the window's own update region: always for program classes; of the stock
    /// classes for those that ask (dialogs). The others are only asked to draw themselves again.
    bool paints = false;
};

/// Makes a class of the platform's own known to CreateWindowExW and dialog templates.
void RegisterStockClass(const WCHAR* name, WNDPROC procedure, MakeWidgetFunction makeWidget,
                        bool paints = false);
/// The class of that name, compared without regard to case; null when there is none.
const WindowClass* FindWindowClass(const WCHAR* name);

struct Window {
    HWND handle = nullptr;
    const WindowClass* windowClass = nullptr;
    WNDPROC procedure = nullptr; // head of the chain; SetWindowLongPtrW(GWLP_WNDPROC) replaces it
    Window* parent = nullptr;    // the parent of a child, the owner of anything else
    bool isChild = false;        // WS_CHILD: placed in its parent's client area
    UINT_PTR id = 0;
    HINSTANCE instance = nullptr;
    DWORD style = 0;
    DWORD extendedStyle = 0;
    LONG_PTR userData = 0;
    LONG_PTR dialogWords[3] = {}; // message result, dialog procedure, user word
    std::u16string text;
    HICON icons[2] = {};       // small, big
    HFONT font = nullptr;      // of a control: what WM_SETFONT gave it, null for the dialog font
    QWidget* widget = nullptr; // the whole window, caption included
    /// Where the client area's origin lies and children go, when that is not the whole widget (a
    /// caption strip above it): a child widget of `widget`, set by the class's MakeWidgetFunction.
    QWidget* client = nullptr;
    bool destroying = false;        // WM_DESTROY is on its way or over
    std::shared_ptr<void> painting; // update region and picture; the platform's own
    std::shared_ptr<void> extra;    // what the class keeps: dialog state, menu bar, control state
};

/// The window behind a handle; null for null, stale or made-up handles.
CE_API Window* FindWindowRecord(HWND handle);
/// The window a widget belongs to, walking up the widget's parents; null when there is none.
CE_API Window* WindowOfWidget(const QWidget* widget);

/// The widget whose corner is the client area's origin: `client`, else `widget`.
inline QWidget* ClientWidget(const Window& window)
{
    return window.client != nullptr ? window.client : window.widget;
}

/// The main program window: the first visible or hidden top-level window of a program class; null
/// before there is one.
Window* MainWindow();

/// Puts a widget that may still have calls on the stack away; it is deleted once the outermost
/// message loop runs again. Hide it first.
void BuryWidget(QWidget* widget);

/// Starts the toolkit if it is not up yet (first use of any window) and answers the widget that is
/// the device screen, as large as GetSystemMetrics tells. It lies on the one host window.
CE_API QWidget* ScreenWidget();
/// Shows the device screen if it is still hidden: at the first visible window or dialog.
void ShowScreen();

/// Input goes to this window and what lies on it until EndModal; a stack. Disabling and enabling of
/// the owner stay the caller's work.
void BeginModal(Window& window);
void EndModal(Window& window);
/// Whether input may reach the window now: it lies on the innermost modal window, or there is none,
/// and neither it nor what it lies on is disabled.
bool TakesInput(const Window& window);
/// Runs the message loop until `finished` answers true, testing it between messages. WM_QUIT ends
/// it too and is posted again. Whoever makes `finished` true posts WM_NULL as well.
void RunModalLoop(bool (*finished)(void* state), void* state);

} // namespace tavrix::platform
