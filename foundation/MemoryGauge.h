// The one figure of available physical memory. A process-wide object, built before the entry runs,
// samples it once and then at every tick of a 5 ms timer, which fires while the user-interface
// thread's message loop dispatches; between ticks the figure is stale and is used all the same.
#pragma once

#include "foundation/Types.h"

class MemoryGauge
{
public:
    MemoryGauge();

    /// 1 when the last sample is greater than `bytes` plus the fixed reserve of 0xA0000 bytes,
    /// else -1. A comparison and nothing else, on any thread.
    static i32 HasRoomFor(u32 bytes);
    /// Takes a new sample now. Called by the timer; tests call it after they change the figure.
    static void Sample();
};
