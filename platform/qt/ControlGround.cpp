#include "platform/qt/ControlGround.h"

#include "platform/qt/Backing.h"

namespace tavrix::platform
{

std::optional<COLORREF> GroundOf(HWND control)
{
    Window* window = FindWindowRecord(control);
    if (window == nullptr || window->destroying || window->painting == nullptr)
        return std::nullopt;
    if (PaintingOf(*window).groundKnown)
        return PaintingOf(*window).ground;
    // Known already while the parent is asked: what it draws then must not make it asked again.
    PaintingOf(*window).groundKnown = true;
    std::optional<COLORREF> ground;
    COLORREF color = 0;
    const HDC dc = GetDC(control);
    const LRESULT brush =
        SendMessageW(GetParent(control), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc),
                     reinterpret_cast<LPARAM>(control));
    ReleaseDC(control, dc);
    if (BrushColor(reinterpret_cast<HGDIOBJ>(brush), &color))
        ground = color;
    window = FindWindowRecord(control);
    if (window != nullptr && window->painting != nullptr)
        PaintingOf(*window).ground = ground;
    return ground;
}

void ForgetGround(Window& control)
{
    if (control.painting != nullptr)
        PaintingOf(control).groundKnown = false;
}

} // namespace tavrix::platform
