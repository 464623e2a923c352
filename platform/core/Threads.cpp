// Threads as kernel objects: signalled once the routine has returned and the host's thread is gone.

#include "platform/core/Deadline.h"
#include "platform/core/HandleTable.h"
#include "platform/core/Rest.h"
#include "platform/core/TestHooks.h"
#include "platform/core/ThreadEnding.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <thread>

using namespace tavrix::platform;

namespace
{

DWORD NextThreadId()
{
    static std::atomic<DWORD> last{0};
    return ++last;
}

// Numbers of our own: the creator learns them without waiting for the thread to run.
thread_local DWORD currentThreadId = 0;

class ThreadObject final : public KernelObject
{
public:
    ThreadObject(LPTHREAD_START_ROUTINE threadStart, LPVOID threadParameter)
        : start(threadStart), parameter(threadParameter)
    {
    }

    ~ThreadObject() override
    {
        if (started && !joined)
            pthread_detach(thread);
    }

    /// Starts the host's thread, which keeps `self` until it is about to end.
    static bool Start(const std::shared_ptr<ThreadObject>& self)
    {
        auto* reference = new std::shared_ptr<ThreadObject>(self);
        NoteThreadBegins();
        if (pthread_create(&self->thread, nullptr, &ThreadObject::Run, reference) != 0) {
            NoteThreadIsOver();
            delete reference;
            return false;
        }
        self->started = true;
        return true;
    }

    DWORD Wait(DWORD milliseconds) override
    {
        std::unique_lock<std::mutex> held(lock);
        if (!Deadline(milliseconds).WaitOn(ended, held, [this] { return finished; }))
            return WAIT_TIMEOUT;
        // The first who waits also sees the host's thread off, so that what the thread leaves to
        // its very end (its own variables' destructors) is over too. A thread cannot do that for
        // itself.
        if (joined || pthread_equal(thread, pthread_self()) != 0)
            return WAIT_OBJECT_0;
        joined = true;
        held.unlock();
        pthread_join(thread, nullptr);
        return WAIT_OBJECT_0;
    }

    DWORD Resume() override { return 0; } // none is ever suspended

    DWORD ExitCode()
    {
        const std::lock_guard<std::mutex> held(lock);
        return finished ? exitCode : STILL_ACTIVE;
    }

    /// Asks the thread to end until it has; false when it goes on for too long.
    bool End(DWORD code)
    {
        const Deadline deadline(EndPatience);
        for (;;) {
            ending.Ask(code);
            if (Wait(EndBeat) == WAIT_OBJECT_0)
                return true;
            const ThreadEnding* const own = ThreadEnding::Current();
            if (deadline.HasPassed() || (own != nullptr && own->IsAsked()))
                return false;
        }
    }

    const DWORD id = NextThreadId();

private:
    enum : DWORD { EndPatience = 5000, EndBeat = 10 }; // milliseconds

    static void* Run(void* reference)
    {
        const std::unique_ptr<std::shared_ptr<ThreadObject>> owned(
            static_cast<std::shared_ptr<ThreadObject>*>(reference));
        ThreadObject& self = **owned;
        currentThreadId = self.id;
        const DWORD code = self.ending.Run(self.start, self.parameter);
        NoteThreadIsOver();
        const std::lock_guard<std::mutex> held(self.lock);
        self.exitCode = code;
        self.finished = true;
        self.ended.notify_all();
        return nullptr;
    }

    LPTHREAD_START_ROUTINE start;
    LPVOID parameter;
    ThreadEnding ending;
    pthread_t thread{};
    bool started = false; // the creator's and the destructor's alone
    std::mutex lock;      // guards what follows
    std::condition_variable ended;
    bool finished = false;
    bool joined = false;
    DWORD exitCode = 0;
};

bool IsThreadFaulty()
{
    TestHooks& hooks = Hooks();
    if (!hooks.active)
        return false;
    const std::lock_guard<std::mutex> guard(hooks.lock);
    return hooks.threadFault && hooks.threadFault();
}

BOOL EndThread(HANDLE handle, DWORD exitCode)
{
    const std::shared_ptr<ThreadObject> thread = FindObjectAs<ThreadObject>(handle);
    if (thread == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (!thread->End(exitCode)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    return TRUE;
}

} // namespace

HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE start,
                           LPVOID parameter, DWORD flags, LPDWORD threadId)
{
    // Only processes are ever started suspended.
    if (start == nullptr || (flags & CREATE_SUSPENDED) != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (IsThreadFaulty()) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    const auto thread = std::make_shared<ThreadObject>(start, parameter);
    // The handle first: a thread that runs cannot be taken back.
    const HANDLE handle = AddHandle(thread);
    if (handle == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    if (threadId != nullptr)
        *threadId = thread->id;
    if (!ThreadObject::Start(thread)) {
        RemoveHandle(handle);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return handle;
}

BOOL WINAPI GetExitCodeThread(HANDLE handle, LPDWORD exitCode)
{
    const std::shared_ptr<ThreadObject> thread = FindObjectAs<ThreadObject>(handle);
    if (thread == nullptr || exitCode == nullptr) {
        SetLastError(thread == nullptr ? ERROR_INVALID_HANDLE : ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *exitCode = thread->ExitCode();
    return TRUE;
}

BOOL WINAPI TerminateThread(HANDLE handle, DWORD exitCode)
{
    const BOOL ended = EndThread(handle, exitCode);
    ThreadEnding::EndIfAsked(); // the caller itself
    return ended;
}

DWORD WINAPI GetCurrentThreadId(void)
{
    if (currentThreadId == 0)
        currentThreadId = NextThreadId();
    return currentThreadId;
}

DWORD WINAPI GetCurrentProcessId(void)
{
    return static_cast<DWORD>(getpid());
}

void WINAPI Sleep(DWORD milliseconds)
{
    ThreadEnding* const ending = ThreadEnding::Current();
    if (milliseconds == 0)
        std::this_thread::yield();
    else if (ending != nullptr)
        ending->Sleep(milliseconds);
    else if (milliseconds == INFINITE)
        for (;;)
            pause();
    else
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    ThreadEnding::EndIfAsked();
}
