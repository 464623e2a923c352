/*
 * A plugin's own module handle, by which it finds its resources and makes its dialogs. Works in
 * every export and in the library's constructors, on any thread. Needs the device's interface
 * (Tavrix::device, or tavrix-device of pkg-config); a plugin that uses the contract alone has no
 * use for it.
 */
#ifndef TAVRIX_MODULE_H
#define TAVRIX_MODULE_H

#include <windows.h>

#ifndef _WIN32

#ifdef __cplusplus
extern "C" {
#endif

/* The module that contains `address`; null when no LoadLibraryW loaded it. */
HINSTANCE TavrixModuleOf(const void *address);
/* Makes the compiled resources from `begin` to `end` those of `module`; null would be the program.
 * The build does it for a plugin that was given RESOURCES. They go with the module. */
void TavrixRegisterResources(HINSTANCE module, const void *begin, const void *end);

#ifdef __cplusplus
}
#endif

/* The plugin's own module; null when something other than LoadLibraryW loaded it. Not exported:
 * each source has its own copy, and the address in it lies in the plugin. */
static inline HINSTANCE TavrixThisModule(void)
{
    static const char inThisPlugin = 0;
    return TavrixModuleOf(&inThisPlugin);
}

#else

/* The linker's name for the beginning of the module that refers to it. */
#ifdef __cplusplus
extern "C"
#else
extern
#endif
    IMAGE_DOS_HEADER __ImageBase;

static inline HINSTANCE TavrixThisModule(void)
{
    return (HINSTANCE)&__ImageBase;
}

#endif

#endif
