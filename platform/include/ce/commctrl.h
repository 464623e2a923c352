// The device's common controls as far as the program uses them. Included after <windows.h>.
#pragma once

#include "device/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct tagINITCOMMONCONTROLSEX
{
    DWORD dwSize;
    DWORD dwICC;
} INITCOMMONCONTROLSEX;

#define ICC_LISTVIEW_CLASSES 1u
#define ICC_TREEVIEW_CLASSES 2u
#define PROGRESS_CLASSW TEXT("msctls_progress32")
#define PBM_SETRANGE 0x0401
#define PBM_SETPOS 0x0402
#define PBM_GETPOS 0x0408

CE_API BOOL WINAPI InitCommonControlsEx(const INITCOMMONCONTROLSEX* record);

#ifdef __cplusplus
}
#endif
