// The two tables of functions that a plugin works through. They are written anew before each call
// of a plugin, so that one which spoils them harms nobody but itself. The functions check what the
// contract in tavrix/plugin.h leaves to the host and pass the rest to Raster and ColorTable. Handles
// are the addresses of those objects and are looked up (PluginObjects.h) before they are used: a
// handle that the running call does not know counts as null, and so does every handle on a thread
// that is not that of the running call.
#pragma once

#include "foundation/Result.h"
#include <tavrix/plugin.h>

class ColorTable;
class Raster;

/// No side of a picture that a plugin makes is longer: the stretch walks its source in 16.16 fixed
/// point of 32 bits.
inline constexpr u32 LongestPluginSide = 65535;

/// Fills the table with its size and the sixteen functions.
void WriteRasterFunctions(RasterFunctionTable* table);
/// Fills the table with its size and the ten functions.
void WritePaletteFunctions(PaletteFunctionTable* table);

inline TavrixImageHandle ToHandle(Raster* raster)
{
    return reinterpret_cast<TavrixImageHandle>(raster);
}

inline TavrixPaletteHandle ToHandle(ColorTable* palette)
{
    return reinterpret_cast<TavrixPaletteHandle>(palette);
}
