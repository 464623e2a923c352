// The numbers that the dialog's script and its code share.
#pragma once

#define DialogPngEnglish 100
#define DialogPngJapanese 101
#define ControlCompression 1001
#define ControlCompressionNumber 1002
#define ControlInterlaced 1003
