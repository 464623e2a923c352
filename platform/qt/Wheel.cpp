#include "platform/qt/Wheel.h"

#include "platform/core/MessageQueue.h"

#include <QWheelEvent>
#include <QWidget>

namespace tavrix::platform
{
namespace
{

// Of one direction, in the toolkit's eighths of a degree: a wheel that clicks gives notches, other
// ones and touchpads parts of them.
class Turning
{
public:
    /// Takes a part; the notches that are whole now, positive for up or left.
    int Take(int part)
    {
        if ((part > 0 && rest < 0) || (part < 0 && rest > 0))
            rest = 0;
        rest += part;
        const int notches = rest / QWheelEvent::DefaultDeltasPerStep;
        rest %= QWheelEvent::DefaultDeltasPerStep;
        return notches;
    }

private:
    int rest = 0;
};

// As the keyboard's messages, but with no modifier: Shift, which may be held to scroll sideways,
// must not keep the accelerators from matching. The key's live state stays as it is.
void QueueArrow(HWND window, WPARAM key, UINT message)
{
    constexpr LPARAM Released = LPARAM{3} << 30; // was down and goes up
    InputMessage input;
    input.message.hwnd = window;
    input.message.message = message;
    input.message.wParam = key;
    input.message.lParam = message == WM_KEYUP ? 1 | Released : 1;
    input.message.time = GetTickCount();
    PostInput(std::move(input));
}

void QueueArrows(HWND window, int notches, WPARAM forward, WPARAM backward)
{
    const WPARAM key = notches > 0 ? forward : backward;
    for (int i = std::abs(notches); i > 0; --i) {
        QueueArrow(window, key, WM_KEYDOWN);
        QueueArrow(window, key, WM_KEYUP);
    }
}

} // namespace

void QueueWheel(const Window& window, const QWidget& under, const QWheelEvent& event)
{
    static Turning upright;
    static Turning sideways;
    const Window* main = MainWindow();
    // A control that has no use for the wheel leaves it to the window below it, but what points at
    // the menu does not mean the picture.
    const QWidget* pointed = under.childAt(event.position().toPoint());
    if (main == nullptr || !TakesInput(*main) || window.windowClass->makeWidget != nullptr ||
        (pointed != nullptr && WindowOfWidget(pointed) != &window))
        return;
    QPoint turned = event.angleDelta();
    if ((event.modifiers() & Qt::ShiftModifier) != 0)
        turned = {turned.x() + turned.y(), 0};
    QueueArrows(main->handle, upright.Take(turned.y()), VK_DOWN, VK_UP);
    QueueArrows(main->handle, sideways.Take(turned.x()), VK_RIGHT, VK_LEFT);
}

} // namespace tavrix::platform
