// A picture of an icon that is a PNG.
#pragma once

#include "standard-plugins/ico-input/IcoDirectory.h"

#include "standard-plugins/common/reading/Background.h"

/// Reads the picture at `picture.offset` of the file, the passes of an interlaced one straight into
/// their places. False with the reading's `result` set.
bool ReadIcoPng(RowReading* rows, TemporaryFile* file, const IcoPicture& picture,
                const Background& ground);
