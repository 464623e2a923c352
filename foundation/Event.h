// An event of the device that stays set until it is reset, with a memory of its own of what it was
// last told, so that setting what is set costs no call. Any thread may set, reset and wait;
// creating and closing belong to the owner, once no other thread is about to use the event.
#pragma once

#include "foundation/Result.h"

#include <windows.h>

#include <atomic>

class Event
{
public:
    Event();
    ~Event();
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    /// Closes an earlier event and makes a new one. The memory starts at "not set" also when the
    /// event starts set: Reset then does nothing, and the first Set calls the device. Failed.
    [[nodiscard]] i32 Create(i32 initiallySet);
    /// NothingDone when set already. Failed when there is no event or the device refuses.
    i32 Set();
    /// NothingDone when not set, else as Set.
    i32 Reset();
    /// Done once it is set, NothingDone when `milliseconds` have passed before, Failed otherwise.
    [[nodiscard]] i32 Wait(u32 milliseconds);
    /// NothingDone without an event. Failed when the device refuses; the event then stays.
    i32 Close();

protected:
    std::atomic<HANDLE> handle; // null when closed
    std::atomic<i32> isSet;     // what Set and Reset did last
};
