#include "platform/qt/ListWidget.h"

#include "platform/qt/DialogFont.h"
#include "platform/qt/ImageLists.h"
#include "platform/qt/ListHeader.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPainter>
#include <QPaintEvent>
#include <QScrollBar>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

constexpr int Margin = 2;
constexpr int LabelPadding = 3;
constexpr int WidestLabel = 240; // in list and small-icon view
// The grid of the icon view around its pictures.
constexpr int IconSpacing = 43;
constexpr int IconTop = 4;
constexpr int IconLabelLines = 2;

QString TextOf(const ListCell* cell)
{
    return cell != nullptr ? QString::fromStdU16String(cell->text) : QString();
}

} // namespace

ListWidget::ListWidget(HWND handle, std::shared_ptr<ListState> shown, bool framed, QWidget* parent)
    : QAbstractScrollArea(parent), state(std::move(shown)),
      header(new ListHeader(handle, state, this))
{
    setFont(DialogFont());
    setFrameShape(framed ? QFrame::StyledPanel : QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    // The toolkit's own menu of a scroll bar would run a loop of its own.
    horizontalScrollBar()->setContextMenuPolicy(Qt::PreventContextMenu);
    verticalScrollBar()->setContextMenuPolicy(Qt::PreventContextMenu);
    setContextMenuPolicy(Qt::PreventContextMenu);
    viewport()->setContextMenuPolicy(Qt::PreventContextMenu);
    viewport()->setBackgroundRole(QPalette::Base);
    header->hide();
}

HIMAGELIST ListWidget::Images() const
{
    return state->images[View() == LVS_ICON ? LVSIL_NORMAL : LVSIL_SMALL];
}

void ListWidget::Renew()
{
    viewport()->update();
    header->update();
    if (!stale)
        QCoreApplication::postEvent(this, new QEvent(QEvent::LayoutRequest));
    stale = true;
}

void ListWidget::Redraw()
{
    viewport()->update();
}

bool ListWidget::event(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest) {
        Fit();
        return true;
    }
    if (event->type() == QEvent::FontChange) {
        header->setFont(font());
        Renew();
    }
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        Redraw();
    return QAbstractScrollArea::event(event);
}

void ListWidget::FitCell()
{
    const QFontMetrics metrics = fontMetrics();
    const ListModel& model = state->model;
    picture = ImageListSize(Images()).expandedTo(QSize(0, 0));
    const int line = std::max(metrics.height(), picture.height()) + 2 * Margin;
    int width = 0;
    switch (View()) {
    case LVS_ICON:
        places.cell = {std::max(picture.width(), 32) + IconSpacing,
                       picture.height() + IconLabelLines * metrics.height() + 3 * IconTop};
        return;
    case LVS_REPORT:
        for (int column = 0; column < model.ColumnCount(); ++column)
            width += model.Column(column).width;
        break;
    default:
        for (int row = 0; row < model.RowCount() && width < WidestLabel; ++row)
            width = std::max(width, metrics.horizontalAdvance(TextOf(model.Cell(row, 0))));
        width = std::min(width, WidestLabel) + picture.width() + 2 * (LabelPadding + Margin) + 8;
        break;
    }
    places.cell = {std::max(width, 1), line};
}

void ListWidget::Fit()
{
    if (!stale)
        return;
    // Bars that come and go resize the viewport, which comes back here.
    stale = false;
    const bool report = View() == LVS_REPORT;
    const int headerHeight = report ? header->sizeHint().height() : 0;
    header->setVisible(report);
    setViewportMargins(0, headerHeight, 0, 0);
    header->setGeometry(frameWidth(), frameWidth(), width() - 2 * frameWidth(), headerHeight);

    places.view = View();
    places.rows = state->model.RowCount();
    FitCell();
    const QSize room = maximumViewportSize();
    const QSize shown = places.Fit(room, verticalScrollBar()->sizeHint().width());
    const QSize contents = places.Contents();
    verticalScrollBar()->setRange(0, std::max(0, contents.height() - shown.height()));
    verticalScrollBar()->setPageStep(shown.height());
    verticalScrollBar()->setSingleStep(places.cell.height());
    horizontalScrollBar()->setRange(0, std::max(0, contents.width() - shown.width()));
    horizontalScrollBar()->setPageStep(shown.width());
    horizontalScrollBar()->setSingleStep(View() == LVS_LIST ? places.cell.width() : 16);
    header->ScrollTo(horizontalScrollBar()->value());
}

void ListWidget::resizeEvent(QResizeEvent*)
{
    stale = true;
    Fit();
}

void ListWidget::scrollContentsBy(int, int)
{
    viewport()->update();
    header->ScrollTo(horizontalScrollBar()->value());
}

QPoint ListWidget::Offset() const
{
    return {horizontalScrollBar()->value(), verticalScrollBar()->value()};
}

QRect ListWidget::IconLabel(const QRect& cell, const QString& text) const
{
    const QRect room(cell.left() + Margin, cell.top() + picture.height() + 2 * IconTop,
                     cell.width() - 2 * Margin, IconLabelLines * fontMetrics().height());
    const QRect needed = fontMetrics().boundingRect(
        room, Qt::AlignHCenter | Qt::TextWrapAnywhere | Qt::TextWordWrap, text);
    return needed.adjusted(-Margin, 0, Margin, 0).intersected(room);
}

int ListWidget::LabelLeft() const
{
    // Without pictures the texts stand below their column's head.
    return picture.isEmpty() ? 0 : picture.width() + 2 * Margin;
}

ListWidget::Parts ListWidget::PartsOf(int row) const
{
    const QRect cell = places.Cell(row).translated(-Offset());
    const QString text = TextOf(state->model.Cell(row, 0));
    Parts parts;
    if (places.view == LVS_ICON) {
        const QPoint corner(cell.left() + (cell.width() - picture.width()) / 2,
                            cell.top() + IconTop);
        parts.picture = QRect(corner, picture);
        parts.label = IconLabel(cell, text);
        return parts;
    }
    const int above = (cell.height() - picture.height()) / 2;
    parts.picture = QRect(QPoint(cell.left() + Margin, cell.top() + above), picture);
    parts.label = cell;
    parts.label.setLeft(cell.left() + LabelLeft());
    if (places.view != LVS_REPORT)
        parts.label.setWidth(std::min(parts.label.width(),
                                      fontMetrics().horizontalAdvance(text) + 2 * LabelPadding));
    return parts;
}

void ListWidget::PaintSubItems(QPainter& painter, int row, const QRect& cell)
{
    const ListModel& model = state->model;
    int left = cell.left();
    for (int column = 0; column < model.ColumnCount(); ++column) {
        const ListColumn& shown = model.Column(column);
        const QRect place(left, cell.top(), shown.width, cell.height());
        left += shown.width;
        if (column == 0)
            continue;
        const QRect inside = place.adjusted(LabelPadding, 0, -LabelPadding, 0);
        const QString text = painter.fontMetrics().elidedText(TextOf(model.Cell(row, column)),
                                                              Qt::ElideRight, inside.width());
        painter.drawText(inside, static_cast<int>(AlignmentOf(shown)) | Qt::TextSingleLine, text);
    }
}

void ListWidget::PaintRow(QPainter& painter, int row)
{
    const ListModel& model = state->model;
    const Parts parts = PartsOf(row);
    const QPixmap image = ImageListPicture(Images(), model.Cell(row, 0)->image);
    const bool lit =
        model.Row(row).selected && (hasFocus() || (state->style & LVS_SHOWSELALWAYS) != 0);
    const QPalette::ColorGroup group = !isEnabled() ? QPalette::Disabled
                                       : hasFocus() ? QPalette::Active
                                                    : QPalette::Inactive;
    // Without the keyboard a selection that stays to be seen is grey.
    const QColor ground = hasFocus() ? palette().color(group, QPalette::Highlight)
                                     : palette().color(group, QPalette::Mid);
    painter.setPen(
        palette().color(group, lit && hasFocus() ? QPalette::HighlightedText : QPalette::Text));
    if (lit)
        painter.fillRect(parts.label, ground);

    const QString text = TextOf(model.Cell(row, 0));
    if (places.view == LVS_ICON) {
        painter.save();
        painter.setClipRect(parts.label);
        painter.drawText(places.Cell(row)
                             .translated(-Offset())
                             .adjusted(Margin, 0, -Margin, 0)
                             .intersected(QRect(0, parts.label.top(), 1 << 20, 1 << 20)),
                         Qt::AlignHCenter | Qt::TextWrapAnywhere | Qt::TextWordWrap, text);
        painter.restore();
        painter.drawPixmap(parts.picture.topLeft(), image);
    } else {
        QRect first = parts.label.adjusted(LabelPadding, 0, -LabelPadding, 0);
        painter.save();
        if (places.view == LVS_REPORT) {
            const QRect cell = places.Cell(row).translated(-Offset());
            const int width = model.ColumnCount() > 0 ? model.Column(0).width : 0;
            first.setRight(cell.left() + width - LabelPadding - 1);
            PaintSubItems(painter, row, cell);
            painter.setClipRect(QRect(cell.left(), cell.top(), width, cell.height()));
        }
        painter.drawText(
            first, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
            painter.fontMetrics().elidedText(text, Qt::ElideRight, std::max(0, first.width() + 1)));
        painter.drawPixmap(parts.picture.topLeft(), image);
        painter.restore();
    }
    if (row == model.Focus() && hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Text), 1, Qt::DotLine));
        painter.drawRect(parts.label.adjusted(0, 0, -1, -1));
    }
}

void ListWidget::paintEvent(QPaintEvent* event)
{
    Fit();
    QPainter painter(viewport());
    const auto [first, behind] = places.RowsIn(event->rect().translated(Offset()));
    for (int row = first; row < behind; ++row)
        PaintRow(painter, row);
}

void ListWidget::EnsureVisible(int row, bool partOfItIsEnough)
{
    Fit();
    const QRect cell = places.Cell(row);
    const QRect shown(Offset(),
                      QSize(horizontalScrollBar()->pageStep(), verticalScrollBar()->pageStep()));
    if (partOfItIsEnough && shown.intersects(cell))
        return;
    if (cell.top() < shown.top())
        verticalScrollBar()->setValue(cell.top());
    else if (cell.bottom() > shown.bottom())
        verticalScrollBar()->setValue(cell.bottom() + 1 - shown.height());
    if (places.view == LVS_REPORT)
        return; // a line is as wide as all columns
    if (cell.right() > shown.right())
        horizontalScrollBar()->setValue(cell.right() + 1 - shown.width());
    if (cell.left() < horizontalScrollBar()->value())
        horizontalScrollBar()->setValue(cell.left());
}

int ListWidget::RowAt(QPoint point)
{
    Fit();
    const QPoint inside = point - viewport()->pos();
    if (!viewport()->rect().contains(inside))
        return -1;
    const int row = places.RowAt(inside + Offset());
    if (row < 0 || places.view == LVS_REPORT)
        return row;
    const Parts parts = PartsOf(row);
    return parts.picture.contains(inside) || parts.label.contains(inside) ? row : -1;
}

int ListWidget::ColumnAt(QPoint point) const
{
    if (places.view != LVS_REPORT)
        return 0;
    int left = viewport()->x() - Offset().x();
    for (int column = 0; column < state->model.ColumnCount(); ++column) {
        left += state->model.Column(column).width;
        if (point.x() < left)
            return column;
    }
    return 0;
}

QRect ListWidget::PlaceOf(int row, int part)
{
    Fit();
    const Parts parts = PartsOf(row);
    QRect place = part == LVIR_ICON ? parts.picture : parts.label;
    if (part == LVIR_BOUNDS)
        place = View() == LVS_REPORT ? places.Cell(row).translated(-Offset())
                                     : parts.picture.united(parts.label);
    else if (part == LVIR_LABEL && View() == LVS_REPORT && state->model.ColumnCount() > 0)
        place.setRight(state->model.Column(0).width - Offset().x() - 1);
    return place.translated(viewport()->pos());
}

int ListWidget::Neighbour(int row, int key)
{
    Fit();
    return places.Neighbour(
        row, key, QSize(horizontalScrollBar()->pageStep(), verticalScrollBar()->pageStep()));
}

int ListWidget::CellWidth()
{
    Fit();
    return places.cell.width();
}

int ListWidget::NeededWidth(int column) const
{
    const ListModel& model = state->model;
    const QFontMetrics metrics = fontMetrics();
    int texts = 0;
    for (int row = 0; row < model.RowCount(); ++row)
        texts = std::max(texts, metrics.horizontalAdvance(TextOf(model.Cell(row, column))));
    if (column == 0)
        texts += LabelLeft();
    const int head =
        metrics.horizontalAdvance(QString::fromStdU16String(model.Column(column).title));
    return std::max(texts, head) + 2 * LabelPadding;
}

void ListWidget::FitColumn(int column)
{
    Fit();
    state->model.SetColumnWidth(column, NeededWidth(column));
    Renew();
}

void ListWidget::FitColumns()
{
    for (int column = 0; column < state->model.ColumnCount(); ++column)
        FitColumn(column);
}

void ListWidget::ScrollSideways(bool right)
{
    horizontalScrollBar()->triggerAction(right ? QAbstractSlider::SliderSingleStepAdd
                                               : QAbstractSlider::SliderSingleStepSub);
}

} // namespace tavrix::platform
