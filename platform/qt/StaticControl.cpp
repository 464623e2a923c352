// The class STATIC: a text of several lines, broken at words, or an icon.
#include "platform/qt/ControlMessages.h"
#include "platform/qt/ControlSupport.h"
#include "platform/qt/DialogFont.h"
#include "platform/qt/Icons.h"
#include "platform/qt/StockClasses.h"
#include "platform/qt/Window.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWidget>

namespace tavrix::platform
{
namespace
{

struct StaticState {
    HICON icon = nullptr;
};

StaticState& StateOf(Window& window)
{
    return *std::static_pointer_cast<StaticState>(window.extra);
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
        Window* window = FindWindowRecord(handle);
        if (window == nullptr)
            return;
        QPainter painter(this);
        if ((style & SS_TYPEMASK) == SS_ICON)
            PaintIcon(painter, StateOf(*window).icon);
        else
            PaintText(painter, DisplayText(window->text));
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
        if (changed || message == WM_ENABLE)
            window->widget->update();
        return result;
    }
    switch (message) {
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
