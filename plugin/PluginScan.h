// The pass over all plugins, once at the start: finds those of each kind, asks each for its name
// and, where the kind has them, for its file formats, and leaves nothing loaded. User-interface
// thread, after the screen surface is set up and before the menus are filled.
#pragma once

#include "plugin/FormatList.h"
#include "plugin/PluginModule.h"

/// A kind and where the pass puts what it finds. Everything stays the caller's.
struct PluginKindEntry {
    PluginModule* module;
    /// Gets the file formats with their plugin's index; null for a kind that has none.
    FormatList* formats;
    /// Gets each plugin's name with its index as value. Of two plugins with one name the later
    /// wins.
    PropertyList* names;
};

/// Visits the kinds in the order given, which is INPUT, OUTPUT, PRINT, EFFECT, ADJUST, SCALE,
/// SUBTRACT for the program. Plugins that fail are left out without a word. Done, or Failed when
/// the two work buffers cannot be had from `allocator` (null: the C run time's memory).
[[nodiscard]] i32 ScanPluginKinds(const PluginKindEntry* kinds, u32 count,
                                  Allocator* allocator = nullptr);
