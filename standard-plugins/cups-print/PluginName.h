// The plugin's name: in menus, over its dialog and over what it tells.
#pragma once

#include "standard-plugins/common/PluginInfo.h"

constexpr BilingualText pluginName = {PLUGIN_TEXT("Printer"), PLUGIN_TEXT("プリンタ")};
