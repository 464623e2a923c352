/*
 * The numbers of the device's interface that resource scripts (.rc) name: window and control styles,
 * the standard buttons, keys, languages. The resource compiler cannot read the interface's own
 * headers, which hold declarations. Not for C sources, which have them from <windows.h>.
 */
#ifndef TAVRIX_RESOURCE_H
#define TAVRIX_RESOURCE_H

/* Windows and dialogs. */
#define WS_POPUP 0x80000000L
#define WS_CHILD 0x40000000L
#define WS_VISIBLE 0x10000000L
#define WS_DISABLED 0x08000000L
#define WS_CAPTION 0x00C00000L
#define WS_BORDER 0x00800000L
#define WS_DLGFRAME 0x00400000L
#define WS_VSCROLL 0x00200000L
#define WS_HSCROLL 0x00100000L
#define WS_SYSMENU 0x00080000L
#define WS_GROUP 0x00020000L
#define WS_TABSTOP 0x00010000L
#define DS_SETFONT 0x40L
#define DS_MODALFRAME 0x80L
#define DS_CENTER 0x800L

/* Controls. */
#define SS_LEFT 0x0L
#define SS_CENTER 0x1L
#define SS_RIGHT 0x2L
#define SS_ICON 0x3L
#define BS_PUSHBUTTON 0x0L
#define BS_DEFPUSHBUTTON 0x1L
#define BS_CHECKBOX 0x2L
#define BS_AUTOCHECKBOX 0x3L
#define BS_RADIOBUTTON 0x4L
#define BS_GROUPBOX 0x7L
#define BS_AUTORADIOBUTTON 0x9L
#define ES_RIGHT 0x2L
#define ES_AUTOHSCROLL 0x80L
#define ES_NUMBER 0x2000L
#define CBS_DROPDOWNLIST 0x3L
#define TBS_NOTICKS 0x10L

/* The buttons that every dialog has. */
#define IDOK 1
#define IDCANCEL 2

/* Keys. */
#define VK_LEFT 0x25
#define VK_UP 0x26
#define VK_RIGHT 0x27
#define VK_DOWN 0x28
#define VK_F4 0x73

/* Languages. Of resources with the same number the device's language is found, else the neutral
 * one: give English as neutral and Japanese as its own. */
#define LANG_NEUTRAL 0
#define LANG_JAPANESE 17
#define SUBLANG_NEUTRAL 0
#define SUBLANG_DEFAULT 1

#endif
