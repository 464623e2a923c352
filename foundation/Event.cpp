#include "foundation/Event.h"

#include <handheld.h>

Event::Event() : handle(nullptr), isSet(0) {}

Event::~Event()
{
    (void)Close();
}

i32 Event::Create(i32 initiallySet)
{
    (void)Close();
    handle = CreateEventW(nullptr, TRUE, initiallySet, nullptr);
    return handle != nullptr ? Done : Failed;
}

i32 Event::Set()
{
    const HANDLE event = handle;
    if (event == nullptr)
        return Failed;
    // Noted before the event is set: whoever it wakes may reset it at once, and must find the note.
    if (isSet.exchange(1) == 1)
        return NothingDone;
    if (!EventModify(event, EVENT_SET)) {
        isSet = 0;
        return Failed;
    }
    return Done;
}

i32 Event::Reset()
{
    const HANDLE event = handle;
    if (event == nullptr)
        return Failed;
    if (isSet == 0)
        return NothingDone;
    // Here the note goes last. The other way round, a Set from another thread in between would be
    // undone with its note left standing, and no later Set would reach the device.
    if (!EventModify(event, EVENT_RESET))
        return Failed;
    isSet = 0;
    return Done;
}

i32 Event::Wait(u32 milliseconds)
{
    const HANDLE event = handle;
    if (event == nullptr)
        return Failed;
    switch (WaitForSingleObject(event, milliseconds)) {
    case WAIT_OBJECT_0:
        return Done;
    case WAIT_TIMEOUT:
        return NothingDone;
    default:
        return Failed;
    }
}

i32 Event::Close()
{
    const HANDLE event = handle;
    if (event == nullptr)
        return NothingDone;
    isSet = 0;
    if (!CloseHandle(event))
        return Failed;
    handle = nullptr;
    return Done;
}
