#include "platform/qt/QuietWait.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace tavrix::platform
{
namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds QuietAfter{1};
constexpr int LongestTick = 10; // milliseconds; a longer wait is the toolkit's
constexpr int WaitsInARow = 5;

Clock::time_point lastEvent = Clock::now();
int waitsSinceTurn = 0;

std::mutex lock;
std::condition_variable wakeUp;
bool woken = false; // guarded

} // namespace

void NoteToolkitEvent()
{
    lastEvent = Clock::now();
}

bool MayWaitQuietly(int milliseconds)
{
    const bool quiet = milliseconds > 0 && milliseconds <= LongestTick &&
                       waitsSinceTurn < WaitsInARow && Clock::now() - lastEvent >= QuietAfter;
    waitsSinceTurn = quiet ? waitsSinceTurn + 1 : 0;
    return quiet;
}

void WaitQuietly(int milliseconds)
{
    std::unique_lock guard(lock);
    wakeUp.wait_for(guard, std::chrono::milliseconds(milliseconds), [] { return woken; });
    woken = false;
}

void WakeQuietWait()
{
    {
        const std::lock_guard guard(lock);
        woken = true;
    }
    wakeUp.notify_one();
}

} // namespace tavrix::platform
