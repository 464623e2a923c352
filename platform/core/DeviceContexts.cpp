#include "platform/core/Gdi.h"

#include "platform/core/WindowTable.h"

namespace tavrix::platform
{
namespace
{

WindowSurfaces windowSurfaces;

// The place of a context for objects of a kind.
HGDIOBJ& Slot(DeviceContext& context, GdiObject::Kind kind)
{
    switch (kind) {
    case GdiObject::Kind::Bitmap:
        return context.bitmap;
    case GdiObject::Kind::Brush:
        return context.brush;
    case GdiObject::Kind::Font:
        return context.font;
    case GdiObject::Kind::Pen:
        break;
    }
    return context.pen;
}

void LetGo(HGDIOBJ object)
{
    // The stock one belongs to all threads and is never written.
    const auto found = FindGdiObject(object);
    if (found != nullptr && !found->stock)
        found->selectedIn = nullptr;
}

} // namespace

void SetWindowSurfaces(const WindowSurfaces& surfaces)
{
    windowSurfaces = surfaces;
}

bool ContextSurface(const DeviceContext& context, bool forWriting, Surface* surface,
                    std::shared_ptr<GdiObject>* keep)
{
    if (!context.memory)
        return windowSurfaces.find != nullptr &&
               windowSurfaces.find(context.window, forWriting, surface);
    *keep = FindGdiObject(context.bitmap);
    if (*keep == nullptr)
        return false;
    *surface = static_cast<const Bitmap&>(**keep).surface;
    return true;
}

void ContextDrawn(const DeviceContext& context, const RECT& area)
{
    if (!context.memory && windowSurfaces.drawn != nullptr)
        windowSurfaces.drawn(context.window, area);
}

} // namespace tavrix::platform

using namespace tavrix::platform;

extern "C" {

HDC WINAPI GetDC(HWND window)
{
    if (window != nullptr && !IsWindow(window))
        return nullptr;
    const auto context = std::make_shared<DeviceContext>();
    context->window = window;
    return AddDeviceContext(context);
}

int WINAPI ReleaseDC(HWND, HDC dc)
{
    // The window may be gone by now; its context goes all the same.
    const auto context = FindDeviceContext(dc);
    return context != nullptr && !context->memory && RemoveDeviceContext(dc);
}

HDC WINAPI CreateCompatibleDC(HDC dc)
{
    if (dc != nullptr && FindDeviceContext(dc) == nullptr)
        return nullptr;
    const auto context = std::make_shared<DeviceContext>();
    context->memory = true;
    return AddDeviceContext(context);
}

BOOL WINAPI DeleteDC(HDC dc)
{
    const auto context = FindDeviceContext(dc);
    if (context == nullptr || !context->memory)
        return FALSE;
    LetGo(context->bitmap);
    return RemoveDeviceContext(dc);
}

HGDIOBJ WINAPI SelectObject(HDC dc, HGDIOBJ object)
{
    const auto context = FindDeviceContext(dc);
    const auto found = FindGdiObject(object);
    if (context == nullptr || found == nullptr)
        return nullptr;
    HGDIOBJ& slot = Slot(*context, found->kind);
    const HGDIOBJ before = slot;
    if (found->kind == GdiObject::Kind::Bitmap) {
        // A bitmap goes into one memory context at a time; only the stock one may be in many.
        if (!context->memory || (found->selectedIn != nullptr && found->selectedIn != dc))
            return nullptr;
        LetGo(before);
        if (!found->stock)
            found->selectedIn = dc;
    }
    slot = object;
    return before;
}

} // extern "C"
