// How much memory the device has. Read from the host once, at the first call; from then on the
// figure is that budget less what the program holds in heaps and global blocks.
#pragma once

#include <optional>
#include <string>

namespace tavrix::platform
{

/// "16M", "512k", "1G" or plain bytes; nothing for any other text and for 0. Saturates at 64 bits.
std::optional<unsigned long long> ParseMemorySize(const char* text);

/// What a host whose /proc and /sys lie below `root` has available: MemAvailable, or less where a
/// control group of this process leaves less. Nothing when neither can be read.
std::optional<unsigned long long> HostAvailableBytes(const std::string& root);

/// Where the device's memory ends: what the host had available at the first call, whatever figure
/// the program is told. A host promises more than it has, and ends the program that takes it at
/// its word.
unsigned long long EndOfHostMemory();

} // namespace tavrix::platform
