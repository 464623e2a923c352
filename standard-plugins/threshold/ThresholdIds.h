// The numbers that the dialog's script and its code share.
#pragma once

#define DialogThresholdEnglish 100
#define DialogThresholdJapanese 101
#define ControlLevel 1001
#define ControlLevelNumber 1002
#define ControlAutomatic 1003
#define ControlPreview 1004
