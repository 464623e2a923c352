// The hand-over: a second start of the program sends its command line to the first one's window,
// which opens it. While a job runs or a flow holds a plugin loaded, its settings dialog included,
// the name waits in a queue; there is no job inside a job. The queue is opened in order once that
// flow has ended, and is dropped when the window closes.
//
// What a hand-over writes into the settings waits, too. So the settings are the worker's alone
// while a job runs, as the picture and the plugin are, and need no lock.
//
// Flows mark themselves by the two scopes below. User-interface thread.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

class MainFrame;

/// What the frame keeps of hand-overs.
struct HandOvers {
    struct Name {
        Name* next;
        WCHAR* text;
    };

    HandOvers() = default;
    ~HandOvers();
    HandOvers(const HandOvers&) = delete;
    HandOvers& operator=(const HandOvers&) = delete;

    /// Puts a name behind the others; takes the text over. Without memory it is lost.
    void Append(WCHAR* text);
    /// The first name, which is the caller's to free; null when there is none.
    WCHAR* TakeFirst();
    void Drop();

    Name* first = nullptr;
    Name* last = nullptr;
    const void* pointer = nullptr; // of the last hand-over, for the settings
    u32 pointerWaits = 0;          // 1 until it is written there
    u32 holds = 0;                 // ScopedHold on the stack
    u32 flows = 0;                 // ScopedFlow on the stack
    u32 opening = 0;               // 1 while the queue is being opened
    u32 closed = 0;                // 1 from the close of the window on
};

/// Lies around what a hand-over must not come between: a job, and the time for which a flow has a
/// plugin loaded. May lie inside another one. The frame may be null.
class ScopedHold
{
public:
    explicit ScopedHold(MainFrame* heldFrame);
    ~ScopedHold();
    ScopedHold(const ScopedHold&) = delete;
    ScopedHold& operator=(const ScopedHold&) = delete;

private:
    MainFrame* frame;
};

/// Lies around a whole flow, from the command to its last step. At its end what was queued is
/// opened, unless a hold of a flow around this one still stands. A hold in no flow opens the queue
/// at its own end.
class ScopedFlow
{
public:
    explicit ScopedFlow(MainFrame* flowingFrame);
    ~ScopedFlow();
    ScopedFlow(const ScopedFlow&) = delete;
    ScopedFlow& operator=(const ScopedFlow&) = delete;

private:
    MainFrame* frame;
};
