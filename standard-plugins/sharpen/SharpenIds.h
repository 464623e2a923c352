// The numbers that the dialog's script and its code share.
#pragma once

#define DialogSharpenEnglish 100
#define DialogSharpenJapanese 101
#define ControlAmount 1001
#define ControlAmountNumber 1002
#define ControlSharpenRadius 1003
#define ControlSharpenRadiusNumber 1004
#define ControlThreshold 1005
#define ControlThresholdNumber 1006
#define ControlSharpenPreview 1007
