// The class STATIC: a text of several lines, broken at words, an icon or a bitmap, on the ground
// that the parent gives it.
#include "platform/qt/BitmapResource.h"
#include "platform/qt/ControlGround.h"
#include "platform/qt/ControlMessages.h"
#include "platform/qt/ControlSupport.h"
#include "platform/qt/DialogFont.h"
#include "platform/qt/Icons.h"
#include "platform/qt/StockClasses.h"
#include "platform/qt/Window.h"

#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QWidget>

namespace tavrix::platform
{
namespace
{

struct StaticState {
    HICON icon = nullptr;
    QImage bitmap;
};

StaticState& StateOf(Window& window)
{
    return *std::static_pointer_cast<StaticState>(window.extra);
}

QColor ColorOf(COLORREF color)
{
    return QColor(color & 0xFF, (color >> 8) & 0xFF, (color >> 16) & 0xFF);
}

class StaticWidget : public QWidget
{
public:
    StaticWidget(Window& owner, QWidget* parent)
        : QWidget(parent), handle(owner.handle), style(owner.style)
    {
        // A plain text lets the pointer through to the dialog, as one that asks for no
        // notification is no target on the device either.
        if ((style & SS_NOTIFY) == 0)
            setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        // The program may answer by anything, so it is asked before the painter begins.
        const std::optional<COLORREF> ground = GroundOf(handle);
        Window* window = FindWindowRecord(handle);
        if (window == nullptr)
            return;
        QPainter painter(this);
        if (ground)
            painter.fillRect(rect(), ColorOf(*ground));
        switch (style & SS_TYPEMASK) {
        case SS_ICON:
            PaintIcon(painter, StateOf(*window).icon);
            break;
        case SS_BITMAP:
            painter.drawImage(0, 0, StateOf(*window).bitmap);
            break;
        default:
            PaintText(painter, DisplayText(window->text));
            break;
        }
    }

    void mousePressEvent(QMouseEvent* event) override
    {
        event->accept();
        if (event->button() == Qt::LeftButton)
            NotifyParent(handle, WORD{STN_CLICKED});
    }

    void mouseDoubleClickEvent(QMouseEvent* event) override
    {
        event->accept();
        if (event->button() == Qt::LeftButton)
            NotifyParent(handle, STN_DBLCLK);
    }

private:
    void PaintIcon(QPainter& painter, HICON icon)
    {
        const QIcon picture = IconOf(icon);
        if (!picture.isNull())
            picture.paint(&painter, QRect(QPoint(0, 0), IconSize(icon)));
    }

    void PaintText(QPainter& painter, const QString& text)
    {
        int flags = Qt::TextExpandTabs;
        flags |= (style & SS_CENTERIMAGE) != 0 ? Qt::AlignVCenter : Qt::AlignTop;
        flags |= (style & SS_NOPREFIX) != 0 ? 0 : Qt::TextShowMnemonic;
        switch (style & SS_TYPEMASK) {
        case SS_CENTER:
            flags |= Qt::AlignHCenter | Qt::TextWordWrap;
            break;
        case SS_RIGHT:
            flags |= Qt::AlignRight | Qt::TextWordWrap;
            break;
        case SS_LEFTNOWORDWRAP:
            flags |= Qt::AlignLeft;
            break;
        default:
            flags |= Qt::AlignLeft | Qt::TextWordWrap;
            break;
        }
        painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled,
                                       QPalette::WindowText));
        painter.drawText(rect(), flags, text);
    }

    HWND handle;
    DWORD style;
};

/// An icon gives its control its own size: the compiler writes no size for it.
LRESULT SetIcon(Window& window, HICON icon)
{
    StaticState& state = StateOf(window);
    const HICON before = state.icon;
    state.icon = icon;
    const QSize size = IconSize(icon);
    if ((window.style & SS_TYPEMASK) == SS_ICON && size.isValid())
        SetWindowPos(window.handle, nullptr, 0, 0, size.width(), size.height(),
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    window.widget->update();
    return reinterpret_cast<LRESULT>(before);
}

/// The bitmap that the control's title names, by number or by name. Without one it shows nothing.
void LoadBitmap(Window& window, const CREATESTRUCTW& creation)
{
    if ((window.style & SS_TYPEMASK) != SS_BITMAP || creation.lpszName == nullptr)
        return;
    const HRSRC resource = FindResourceW(creation.hInstance, creation.lpszName, RT_BITMAP);
    if (resource == nullptr)
        return;
    const auto picture =
        ParseBitmapResource(LockResource(LoadResource(creation.hInstance, resource)),
                            SizeofResource(creation.hInstance, resource));
    if (!picture)
        return;
    StateOf(window).bitmap =
        QImage(reinterpret_cast<const uchar*>(picture->pixels.data()), picture->width,
               picture->height, picture->width * 4, QImage::Format_RGB32)
            .copy();
    SetWindowPos(window.handle, nullptr, 0, 0, picture->width, picture->height,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace

QWidget* MakeStaticWidget(Window& window, QWidget* parent)
{
    window.extra = std::make_shared<StaticState>();
    auto* widget = new StaticWidget(window, parent);
    widget->setFont(DialogFont());
    widget->setEnabled((window.style & WS_DISABLED) == 0);
    return widget;
}

LRESULT CALLBACK StaticProcedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return 0;
    LRESULT result = 0;
    bool changed = false;
    if (HandleCommonMessage(*window, message, wParam, lParam, &result, &changed)) {
        if (changed || message == WM_ENABLE) {
            ForgetGround(*window);
            window->widget->update();
        }
        return result;
    }
    switch (message) {
    case WM_CREATE:
        LoadBitmap(*window, *reinterpret_cast<const CREATESTRUCTW*>(lParam));
        return 0;
    case WM_GETDLGCODE:
        return DLGC_STATIC;
    case STM_SETICON:
        return SetIcon(*window, reinterpret_cast<HICON>(wParam));
    case STM_GETICON:
        return reinterpret_cast<LRESULT>(StateOf(*window).icon);
    default:
        return DefWindowProcW(handle, message, wParam, lParam);
    }
}

} // namespace tavrix::platform
