// Where the host's error numbers become the device's. No other place of the platform translates
// them, so that one failure of the host is told by one number whichever call met it.
#pragma once

#include <windows.h>

#include <new>

namespace tavrix::platform
{

/// The device's error number for a host error (`errno`); ERROR_SUCCESS for 0. Numbers that have no
/// counterpart become 31, "a device attached to the system is not functioning".
DWORD DeviceError(int hostError);

/// Sets the calling thread's last error from a host error and answers FALSE.
BOOL FailWithHost(int hostError);
/// Sets the calling thread's last error and answers FALSE.
BOOL FailWith(DWORD error);

/// What `body` answers; when it finds no memory `failed` and the last error, since the callers of
/// the device's interface are built without exceptions.
template <class Result, class Body>
Result WithoutThrowing(Result failed, Body body)
{
    try {
        return body();
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return failed;
    }
}

} // namespace tavrix::platform
