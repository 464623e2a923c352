// What the program holds in the device's heaps and global blocks, which is what the figure of
// available memory is reduced by.
#pragma once

#include <cstddef>

namespace tavrix::platform
{

/// The bytes asked for and not given back, over every heap and all global blocks; headers are not
/// counted. Any thread, costs one load.
size_t HeldBytes();

/// The heaps that live.
size_t CountHeaps();

} // namespace tavrix::platform
