// The program's one associative container: a fixed table of up to 512 named values, searched from
// the start by exact name. Values are text inside; numbers become text on the way in and numbers
// again on the way out. One thread at a time. Text handed out stays valid until the entry is next
// set or the list is cleared.
#pragma once

#include "foundation/Allocator.h"
#include <tavrix/plugin.h>

struct PropertyEntry {
    WCHAR* name;
    u32 type; // VariantNone, VariantWide or VariantNarrow (VariantDouble is read, never made)
    WCHAR* wideValue;
    char* narrowValue;
    f64* doubleValue;
};

class PropertyList
{
public:
    enum : u32 { Capacity = 512 };

    /// Null makes a MallocAllocator that the list owns.
    explicit PropertyList(Allocator* allocator = nullptr);
    ~PropertyList();
    PropertyList(const PropertyList&) = delete;
    PropertyList& operator=(const PropertyList&) = delete;

    /// Done; NoMemory without allocator, Failed without table.
    i32 Clear();
    /// Done and `*index`, or NothingDone and -1.
    i32 Find(const WCHAR* name, i32* index) const;

    // The setters give Added or Replaced; Failed for a full list; BadArgument for null; NoMemory
    // without allocator or table. Memory that runs out over a text is not told: the entry then has
    // no such value to give (NotConvertible), and a new name is not there at all.
    [[nodiscard]] i32 SetEmpty(const WCHAR* name);
    [[nodiscard]] i32 SetUnsigned(const WCHAR* name, u32 value);
    [[nodiscard]] i32 SetSigned(const WCHAR* name, i32 value);
    [[nodiscard]] i32 SetWide(const WCHAR* name, const WCHAR* text);
    [[nodiscard]] i32 SetNarrow(const WCHAR* name, const char* text);
    /// By the variant's type. Failed for a null name or text, UnknownType for any other type.
    [[nodiscard]] i32 Set(const Variant* item);

    /// The caller sets `name` and the wanted `type`. NoSuchName (record zeroed but for the name),
    /// NotConvertible or Done.
    [[nodiscard]] i32 Get(Variant* item) const;
    /// As Get; `*out` is written only with Done.
    [[nodiscard]] i32 GetUnsigned(const WCHAR* name, u32* out) const;
    [[nodiscard]] i32 GetSigned(const WCHAR* name, i32* out) const;
    [[nodiscard]] i32 GetWide(const WCHAR* name, const WCHAR** out) const;
    /// By position. Past the entries in use the record is zeroed and the result NotConvertible, so
    /// a walk ends on the first negative result; an entry without a value ends it too.
    [[nodiscard]] i32 GetAt(u32 index, Variant* item) const;
    /// The entries in use; -1 when the table could not be allocated.
    i32 Count() const { return count; }
    /// The heart of the list: gives an entry's value as the type that `out` names. Done; Failed
    /// when it does not convert (the record is zeroed when either type is VariantNone); UnknownType
    /// for a stored type that does not exist.
    static i32 Convert(Variant* out, const PropertyEntry& entry);

private:
    i32 Store(const WCHAR* name, u32 type, WCHAR* wide, char* narrow);
    i32 Claim(const WCHAR* name, PropertyEntry** entry);

    Allocator* allocator;
    Allocator* ownedAllocator;
    i32 count; // -1 when the table could not be allocated
    PropertyEntry* entries;
};
