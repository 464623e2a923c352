// The numbers that the dialog's script and its code share.
#pragma once

#define DialogPosteriseEnglish 100
#define DialogPosteriseJapanese 101
#define ControlPosteriseLevels 1001
#define ControlPosteriseLevelsNumber 1002
#define ControlPosterisePreview 1003
