// The numbers that the dialog's script and its code share.
#pragma once

#define DialogHueSaturationEnglish 100
#define DialogHueSaturationJapanese 101
#define ControlHue 1001
#define ControlHueNumber 1002
#define ControlSaturation 1003
#define ControlSaturationNumber 1004
#define ControlLightness 1005
#define ControlLightnessNumber 1006
#define ControlPreview 1007
