// Composing and showing the view: black, the visible part of the picture, the surface, the window.

#include "foundation/Numbers.h"
#include "shell/MainFrame.h"

#include <algorithm>
#include <math.h>
#include <utility>

namespace
{

constexpr u32 OutsideColor = 0x000000FF; // opaque black

} // namespace

// What of the picture the whole view shows, in picture coordinates, and where, in the window's.
MainFrame::ViewRectangles MainFrame::GetViewRectangles() const
{
    ViewRectangles view = {{scrollX, scrollY},
                           {screenWidth * zoom + scrollX - 1, screenHeight * zoom + scrollY - 1},
                           {0, 0},
                           {screenWidth - 1.0, screenHeight - 1.0}};
    ViewToWindow(&view.targetTopLeft);
    ViewToWindow(&view.targetBottomRight);
    return view;
}

void MainFrame::ShowSurface(i32 left, i32 top, i32 width, i32 height)
{
    surface.Present(&viewRaster, dither != 0 ? 1 : 0);
    HDC dc = GetDC(window);
    BitBlt(dc, left, top, width, height, surface.GetDC(), left, top, SRCCOPY);
    ReleaseDC(window, dc);
    ValidateRect(window, nullptr);
}

void MainFrame::RedrawView()
{
    viewRaster.FillAll(OutsideColor);
    // A zoom of 0 comes from fitting a picture of no size, and shows nothing.
    if (imagePresent != 0 && zoom > 0) {
        const ViewRectangles view = GetViewRectangles();
        image->StretchRect(&viewRaster, view.sourceTopLeft.x, view.sourceTopLeft.y,
                           view.sourceBottomRight.x, view.sourceBottomRight.y, view.targetTopLeft.x,
                           view.targetTopLeft.y, view.targetBottomRight.x,
                           view.targetBottomRight.y);
    }
    ShowSurface(0, 0, screenWidth, screenHeight);
}

i32 MainFrame::RedrawRegion(f64 left, f64 top, f64 right, f64 bottom)
{
    if (imagePresent == 0)
        return NothingDone;
    i32 l = TruncateToSigned(floor(left));
    i32 r = TruncateToSigned(ceil(right));
    i32 t = TruncateToSigned(floor(top));
    i32 b = TruncateToSigned(ceil(bottom));
    if (l >= screenWidth || t >= screenHeight || r < 0 || b < 0)
        return Done;
    l = std::max(l, 0);
    t = std::max(t, 0);
    r = std::min(r, screenWidth - 1);
    b = std::min(b, screenHeight - 1);
    if (l > r)
        std::swap(l, r);
    if (t > b)
        std::swap(t, b);
    // The black fill is skipped: what the picture does not cover stays as it is.
    if (zoom > 0) {
        const ViewRectangles view = GetViewRectangles();
        image->StretchRegion(&viewRaster, view.sourceTopLeft.x, view.sourceTopLeft.y,
                             view.sourceBottomRight.x, view.sourceBottomRight.y,
                             view.targetTopLeft.x, view.targetTopLeft.y, view.targetBottomRight.x,
                             view.targetBottomRight.y, l, t, r, b);
    }
    ShowSurface(l, t, r - l + 1, b - t + 1);
    return Done;
}
