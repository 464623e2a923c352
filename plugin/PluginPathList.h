// The paths of the plugins of one kind, in the order in which they were found. At most 512: they
// lie in a property list under the keys "0", "1", ...
#pragma once

#include "settings/PropertyList.h"

class PluginPathList
{
public:
    /// Null lets the property list make an allocator of its own.
    explicit PluginPathList(Allocator* allocator = nullptr);

    i32 Clear();
    /// Takes a copy. Done; BadArgument for null; Failed when 512 paths are there.
    [[nodiscard]] i32 Add(const WCHAR* path);
    /// Null at or past the count; valid until the list is cleared.
    const WCHAR* Get(u32 index) const;
    u32 Count() const { return count; }

private:
    PropertyList list;
    u32 count;
};
