#include "platform/qt/HostWindow.h"

#include "platform/qt/Icons.h"
#include "platform/qt/Input.h"
#include "platform/qt/Screen.h"
#include "platform/qt/Window.h"
#include "platform/qt/WindowManager.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

// Keys that no widget wanted are the main window's.
void PassOn(const QKeyEvent& event)
{
    if (Window* window = MainWindow())
        QueueKey(*window, event);
}

// A size that is there already stays as it is.
void AddPicture(QIcon& all, const QIcon& pictures, QSize size)
{
    if (!all.availableSizes().contains(size))
        all.addPixmap(pictures.pixmap(size));
}

void AddPictures(QIcon& all, const QIcon& pictures)
{
    for (const QSize& size : pictures.availableSizes())
        AddPicture(all, pictures, size);
}

} // namespace

HostWindow::HostWindow()
{
    setWindowTitle(QStringLiteral("Tavrix"));
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void HostWindow::Hold(QWidget* deviceScreen)
{
    screen = deviceScreen;
    // Window managers refuse the whole screen to windows of fixed size.
    if (StartsFullScreen())
        resize(screen->size());
    else
        setFixedSize(screen->size());
}

void HostWindow::ShowFirst()
{
    if (StartsFullScreen())
        ShowFullScreen();
    else
        show();
}

void HostWindow::ShowFullScreen()
{
    setMinimumSize(0, 0);
    setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    showFullScreen();
    // Not asked of a window manager, to which it would mean that the window wants to be one again.
    if (IsUnmanagedDisplay())
        windowHandle()->setGeometry(windowHandle()->screen()->geometry());
}

void HostWindow::ToggleFullScreen()
{
    if (!isVisible())
        return;
    if (isFullScreen())
        showNormal(); // the fixed size follows in changeEvent
    else
        ShowFullScreen();
}

void HostWindow::SetTitle(const std::u16string& title)
{
    // The toolkit has a mark of its own in titles, which a file may be named by.
    QString text = QString::fromStdU16String(title);
    setWindowTitle(text.replace(QLatin1String("[*]"), QLatin1String("[*][*]")));
}

void HostWindow::SetIcons(HICON small, HICON big)
{
    const QIcon smallPictures = IconOf(small);
    const QIcon bigPictures = IconOf(big);
    QIcon all;
    // Each first in the size that it was loaded for; then what else the resources have.
    if (smallPictures.availableSizes().contains(IconSize(small)))
        AddPicture(all, smallPictures, IconSize(small));
    AddPictures(all, bigPictures);
    AddPictures(all, smallPictures);
    if (!all.isNull())
        setWindowIcon(all);
}

// The host window stays: closing it asks the program to end, which then ends by itself.
void HostWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
    const Window* window = MainWindow();
    if (window != nullptr && TakesInput(*window))
        PostMessageW(window->handle, WM_CLOSE, 0, 0);
}

void HostWindow::keyPressEvent(QKeyEvent* event)
{
    PassOn(*event);
}

void HostWindow::keyReleaseEvent(QKeyEvent* event)
{
    PassOn(*event);
}

void HostWindow::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    for (const QRect& part : event->region().subtracted(screen->geometry()))
        painter.fillRect(part, Qt::black);
}

void HostWindow::resizeEvent(QResizeEvent*)
{
    Centre();
}

// The desktop, too, may take a window out of full screen.
void HostWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && !isFullScreen() && !isMinimized() &&
        screen != nullptr && minimumSize() != screen->size())
        setFixedSize(screen->size());
}

// Where the screen has no room, its beginning with the menu is what stays in sight.
void HostWindow::Centre()
{
    const QSize free = size() - screen->size();
    screen->move(std::max(0, free.width() / 2), std::max(0, free.height() / 2));
}

HostWindow& TheHostWindow()
{
    return *static_cast<HostWindow*>(ScreenWidget()->window());
}

bool TakeFullScreenKey(const QEvent& event)
{
    if (event.type() != QEvent::KeyPress && event.type() != QEvent::KeyRelease)
        return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    if (key.key() != Qt::Key_F11 || key.modifiers() != Qt::NoModifier)
        return false;
    if (event.type() == QEvent::KeyPress && !key.isAutoRepeat())
        TheHostWindow().ToggleFullScreen();
    return true;
}

} // namespace tavrix::platform
