// Composing and showing the view, the whole of it or a part: black, the visible part of the
// picture, the marks of the selection, the scroll tool's marker, the surface, the window.

#include "foundation/Numbers.h"
#include "shell/MainFrame.h"

#include <algorithm>
#include <math.h>
#include <utility>

namespace
{

constexpr u32 OutsideColor = 0x000000FF; // opaque black

// The markers' rectangles in the sprites. Meant: their right and bottom edges count as inside, so
// that a marker is asked one column wider and one row higher than it is. There is no such column;
// the row is the next marker's first, and shows below the first marker.
constexpr PixelRect PressedMarker = {0, 0, 21, 24};
constexpr PixelRect DraggingMarker = {0, 24, 21, 48};

i32 FloorToSigned(f64 value)
{
    return TruncateToSigned(floor(value));
}

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

// The selection's marks in the view, in window coordinates. Meant: the two ways of redrawing round
// the lower right corner differently, and at a fractional zoom the marks can differ by a pixel.
// `region` tells which way.
PixelRect MainFrame::GetSelectionMarks(bool region) const
{
    Point topLeft = {selectionLeft, selectionTop};
    ImageToView(&topLeft);
    ViewToWindow(&topLeft);
    const i32 left = FloorToSigned(topLeft.x);
    const i32 top = FloorToSigned(topLeft.y);
    Point bottomRight = {ceil(selectionRight), ceil(selectionBottom)};
    ImageToView(&bottomRight);
    if (region) {
        bottomRight = {ceil(bottomRight.x), ceil(bottomRight.y)};
        ViewToWindow(&bottomRight);
        return {left, top, TruncateToSigned(bottomRight.x), TruncateToSigned(bottomRight.y)};
    }
    ViewToWindow(&bottomRight);
    return {left, top, FloorToSigned(bottomRight.x), FloorToSigned(bottomRight.y)};
}

// While the pen draws the selection it has its frame alone; at rest it is tinted.
void MainFrame::DrawSelection(const PixelRect& marks)
{
    if (selecting == 0 && selectionActive == 0)
        return;
    (void)viewRaster.InvertFrame(marks);
    if (selecting == 0 && selectionFrame != 0)
        (void)viewRaster.FillRect(selectionFrameColor, marks);
}

void MainFrame::DrawMarker()
{
    if (toolPhase != PhasePressed && toolPhase != PhaseDragging)
        return;
    const PixelRect& marker = toolPhase == PhasePressed ? PressedMarker : DraggingMarker;
    const i32 width = marker.right - marker.left + 1;
    const i32 height = marker.bottom - marker.top + 1;
    // Without the markers' picture there is nothing to draw, which is no fault.
    (void)sprites->CompositeTo(marker.left, marker.top, width, height, &viewRaster,
                               TruncateToSigned(toolPoint.x) - (width >> 1),
                               TruncateToSigned(toolPoint.y) - (height >> 1));
}

// Presents all of the view, and copies a part of it to the window.
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
    DrawSelection(GetSelectionMarks(false));
    DrawMarker();
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
    // Meant: the marks are drawn in full, and where they lie outside the part they have not been
    // cleared: there the frame inverts back and the tint grows stronger until the whole view is
    // drawn again.
    DrawSelection(GetSelectionMarks(true));
    DrawMarker();
    ShowSurface(l, t, r - l + 1, b - t + 1);
    return Done;
}
