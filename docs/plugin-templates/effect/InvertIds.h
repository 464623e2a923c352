/* The numbers that the dialog's script and its code share. */
#ifndef INVERT_IDS_H
#define INVERT_IDS_H

#define DialogInvert 100
/* The check boxes' numbers follow each other as the bytes of a pixel do. */
#define ControlBlue 1001
#define ControlGreen 1002
#define ControlRed 1003

#endif
