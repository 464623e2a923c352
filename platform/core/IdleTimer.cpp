#include "platform/core/IdleTimer.h"

#include "platform/core/TestHooks.h"

#include <handheld.h>

namespace tavrix::platform
{

namespace
{

std::atomic<DWORD> lastReset{0};
std::atomic<void (*)()> follower{nullptr};

} // namespace

DWORD LastIdleTimerReset()
{
    return lastReset.load();
}

void FollowIdleTimer(void (*given)())
{
    follower = given;
}

} // namespace tavrix::platform

void WINAPI SystemIdleTimerReset(void)
{
    tavrix::platform::lastReset.store(GetTickCount());
    ++tavrix::platform::Hooks().idleTimerResets;
    if (void (*call)() = tavrix::platform::follower; call != nullptr)
        call();
}
