#include "platform/qt/Backing.h"

#include "platform/core/WindowTable.h"
#include "platform/qt/StartupLog.h"
#include "platform/qt/WindowRecords.h"

#include <QCoreApplication>
#include <QPainter>
#include <QPaintEvent>
#include <QPixmap>
#include <QWidget>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

bool IsProgramClass(const Window& window)
{
    return window.windowClass->makeWidget == nullptr;
}

QImage ViewOf(const Painting& painting, QImage::Format format)
{
    return QImage(reinterpret_cast<const uchar*>(painting.picture.data()), painting.size.width(),
                  painting.size.height(), painting.size.width() * 4, format);
}

// The picture follows the client area's size and keeps what it shows.
void FitPicture(Window& window)
{
    Painting& painting = PaintingOf(window);
    const QSize size = ClientWidget(window)->size();
    if (size == painting.size)
        return;
    const size_t width = static_cast<size_t>(std::max(size.width(), 0));
    const size_t height = static_cast<size_t>(std::max(size.height(), 0));
    uint32_t fresh = 0;
    if (IsProgramClass(window)) {
        COLORREF color = 0;
        BrushColor(window.windowClass->background, &color);
        fresh = 0xFF000000u | ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
    }
    std::vector<uint32_t> picture(width * height, fresh);
    const size_t oldWidth = static_cast<size_t>(std::max(painting.size.width(), 0));
    const size_t rows = std::min(height, static_cast<size_t>(std::max(painting.size.height(), 0)));
    for (size_t y = 0; y < rows; ++y)
        std::copy_n(painting.picture.data() + y * oldWidth, std::min(width, oldWidth),
                    picture.data() + y * width);
    painting.picture = std::move(picture);
    painting.size = size;
}

class BackingWidget : public QWidget
{
public:
    BackingWidget(Window& shown, QWidget* parent) : QWidget(parent), window(shown.handle)
    {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setAttribute(Qt::WA_NoSystemBackground);
        setMouseTracking(true);
        if (!shown.isChild)
            setFocusPolicy(Qt::ClickFocus);
    }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        Window* shown = FindWindowRecord(window);
        if (shown == nullptr)
            return;
        FitPicture(*shown);
        const QRect area = event->rect();
        QPainter(this).drawImage(area.topLeft(), ViewOf(PaintingOf(*shown), QImage::Format_RGB32),
                                 area);
        // The screen below is not asked to paint where a window covers it whole.
        NoteScreenPainted();
    }

private:
    HWND window;
};

// Paints a stock window's picture over what the widget has painted.
class Overlay : public QObject
{
public:
    Overlay(HWND shown, QWidget* widget) : QObject(widget), window(shown)
    {
        widget->installEventFilter(this);
    }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() != QEvent::Paint || passing)
            return false;
        Window* shown = FindWindowRecord(window);
        if (shown == nullptr || PaintingOf(*shown).picture.empty())
            return false;
        passing = true;
        QCoreApplication::sendEvent(object, event);
        passing = false;
        FitPicture(*shown);
        const QRect area = static_cast<QPaintEvent*>(event)->rect();
        QPainter(static_cast<QWidget*>(object))
            .drawImage(area.topLeft(),
                       ViewOf(PaintingOf(*shown), QImage::Format_ARGB32_Premultiplied), area);
        return true;
    }

private:
    HWND window;
    bool passing = false; // the widget itself has its turn
};

Surface SurfaceOf(Painting& painting)
{
    Surface surface;
    surface.top = reinterpret_cast<uint8_t*>(painting.picture.data());
    surface.width = painting.size.width();
    surface.height = painting.size.height();
    surface.stride = ptrdiff_t{surface.width} * 4;
    surface.depth = 32;
    return surface;
}

// What the person sees on a widget, for reading. Holds until the next call.
bool ReadWidget(QWidget& widget, Surface* surface)
{
    static QImage& seen = *new QImage;
    seen = widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
    if (seen.isNull())
        return false;
    surface->top = seen.bits();
    surface->width = seen.width();
    surface->height = seen.height();
    surface->stride = seen.bytesPerLine();
    surface->depth = 32;
    return true;
}

bool FindSurface(HWND handle, bool forWriting, Surface* surface)
{
    if (handle == nullptr)
        return !forWriting && ReadWidget(*ScreenWidget(), surface);
    Window* window = FindWindowRecord(handle);
    if (window == nullptr || window->widget == nullptr)
        return false;
    if (!forWriting && !IsProgramClass(*window))
        return ReadWidget(*ClientWidget(*window), surface);
    FitPicture(*window);
    Painting& painting = PaintingOf(*window);
    if (painting.picture.empty())
        return false;
    *surface = SurfaceOf(painting);
    return true;
}

void Drawn(HWND handle, const RECT& area)
{
    if (Window* window = FindWindowRecord(handle))
        ClientWidget(*window)->update(area.left, area.top, area.right - area.left,
                                      area.bottom - area.top);
}

} // namespace

void InstallBacking()
{
    SetWindowSurfaces({FindSurface, Drawn});
}

QWidget* MakeBackingWidget(Window& window, QWidget* parent)
{
    return new BackingWidget(window, parent);
}

void AttachPainting(Window& window)
{
    window.painting = std::make_shared<Painting>();
    if (!IsProgramClass(window))
        new Overlay(window.handle, ClientWidget(window));
}

void DetachPainting(Window& window)
{
    Painting& painting = PaintingOf(window);
    painting = Painting{};
}

Painting& PaintingOf(Window& window)
{
    return *static_cast<Painting*>(window.painting.get());
}

HWND NextWindowToPaint(HWND among)
{
    // Begins behind the window that was found last, so that one that never validates its region
    // does not keep the others from painting.
    static HWND last = nullptr;
    const std::vector<Window*>& windows = AllWindows();
    const auto found = std::find_if(windows.begin(), windows.end(),
                                    [](const Window* window) { return window->handle == last; });
    const size_t count = windows.size();
    const size_t start =
        found == windows.end() ? 0 : static_cast<size_t>(found - windows.begin()) + 1;
    for (size_t i = 0; i < count; ++i) {
        Window& window = *windows[(start + i) % count];
        if (window.painting == nullptr || PaintingOf(window).update.isEmpty() ||
            !IsWindowVisible(window.handle) ||
            (among != nullptr && !IsSameOrBelow(window.handle, among)))
            continue;
        last = window.handle;
        PaintingOf(window).handedOut = true;
        return last;
    }
    return nullptr;
}

void ClearDrawing(Window& window, const QRegion& region)
{
    Painting& painting = PaintingOf(window);
    if (painting.picture.empty() || IsProgramClass(window))
        return;
    const size_t width = static_cast<size_t>(std::max(painting.size.width(), 0));
    for (const QRect& part : region.intersected(QRect(QPoint(0, 0), painting.size)))
        for (int y = part.top(); y <= part.bottom(); ++y)
            std::fill_n(painting.picture.begin() +
                            static_cast<ptrdiff_t>(static_cast<size_t>(y) * width) + part.left(),
                        part.width(), 0u);
    ClientWidget(window)->update(region);
}

LRESULT EraseBackground(Window& window)
{
    QRegion region = PaintingOf(window).erasing;
    if (region.isEmpty())
        region = QRect(QPoint(0, 0), ClientWidget(window)->size());
    if (!IsProgramClass(window)) {
        ClearDrawing(window, region);
        return 1;
    }
    if (window.windowClass->background == nullptr)
        return 0;
    const HDC dc = GetDC(window.handle);
    for (const QRect& part : region) {
        const RECT area{part.left(), part.top(), part.right() + 1, part.bottom() + 1};
        FillRect(dc, &area, window.windowClass->background);
    }
    ReleaseDC(window.handle, dc);
    return 1;
}

} // namespace tavrix::platform
