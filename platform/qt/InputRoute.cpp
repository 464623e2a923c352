#include "platform/qt/InputRoute.h"

#include "platform/core/KeyState.h"
#include "platform/core/MessageQueue.h"
#include "platform/qt/Input.h"
#include "platform/qt/Window.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>

namespace tavrix::platform
{
namespace
{

constexpr UINT RightDoubleClick = 0x0206;

/// The event that a message on its way through the chain stands for.
struct Travelling {
    HWND window;
    QWidget* target;
    QEvent* event;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

const Travelling* travelling = nullptr; // the innermost
const QEvent* delivered = nullptr;      // on its way from the procedure to the widget

class ScopedTravel
{
public:
    explicit ScopedTravel(const Travelling& now) : before(travelling) { travelling = &now; }
    ~ScopedTravel() { travelling = before; }
    ScopedTravel(const ScopedTravel&) = delete;
    ScopedTravel& operator=(const ScopedTravel&) = delete;

private:
    const Travelling* before;
};

void Deliver(QWidget* target, QEvent* event)
{
    const QEvent* before = delivered;
    delivered = event;
    QCoreApplication::sendEvent(target, event);
    delivered = before;
}

bool IsTyped(const QKeyEvent& event)
{
    constexpr auto Commands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    const Qt::KeyboardModifiers held = event.modifiers() & Commands;
    // Control and Alt together are the third level of many keyboards.
    const bool types = held == Qt::NoModifier || held == (Qt::ControlModifier | Qt::AltModifier);
    return types && event.type() == QEvent::KeyPress && !event.text().isEmpty();
}

UINT PointerMessage(const QMouseEvent& event)
{
    const bool left = event.button() == Qt::LeftButton;
    if (event.type() == QEvent::MouseMove)
        return WM_MOUSEMOVE;
    if (!left && event.button() != Qt::RightButton)
        return 0;
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        return left ? WM_LBUTTONDOWN : WM_RBUTTONDOWN;
    case QEvent::MouseButtonDblClick:
        return left ? WM_LBUTTONDBLCLK : RightDoubleClick;
    default:
        return left ? WM_LBUTTONUP : WM_RBUTTONUP;
    }
}

void SendPointer(HWND handle, QWidget* target, QMouseEvent* event)
{
    const Window* window = FindWindowRecord(handle);
    const UINT message = PointerMessage(*event);
    if (window == nullptr || message == 0)
        return;
    QPoint point = event->position().toPoint();
    if (target != window->widget)
        point = target->mapTo(window->widget, point);
    const unsigned flags = ModifierFlags(event->modifiers(), event->buttons());
    const Travelling now{
        handle, target, event, message, flags & ~AltModifier, MAKELPARAM(point.x(), point.y())};
    const ScopedTravel travel(now);
    NoteMessageKeys(message, now.wParam, flags);
    CallWindow(handle, message, now.wParam, now.lParam);
}

void SendKey(HWND handle, QWidget* target, QKeyEvent* event)
{
    MSG made;
    if (!MakeKeyMessage(handle, *event, &made))
        return;
    Travelling now{handle, target, event, made.message, made.wParam, made.lParam};
    const ScopedTravel travel(now);
    const unsigned flags = ModifierFlags(event->modifiers(), QGuiApplication::mouseButtons());
    NoteMessageKeys(now.message, now.wParam, flags);
    CallWindow(handle, now.message, now.wParam, now.lParam);
    if (!IsTyped(*event))
        return;
    now.message = WM_CHAR;
    const QString text = event->text();
    for (const QChar unit : text) {
        now.wParam = unit.unicode();
        CallWindow(handle, now.message, now.wParam, now.lParam);
    }
}

class Route : public QObject
{
public:
    Route(HWND handle, QWidget* target) : QObject(target), window(handle)
    {
        target->installEventFilter(this);
    }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event == delivered)
            return false;
        auto* target = static_cast<QWidget*>(object);
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseMove:
            SendPointer(window, target, static_cast<QMouseEvent*>(event));
            break;
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
            SendKey(window, target, static_cast<QKeyEvent*>(event));
            break;
        default:
            return false;
        }
        // Else it would go on to the parent; keys with Alt may, since they are the menus'.
        const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
        event->setAccepted(!key ||
                           (static_cast<QKeyEvent*>(event)->modifiers() & Qt::AltModifier) == 0);
        return true;
    }

private:
    HWND window;
};

Qt::Key KeyOfCode(WPARAM code)
{
    switch (code) {
    case VK_HOME:
        return Qt::Key_Home;
    case VK_END:
        return Qt::Key_End;
    case VK_PRIOR:
        return Qt::Key_PageUp;
    case VK_NEXT:
        return Qt::Key_PageDown;
    case VK_LEFT:
        return Qt::Key_Left;
    case VK_UP:
        return Qt::Key_Up;
    case VK_RIGHT:
        return Qt::Key_Right;
    case VK_DOWN:
        return Qt::Key_Down;
    case VK_DELETE:
        return Qt::Key_Delete;
    case VK_INSERT:
        return Qt::Key_Insert;
    default:
        return code >= 'A' && code <= 'Z' ? static_cast<Qt::Key>(code) : Qt::Key_unknown;
    }
}

Qt::KeyboardModifiers HeldKeys()
{
    Qt::KeyboardModifiers held;
    held.setFlag(Qt::ShiftModifier, GetKeyState(VK_SHIFT) < 0);
    held.setFlag(Qt::ControlModifier, GetKeyState(VK_CONTROL) < 0);
    return held;
}

/// A unit of text as the key event that types it. The two halves of a sign beyond the units' range
/// are typed together.
void Type(QWidget* focus, WPARAM unit)
{
    static char16_t half = 0;
    const char16_t first = half;
    half = 0;
    if (QChar::isHighSurrogate(static_cast<char32_t>(unit))) {
        half = static_cast<char16_t>(unit);
        return;
    }
    Qt::Key key = Qt::Key_unknown;
    if (unit == VK_BACK)
        key = Qt::Key_Backspace;
    else if (unit == VK_RETURN)
        key = Qt::Key_Return;
    else if (unit < VK_SPACE)
        return;
    QString text(QChar(static_cast<char16_t>(unit)));
    if (QChar::isLowSurrogate(static_cast<char32_t>(unit)))
        text.prepend(QChar(first));
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
    Deliver(focus, &event);
}

/// Types nothing: what a key types comes as WM_CHAR.
void PressKey(QWidget* focus, UINT message, WPARAM code)
{
    const Qt::Key key = KeyOfCode(code);
    const Qt::KeyboardModifiers held = HeldKeys();
    const bool letter = code >= 'A' && code <= 'Z';
    if (key == Qt::Key_unknown || (letter && (held & Qt::ControlModifier) == 0))
        return;
    QKeyEvent event(message == WM_KEYDOWN ? QEvent::KeyPress : QEvent::KeyRelease, key, held);
    Deliver(focus, &event);
}

void MovePointer(Window& window, QWidget* under, UINT message, WPARAM wParam, LPARAM lParam)
{
    QEvent::Type type = QEvent::MouseMove;
    Qt::MouseButton button = Qt::NoButton;
    if (message == WM_LBUTTONDOWN || message == WM_LBUTTONUP || message == WM_LBUTTONDBLCLK)
        button = Qt::LeftButton;
    else if (message != WM_MOUSEMOVE)
        button = Qt::RightButton;
    if (message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN)
        type = QEvent::MouseButtonPress;
    else if (message == WM_LBUTTONUP || message == WM_RBUTTONUP)
        type = QEvent::MouseButtonRelease;
    else if (message != WM_MOUSEMOVE)
        type = QEvent::MouseButtonDblClick;
    Qt::MouseButtons buttons;
    buttons.setFlag(Qt::LeftButton, (wParam & MK_LBUTTON) != 0);
    buttons.setFlag(Qt::RightButton, (wParam & MK_RBUTTON) != 0);
    Qt::KeyboardModifiers held;
    held.setFlag(Qt::ShiftModifier, (wParam & MK_SHIFT) != 0);
    held.setFlag(Qt::ControlModifier, (wParam & MK_CONTROL) != 0);
    const QPoint inWindow(static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam)));
    const QPoint point =
        under == window.widget ? inWindow : under->mapFrom(window.widget, inWindow);
    QMouseEvent event(type, point, under->mapToGlobal(point), button, buttons, held);
    Deliver(under, &event);
}

bool IsPointerMessage(UINT message)
{
    return message >= WM_MOUSEMOVE && message <= RightDoubleClick;
}

} // namespace

void RouteInput(HWND window, QWidget* target)
{
    new Route(window, target);
}

bool PassInput(HWND handle, QWidget* focus, QWidget* under, UINT message, WPARAM wParam,
               LPARAM lParam)
{
    const bool key = message == WM_KEYDOWN || message == WM_KEYUP || message == WM_SYSKEYDOWN ||
                     message == WM_SYSKEYUP;
    if (!key && message != WM_CHAR && !IsPointerMessage(message))
        return false;
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return true;
    const Travelling* own = travelling;
    const bool original = own != nullptr && own->window == handle && own->message == message &&
                          own->wParam == wParam && own->lParam == lParam;
    if (original) {
        // What a key types, it types when its character arrives.
        const bool typed = key && IsTyped(static_cast<QKeyEvent&>(*own->event));
        // Of a text of several units each comes for itself.
        const bool whole =
            message != WM_CHAR || static_cast<QKeyEvent*>(own->event)->text().size() == 1;
        if (typed)
            return true;
        if (whole) {
            Deliver(own->target, own->event);
            return true;
        }
    }
    if (message == WM_CHAR)
        Type(focus, wParam);
    else if (key)
        PressKey(focus, message, wParam);
    else
        MovePointer(*window, under, message, wParam, lParam);
    return true;
}

} // namespace tavrix::platform
