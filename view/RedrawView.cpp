// Composing and showing the view: black, the visible part of the picture, the surface, the window.

#include "shell/MainFrame.h"

namespace
{

constexpr u32 OutsideColor = 0x000000FF; // opaque black

} // namespace

void MainFrame::RedrawView()
{
    viewRaster.FillAll(OutsideColor);

    Point topLeft = {0, 0};
    Point bottomRight = {screenWidth - 1.0, screenHeight - 1.0};
    ViewToWindow(&topLeft);
    ViewToWindow(&bottomRight);
    // A zoom of 0 comes from fitting a picture of no size, and shows nothing.
    if (imagePresent != 0 && zoom > 0)
        image->StretchRect(&viewRaster, scrollX, scrollY, screenWidth * zoom + scrollX - 1,
                           screenHeight * zoom + scrollY - 1, topLeft.x, topLeft.y, bottomRight.x,
                           bottomRight.y);

    surface.Present(&viewRaster, dither != 0 ? 1 : 0);
    HDC dc = GetDC(window);
    BitBlt(dc, 0, 0, screenWidth, screenHeight, surface.GetDC(), 0, 0, SRCCOPY);
    ReleaseDC(window, dc);
    ValidateRect(window, nullptr);
}
