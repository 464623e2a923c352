// Message boxes that several flows show. User-interface thread.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

/// An error in the system's language, with the stop icon.
void ShowError(HWND owner, const WCHAR* english, const WCHAR* japanese);

/// An error in English whatever the language, as some flows tell some of theirs: meant.
void ShowEnglishError(HWND owner, const WCHAR* text, u32 flags = MB_ICONHAND);

/// Nothing can be opened at all.
void TellNoInputPlugin(HWND owner);

/// A paste without a selection.
void TellNoPlaceToPaste(HWND owner);

/// A plugin's settings have failed, and the flow goes on.
void WarnAboutConfigure(HWND owner);
