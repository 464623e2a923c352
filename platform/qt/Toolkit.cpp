#include "platform/qt/Toolkit.h"

#include "platform/qt/ApplicationStyle.h"
#include "platform/qt/Backing.h"
#include "platform/qt/DialogFont.h"
#include "platform/qt/HostLoop.h"
#include "platform/qt/Input.h"
#include "platform/qt/KeepAwake.h"
#include "platform/qt/Signals.h"
#include "platform/qt/StartAhead.h"

#include <QApplication>
#include <QByteArray>
#include <QPalette>
#include <QStyle>

#include <clocale>
#include <cstring>

namespace tavrix::platform
{
namespace
{

bool up = false;

// One device pixel is one physical pixel at any density, whatever the desktop asks for.
void UnsetScaling()
{
    for (const char* name :
         {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS", "QT_FONT_DPI", "QT_DEVICE_PIXEL_RATIO",
          "QT_AUTO_SCREEN_SCALE_FACTOR", "QT_SCALE_FACTOR_ROUNDING_POLICY", "QT_USE_PHYSICAL_DPI",
          "QT_STYLE_OVERRIDE"})
        qunsetenv(name);
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
}

QtMessageHandler hostMessages = nullptr;

/// What is wrong with a picture that another program put on the clipboard is no news of ours.
bool IsOfPictures(const QMessageLogContext& context)
{
    return context.category != nullptr &&
           std::strncmp(context.category, "qt.gui.imageio", std::strlen("qt.gui.imageio")) == 0;
}

// A machine without a session has no run-time folder, and not every desktop lets a window raise
// itself or keep its size; the toolkit's notes about it help nobody.
void FilterMessages(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (!IsOfPictures(context) &&
        !text.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set")) &&
        !text.startsWith(QLatin1String("This plugin does not support raise()")) &&
        !text.startsWith(QLatin1String("This plugin does not support propagateSizeHints()")))
        hostMessages(type, context, text);
}

} // namespace

bool ToolkitIsUp()
{
    return up;
}

void EnsureToolkit()
{
    if (up)
        return;
    up = true;
    UnsetScaling();
    hostMessages = qInstallMessageHandler(FilterMessages);
    // The other event dispatcher costs ten times as much a message.
    qputenv("QT_NO_GLIB", "1");
    // By this desktops know which program a window is of: X11 by its class, which takes the first
    // name, Wayland by the second.
    QCoreApplication::setApplicationName(QStringLiteral(TAVRIX_APPLICATION_ID));
    QGuiApplication::setDesktopFileName(QStringLiteral(TAVRIX_APPLICATION_ID));
    QGuiApplication::setDesktopSettingsAware(false);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    // A menu bar would else ask the session's bus, and wait, whether the desktop shows menus.
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
    QApplication::setStyle(new ApplicationStyle);

    ReadFontsAhead();
    static char name[] = "tavrix";
    static char* arguments[] = {name, nullptr};
    static int count = 1;
    // Never deleted: windows and static objects of the program may outlast any place to do it.
    static const QApplication* application = new QApplication(count, arguments);
    (void)application;
    ConnectBusAhead();
    // It took the user's locale over, decimal comma included.
    std::setlocale(LC_NUMERIC, "C");

    QApplication::setPalette(QApplication::style()->standardPalette());
    InstallHostLoop();
    InstallBacking();
    InstallInput();
    WatchSignals();
    InstallKeepAwake();
    InstallDialogFont();
}

} // namespace tavrix::platform
