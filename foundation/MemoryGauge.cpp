#include "foundation/MemoryGauge.h"

#include <windows.h>

namespace
{

constexpr UINT SampleMilliseconds = 5;

void CALLBACK OnTick(HWND, UINT, UINT_PTR, DWORD)
{
    MemoryGauge::Sample();
}

MemoryGauge gauge;

} // namespace

// Without a constructor that runs: the gauge above may come first.
constinit std::atomic<u32> MemoryGauge::available{0};

MemoryGauge::MemoryGauge()
{
    Sample();
    SetTimer(nullptr, 0, SampleMilliseconds, OnTick);
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
