// The one way into a plugin. A plugin may be written in a language with exceptions, and the program
// is built without them; this shim is the source that is built with them, and it ends whatever
// comes out of an export as a failure, before the library that owns the exception is unloaded.
#pragma once

#include "foundation/Result.h"
#include <tavrix/plugin.h>

#include <type_traits>

/// Calls `function`, which must not be null, with the arguments. Gives its result, or Failed when
/// an exception came out of it. Exists for every signature of the contract.
template <typename... Parameters>
[[nodiscard]] i32 CallPlugin(i32(TAVRIX_CALL* function)(Parameters...),
                             std::type_identity_t<Parameters>... arguments);

/// Whether the calling thread is inside a plugin's export. What a plugin is handed refuses every
/// other thread: one that a plugin started, and one that comes back when the call is over.
[[nodiscard]] bool IsInPluginCall();
