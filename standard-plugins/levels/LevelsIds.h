// The numbers that the dialog's script and its code share.
#pragma once

#define DialogLevelsEnglish 100
#define DialogLevelsJapanese 101
#define ControlInputBlack 1001
#define ControlInputBlackNumber 1002
#define ControlInputWhite 1003
#define ControlInputWhiteNumber 1004
#define ControlGamma 1005
#define ControlGammaNumber 1006
#define ControlOutputBlack 1007
#define ControlOutputBlackNumber 1008
#define ControlOutputWhite 1009
#define ControlOutputWhiteNumber 1010
#define ControlPreview 1011
