// The keys that belong to a dialog whatever control has the focus: Tab walks the controls, Enter
// presses the default button, Esc cancels, the arrows walk a group of buttons, and a button's
// underlined letter presses it. They are taken from the toolkit before the control sees them.
#include "platform/qt/ControlMessages.h"
#include "platform/qt/DialogState.h"
#include "platform/qt/EditWidget.h"
#include "platform/qt/Window.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

HWND FocusControl()
{
    const Window* window = WindowOfWidget(QApplication::focusWidget());
    return window != nullptr ? window->handle : nullptr;
}

LRESULT DialogCode(HWND control)
{
    return control != nullptr ? SendMessageW(control, WM_GETDLGCODE, 0, 0) : 0;
}

bool IsPushButton(HWND control)
{
    return (DialogCode(control) & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) != 0;
}

void SendCommand(HWND dialog, UINT id, HWND control)
{
    SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(control));
}

/// Presses the button with the focus, else the default one. Where the dialog has neither that nor a
/// control with IDOK, nothing is sent: an end that no button offers would surprise a dialog that
/// waits for something else (a job's end has that number too).
void OnEnter(HWND dialog, const DialogState& state)
{
    const HWND focus = FocusControl();
    HWND target = nullptr;
    if (IsPushButton(focus) && GetParent(focus) == dialog)
        target = focus;
    else
        target =
            GetDlgItem(dialog, static_cast<int>(state.defaultId != 0 ? state.defaultId : IDOK));
    if (target != nullptr && IsWindowEnabled(target))
        SendCommand(dialog, static_cast<UINT>(GetDlgCtrlID(target)), target);
}

void OnEscape(HWND dialog, const DialogState& state)
{
    if (state.escapeIgnored)
        return;
    const HWND cancel = GetDlgItem(dialog, IDCANCEL);
    if (cancel == nullptr || IsWindowEnabled(cancel))
        SendCommand(dialog, IDCANCEL, cancel);
}

/// The controls of the group that `control` stands in: from the last WS_GROUP up to the next.
std::vector<HWND> GroupOf(const DialogState& state, HWND control)
{
    std::vector<HWND> group;
    bool found = false;
    for (const HWND candidate : state.controls) {
        const Window* window = FindWindowRecord(candidate);
        if (window == nullptr)
            continue;
        if ((window->style & WS_GROUP) != 0) {
            if (found)
                break;
            group.clear();
        }
        group.push_back(candidate);
        found = found || candidate == control;
    }
    if (!found)
        group.clear();
    return group;
}

bool OnArrow(const DialogState& state, bool back)
{
    const HWND focus = FocusControl();
    if ((DialogCode(focus) & DLGC_BUTTON) == 0)
        return false;
    std::vector<HWND> group = GroupOf(state, focus);
    std::erase_if(group, [](HWND control) {
        return (DialogCode(control) & DLGC_BUTTON) == 0 || !IsWindowEnabled(control) ||
               !IsWindowVisible(control);
    });
    const auto at = std::find(group.begin(), group.end(), focus);
    if (group.size() < 2 || at == group.end())
        return true;
    const auto index = static_cast<size_t>(at - group.begin());
    const HWND next = group[(index + (back ? group.size() - 1 : 1)) % group.size()];
    SetFocus(next);
    if ((DialogCode(next) & DLGC_RADIOBUTTON) != 0)
        SendMessageW(next, BM_CLICK, 0, 0);
    return true;
}

/// The letter behind the first single "&" of a caption, in small; 0 when there is none.
char16_t MnemonicOf(const std::u16string& caption)
{
    for (size_t i = 0; i + 1 < caption.size(); ++i) {
        if (caption[i] != u'&')
            continue;
        if (caption[i + 1] != u'&')
            return QChar(caption[i + 1]).toLower().unicode();
        ++i;
    }
    return 0;
}

bool OnLetter(const DialogState& state, const QString& text)
{
    if (text.size() != 1 || (DialogCode(FocusControl()) & DLGC_BUTTON) == 0)
        return false; // in a text field a letter is a letter
    const char16_t letter = text.at(0).toLower().unicode();
    for (const HWND control : state.controls) {
        const Window* window = FindWindowRecord(control);
        if (window == nullptr || (DialogCode(control) & DLGC_BUTTON) == 0 ||
            MnemonicOf(window->text) != letter || !IsWindowEnabled(control) ||
            !IsWindowVisible(control))
            continue;
        SetFocus(control);
        SendMessageW(control, BM_CLICK, 0, 0);
        return true;
    }
    return false;
}

bool OnTab(const DialogState& state, bool back)
{
    HWND from = FocusControl();
    // The focus may lie on a part inside a control.
    while (from != nullptr &&
           std::find(state.controls.begin(), state.controls.end(), from) == state.controls.end())
        from = GetParent(from);
    if (const HWND next = NextTabControl(state, from, back); next != nullptr)
        FocusByKeys(next);
    return true; // the toolkit's own order would lead out of the dialog
}

/// Whether the control with the focus keeps Enter or Esc to itself now, as a combo box does whose
/// list is dropped down.
bool IsControlsOwn(WPARAM key)
{
    const HWND focus = FocusControl();
    if (focus == nullptr)
        return false;
    MSG asked{};
    asked.hwnd = focus;
    asked.message = WM_KEYDOWN;
    asked.wParam = key;
    const LRESULT code = SendMessageW(focus, WM_GETDLGCODE, key, reinterpret_cast<LPARAM>(&asked));
    return (code & DLGC_WANTMESSAGE) != 0;
}

bool HandleKey(HWND dialog, const DialogState& state, const QKeyEvent& event)
{
    const Qt::KeyboardModifiers modifiers =
        event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if (modifiers != Qt::NoModifier)
        return false;
    switch (event.key()) {
    case Qt::Key_Tab:
        return OnTab(state, (event.modifiers() & Qt::ShiftModifier) != 0);
    case Qt::Key_Backtab:
        return OnTab(state, true);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        // An input method that leaves such a key to the dialog has not done with its text: that is
        // what the key ends.
        if (EndComposing(FocusControl(), true))
            return true;
        if (IsControlsOwn(VK_RETURN))
            return false;
        OnEnter(dialog, state);
        return true;
    case Qt::Key_Escape:
        if (EndComposing(FocusControl(), false))
            return true;
        if (IsControlsOwn(VK_ESCAPE))
            return false;
        OnEscape(dialog, state);
        return true;
    case Qt::Key_Left:
    case Qt::Key_Up:
        return OnArrow(state, true);
    case Qt::Key_Right:
    case Qt::Key_Down:
        return OnArrow(state, false);
    default:
        return OnLetter(state, event.text());
    }
}

class KeyWatcher : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress || !object->isWidgetType())
            return false;
        const auto* widget = static_cast<QWidget*>(object);
        if (widget->window()->windowType() == Qt::Popup)
            return false; // an opened list or menu has its own keys
        Window* window = WindowOfWidget(widget);
        std::shared_ptr<DialogState> state;
        while (window != nullptr && !(state = DialogStateOf(window)) && window->isChild)
            window = window->parent;
        if (!state || state->ended || !TakesInput(*window))
            return false;
        if (!HandleKey(window->handle, *state, *static_cast<QKeyEvent*>(event)))
            return false;
        event->accept();
        return true;
    }
};

} // namespace

void FocusByKeys(HWND control)
{
    SetFocus(control);
    // Of a combo box it is the field inside that has it now.
    const HWND focus = FocusControl();
    if ((DialogCode(focus) & DLGC_HASSETSEL) != 0)
        SendMessageW(focus, EM_SETSEL, 0, -1);
}

void WatchDialogKeys()
{
    static KeyWatcher* watcher = nullptr;
    if (watcher != nullptr)
        return;
    watcher = new KeyWatcher(qApp);
    qApp->installEventFilter(watcher);
}

} // namespace tavrix::platform
