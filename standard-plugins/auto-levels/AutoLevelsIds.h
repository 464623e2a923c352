// The numbers that the dialog's script and its code share.
#pragma once

#define DialogAutoLevelsEnglish 100
#define DialogAutoLevelsJapanese 101
#define ControlClip 1001
#define ControlClipNumber 1002
#define ControlPerChannel 1003
#define ControlPreview 1004
