// The numbers that the dialog's script and its code share.
#pragma once

#define DialogOldPhotoEnglish 100
#define DialogOldPhotoJapanese 101
#define ControlSepia 1001
#define ControlSepiaNumber 1002
#define ControlCorners 1003
#define ControlCornersNumber 1004
#define ControlOldPhotoPreview 1005
