#include "platform/qt/DialogState.h"

#include "platform/qt/ControlMessages.h"
#include "platform/qt/DialogWidget.h"
#include "platform/qt/StockClasses.h"
#include "platform/qt/Window.h"

#include <QWidget>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

int Width(const RECT& rectangle)
{
    return rectangle.right - rectangle.left;
}
int Height(const RECT& rectangle)
{
    return rectangle.bottom - rectangle.top;
}

constexpr DWORD CentredStyle = 0x800; // DS_CENTER, which templates alone name

/// The template's, or the middle of the screen where the template asks for it.
POINT CornerOf(const DialogPlan& plan, const SIZE& size)
{
    if ((plan.style & CentredStyle) == 0)
        return plan.corner;
    return {std::max<LONG>(0, (GetSystemMetrics(SM_CXSCREEN) - size.cx) / 2),
            std::max<LONG>(0, (GetSystemMetrics(SM_CYSCREEN) - size.cy) / 2)};
}

bool KnowsAllClasses(const DialogPlan& plan)
{
    return std::all_of(plan.controls.begin(), plan.controls.end(),
                       [](const DialogControlPlan& control) {
                           return FindWindowClass(control.className.c_str()) != nullptr;
                       });
}

/// A static control that shows a bitmap looks for it itself, by its title.
bool NamesBitmap(const DialogControlPlan& control)
{
    return control.pictureOrdinal != 0 && (control.style & SS_TYPEMASK) == SS_BITMAP &&
           FindWindowClass(control.className.c_str()) == FindWindowClass(TEXT("STATIC"));
}

HICON IconOfControl(const DialogControlPlan& control, HINSTANCE instance)
{
    if (control.icon != nullptr || control.pictureOrdinal == 0 || NamesBitmap(control))
        return control.icon;
    return LoadIconW(instance, MAKEINTRESOURCEW(control.pictureOrdinal));
}

bool MakeControl(HWND dialog, const DialogControlPlan& control, HINSTANCE instance,
                 DialogState& state)
{
    const WCHAR* title =
        NamesBitmap(control) ? MAKEINTRESOURCEW(control.pictureOrdinal) : control.text.c_str();
    const HWND window = CreateWindowExW(
        control.extendedStyle, control.className.c_str(), title, control.style | WS_CHILD,
        control.place.left, control.place.top, Width(control.place), Height(control.place), dialog,
        reinterpret_cast<HMENU>(control.id), instance,
        control.creationData.empty() ? nullptr : const_cast<BYTE*>(control.creationData.data()));
    if (window == nullptr)
        return false;
    state.controls.push_back(window);
    if (const HICON icon = IconOfControl(control, instance); icon != nullptr)
        SendMessageW(window, STM_SETICON, reinterpret_cast<WPARAM>(icon), 0);
    if (state.defaultId == 0 &&
        (SendMessageW(window, WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON) != 0)
        state.defaultId = static_cast<UINT>(control.id);
    return true;
}

bool TakesTab(HWND control)
{
    const Window* window = FindWindowRecord(control);
    return window != nullptr && (window->style & WS_TABSTOP) != 0 && window->widget != nullptr &&
           window->widget->isEnabled() && !window->widget->isHidden();
}

} // namespace

HWND NextTabControl(const DialogState& state, HWND from, bool back)
{
    const std::vector<HWND>& controls = state.controls;
    const size_t count = controls.size();
    const auto found = std::find(controls.begin(), controls.end(), from);
    // Without a control to start from the walk begins before the first, or behind the last.
    size_t at = found != controls.end() ? static_cast<size_t>(found - controls.begin())
                : back                  ? 0
                                        : count - 1;
    for (size_t i = 0; i < count; ++i) {
        at = back ? (at + count - 1) % count : (at + 1) % count;
        if (TakesTab(controls[at]))
            return controls[at];
    }
    return nullptr;
}

HWND BuildDialog(const DialogPlan& plan, HINSTANCE instance, HWND owner, DLGPROC procedure,
                 LPARAM parameter, const std::shared_ptr<DialogState>& state)
{
    RegisterStockClasses();
    ScreenWidget();
    if (!KnowsAllClasses(plan))
        return nullptr;

    const QMargins frame = DialogFrame(plan.style);
    const SIZE size = {plan.client.cx + frame.left() + frame.right(),
                       plan.client.cy + frame.top() + frame.bottom()};
    const POINT corner = CornerOf(plan, size);
    const HWND dialog = CreateWindowExW(plan.extendedStyle, DialogClassName, plan.title.c_str(),
                                        plan.style & ~WS_VISIBLE, corner.x, corner.y, size.cx,
                                        size.cy, owner, nullptr, instance, nullptr);
    Window* window = FindWindowRecord(dialog);
    if (window == nullptr)
        return nullptr;
    window->extra = state;
    for (const DialogControlPlan& control : plan.controls) {
        if (!MakeControl(dialog, control, instance, *state)) {
            window->extra
                .reset(); // it never came to be, so that its end is not the dialog's result
            DestroyWindow(dialog);
            return nullptr;
        }
    }
    WatchDialogKeys();

    // The procedure is put in only now: it is not to see the messages of the making.
    window->dialogWords[1] = reinterpret_cast<LONG_PTR>(procedure);
    const HWND first = NextTabControl(*state, nullptr, false);
    const LRESULT wantsFocus =
        SendMessageW(dialog, WM_INITDIALOG, reinterpret_cast<WPARAM>(first), parameter);
    if (!IsWindow(dialog))
        return nullptr;
    state->focusFirst = wantsFocus != 0;
    return dialog;
}

void FocusFirstControl(HWND dialog)
{
    Window* window = FindWindowRecord(dialog);
    const auto state = DialogStateOf(window);
    if (!state)
        return;
    if (const HWND first = NextTabControl(*state, nullptr, false); first != nullptr)
        FocusByKeys(first);
    else if (state->modal || GetFocus() == nullptr)
        ClientWidget(*window)->setFocus(); // so that Esc still finds the dialog
    // A tool window without anything for the keyboard leaves it where it is.
}

void ShowDialog(HWND dialog)
{
    ShowScreen();
    ShowWindow(dialog, SW_SHOW);
    BringWindowToTop(dialog);
    const Window* window = FindWindowRecord(dialog);
    const auto state = DialogStateOf(window);
    if (!state)
        return;
    QWidget* chosen = window->widget->focusWidget();
    if (state->focusFirst || chosen == nullptr)
        FocusFirstControl(dialog);
    else
        chosen->setFocus(); // what was asked for while hidden counts only now
}

} // namespace tavrix::platform
