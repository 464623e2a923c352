// Texts of the device in sentences for people, and counted things.
#pragma once

#include "foundation/Types.h"

#include <string>
#include <string_view>

namespace plugincheck
{

/// UTF-16 to UTF-8; what is no text becomes "?".
std::string Utf8(std::u16string_view text);
/// "1 line", "3 lines"; without `many` the plural takes an s.
std::string Counted(size_t count, const std::string& one, std::string many = {});
/// A text in quotes, cut where it is long.
std::string Quoted(const std::string& text);
/// "0x10002" for indexes.
std::string Hex(u32 number);

} // namespace plugincheck
