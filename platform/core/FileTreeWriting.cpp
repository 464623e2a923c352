// The writing side of the file tree: the layer of a mount that takes its writes, and the place in
// it for a file.

#include "platform/core/ErrorCodes.h"
#include "platform/core/FileTree.h"
#include "platform/core/HostFiles.h"

#include <cerrno>
#include <unistd.h>

namespace tavrix::platform
{

/// Makes the layer that takes a mount's writes, or finds another one for it.
DWORD FileTree::MakeWritable(Mount& mount)
{
    const std::lock_guard guard(lock);
    if (mount.layers.empty())
        return ERROR_PATH_NOT_FOUND;
    const std::string& first = mount.layers.front();
    if (access(first.empty() ? "/" : first.c_str(), W_OK) == 0 && IsHostFolder(first))
        return ERROR_SUCCESS;
    // A private folder that is gone is not made again: whoever made one of that name meanwhile
    // need not be this user.
    const int error = &mount == temp ? ENOENT : MakeFolders(first);
    if (!mount.goesElsewhere)
        return error == ENOENT ? ERROR_PATH_NOT_FOUND : DeviceError(error);
    if (error == 0 && access(first.c_str(), W_OK) == 0)
        return ERROR_SUCCESS;
    const std::string own = run.Path();
    if (own.empty() || mount.isElsewhere)
        return DeviceError(error != 0 ? error : EACCES);
    const std::string folder = own + "/" + HostName(mount.parts.front()).value_or("");
    const int made = MakeFolders(folder);
    if (made != 0)
        return DeviceError(made);
    mount.layers.insert(mount.layers.begin(), folder);
    mount.isElsewhere = true;
    return ERROR_SUCCESS;
}

/// Makes the folder above a file in the writable layer, where only a later layer has it.
DWORD FileTree::MakeFolderAbove(const Route& route, std::string* folder)
{
    const std::vector<std::string> layers = LayersOf(*route.mount);
    const Spelling spelling = route.mount->isTemporary ? Spelling::AsGiven : Spelling::AnyCase;
    *folder = layers.front();
    std::vector<std::u16string> parts;
    struct stat info {
    };
    for (size_t i = 0; i + 1 < route.rest.size(); ++i) {
        parts.push_back(route.rest[i]);
        std::string host;
        size_t layer = 0;
        while (layer < layers.size() &&
               (FindInFolder(layers[layer], parts, spelling, &host, &info) != 0 ||
                !S_ISDIR(info.st_mode)))
            ++layer;
        if (layer == layers.size())
            return ERROR_PATH_NOT_FOUND;
        *folder = layer == 0 ? host : *folder + host.substr(host.rfind('/'));
        // The copy of a folder that takes no files must take them.
        const mode_t mode = (info.st_mode & 0777) | S_IRWXU;
        if (layer != 0 && mkdir(folder->c_str(), mode) != 0 && errno != EEXIST)
            return DeviceError(errno);
    }
    return ERROR_SUCCESS;
}

DWORD FileTree::PlaceToWrite(const DevicePath& path, std::string* host)
{
    const Mount* exact = nullptr;
    if (LeadsToMount(path, &exact))
        return ERROR_ACCESS_DENIED;
    const Route route = RouteOf(path);
    DWORD error = MakeWritable(*route.mount);
    if (error != ERROR_SUCCESS)
        return error;
    std::string folder;
    error = MakeFolderAbove(route, &folder);
    if (error != ERROR_SUCCESS)
        return error;
    FoundFile there;
    const bool exists = FindBelow(route, &there) == ERROR_SUCCESS;
    *host = exists ? folder + there.host.substr(there.host.rfind('/'))
                   : folder + "/" + HostName(route.rest.back()).value_or("");
    return ERROR_SUCCESS;
}

void FileTree::CouldNotWrite(const DevicePath& path, bool madeAnew, DWORD error)
{
    if (path.parts.empty() || !RouteOf(path).mount->isReplaced)
        return;
    FoundFile found;
    Replacements::Hold hold;
    if (FindAndHold(path, &found, &hold) != ERROR_SUCCESS || !found.IsRegular())
        return;
    if (found.pending != nullptr)
        replacements->GiveUp(found.pending);
    if (madeAnew)
        replacements->Refuse(found.host, error);
}

} // namespace tavrix::platform
