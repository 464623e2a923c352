// The record of the device's file dialogs. There are no dialogs of the system's behind it: the
// program has its own, which takes the same record. Included after <windows.h>.
#pragma once

#include "device/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

#define OFN_OVERWRITEPROMPT 2u
#define OFN_FILEMUSTEXIST 0x1000u

typedef UINT_PTR(CALLBACK* LPOFNHOOKPROC)(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

typedef struct tagOFNW
{
    DWORD lStructSize;
    HWND hwndOwner;
    HINSTANCE hInstance;
    LPCWSTR lpstrFilter;
    LPWSTR lpstrCustomFilter;
    DWORD nMaxCustFilter;
    DWORD nFilterIndex;
    LPWSTR lpstrFile;
    DWORD nMaxFile;
    LPWSTR lpstrFileTitle;
    DWORD nMaxFileTitle;
    LPCWSTR lpstrInitialDir;
    LPCWSTR lpstrTitle;
    DWORD Flags;
    WORD nFileOffset;
    WORD nFileExtension;
    LPCWSTR lpstrDefExt;
    LPARAM lCustData;
    LPOFNHOOKPROC lpfnHook;
    LPCWSTR lpTemplateName;
} OPENFILENAMEW;

#ifdef __cplusplus
}
#endif
