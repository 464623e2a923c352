// The results that the plugins of this folder return, by name. They are the numbers of the
// contract; the program's own names for them are not visible to plugins.
#pragma once

#include <stdint.h>

enum : int32_t {
    PluginDone = 1,
    PluginFailed = -1, // broken data, a refused size, a user who gave up
    PluginNoMemory = -2,
    PluginBadArgument = -4, // a pointer is null that the call needs
    PluginNoStorage = -101  // the host could not store a line
};
