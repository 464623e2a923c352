// A look at a file before the host's loader gets it.
#pragma once

#include <string>

namespace tavrix::platform
{

/// Whether the host file is a regular one and a whole shared object of this machine's word size.
/// The loader maps what the headers name without asking whether the file is that long, and a
/// library cut short would then end the process instead of failing to load. Never waits for a FIFO
/// or a device.
bool IsWholeLibrary(const std::string& hostPath);

} // namespace tavrix::platform
