// What a plugin does with what it is handed, watched in every call: the callbacks, the two function
// tables, the thread. A call gets tables of its own that pass everything on to the host's; when it
// has returned they are filled with traps, so that a plugin which kept their address walks into
// one. Every breach is told at once under the key of its row.
//
// One call at a time. BeginWatch and EndWatch bracket it on the thread of the call; what was seen
// may be read behind EndWatch.
#pragma once

#include "foundation/Types.h"
#include "plugin/PluginModule.h"

#include <string>

namespace plugincheck
{

class CheckContext;

/// What goes wrong in a call on purpose. Numbers count from 1; 0 is never.
struct Conditions {
    u32 refuseProgressFrom = 0; // this report and all behind it are answered "stop"
    bool refuseProperties = false;
    u32 refuseLocksFrom = 0;        // this RasterLockLines and all behind it fail
    bool refuseAllocations = false; // RasterAlloc fails
    bool refuseObjects = false;     // RasterCreate and PaletteCreate fail
};

struct Seen {
    u32 progress = 0;
    u32 progressBehindRefusal = 0;
    u32 locks = 0;
    u32 refusedLocks = 0;
    u32 refusedAllocations = 0;
    u32 messages = 0;
    u32 dialogs = 0;
};

/// The context that breaches are told to, and the conditions of the next calls.
void WatchFor(CheckContext* context, const Conditions& conditions);
const Seen& WhatWasSeen();
Seen& SeenNow();
const Conditions& CurrentConditions();

/// The four callbacks for the next call. Settings are kept for the life of the process, as the host
/// keeps them.
PluginCallbacks WatchedCallbacks();
/// Whom the settings that are stored are judged for.
void ListenToSettings(CheckContext* context);
void ForgetSettings();

// Around the export itself.
void BeginWatch(const char* exportName);
void EndWatch();
/// An exception is on its way out of the export: tells so and ends the process.
[[noreturn]] void TellException();
RasterFunctionTable* LendTable(RasterFunctionTable* hosts);
PaletteFunctionTable* LendTable(PaletteFunctionTable* hosts);

// For the tables.
/// Functions and callbacks come in two sets, which calls get in turn, so that one that was kept
/// over the end of its call is known by its set.
enum class HandSet { First, Second };
HandSet NextSet();
/// Whether the caller may use what belongs to the running call; tells the breach if it may not.
bool IsAllowedHere(const char* function, HandSet set);
/// A function of a table of an earlier call was used.
void TellKept(const char* function);
/// The lines of a picture that are locked in the running call, by the plugin's own words: the
/// host's rule that unlocking the last line does nothing must not make a good plugin look careless.
void NoteLocked(TavrixImageHandle image, i32 line, u32 count);
void NoteUnlocked(TavrixImageHandle image, i32 line, u32 count);
void NoteRenewed(TavrixImageHandle image);

} // namespace plugincheck
