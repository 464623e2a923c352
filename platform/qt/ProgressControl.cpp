// The class msctls_progress32: a bar from a lowest to a highest position. A worker that reports by
// SendMessageW waits for the answer, so nothing is drawn before the answer goes out: the bar is
// drawn by the loop behind it, while the worker works on, no more often than a display shows it,
// and a position that moves no pixel draws nothing at all.
#include "platform/qt/ControlMessages.h"
#include "platform/qt/ControlSupport.h"
#include "platform/qt/StockClasses.h"
#include "platform/qt/Window.h"

#include <windows.h>

#include <commctrl.h>

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QPainter>
#include <QTimerEvent>
#include <QWidget>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

// A short job reports a hundred times within this: each report would else wait for the drawing of
// the one before.
constexpr int FrameMilliseconds = 16;

struct ProgressState {
    int lowest = 0;
    int highest = 100;
    int position = 0;
};

class ProgressWidget : public QWidget
{
public:
    ProgressWidget(std::shared_ptr<const ProgressState> shown, QWidget* parent)
        : QWidget(parent), state(std::move(shown))
    {
        setAttribute(Qt::WA_OpaquePaintEvent);
    }

    /// The bar follows the state at the loop's next turn, or when the last drawing is old enough.
    void Follow()
    {
        if (FilledWidth() == drawn || nextFrame.isActive())
            return;
        const qint64 age = lastFrame.isValid() ? lastFrame.elapsed() : FrameMilliseconds;
        if (age >= FrameMilliseconds)
            update();
        else
            nextFrame.start(static_cast<int>(FrameMilliseconds - age), Qt::PreciseTimer, this);
    }

protected:
    void timerEvent(QTimerEvent* event) override
    {
        if (event->timerId() != nextFrame.timerId()) {
            QWidget::timerEvent(event);
            return;
        }
        nextFrame.stop();
        update();
    }

    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        lastFrame.start();
        drawn = FilledWidth();
        painter.setPen(QColor(0x80, 0x80, 0x80));
        painter.setBrush(Qt::white);
        painter.drawRect(0, 0, width() - 1, height() - 1);
        if (drawn > 0)
            painter.fillRect(1, 1, drawn, height() - 2, QColor(0x30, 0x60, 0xB0));
    }

private:
    int FilledWidth() const
    {
        const long long inside = width() - 2;
        const long long range = static_cast<long long>(state->highest) - state->lowest;
        if (range <= 0 || inside <= 0)
            return 0;
        return static_cast<int>(inside * (state->position - state->lowest) / range);
    }

    // Shared with the window, which may be gone before the widget's last paint.
    std::shared_ptr<const ProgressState> state;
    int drawn = -1;
    QElapsedTimer lastFrame; // since the last drawing
    QBasicTimer nextFrame;
};

ProgressState& StateOf(Window& window)
{
    return *std::static_pointer_cast<ProgressState>(window.extra);
}

void Follow(Window& window)
{
    static_cast<ProgressWidget*>(window.widget)->Follow();
}

LRESULT SetRange(Window& window, LPARAM range)
{
    ProgressState& state = StateOf(window);
    const LRESULT before = MAKELONG(state.lowest, state.highest);
    state.lowest = LOWORD(range);
    state.highest = std::max<int>(state.lowest, HIWORD(range));
    state.position = std::clamp(state.position, state.lowest, state.highest);
    Follow(window);
    return before;
}

LRESULT SetPosition(Window& window, WPARAM position)
{
    ProgressState& state = StateOf(window);
    const int before = state.position;
    state.position = std::clamp(static_cast<int>(position), state.lowest, state.highest);
    Follow(window);
    return before;
}

} // namespace

QWidget* MakeProgressWidget(Window& window, QWidget* parent)
{
    auto state = std::make_shared<ProgressState>();
    window.extra = state;
    auto* widget = new ProgressWidget(std::move(state), parent);
    widget->setEnabled((window.style & WS_DISABLED) == 0);
    return widget;
}

LRESULT CALLBACK ProgressProcedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return 0;
    LRESULT result = 0;
    bool changed = false;
    if (HandleCommonMessage(*window, message, wParam, lParam, &result, &changed))
        return result;
    switch (message) {
    case PBM_SETRANGE:
        return SetRange(*window, lParam);
    case PBM_SETPOS:
        return SetPosition(*window, wParam);
    case PBM_GETPOS:
        return StateOf(*window).position;
    default:
        return DefWindowProcW(handle, message, wParam, lParam);
    }
}

} // namespace tavrix::platform
