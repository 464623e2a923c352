#include "platform/qt/Screen.h"

#include "platform/qt/Drops.h"
#include "platform/qt/HostWindow.h"
#include "platform/qt/StartupLog.h"
#include "platform/qt/Toolkit.h"
#include "platform/qt/Window.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPaintEvent>
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

QSize FindSize()
{
    const QScreen* desktop = QGuiApplication::primaryScreen();
    if (StartsFullScreen() && desktop != nullptr)
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
    explicit DeviceScreen(QWidget* host) : QWidget(host)
    {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setFixedSize(ScreenSize());
    }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        QPainter(this).fillRect(event->rect(), Qt::black);
        NoteScreenPainted();
    }
};

} // namespace

QSize ScreenSize()
{
    EnsureToolkit();
    static const QSize size = FindSize();
    return size;
}

bool StartsFullScreen()
{
    const char* value = std::getenv("TAVRIX_FULLSCREEN");
    return value != nullptr && std::strcmp(value, "1") == 0;
}

QWidget* ScreenWidget()
{
    EnsureToolkit();
    static QWidget* screen = [] {
        auto* host = new HostWindow;
        auto* device = new DeviceScreen(host);
        host->Hold(device);
        TakeDrops(device);
        return device;
    }();
    return screen;
}

void ShowScreen()
{
    if (!ScreenWidget()->isVisible())
        TheHostWindow().ShowFirst();
}

void RaiseScreen()
{
    HostWindow& host = TheHostWindow();
    if (host.isMinimized())
        host.setWindowState(host.windowState() & ~Qt::WindowMinimized);
    host.raise();
}

void ActivateScreen()
{
    RaiseScreen();
    TheHostWindow().activateWindow();
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
