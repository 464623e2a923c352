// A library of the host, opened by its name while an export works and not before: loading it takes
// longer than a plugin may take to tell its name. The one place that does so; each library has a
// record of its functions of its own beside (LcmsLibrary, ZimgLibrary, ...), filled through here.
#pragma once

#include <tavrix/plugin.h>

/// All zero is a closed one.
struct HostLibrary {
    void* handle;
};

/// `hostName` is the shared object's name as the linker knows it, "libname.so.1"; `deviceName` that
/// of the same library on the device, "name.dll". False, with nothing open, where it is missing.
bool OpenHostLibrary(HostLibrary* library, const char* hostName, const TavrixChar* deviceName);
/// The same for a library that must never leave the process again, such as one that has a thread
/// clean up for it when it ends: closing it leaves it mapped.
bool OpenLastingHostLibrary(HostLibrary* library, const char* hostName,
                            const TavrixChar* deviceName);
/// Also right for a closed one. What was found in it may not be called any more.
void CloseHostLibrary(HostLibrary* library);
/// Null where the library has no such function.
void* FindInHostLibrary(const HostLibrary& library, const char* name);

/// Fills one row of a record of functions.
template <typename Function>
bool BindHostFunction(const HostLibrary& library, const char* name, Function* function)
{
    *function = reinterpret_cast<Function>(FindInHostLibrary(library, name));
    return *function != nullptr;
}
