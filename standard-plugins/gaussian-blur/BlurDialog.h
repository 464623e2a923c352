// What the blur asks: its radius, typed in pixels with at most one decimal, beside a preview that
// follows what is typed. User-interface thread, inside Configure.
#pragma once

#include "standard-plugins/common/PluginInfo.h"

#include <tavrix/plugin.h>

/// Radiuses are counted in tenths of a pixel everywhere.
constexpr uint32_t leastRadius = 1;
constexpr uint32_t mostRadius = 1000;

/// The number that a text spells: digits and, behind a point or a comma, at most one digit more;
/// blanks around it do not count. False for anything else and outside the range.
bool ParseRadius(const TavrixChar* text, uint32_t* tenths);
/// The text of a radius of the range: "2.5", and "3" for a whole number. Room for 8 characters.
void FormatRadius(uint32_t tenths, TavrixChar* text);

/// Shows the dialog with `*tenths` and takes what was typed. PluginDone, PluginNothing when the
/// user cancelled, PluginFailed when it cannot be shown. The picture is only looked at; without one
/// there is no preview.
int32_t AskRadius(uint32_t* tenths, const BilingualText& caption, TavrixWindow owner,
                  TavrixImageHandle image, RasterFunctionTable* rasters);
