#include "platform/qt/FingerTouch.h"

#include "platform/qt/DialogState.h"
#include "platform/qt/FingerReach.h"
#include "platform/qt/Window.h"

#include <QApplication>
#include <QCoreApplication>
#include <QMouseEvent>
#include <QPointer>
#include <QPointingDevice>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace tavrix::platform
{
namespace
{

/// The control that the finger now down was taken to; null when it is where it is.
QPointer<QWidget> held;

bool IsPress(QEvent::Type type)
{
    return type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick;
}

bool IsOfFinger(const QEvent& event)
{
    if (!IsPress(event.type()) && event.type() != QEvent::MouseMove &&
        event.type() != QEvent::MouseButtonRelease)
        return false;
    const QPointingDevice* device = static_cast<const QMouseEvent&>(event).pointingDevice();
    return device != nullptr && device->type() == QInputDevice::DeviceType::TouchScreen;
}

/// A control that has something to do for the pointer and is not shut. Texts and frames let it
/// through to the dialog, a bar of progress has no use for it.
bool IsUsable(const Window& window)
{
    return DialogStateOf(&window) == nullptr && window.widget != nullptr &&
           !window.widget->testAttribute(Qt::WA_TransparentForMouseEvents) &&
           window.windowClass != FindWindowClass(TEXT("msctls_progress32")) &&
           TakesInput(window);
}

QRect PlaceOn(const QWidget& top, const QWidget& widget)
{
    return {widget.mapTo(&top, QPoint(0, 0)), widget.size()};
}

/// What a dialog draws and uses by itself: its bitmaps, by which tool windows are dragged, and the
/// place of a control that only marks where the dialog draws.
bool IsDrawnByDialog(const Window& control)
{
    const bool bitmap = control.windowClass == FindWindowClass(TEXT("STATIC")) &&
                        (control.style & SS_TYPEMASK) == SS_BITMAP;
    return bitmap || control.widget->isHidden();
}

bool IsEmptyGround(const QWidget& top, const Window& dialog, QPoint point)
{
    if (!PlaceOn(top, *ClientWidget(dialog)).contains(point))
        return false; // the caption strip
    for (const HWND handle : DialogStateOf(&dialog)->controls) {
        const Window* control = FindWindowRecord(handle);
        if (control != nullptr && control->widget != nullptr && IsDrawnByDialog(*control) &&
            PlaceOn(top, *control->widget).contains(point))
            return false;
    }
    return true;
}

/// The dialog that a finger at `point` meets without meeting anything to use; null: nothing to do.
const Window* DialogAt(const QWidget& top, QPoint point)
{
    const Window* window = WindowOfWidget(top.childAt(point));
    if (window == nullptr || IsUsable(*window))
        return nullptr;
    while (window != nullptr && window->isChild && DialogStateOf(window) == nullptr)
        window = window->parent;
    const bool dialog = DialogStateOf(window) != nullptr;
    return dialog && IsEmptyGround(top, *window, point) ? window : nullptr;
}

/// Whether what the pointer would meet at the control's nearest point is the control, neither hidden
/// nor below another.
bool IsMet(const QWidget& top, const QWidget& control, QPoint point)
{
    const QWidget* under = top.childAt(NearestPoint(PlaceOn(top, control), point));
    return under != nullptr && (under == &control || control.isAncestorOf(under));
}

int ReachOn(const QWindow& window)
{
    return FingerReach(window.screen()->physicalDotsPerInch());
}

QWidget* NearestControl(const QWindow& window, const QWidget& top, QPoint point)
{
    const Window* dialog = DialogAt(top, point);
    if (dialog == nullptr)
        return nullptr;
    std::vector<QWidget*> controls;
    std::vector<QRect> places;
    for (const HWND handle : DialogStateOf(dialog)->controls) {
        const Window* control = FindWindowRecord(handle);
        if (control == nullptr || !IsUsable(*control) || !IsMet(top, *control->widget, point))
            continue;
        controls.push_back(control->widget);
        places.push_back(PlaceOn(top, *control->widget));
    }
    const auto nearest = NearestRectangle(places, point, ReachOn(window));
    return nearest ? controls[*nearest] : nullptr;
}

/// The screen that lies on this window of the host; null for a popup's.
const QWidget* ScreenOn(const QWindow& window)
{
    const QWidget* top = ScreenWidget()->window();
    return top->windowHandle() == &window && QApplication::activePopupWidget() == nullptr ? top
                                                                                          : nullptr;
}

void SendAt(QWindow& window, const QMouseEvent& finger, QPointF place)
{
    const QPointF global = finger.globalPosition() + (place - finger.position());
    // It has the mouse as its device, so it passes here as it is.
    QMouseEvent mouse(finger.type(), place, place, global, finger.button(), finger.buttons(),
                      finger.modifiers());
    mouse.setTimestamp(finger.timestamp());
    QCoreApplication::sendEvent(&window, &mouse);
}

} // namespace

bool TakeFinger(QWindow& window, QEvent& event)
{
    if (!IsOfFinger(event))
        return false;
    const auto& finger = static_cast<const QMouseEvent&>(event);
    const QPoint point = finger.position().toPoint();
    const QWidget* top = ScreenOn(window);
    if (IsPress(event.type()))
        held = top != nullptr ? NearestControl(window, *top, point) : nullptr;
    const QWidget* control = held;
    if (event.type() == QEvent::MouseButtonRelease)
        held = nullptr;
    if (control == nullptr || top == nullptr)
        return false;
    const QRect place = PlaceOn(*top, *control);
    const bool reached = IsWithinReach(place, point, ReachOn(window));
    SendAt(window, finger, reached ? QPointF(NearestPoint(place, point)) : finger.position());
    return true;
}

} // namespace tavrix::platform
