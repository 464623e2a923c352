// Where the rows of a list lie in each of its four views, in pixels from the corner of the whole
// contents. All rows have one size; they go down in report view, down and then to the right in list
// view, to the right and then down in the two icon views.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <QPoint>
#include <QRect>
#include <QSize>

#include <utility>

namespace tavrix::platform
{

struct ListLayout {
    DWORD view = LVS_ICON;
    int rows = 0;
    QSize cell{1, 1};
    int inLine = 1; // rows of a column in list view, of a line in the icon views

    /// Lays the rows out for a viewport that is that large with no scroll bar; a bar takes `bar`
    /// pixels where one is needed. Gives what is left of the viewport.
    QSize Fit(QSize viewport, int bar);

    QSize Contents() const;
    QRect Cell(int row) const;
    /// The row whose cell holds the point; -1 for none.
    int RowAt(QPoint point) const;
    /// The rows that may show in an area, from the first to behind the last; some of them may not.
    std::pair<int, int> RowsIn(const QRect& area) const;
    /// The row to which a key (VK_UP, ..., VK_HOME, VK_NEXT) leads from a row of a viewport of that
    /// size; the row itself at the edge and for other keys.
    int Neighbour(int row, int key, QSize viewport) const;

private:
    int Lines() const { return (rows + inLine - 1) / inLine; }
    void FitLines(int room, int cellSide);
};

} // namespace tavrix::platform
