// Numbers that a plugin keeps in the program's settings. All plugins share one section, so a key
// begins with the plugin's own name. Users edit the file: what is read is always within the
// setting's range.
#pragma once

#include <tavrix/plugin.h>

/// A number with its range; constant data of a plugin.
struct PluginSetting {
    const TavrixChar* key;
    uint32_t least;
    uint32_t most;
    /// Without a stored value.
    uint32_t standard;
};

/// The stored number, brought into the range; the standard one where nothing is stored, where it is
/// no number, and for a null `get`.
uint32_t ReadSetting(const PluginSetting& setting, TavrixGetPropertyCallback get);
/// False when it could not be stored, and for a null `put`.
bool StoreSetting(const PluginSetting& setting, uint32_t value, TavrixPutPropertyCallback put);
