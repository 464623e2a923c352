// The program's message loop for a while. A quit message ends it and is posted again, as modal
// loops do, so that the loop it was meant for still sees it.
#include "platform/testing/WindowTesting.h"

#include <chrono>

namespace tavrix::testing
{
namespace
{

// How often the loop looks whether it may end.
constexpr UINT LookEvery = 5;

// A timer that only keeps the loop turning.
struct Tick {
    UINT_PTR id = SetTimer(nullptr, 0, LookEvery, nullptr);
    ~Tick() { KillTimer(nullptr, id); }
};

} // namespace

bool PumpUntil(const std::function<bool()>& finished, DWORD milliseconds)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    const Tick tick;
    MSG message;
    while (!finished()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        if (GetMessageW(&message, nullptr, 0, 0) <= 0) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return finished();
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return true;
}

void Pump(DWORD milliseconds)
{
    (void)PumpUntil([] { return false; }, milliseconds);
}

} // namespace tavrix::testing
