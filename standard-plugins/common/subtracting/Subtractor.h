// What every SUBTRACT plugin is made of. Each keeps one constant `subtractPlugin`; the exports
// stand once in SubtractExports.cpp, the way over the picture in SubtractRun, and both are compiled
// into each of them. The kind has no Configure: settings are read, and nobody is asked.
#pragma once

#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/PluginSettings.h"
#include "standard-plugins/common/reducing/ReducedPalette.h"

struct SubtractPlugin {
    PluginTexts texts;
    /// 0 or 1: the colours' differences are spread over the neighbours.
    PluginSetting diffusion;
    /// What the palette depends on.
    PluginSetting choice;
    /// Makes a palette that does not depend on the picture, from the value of `choice`. Null: the
    /// palette is made for the picture, of as many colours as `choice` says.
    void (*fill)(uint32_t choice, ReducedPalette* palette);
};

extern const SubtractPlugin subtractPlugin;
