// The numbers that the dialog's script and its code share.
#pragma once

#define DialogNoiseEnglish 100
#define DialogNoiseJapanese 101
#define ControlNoiseAmount 1001
#define ControlNoiseAmountNumber 1002
#define ControlEven 1003
#define ControlGaussian 1004
#define ControlNoiseColours 1005
#define ControlNoisePreview 1006
