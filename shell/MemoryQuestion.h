// The one guard against working with too little memory: before a command makes a large temporary
// picture it asks the user whether to go on. A question and not a refusal, since what the device
// tells is a guess, and lines may page to files. User-interface thread.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

/// Whether a command that is about to need so many bytes may go on: at once where more than that is
/// free, else only when the user says Yes.
[[nodiscard]] bool MayTakeMemory(HWND owner, u64 need);

/// What a picture of that size is reckoned to need: four bytes a pixel, whatever its depth, which
/// leaves some room. The largest number where that is more than it can hold.
[[nodiscard]] u64 MemoryNeed(u64 width, u64 height);
