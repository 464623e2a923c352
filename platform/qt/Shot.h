// A picture of the device screen for machines without a display: with TAVRIX_SHOT=file.png the
// program writes one once its start is over and then ends in the ordinary way.
#pragma once

namespace tavrix::platform
{

/// Whether the environment asks for one. Nobody sits at the machine then.
bool ShotIsWanted();
/// Writes the picture if it is asked for, and closes the main window. Only the first call does.
void TakeShot();

} // namespace tavrix::platform
