#include "view/SizeFields.h"

#include "resources/Ids.h"

#include <initializer_list>

namespace
{

void AddUnit(HWND dialog, i32 list, const WCHAR* unit)
{
    SendDlgItemMessageW(dialog, list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(unit));
}

} // namespace

void ShowSize(HWND dialog, u32 width, u32 height)
{
    SetDlgItemInt(dialog, ControlWidth, width, FALSE);
    SetDlgItemInt(dialog, ControlHeight, height, FALSE);
}

void ReadSize(HWND dialog, u32* width, u32* height)
{
    *width = GetDlgItemInt(dialog, ControlWidth, nullptr, FALSE);
    *height = GetDlgItemInt(dialog, ControlHeight, nullptr, FALSE);
}

void FillUnits(HWND dialog, bool percent)
{
    for (const i32 list : {ControlWidthUnit, ControlHeightUnit}) {
        AddUnit(dialog, list, TEXT("px"));
        if (percent)
            AddUnit(dialog, list, TEXT("%"));
        SendDlgItemMessageW(dialog, list, CB_SETCURSEL, 0, 0);
    }
}
