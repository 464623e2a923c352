#include "platform/core/Timers.h"

#include "platform/core/MessageQueue.h"
#include "platform/core/Rest.h"
#include "platform/core/WindowTable.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <vector>

namespace tavrix::platform
{
namespace
{

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

struct Timer {
    HWND window = nullptr;
    UINT_PTR id = 0;
    TIMERPROC callback = nullptr;
    milliseconds period{};
    Clock::time_point due;
};

struct Table {
    std::mutex lock;
    std::vector<Timer> timers;
    UINT_PTR lastId = 0; // of those without a window
};

// Made at first use, which may be before main, and never destroyed.
Table& Timers()
{
    static Table& table = *new Table;
    return table;
}

// The lock is held.
std::vector<Timer>::iterator FindTimer(Table& table, HWND window, UINT_PTR id)
{
    return std::find_if(table.timers.begin(), table.timers.end(), [=](const Timer& timer) {
        return timer.window == window && timer.id == id;
    });
}

} // namespace

bool TakeDueTimer(HWND window, bool take, MSG* message)
{
    Table& table = Timers();
    std::lock_guard guard(table.lock);
    const Clock::time_point now = Clock::now();
    Timer* found = nullptr;
    for (Timer& timer : table.timers) {
        if (timer.due <= now && (found == nullptr || timer.due < found->due) &&
            (window == nullptr || IsSameOrBelow(timer.window, window)))
            found = &timer;
    }
    if (found == nullptr)
        return false;
    *message = MSG{};
    message->hwnd = found->window;
    message->message = WM_TIMER;
    message->wParam = found->id;
    message->lParam = reinterpret_cast<LPARAM>(found->callback);
    if (take)
        found->due += found->period * ((now - found->due) / found->period + 1);
    return true;
}

std::optional<int> UntilNextTimer(int leastWithoutWindow)
{
    Table& table = Timers();
    std::lock_guard guard(table.lock);
    if (table.timers.empty())
        return std::nullopt;
    const Clock::time_point now = Clock::now();
    const Clock::time_point least = now + milliseconds(leastWithoutWindow);
    Clock::time_point next = Clock::time_point::max();
    for (const Timer& timer : table.timers)
        next = std::min(next, timer.window == nullptr ? std::max(timer.due, least) : timer.due);
    const auto left = std::chrono::ceil<milliseconds>(next - now);
    return static_cast<int>(std::max<milliseconds::rep>(left.count(), 0));
}

bool IsTimerCallback(HWND window, UINT_PTR id, TIMERPROC callback)
{
    Table& table = Timers();
    std::lock_guard guard(table.lock);
    const auto timer = FindTimer(table, window, id);
    return timer != table.timers.end() && timer->callback == callback;
}

void DropTimers(HWND window)
{
    Table& table = Timers();
    std::lock_guard guard(table.lock);
    std::erase_if(table.timers, [window](const Timer& timer) { return timer.window == window; });
}

} // namespace tavrix::platform

using namespace tavrix::platform;

extern "C" {

UINT_PTR WINAPI SetTimer(HWND window, UINT_PTR id, UINT period, TIMERPROC callback)
{
    constexpr UINT LongestPeriod = 0x7FFFFFFF;
    if (window != nullptr && !IsWindow(window)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    Table& table = Timers();
    {
        std::lock_guard guard(table.lock);
        auto timer = FindTimer(table, window, id);
        if (timer == table.timers.end()) {
            if (window == nullptr)
                id = ++table.lastId;
            timer = table.timers.insert(table.timers.end(), Timer{});
        }
        timer->window = window;
        timer->id = id;
        timer->callback = callback;
        timer->period = milliseconds(std::clamp(period, 1u, LongestPeriod));
        timer->due = Clock::now() + timer->period;
    }
    NoteActivity();
    WakeLoop();
    return window != nullptr && id == 0 ? 1 : id;
}

BOOL WINAPI KillTimer(HWND window, UINT_PTR id)
{
    Table& table = Timers();
    std::lock_guard guard(table.lock);
    const auto timer = FindTimer(table, window, id);
    if (timer == table.timers.end())
        return FALSE;
    table.timers.erase(timer);
    return TRUE;
}

} // extern "C"
