// The file formats of the plugins of one kind: for each the plugin that knows it, a description for
// the user and its patterns, "*.ext" items joined with ";". Filled once, by the start-up pass, and
// read by the file dialog and by the choice of a plugin from a file's name. Its positions are saved
// in the settings. One thread at a time.
#pragma once

#include "foundation/Allocator.h"

class FormatList
{
public:
    enum : u32 { Capacity = 1024 };

    /// Null makes a MallocAllocator that the list owns.
    explicit FormatList(Allocator* allocator = nullptr);
    ~FormatList();
    FormatList(const FormatList&) = delete;
    FormatList& operator=(const FormatList&) = delete;

    /// Takes copies of both texts. Done; BadArgument for null; Failed when 1024 entries are there;
    /// NoMemory (then nothing has changed).
    [[nodiscard]] i32 Add(i32 pluginIndex, const WCHAR* description, const WCHAR* patterns);
    u32 Count() const { return count; }
    /// Done and `*out`; NothingDone for an entry that is not in use; BadArgument for null.
    i32 GetPluginIndex(u32 index, i32* out) const;
    /// Null for an entry that is not in use. The text stays the list's.
    const WCHAR* GetDescription(u32 index) const;
    const WCHAR* GetPatterns(u32 index) const;
    /// Done when the text behind the first "." of an item of the entry's patterns (the whole item
    /// if it has none) occurs in `text` as FindTextNoCase sees it, anywhere and not just at the
    /// end; Failed when none does; BadArgument for an entry past the last cell or null; NoMemory.
    [[nodiscard]] i32 MatchExtension(u32 index, const WCHAR* text) const;
    /// The entry's first item from its second character on: "*.jpg;*.jpeg" gives ".jpg". Done;
    /// NothingDone when it did not fit; Failed for an entry that is not in use; BadArgument for an
    /// entry past the last cell, null or no capacity.
    i32 GetDefaultExtension(u32 index, WCHAR* out, u32 capacity) const;

private:
    Allocator* allocator;
    Allocator* ownedAllocator;
    u32 count;
    i32* pluginIndexes;
    WCHAR** descriptions;
    WCHAR** patterns;
};
