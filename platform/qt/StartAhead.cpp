#include "platform/qt/StartAhead.h"

#include "platform/core/BackgroundThread.h"

#include <QDBusConnection>
#include <QGuiApplication>

#include <atomic>
#include <fontconfig/fontconfig.h>

namespace tavrix::platform
{
namespace
{

std::atomic<bool> readsFonts{false};

void* ReadFonts(void*)
{
    FcInit(); // when it fails here the toolkit's own call does too, and says so
    readsFonts = false;
    readsFonts.notify_all();
    return nullptr;
}

void* ConnectBus(void*)
{
    (void)QDBusConnection::sessionBus(); // kept by the toolkit
    return nullptr;
}

} // namespace

void ReadFontsAhead()
{
    readsFonts = true;
    if (!StartBackgroundThread(ReadFonts, nullptr))
        readsFonts = false;
}

void WaitForFonts()
{
    readsFonts.wait(true);
}

void ConnectBusAhead()
{
    const QString name = QGuiApplication::platformName();
    if (name == QLatin1String("xcb") || name.startsWith(QLatin1String("wayland")))
        (void)StartBackgroundThread(ConnectBus, nullptr);
}

} // namespace tavrix::platform
