// Pictures read and written by the codecs' own libraries, line by line: what the program's opening
// is held against, and where the bench's big pictures come from.
#pragma once

#include "bench/program/Flow.h"

#include <functional>
#include <string>

namespace bench
{

/// Reads a PNG or JPEG file (by its extension) and keeps nothing of it but the four places. A size
/// of 0 when it cannot be read.
Places ReadByLibrary(const std::string& file);

/// Writes one, each row of red, green and blue as `row` gives it. False when it cannot be written.
bool WriteByLibrary(const std::string& file, unsigned width, unsigned height,
                    const std::function<const unsigned char*(unsigned y)>& row);

} // namespace bench
