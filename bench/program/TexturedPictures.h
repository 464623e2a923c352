// The bench's own pictures, made at the first run and kept in the build folder.
#pragma once

#include <string>

namespace bench
{

/// The path of a picture of the harbour of this size, "" when it cannot be made.
std::string Harbour(unsigned width, unsigned height, const std::string& extension);
/// The same of a texture that repeats from top to bottom, for sizes at which painting each pixel
/// would take minutes. Needs no more memory than the tile that repeats.
std::string Textured(unsigned width, unsigned height, const std::string& extension);

} // namespace bench
