// From an entry of a plugin menu to its plugin.
#pragma once

#include "settings/PropertyList.h"

/// Puts the index of the plugin behind the entry at `position` into `*index`. NothingDone where
/// there is none.
[[nodiscard]] inline i32 FindPluginEntry(const PropertyList& names, u32 position, u32* index)
{
    Variant item = {};
    item.type = VariantUnsigned;
    if (names.GetAt(position, &item) < Done || item.type != VariantUnsigned)
        return NothingDone;
    *index = static_cast<u32>(item.value);
    return Done;
}
