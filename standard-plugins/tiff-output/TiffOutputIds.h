// The numbers that the dialog's script and its code share.
#pragma once

#define DialogTiffEnglish 100
#define DialogTiffJapanese 101
#define ControlPredictor 1001
/* The radio buttons' numbers follow each other as the values of the setting do. */
#define ControlNone 1010
#define ControlPackBits 1011
#define ControlLzw 1012
#define ControlDeflate 1013
