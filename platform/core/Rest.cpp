#include "platform/core/Rest.h"

#include <atomic>
#include <chrono>

namespace tavrix::platform
{
namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds RestAfter{1};

std::atomic<Clock::rep> lastActivity{Clock::now().time_since_epoch().count()};
std::atomic<int> threads{0};

} // namespace

void NoteActivity()
{
    lastActivity.store(Clock::now().time_since_epoch().count(), std::memory_order_relaxed);
}

void NoteThreadBegins()
{
    threads.fetch_add(1, std::memory_order_relaxed);
}

void NoteThreadIsOver()
{
    threads.fetch_sub(1, std::memory_order_relaxed);
}

bool IsAtRest()
{
    const Clock::time_point last{Clock::duration(lastActivity.load(std::memory_order_relaxed))};
    return threads.load(std::memory_order_relaxed) == 0 && Clock::now() - last >= RestAfter;
}

} // namespace tavrix::platform
