// The numbers that the dialog's script and its code share.
#pragma once

#define DialogEdgesEnglish 100
#define DialogEdgesJapanese 101
#define ControlEdgesStrength 1001
#define ControlEdgesStrengthNumber 1002
#define ControlDarkGround 1003
#define ControlLightGround 1004
#define ControlEdgesColours 1005
#define ControlEdgesPreview 1006
