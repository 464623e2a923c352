#include "platform/qt/ListLayout.h"

#include <algorithm>

namespace tavrix::platform
{

void ListLayout::FitLines(int room, int cellSide)
{
    inLine = view == LVS_REPORT ? 1 : std::max(1, room / cellSide);
}

QSize ListLayout::Fit(QSize viewport, int bar)
{
    QSize left = viewport;
    // A bar takes room that may make the other one necessary, hence the second round.
    for (int round = 0; round < 2; ++round) {
        FitLines(view == LVS_LIST ? left.height() : left.width(),
                 view == LVS_LIST ? cell.height() : cell.width());
        const QSize contents = Contents();
        const bool across = contents.width() > left.width();
        const bool down = contents.height() > left.height();
        if (across)
            left.setHeight(viewport.height() - bar);
        if (down)
            left.setWidth(viewport.width() - bar);
    }
    FitLines(view == LVS_LIST ? left.height() : left.width(),
             view == LVS_LIST ? cell.height() : cell.width());
    return left.expandedTo(QSize(0, 0));
}

QSize ListLayout::Contents() const
{
    if (view == LVS_REPORT)
        return {cell.width(), rows * cell.height()};
    const int full = std::min(rows, inLine);
    return view == LVS_LIST ? QSize(Lines() * cell.width(), full * cell.height())
                            : QSize(full * cell.width(), Lines() * cell.height());
}

QRect ListLayout::Cell(int row) const
{
    const int line = row / inLine;
    const int place = row % inLine;
    const int x = view == LVS_LIST ? line : place;
    const int y = view == LVS_LIST ? place : line;
    return {QPoint(x * cell.width(), y * cell.height()), cell};
}

int ListLayout::RowAt(QPoint point) const
{
    if (point.x() < 0 || point.y() < 0)
        return -1;
    const int x = point.x() / cell.width();
    const int y = point.y() / cell.height();
    const int line = view == LVS_LIST ? x : y;
    const int place = view == LVS_LIST ? y : x;
    if (place >= inLine || line >= Lines())
        return -1;
    const int row = line * inLine + place;
    return row < rows ? row : -1;
}

std::pair<int, int> ListLayout::RowsIn(const QRect& area) const
{
    const int first = view == LVS_LIST ? area.left() / cell.width() : area.top() / cell.height();
    const int last = view == LVS_LIST ? area.right() / cell.width() : area.bottom() / cell.height();
    return {std::clamp(first * inLine, 0, rows), std::clamp((last + 1) * inLine, 0, rows)};
}

int ListLayout::Neighbour(int row, int key, QSize viewport) const
{
    const int last = rows - 1;
    const bool list = view == LVS_LIST;
    const int linesShown =
        list ? viewport.width() / cell.width() : viewport.height() / cell.height();
    const int page = std::max(1, linesShown - (view == LVS_REPORT ? 1 : 0)) * inLine;
    int step = 0;
    switch (key) {
    case VK_HOME:
        return 0;
    case VK_END:
        return last;
    case VK_PRIOR:
        return std::max(0, row - page);
    case VK_NEXT:
        return std::min(last, row + page);
    case VK_UP:
        step = list ? -1 : -inLine;
        break;
    case VK_DOWN:
        step = list ? 1 : inLine;
        break;
    case VK_LEFT:
        step = list ? -inLine : -1;
        break;
    case VK_RIGHT:
        step = list ? inLine : 1;
        break;
    default:
        break;
    }
    if (view == LVS_REPORT && (key == VK_LEFT || key == VK_RIGHT))
        return row; // these scroll
    return row + step >= 0 && row + step <= last ? row + step : row;
}

} // namespace tavrix::platform
