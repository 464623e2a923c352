// The device's shell library, which is part of the platform: where the user's documents lie,
// through item lists that the shell's own allocator owns. Its exports are found by name through
// GetProcAddressW, so their records are declared by whoever calls them.
#pragma once

#include <windows.h>

namespace tavrix::platform
{

/// The export of that name; null when the shell has none.
FARPROC FindShellExport(const char* name);

} // namespace tavrix::platform
