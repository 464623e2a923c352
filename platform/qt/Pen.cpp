#include "platform/qt/Pen.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QStyleHints>
#include <QTabletEvent>
#include <QWindow>

namespace tavrix::platform
{
namespace
{

struct Press {
    const QWindow* window = nullptr; // only compared
    Qt::MouseButton button = Qt::NoButton;
    QPointF point;
    quint64 time = 0;
};

/// Whether a press is the second of a double click, by the toolkit's rules for the mouse.
bool IsSecond(const Press& first, const Press& now)
{
    const QStyleHints& hints = *QGuiApplication::styleHints();
    const QPointF way = now.point - first.point;
    return now.window == first.window && now.button == first.button &&
           now.time - first.time < static_cast<quint64>(hints.mouseDoubleClickInterval()) &&
           way.manhattanLength() <= hints.mouseDoubleClickDistance();
}

QEvent::Type MouseType(QWindow& window, const QTabletEvent& pen)
{
    static Press last;
    switch (pen.type()) {
    case QEvent::TabletPress: {
        const Press now{&window, pen.button(), pen.globalPosition(), pen.timestamp()};
        const bool second = IsSecond(last, now);
        last = second ? Press() : now;
        return second ? QEvent::MouseButtonDblClick : QEvent::MouseButtonPress;
    }
    case QEvent::TabletRelease:
        return QEvent::MouseButtonRelease;
    default:
        return QEvent::MouseMove;
    }
}

} // namespace

bool TakePen(QWindow& window, QEvent& event)
{
    if (event.type() != QEvent::TabletPress && event.type() != QEvent::TabletMove &&
        event.type() != QEvent::TabletRelease)
        return false;
    auto& pen = static_cast<QTabletEvent&>(event);
    // Left unaccepted, the toolkit would make a mouse event of it too, though not on every host.
    pen.accept();
    QMouseEvent mouse(MouseType(window, pen), pen.position(), pen.position(), pen.globalPosition(),
                      pen.button(), pen.buttons(), pen.modifiers());
    mouse.setTimestamp(pen.timestamp());
    QCoreApplication::sendEvent(&window, &mouse);
    return true;
}

} // namespace tavrix::platform
