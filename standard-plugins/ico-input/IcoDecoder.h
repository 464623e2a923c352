// Reads the best picture of an icon or cursor file (IcoDirectory.h) into the host's picture. The
// file goes through a temporary one, since its pictures may lie in any order.
//
// - Bitmaps: any depth that DibHeader.h tells, without run lengths. The mask's transparent pixels
//   take the ground, also those that would invert the screen. At 32 bits the fourth byte is alpha
//   and the mask is not looked at, unless all fourth bytes are 0. Rows whose mask is missing are
//   shown opaque, with a negative result.
// - PNG: any, alpha over the ground, its rows as they come.
//
// A file in which any picture is missing or breaks off has a negative result; the best of what can
// be had is shown.
#pragma once

#include "standard-plugins/common/reading/Background.h"
#include "standard-plugins/common/reading/Reader.h"

extern const BackgroundSettings icoBackground;

int32_t ReadIcoPicture(const ReadOrder& order);
int32_t ReadIcoSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height);
