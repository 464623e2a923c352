// The results that the plugins of this folder return, by name. They are the numbers of the
// contract; the program's own names for them are not visible to plugins.
#pragma once

#include <stdint.h>

enum : int32_t {
    PluginDone = 1,
    PluginNothing = 0, // the user cancelled a dialog
    PluginFailed = -1, // broken data, a refused size, a reading that the user gave up
    PluginNoMemory = -2,
    PluginBadArgument = -4, // a pointer is null that the call needs
    PluginStopped = -9,     // the user gave up
    PluginNoStorage = -101  // the host could not store a line
};
