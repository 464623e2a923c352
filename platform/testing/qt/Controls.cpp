// Dialogs from outside, and what the desktop sends.
#include "platform/testing/Controls.h"

#include "platform/qt/Window.h"
#include "platform/testing/WindowTesting.h"

#include <QApplication>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QUrl>
#include <QWheelEvent>
#include <QWidget>
#include <QWindow>

namespace tavrix::testing
{
namespace
{

QWindow* Host()
{
    return platform::ScreenWidget()->window()->windowHandle();
}

QPoint OnHost(int x, int y)
{
    const QWidget* screen = platform::ScreenWidget();
    return screen->mapTo(screen->window(), QPoint(x, y));
}

constexpr int NotchUnits = 120;

} // namespace

std::vector<HWND> ControlsOf(HWND window)
{
    std::vector<HWND> controls;
    const platform::Window* record = platform::FindWindowRecord(window);
    if (record == nullptr || record->widget == nullptr)
        return controls;
    for (const QWidget* widget : record->widget->findChildren<QWidget*>()) {
        const platform::Window* control = platform::WindowOfWidget(widget);
        if (control != nullptr && control->widget == widget && control != record &&
            widget->isVisible() && widget->isEnabled())
            controls.push_back(control->handle);
    }
    return controls;
}

RECT PlaceOnScreen(HWND window)
{
    const platform::Window* record = platform::FindWindowRecord(window);
    if (record == nullptr || record->widget == nullptr)
        return {};
    const QWidget* screen = platform::ScreenWidget();
    const QPoint corner = screen->mapFromGlobal(record->widget->mapToGlobal(QPoint(0, 0)));
    return {corner.x(), corner.y(), corner.x() + record->widget->width(),
            corner.y() + record->widget->height()};
}

void ClickWindow(HWND window, int x, int y, bool twice)
{
    const RECT place = PlaceOnScreen(window);
    if (twice)
        DoubleClickScreen(place.left + x, place.top + y);
    else
        ClickScreen(place.left + x, place.top + y);
}

bool IsPopupOpen()
{
    return QApplication::activePopupWidget() != nullptr;
}

std::u16string LitMenuEntry()
{
    const auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (menu == nullptr || menu->activeAction() == nullptr)
        return {};
    return menu->activeAction()->text().toStdU16String();
}

void ClosePopups()
{
    constexpr int Deepest = 20;
    for (int i = 0; i < Deepest && QApplication::activePopupWidget() != nullptr; ++i)
        QApplication::activePopupWidget()->close();
}

void DropFile(const std::string& hostPath)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(hostPath))});
    const QPoint middle = platform::ScreenWidget()->window()->rect().center();
    QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(Host(), &enter);
    QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(Host(), &drop);
}

void TurnWheel(int x, int y, int notches)
{
    const QPoint at = OnHost(x, y);
    QWheelEvent event(at, Host()->mapToGlobal(at), {}, {0, notches * NotchUnits}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(Host(), &event);
}

} // namespace tavrix::testing
