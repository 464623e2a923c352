// The device's system interface as the program and its plugins use it: our own declarations of the
// functions, records and numbers they call, with their public meaning. A source that includes this
// header compiles as well against the real one of that name, which a test holds.
#pragma once

#include "device/Base.h"
#include "device/Gdi.h"
#include "device/Kernel.h"
#include "device/Text.h"
#include "device/User.h"
