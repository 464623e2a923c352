// The numbers of the controls that choose the page, in the script of every plugin that prints.
#ifndef PAGE_DIALOG_IDS_H
#define PAGE_DIALOG_IDS_H

#define ControlPaper 1002
#define ControlOrientation 1003
#define ControlMargin 1004
#define ControlFit 1005
#define ControlRealSize 1006
#define ControlResolution 1007

#endif
