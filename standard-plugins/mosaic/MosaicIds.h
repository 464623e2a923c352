// The numbers that the dialog's script and its code share.
#pragma once

#define DialogMosaicEnglish 100
#define DialogMosaicJapanese 101
#define ControlBlockSize 1001
#define ControlBlockSizeNumber 1002
#define ControlMosaicPreview 1003
