#include "platform/qt/Screen.h"

#include "platform/qt/Input.h"
#include "platform/qt/StartupLog.h"
#include "platform/qt/Toolkit.h"
#include "platform/qt/Window.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

namespace tavrix::platform
{
namespace
{

constexpr QSize SmallestDefault{640, 480};
constexpr int LargestSide = 16384;

// "800x480"; empty for anything else.
std::optional<QSize> ParseSize(std::string_view text)
{
    int sides[2] = {};
    const char* at = text.data();
    const char* const end = at + text.size();
    for (int& side : sides) {
        const auto [behind, error] = std::from_chars(at, end, side);
        if (error != std::errc{} || side < 1 || side > LargestSide)
            return std::nullopt;
        at = behind;
        if (&side == &sides[0]) {
            if (at == end || *at != 'x')
                return std::nullopt;
            ++at;
        }
    }
    if (at != end)
        return std::nullopt;
    return QSize(sides[0], sides[1]);
}

bool IsFullScreen()
{
    const char* value = std::getenv("TAVRIX_FULLSCREEN");
    return value != nullptr && std::strcmp(value, "1") == 0;
}

QSize FindSize()
{
    const QScreen* desktop = QGuiApplication::primaryScreen();
    if (IsFullScreen() && desktop != nullptr)
        return desktop->geometry().size();
    if (const char* value = std::getenv("TAVRIX_SCREEN"))
        if (const auto size = ParseSize(value))
            return *size;
    const int height = std::max(SmallestDefault.height(),
                                desktop != nullptr ? desktop->geometry().height() * 4 / 5 : 0);
    return {std::max(SmallestDefault.width(), height * 4 / 3), height};
}

class DeviceScreen : public QWidget
{
public:
    DeviceScreen()
    {
        setWindowTitle(QStringLiteral("Tavrix"));
        setAttribute(Qt::WA_OpaquePaintEvent);
        // Window managers refuse the whole screen to windows of fixed size.
        if (IsFullScreen())
            resize(ScreenSize());
        else
            setFixedSize(ScreenSize());
    }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        QPainter(this).fillRect(event->rect(), Qt::black);
        NoteScreenPainted();
    }

    // The host window stays: closing it asks the program to end, which then ends by itself.
    void closeEvent(QCloseEvent* event) override
    {
        event->ignore();
        const Window* window = MainWindow();
        if (window != nullptr && TakesInput(*window))
            PostMessageW(window->handle, WM_CLOSE, 0, 0);
    }

    // Keys that no widget wanted are the main window's.
    void keyPressEvent(QKeyEvent* event) override { PassOn(*event); }
    void keyReleaseEvent(QKeyEvent* event) override { PassOn(*event); }

private:
    static void PassOn(QKeyEvent& event)
    {
        if (Window* window = MainWindow())
            QueueKey(*window, event);
    }
};

} // namespace

QSize ScreenSize()
{
    EnsureToolkit();
    static const QSize size = FindSize();
    return size;
}

QWidget* ScreenWidget()
{
    EnsureToolkit();
    static QWidget* screen = new DeviceScreen;
    return screen;
}

void ShowScreen()
{
    QWidget* screen = ScreenWidget();
    if (screen->isVisible())
        return;
    if (IsFullScreen())
        screen->showFullScreen();
    else
        screen->show();
}

void RaiseScreen()
{
    QWidget* screen = ScreenWidget();
    if (screen->isMinimized())
        screen->setWindowState(screen->windowState() & ~Qt::WindowMinimized);
    screen->raise();
}

void ActivateScreen()
{
    RaiseScreen();
    QWidget* screen = ScreenWidget();
    screen->activateWindow();
}

} // namespace tavrix::platform

using namespace tavrix::platform;

int WINAPI GetSystemMetrics(int index)
{
    switch (index) {
    case SM_CXSCREEN:
        return ScreenSize().width();
    case SM_CYSCREEN:
        return ScreenSize().height();
    default:
        return 0;
    }
}
