// The colour table behind every palette: entries of four 32-bit words (red, green, blue and one
// that is carried along). Colour words run from 0 to 255. One thread at a time.
#pragma once

#include "foundation/Allocator.h"
#include <tavrix/plugin.h>

class ColorTable
{
public:
    /// Null makes a private heap allocator that the table owns.
    explicit ColorTable(Allocator* allocator = nullptr);
    ~ColorTable();
    ColorTable(const ColorTable&) = delete;
    ColorTable& operator=(const ColorTable&) = delete;

    /// Drops the entries and reserves `capacity` new ones. NoMemory without allocator or block.
    [[nodiscard]] i32 Create(u32 capacity);
    /// Drops the entries. NoMemory without an allocator.
    i32 Destroy();
    /// WrongState unless created, Failed when full.
    [[nodiscard]] i32 Add(u32 red, u32 green, u32 blue, u32 fourth);
    /// Add for each, up to the first negative result, which it returns. Done for none.
    [[nodiscard]] i32 AddMany(const PaletteEntry* items, u32 itemCount);
    /// Reallocates to `itemCount` entries and copies. BadArgument for null.
    [[nodiscard]] i32 SetEntries(const PaletteEntry* items, u32 itemCount);
    /// With null the number of entries in use; otherwise copies them and returns Done.
    i32 GetEntries(PaletteEntry* out) const;
    /// The internal array. BadArgument for null; WrongState (and null) unless created.
    i32 GetData(PaletteEntry** out) const;
    /// BadArgument for null; a source never created gives a table of zero capacity.
    [[nodiscard]] i32 CopyFrom(const ColorTable* other);
    u32 Count() const { return count; }

    /// The entry nearest by (77 dr^2 + 151 dg^2 + 28 db^2) >> 8 in 32 bits; the first of equals.
    /// `best` gets its colour, and the distance in the fourth word. An empty table leaves it alone.
    /// `fourth` is not used. Returns Done.
    i32 FindNearest(u32 red, u32 green, u32 blue, u32 fourth, PaletteEntry* best) const;
    /// As FindNearest; `second` gets what was best before the last change, which need not be the
    /// second nearest.
    i32 FindNearestTwo(u32 red, u32 green, u32 blue, u32 fourth, PaletteEntry* best,
                       PaletteEntry* second) const;

private:
    Allocator* allocator;
    Allocator* ownedAllocator;
    i32 isCreated;
    u32 count;
    u32 capacity;
    PaletteEntry* entries;
};
