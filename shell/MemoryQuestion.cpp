#include "shell/MemoryQuestion.h"

#include "foundation/Language.h"

bool MayTakeMemory(HWND owner, u64 need)
{
    MEMORYSTATUS status = {};
    status.dwLength = sizeof status;
    GlobalMemoryStatus(&status);
    if (status.dwAvailPhys > need)
        return true;
    return MessageBoxW(owner,
                       InLanguage(TEXT("Physical memory available might be not enough. Enforce the "
                                       "process?"),
                                  TEXT("作業用メモリが足りない可能性があります。強行しますか？")),
                       InLanguage(TEXT("confirm"), TEXT("確認")),
                       MB_YESNO | MB_ICONEXCLAMATION) == IDYES;
}

u64 MemoryNeed(u64 width, u64 height)
{
    constexpr u64 most = ~u64{0};
    if (width == 0 || height == 0)
        return 0;
    return height > most / 4 / width ? most : width * height * 4;
}
