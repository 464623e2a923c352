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

// A loop that is handed message after message by a program that posts to itself ends here.
constexpr int MostLeftOver = 1000;

// On a busy machine the time is over before what lies in the queue has been handled.
void HandleWhatIsQueued()
{
    MSG message;
    for (int handled = 0; handled < MostLeftOver; ++handled) {
        if (!PeekMessageW(&message, nullptr, 0, WM_TIMER - 1, PM_REMOVE) &&
            !PeekMessageW(&message, nullptr, WM_TIMER + 1, 0xFFFF, PM_REMOVE))
            return;
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

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
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    (void)PumpUntil([] { return false; }, milliseconds);
    if (std::chrono::steady_clock::now() >= end)
        HandleWhatIsQueued();
}

} // namespace tavrix::testing
