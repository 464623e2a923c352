// How compiled resources that are embedded in a program or a plugin become known to the resource
// calls. Called by generated or start-up code, before the first look-up; may run before main.
#pragma once

#include <windows.h>

#ifndef CE_API
#define CE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// Makes the bytes from `begin` to `end` (a compiled resource file) the resources of `instance`;
/// null means the program. They must stay in place until they are replaced: a second call for the
/// same instance does that, with null bytes it takes them away. Unloading a module takes its own
/// away. Bytes that are no resources give a module without resources.
CE_API void TavrixRegisterResources(HINSTANCE instance, const void* begin, const void* end);

#ifdef __cplusplus
}
#endif
