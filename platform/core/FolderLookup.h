// Looking names up in one host folder, as spelled or without regard to case, and listing it with
// the device's names.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace tavrix::platform
{

enum class Spelling { AsGiven, AnyCase };

/// Finds `parts`, one below the other, under `folder` (the empty text is the host's root). With
/// AnyCase a part that does not exist as spelled is looked for without regard to case; of several
/// the first by bytes is taken. 0, or the host's error. `*host` and `*info` are set on success
/// only;
/// `*info` tells of what a link points to.
int FindInFolder(const std::string& folder, const std::vector<std::u16string>& parts,
                 Spelling spelling, std::string* host, struct stat* info);

/// Calls `take` for each name of a host folder that has a device form and that `wanted` takes. No
/// "." and "..", no link that leads nowhere; in no order.
void ListFolder(const std::string& folder,
                const std::function<bool(std::u16string_view folded)>& wanted,
                const std::function<void(std::u16string folded, std::u16string name,
                                         const struct stat& info)>& take);

} // namespace tavrix::platform
