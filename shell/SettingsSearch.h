// Where the settings lie: "Tavrix.ini" in a folder of the documents folder whose name depends on
// the language.
#pragma once

#include "settings/SettingsFile.h"

/// Makes the folder if it is absent and loads the settings from it; an absent file is created
/// empty. On failure the store stays closed, and every reader falls back on its default.
void FindSettings(SettingsFile* settings);
