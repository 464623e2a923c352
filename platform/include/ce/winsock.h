// The device's sockets, version 1.1, as the program uses them. A source that includes this header
// compiles as well against the real one of that name.
#pragma once

#include <windows.h>

#include "device/Sockets.h"
