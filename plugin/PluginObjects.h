// The pictures and palettes that a plugin made in the running call. They stand in the call's heap
// and are remembered, for two reasons: what a plugin forgets is released with its line files when
// the heap is dropped, and a plugin can release nothing but what it made itself.
// Thread: that of the running call.
#pragma once

#include "foundation/Result.h"

class ColorTable;
class Raster;

/// Makes an empty object on the heap of the running call. Done; NoMemory, also without a running
/// call, and then `*out` is null.
[[nodiscard]] i32 MakePluginObject(Raster** out);
[[nodiscard]] i32 MakePluginObject(ColorTable** out);
/// Done; Failed for an object that was not made here or is gone already.
[[nodiscard]] i32 DestroyPluginObject(Raster* object);
[[nodiscard]] i32 DestroyPluginObject(ColorTable* object);
/// Destroys all that are left. Called before the heap is dropped.
void DestroyPluginObjects();
