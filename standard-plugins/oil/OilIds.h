// The numbers that the dialog's script and its code share.
#pragma once

#define DialogOilEnglish 100
#define DialogOilJapanese 101
#define ControlOilRadius 1001
#define ControlOilRadiusNumber 1002
#define ControlOilLevels 1003
#define ControlOilLevelsNumber 1004
#define ControlOilPreview 1005
