// The dialogs' templates among the program's resources.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

/// Null when there is none; the platform then makes no dialog of it.
LPCDLGTEMPLATEW FindDialogResource(HINSTANCE instance, u32 id);
