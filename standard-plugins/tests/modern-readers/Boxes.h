// Changes of a container of boxes (ISO/IEC 14496-12), as AVIF and HEIF files are.
#pragma once

#include <cstdint>
#include <string>

namespace moderntest
{

/// The file with another profile in the first box `colr` that has one ("prof"), wherever the data
/// then lie. The file as it is where it has none.
std::string WithProfile(const std::string& file, const std::string& profile);

/// The file with every picture's, track's and sample's size told as this.
std::string WithSize(const std::string& file, uint32_t width, uint32_t height);

} // namespace moderntest
