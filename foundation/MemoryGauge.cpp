#include "foundation/MemoryGauge.h"

#include "foundation/Result.h"

#include <windows.h>

#include <atomic>

namespace
{

// What no picture line may eat into: 640 KB.
constexpr u64 Reserve = 0xA0000;
constexpr UINT SampleMilliseconds = 5;

// Written by the timer on the user-interface thread, read by any thread. A stale figure is
// accepted.
std::atomic<u32> available{0};

void CALLBACK OnTick(HWND, UINT, UINT_PTR, DWORD)
{
    MemoryGauge::Sample();
}

MemoryGauge gauge;

} // namespace

MemoryGauge::MemoryGauge()
{
    Sample();
    SetTimer(nullptr, 0, SampleMilliseconds, OnTick);
}

i32 MemoryGauge::HasRoomFor(u32 bytes)
{
    // In 64 bits: near the top of 32 the sum would wrap and a huge need would look small.
    const u64 need = bytes + Reserve;
    return available.load(std::memory_order_relaxed) > need ? Done : Failed;
}

void MemoryGauge::Sample()
{
    MEMORYSTATUS status{};
    status.dwLength = sizeof status;
    GlobalMemoryStatus(&status);
    const u64 physical = status.dwAvailPhys;
    const u32 figure = physical > UINT32_MAX ? UINT32_MAX : static_cast<u32>(physical);
    available.store(figure, std::memory_order_relaxed);
}
