// The numbers that the dialog's script and its code share.
#pragma once

#define DialogCurvesEnglish 100
#define DialogCurvesJapanese 101
#define ControlAt0 1001
#define ControlAt0Number 1002
#define ControlAt64 1003
#define ControlAt64Number 1004
#define ControlAt128 1005
#define ControlAt128Number 1006
#define ControlAt192 1007
#define ControlAt192Number 1008
#define ControlAt255 1009
#define ControlAt255Number 1010
#define ControlAllChannels 1011
#define ControlRedChannel 1012
#define ControlGreenChannel 1013
#define ControlBlueChannel 1014
#define ControlPreview 1015
