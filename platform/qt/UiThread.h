// Carrying a call to the user-interface thread, for what must run there (message boxes, dialogs,
// window texts) and may be asked for from a worker.
#pragma once

#include <windows.h>

#include <functional>

namespace tavrix::platform
{

/// Runs `call` on the user-interface thread and answers its result: at once when already there,
/// else queued like a sent message while the caller waits.
LRESULT CallOnUiThread(std::function<LRESULT()> call);

} // namespace tavrix::platform
