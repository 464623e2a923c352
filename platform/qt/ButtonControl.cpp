// The class BUTTON: push buttons, check boxes, radio buttons and group boxes. The check state is
// kept here and put into the toolkit's widget, so that only the "auto" kinds change by a click.
#include "platform/qt/ControlMessages.h"
#include "platform/qt/ControlSupport.h"
#include "platform/qt/DialogFont.h"
#include "platform/qt/DialogState.h"
#include "platform/qt/GroupBox.h"
#include "platform/qt/StockClasses.h"
#include "platform/qt/Window.h"

#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>
#include <QStyleOptionButton>

namespace tavrix::platform
{
namespace
{

struct ButtonState {
    bool checked = false;
};

DWORD Kind(const Window& window)
{
    return window.style & BS_TYPEMASK;
}

bool IsPush(DWORD kind)
{
    return kind == BS_PUSHBUTTON || kind == BS_DEFPUSHBUTTON;
}
bool IsCheck(DWORD kind)
{
    return kind == BS_CHECKBOX || kind == BS_AUTOCHECKBOX;
}
bool IsRadio(DWORD kind)
{
    return kind == BS_RADIOBUTTON || kind == BS_AUTORADIOBUTTON;
}

ButtonState& StateOf(Window& window)
{
    return *std::static_pointer_cast<ButtonState>(window.extra);
}

/// Null for a group box.
QAbstractButton* ButtonOf(const Window& window)
{
    return qobject_cast<QAbstractButton*>(window.widget);
}

void ShowCheck(Window& window)
{
    if (QAbstractButton* button = ButtonOf(window))
        button->setChecked(StateOf(window).checked);
}

void SetCheck(Window& window, bool checked)
{
    if (!IsCheck(Kind(window)) && !IsRadio(Kind(window)))
        return;
    StateOf(window).checked = checked;
    ShowCheck(window);
}

/// Clears the other automatic radio buttons between the WS_GROUP marks around this one.
void ClearOthersOfGroup(const Window& window)
{
    const auto state = DialogStateOf(window.parent);
    if (!state)
        return;
    std::vector<Window*> group;
    bool found = false;
    for (const HWND control : state->controls) {
        Window* other = FindWindowRecord(control);
        if (other == nullptr)
            continue;
        if ((other->style & WS_GROUP) != 0) {
            if (found)
                break;
            group.clear();
        }
        found = found || other == &window;
        group.push_back(other);
    }
    for (Window* other : group) {
        if (found && other != &window && other->windowClass == window.windowClass &&
            Kind(*other) == BS_AUTORADIOBUTTON)
            SetCheck(*other, false);
    }
}

/// A click, by pointer, key or BM_CLICK. Behind the notification the button may be gone.
void OnClicked(HWND handle)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return;
    switch (Kind(*window)) {
    case BS_AUTOCHECKBOX:
        StateOf(*window).checked = !StateOf(*window).checked;
        break;
    case BS_AUTORADIOBUTTON:
        StateOf(*window).checked = true;
        ClearOthersOfGroup(*window);
        break;
    default:
        break;
    }
    ShowCheck(*window); // the toolkit has changed its own mark already
    NotifyParent(handle, WORD{BN_CLICKED});
}

/// Shows that it has the keyboard however it came by it; the toolkit's own does so behind its own
/// Tab alone.
template <class Button>
class ShowsFocus : public Button
{
public:
    using Button::Button;

protected:
    void initStyleOption(QStyleOptionButton* option) const override
    {
        Button::initStyleOption(option);
        option->state.setFlag(QStyle::State_KeyboardFocusChange, this->hasFocus());
    }
};

/// Takes a press anywhere in its area, as on the device; the toolkit's own looks for mark and text.
template <class Button>
class WholeArea : public ShowsFocus<Button>
{
public:
    using ShowsFocus<Button>::ShowsFocus;

protected:
    bool hitButton(const QPoint& point) const override { return this->rect().contains(point); }
};

/// Has the push buttons of the dialog look as Enter finds them: the one with the keyboard is the
/// one that it presses, else the default one. The style, which the program can ask for, stays.
void ShowWhatEnterPresses(HWND focused)
{
    const Window* window = FindWindowRecord(focused);
    const auto state = window != nullptr ? DialogStateOf(window->parent) : nullptr;
    if (!state)
        return;
    const bool here = window->widget != nullptr && window->widget->hasFocus();
    for (const HWND control : state->controls) {
        const Window* other = FindWindowRecord(control);
        auto* push = other != nullptr ? qobject_cast<QPushButton*>(other->widget) : nullptr;
        if (push != nullptr)
            push->setDefault(here ? other == window : Kind(*other) == BS_DEFPUSHBUTTON);
    }
}

class PushButton : public ShowsFocus<QPushButton>
{
public:
    PushButton(HWND owner, QWidget* parent) : ShowsFocus(parent), handle(owner) {}

protected:
    void focusInEvent(QFocusEvent* event) override
    {
        QPushButton::focusInEvent(event);
        ShowWhatEnterPresses(handle);
    }
    void focusOutEvent(QFocusEvent* event) override
    {
        QPushButton::focusOutEvent(event);
        ShowWhatEnterPresses(handle);
    }

private:
    HWND handle;
};

QAbstractButton* MakeButton(const Window& window, QWidget* parent)
{
    const DWORD kind = Kind(window);
    if (IsCheck(kind))
        return new WholeArea<QCheckBox>(parent);
    if (IsRadio(kind)) {
        auto* radio = new WholeArea<QRadioButton>(parent);
        radio->setAutoExclusive(false); // groups follow WS_GROUP, not the parent
        return radio;
    }
    auto* push = new PushButton(window.handle, parent);
    push->setAutoDefault(false);
    push->setDefault(kind == BS_DEFPUSHBUTTON);
    return push;
}

void ShowText(Window& window)
{
    const QString text = DisplayText(window.text);
    if (QAbstractButton* button = ButtonOf(window))
        button->setText(text);
    else
        static_cast<GroupBox*>(window.widget)->SetTitle(text);
}

LRESULT DialogCode(const Window& window)
{
    const DWORD kind = Kind(window);
    if (kind == BS_GROUPBOX)
        return DLGC_STATIC;
    if (IsRadio(kind))
        return DLGC_BUTTON | DLGC_RADIOBUTTON;
    if (IsPush(kind))
        return DLGC_BUTTON | (kind == BS_DEFPUSHBUTTON ? DLGC_DEFPUSHBUTTON : DLGC_UNDEFPUSHBUTTON);
    return DLGC_BUTTON;
}

LRESULT GetState(Window& window)
{
    LRESULT state = StateOf(window).checked ? BST_CHECKED : BST_UNCHECKED;
    if (const QAbstractButton* button = ButtonOf(window)) {
        state |= button->isDown() ? BST_PUSHED : 0;
        state |= button->hasFocus() ? BST_FOCUS : 0;
    }
    return state;
}

void SetStyle(Window& window, DWORD style)
{
    window.style = (window.style & ~BS_TYPEMASK) | (style & BS_TYPEMASK);
    if (auto* push = qobject_cast<QPushButton*>(window.widget))
        push->setDefault(Kind(window) == BS_DEFPUSHBUTTON);
}

} // namespace

QWidget* MakeButtonWidget(Window& window, QWidget* parent)
{
    window.extra = std::make_shared<ButtonState>();
    QWidget* widget = nullptr;
    if (Kind(window) == BS_GROUPBOX) {
        widget = new GroupBox(parent);
    } else {
        QAbstractButton* button = MakeButton(window, parent);
        // Tab is the dialog's; a pointer press takes the focus as on the device.
        button->setFocusPolicy(Qt::StrongFocus);
        QObject::connect(button, &QAbstractButton::clicked, button,
                         [handle = window.handle] { OnClicked(handle); });
        widget = button;
    }
    widget->setFont(DialogFont());
    widget->setEnabled((window.style & WS_DISABLED) == 0);
    window.widget = widget; // the caller sets it too, but the text is shown through it
    ShowText(window);
    return widget;
}

LRESULT CALLBACK ButtonProcedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return 0;
    LRESULT result = 0;
    bool changed = false;
    if (HandleCommonMessage(*window, message, wParam, lParam, &result, &changed)) {
        if (changed)
            ShowText(*window);
        return result;
    }
    switch (message) {
    case WM_GETDLGCODE:
        return DialogCode(*window);
    case BM_GETCHECK:
        return StateOf(*window).checked ? 1 : 0;
    case BM_SETCHECK:
        SetCheck(*window, wParam != 0);
        return 0;
    case BM_GETSTATE:
        return GetState(*window);
    case BM_SETSTATE:
        if (QAbstractButton* button = ButtonOf(*window))
            button->setDown(wParam != 0);
        return 0;
    case BM_SETSTYLE:
        SetStyle(*window, static_cast<DWORD>(wParam));
        return 0;
    case BM_CLICK:
        if (QAbstractButton* button = ButtonOf(*window))
            button->click();
        return 0;
    default:
        return DefWindowProcW(handle, message, wParam, lParam);
    }
}

} // namespace tavrix::platform
