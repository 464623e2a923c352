// The disk's own floor under paging: as many files of as many bytes, made and read back by plain
// calls of the host in the same kind of folder.
#pragma once

#include <string>

namespace bench
{

struct LineFilesCost {
    double made = 0; // seconds: create, write, close
    double read = 0; // open, read, close, unlink
    bool whole = false;
};

LineFilesCost MeasureLineFiles(const std::string& pages, unsigned count, unsigned bytes);

} // namespace bench
