// The numbers that the dialog's script and its code share.
#ifndef PDF_PRINT_IDS_H
#define PDF_PRINT_IDS_H

#define DialogEnglish 100
#define DialogJapanese 101
#define ControlFile 1001
#define ControlPaper 1002
#define ControlOrientation 1003
#define ControlMargin 1004
#define ControlFit 1005
#define ControlRealSize 1006
#define ControlResolution 1007

#endif
