// The one call of the common controls that is no message. Their classes are always there.
#include <windows.h>

#include <commctrl.h>

#include "platform/qt/StockClasses.h"

BOOL WINAPI InitCommonControlsEx(const INITCOMMONCONTROLSEX* record)
{
    if (record == nullptr || record->dwSize < sizeof(INITCOMMONCONTROLSEX)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    tavrix::platform::RegisterStockClasses();
    return TRUE;
}
