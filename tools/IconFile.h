// Icon files of the device.
#pragma once

#include "tools/LetterPicture.h"

/// Each square as one 32-bit image of an icon; nothing where one is no square of 256 at most.
Bytes IconOf(const std::vector<Block>& squares);
