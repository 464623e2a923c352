// The three coordinate spaces: window (client area, command bar at the top), view (window less the
// client origin) and picture (pixel (i, j) covers the square from (i, j) to (i+1, j+1)).

#include "foundation/Numbers.h"
#include "shell/MainFrame.h"

namespace
{

/// Sends the integer part of a point through one of the platform's conversions and keeps the
/// fraction.
template <class Convert>
i32 ConvertWhole(MainFrame::Point* point, Convert convert)
{
    if (point == nullptr)
        return NothingDone;
    const POINT whole = {TruncateToSigned(point->x), TruncateToSigned(point->y)};
    POINT moved = whole;
    convert(&moved);
    point->x += static_cast<f64>(moved.x) - whole.x;
    point->y += static_cast<f64>(moved.y) - whole.y;
    return Done;
}

} // namespace

i32 MainFrame::WindowToView(Point* point) const
{
    if (point == nullptr)
        return NothingDone;
    point->x -= clientOriginX;
    point->y -= clientOriginY;
    return Done;
}

i32 MainFrame::ViewToWindow(Point* point) const
{
    if (point == nullptr)
        return NothingDone;
    point->x += clientOriginX;
    point->y += clientOriginY;
    return Done;
}

i32 MainFrame::ViewToImage(Point* point) const
{
    if (point == nullptr)
        return NothingDone;
    point->x = zoom * point->x + scrollX;
    point->y = zoom * point->y + scrollY;
    return Done;
}

i32 MainFrame::ImageToView(Point* point) const
{
    if (point == nullptr)
        return NothingDone;
    // A zoom of 0 comes from fitting a picture of no size. All of the view then shows one point,
    // and a division would give no number.
    if (zoom == 0) {
        *point = {0, 0};
        return Done;
    }
    point->x = (point->x - scrollX) / zoom;
    point->y = (point->y - scrollY) / zoom;
    return Done;
}

i32 MainFrame::WindowToScreen(Point* point) const
{
    return ConvertWhole(point, [this](POINT* whole) { ClientToScreen(window, whole); });
}

i32 MainFrame::ScreenToWindow(Point* point) const
{
    return ConvertWhole(point, [this](POINT* whole) { ScreenToClient(window, whole); });
}
