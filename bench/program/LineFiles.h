// The disk's own floor under paging: as many files of as many bytes, made and read back by plain
// calls of the host in the same kind of folder.
#pragma once

#include <string>

namespace bench
{

/// Seconds to create, write and close them in a folder of their own beside `pages`; 0 when not all
/// could be made.
double MakeLineFiles(const std::string& pages, unsigned count, unsigned bytes);
/// Seconds to open, read, close and remove them; 0 when not all were whole.
double ReadLineFiles(const std::string& pages, unsigned count, unsigned bytes);

} // namespace bench
