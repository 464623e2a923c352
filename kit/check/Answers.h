// One answer of GetPluginInfo, with what it did to the buffer and behind it.
#pragma once

#include "kit/check/PluginUnderCheck.h"

#include <string>

namespace plugincheck
{

/// The characters that the host gives room for.
inline constexpr u32 HostRoom = 1024;

struct Answer {
    i32 result = -1;
    bool isTerminated = false; // a zero stands within the capacity
    bool isOverrun = false;    // something was written behind it
    std::u16string buffer;     // the whole capacity

    /// Up to the zero, or all of it.
    std::u16string Text() const;
    std::string Utf8Text() const;
};

/// Asks with a buffer that no text can have left as it was.
Answer Ask(PluginUnderCheck* plugin, u32 index, u32 capacity);

} // namespace plugincheck
