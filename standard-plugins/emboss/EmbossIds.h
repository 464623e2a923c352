// The numbers that the dialog's script and its code share.
#pragma once

#define DialogEmbossEnglish 100
#define DialogEmbossJapanese 101
// Where the light comes from, clockwise.
#define ControlLightAbove 1001
#define ControlLightAboveRight 1002
#define ControlLightRight 1003
#define ControlLightBelowRight 1004
#define ControlLightBelow 1005
#define ControlLightBelowLeft 1006
#define ControlLightLeft 1007
#define ControlLightAboveLeft 1008
#define ControlEmbossStrength 1009
#define ControlEmbossStrengthNumber 1010
#define ControlKeepColours 1011
#define ControlEmbossPreview 1012
