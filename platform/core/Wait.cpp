#include "platform/core/HandleTable.h"

DWORD WINAPI WaitForSingleObject(HANDLE handle, DWORD milliseconds)
{
    // The object outlives the wait, though its handle be closed meanwhile.
    const std::shared_ptr<tavrix::platform::KernelObject> object =
        tavrix::platform::FindObject(handle);
    if (object == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return WAIT_FAILED;
    }
    return object->Wait(milliseconds);
}
