#include "standard-plugins/common/HostLibrary.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#ifdef _WIN32
bool OpenHostLibrary(HostLibrary* library, const char*, const TavrixChar* deviceName)
{
    library->handle = reinterpret_cast<void*>(LoadLibraryW(deviceName));
    return library->handle != nullptr;
}

bool OpenLastingHostLibrary(HostLibrary* library, const char* hostName,
                            const TavrixChar* deviceName)
{
    // The first load is never given back.
    return OpenHostLibrary(library, hostName, deviceName) &&
           OpenHostLibrary(library, hostName, deviceName);
}

void CloseHostLibrary(HostLibrary* library)
{
    if (library->handle)
        (void)FreeLibrary(static_cast<HMODULE>(library->handle));
    *library = {};
}

void* FindInHostLibrary(const HostLibrary& library, const char* name)
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library.handle), name));
}
#else
bool OpenHostLibrary(HostLibrary* library, const char* hostName, const TavrixChar*)
{
    library->handle = dlopen(hostName, RTLD_NOW | RTLD_LOCAL);
    return library->handle != nullptr;
}

bool OpenLastingHostLibrary(HostLibrary* library, const char* hostName, const TavrixChar*)
{
    library->handle = dlopen(hostName, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    return library->handle != nullptr;
}

void CloseHostLibrary(HostLibrary* library)
{
    if (library->handle)
        (void)dlclose(library->handle);
    *library = {};
}

void* FindInHostLibrary(const HostLibrary& library, const char* name)
{
    return dlsym(library.handle, name);
}
#endif
