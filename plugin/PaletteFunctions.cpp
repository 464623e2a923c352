// The ten functions on palettes of the plugin contract.

#include "plugin/FunctionTables.h"

#include "foundation/ColorTable.h"
#include "plugin/PluginObjects.h"

namespace
{

/// More entries than this have no size in bytes that 32 bits could hold.
constexpr u32 MostEntries = 0xFFFFFFFFu / sizeof(PaletteEntry);

i32 TAVRIX_CALL PaletteCreate(TavrixPaletteHandle* out)
{
    if (out == nullptr)
        return Failed;
    *out = nullptr;
    ColorTable* palette = nullptr;
    const i32 result = MakePluginObject(&palette);
    *out = ToHandle(palette);
    return result;
}

i32 TAVRIX_CALL PaletteDestroy(TavrixPaletteHandle* palette)
{
    // Unlike a picture, a palette that is null already is a failure; plugins may count on either.
    if (palette == nullptr || *palette == nullptr)
        return Failed;
    const i32 result = DestroyPluginObject(*palette);
    if (result > 0)
        *palette = nullptr;
    return result;
}

i32 TAVRIX_CALL PaletteAlloc(TavrixPaletteHandle palette, u32 capacity)
{
    ColorTable* table = FindPluginPalette(palette);
    if (table == nullptr)
        return Failed;
    if (capacity > MostEntries) {
        (void)table->Destroy();
        return NoMemory;
    }
    return table->Create(capacity);
}

i32 TAVRIX_CALL PaletteFree(TavrixPaletteHandle palette)
{
    ColorTable* table = FindPluginPalette(palette);
    return table == nullptr ? Failed : table->Destroy();
}

i32 TAVRIX_CALL PaletteCopy(TavrixPaletteHandle target, TavrixPaletteHandle source)
{
    ColorTable* to = FindPluginPalette(target);
    if (to == nullptr)
        return Failed;
    ColorTable* from = FindPluginPalette(source);
    if (from == nullptr)
        return BadArgument;
    // The target is emptied before it is filled, and with it a source that is the same palette.
    return to == from ? Done : to->CopyFrom(from);
}

i32 TAVRIX_CALL PaletteAddEntry(TavrixPaletteHandle palette, u32 red, u32 green, u32 blue,
                                u32 fourth)
{
    ColorTable* table = FindPluginPalette(palette);
    return table == nullptr ? Failed : table->Add(red, green, blue, fourth);
}

i32 TAVRIX_CALL PaletteAddEntries(TavrixPaletteHandle palette, const PaletteEntry* entries,
                                  u32 count)
{
    ColorTable* table = FindPluginPalette(palette);
    if (table == nullptr)
        return Failed;
    if (entries == nullptr)
        return BadArgument;
    return table->AddMany(entries, count);
}

i32 TAVRIX_CALL PaletteSetEntries(TavrixPaletteHandle palette, const PaletteEntry* entries,
                                  u32 count)
{
    ColorTable* table = FindPluginPalette(palette);
    if (table == nullptr)
        return Failed;
    if (entries == nullptr)
        return BadArgument;
    return count > MostEntries ? NoMemory : table->SetEntries(entries, count);
}

i32 TAVRIX_CALL PaletteGetEntries(TavrixPaletteHandle palette, PaletteEntry* buffer)
{
    ColorTable* table = FindPluginPalette(palette);
    return table == nullptr ? Failed : table->GetEntries(buffer);
}

i32 TAVRIX_CALL PaletteGetPointer(TavrixPaletteHandle palette, PaletteEntry** entries)
{
    ColorTable* table = FindPluginPalette(palette);
    return table == nullptr ? Failed : table->GetData(entries);
}

} // namespace

void WritePaletteFunctions(PaletteFunctionTable* table)
{
    table->size = sizeof(*table);
    table->PaletteCreate = PaletteCreate;
    table->PaletteDestroy = PaletteDestroy;
    table->PaletteAlloc = PaletteAlloc;
    table->PaletteFree = PaletteFree;
    table->PaletteCopy = PaletteCopy;
    table->PaletteAddEntry = PaletteAddEntry;
    table->PaletteAddEntries = PaletteAddEntries;
    table->PaletteSetEntries = PaletteSetEntries;
    table->PaletteGetEntries = PaletteGetEntries;
    table->PaletteGetPointer = PaletteGetPointer;
}
