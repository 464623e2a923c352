// The time of the program's day: it goes on with what the person does, and nobody waits for it.
#pragma once

#include <windows.h>

namespace endurance
{

/// The tick count from here on.
void BeginTime();
/// Any thread.
void PassTime(DWORD milliseconds);

} // namespace endurance
