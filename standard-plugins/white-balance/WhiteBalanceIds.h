// The numbers that the dialog's script and its code share.
#pragma once

#define DialogWhiteBalanceEnglish 100
#define DialogWhiteBalanceJapanese 101
#define ControlRed 1001
#define ControlRedNumber 1002
#define ControlGreen 1003
#define ControlGreenNumber 1004
#define ControlBlue 1005
#define ControlBlueNumber 1006
#define ControlAutomatic 1007
#define ControlPreview 1008
