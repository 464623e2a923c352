#include "platform/qt/TreeWidget.h"

#include "platform/qt/ControlInput.h"
#include "platform/qt/DialogFont.h"
#include "platform/qt/ImageLists.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

constexpr int RowPadding = 1; // above and below
constexpr int TextPadding = 2;
constexpr int ImageGap = 2;
constexpr int SmallestIndent = 19;
constexpr int ButtonSide = 9;
constexpr QEvent::Type SetBarsEvent = QEvent::User;

} // namespace

TreeWidget::TreeWidget(HWND window, std::shared_ptr<TreeState> shown, QWidget* parent)
    : QAbstractScrollArea(parent), handle(window), state(std::move(shown))
{
    setFont(DialogFont());
    setFrameStyle((state->style & WS_BORDER) != 0 ? QFrame::Box | QFrame::Plain : QFrame::NoFrame);
    // Tab is the dialog's; a pointer press takes the focus as on the device.
    setFocusPolicy(Qt::StrongFocus);
}

void TreeWidget::ItemsChanged()
{
    stale = true;
    rows.clear(); // it may name items that are gone
    viewport()->update();
    if (asked)
        return;
    asked = true;
    QCoreApplication::postEvent(this, new QEvent(SetBarsEvent));
}

void TreeWidget::LayOutHidden()
{
    if (!isVisible())
        SetBars();
}

const std::vector<TreeItem*>& TreeWidget::Rows()
{
    if (!stale)
        return rows;
    stale = false;
    const TreeItem& root = state->items.Root();
    for (TreeItem* item = root.firstChild; item != nullptr;
         item = TreeItems::NextBelow(root, *item, item->expanded)) {
        item->row = static_cast<int>(rows.size());
        rows.push_back(item);
    }
    return rows;
}

int TreeWidget::RowHeight() const
{
    return std::max(fontMetrics().height(), state->imageSize.height()) + 2 * RowPadding;
}

int TreeWidget::Indent() const
{
    return std::max(SmallestIndent, RowHeight());
}

int TreeWidget::PageRows() const
{
    return std::max(1, viewport()->height() / RowHeight());
}

bool TreeWidget::HasRootColumn() const
{
    return (state->style & TVS_LINESATROOT) != 0 &&
           (state->style & (TVS_HASLINES | TVS_HASBUTTONS)) != 0;
}

bool TreeWidget::HasColumn(const TreeItem& item) const
{
    return item.level > 0 || HasRootColumn();
}

bool TreeWidget::ShowsButton(const TreeItem& item) const
{
    return (state->style & TVS_HASBUTTONS) != 0 && item.HasChildren() && HasColumn(item);
}

int TreeWidget::Left(const TreeItem& item) const
{
    const int columns = item.level + (HasRootColumn() ? 1 : 0);
    return columns * Indent() - horizontalScrollBar()->value();
}

QRect TreeWidget::TextPlace(TreeItem& item, int top) const
{
    if (item.textWidth < 0)
        item.textWidth = fontMetrics().horizontalAdvance(QString::fromStdU16String(item.text));
    const int images = state->imageSize.width();
    return {Left(item) + (images > 0 ? images + ImageGap : 0), top,
            item.textWidth + 2 * TextPadding, RowHeight()};
}

bool TreeWidget::Reveal(const TreeItem& item)
{
    SetBars();
    const auto& shown = Rows();
    const auto at = static_cast<size_t>(item.row);
    if (item.row < 0 || at >= shown.size() || shown[at] != &item)
        return false;
    QScrollBar* bar = verticalScrollBar();
    const int before = bar->value();
    bar->setValue(std::clamp(before, item.row - PageRows() + 1, item.row));
    return bar->value() != before;
}

TreeWidget::Hit TreeWidget::HitTest(QPoint at)
{
    const auto& shown = Rows();
    const int row = verticalScrollBar()->value() + at.y() / RowHeight();
    if (at.y() < 0 || static_cast<size_t>(row) >= shown.size())
        return {};
    TreeItem& item = *shown[static_cast<size_t>(row)];
    const int left = Left(item);
    if (at.x() < left)
        return ShowsButton(item) && at.x() >= left - Indent() ? Hit{Part::Button, &item} : Hit{};
    return at.x() <= TextPlace(item, 0).right() ? Hit{Part::Item, &item} : Hit{};
}

int TreeWidget::ContentWidth()
{
    int right = 0;
    for (TreeItem* item : Rows())
        right = std::max(right, TextPlace(*item, 0).right() + 1);
    return right + horizontalScrollBar()->value();
}

void TreeWidget::SetRanges(int width)
{
    const int count = static_cast<int>(rows.size());
    // Each bar takes room that may be what makes the other one needed; without both all may fit.
    const QSize most = maximumViewportSize();
    if (width <= most.width() && count * RowHeight() <= most.height()) {
        horizontalScrollBar()->setRange(0, 0);
        verticalScrollBar()->setRange(0, 0);
        return;
    }
    verticalScrollBar()->setPageStep(PageRows());
    verticalScrollBar()->setRange(0, std::max(0, count - PageRows()));
    horizontalScrollBar()->setPageStep(viewport()->width());
    horizontalScrollBar()->setSingleStep(Indent());
    horizontalScrollBar()->setRange(0, std::max(0, width - viewport()->width()));
}

void TreeWidget::SetBars()
{
    if (settingBars)
        return; // the layout below resizes the viewport
    settingBars = true;
    // Two bars that come and the size of a window that was hidden settle in less.
    constexpr int MostTurns = 4;
    const int width = ContentWidth();
    QSize before;
    for (int turn = 0; turn < MostTurns && viewport()->size() != before; ++turn) {
        before = viewport()->size();
        SetRanges(width);
        // The area itself would show and hide its bars only later, over the row just revealed.
        QResizeEvent layOut(size(), size());
        QAbstractScrollArea::event(&layOut);
    }
    settingBars = false;
}

bool TreeWidget::event(QEvent* event)
{
    if (event->type() != SetBarsEvent)
        return QAbstractScrollArea::event(event);
    asked = false;
    SetBars();
    return true;
}

void TreeWidget::resizeEvent(QResizeEvent*)
{
    SetBars();
}

void TreeWidget::changeEvent(QEvent* event)
{
    QAbstractScrollArea::changeEvent(event);
    Redraw();
}

void TreeWidget::focusInEvent(QFocusEvent*)
{
    Redraw();
}

void TreeWidget::focusOutEvent(QFocusEvent*)
{
    Redraw();
}

void TreeWidget::mousePressEvent(QMouseEvent* event)
{
    SendPointer(handle, *event);
}

void TreeWidget::mouseReleaseEvent(QMouseEvent* event)
{
    SendPointer(handle, *event);
}

void TreeWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    SendPointer(handle, *event);
}

void TreeWidget::mouseMoveEvent(QMouseEvent* event)
{
    SendPointer(handle, *event);
}

void TreeWidget::keyPressEvent(QKeyEvent* event)
{
    SendKey(handle, *event);
}

void TreeWidget::keyReleaseEvent(QKeyEvent* event)
{
    SendKey(handle, *event);
}

void TreeWidget::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    const auto& shown = Rows();
    const int height = RowHeight();
    const int top = verticalScrollBar()->value();
    const int first = top + event->rect().top() / height;
    const int last =
        std::min(top + event->rect().bottom() / height, static_cast<int>(shown.size()) - 1);
    for (int row = first; row <= last; ++row)
        PaintRow(painter, *shown[static_cast<size_t>(row)], (row - top) * height);
}

void TreeWidget::PaintRow(QPainter& painter, TreeItem& item, int top)
{
    if ((state->style & TVS_HASLINES) != 0)
        PaintLines(painter, item, top);
    if (ShowsButton(item))
        PaintButton(painter, item, top);
    const int index = &item == state->selected ? item.selectedImage : item.image;
    const QPixmap picture = ImageListPicture(state->images, index);
    if (!picture.isNull())
        painter.drawPixmap(Left(item), top + (RowHeight() - picture.height()) / 2, picture);
    PaintText(painter, item, top);
}

void TreeWidget::PaintLines(QPainter& painter, const TreeItem& item, int top) const
{
    const int height = RowHeight();
    const int middle = top + height / 2;
    painter.setPen(QPen(palette().color(QPalette::Dark), 1, Qt::DotLine));
    int x = Left(item) - Indent() / 2;
    if (HasColumn(item)) {
        if (item.level > 0 || item.previous != nullptr)
            painter.drawLine(x, top, x, middle);
        if (item.next != nullptr)
            painter.drawLine(x, middle, x, top + height);
        painter.drawLine(x, middle, Left(item) - 2, middle);
    }
    for (const TreeItem* above = item.parent; above->level >= 0; above = above->parent) {
        x -= Indent();
        if (above->next != nullptr && HasColumn(*above))
            painter.drawLine(x, top, x, top + height);
    }
}

void TreeWidget::PaintButton(QPainter& painter, const TreeItem& item, int top) const
{
    const QPoint middle(Left(item) - Indent() / 2, top + RowHeight() / 2);
    const QRect box(middle - QPoint(ButtonSide / 2, ButtonSide / 2), QSize(ButtonSide, ButtonSide));
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    painter.fillRect(box, palette().color(group, QPalette::Base));
    painter.setPen(palette().color(QPalette::Dark));
    painter.drawRect(box.adjusted(0, 0, -1, -1));
    painter.setPen(palette().color(group, QPalette::Text));
    constexpr int Arm = ButtonSide / 2 - 2;
    painter.drawLine(middle - QPoint(Arm, 0), middle + QPoint(Arm, 0));
    if (!item.expanded)
        painter.drawLine(middle - QPoint(0, Arm), middle + QPoint(0, Arm));
}

void TreeWidget::PaintText(QPainter& painter, TreeItem& item, int top)
{
    const QRect place = TextPlace(item, top);
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    QPalette::ColorRole ink = QPalette::Text;
    if (&item == state->selected) {
        if (hasFocus() && isEnabled()) {
            painter.fillRect(place, palette().color(group, QPalette::Highlight));
            ink = QPalette::HighlightedText;
        } else if ((state->style & TVS_SHOWSELALWAYS) != 0) {
            painter.fillRect(place, palette().color(group, QPalette::Midlight));
        }
    }
    painter.setPen(palette().color(group, ink));
    painter.drawText(place.adjusted(TextPadding, 0, 0, 0),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
                     QString::fromStdU16String(item.text));
}

} // namespace tavrix::platform
