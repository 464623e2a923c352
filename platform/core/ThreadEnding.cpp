#include "platform/core/ThreadEnding.h"

#include "platform/core/Deadline.h"

#include <sys/eventfd.h>
#include <unistd.h>

namespace tavrix::platform
{

namespace
{

thread_local ThreadEnding* currentEnding = nullptr;

} // namespace

DWORD ThreadEnding::Run(LPTHREAD_START_ROUTINE routine, LPVOID parameter)
{
    currentEnding = this;
    if (setjmp(start) != 0)
        return code;
    const DWORD result = routine(parameter);
    currentEnding = nullptr; // what the thread leaves to its very end is not ended any more
    return result;
}

ThreadEnding* ThreadEnding::Current()
{
    return currentEnding;
}

void ThreadEnding::EndIfAsked()
{
    if (currentEnding == nullptr || !currentEnding->asked)
        return;
    // From here on the thread's last steps, in which it may wait once more, are its own.
    ThreadEnding* const ending = currentEnding;
    currentEnding = nullptr;
    std::longjmp(ending->start, 1);
}

void ThreadEnding::Ask(DWORD exitCode)
{
    const std::lock_guard<std::mutex> held(lock);
    if (!asked)
        code = exitCode;
    asked = true;
    if (waitingAt != nullptr)
        waitingAt->notify_all();
    if (wake.IsOpen()) {
        const uint64_t once = 1;
        [[maybe_unused]] const ssize_t written = write(wake.Get(), &once, sizeof(once));
    }
}

int ThreadEnding::WakeDescriptor()
{
    const std::lock_guard<std::mutex> held(lock);
    if (!wake.IsOpen())
        wake = Descriptor(eventfd(asked ? 1 : 0, EFD_CLOEXEC | EFD_NONBLOCK));
    return wake.Get();
}

void ThreadEnding::Sleep(DWORD milliseconds)
{
    std::condition_variable never;
    std::mutex own;
    std::unique_lock<std::mutex> held(own);
    Deadline(milliseconds).WaitOn(never, held, [] { return false; });
}

ThreadEnding::Place::Place(ThreadEnding* theEnding, std::condition_variable* condition)
    : ending(theEnding)
{
    if (ending == nullptr)
        return;
    const std::lock_guard<std::mutex> held(ending->lock);
    ending->waitingAt = condition;
}

ThreadEnding::Place::~Place()
{
    if (ending == nullptr)
        return;
    // Behind this the condition may go: who wakes it does so under the lock.
    const std::lock_guard<std::mutex> held(ending->lock);
    ending->waitingAt = nullptr;
}

} // namespace tavrix::platform
