// What the name of a file tells about its format: the plugin that its extension stands for, and the
// extension that a name to save under lacks.
#pragma once

#include "plugin/FormatList.h"

/// The plugin of the first format of `formats` whose patterns hold what follows the last "." of
/// `name`, the point included, as FindTextNoCase sees it: a shortened extension of a longer one
/// fits, too, and the order of the formats decides. NothingDone when there is no "." or no such
/// format.
[[nodiscard]] i32 FindPluginOfName(const FormatList& formats, const WCHAR* name, i32* plugin);

/// Gives `name` the extension of format number `index`, unless one of the format's extensions
/// occurs in it already. `name` keeps within `capacity` characters.
void CompleteExtension(const FormatList& formats, u32 index, WCHAR* name, u32 capacity);
