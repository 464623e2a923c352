// Painting copies from the surface; it never composes.

#include "shell/MainFrame.h"

void MainFrame::OnPaint()
{
    if (!GetUpdateRect(window, nullptr, FALSE))
        return;
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(window, &paint);
    const RECT& part = paint.rcPaint;
    // One pixel more to the right and below than the paint rectangle names.
    BitBlt(dc, part.left, part.top, part.right - part.left + 1, part.bottom - part.top + 1,
           surface.GetDC(), part.left, part.top, SRCCOPY);
    EndPaint(window, &paint);
}
