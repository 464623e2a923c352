// The one figure of available physical memory. A process-wide object, built before the entry runs,
// samples it once and then at every tick of a 5 ms timer, which fires while the user-interface
// thread's message loop dispatches; between ticks the figure is stale and is used all the same.
#pragma once

#include "foundation/Result.h"

#include <atomic>

class MemoryGauge
{
public:
    MemoryGauge();

    /// 1 when the last sample is greater than `bytes` plus the fixed reserve of 0xA0000 bytes,
    /// else -1. A comparison and nothing else, on any thread.
    static i32 HasRoomFor(u32 bytes)
    {
        // In 64 bits: near the top of 32 the sum would wrap and a huge need would look small.
        const u64 need = u64{bytes} + Reserve;
        return available.load(std::memory_order_relaxed) > need ? Done : Failed;
    }
    /// Takes a new sample now. Called by the timer; tests call it after they change the figure.
    static void Sample();

private:
    enum : u32 { Reserve = 0xA0000 }; // what no picture line may eat into: 640 KB

    // Written by the timer on the user-interface thread, read by any thread. A stale figure is
    // accepted.
    static std::atomic<u32> available;
};
