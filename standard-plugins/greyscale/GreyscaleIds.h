// The numbers that the dialog's script and its code share.
#pragma once

#define DialogGreyscaleEnglish 100
#define DialogGreyscaleJapanese 101
#define ControlLuma601 1001
#define ControlLuma709 1002
#define ControlLumaAverage 1003
#define ControlPreview 1004
