// Texts in the order in which they were appended, found by index: a thin layer on a PropertyList,
// whose names are the decimal indexes. Copies what it is given; holds 512 texts. One thread at a
// time.
#pragma once

#include "settings/PropertyList.h"

class StringSequence
{
public:
    /// Memory comes from `allocator`, which must outlive the sequence; null makes one of its own.
    /// Without memory for the list the sequence stays empty and refuses every text.
    explicit StringSequence(Allocator* allocator = nullptr);
    ~StringSequence();
    StringSequence(const StringSequence&) = delete;
    StringSequence& operator=(const StringSequence&) = delete;

    /// Stores a copy under the next index. Failed for null or a full list, else Done. A copy that
    /// there was no memory for takes its index all the same, and Get then answers Failed.
    [[nodiscard]] i32 Append(const WCHAR* text);
    /// The sequence's own text, valid until the next Clear. BadArgument for null or an index that
    /// is not below Count; Failed for an entry without a text. `*text` is written only with Done.
    [[nodiscard]] i32 Get(u32 index, const WCHAR** text) const;
    /// The text, or null where Get fails.
    const WCHAR* GetAt(u32 index) const;
    /// Drops the texts and keeps the count, on purpose: Get of an old index answers Failed from
    /// then on, and Append goes on behind the old indexes. The list's result.
    i32 Clear();
    /// BadArgument for null, else Done.
    i32 GetCount(u32* out) const;
    u32 Count() const { return count; }

private:
    PropertyList* list; // owned
    u32 count;
};
