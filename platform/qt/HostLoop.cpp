#include "platform/qt/HostLoop.h"

#include "platform/core/MessageQueue.h"
#include "platform/core/WindowReceiver.h"
#include "platform/qt/Backing.h"
#include "platform/qt/Graveyard.h"
#include "platform/qt/QuietWait.h"
#include "platform/qt/Screen.h"
#include "platform/qt/Shot.h"
#include "platform/qt/Signals.h"
#include "platform/qt/StartupLog.h"
#include "platform/qt/Window.h"

#include <QAbstractEventDispatcher>
#include <QBasicTimer>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QObject>
#include <QTimerEvent>

#include <atomic>

namespace tavrix::platform
{
namespace
{

// Ends a wait at a point in time.
class Alarm : public QObject
{
public:
    void Set(int milliseconds) { timer.start(milliseconds, Qt::PreciseTimer, this); }
    void Clear() { timer.stop(); }

protected:
    void timerEvent(QTimerEvent*) override { timer.stop(); }

private:
    QBasicTimer timer;
};

std::atomic<QAbstractEventDispatcher*> dispatcher{nullptr};
Alarm* alarmClock = nullptr;
constexpr UINT LastPointerMessage = 0x0206; // the right button's double click

void Wait(int milliseconds)
{
    if (MayWaitQuietly(milliseconds)) {
        WaitQuietly(milliseconds);
        return;
    }
    QEventLoop::ProcessEventsFlags flags = QEventLoop::AllEvents;
    if (milliseconds != 0)
        flags |= QEventLoop::WaitForMoreEvents;
    if (milliseconds > 0)
        alarmClock->Set(milliseconds);
    dispatcher.load()->processEvents(flags);
    // A loop inside may have used the alarm for itself; the queue wakes this one up then.
    alarmClock->Clear();
    LogFirstPaint();
}

void Pump()
{
    dispatcher.load()->processEvents(QEventLoop::AllEvents);
    LogFirstPaint();
}

void Wake()
{
    dispatcher.load()->wakeUp();
    WakeQuietWait();
}

void Outermost()
{
    EmptyGraveyard();
    // With no exec() on the stack nobody else carries these out.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    PassSignalOn();
}

void Idle()
{
    // The program is idle some 200 times a second; the start is over once.
    static bool over = false;
    if (over || !StartIsOver())
        return;
    over = true;
    LogStartOver();
    TakeShot();
}

bool MayTakeInput(HWND window)
{
    const Window* record = FindWindowRecord(window);
    return record != nullptr && TakesInput(*record);
}

// The window may have moved since the pointer was there, by the messages before this one: a drag by
// the pointer would else count each of its steps several times.
void PlacePointer(MSG* message)
{
    POINT point = message->pt;
    if (message->message >= WM_MOUSEMOVE && message->message <= LastPointerMessage &&
        ScreenToClient(message->hwnd, &point))
        message->lParam = MAKELPARAM(point.x, point.y);
}

void RaiseForAnother(HWND window, bool activate, const std::string& token)
{
    BringWindowToTop(window);
    RaiseScreen();
    if (!activate)
        return;
    // Where the desktop asks for one, the other process's right to the front is handed on. The
    // toolkit takes it from here and removes it.
    if (!token.empty() && QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(token));
    SetForegroundWindow(window);
}

} // namespace

void InstallHostLoop()
{
    dispatcher = QAbstractEventDispatcher::instance();
    alarmClock = new Alarm;
    HostLoop loop;
    loop.wait = Wait;
    loop.pump = Pump;
    loop.wake = Wake;
    loop.nextPaint = NextWindowToPaint;
    loop.takesInput = MayTakeInput;
    loop.freshen = PlacePointer;
    loop.outermost = Outermost;
    loop.idle = Idle;
    SetHostLoop(loop);
    SetRaiseForOthers(RaiseForAnother);
}

} // namespace tavrix::platform
