// The command bar: the strip along the top of a main window with its menu and the close button.
#include <windows.h>

#include <handheld.h>

#include "platform/qt/DialogFont.h"
#include "platform/qt/MenuBar.h"
#include "platform/qt/Menus.h"
#include "platform/qt/StockClasses.h"
#include "platform/qt/Window.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>

namespace tavrix::platform
{
namespace
{

constexpr int TextPadding = 5;

int BarHeight()
{
    return QFontMetrics(DialogFont()).height() + 2 * TextPadding;
}

/// Posts WM_CLOSE to the bar's parent.
class CloseButton : public QWidget
{
public:
    CloseButton(MenuTarget closed, QWidget* parent) : QWidget(parent), target(closed) {}

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        const QRect face = rect().adjusted(3, 3, -3, -3);
        painter.fillRect(face, pressed ? palette().mid() : palette().button());
        painter.setPen(palette().color(QPalette::Dark));
        painter.drawRect(face.adjusted(0, 0, -1, -1));
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(palette().color(QPalette::ButtonText), 1.6));
        const QRectF cross = QRectF(face).adjusted(5, 5, -5, -5);
        painter.drawLine(cross.topLeft(), cross.bottomRight());
        painter.drawLine(cross.topRight(), cross.bottomLeft());
    }

    void mousePressEvent(QMouseEvent* event) override
    {
        event->accept();
        Press(event->button() == Qt::LeftButton && target.Ready());
    }

    void mouseReleaseEvent(QMouseEvent* event) override
    {
        event->accept();
        if (pressed && rect().contains(event->position().toPoint()) && target.Ready())
            PostMessageW(target.window, WM_CLOSE, 0, 0);
        Press(false);
    }

private:
    void Press(bool down)
    {
        pressed = down;
        update();
    }

    MenuTarget target;
    bool pressed = false;
};

class CommandBarWidget : public QWidget
{
public:
    using QWidget::QWidget;

    void SetMenu(MenuBar* bar)
    {
        delete menu;
        menu = bar;
        menu->show();
        LayOut();
    }

    void AddCloseButton(const MenuTarget& target)
    {
        if (close != nullptr)
            return;
        close = new CloseButton(target, this);
        close->show();
        LayOut();
    }

protected:
    void resizeEvent(QResizeEvent*) override { LayOut(); }

    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), palette().window());
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawLine(0, height() - 1, width(), height() - 1);
    }

private:
    void LayOut()
    {
        const int buttonWidth = close != nullptr ? height() : 0;
        if (menu != nullptr)
            menu->setGeometry(0, 0, width() - buttonWidth, height() - 1);
        if (close != nullptr)
            close->setGeometry(width() - buttonWidth, 0, buttonWidth, height() - 1);
    }

    MenuBar* menu = nullptr;
    CloseButton* close = nullptr;
};

struct CommandBarState {
    HMENU menu = nullptr; // owned
    WORD position = 0;
};

/// The record of a command bar's window; null for any other window.
Window* BarOf(HWND handle)
{
    Window* window = FindWindowRecord(handle);
    const bool isBar = window != nullptr && window->windowClass != nullptr &&
                       window->windowClass->procedure == CommandBarProcedure;
    return isBar ? window : nullptr;
}

CommandBarState& StateOf(Window& window)
{
    return *std::static_pointer_cast<CommandBarState>(window.extra);
}

CommandBarWidget& WidgetOf(Window& window)
{
    return *static_cast<CommandBarWidget*>(window.widget);
}

MenuTarget TargetOf(const Window& window)
{
    return {window.parent != nullptr ? window.parent->handle : nullptr};
}

} // namespace

QWidget* MakeCommandBarWidget(Window& window, QWidget* parent)
{
    window.extra = std::make_shared<CommandBarState>();
    return new CommandBarWidget(parent);
}

LRESULT CALLBACK CommandBarProcedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_DESTROY) {
        if (Window* window = BarOf(handle)) {
            DestroyMenu(StateOf(*window).menu);
            StateOf(*window).menu = nullptr;
        }
        return 0;
    }
    return DefWindowProcW(handle, message, wParam, lParam);
}

} // namespace tavrix::platform

using namespace tavrix::platform;

HWND WINAPI CommandBar_Create(HINSTANCE instance, HWND parent, int id)
{
    if (!IsWindow(parent))
        return nullptr;
    RegisterStockClasses();
    RECT client{};
    GetClientRect(parent, &client);
    return CreateWindowExW(0, CommandBarClassName, TEXT(""), WS_CHILD | WS_VISIBLE, 0, 0,
                           client.right, BarHeight(), parent,
                           reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id)), instance, nullptr);
}

BOOL WINAPI CommandBar_InsertMenubar(HWND bar, HINSTANCE instance, WORD menuId, WORD position)
{
    Window* window = BarOf(bar);
    if (window == nullptr)
        return FALSE;
    const HMENU handle = LoadMenuW(instance, MAKEINTRESOURCEW(menuId));
    const std::shared_ptr<Menu> menu = MenuOf(handle);
    if (!menu)
        return FALSE;
    CommandBarWidget& widget = WidgetOf(*window);
    widget.SetMenu(new MenuBar(menu, TargetOf(*window), widget.height() - 1, &widget));
    CommandBarState& state = StateOf(*window);
    DestroyMenu(state.menu); // a bar has one menu: a new one takes the old one's place
    state.menu = handle;
    state.position = position;
    return TRUE;
}

BOOL WINAPI CommandBar_AddAdornments(HWND bar, DWORD, DWORD)
{
    Window* window = BarOf(bar);
    if (window == nullptr)
        return FALSE;
    WidgetOf(*window).AddCloseButton(TargetOf(*window));
    return TRUE;
}

int WINAPI CommandBar_Height(HWND bar)
{
    const Window* window = BarOf(bar);
    return window != nullptr ? window->widget->height() : 0;
}

HMENU WINAPI CommandBar_GetMenu(HWND bar, WORD position)
{
    Window* window = BarOf(bar);
    if (window == nullptr || StateOf(*window).position != position)
        return nullptr;
    return StateOf(*window).menu;
}
