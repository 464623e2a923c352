#include "platform/qt/TrackbarWidget.h"

#include "platform/qt/ControlInput.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QTimerEvent>

#include <algorithm>
#include <utility>

namespace tavrix::platform
{
namespace
{

// Wide enough for a finger; across the bar the whole control counts as the thumb's.
constexpr int WantedThumb = 14;
constexpr int ThickestThumb = 26;
constexpr int GrooveThickness = 5;
constexpr int FirstRepeat = 400; // milliseconds
constexpr int NextRepeat = 80;

} // namespace

TrackbarWidget::TrackbarWidget(HWND window, bool upright,
                               std::shared_ptr<const TrackbarState> state, QWidget* parent)
    : QWidget(parent), handle(window), isUpright(upright), shown(std::move(state))
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
}

void TrackbarWidget::Follow()
{
    if (ThumbStart() != drawn)
        update();
}

int TrackbarWidget::ThumbLength() const
{
    return std::min(WantedThumb, isUpright ? height() : width());
}

int TrackbarWidget::Travel() const
{
    return std::max(0, (isUpright ? height() : width()) - ThumbLength());
}

int TrackbarWidget::ThumbStart() const
{
    const long long range = static_cast<long long>(shown->highest) - shown->lowest;
    const long long done = static_cast<long long>(shown->position) - shown->lowest;
    return range <= 0 ? 0 : static_cast<int>((done * Travel() + range / 2) / range);
}

int TrackbarWidget::PositionsOf(int pixels) const
{
    const long long range = static_cast<long long>(shown->highest) - shown->lowest;
    const long long travel = Travel();
    if (range <= 0 || travel <= 0)
        return 0;
    const long long half = pixels < 0 ? -travel / 2 : travel / 2;
    return static_cast<int>(std::clamp((pixels * range + half) / travel, -range, range));
}

QRect TrackbarWidget::Thumb() const
{
    const int across = isUpright ? width() : height();
    const int thickness = std::min(across, ThickestThumb);
    const int edge = (across - thickness) / 2;
    return isUpright ? QRect(edge, ThumbStart(), thickness, ThumbLength())
                     : QRect(ThumbStart(), edge, ThumbLength(), thickness);
}

void TrackbarWidget::BeginPaging()
{
    repeat.start(FirstRepeat, this);
}

void TrackbarWidget::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != repeat.timerId())
        return;
    repeat.start(NextRepeat, this);
    TrackbarPageAgain(handle);
}

void TrackbarWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const QRect area = rect();
    QRect groove = isUpright ? QRect(0, 0, GrooveThickness, area.height())
                             : QRect(0, 0, area.width(), GrooveThickness);
    groove.moveCenter(area.center());
    painter.setPen(palette().color(group, QPalette::Dark));
    painter.setBrush(palette().color(group, QPalette::Base));
    painter.drawRect(groove.adjusted(0, 0, -1, -1));
    drawn = ThumbStart();
    QStyleOption option;
    option.initFrom(this);
    option.rect = Thumb();
    option.state |= QStyle::State_Raised;
    option.state.setFlag(QStyle::State_MouseOver, false);
    // The style marks the focus only if a key brought it.
    option.state.setFlag(QStyle::State_KeyboardFocusChange, hasFocus());
    style()->drawPrimitive(QStyle::PE_PanelButtonCommand, &option, &painter, this);
}

void TrackbarWidget::mousePressEvent(QMouseEvent* event)
{
    SendPointer(handle, *event);
}

void TrackbarWidget::mouseReleaseEvent(QMouseEvent* event)
{
    SendPointer(handle, *event);
}

void TrackbarWidget::mouseMoveEvent(QMouseEvent* event)
{
    SendPointer(handle, *event);
}

void TrackbarWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    // To this class the second press of a double click is a press like any other.
    QMouseEvent press(QEvent::MouseButtonPress, event->position(), event->globalPosition(),
                      event->button(), event->buttons(), event->modifiers());
    SendPointer(handle, press);
    event->accept();
}

void TrackbarWidget::keyPressEvent(QKeyEvent* event)
{
    SendKey(handle, *event);
}

void TrackbarWidget::keyReleaseEvent(QKeyEvent* event)
{
    SendKey(handle, *event);
}

} // namespace tavrix::platform
