// The table behind every kernel handle: files, listings, threads, events, mutexes. A handle is a
// number with a generation in it, never an address, so that a stale or made-up handle is told from
// a live one. Safe from any thread; an object lives until its last handle and its last user are
// gone.
#pragma once

#include <windows.h>

#include <memory>

namespace tavrix::platform
{

class KernelObject
{
public:
    virtual ~KernelObject() = default;
    /// Waits until the object is signalled: WAIT_OBJECT_0, WAIT_TIMEOUT or WAIT_FAILED (the
    /// default: the object cannot be waited for).
    virtual DWORD Wait(DWORD milliseconds);
    /// Lets a suspended thread begin: how often it was suspended before, 0 for one that runs
    /// already, 0xFFFFFFFF (the default) for what is no thread.
    virtual DWORD Resume();
};

/// A new handle for `object`; null when there is no memory.
HANDLE AddHandle(std::shared_ptr<KernelObject> object);
/// The object behind a handle; empty for a stale, null or foreign one.
std::shared_ptr<KernelObject> FindObject(HANDLE handle);
/// Takes the handle out of the table; empty when it was not in it.
std::shared_ptr<KernelObject> RemoveHandle(HANDLE handle);
/// The handles that are open.
size_t CountHandles();

/// The object behind a handle if it is of type T.
template <class T>
std::shared_ptr<T> FindObjectAs(HANDLE handle)
{
    return std::dynamic_pointer_cast<T>(FindObject(handle));
}

} // namespace tavrix::platform
