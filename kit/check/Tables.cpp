#include "kit/check/Tables.h"

#include "foundation/Result.h"
#include "kit/check/Watch.h"

#include <cstring>

namespace plugincheck
{

struct LentTables {
    RasterFunctionTable rasters;
    PaletteFunctionTable palettes;
    RasterFunctionTable rastersAtFirst;
    PaletteFunctionTable palettesAtFirst;
};

namespace
{

// What the running call's functions pass on to.
RasterFunctionTable hostRasters;
PaletteFunctionTable hostPalettes;

template <typename Table>
const Table& HostTable();
template <>
const RasterFunctionTable& HostTable()
{
    return hostRasters;
}
template <>
const PaletteFunctionTable& HostTable()
{
    return hostPalettes;
}

/// A function that passes on, and one that only tells, for a slot of a table.
template <typename Table, typename... Parameters>
struct SlotOf {
    using Function = i32(TAVRIX_CALL*)(Parameters...);

    template <HandSet Set, Function Table::*Slot, const char* Name>
    static i32 TAVRIX_CALL PassOn(Parameters... parameters)
    {
        return IsAllowedHere(Name, Set) ? (HostTable<Table>().*Slot)(parameters...) : Failed;
    }
    template <const char* Name>
    static i32 TAVRIX_CALL Trap(Parameters...)
    {
        TellKept(Name);
        return Failed;
    }
};

template <typename Table, typename... Parameters>
SlotOf<Table, Parameters...> Slot(i32 (TAVRIX_CALL* Table::*)(Parameters...));

#define FOR_EACH_RASTER_FUNCTION(DO)                                                               \
    DO(RasterCreate)                                                                               \
    DO(RasterDestroy)                                                                              \
    DO(RasterAlloc)                                                                                \
    DO(RasterFree)                                                                                 \
    DO(RasterCopy)                                                                                 \
    DO(RasterInsertLines)                                                                          \
    DO(RasterDeleteLines)                                                                          \
    DO(RasterSwapLines) DO(RasterGetInfo) DO(RasterLockLines) DO(RasterUnlockLines)                \
        DO(RasterGetPalette) DO(RasterSetPalette) DO(RasterStretch) DO(RasterGetPixel)             \
            DO(RasterSetPixel)
#define FOR_EACH_PALETTE_FUNCTION(DO)                                                              \
    DO(PaletteCreate)                                                                              \
    DO(PaletteDestroy)                                                                             \
    DO(PaletteAlloc)                                                                               \
    DO(PaletteFree)                                                                                \
    DO(PaletteCopy)                                                                                \
    DO(PaletteAddEntry)                                                                            \
    DO(PaletteAddEntries) DO(PaletteSetEntries) DO(PaletteGetEntries) DO(PaletteGetPointer)

#define NAME(function) constexpr char function##Name[] = #function;
FOR_EACH_RASTER_FUNCTION(NAME)
FOR_EACH_PALETTE_FUNCTION(NAME)
#undef NAME

/// The logical line behind a number that may count from the end.
i32 PlainLine(TavrixImageHandle image, i32 line)
{
    RasterInfo info = {};
    info.size = sizeof info;
    if (line >= 0 || hostRasters.RasterGetInfo(image, &info) < 0)
        return line;
    return line + static_cast<i32>(info.height);
}

// The functions that do more than pass on.

template <HandSet Set>
i32 TAVRIX_CALL CreateRaster(TavrixImageHandle* out)
{
    if (!IsAllowedHere("RasterCreate", Set))
        return Failed;
    if (!CurrentConditions().refuseObjects || out == nullptr)
        return hostRasters.RasterCreate(out);
    *out = nullptr;
    return NoMemory;
}

template <HandSet Set>
i32 TAVRIX_CALL CreatePalette(TavrixPaletteHandle* out)
{
    if (!IsAllowedHere("PaletteCreate", Set))
        return Failed;
    if (!CurrentConditions().refuseObjects || out == nullptr)
        return hostPalettes.PaletteCreate(out);
    *out = nullptr;
    return NoMemory;
}

template <HandSet Set>
i32 TAVRIX_CALL AllocRaster(TavrixImageHandle image, u32 width, u32 height, u32 depth)
{
    if (!IsAllowedHere("RasterAlloc", Set))
        return Failed;
    NoteRenewed(image);
    if (!CurrentConditions().refuseAllocations)
        return hostRasters.RasterAlloc(image, width, height, depth);
    ++SeenNow().refusedAllocations;
    (void)hostRasters.RasterFree(image);
    return NoMemory;
}

template <HandSet Set>
i32 TAVRIX_CALL LockLines(TavrixImageHandle image, i32 line, void** lines, u32* count)
{
    if (!IsAllowedHere("RasterLockLines", Set))
        return Failed;
    const u32 from = CurrentConditions().refuseLocksFrom;
    if (from != 0 && ++SeenNow().locks >= from) {
        ++SeenNow().refusedLocks;
        if (count != nullptr)
            *count = 0;
        return NothingDone;
    }
    const i32 first = PlainLine(image, line);
    const i32 result = hostRasters.RasterLockLines(image, line, lines, count);
    if (result > 0 || count != nullptr)
        NoteLocked(image, first, result > 0 ? (count != nullptr ? *count : 1) : 0);
    return result;
}

template <HandSet Set>
i32 TAVRIX_CALL UnlockLines(TavrixImageHandle image, i32 line, u32 count)
{
    if (!IsAllowedHere("RasterUnlockLines", Set))
        return Failed;
    NoteUnlocked(image, PlainLine(image, line), count);
    return hostRasters.RasterUnlockLines(image, line, count);
}

// Behind these the numbers of locked lines mean other lines, or none.

template <HandSet Set>
i32 TAVRIX_CALL DestroyRaster(TavrixImageHandle* image)
{
    if (!IsAllowedHere("RasterDestroy", Set))
        return Failed;
    const TavrixImageHandle old = image != nullptr ? *image : nullptr;
    const i32 result = hostRasters.RasterDestroy(image);
    if (result > 0)
        NoteRenewed(old);
    return result;
}

template <HandSet Set>
i32 TAVRIX_CALL FreeRaster(TavrixImageHandle image)
{
    if (!IsAllowedHere("RasterFree", Set))
        return Failed;
    NoteRenewed(image);
    return hostRasters.RasterFree(image);
}

template <HandSet Set>
i32 TAVRIX_CALL CopyRaster(TavrixImageHandle target, TavrixImageHandle source)
{
    if (!IsAllowedHere("RasterCopy", Set))
        return Failed;
    NoteRenewed(target);
    NoteRenewed(source);
    return hostRasters.RasterCopy(target, source);
}

template <HandSet Set>
i32 TAVRIX_CALL InsertLines(TavrixImageHandle image, i32 line, u32* count)
{
    if (!IsAllowedHere("RasterInsertLines", Set))
        return Failed;
    NoteRenewed(image);
    return hostRasters.RasterInsertLines(image, line, count);
}

template <HandSet Set>
i32 TAVRIX_CALL DeleteLines(TavrixImageHandle image, i32 line, u32* count)
{
    if (!IsAllowedHere("RasterDeleteLines", Set))
        return Failed;
    NoteRenewed(image);
    return hostRasters.RasterDeleteLines(image, line, count);
}

template <HandSet Set>
i32 TAVRIX_CALL SwapLines(TavrixImageHandle image, i32 a, i32 b)
{
    if (!IsAllowedHere("RasterSwapLines", Set))
        return Failed;
    NoteRenewed(image);
    return hostRasters.RasterSwapLines(image, a, b);
}

template <HandSet Set>
void FillRasters(RasterFunctionTable& table)
{
    table.size = sizeof table;
#define PASS(function)                                                                             \
    table.function = decltype(Slot(                                                                \
        &RasterFunctionTable::function))::PassOn<Set, &RasterFunctionTable::function,              \
                                                 function##Name>;
    FOR_EACH_RASTER_FUNCTION(PASS)
#undef PASS
    table.RasterCreate = CreateRaster<Set>;
    table.RasterAlloc = AllocRaster<Set>;
    table.RasterLockLines = LockLines<Set>;
    table.RasterUnlockLines = UnlockLines<Set>;
    table.RasterDestroy = DestroyRaster<Set>;
    table.RasterFree = FreeRaster<Set>;
    table.RasterCopy = CopyRaster<Set>;
    table.RasterInsertLines = InsertLines<Set>;
    table.RasterDeleteLines = DeleteLines<Set>;
    table.RasterSwapLines = SwapLines<Set>;
}

template <HandSet Set>
void FillPalettes(PaletteFunctionTable& table)
{
    table.size = sizeof table;
#define PASS(function)                                                                             \
    table.function = decltype(Slot(                                                                \
        &PaletteFunctionTable::function))::PassOn<Set, &PaletteFunctionTable::function,            \
                                                  function##Name>;
    FOR_EACH_PALETTE_FUNCTION(PASS)
#undef PASS
    table.PaletteCreate = CreatePalette<Set>;
}

} // namespace

LentTables* MakeLentTables()
{
    LentTables* tables = new LentTables;
    std::memset(static_cast<void*>(tables), 0, sizeof *tables);
    return tables;
}

RasterFunctionTable* LendRasters(LentTables* tables, RasterFunctionTable* hosts, HandSet set)
{
    if (hosts == nullptr)
        return nullptr;
    hostRasters = *hosts;
    RasterFunctionTable& table = tables->rasters;
    if (set == HandSet::First)
        FillRasters<HandSet::First>(table);
    else
        FillRasters<HandSet::Second>(table);
    std::memcpy(&tables->rastersAtFirst, &table, sizeof table);
    return &table;
}

PaletteFunctionTable* LendPalettes(LentTables* tables, PaletteFunctionTable* hosts, HandSet set)
{
    if (hosts == nullptr)
        return nullptr;
    hostPalettes = *hosts;
    PaletteFunctionTable& table = tables->palettes;
    if (set == HandSet::First)
        FillPalettes<HandSet::First>(table);
    else
        FillPalettes<HandSet::Second>(table);
    std::memcpy(&tables->palettesAtFirst, &table, sizeof table);
    return &table;
}

bool IsSpoiled(const LentTables& tables)
{
    return std::memcmp(&tables.rasters, &tables.rastersAtFirst, sizeof tables.rasters) != 0 ||
           std::memcmp(&tables.palettes, &tables.palettesAtFirst, sizeof tables.palettes) != 0;
}

void TrapTables(LentTables* tables)
{
#define TRAP(function)                                                                             \
    tables->rasters.function = decltype(Slot(&RasterFunctionTable::function))::Trap<function##Name>;
    FOR_EACH_RASTER_FUNCTION(TRAP)
#undef TRAP
#define TRAP(function)                                                                             \
    tables->palettes.function =                                                                    \
        decltype(Slot(&PaletteFunctionTable::function))::Trap<function##Name>;
    FOR_EACH_PALETTE_FUNCTION(TRAP)
#undef TRAP
}

} // namespace plugincheck
