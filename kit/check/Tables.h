// The function tables that a watched call is lent in place of the host's.
#pragma once

#include "kit/check/Watch.h"

namespace plugincheck
{

/// Tables of one call and what they held at first. Never given back: no later call may get their
/// address.
struct LentTables;

LentTables* MakeLentTables();
/// The table to hand over, which passes on to `hosts`. Null stays null.
RasterFunctionTable* LendRasters(LentTables* tables, RasterFunctionTable* hosts, HandSet set);
PaletteFunctionTable* LendPalettes(LentTables* tables, PaletteFunctionTable* hosts, HandSet set);
/// Whether they hold something else than they were lent with.
bool IsSpoiled(const LentTables& tables);
/// Fills them with functions that tell of their use and fail.
void TrapTables(LentTables* tables);

} // namespace plugincheck
