// The one language test. It is asked anew at each use; there is no setting for it.
#pragma once

#include <windows.h>

/// True on a Japanese system: every choice between two texts or two resources hangs on it.
bool IsJapanese();

/// The one of two texts that the system's language calls for.
const WCHAR* InLanguage(const WCHAR* english, const WCHAR* japanese);
