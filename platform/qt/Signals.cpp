#include "platform/qt/Signals.h"

#include "platform/qt/Window.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace tavrix::platform
{
namespace
{

int signalled = -1;
bool pending = false;

void OnSignal(int)
{
    const int error = errno;
    const uint64_t one = 1;
    // Nothing can be done about a failure here: the counter is full, so the loop wakes up anyway.
    [[maybe_unused]] const ssize_t written = write(signalled, &one, sizeof(one));
    errno = error;
}

void Catch(int signal)
{
    struct sigaction before {
    };
    sigaction(signal, nullptr, &before);
    if (before.sa_handler == SIG_IGN)
        return;
    struct sigaction action {
    };
    action.sa_handler = OnSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

} // namespace

void WatchSignals()
{
    signalled = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (signalled < 0)
        return;
    static auto* notifier = new QSocketNotifier(signalled, QSocketNotifier::Read);
    QObject::connect(notifier, &QSocketNotifier::activated, [] {
        uint64_t count = 0;
        if (read(signalled, &count, sizeof(count)) == sizeof(count))
            pending = true;
    });
    Catch(SIGTERM);
    Catch(SIGINT);
}

void PassSignalOn()
{
    if (!pending)
        return;
    const Window* window = MainWindow();
    if (window == nullptr || !TakesInput(*window))
        return;
    pending = false;
    PostMessageW(window->handle, WM_CLOSE, 0, 0);
}

} // namespace tavrix::platform
