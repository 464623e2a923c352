#include "platform/qt/ControlInput.h"

#include "platform/core/MessageQueue.h"
#include "platform/qt/Input.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace tavrix::platform
{
namespace
{

constexpr UINT RightDoubleClick = 0x0206;

/// 0 for what the device does not know.
UINT PointerMessage(const QMouseEvent& event)
{
    if (event.type() == QEvent::MouseMove)
        return WM_MOUSEMOVE;
    const bool left = event.button() == Qt::LeftButton;
    if (!left && event.button() != Qt::RightButton)
        return 0;
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        return left ? WM_LBUTTONDOWN : WM_RBUTTONDOWN;
    case QEvent::MouseButtonRelease:
        return left ? WM_LBUTTONUP : WM_RBUTTONUP;
    case QEvent::MouseButtonDblClick:
        return left ? WM_LBUTTONDBLCLK : RightDoubleClick;
    default:
        return 0;
    }
}

} // namespace

void SendPointer(HWND control, QMouseEvent& event)
{
    event.accept();
    const UINT message = PointerMessage(event);
    if (message == 0)
        return;
    const unsigned flags = ModifierFlags(event.modifiers(), event.buttons()) & ~AltModifier;
    const QPoint at = event.position().toPoint();
    CallWindow(control, message, flags, MAKELPARAM(at.x(), at.y()));
}

void SendKey(HWND control, QKeyEvent& event)
{
    MSG message;
    if (!MakeKeyMessage(control, event, &message)) {
        event.accept();
        return;
    }
    const bool withAlt = message.message == WM_SYSKEYDOWN || message.message == WM_SYSKEYUP;
    event.setAccepted(!withAlt);
    CallWindow(control, message.message, message.wParam, message.lParam);
    if (message.message != WM_KEYDOWN)
        return;
    for (const QChar unit : event.text())
        CallWindow(control, WM_CHAR, unit.unicode(), message.lParam);
}

} // namespace tavrix::platform
