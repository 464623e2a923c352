// The objects behind the drawing calls: bitmaps, brushes and device contexts, each under a handle
// with a generation in it, never an address. All of it works in memory, without a toolkit; the
// window part puts in WindowSurfaces so that contexts of windows lead to their pictures.
//
// The table is safe from any thread. An object is used by one thread at a time, as on the device.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace tavrix::platform
{

/// Pixels in memory. Row y begins at `top + y * stride`; a bottom-up picture has a negative stride.
struct Surface {
    uint8_t* top = nullptr;
    ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;
    int depth = 0;                   // bits a pixel: 1, 2, 4, 8 through `colors`; 24 BGR; 32 BGRX
    const RGBQUAD* colors = nullptr; // 1 << depth entries, for the depths that need them
    bool bottomUp = false;

    uint8_t* Row(int y) const { return top + y * stride; }
};

struct GdiObject {
    enum class Kind { Bitmap, Brush, Font, Pen };
    explicit GdiObject(Kind what) : kind(what) {}
    virtual ~GdiObject() = default;
    const Kind kind;
    bool stock = false;       // DeleteObject leaves it alone
    bool kept = false;        // the clipboard's: DeleteObject refuses it
    HDC selectedIn = nullptr; // bitmaps: the one context that holds it
};

struct Bitmap : GdiObject {
    Bitmap() : GdiObject(Kind::Bitmap) {}
    ~Bitmap() override;
    Surface surface;
    std::vector<RGBQUAD> colors;
    void* memory = nullptr;
};

struct Brush : GdiObject {
    Brush() : GdiObject(Kind::Brush) {}
    COLORREF color = 0;
    bool hollow = false; // paints nothing
};

/// What a font is to look like; what it does look like is its users' business. Never changes.
struct Font : GdiObject {
    explicit Font(const LOGFONTW& what) : GdiObject(Kind::Font), record(what) {}
    const LOGFONTW record;
};

/// A stock object without content of its own: the default pen.
struct PlainObject : GdiObject {
    explicit PlainObject(Kind what) : GdiObject(what) {}
};

struct DeviceContext {
    bool memory = false;   // made by CreateCompatibleDC
    HWND window = nullptr; // of a window's context; null in one of the screen
    HGDIOBJ bitmap = nullptr;
    HGDIOBJ brush = nullptr;
    HGDIOBJ font = nullptr;
    HGDIOBJ pen = nullptr;
    COLORREF textColor = RGB(0, 0, 0);
};

/// A new handle for `object`; null when there is no memory.
HGDIOBJ AddGdiObject(std::shared_ptr<GdiObject> object);
/// The object behind a handle; empty for a stale, null or foreign one.
std::shared_ptr<GdiObject> FindGdiObject(HGDIOBJ handle);
/// Takes the object out of the table. False for stock objects and unknown handles.
bool RemoveGdiObject(HGDIOBJ handle);
/// The objects and contexts that exist, without the stock objects.
size_t CountDrawingObjects();
/// The device context behind a handle; empty for a stale, null or foreign one.
std::shared_ptr<DeviceContext> FindDeviceContext(HDC handle);
/// A new context; null when there is no memory.
HDC AddDeviceContext(std::shared_ptr<DeviceContext> context);
bool RemoveDeviceContext(HDC handle);

/// A brush's colour. False when the handle is no brush or the brush paints nothing.
bool BrushColor(HGDIOBJ brush, COLORREF* color);

/// What a font that CreateFontIndirectW made is to look like. False for any other handle, the stock
/// font's among them, which looks like the device's own.
bool FontRecord(HGDIOBJ font, LOGFONTW* record);

/// How drawing reaches windows. On the user-interface thread.
struct WindowSurfaces {
    /// The window's client picture (null window: the screen), for writing or, with `forWriting`
    /// false, for reading what the person sees. False when there is none.
    bool (*find)(HWND window, bool forWriting, Surface* surface) = nullptr;
    /// The rectangle of the picture was drawn to.
    void (*drawn)(HWND window, const RECT& area) = nullptr;
};
void SetWindowSurfaces(const WindowSurfaces& surfaces);

/// How text comes to be drawn and fonts to be found, which needs a toolkit. Without it no text is
/// drawn and no font is there. The arguments are those of the device's calls, with a context that
/// exists.
struct TextDrawing {
    int (*draw)(const DeviceContext& context, const WCHAR* text, int count, RECT* rectangle,
                UINT format) = nullptr;
    int (*families)(const WCHAR* family, FONTENUMPROCW take, LPARAM parameter) = nullptr;
};
void SetTextDrawing(const TextDrawing& drawing);

/// The pixels a context draws to or is read from. The lifetime of a bitmap's is up to `keep`.
bool ContextSurface(const DeviceContext& context, bool forWriting, Surface* surface,
                    std::shared_ptr<GdiObject>* keep);
/// Tells the window part of drawing; nothing for memory contexts.
void ContextDrawn(const DeviceContext& context, const RECT& area);

/// One pixel's colour, and its reverse: an indexed picture takes the nearest entry.
COLORREF ReadPixel(const Surface& surface, int x, int y);
void WritePixel(const Surface& surface, int x, int y, COLORREF color);
/// Fills a rectangle that lies inside the surface.
void FillArea(const Surface& surface, const RECT& area, COLORREF color);
/// Gives `color` to each pixel whose bit is set in `mask`, which begins at the surface's left edge
/// with the high bit of its first byte and covers the whole width; its first row is the surface's
/// row `top`. What is set beyond the surface's right edge is not looked at.
void PaintMask(const Surface& surface, int top, int rows, const uint8_t* mask, ptrdiff_t maskStride,
               COLORREF color);
/// Copies pixels; both rectangles lie inside their surfaces.
void CopyPixels(const Surface& target, int x, int y, int width, int height, const Surface& source,
                int sourceX, int sourceY);

} // namespace tavrix::platform
