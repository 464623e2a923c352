// Names on both sides: the device's UTF-16 text and the host's bytes, comparison without regard to
// case, and the patterns of a search. Pure functions, safe from any thread.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrix::platform
{

/// The host's UTF-8 bytes of a device name; empty optional for a surrogate that stands alone.
std::optional<std::string> HostName(std::u16string_view name);
/// The device's text of a host name; empty optional for bytes that are no UTF-8.
std::optional<std::u16string> DeviceName(std::string_view bytes);

/// `name` with every letter that has one replaced by its small form.
std::u16string Folded(std::u16string_view name);

/// Whether a name fits a search pattern: `*` any run, `?` one character, without regard to case. As
/// the interface has it, `*.*` fits every name and a trailing `.*` also fits no extension at all.
/// Both texts are folded by the caller.
bool FitsPattern(std::u16string_view foldedName, std::u16string_view foldedPattern);

/// A device path in parts. `\`, `/` and runs of them separate; `.` is dropped and `..` takes the
/// part before it away, or nothing at the root. A path without a leading separator counts from the
/// root, since the device has no current folder.
struct DevicePath {
    std::vector<std::u16string> parts;
    bool endsInSeparator = false;
};

/// Takes a path apart. ERROR_SUCCESS; ERROR_PATH_NOT_FOUND for null, the empty path, and one of
/// MAX_PATH characters or more; ERROR_INVALID_NAME for text that has no UTF-8 form.
DWORD ParsePath(LPCWSTR path, DevicePath* parsed);

} // namespace tavrix::platform
