// Where the settings lie: "Tavrix.ini" in a folder of the documents folder whose name depends on
// the language. Earlier versions kept the file beside the program; such a file is moved at the
// first start that finds none in the new place. User-interface thread, once a run.
#pragma once

#include "settings/SettingsFile.h"

/// In this order: looks for the file in the new place; if it is not there, loads the one beside the
/// program if there is one; makes the new folder; saves to the new place, which a store that has
/// loaded nothing refuses; loads from the new place. That last load first writes a moved file back
/// to its old place, where it stays and is ignored from then on (it is left untouched where the new
/// place has taken no file), and makes an absent new file empty. From here on all saving goes to
/// the new place.
///
/// No result: on failure the store stays closed, and every reader falls back on its default. Null
/// does nothing.
void FindSettings(SettingsFile* settings);
