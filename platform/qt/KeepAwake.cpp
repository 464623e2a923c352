#include "platform/qt/KeepAwake.h"

#include "platform/core/IdleTimer.h"
#include "platform/core/MessageQueue.h"
#include "platform/qt/Shot.h"

#include <windows.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QGuiApplication>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <xcb/xcb.h>

namespace tavrix::platform
{
namespace
{

using std::chrono::milliseconds;

constexpr DWORD HoldTime = 30000; // milliseconds without a reset, then the host may sleep again
constexpr milliseconds LookEvery{500};
constexpr int AnswerTime = 10000; // milliseconds that the bus has for an answer
constexpr int LastAnswerTime = 500;
constexpr milliseconds EndTime{1000};

struct Keeper {
    std::mutex lock; // guards what follows
    std::condition_variable changed;
    bool isRunning = false;
    bool wasReset = false;
    bool isEnding = false;
    bool hasEnded = false;
};

// Never destroyed: its thread may outlive every place to do it.
Keeper& TheKeeper()
{
    static Keeper& keeper = *new Keeper;
    return keeper;
}

// Both are found out once, on the user-interface thread.
bool hasDisplay = false;
bool isOnX11 = false;

/// Empty when there is no bus to use. Never one that would first have to be started.
std::string BusAddress()
{
    if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address != nullptr)
        return address;
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    if (!hasDisplay || folder == nullptr || *folder == 0)
        return {};
    std::error_code ignored;
    const std::filesystem::path socket = std::filesystem::path(folder) / "bus";
    return std::filesystem::is_socket(socket, ignored) ? "unix:path=" + socket.string() : "";
}

QDBusMessage ScreenSaverCall(const char* operation)
{
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.ScreenSaver"),
                                          QStringLiteral("/org/freedesktop/ScreenSaver"),
                                          QStringLiteral("org.freedesktop.ScreenSaver"),
                                          QString::fromLatin1(operation));
}

// The keeper's thread meets the end of the process here, while the toolkit's bus still stands.
void EndKeeper()
{
    Keeper& keeper = TheKeeper();
    std::unique_lock held(keeper.lock);
    keeper.isEnding = true;
    keeper.changed.notify_all();
    keeper.changed.wait_for(held, EndTime, [&keeper] { return keeper.hasEnded; });
}

/// The wish that the desktop was told. The keeper's thread alone uses it.
class Inhibition
{
public:
    bool Stands() const { return stands; }

    void Begin()
    {
        if (!Connect())
            return;
        QDBusMessage call = ScreenSaverCall("Inhibit");
        call << QStringLiteral("Tavrix") << QStringLiteral("Working on a picture");
        const QDBusMessage answer = connection.call(call, QDBus::Block, AnswerTime);
        if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty())
            return;
        cookie = answer.arguments().first().toUInt();
        stands = true;
        // What the toolkit's bus needs is made by now, so that this runs before it is destroyed.
        static const int registered = std::atexit(EndKeeper);
        (void)registered;
    }

    void End(int answerTime)
    {
        if (!stands)
            return;
        stands = false;
        QDBusMessage call = ScreenSaverCall("UnInhibit");
        call << cookie;
        connection.call(call, QDBus::Block, answerTime);
    }

private:
    bool Connect()
    {
        if (connection.isConnected())
            return true;
        const QString name = QStringLiteral("tavrix-keep-awake");
        QDBusConnection::disconnectFromBus(name);
        connection = QDBusConnection::connectToBus(QString::fromStdString(BusAddress()), name);
        return connection.isConnected();
    }

    QDBusConnection connection{QString()};
    unsigned cookie = 0;
    bool stands = false;
};

void Keep()
{
    Keeper& keeper = TheKeeper();
    Inhibition inhibition;
    std::unique_lock held(keeper.lock);
    const auto unlocked = [&held](auto work) {
        held.unlock();
        work();
        held.lock();
    };
    while (!keeper.isEnding) {
        if (keeper.wasReset) {
            keeper.wasReset = false;
            if (!inhibition.Stands())
                unlocked([&] { inhibition.Begin(); });
        } else if (!inhibition.Stands()) {
            keeper.changed.wait(held);
        } else if (GetTickCount() - LastIdleTimerReset() >= HoldTime) {
            unlocked([&] { inhibition.End(AnswerTime); });
        } else {
            keeper.changed.wait_for(held, LookEvery);
        }
    }
    unlocked([&] { inhibition.End(LastAnswerTime); });
    keeper.hasEnded = true;
    keeper.changed.notify_all();
}

LRESULT ResetServerTimer()
{
#if QT_CONFIG(xcb)
    if (const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()) {
        xcb_force_screen_saver(x11->connection(), XCB_SCREEN_SAVER_RESET);
        xcb_flush(x11->connection());
    }
#endif
    return 0;
}

void OnReset()
{
    if (isOnX11)
        CallSoon(ResetServerTimer);
    Keeper& keeper = TheKeeper();
    const std::lock_guard guard(keeper.lock);
    if (!keeper.isRunning) {
        if (BusAddress().empty())
            return;
        keeper.isRunning = true;
        std::thread(Keep).detach();
    }
    keeper.wasReset = true;
    keeper.changed.notify_all();
}

} // namespace

void InstallKeepAwake()
{
    const QString name = QGuiApplication::platformName();
    isOnX11 = name == QLatin1String("xcb") && !ShotIsWanted();
    hasDisplay =
        name != QLatin1String("offscreen") && name != QLatin1String("minimal") && !ShotIsWanted();
    FollowIdleTimer(OnReset);
}

} // namespace tavrix::platform
