// The page as it is kept in the program's settings, for every plugin that prints. What is read is
// always within its range, whatever stands there.
#pragma once

#include "standard-plugins/common/pdf/PageGeometry.h"
#include "standard-plugins/common/PluginSettings.h"

/// The keys and ranges of one plugin.
struct PageSettingKeys {
    PluginSetting paper;
    PluginSetting orientation;
    PluginSetting margin;
    PluginSetting fit;
    PluginSetting resolution;
};

/// Those of the plugin whose keys begin with `prefix`, a literal, and which offers the first
/// `papers` of PaperKind: A4 by itself, lying where the picture does, margins of 10 millimetres,
/// fitted between them.
#define PAGE_SETTINGS(prefix, papers)                                                              \
    {                                                                                              \
        {PLUGIN_TEXT(prefix "Paper"), 0, (papers)-1, PaperA4},                                     \
            {PLUGIN_TEXT(prefix "Orientation"), 0, OrientationCount - 1, OrientationAutomatic},    \
            {PLUGIN_TEXT(prefix "Margin"), 0, largestMargin, 10},                                  \
            {PLUGIN_TEXT(prefix "Fit"), 0, 1, 1},                                                  \
            {PLUGIN_TEXT(prefix "Resolution"), smallestResolution, largestResolution, 96},         \
    }

/// Standard values where nothing is stored, and for a null `get`.
PageSettings ReadPageSettings(const PageSettingKeys& keys, TavrixGetPropertyCallback get);
/// False when something could not be stored.
bool StorePageSettings(const PageSettingKeys& keys, const PageSettings& page,
                       TavrixPutPropertyCallback put);
