// How a loaded library learns its own module handle, which it needs for its resources and dialogs.
#pragma once

#include <windows.h>

#ifndef CE_API
#define CE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// The module that contains `address`, any address of the caller's own code or data; null when it
/// lies in no library that LoadLibraryW loaded. Works from the library's constructors on.
CE_API HINSTANCE TavrixModuleOf(const void* address);

#ifdef __cplusplus
}
#endif
