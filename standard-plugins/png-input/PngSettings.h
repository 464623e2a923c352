// The settings of the PNG reader.
#pragma once

#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/reading/Background.h"

constexpr BackgroundSettings pngBackground = BACKGROUND_SETTINGS("PngInput");
