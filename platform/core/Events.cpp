// Events, with each waiting thread as a record of its own: only so can a pulse release exactly
// those who wait at that moment, and an automatic event exactly one, the one who came first.

#include "platform/core/Deadline.h"
#include "platform/core/HandleTable.h"

#include <handheld.h>

#include <list>

using namespace tavrix::platform;

namespace
{

class EventObject final : public KernelObject
{
public:
    EventObject(bool isManual, bool isSetAtFirst) : manual(isManual), set(isSetAtFirst) {}

    DWORD Wait(DWORD milliseconds) override
    {
        const Deadline deadline(milliseconds);
        std::unique_lock<std::mutex> held(lock);
        if (set) {
            set = manual;
            return WAIT_OBJECT_0;
        }
        Waiter& waiter = waiters.emplace_back();
        const auto place = std::prev(waiters.end());
        const bool released =
            deadline.WaitOn(waiter.wake, held, [&waiter] { return waiter.released; });
        waiters.erase(place);
        return released ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
    }

    void Set()
    {
        const std::lock_guard<std::mutex> held(lock);
        const bool someone = ReleaseWaiters();
        if (manual || !someone)
            set = true;
    }

    void Reset()
    {
        const std::lock_guard<std::mutex> held(lock);
        set = false;
    }

    void Pulse()
    {
        const std::lock_guard<std::mutex> held(lock);
        ReleaseWaiters();
        set = false;
    }

private:
    struct Waiter {
        std::condition_variable wake;
        bool released = false;
    };

    /// All who wait, or the first where the event is automatic. Tells whether there was one.
    bool ReleaseWaiters()
    {
        bool someone = false;
        for (Waiter& waiter : waiters) {
            if (waiter.released)
                continue;
            waiter.released = true;
            waiter.wake.notify_one();
            someone = true;
            if (!manual)
                break;
        }
        return someone;
    }

    const bool manual;
    std::mutex lock; // guards what follows
    bool set;
    std::list<Waiter> waiters;
};

} // namespace

HANDLE WINAPI CreateEventW(LPSECURITY_ATTRIBUTES, BOOL manualReset, BOOL initialState, LPCWSTR name)
{
    // Events are this process's own; a name would promise that another one finds it.
    if (name != nullptr && name[0] != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const HANDLE handle =
        AddHandle(std::make_shared<EventObject>(manualReset != FALSE, initialState != FALSE));
    SetLastError(handle == nullptr ? ERROR_NOT_ENOUGH_MEMORY : ERROR_SUCCESS);
    return handle;
}

BOOL WINAPI EventModify(HANDLE handle, DWORD action)
{
    const std::shared_ptr<EventObject> event = FindObjectAs<EventObject>(handle);
    if (event == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    switch (action) {
    case EVENT_PULSE:
        event->Pulse();
        return TRUE;
    case EVENT_RESET:
        event->Reset();
        return TRUE;
    case EVENT_SET:
        event->Set();
        return TRUE;
    default:
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
}
