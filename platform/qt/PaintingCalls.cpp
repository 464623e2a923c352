// The update region of a window and the calls around WM_PAINT.
#include "platform/core/MessageQueue.h"
#include "platform/qt/Backing.h"
#include "platform/qt/ControlGround.h"
#include "platform/qt/WindowRecords.h"

#include <QWidget>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace tavrix::platform
{
namespace
{

QRect ClientArea(const Window& window)
{
    return {QPoint(0, 0), ClientWidget(window)->size()};
}

// The part of the client area that a caller means; null: all of it.
QRect AreaOf(const Window& window, const RECT* rectangle)
{
    const QRect all = ClientArea(window);
    if (rectangle == nullptr)
        return all;
    // In 64 bits: a caller's "everything" may be the whole range of the numbers.
    const int64_t width = int64_t{rectangle->right} - rectangle->left;
    const int64_t height = int64_t{rectangle->bottom} - rectangle->top;
    if (width <= 0 || height <= 0)
        return {};
    const int left = std::max<int>(rectangle->left, 0);
    const int top = std::max<int>(rectangle->top, 0);
    const int right = std::min<int>(rectangle->right, all.width());
    const int bottom = std::min<int>(rectangle->bottom, all.height());
    if (left >= right || top >= bottom)
        return {};
    return {left, top, right - left, bottom - top};
}

RECT BoundsOf(const QRegion& region)
{
    const QRect bounds = region.boundingRect();
    if (region.isEmpty())
        return {};
    return {bounds.left(), bounds.top(), bounds.right() + 1, bounds.bottom() + 1};
}

// Sends WM_ERASEBKGND for a region; tells whether the background is still to be done.
bool Erase(Window& window, const QRegion& region, HDC dc)
{
    const HWND handle = window.handle;
    PaintingOf(window).erasing = region;
    const LRESULT done = CallWindow(handle, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0);
    if (Window* still = FindWindowRecord(handle))
        PaintingOf(*still).erasing = QRegion();
    return done == 0;
}

} // namespace
} // namespace tavrix::platform

using namespace tavrix::platform;

BOOL WINAPI InvalidateRect(HWND handle, const RECT* rectangle, BOOL erase)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr || window->painting == nullptr)
        return FALSE;
    const QRect area = AreaOf(*window, rectangle);
    if (!window->windowClass->paints) {
        // The control draws itself again, and what was drawn on it goes.
        ClearDrawing(*window, area);
        ForgetGround(*window);
        ClientWidget(*window)->update(area);
        return TRUE;
    }
    Painting& painting = PaintingOf(*window);
    painting.update += area;
    painting.erase = painting.erase || erase != FALSE;
    WakeLoop();
    return TRUE;
}

BOOL WINAPI ValidateRect(HWND handle, const RECT* rectangle)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr || window->painting == nullptr)
        return FALSE;
    Painting& painting = PaintingOf(*window);
    painting.update -= AreaOf(*window, rectangle);
    painting.erase = painting.erase && !painting.update.isEmpty();
    return TRUE;
}

BOOL WINAPI GetUpdateRect(HWND handle, LPRECT rectangle, BOOL erase)
{
    Window* window = FindWindowRecord(handle);
    if (rectangle != nullptr)
        *rectangle = RECT{};
    if (window == nullptr || window->painting == nullptr)
        return FALSE;
    Painting& painting = PaintingOf(*window);
    painting.update &= ClientArea(*window);
    if (painting.update.isEmpty())
        return FALSE;
    const RECT bounds = BoundsOf(painting.update);
    if (erase && painting.erase) {
        painting.erase = false;
        const HDC dc = GetDC(handle);
        const bool undone = Erase(*window, painting.update, dc);
        ReleaseDC(handle, dc);
        if (Window* still = FindWindowRecord(handle))
            PaintingOf(*still).erase = undone;
    }
    if (rectangle != nullptr)
        *rectangle = bounds;
    return TRUE;
}

BOOL WINAPI UpdateWindow(HWND handle)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return FALSE;
    if (IsWindowVisible(handle) && GetUpdateRect(handle, nullptr, FALSE)) {
        PaintingOf(*window).handedOut = true;
        CallWindow(handle, WM_PAINT, 0, 0);
    }
    return TRUE;
}

HDC WINAPI BeginPaint(HWND handle, LPPAINTSTRUCT paint)
{
    if (paint == nullptr)
        return nullptr;
    std::memset(paint, 0, sizeof(*paint));
    Window* window = FindWindowRecord(handle);
    if (window == nullptr || window->painting == nullptr)
        return nullptr;
    const HDC dc = GetDC(handle);
    Painting& painting = PaintingOf(*window);
    const QRegion region = painting.update & ClientArea(*window);
    const bool erase = painting.erase && !region.isEmpty();
    painting.update = QRegion();
    painting.erase = false;
    ++painting.begun;
    paint->hdc = dc;
    paint->rcPaint = BoundsOf(region);
    paint->fErase = erase && Erase(*window, region, dc);
    return dc;
}

BOOL WINAPI EndPaint(HWND handle, const PAINTSTRUCT* paint)
{
    if (paint == nullptr)
        return FALSE;
    ReleaseDC(handle, paint->hdc);
    return TRUE;
}
