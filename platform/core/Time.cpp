// The clock: ticks since the host started, and universal time.

#include "platform/core/TestHooks.h"

#include <ctime>

using namespace tavrix::platform;

DWORD WINAPI GetTickCount(void)
{
    TestHooks& hooks = Hooks();
    if (hooks.active.load(std::memory_order_relaxed)) {
        const std::lock_guard<std::mutex> guard(hooks.lock);
        if (hooks.tickCount)
            return *hooks.tickCount;
    }
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    // Wraps after 49.7 days, as callers of this interface expect.
    return static_cast<DWORD>(static_cast<uint64_t>(now.tv_sec) * 1000u +
                              static_cast<uint64_t>(now.tv_nsec) / 1000000u);
}

void WINAPI GetSystemTime(LPSYSTEMTIME time)
{
    if (time == nullptr)
        return;
    TestHooks& hooks = Hooks();
    if (hooks.active.load(std::memory_order_relaxed)) {
        const std::lock_guard<std::mutex> guard(hooks.lock);
        if (hooks.systemTime) {
            *time = *hooks.systemTime;
            return;
        }
    }
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm parts{};
    gmtime_r(&now.tv_sec, &parts);
    time->wYear = static_cast<WORD>(parts.tm_year + 1900);
    time->wMonth = static_cast<WORD>(parts.tm_mon + 1);
    time->wDayOfWeek = static_cast<WORD>(parts.tm_wday);
    time->wDay = static_cast<WORD>(parts.tm_mday);
    time->wHour = static_cast<WORD>(parts.tm_hour);
    time->wMinute = static_cast<WORD>(parts.tm_min);
    time->wSecond = static_cast<WORD>(parts.tm_sec);
    time->wMilliseconds = static_cast<WORD>(now.tv_nsec / 1000000);
}
