// The pictures and palettes that a plugin may touch in the running call: the picture that it was
// lent, and what it made. What it made stands in the call's heap and is remembered: what a plugin
// forgets is released with its line files when the heap is dropped, and a plugin can release
// nothing but what it made itself.
//
// Every handle that a plugin hands in is looked up here before it is touched. One that it kept from
// an earlier call, one that it has released, one that it made up: each is refused, and so is every
// thread but that of the running call.
#pragma once

#include "foundation/Result.h"

#include <tavrix/plugin.h>

class ColorTable;
class Raster;

/// The picture of the running call, which stays its owner's; null lends none. Ends with the call.
void LendPluginImage(Raster* image);
/// The object behind a handle; null for any other value and on any other thread.
[[nodiscard]] Raster* FindPluginImage(TavrixImageHandle handle);
[[nodiscard]] ColorTable* FindPluginPalette(TavrixPaletteHandle handle);

/// Makes an empty object on the heap of the running call. Done; NoMemory, also without a running
/// call, and then `*out` is null.
[[nodiscard]] i32 MakePluginObject(Raster** out);
[[nodiscard]] i32 MakePluginObject(ColorTable** out);
/// Done; Failed for an object that was not made here or is gone already.
[[nodiscard]] i32 DestroyPluginObject(TavrixImageHandle handle);
[[nodiscard]] i32 DestroyPluginObject(TavrixPaletteHandle handle);
/// How many of the objects that the running call made are left.
[[nodiscard]] u32 CountPluginObjects();
/// Destroys all that are left and ends the loan. Called before the heap is dropped.
void DestroyPluginObjects();
