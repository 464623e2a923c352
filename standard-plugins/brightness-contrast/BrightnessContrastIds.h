// The numbers that the dialog's script and its code share.
#pragma once

#define DialogBrightnessEnglish 100
#define DialogBrightnessJapanese 101
#define ControlBrightness 1001
#define ControlBrightnessNumber 1002
#define ControlContrast 1003
#define ControlContrastNumber 1004
#define ControlPreview 1005
