#include "view/WindowDrag.h"

namespace
{

POINT PointOf(LPARAM packedPoint)
{
    return {static_cast<short>(LOWORD(packedPoint)), static_cast<short>(HIWORD(packedPoint))};
}

} // namespace

void WindowDrag::Begin(HWND window, LPARAM packedPoint)
{
    grip = PointOf(packedPoint);
    SetCapture(window);
}

void WindowDrag::Follow(HWND window, LPARAM packedPoint)
{
    if (GetCapture() != window)
        return;
    const POINT point = PointOf(packedPoint);
    RECT place = {};
    GetWindowRect(window, &place);
    SetWindowPos(window, nullptr, place.left + point.x - grip.x, place.top + point.y - grip.y, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void WindowDrag::End(HWND window, LPARAM packedPoint)
{
    if (GetCapture() != window)
        return;
    Follow(window, packedPoint);
    ReleaseCapture();
}
