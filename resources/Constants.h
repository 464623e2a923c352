/* The numbers of the device's interface that the resource scripts name: window styles and keys. The
 * scripts cannot read the interface's own headers, which hold declarations. */
#ifndef TAVRIX_RESOURCES_CONSTANTS_H
#define TAVRIX_RESOURCES_CONSTANTS_H

#define WS_POPUP 0x80000000L
#define WS_VISIBLE 0x10000000L
#define WS_DISABLED 0x08000000L
#define WS_BORDER 0x00800000L
#define WS_DLGFRAME 0x00400000L
#define DS_MODALFRAME 0x80L
#define SS_LEFT 0x0L

#define VK_LEFT 0x25
#define VK_UP 0x26
#define VK_RIGHT 0x27
#define VK_DOWN 0x28
#define VK_F4 0x73

#define LANG_NEUTRAL 0
#define SUBLANG_NEUTRAL 0

#endif
