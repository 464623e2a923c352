#include "platform/qt/Input.h"

#include "platform/core/KeyState.h"
#include "platform/core/MessageQueue.h"
#include "platform/core/WindowTable.h"
#include "platform/qt/Backing.h"
#include "platform/qt/FingerTouch.h"
#include "platform/qt/HostWindow.h"
#include "platform/qt/KeyCodes.h"
#include "platform/qt/Pen.h"
#include "platform/qt/QuietWait.h"
#include "platform/qt/Toolkit.h"
#include "platform/qt/Wheel.h"
#include "platform/qt/WindowRecords.h"

#include <QApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTransform>
#include <QWheelEvent>
#include <QWidget>
#include <QWindow>

namespace tavrix::platform
{
namespace
{

constexpr int LeftButtonKey = 1;
constexpr int RightButtonKey = 2;
constexpr UINT CaptureChanged = 0x0215;
constexpr UINT RightDoubleClick = 0x0206;

HWND captureWindow = nullptr;

bool IsQueued(const Window& window)
{
    return window.windowClass->paints;
}

// The message of a pointer event; 0 for what the device does not know.
UINT PointerMessage(const QMouseEvent& event, const Window& window)
{
    const bool left = event.button() == Qt::LeftButton;
    if (event.type() == QEvent::MouseMove)
        return WM_MOUSEMOVE;
    if (!left && event.button() != Qt::RightButton)
        return 0;
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        return left ? WM_LBUTTONDOWN : WM_RBUTTONDOWN;
    case QEvent::MouseButtonRelease:
        return left ? WM_LBUTTONUP : WM_RBUTTONUP;
    case QEvent::MouseButtonDblClick:
        if ((window.windowClass->style & CS_DBLCLKS) == 0)
            return left ? WM_LBUTTONDOWN : WM_RBUTTONDOWN;
        return left ? WM_LBUTTONDBLCLK : RightDoubleClick;
    default:
        return 0;
    }
}

void QueuePointer(Window& window, const QWidget& under, const QMouseEvent& event)
{
    const UINT kind = PointerMessage(event, window);
    if (kind == 0)
        return;
    const QWidget* client = ClientWidget(window);
    const QPoint local = event.position().toPoint();
    const QPoint point = client->window() == under.window()
                             ? client->mapFrom(client->window(), under.mapTo(under.window(), local))
                             : client->mapFromGlobal(under.mapToGlobal(local));
    InputMessage input;
    input.modifiers = ModifierFlags(event.modifiers(), event.buttons());
    input.message.hwnd = window.handle;
    input.message.message = kind;
    input.message.wParam = input.modifiers & ~AltModifier;
    input.message.lParam = MAKELPARAM(point.x(), point.y());
    input.message.time = GetTickCount();
    POINT onScreen{point.x(), point.y()};
    ClientToScreen(window.handle, &onScreen);
    input.message.pt = onScreen;
    PostInput(std::move(input));
}

bool IsPointer(QEvent::Type type)
{
    return type == QEvent::MouseButtonPress || type == QEvent::MouseButtonRelease ||
           type == QEvent::MouseButtonDblClick || type == QEvent::MouseMove;
}

bool IsDrag(QEvent::Type type)
{
    return type == QEvent::DragEnter || type == QEvent::DragMove || type == QEvent::Drop;
}

bool IsInput(QEvent::Type type)
{
    return IsPointer(type) || IsDrag(type) || type == QEvent::Wheel || type == QEvent::KeyPress ||
           type == QEvent::KeyRelease || type == QEvent::ShortcutOverride ||
           type == QEvent::Shortcut || type == QEvent::ContextMenu || type == QEvent::TouchBegin ||
           type == QEvent::TouchUpdate || type == QEvent::TouchEnd;
}

// What the keyboard and the buttons do, whatever window it is for.
void NoteLive(const QEvent& event)
{
    if (event.type() == QEvent::KeyPress || event.type() == QEvent::KeyRelease) {
        const auto& key = static_cast<const QKeyEvent&>(event);
        if (!key.isAutoRepeat())
            NoteLiveKey(VirtualKeyOf(key), event.type() == QEvent::KeyPress);
    } else if (IsPointer(event.type())) {
        const auto& mouse = static_cast<const QMouseEvent&>(event);
        NoteLiveKey(LeftButtonKey, (mouse.buttons() & Qt::LeftButton) != 0);
        NoteLiveKey(RightButtonKey, (mouse.buttons() & Qt::RightButton) != 0);
    }
}

/// Where a window moves on which the focus lies, the toolkit does not tell the input method, whose
/// list of candidates would stay behind.
void FollowFocus(const QWidget& moved)
{
    const QWidget* focus = QApplication::focusWidget();
    if (focus == nullptr || !moved.isAncestorOf(focus))
        return;
    const QPoint corner = focus->mapTo(focus->window(), QPoint(0, 0));
    QInputMethod* method = QGuiApplication::inputMethod();
    method->setInputItemTransform(QTransform::fromTranslate(corner.x(), corner.y()));
    method->update(Qt::ImCursorRectangle | Qt::ImAnchorRectangle | Qt::ImInputItemClipRectangle);
}

class InputFilter : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() != QEvent::Timer)
            NoteToolkitEvent();
        if (object->isWindowType()) {
            auto& window = *static_cast<QWindow*>(object);
            if (TakeFullScreenKey(*event) || TakePen(window, *event) || TakeFinger(window, *event))
                return true;
            NoteLive(*event);
            return false;
        }
        if (event->type() == QEvent::ApplicationStateChange &&
            QGuiApplication::applicationState() != Qt::ApplicationActive)
            ClearLiveKeys();
        if (event->type() == QEvent::Move && object->isWidgetType())
            FollowFocus(*static_cast<QWidget*>(object));
        if (!object->isWidgetType() || !IsInput(event->type()))
            return false;
        const auto* widget = static_cast<QWidget*>(object);
        if (IsPointer(event->type()) && FollowCapture(*widget, *event))
            return true;
        const Window* window = WindowOfWidget(widget);
        if (window == nullptr || TakesInput(*window))
            return false;
        // Accepted, or it would go on to the widget's parents. Of a drag that would say that it may
        // be dropped here.
        event->setAccepted(!IsDrag(event->type()));
        return true;
    }

private:
    static bool FollowCapture(const QWidget& under, const QEvent& event)
    {
        Window* window = FindWindowRecord(captureWindow);
        if (window == nullptr || !TakesInput(*window) || !IsQueued(*window))
            return false;
        // An opened list or menu has the pointer to itself.
        if (QApplication::activePopupWidget() != nullptr)
            return false;
        QueuePointer(*window, under, static_cast<const QMouseEvent&>(event));
        return true;
    }
};

// Turns the events of one widget into queued messages.
class QueueFilter : public QObject
{
public:
    QueueFilter(HWND handle, QWidget* widget) : QObject(widget), window(handle)
    {
        widget->installEventFilter(this);
    }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        Window* target = FindWindowRecord(window);
        if (target == nullptr)
            return false;
        if (IsPointer(event->type())) {
            QueuePointer(*target, *static_cast<QWidget*>(object),
                         static_cast<const QMouseEvent&>(*event));
            event->accept();
            return true;
        }
        if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
            QueueKey(*target, static_cast<const QKeyEvent&>(*event));
            event->accept();
            return true;
        }
        if (event->type() == QEvent::Wheel) {
            QueueWheel(*target, *static_cast<QWidget*>(object),
                       static_cast<const QWheelEvent&>(*event));
            event->accept();
            return true;
        }
        return false;
    }

private:
    HWND window;
};

// The toolkit's focus moved: both sides hear of it.
void TellFocus(QWidget* before, QWidget* now)
{
    const Window* from = WindowOfWidget(before);
    const Window* to = WindowOfWidget(now);
    if (from == to)
        return;
    const HWND fromHandle = from != nullptr ? from->handle : nullptr;
    const HWND toHandle = to != nullptr ? to->handle : nullptr;
    if (fromHandle != nullptr)
        CallWindow(fromHandle, WM_KILLFOCUS, reinterpret_cast<WPARAM>(toHandle), 0);
    if (IsWindow(toHandle))
        CallWindow(toHandle, WM_SETFOCUS, reinterpret_cast<WPARAM>(fromHandle), 0);
}

} // namespace

unsigned ModifierFlags(int keyboardModifiers, int mouseButtons)
{
    unsigned flags = 0;
    flags |= (keyboardModifiers & Qt::ShiftModifier) != 0 ? MK_SHIFT : 0u;
    flags |= (keyboardModifiers & Qt::ControlModifier) != 0 ? MK_CONTROL : 0u;
    flags |= (keyboardModifiers & Qt::AltModifier) != 0 ? AltModifier : 0u;
    flags |= (mouseButtons & Qt::LeftButton) != 0 ? MK_LBUTTON : 0u;
    flags |= (mouseButtons & Qt::RightButton) != 0 ? MK_RBUTTON : 0u;
    return flags;
}

void InstallInput()
{
    qApp->installEventFilter(new InputFilter(qApp));
    QObject::connect(qApp, &QApplication::focusChanged, qApp, TellFocus);
}

void AttachInput(Window& window)
{
    if (!IsQueued(window))
        return;
    QWidget* client = ClientWidget(window);
    client->setMouseTracking(true);
    new QueueFilter(window.handle, client);
}

bool MakeKeyMessage(HWND window, const QKeyEvent& event, MSG* message)
{
    const int key = VirtualKeyOf(event);
    const bool up = event.type() == QEvent::KeyRelease;
    // Some hosts send a release before each repetition; the key is not up.
    if (up && event.isAutoRepeat())
        return false;
    if (key == 0 && (up || event.text().isEmpty()))
        return false;
    constexpr LPARAM WasDown = 1u << 30;
    constexpr LPARAM GoesUp = 1u << 31;
    constexpr LPARAM AltHeld = 1u << 29;
    constexpr int ScanShift = 16;
    const bool alt = (event.modifiers() & Qt::AltModifier) != 0 || key == VK_MENU;
    *message = MSG{};
    message->hwnd = window;
    message->message = up ? (alt ? WM_SYSKEYUP : WM_KEYUP) : (alt ? WM_SYSKEYDOWN : WM_KEYDOWN);
    message->wParam = static_cast<WPARAM>(key);
    message->lParam = 1 | static_cast<LPARAM>(event.nativeScanCode() & 0xFF) << ScanShift;
    if (up)
        message->lParam |= WasDown | GoesUp;
    else if (event.isAutoRepeat())
        message->lParam |= WasDown;
    if (alt)
        message->lParam |= AltHeld;
    message->time = GetTickCount();
    return true;
}

void QueueKey(Window& window, const QKeyEvent& event)
{
    InputMessage input;
    if (!MakeKeyMessage(window.handle, event, &input.message))
        return;
    input.modifiers = ModifierFlags(event.modifiers(), QGuiApplication::mouseButtons());
    input.text = event.text().toStdU16String();
    PostInput(std::move(input));
}

} // namespace tavrix::platform

using namespace tavrix::platform;

HWND WINAPI SetCapture(HWND handle)
{
    const HWND before = GetCapture();
    if (!IsWindow(handle) || handle == before)
        return before;
    captureWindow = handle;
    if (before != nullptr)
        CallWindow(before, CaptureChanged, 0, reinterpret_cast<LPARAM>(handle));
    return before;
}

BOOL WINAPI ReleaseCapture()
{
    const HWND before = GetCapture();
    captureWindow = nullptr;
    if (before != nullptr)
        CallWindow(before, CaptureChanged, 0, 0);
    return TRUE;
}

HWND WINAPI GetCapture()
{
    return IsWindow(captureWindow) ? captureWindow : nullptr;
}

HWND WINAPI SetFocus(HWND handle)
{
    const HWND before = GetFocus();
    if (handle == nullptr) {
        if (QWidget* focus = ToolkitIsUp() ? ScreenWidget()->window()->focusWidget() : nullptr)
            focus->clearFocus();
        return before;
    }
    Window* window = FindWindowRecord(handle);
    if (window == nullptr || (window->style & WS_DISABLED) != 0)
        return nullptr;
    QWidget* widget = window->windowClass->paints ? ClientWidget(*window) : window->widget;
    widget->setFocus();
    return before;
}

HWND WINAPI GetFocus()
{
    if (!ToolkitIsUp())
        return nullptr;
    // While the host window itself is not active, the toolkit keeps who will have the focus.
    const QWidget* focus = QApplication::focusWidget();
    if (focus == nullptr)
        focus = ScreenWidget()->window()->focusWidget();
    const Window* window = WindowOfWidget(focus);
    return window != nullptr ? window->handle : nullptr;
}
