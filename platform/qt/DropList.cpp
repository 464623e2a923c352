#include "platform/qt/DropList.h"

#include "platform/qt/Window.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

/// What the list lies on: the device screen, or the host window of a dialog too large for it.
QWidget* GroundOfList(const QWidget* box)
{
    QWidget* screen = ScreenWidget();
    return box->window() == screen->window() ? screen : box->window();
}

bool IsPress(QEvent::Type type)
{
    return type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick ||
           type == QEvent::Wheel;
}

} // namespace

DropList::DropList(HWND window, QWidget* box, std::shared_ptr<const ChoiceModel> model)
    : ChoiceView(std::move(model), GroundOfList(box)), handle(window), combo(box)
{
    setFont(box->font());
    setFocusPolicy(Qt::NoFocus);
    verticalScrollBar()->setFocusPolicy(Qt::NoFocus);
    setFrameShape(QFrame::Box);
    setFrameShadow(QFrame::Plain);
    setAutoFillBackground(true);
    viewport()->setMouseTracking(true);
    QCoreApplication::instance()->installEventFilter(this);
}

void DropList::Place(int height)
{
    wantedHeight = height;
    const QRect ground = parentWidget()->rect();
    const QRect box(combo->mapTo(parentWidget(), QPoint(0, 0)), combo->size());
    const int frame = 2 * frameWidth();
    const QSize needed = RowsSize();

    const int below = ground.bottom() - box.bottom();
    const int above = box.top() - ground.top();
    // An empty list shows as an empty row.
    const int wanted = std::min(height, std::max(needed.height(), RowHeight()) + frame);
    const bool under = wanted <= below || below >= above;
    int shown = std::min(wanted, under ? below : above);
    // Whole rows alone.
    shown = std::max(1, (shown - frame) / RowHeight()) * RowHeight() + frame;

    const int bar = needed.height() + frame > shown ? verticalScrollBar()->sizeHint().width() : 0;
    const int width = std::min(ground.width(), std::max(box.width(), needed.width() + frame + bar));
    const int left = std::clamp(box.left(), ground.left(), ground.right() + 1 - width);
    setGeometry(left, under ? box.bottom() + 1 : box.top() - shown, width, shown);
}

void DropList::Bury()
{
    QCoreApplication::instance()->removeEventFilter(this);
    hide();
    BuryWidget(this);
}

bool DropList::eventFilter(QObject* object, QEvent* event)
{
    if (!object->isWidgetType())
        return false;
    auto* widget = static_cast<QWidget*>(object);
    if (IsPress(event->type())) {
        if (widget == combo || widget == this || isAncestorOf(widget) ||
            (event->type() == QEvent::Wheel && combo->isAncestorOf(widget)))
            return false;
        DropListDone(handle, -1); // and the press goes on to where it points
    } else if (event->type() == QEvent::Move || event->type() == QEvent::Resize) {
        if (widget == combo || widget->isAncestorOf(combo))
            Place(wantedHeight);
    } else if (event->type() == QEvent::Hide && widget == combo) {
        DropListDone(handle, -1);
    }
    return false;
}

void DropList::mousePressEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() == Qt::LeftButton)
        mouseMoveEvent(event);
}

void DropList::mouseDoubleClickEvent(QMouseEvent* event)
{
    mousePressEvent(event);
}

void DropList::mouseMoveEvent(QMouseEvent* event)
{
    event->accept();
    const int row = RowAt(viewport()->mapTo(this, event->position().toPoint()));
    if (row >= 0 && row != Lit())
        Light(row);
}

void DropList::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    const int row = RowAt(viewport()->mapTo(this, event->position().toPoint()));
    if (row >= 0)
        DropListDone(handle, row);
}

void DropList::wheelEvent(QWheelEvent* event)
{
    ChoiceView::wheelEvent(event);
    event->accept(); // at its end too it is the list's
}

} // namespace tavrix::platform
