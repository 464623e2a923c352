// What a dialog keeps beside its window, and the steps from a plan of a dialog to its windows. The
// plan is in pixels: Dialogs.cpp makes it from a template, MessageBoxes.cpp from a text and
// buttons. User-interface thread.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

namespace tavrix::platform
{

struct Window;

struct DialogState {
    std::vector<HWND> controls; // in the order of the template, which is the order of Tab
    UINT defaultId = 0;         // of the default button, 0: none
    bool modal = false;
    bool ended = false;
    bool focusFirst = true;     // WM_INITDIALOG left the focus to the platform
    bool escapeIgnored = false; // a message box that only its buttons answer
    INT_PTR result = 0;
    HWND disabledOwner = nullptr; // to be enabled again at the end
};

/// The state of a dialog; null for any other window.
std::shared_ptr<DialogState> DialogStateOf(const Window* window);

struct DialogControlPlan {
    std::u16string className;
    DWORD style = 0;
    DWORD extendedStyle = 0;
    RECT place{}; // in the dialog's client area
    UINT_PTR id = 0;
    std::u16string text;
    WORD pictureOrdinal = 0; // an icon or a bitmap in place of the text
    HICON icon = nullptr;
    std::vector<BYTE> creationData;
};

struct DialogPlan {
    DWORD style = 0;
    DWORD extendedStyle = 0;
    POINT corner{}; // of the frame: on the device screen; of a child in its parent's client area
    SIZE client{};  // size of the client area
    std::u16string title;
    std::vector<DialogControlPlan> controls;
};

/// Makes the dialog and its controls, hidden, and sends WM_INITDIALOG. Null when a class is unknown
/// or a window cannot be made (nothing is left then), or when the dialog is gone again behind
/// WM_INITDIALOG. `state` may be prepared by the caller.
HWND BuildDialog(const DialogPlan& plan, HINSTANCE instance, HWND owner, DLGPROC procedure,
                 LPARAM parameter, const std::shared_ptr<DialogState>& state);

/// Shows the dialog with the focus where WM_INITDIALOG left it, else on its first control.
void ShowDialog(HWND dialog);

/// Builds and runs a dialog until it ends; -1 when it cannot be built. `box`: a message box.
INT_PTR RunDialog(const DialogPlan& plan, HINSTANCE instance, HWND owner, DLGPROC procedure,
                  LPARAM parameter, const std::shared_ptr<DialogState>& state, bool box);

/// Puts the focus on the first control that takes it, else on the dialog itself if that is modal or
/// nobody else has it.
void FocusFirstControl(HWND dialog);
/// Gives a control the focus as the keyboard does: the text of a single-line field is chosen, so
/// that what is typed takes its place.
void FocusByKeys(HWND control);
/// The next (or previous) control behind `from` in the order of Tab; null when there is none.
HWND NextTabControl(const DialogState& state, HWND from, bool back);

/// Begins to look at keys that belong to dialogs: Tab, Enter, Esc, arrows, letters of buttons.
void WatchDialogKeys();

} // namespace tavrix::platform
