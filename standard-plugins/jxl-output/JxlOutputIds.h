// The numbers that the dialog's script and its code share.
#pragma once

#define DialogJxlEnglish 100
#define DialogJxlJapanese 101
#define ControlQuality 1001
#define ControlQualityNumber 1002
#define ControlEffort 1003
#define ControlEffortNumber 1004
#define ControlLossless 1005
