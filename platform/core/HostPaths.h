// The way between host paths and device paths for those who stand on both sides: the host's main
// with its command line, the loader of modules, the start of other programs, and tests.
#pragma once

#include <windows.h>

#include <string>

namespace tavrix::platform
{

/// What GetModuleFileNameW answers for the program itself.
inline constexpr const WCHAR* ProgramPath = u"\\Program Files\\Tavrix\\Tavrix.exe";

enum class HostPathResult {
    Done,
    TooLong,     // more than 259 characters as a device path
    NoDeviceName // empty, no UTF-8, or with "\" in a name
};

/// The device path under which the program sees a host file, which need not exist; a relative path
/// counts from the current folder. Of the mounts that show the file the one with the longest host
/// folder is taken.
CE_API HostPathResult DevicePathOf(const std::string& hostPath, std::u16string* devicePath);

/// The host path of the file that stands under a device path, or else where one of that name would
/// be written; empty when there is none. Makes nothing.
CE_API std::string HostPathOf(LPCWSTR devicePath);

} // namespace tavrix::platform
