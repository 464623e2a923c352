#include "platform/core/IdleTimer.h"

#include "platform/core/TestHooks.h"

#include <handheld.h>

namespace tavrix::platform
{

namespace
{

std::atomic<DWORD> lastReset{0};

} // namespace

DWORD LastIdleTimerReset()
{
    return lastReset.load();
}

} // namespace tavrix::platform

void WINAPI SystemIdleTimerReset(void)
{
    tavrix::platform::lastReset.store(GetTickCount());
    ++tavrix::platform::Hooks().idleTimerResets;
}
