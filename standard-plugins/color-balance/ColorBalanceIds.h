// The numbers that the dialog's script and its code share.
#pragma once

#define DialogColorBalanceEnglish 100
#define DialogColorBalanceJapanese 101
#define ControlRedShadows 1001
#define ControlRedShadowsNumber 1002
#define ControlRedMidtones 1003
#define ControlRedMidtonesNumber 1004
#define ControlRedHighlights 1005
#define ControlRedHighlightsNumber 1006
#define ControlGreenShadows 1007
#define ControlGreenShadowsNumber 1008
#define ControlGreenMidtones 1009
#define ControlGreenMidtonesNumber 1010
#define ControlGreenHighlights 1011
#define ControlGreenHighlightsNumber 1012
#define ControlBlueShadows 1013
#define ControlBlueShadowsNumber 1014
#define ControlBlueMidtones 1015
#define ControlBlueMidtonesNumber 1016
#define ControlBlueHighlights 1017
#define ControlBlueHighlightsNumber 1018
#define ControlKeepLightness 1019
#define ControlPreview 1020
