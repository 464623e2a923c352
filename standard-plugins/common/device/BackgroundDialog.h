// Asks for the background of transparent parts, on behalf of a plugin that was built with
// Background.rc as its RESOURCES. User-interface thread: inside Configure alone.
#pragma once

#include "standard-plugins/common/reading/Background.h"

/// Carries out Configure of a reader: PluginDone at once unless the stored `ask` is 1; else the
/// dialog, with the results of AskSettings.
int32_t AskBackground(const BackgroundSettings& settings, TavrixWindow owner,
                      TavrixPutPropertyCallback put, TavrixGetPropertyCallback get);
