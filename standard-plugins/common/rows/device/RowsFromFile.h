// Moves a reading from the host's stream to a temporary file, for formats that are not read
// forward.
#pragma once

#include "standard-plugins/common/device/TemporaryFile.h"
#include "standard-plugins/common/rows/RowReading.h"

/// Copies what is left of the stream; the user is asked between the pieces. False with the
/// reading's `result` set and the file closed.
bool CopyRest(RowReading* rows, TemporaryFile* file);
