// The file layer's side of the test hooks: whether a test lets the next operation fail, and what it
// leaves of the disk.
#pragma once

#include "platform/core/TestHooks.h"

#include <algorithm>

namespace tavrix::platform
{

/// Whether the operation on `path` is to fail. `*shortBy`, if given, is then by how many bytes it
/// comes up short, 0 for a plain error.
inline bool IsFaulty(FileOperation operation, const WCHAR* path, DWORD* shortBy = nullptr)
{
    TestHooks& hooks = Hooks();
    if (!hooks.active)
        return false;
    std::function<bool(FileOperation, const WCHAR*, DWORD*)> fault;
    {
        const std::lock_guard guard(hooks.lock);
        fault = hooks.fileFault;
    }
    DWORD missing = 0;
    // Called without the lock: a test's function may use files itself.
    if (!fault || !fault(operation, path, &missing))
        return false;
    if (shortBy != nullptr)
        *shortBy = missing;
    return true;
}

/// Takes room for `growth` more bytes of the disk that a test has bounded; answers how many of them
/// fit.
inline unsigned long long TakeDiskSpace(unsigned long long growth)
{
    TestHooks& hooks = Hooks();
    if (!hooks.active)
        return growth;
    const std::lock_guard guard(hooks.lock);
    if (!hooks.diskSpace)
        return growth;
    const unsigned long long taken = std::min(growth, *hooks.diskSpace);
    *hooks.diskSpace -= taken;
    return taken;
}

/// Whether no file can be made any more.
inline bool IsDiskFull()
{
    TestHooks& hooks = Hooks();
    if (!hooks.active)
        return false;
    const std::lock_guard guard(hooks.lock);
    return hooks.diskSpace == 0ULL;
}

} // namespace tavrix::platform
