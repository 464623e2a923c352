// The numbers that the dialog's script and its code share.
#pragma once

#define DialogBlurEnglish 100
#define DialogBlurJapanese 101
#define ControlRadius 1001
#define ControlBlurPreview 1002
