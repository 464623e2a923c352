// The numbers that the dialog's script and its code share.
#pragma once

#define DialogGifEnglish 100
#define DialogGifJapanese 101
#define ControlColors 1001
#define ControlColorsNumber 1002
#define ControlDiffusion 1003
#define ControlInterlaced 1004
