// The record of a found file as the device tells it, made from what the host knows of the file.
#pragma once

#include <windows.h>

#include <string_view>
#include <sys/stat.h>

namespace tavrix::platform
{

/// FILE_ATTRIBUTE_ flags: a folder; read-only where nobody may write; hidden where the host hides
/// the name (a leading "."); normal when none of these holds.
DWORD AttributesOf(std::u16string_view name, const struct stat& info);

/// Fills the whole record. The host keeps no time of creation everywhere: the time of the last
/// change stands for it. Names of MAX_PATH units or more are cut.
void FillFindData(std::u16string_view name, const struct stat& info, WIN32_FIND_DATAW* data);

} // namespace tavrix::platform
