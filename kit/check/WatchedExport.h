// The frame around an export: the host's classes call this in place of the plugin's function, and
// it calls the plugin's with tables of its own and the watch on. An exception that comes out ends
// here, where it can be named; the host's own shim would only turn it into a failure.
#pragma once

#include "kit/check/Watch.h"

#include <utility>

namespace plugincheck
{

/// The argument that the plugin gets for one of the host's.
template <typename Argument>
Argument Lent(Argument argument)
{
    return argument;
}
inline RasterFunctionTable* Lent(RasterFunctionTable* table)
{
    return LendTable(table);
}
inline PaletteFunctionTable* Lent(PaletteFunctionTable* table)
{
    return LendTable(table);
}

template <typename Function>
struct WatchedExport;

template <typename... Parameters>
struct WatchedExport<i32(TAVRIX_CALL*)(Parameters...)> {
    static inline i32(TAVRIX_CALL* real)(Parameters...) = nullptr;
    static inline const char* name = "";

    static i32 TAVRIX_CALL Call(Parameters... parameters)
    {
        BeginWatch(name);
        i32 result = 0;
        try {
            result = real(Lent(parameters)...);
        } catch (...) {
            TellException();
        }
        EndWatch();
        return result;
    }
};

} // namespace plugincheck
