// The numbers that the dialog's script and its code share.
#pragma once

#define DialogJpegEnglish 100
#define DialogJpegJapanese 101
#define ControlQuality 1001
#define ControlQualityNumber 1002
#define ControlProgressive 1003
/* The radio buttons' numbers follow each other as the values of the setting do. */
#define ControlSamplingAutomatic 1010
#define ControlSampling444 1011
#define ControlSampling422 1012
#define ControlSampling420 1013
