// How a thread is ended from outside. The host has nothing for it that leaves the process sound, so
// a thread ends itself: it is asked to, its wait for an object, the clock or a socket is over at
// once (not that for a critical section), and the call in which it waited does not return but
// leaves the thread's routine by a jump. Destructors of the routine's own frames do not run, as on
// the device.
#pragma once

#include "platform/core/HostFiles.h"

#include <windows.h>

#include <atomic>
#include <condition_variable>
#include <csetjmp>
#include <mutex>

namespace tavrix::platform
{

class ThreadEnding
{
public:
    /// Runs `start` as the calling thread's routine: what it returns, or the code with which the
    /// thread was ended.
    DWORD Run(LPTHREAD_START_ROUTINE start, LPVOID parameter);

    /// The calling thread's; null on a thread that is not the device's.
    static ThreadEnding* Current();
    /// To be called at the very end of every call that may have waited, with no object alive in
    /// the platform's frames: does not return when the calling thread is to end.
    static void EndIfAsked();

    /// Asks, and wakes the thread wherever it waits. Any thread, any number of times: a thread that
    /// was just about to wait may need more than one.
    void Ask(DWORD exitCode);
    bool IsAsked() const { return asked; }

    /// Readable once asked; -1 when the host has no more descriptors. The thread itself.
    int WakeDescriptor();
    /// At most so long, or until asked. The thread itself.
    void Sleep(DWORD milliseconds);

    /// While one lives, being asked wakes `condition`. Of the thread itself; null does nothing.
    class Place
    {
    public:
        Place(ThreadEnding* ending, std::condition_variable* condition);
        ~Place();
        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;

    private:
        ThreadEnding* ending;
    };

private:
    std::atomic<bool> asked{false};
    DWORD code = 0; // written before `asked`
    std::jmp_buf start;
    std::mutex lock; // guards what follows
    std::condition_variable* waitingAt = nullptr;
    Descriptor wake;
};

} // namespace tavrix::platform
