// Where windows lie: sizes, coordinates, order. Coordinates are those of the device screen, or for
// children those of their parent's client area.
#include "platform/core/MessageQueue.h"
#include "platform/core/WindowMessenger.h"
#include "platform/qt/Screen.h"
#include "platform/qt/WindowRecords.h"

#include <QWidget>

namespace tavrix::platform
{
namespace
{

// Exact for everything that lies on the screen; by way of the host for what lies beside it.
QPoint ToScreen(const QWidget& widget, QPoint point)
{
    QWidget* screen = ScreenWidget();
    if (widget.window() == screen->window())
        return widget.mapTo(screen, point);
    return screen->mapFromGlobal(widget.mapToGlobal(point));
}

// Tells of a new place only what changed.
void Place(Window& window, const QRect& place)
{
    const QRect before = window.widget->geometry();
    const HWND handle = window.handle;
    window.widget->setGeometry(place);
    const bool moved = place.topLeft() != before.topLeft();
    const bool sized = place.size() != before.size();
    if (sized && IsWindow(handle) && window.windowClass->paints)
        InvalidateRect(handle, nullptr, TRUE);
    if (moved || sized)
        TellPlace(window, moved, sized);
}

// Windows that are owned lie above their owner.
void RaiseOwned(const Window& owner)
{
    for (const Window* window : AllWindows())
        if (!window->isChild && window != &owner && IsOwnedBy(*window, owner))
            window->widget->raise();
}

void Raise(Window& window)
{
    // The main window fills the screen: above the others it would only hide what waits for an
    // answer.
    if (&window == MainWindow())
        return;
    window.widget->raise();
    if (!window.isChild)
        RaiseOwned(window);
}

} // namespace

void TellPlace(Window& window, bool moved, bool sized)
{
    const HWND handle = window.handle;
    if (moved) {
        const QWidget* client = ClientWidget(window);
        const QPoint origin = window.isChild ? window.widget->pos() : ToScreen(*client, {0, 0});
        CallWindow(handle, WM_MOVE, 0, MAKELPARAM(origin.x(), origin.y()));
    }
    if (sized && IsWindow(handle)) {
        const QSize size = ClientWidget(window)->size();
        CallWindow(handle, WM_SIZE, 0, MAKELPARAM(size.width(), size.height()));
    }
}

} // namespace tavrix::platform

using namespace tavrix::platform;

BOOL WINAPI GetWindowRect(HWND handle, LPRECT rectangle)
{
    const Window* window = FindWindowRecord(handle);
    if (window == nullptr || rectangle == nullptr)
        return FALSE;
    const QPoint corner = ToScreen(*window->widget, {0, 0});
    const QSize size = window->widget->size();
    *rectangle = {corner.x(), corner.y(), corner.x() + size.width(), corner.y() + size.height()};
    return TRUE;
}

BOOL WINAPI GetClientRect(HWND handle, LPRECT rectangle)
{
    const Window* window = FindWindowRecord(handle);
    if (window == nullptr || rectangle == nullptr)
        return FALSE;
    const QSize size = ClientWidget(*window)->size();
    *rectangle = {0, 0, size.width(), size.height()};
    return TRUE;
}

BOOL WINAPI SetWindowPos(HWND handle, HWND after, int x, int y, int width, int height, UINT flags)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return FALSE;
    QRect place = window->widget->geometry();
    if ((flags & SWP_NOMOVE) == 0)
        place.moveTo(x, y);
    if ((flags & SWP_NOSIZE) == 0)
        place.setSize(QSize(width, height).expandedTo(QSize(0, 0)));
    if ((flags & SWP_NOZORDER) == 0) {
        if (after == HWND_BOTTOM)
            window->widget->lower();
        else if (const Window* above = FindWindowRecord(after);
                 above != nullptr &&
                 above->widget->parentWidget() == window->widget->parentWidget())
            window->widget->stackUnder(above->widget);
        else if (after == HWND_TOP)
            Raise(*window);
    }
    Place(*window, place);
    if ((flags & SWP_HIDEWINDOW) != 0)
        ShowWindow(handle, SW_HIDE);
    else if ((flags & SWP_SHOWWINDOW) != 0)
        ShowWindow(handle, SW_SHOW);
    return TRUE;
}

BOOL WINAPI MoveWindow(HWND window, int x, int y, int width, int height, BOOL)
{
    return SetWindowPos(window, nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

BOOL WINAPI ClientToScreen(HWND handle, LPPOINT point)
{
    const Window* window = FindWindowRecord(handle);
    if (window == nullptr || point == nullptr)
        return FALSE;
    const QPoint on = ToScreen(*ClientWidget(*window), {point->x, point->y});
    *point = {on.x(), on.y()};
    return TRUE;
}

BOOL WINAPI ScreenToClient(HWND handle, LPPOINT point)
{
    POINT origin{0, 0};
    if (point == nullptr || !ClientToScreen(handle, &origin))
        return FALSE;
    *point = {point->x - origin.x, point->y - origin.y};
    return TRUE;
}

BOOL WINAPI BringWindowToTop(HWND handle)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return RaiseForeignWindow(handle, false);
    Raise(*window);
    return TRUE;
}

BOOL WINAPI SetForegroundWindow(HWND handle)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return RaiseForeignWindow(handle, true);
    Raise(*window);
    ActivateScreen();
    return TRUE;
}
