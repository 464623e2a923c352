#include "tests/endurance/Time.h"

#include "platform/testing/Testing.h"

#include <atomic>
#include <dlfcn.h>

namespace endurance
{

namespace
{

constexpr DWORD Morning = 1000;

std::atomic<DWORD> now{Morning};

} // namespace

void BeginTime()
{
    tavrix::testing::SetTickCount(now);
}

void PassTime(DWORD milliseconds)
{
    tavrix::testing::SetTickCount(now += milliseconds);
}

} // namespace endurance

/// The program's calls come here: what it sleeps passes at once.
void WINAPI Sleep(DWORD milliseconds)
{
    static auto* const device = reinterpret_cast<decltype(&Sleep)>(dlsym(RTLD_NEXT, "Sleep"));
    endurance::PassTime(milliseconds);
    device(milliseconds == 0 ? 0 : 1);
}
