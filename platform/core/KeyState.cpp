#include "platform/core/KeyState.h"

#include "platform/core/MessageQueue.h"

#include <array>
#include <atomic>

namespace tavrix::platform
{
namespace
{

constexpr size_t KeyCount = 256;
constexpr SHORT Down = static_cast<SHORT>(0x8000);
constexpr int LeftButton = 1;
constexpr int RightButton = 2;

// Atomic, since GetAsyncKeyState may be asked for on a worker.
std::array<std::atomic<bool>, KeyCount> liveKeys;
std::array<bool, KeyCount> messageKeys;

} // namespace

void NoteLiveKey(int virtualKey, bool down)
{
    if (virtualKey > 0 && static_cast<size_t>(virtualKey) < KeyCount)
        liveKeys[static_cast<size_t>(virtualKey)] = down;
}

void ClearLiveKeys()
{
    for (auto& key : liveKeys)
        key = false;
}

void NoteMessageKeys(UINT message, WPARAM wParam, unsigned modifiers)
{
    messageKeys[VK_SHIFT] = (modifiers & MK_SHIFT) != 0;
    messageKeys[VK_CONTROL] = (modifiers & MK_CONTROL) != 0;
    messageKeys[VK_MENU] = (modifiers & AltModifier) != 0;
    messageKeys[LeftButton] = (modifiers & MK_LBUTTON) != 0;
    messageKeys[RightButton] = (modifiers & MK_RBUTTON) != 0;
    if (wParam >= KeyCount)
        return;
    if (message == WM_KEYDOWN || message == WM_SYSKEYDOWN)
        messageKeys[wParam] = true;
    else if (message == WM_KEYUP || message == WM_SYSKEYUP)
        messageKeys[wParam] = false;
}

} // namespace tavrix::platform

using namespace tavrix::platform;

extern "C" {

SHORT WINAPI GetAsyncKeyState(int key)
{
    // A program may wait for a key to come up in a loop of its own, without its message loop.
    PumpHost();
    if (key <= 0 || static_cast<size_t>(key) >= KeyCount)
        return 0;
    return liveKeys[static_cast<size_t>(key)] ? Down : SHORT{0};
}

SHORT WINAPI GetKeyState(int key)
{
    if (key <= 0 || static_cast<size_t>(key) >= KeyCount)
        return 0;
    return messageKeys[static_cast<size_t>(key)] ? Down : SHORT{0};
}

} // extern "C"
