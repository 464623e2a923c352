// The file layer's side of the test hooks: whether a test lets the next operation fail.
#pragma once

#include "platform/core/TestHooks.h"

namespace tavrix::platform
{

/// Whether the operation on `path` is to fail. `*shortBy`, if given, is then by how many bytes a
/// write comes up short: at least one.
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
    DWORD missing = 1;
    // Called without the lock: a test's function may use files itself.
    if (!fault || !fault(operation, path, &missing))
        return false;
    if (shortBy != nullptr)
        *shortBy = missing == 0 ? 1 : missing;
    return true;
}

} // namespace tavrix::platform
