// The filter text of the file dialogs: for each format of a list its description, a zero, its
// patterns, a zero, and one more zero behind the last. In place of patterns that are empty stands a
// lone ";", so that no empty text comes before the end. A format's number in the text is its number
// in the list, unless only one plugin's formats were asked for.
#pragma once

#include "plugin/FormatList.h"

/// Asks for the formats of all plugins.
inline constexpr i32 EveryPlugin = -1;

/// Clears the `capacity` characters of `text` and writes the formats of `plugin` in their order. At
/// the first one that has no room left in whole it stops, without a word: the rest of an overfull
/// list is lost. The final zeros are always there. Nothing for null or no capacity.
void BuildFilterText(WCHAR* text, u32 capacity, const FormatList& formats,
                     i32 plugin = EveryPlugin);
