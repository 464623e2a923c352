// Pins every offset of the contract's records and tables. They are what plugins in the field were
// built against: a failing line here means that the header broke them.

#include <tavrix/plugin.h>

#include <stddef.h>

namespace
{

constexpr size_t Pointer = sizeof(void*);
static_assert(Pointer == 4 || Pointer == 8);

/// The value with pointers of 4 bytes, and with pointers of 8.
constexpr size_t At(size_t narrow, size_t wide)
{
    return Pointer == 4 ? narrow : wide;
}

static_assert(sizeof(PluginStreamRecord) == At(24, 48));
static_assert(offsetof(PluginStreamRecord, size) == 0);
static_assert(offsetof(PluginStreamRecord, handle) == At(4, 8));
static_assert(offsetof(PluginStreamRecord, getSize) == At(8, 16));
static_assert(offsetof(PluginStreamRecord, seek) == At(12, 24));
static_assert(offsetof(PluginStreamRecord, read) == At(16, 32));
static_assert(offsetof(PluginStreamRecord, write) == At(20, 40));

static_assert(sizeof(RasterInfo) == 24);
static_assert(offsetof(RasterInfo, size) == 0);
static_assert(offsetof(RasterInfo, width) == 4);
static_assert(offsetof(RasterInfo, height) == 8);
static_assert(offsetof(RasterInfo, depth) == 12);
static_assert(offsetof(RasterInfo, stride) == 16);
static_assert(offsetof(RasterInfo, colorCount) == 20);

static_assert(sizeof(PaletteEntry) == 16);
static_assert(offsetof(PaletteEntry, red) == 0);
static_assert(offsetof(PaletteEntry, green) == 4);
static_assert(offsetof(PaletteEntry, blue) == 8);
static_assert(offsetof(PaletteEntry, fourth) == 12);

static_assert(sizeof(Variant) == At(12, 24));
static_assert(offsetof(Variant, name) == 0);
static_assert(offsetof(Variant, type) == At(4, 8));
static_assert(offsetof(Variant, value) == At(8, 16));

static_assert(sizeof(RasterFunctionTable) == At(68, 136));
static_assert(offsetof(RasterFunctionTable, size) == 0);
static_assert(offsetof(RasterFunctionTable, RasterCreate) == At(4, 8));
static_assert(offsetof(RasterFunctionTable, RasterDestroy) == At(8, 16));
static_assert(offsetof(RasterFunctionTable, RasterAlloc) == At(12, 24));
static_assert(offsetof(RasterFunctionTable, RasterFree) == At(16, 32));
static_assert(offsetof(RasterFunctionTable, RasterCopy) == At(20, 40));
static_assert(offsetof(RasterFunctionTable, RasterInsertLines) == At(24, 48));
static_assert(offsetof(RasterFunctionTable, RasterDeleteLines) == At(28, 56));
static_assert(offsetof(RasterFunctionTable, RasterSwapLines) == At(32, 64));
static_assert(offsetof(RasterFunctionTable, RasterGetInfo) == At(36, 72));
static_assert(offsetof(RasterFunctionTable, RasterLockLines) == At(40, 80));
static_assert(offsetof(RasterFunctionTable, RasterUnlockLines) == At(44, 88));
static_assert(offsetof(RasterFunctionTable, RasterGetPalette) == At(48, 96));
static_assert(offsetof(RasterFunctionTable, RasterSetPalette) == At(52, 104));
static_assert(offsetof(RasterFunctionTable, RasterStretch) == At(56, 112));
static_assert(offsetof(RasterFunctionTable, RasterGetPixel) == At(60, 120));
static_assert(offsetof(RasterFunctionTable, RasterSetPixel) == At(64, 128));

static_assert(sizeof(PaletteFunctionTable) == At(44, 88));
static_assert(offsetof(PaletteFunctionTable, size) == 0);
static_assert(offsetof(PaletteFunctionTable, PaletteCreate) == At(4, 8));
static_assert(offsetof(PaletteFunctionTable, PaletteDestroy) == At(8, 16));
static_assert(offsetof(PaletteFunctionTable, PaletteAlloc) == At(12, 24));
static_assert(offsetof(PaletteFunctionTable, PaletteFree) == At(16, 32));
static_assert(offsetof(PaletteFunctionTable, PaletteCopy) == At(20, 40));
static_assert(offsetof(PaletteFunctionTable, PaletteAddEntry) == At(24, 48));
static_assert(offsetof(PaletteFunctionTable, PaletteAddEntries) == At(28, 56));
static_assert(offsetof(PaletteFunctionTable, PaletteSetEntries) == At(32, 64));
static_assert(offsetof(PaletteFunctionTable, PaletteGetEntries) == At(36, 72));
static_assert(offsetof(PaletteFunctionTable, PaletteGetPointer) == At(40, 80));

} // namespace
