#include "platform/core/HostPaths.h"

#include "platform/core/FileTree.h"
#include "platform/core/HostFiles.h"

namespace tavrix::platform
{

namespace
{

/// The path without "..". A device path takes ".." by its text alone and the host by its links, so
/// they are resolved here, on the host's terms, as far as the path exists.
std::string WithoutUpwardParts(const std::string& path)
{
    const auto upward = [](const std::string& text) { return (text + "/").find("/../"); };
    std::string result = path;
    while (upward(result) != result.npos) {
        const size_t at = upward(result);
        const std::string above = result.substr(0, at);
        const std::string behind = result.substr(std::min(at + 3, result.size()));
        const std::string resolved = Canonical(above);
        const std::string folder = WithoutTrailingSlash(resolved.empty() ? above : resolved);
        result = folder.substr(0, folder.empty() ? 0 : folder.rfind('/')) + behind;
    }
    return result.empty() ? "/" : result;
}

bool IsSameFile(const std::string& a, const std::string& b)
{
    struct stat first {
    };
    struct stat second {
    };
    return a == b || (stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 &&
                      first.st_dev == second.st_dev && first.st_ino == second.st_ino);
}

} // namespace

HostPathResult DevicePathOf(const std::string& hostPath, std::u16string* devicePath)
{
    if (hostPath.empty())
        return HostPathResult::NoDeviceName;
    const std::string host = WithoutUpwardParts(AbsolutePath(hostPath));
    const std::shared_ptr<FileTree> tree = CurrentTree();
    HostPathResult result = HostPathResult::NoDeviceName;
    for (std::u16string& possible : tree->PossibleDevicePaths(WithoutTrailingSlash(host))) {
        DevicePath parsed;
        if (possible.size() >= MAX_PATH) {
            result = HostPathResult::TooLong;
            continue;
        }
        // A mount, or another layer, may hide the file under this name.
        if (ParsePath(possible.c_str(), &parsed) != ERROR_SUCCESS ||
            !IsSameFile(tree->HostPath(parsed), host))
            continue;
        *devicePath = std::move(possible);
        return HostPathResult::Done;
    }
    return result;
}

std::string HostPathOf(LPCWSTR devicePath)
{
    DevicePath parsed;
    return ParsePath(devicePath, &parsed) == ERROR_SUCCESS ? CurrentTree()->HostPath(parsed)
                                                           : std::string();
}

} // namespace tavrix::platform
