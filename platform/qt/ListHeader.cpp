#include "platform/qt/ListHeader.h"

#include "platform/qt/ControlSupport.h"
#include "platform/qt/DialogFont.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionHeader>

#include <cstdlib>

namespace tavrix::platform
{
namespace
{

constexpr int Padding = 3;
constexpr int GripWidth = 4; // to either side of the line between two columns

} // namespace

Qt::Alignment AlignmentOf(const ListColumn& column)
{
    if (column.format == LVCFMT_RIGHT)
        return Qt::AlignRight | Qt::AlignVCenter;
    return (column.format == LVCFMT_CENTER ? Qt::AlignHCenter : Qt::AlignLeft) | Qt::AlignVCenter;
}

ListHeader::ListHeader(HWND list, std::shared_ptr<ListState> shown, ListWidget* owner)
    : QWidget(owner), window(list), state(std::move(shown)), widget(owner)
{
    setFont(DialogFont());
    setMouseTracking(true);
    setContextMenuPolicy(Qt::PreventContextMenu);
}

void ListHeader::ScrollTo(int offset)
{
    if (offset == scrolled)
        return;
    scrolled = offset;
    update();
}

QSize ListHeader::sizeHint() const
{
    return {0, fontMetrics().height() + 2 * Padding};
}

QRect ListHeader::Section(int column) const
{
    int left = -scrolled;
    for (int before = 0; before < column; ++before)
        left += state->model.Column(before).width;
    return {left, 0, state->model.Column(column).width, height()};
}

int ListHeader::ColumnAt(int x) const
{
    for (int column = 0; column < state->model.ColumnCount(); ++column) {
        const QRect section = Section(column);
        if (x >= section.left() && x < section.left() + section.width())
            return column;
    }
    return -1;
}

int ListHeader::LineAt(int x) const
{
    // From the right, so that a column without width can be drawn open again.
    for (int column = state->model.ColumnCount() - 1; column >= 0; --column) {
        const QRect section = Section(column);
        if (std::abs(x - (section.left() + section.width())) <= GripWidth)
            return column;
    }
    return -1;
}

void ListHeader::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QStyleOptionHeader option;
    option.initFrom(this);
    option.orientation = Qt::Horizontal;
    option.rect = rect();
    style()->drawControl(QStyle::CE_HeaderEmptyArea, &option, &painter, this);
    for (int column = 0; column < state->model.ColumnCount(); ++column) {
        const ListColumn& shown = state->model.Column(column);
        const QRect section = Section(column);
        if (section.isEmpty())
            continue;
        option.rect = section;
        option.section = column;
        option.state.setFlag(QStyle::State_Sunken, pressed == column);
        style()->drawControl(QStyle::CE_HeaderSection, &option, &painter, this);
        const QRect inside = section.adjusted(Padding, 0, -Padding, 0);
        painter.setPen(palette().color(QPalette::ButtonText));
        painter.drawText(inside, static_cast<int>(AlignmentOf(shown)) | Qt::TextSingleLine,
                         fontMetrics().elidedText(QString::fromStdU16String(shown.title),
                                                  Qt::ElideRight, inside.width()));
    }
}

void ListHeader::mousePressEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    const int x = event->position().toPoint().x();
    dragged = LineAt(x);
    if (dragged >= 0) {
        const QRect section = Section(dragged);
        grip = section.left() + section.width() - x;
        return;
    }
    pressed = TakesClicks() ? ColumnAt(x) : -1;
    update();
}

void ListHeader::mouseMoveEvent(QMouseEvent* event)
{
    event->accept();
    const int x = event->position().toPoint().x();
    if ((event->buttons() & Qt::LeftButton) == 0)
        setCursor(LineAt(x) >= 0 ? Qt::SplitHCursor : Qt::ArrowCursor);
    if (dragged < 0 || dragged >= state->model.ColumnCount())
        return;
    state->model.SetColumnWidth(dragged, x + grip - Section(dragged).left());
    widget->Renew();
}

void ListHeader::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    const int clicked = pressed;
    pressed = -1;
    dragged = -1;
    update();
    if (clicked < 0 || !rect().contains(event->position().toPoint()) ||
        ColumnAt(event->position().toPoint().x()) != clicked)
        return;
    NMLISTVIEW record{};
    record.hdr.code = LVN_COLUMNCLICK;
    record.iItem = -1;
    record.iSubItem = clicked;
    NotifyParent(window, &record.hdr);
}

void ListHeader::mouseDoubleClickEvent(QMouseEvent* event)
{
    const int x = event->position().toPoint().x();
    const int line = event->button() == Qt::LeftButton ? LineAt(x) : -1;
    if (line < 0) {
        mousePressEvent(event);
        return;
    }
    event->accept();
    widget->FitColumn(line);
}

} // namespace tavrix::platform
