#include "InvertDialog.h"

#include "InvertIds.h"

#include <tavrix/module.h>

enum { ChannelCount = 3 };

static void ShowChannels(HWND dialog, uint32_t channels)
{
    for (int i = 0; i < ChannelCount; ++i)
        SendDlgItemMessageW(dialog, ControlBlue + i, BM_SETCHECK, channels >> i & 1, 0);
}

static uint32_t CheckedChannels(HWND dialog)
{
    uint32_t channels = 0;
    for (int i = 0; i < ChannelCount; ++i)
        if (SendDlgItemMessageW(dialog, ControlBlue + i, BM_GETCHECK, 0, 0) == BST_CHECKED)
            channels |= 1u << i;
    return channels;
}

static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        ShowChannels(dialog, *(const uint32_t *)lParam);
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == IDOK)
            *(uint32_t *)GetWindowLongPtrW(dialog, DWLP_USER) = CheckedChannels(dialog);
        if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)
            EndDialog(dialog, LOWORD(wParam));
        return TRUE;
    default:
        return FALSE;
    }
}

int32_t AskForChannels(HWND owner, uint32_t *channels)
{
    const HINSTANCE module = TavrixThisModule();
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(DialogInvert), RT_DIALOG);
    if (!found)
        return -1;
    LPCDLGTEMPLATEW template = LockResource(LoadResource(module, found));
    const INT_PTR result =
        DialogBoxIndirectParamW(module, template, owner, Procedure, (LPARAM)channels);
    return result == IDOK ? 1 : result == IDCANCEL ? 0 : -1;
}
