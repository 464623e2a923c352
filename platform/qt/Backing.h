// What is painted on windows: each window that paints has an update region of its own, from which
// WM_PAINT comes, and a picture that drawing calls write at any time. The toolkit only copies the
// picture to the host window and runs no program code while it does. On a stock control or dialog
// the picture lies over what the widget paints itself, and is made at the first drawing.
// User-interface thread.
#pragma once

#include "platform/core/Gdi.h"
#include "platform/qt/Window.h"

#include <QImage>
#include <QRegion>

#include <optional>
#include <vector>

namespace tavrix::platform
{

struct Painting {
    QRegion update;
    bool erase = false;            // the update region wants its background again
    QRegion erasing;               // what WM_ERASEBKGND is about while BeginPaint sends it
    QSize size;                    // of the picture
    std::vector<uint32_t> picture; // 0xFFRRGGBB; on stock windows 0 is "not drawn"
    bool handedOut = false;        // a WM_PAINT of the update region is on its way
    unsigned begun = 0;            // calls of BeginPaint
    bool groundKnown = false;      // controls: `ground` is what the parent answered
    std::optional<COLORREF> ground;
};

/// Puts the platform's functions behind the drawing calls of windows.
void InstallBacking();

/// The widget of a program class.
QWidget* MakeBackingWidget(Window& window, QWidget* parent);
/// Gives a window its painting; its widget exists.
void AttachPainting(Window& window);
/// The window is about to go.
void DetachPainting(Window& window);
Painting& PaintingOf(Window& window);

/// A window with something to paint among `window` and what lies below it (null: any).
HWND NextWindowToPaint(HWND window);
/// What WM_ERASEBKGND does by itself: the class's background, or the control's own look again.
/// Answers 1 when the background is done.
LRESULT EraseBackground(Window& window);
/// Takes drawing off a stock window again, so that its own look shows.
void ClearDrawing(Window& window, const QRegion& region);

} // namespace tavrix::platform
