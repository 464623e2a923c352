#include "platform/core/HandleTable.h"
#include "platform/core/ThreadEnding.h"

using namespace tavrix::platform;

namespace
{

DWORD WaitFor(HANDLE handle, DWORD milliseconds)
{
    // The object outlives the wait, though its handle be closed meanwhile.
    const std::shared_ptr<KernelObject> object = FindObject(handle);
    if (object == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return WAIT_FAILED;
    }
    return object->Wait(milliseconds);
}

} // namespace

DWORD WINAPI WaitForSingleObject(HANDLE handle, DWORD milliseconds)
{
    const DWORD result = WaitFor(handle, milliseconds);
    ThreadEnding::EndIfAsked();
    return result;
}
