// What a list control shows: the rows of its model in the view that its style asks for, with scroll
// bars, and in report view the columns' heads, which tell of clicks and take being dragged wider.
// It draws and finds rows under a point; what input does to the rows is the control's (ListInput).
// Pixels of the widget. User-interface thread.
#pragma once

#include "platform/qt/ListLayout.h"
#include "platform/qt/ListModel.h"
#include "platform/qt/TypedSearch.h"

#include <QAbstractScrollArea>

#include <memory>

namespace tavrix::platform
{

/// What the control keeps; shared by the window and the widget, of which either may go first.
struct ListState {
    ListModel model;
    HIMAGELIST images[2] = {}; // LVSIL_NORMAL, LVSIL_SMALL; the program's own
    DWORD style = 0;
    int anchor = -1; // where a selection of several rows begins
    int pressedRow = NoPress;
    TypedSearch typed;

    static constexpr int NoPress = -2;
};

class ListHeader;

class ListWidget : public QAbstractScrollArea
{
public:
    ListWidget(HWND window, std::shared_ptr<ListState> shown, bool framed, QWidget* parent);

    /// Rows, columns, texts, images or the style are others now: laid out and drawn at the loop's
    /// next turn.
    void Renew();
    /// Rows look another way at the same place.
    void Redraw();
    void EnsureVisible(int row, bool partOfItIsEnough);

    /// The row whose picture or text lies under the point, in report view any part of it; -1.
    int RowAt(QPoint point);
    /// The column under the point in report view, else 0.
    int ColumnAt(QPoint point) const;
    /// A row's whole place, its picture or its label (LVIR_BOUNDS, LVIR_ICON, LVIR_LABEL).
    QRect PlaceOf(int row, int part);
    /// See ListLayout.
    int Neighbour(int row, int key);
    int CellWidth();
    void ScrollSideways(bool right);
    /// Makes a column, or each, as wide as its head and its texts need.
    void FitColumn(int column);
    void FitColumns();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int x, int y) override;

private:
    struct Parts {
        QRect picture;
        QRect label;
    };
    DWORD View() const { return state->style & LVS_TYPEMASK; }
    HIMAGELIST Images() const;
    void Fit();
    void FitCell();
    int NeededWidth(int column) const;
    int LabelLeft() const; // in a line, behind its picture
    QPoint Offset() const;
    Parts PartsOf(int row) const;
    QRect IconLabel(const QRect& cell, const QString& text) const;
    void PaintRow(QPainter& painter, int row);
    void PaintSubItems(QPainter& painter, int row, const QRect& cell);

    std::shared_ptr<ListState> state;
    ListHeader* header;
    ListLayout places;
    QSize picture;     // of the image list in use; (0, 0) without one
    bool stale = true; // the layout does not fit the rows any more
};

} // namespace tavrix::platform
