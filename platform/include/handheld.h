// What the handheld's interface has and the desktop's of the same family lacks: the command bar,
// event modification, look-up of exports by wide name, the device's random numbers and idle timer,
// the replacing of a file at a stroke.
// Include after <windows.h>.
#pragma once

#include <windows.h>

#ifndef CE_API
#define CE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

#define EVENT_PULSE 1u
#define EVENT_RESET 2u
#define EVENT_SET 3u

/// Sets (EVENT_SET), resets (EVENT_RESET) or pulses (EVENT_PULSE) an event. FALSE for a handle that
/// is no event or an unknown action.
CE_API BOOL WINAPI EventModify(HANDLE event, DWORD action);

/// Tells the device that it is in use, so that it neither suspends nor blanks its screen.
CE_API void WINAPI SystemIdleTimerReset(void);

/// A pseudo-random number from 0 to 0x7FFFFFFF. Safe from any thread.
CE_API LONG WINAPI Random(void);

/// The address of an export, by wide name; null when the module has none of that name.
CE_API FARPROC WINAPI GetProcAddressW(HMODULE module, LPCWSTR name);

// The command bar: the strip with the menu along the top of a main window.
/// Makes the bar as a child of `parent` with control id `id`. Null on failure.
CE_API HWND WINAPI CommandBar_Create(HINSTANCE instance, HWND parent, int id);
/// Puts menu resource `menuId` of `instance` into the bar at button position `position`.
CE_API BOOL WINAPI CommandBar_InsertMenubar(HWND bar, HINSTANCE instance, WORD menuId,
                                            WORD position);
/// Adds the close button (which sends the parent WM_CLOSE).
CE_API BOOL WINAPI CommandBar_AddAdornments(HWND bar, DWORD flags, DWORD reserved);
/// The bar's height in pixels of the device screen.
CE_API int WINAPI CommandBar_Height(HWND bar);
/// The menu at button position `position`, null when there is none.
CE_API HMENU WINAPI CommandBar_GetMenu(HWND bar, WORD position);

/// Gives `target` the content of `source`, which is gone afterwards: whoever looks finds the old
/// content or the new one, never a part. `target` need not exist; where it does it keeps its
/// permissions. FALSE with both files as they were.
CE_API BOOL WINAPI DeleteAndRenameFile(LPCWSTR target, LPCWSTR source);

#ifdef __cplusplus
}
#endif
