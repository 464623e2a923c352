// A picture of an icon that is a bitmap with a mask behind it.
#pragma once

#include "standard-plugins/ico-input/IcoDirectory.h"

#include "standard-plugins/common/reading/Background.h"

/// Reads the picture at `picture.offset` of the file. False with the reading's `result` set.
bool ReadIcoBitmap(RowReading* rows, TemporaryFile* file, const IcoPicture& picture,
                   const Background& ground);
