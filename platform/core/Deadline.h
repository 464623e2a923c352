// A time-out of the interface as a point of the host's steady clock.
#pragma once

#include "platform/core/ThreadEnding.h"

#include <windows.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>

namespace tavrix::platform
{

class Deadline
{
public:
    /// From now on. INFINITE never passes; 0 has passed already.
    explicit Deadline(DWORD milliseconds)
    {
        if (milliseconds != INFINITE)
            end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    }

    bool HasPassed() const { return end && std::chrono::steady_clock::now() >= *end; }

    /// Waits until `ready` answers true; false when the time came first, or the thread's end.
    template <class Ready>
    bool WaitOn(std::condition_variable& condition, std::unique_lock<std::mutex>& held,
                Ready ready) const
    {
        ThreadEnding* const ending = ThreadEnding::Current();
        const ThreadEnding::Place place(ending, &condition);
        const auto over = [ending, &ready] {
            return ready() || (ending != nullptr && ending->IsAsked());
        };
        if (!end)
            condition.wait(held, over);
        else if (!HasPassed()) // the host takes its time to find out
            condition.wait_until(held, *end, over);
        return ready();
    }

private:
    std::optional<std::chrono::steady_clock::time_point> end;
};

} // namespace tavrix::platform
