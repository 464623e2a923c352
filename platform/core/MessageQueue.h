// The message queue of the user-interface thread, which is the thread that runs main. One queue
// serves every loop of the program, modal ones included; it hands out, in this order: sent messages
// (run inside the call), posted ones, input, quit, paint, timers. When there is nothing it waits:
// through the toolkit's event loop once that has put its functions here, else on a condition
// variable, so that timers, posting and sending work without any toolkit.
//
// Posting and sending may be done from any thread. The other functions belong to the
// user-interface thread.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace tavrix::platform
{

/// Whether the caller runs on the user-interface thread.
bool IsUiThread();

/// How the toolkit takes part. All are called on the user-interface thread but `wake`.
struct HostLoop {
    /// Handles the host's events; waits for one, for `wake`, or for `milliseconds` (-1: no limit).
    void (*wait)(int milliseconds) = nullptr;
    /// Handles the host's events that are there.
    void (*pump)() = nullptr;
    /// Ends a wait that is going on, or the next one. From any thread.
    void (*wake)() = nullptr;
    /// A window with something to paint among `window` and what lies below it (null: any).
    HWND (*nextPaint)(HWND window) = nullptr;
    /// Whether a key or pointer message may still go to the window, asked when its turn comes: one
    /// that was queued before a dialog came up must not get past the dialog.
    bool (*takesInput)(HWND window) = nullptr;
    /// Puts a key or pointer message right for what has changed since it was queued, called when
    /// its turn comes.
    void (*freshen)(MSG* message) = nullptr;
    /// The outermost loop runs with no call of the program on the stack.
    void (*outermost)() = nullptr;
    /// The outermost loop has nothing to do and is about to wait.
    void (*idle)() = nullptr;
};
void SetHostLoop(const HostLoop& loop);

/// A key or pointer message with what belongs to it but does not fit into MSG.
struct InputMessage {
    MSG message{};
    std::u16string text;    // what TranslateMessage makes WM_CHAR from
    unsigned modifiers = 0; // MK_ flags and AltModifier as they stood when it happened
};
constexpr unsigned AltModifier = 0x20;

/// Appends input. A move that follows a move to the same window replaces it.
void PostInput(InputMessage input);
/// The window is gone: drops its posted messages, input and timers.
void ForgetWindow(HWND window);

/// Calls the window's procedure with the message now. 0 when there is no such window.
LRESULT CallWindow(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/// Runs `call` on the user-interface thread and waits for its result.
LRESULT RunOnUiThread(std::function<LRESULT()> call);

/// The same without waiting: the call runs when the thread comes to its sent messages, in any loop.
/// From any thread.
void CallSoon(std::function<LRESULT()> call);
/// Waits until the descriptor can be read or has ended. On the user-interface thread sent messages
/// are served meanwhile, and nothing else is. From any thread.
void WaitForDescriptor(int file);

/// Lets the host handle the events that are there. Nothing without a toolkit.
void PumpHost();
/// Ends a wait of the loop that is going on, or the next one. From any thread.
void WakeLoop();

/// Marks a nested loop (dialog, menu), inside which no widget is finally deleted.
class NestedLoop
{
public:
    NestedLoop();
    ~NestedLoop();
    NestedLoop(const NestedLoop&) = delete;
    NestedLoop& operator=(const NestedLoop&) = delete;
};

} // namespace tavrix::platform
