#include "platform/qt/ChoiceView.h"

#include "platform/qt/DialogFont.h"

#include <QEvent>
#include <QPainter>
#include <QPaintEvent>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace tavrix::platform
{
namespace
{

constexpr int RowPadding = 2; // above and below
constexpr int TextPadding = 4;

} // namespace

ChoiceView::ChoiceView(std::shared_ptr<const ChoiceModel> model, QWidget* parent)
    : QAbstractScrollArea(parent), rows(std::move(model))
{
    setFont(DialogFont());
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    // The toolkit's own menu of a scroll bar would run a loop of its own.
    verticalScrollBar()->setContextMenuPolicy(Qt::PreventContextMenu);
    setContextMenuPolicy(Qt::PreventContextMenu);
    viewport()->setContextMenuPolicy(Qt::PreventContextMenu);
    viewport()->setBackgroundRole(QPalette::Base);
}

int ChoiceView::RowHeight() const
{
    return fontMetrics().height() + 2 * RowPadding;
}

QSize ChoiceView::RowsSize() const
{
    int widest = 0;
    for (int row = 0; row < rows->Count(); ++row)
        widest = std::max(
            widest, fontMetrics().horizontalAdvance(QString::fromStdU16String(rows->At(row).text)));
    return {widest + 2 * TextPadding, rows->Count() * RowHeight()};
}

void ChoiceView::Fit()
{
    const int room = viewport()->height();
    verticalScrollBar()->setRange(0, std::max(0, rows->Count() * RowHeight() - room));
    verticalScrollBar()->setPageStep(room);
    verticalScrollBar()->setSingleStep(RowHeight());
}

void ChoiceView::Renew()
{
    if (!rows->Has(lit))
        lit = -1;
    Fit();
    viewport()->update();
}

void ChoiceView::Light(int row)
{
    lit = row;
    viewport()->update();
    if (row < 0)
        return;
    Fit();
    const int top = row * RowHeight();
    QScrollBar* bar = verticalScrollBar();
    if (top < bar->value())
        bar->setValue(top);
    else if (top + RowHeight() > bar->value() + viewport()->height())
        bar->setValue(top + RowHeight() - viewport()->height());
}

int ChoiceView::RowAt(QPoint point) const
{
    const QPoint inside = point - viewport()->pos();
    if (!viewport()->rect().contains(inside))
        return -1;
    const int row = (inside.y() + verticalScrollBar()->value()) / RowHeight();
    return rows->Has(row) ? row : -1;
}

int ChoiceView::RowByKey(int row, int key) const
{
    const int last = rows->Count() - 1;
    const int page = std::max(1, viewport()->height() / RowHeight() - 1);
    if (last < 0)
        return -1;
    switch (key) {
    case VK_UP:
        return std::max(0, row - 1);
    case VK_DOWN:
        return std::min(last, row + 1);
    case VK_PRIOR:
        return std::max(0, row - page);
    case VK_NEXT:
        return std::min(last, std::max(0, row) + page);
    case VK_HOME:
        return 0;
    case VK_END:
        return last;
    default:
        return -1;
    }
}

void ChoiceView::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    const int offset = verticalScrollBar()->value();
    const int width = viewport()->width();
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const int first = (event->rect().top() + offset) / RowHeight();
    const int last = std::min(rows->Count() - 1, (event->rect().bottom() + offset) / RowHeight());
    for (int row = std::max(0, first); row <= last; ++row) {
        const QRect place(0, row * RowHeight() - offset, width, RowHeight());
        const bool marked = row == lit;
        const bool active = marked && LooksActive();
        if (marked)
            painter.fillRect(
                place, palette().color(group, active ? QPalette::Highlight : QPalette::Midlight));
        painter.setPen(palette().color(group, active ? QPalette::HighlightedText : QPalette::Text));
        const QRect inside = place.adjusted(TextPadding, 0, -TextPadding, 0);
        painter.drawText(
            inside, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
            painter.fontMetrics().elidedText(QString::fromStdU16String(rows->At(row).text),
                                             Qt::ElideRight, inside.width()));
    }
}

void ChoiceView::resizeEvent(QResizeEvent*)
{
    Fit();
}

void ChoiceView::changeEvent(QEvent* event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        Fit();
}

bool ChoiceView::event(QEvent* event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        viewport()->update();
    return QAbstractScrollArea::event(event);
}

void ChoiceView::scrollContentsBy(int, int)
{
    viewport()->update();
}

} // namespace tavrix::platform
