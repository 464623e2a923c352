// The numbers that the dialog's script and its code share.
#pragma once

#define DialogMedianEnglish 100
#define DialogMedianJapanese 101
#define ControlMedianRadius 1001
#define ControlMedianRadiusNumber 1002
#define ControlMedianPreview 1003
