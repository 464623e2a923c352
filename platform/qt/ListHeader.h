// The heads of a list's columns: a click on one is told as LVN_COLUMNCLICK, the line between two
// can be dragged, and a double click on it makes the column as wide as its texts. User-interface
// thread.
#pragma once

#include "platform/qt/ListWidget.h"

#include <QWidget>

namespace tavrix::platform
{

/// How a column's head and its texts stand.
Qt::Alignment AlignmentOf(const ListColumn& column);

class ListHeader : public QWidget
{
public:
    ListHeader(HWND list, std::shared_ptr<ListState> shown, ListWidget* owner);
    void ScrollTo(int offset);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    QRect Section(int column) const;
    int ColumnAt(int x) const; // -1 behind the last
    int LineAt(int x) const;   // the column whose right edge is there; -1
    bool TakesClicks() const { return (state->style & LVS_NOSORTHEADER) == 0; }

    HWND window;
    std::shared_ptr<ListState> state;
    ListWidget* widget;
    int scrolled = 0;
    int pressed = -1; // the column under the button
    int dragged = -1; // the column whose width follows the pointer
    int grip = 0;     // from the pointer to the dragged edge
};

} // namespace tavrix::platform
