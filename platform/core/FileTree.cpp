#include "platform/core/FileTree.h"

#include "platform/core/ErrorCodes.h"
#include "platform/core/HostFiles.h"

#include <algorithm>
#include <cerrno>

namespace tavrix::platform
{

namespace
{

/// Whether `parts`, folded, begin with the folded parts of a mount.
bool BeginsWith(const std::vector<std::u16string>& parts, const std::vector<std::u16string>& start)
{
    return parts.size() >= start.size() && std::equal(start.begin(), start.end(), parts.begin());
}

std::vector<std::u16string> FoldedParts(const DevicePath& path)
{
    std::vector<std::u16string> folded;
    folded.reserve(path.parts.size());
    for (const std::u16string& part : path.parts)
        folded.push_back(Folded(part));
    return folded;
}

/// Whether a name is that of a file that the platform itself has there for a while.
bool IsPassing(const std::u16string& name)
{
    return name.starts_with(u".tavrix-") && IsReplacementName(HostName(name).value_or(""));
}

/// A folder that only the mount table makes.
void BeVirtualFolder(FoundFile* found)
{
    found->host.clear();
    found->info = {};
    found->info.st_mode = S_IFDIR | 0700;
}

} // namespace

FileTree::FileTree(const Surroundings& given)
    : surroundings(given), temporary(given.temporaryBases), run(given.temporaryBases)
{
    root = &Add(u"", {given.home});
    Add(u"\\Computer", {""});
    Add(u"\\My Documents", {given.documents});
    // Only the program's own files go elsewhere when they cannot be written. A picture that a
    // person saves to a folder that takes none must fail to save, not vanish with the run.
    Mount& program = Add(u"\\Program Files\\Tavrix", {given.data + "/tavrix"});
    if (!given.programFolder.empty())
        program.layers.push_back(given.programFolder);
    program.goesElsewhere = true;
    Mount& settings = Add(u"\\Application Data\\Tavrix", {given.config + "/tavrix"});
    settings.goesElsewhere = true;
    settings.isReplaced = true;
    temp = &Add(u"\\Temp", {temporary.Path()});
    temp->isTemporary = true;
    temp->isListed = false; // the user's own ~/Temp shows there instead
    if (temporary.Path().empty())
        temp->layers.clear();
    if (given.hasStorageCard) {
        Add(u"\\Storage Card", {given.storageCard});
        Add(u"\\Storage Card\\Temp", {given.storageCard + "/Temp"}).isTemporary = true;
        if (IsHostFolder(given.storageCard))
            MakeFolders(given.storageCard + "/Temp");
    }
    std::stable_sort(mounts.begin(), mounts.end(), [](const auto& a, const auto& b) {
        return a->parts.size() > b->parts.size();
    });
}

FileTree::Mount& FileTree::Add(std::u16string_view path, std::vector<std::string> layers)
{
    auto mount = std::make_unique<Mount>();
    mount->path = path;
    if (!path.empty()) {
        DevicePath parsed;
        (void)ParsePath(mount->path.c_str(), &parsed);
        mount->parts = FoldedParts(parsed);
    }
    mount->layers = std::move(layers);
    mounts.push_back(std::move(mount));
    return *mounts.back();
}

std::vector<std::string> FileTree::LayersOf(const Mount& mount) const
{
    const std::lock_guard guard(lock);
    return mount.layers;
}

/// Whether a name below \Temp belongs to the user's own folder of that name, which the private one
/// must not hide: it is no paging file, the private folder has nothing of that name, and the user
/// has such a folder.
bool FileTree::IsUsersTemp(const std::vector<std::u16string>& rest) const
{
    const std::string first = HostName(rest.front()).value_or("");
    if (rest.size() == 1 && IsPagingName(first))
        return false;
    struct stat info {
    };
    if (!temporary.Path().empty() && lstat((temporary.Path() + "/" + first).c_str(), &info) == 0)
        return false;
    std::string host;
    return FindInFolder(surroundings.home, {u"Temp"}, Spelling::AnyCase, &host, &info) == 0 &&
           S_ISDIR(info.st_mode);
}

FileTree::Route FileTree::RouteOf(const DevicePath& path) const
{
    const std::vector<std::u16string> folded = FoldedParts(path);
    Route route;
    for (const auto& mount : mounts) {
        if (!BeginsWith(folded, mount->parts))
            continue;
        route.mount = mount.get();
        route.rest.assign(path.parts.begin() + static_cast<ptrdiff_t>(mount->parts.size()),
                          path.parts.end());
        if (mount.get() != temp || route.rest.empty() || !IsUsersTemp(route.rest))
            break;
    }
    return route;
}

/// Whether a path is a mount (then `*exact` is it) or a folder on the way to one.
bool FileTree::LeadsToMount(const DevicePath& path, const Mount** exact) const
{
    const std::vector<std::u16string> folded = FoldedParts(path);
    bool leads = false;
    *exact = nullptr;
    for (const auto& mount : mounts) {
        if (!BeginsWith(mount->parts, folded))
            continue;
        leads = true;
        if (mount->parts.size() == folded.size())
            *exact = mount.get();
    }
    return leads;
}

DWORD FileTree::FindBelow(const Route& route, FoundFile* found) const
{
    const std::vector<std::string> layers = LayersOf(*route.mount);
    const Spelling spelling = route.mount->isTemporary ? Spelling::AsGiven : Spelling::AnyCase;
    found->isReplaced = route.mount->isReplaced;
    found->pending = nullptr;
    int error = ENOENT;
    for (size_t i = 0; i < layers.size(); ++i) {
        const int result =
            FindInFolder(layers[i], route.rest, spelling, &found->host, &found->info);
        if (result == 0 && found->isReplaced)
            TakePending(replacements->PendingOf(found->host), found);
        if (result == 0 || (found->isReplaced && FindPending(layers[i], route, spelling, found))) {
            found->isWritten = i == 0;
            return ERROR_SUCCESS;
        }
        if (result != ENOENT && result != ENOTDIR)
            error = result;
    }
    return DeviceError(error);
}

/// Lets a pending replacement stand in for what was found.
void FileTree::TakePending(std::shared_ptr<Replacement> pending, FoundFile* found) const
{
    struct stat info {
    };
    if (pending == nullptr || fstat(pending->File(), &info) != 0)
        return;
    found->info = info;
    found->pending = std::move(pending);
}

/// Finds a pending file of which nothing stands in the folder yet.
bool FileTree::FindPending(const std::string& layer, const Route& route, Spelling spelling,
                           FoundFile* found) const
{
    if (route.rest.empty())
        return false;
    std::string folder;
    struct stat info {
    };
    const std::vector<std::u16string> above(route.rest.begin(), route.rest.end() - 1);
    if (FindInFolder(layer, above, spelling, &folder, &info) != 0)
        return false;
    TakePending(replacements->PendingIn(folder, route.rest.back(), &found->host), found);
    return found->pending != nullptr;
}

DWORD FileTree::Find(const DevicePath& path, FoundFile* found)
{
    *found = {};
    const Mount* exact = nullptr;
    found->isFixed = LeadsToMount(path, &exact);
    const Route route = RouteOf(path);
    const DWORD error = FindBelow(route, found);
    if (found->isFixed) {
        if (error != ERROR_SUCCESS || !found->IsFolder())
            BeVirtualFolder(found);
        return ERROR_SUCCESS;
    }
    if (error != ERROR_FILE_NOT_FOUND)
        return error;
    FoundFile above;
    DevicePath folder = path;
    folder.parts.pop_back();
    return Find(folder, &above) == ERROR_SUCCESS && above.IsFolder() ? ERROR_FILE_NOT_FOUND
                                                                     : ERROR_PATH_NOT_FOUND;
}

DWORD FileTree::FindAndHold(const DevicePath& path, FoundFile* found, Replacements::Hold* hold)
{
    const DWORD error = Find(path, found);
    if (!found->isReplaced || hold->owns_lock())
        return error;
    *hold = replacements->HoldStill();
    return Find(path, found);
}

/// Brings the pending files of a host folder into its listing.
void FileTree::ListPending(
    const std::string& folder, const std::function<bool(std::u16string_view folded)>& wanted,
    std::map<std::u16string, std::map<std::u16string, struct stat>>* names) const
{
    const Replacements::Hold hold = replacements->HoldStill();
    if (replacements->IsIdle())
        return;
    FoundFile found;
    for (auto& [folded, spelled] : *names)
        for (auto& [name, info] : spelled) {
            found.info = info;
            TakePending(replacements->PendingOf(folder + "/" + HostName(name).value_or("")),
                        &found);
            info = found.info;
        }
    for (const auto& [name, pending] : replacements->NewIn(folder)) {
        std::u16string folded = Folded(name);
        TakePending(pending, &found);
        if (wanted(folded))
            (*names)[std::move(folded)].emplace(name, found.info); // what stands there stays
    }
}

DWORD FileTree::List(const DevicePath& folder,
                     const std::function<bool(std::u16string_view folded)>& wanted,
                     std::vector<ListedFile>* files)
{
    FoundFile itself;
    const DWORD error = Find(folder, &itself);
    if (error != ERROR_SUCCESS || !itself.IsFolder())
        return error == ERROR_SUCCESS || error == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND
                                                                       : error;
    const std::vector<std::u16string> above = FoldedParts(folder);
    std::vector<Route> routes{RouteOf(folder)};
    if (routes.front().mount == temp && routes.front().rest.empty())
        routes.push_back({root, folder.parts}); // the user's own ~/Temp
    // Keyed by the folded name and then by the name, which is the order of the listing.
    std::map<std::u16string, std::map<std::u16string, struct stat>> names;
    for (const Route& route : routes) {
        const Spelling spelling = route.mount->isTemporary ? Spelling::AsGiven : Spelling::AnyCase;
        for (const std::string& layer : LayersOf(*route.mount)) {
            std::string host;
            struct stat info {
            };
            if (FindInFolder(layer, route.rest, spelling, &host, &info) != 0)
                continue;
            std::map<std::u16string, std::map<std::u16string, struct stat>> here;
            ListFolder(host, wanted,
                       [&](std::u16string folded, std::u16string name, const struct stat& status) {
                           if (!IsPassing(name))
                               here[std::move(folded)].emplace(std::move(name), status);
                       });
            if (route.mount->isReplaced)
                ListPending(host, wanted, &here);
            names.merge(here); // of one name the earlier layer's stays
        }
    }
    for (const auto& mount : mounts) {
        if (!mount->isListed || mount->parts.size() <= above.size() ||
            !BeginsWith(mount->parts, above))
            continue;
        const std::u16string& folded = mount->parts[above.size()];
        if (!wanted(folded))
            continue;
        DevicePath path;
        (void)ParsePath(mount->path.c_str(), &path);
        path.parts.resize(above.size() + 1);
        FoundFile found;
        if (Find(path, &found) == ERROR_SUCCESS)
            names[folded] = {{path.parts.back(), found.info}};
    }
    for (auto& [folded, spelled] : names)
        for (auto& [name, info] : spelled)
            files->push_back({name, info});
    return ERROR_SUCCESS;
}

size_t FileTree::CountLayersWith(const DevicePath& path) const
{
    const Route route = RouteOf(path);
    const Spelling spelling = route.mount->isTemporary ? Spelling::AsGiven : Spelling::AnyCase;
    size_t count = 0;
    std::string host;
    struct stat info {
    };
    for (const std::string& layer : LayersOf(*route.mount))
        count += FindInFolder(layer, route.rest, spelling, &host, &info) == 0;
    return count;
}

std::u16string FileTree::NameOf(const DevicePath& path, const FoundFile& found) const
{
    const std::vector<std::u16string> folded = FoldedParts(path);
    if (!found.isFixed)
        return DeviceName(found.host.substr(found.host.rfind('/') + 1)).value_or(path.parts.back());
    for (const auto& mount : mounts) {
        if (!BeginsWith(mount->parts, folded))
            continue;
        DevicePath whole;
        (void)ParsePath(mount->path.c_str(), &whole);
        return whole.parts[folded.size() - 1];
    }
    return path.parts.back();
}

std::string FileTree::TemporaryFile(const DevicePath& path) const
{
    const size_t depth = path.parts.size();
    if (depth < 2 || depth > 3 || Folded(path.parts[depth - 2]) != u"temp")
        return {};
    for (const auto& mount : mounts) {
        if (!mount->isTemporary || mount->parts.size() + 1 != depth || mount->layers.empty() ||
            (depth == 3 && Folded(path.parts[0]) != mount->parts[0]))
            continue;
        const std::string name = HostName(path.parts.back()).value_or("");
        if (mount.get() == temp && !IsPagingName(name))
            return {};
        return mount->layers.front() + "/" + name;
    }
    return {};
}

std::string FileTree::PagingFile(LPCWSTR path) const
{
    constexpr size_t NameLength = 10; // that of "000000.tmp"
    const std::u16string_view given = path != nullptr ? path : u"";
    if (given.size() <= NameLength + 1)
        return {};
    char name[NameLength];
    std::transform(given.end() - NameLength, given.end(), name,
                   [](char16_t unit) { return unit < 0x80 ? static_cast<char>(unit) : '?'; });
    const std::u16string_view folder = given.substr(0, given.size() - NameLength - 1);
    const std::string_view last(name, NameLength);
    if (given[folder.size()] != u'\\' || !last.ends_with(".tmp") || !IsPagingName(last))
        return {};
    for (const auto& mount : mounts)
        if (mount->isTemporary && !mount->layers.empty() && folder == mount->path)
            return (mount->layers.front() + "/").append(last);
    return {};
}

std::string FileTree::HostPath(const DevicePath& path)
{
    const std::string quick = TemporaryFile(path);
    if (!quick.empty())
        return quick;
    FoundFile found;
    if (Find(path, &found) == ERROR_SUCCESS && !found.host.empty())
        return found.host;
    const Route route = RouteOf(path);
    const std::vector<std::string> layers = LayersOf(*route.mount);
    if (layers.empty())
        return {};
    // The spelling of what is there holds as far as anything is there.
    std::string host = layers.front();
    std::vector<std::u16string> parts;
    for (const std::u16string& part : route.rest) {
        parts.push_back(part);
        if (FindBelow({route.mount, parts}, &found) == ERROR_SUCCESS && found.isWritten)
            host = found.host;
        else
            host += "/" + HostName(part).value_or("");
    }
    return host.empty() ? "/" : host;
}

std::vector<std::u16string> FileTree::PossibleDevicePaths(const std::string& host)
{
    std::vector<std::pair<size_t, std::u16string>> possible;
    for (const auto& mount : mounts) {
        for (const std::string& layer : LayersOf(*mount)) {
            for (const std::string& folder : {layer, WithoutTrailingSlash(Canonical(layer))}) {
                if (!host.starts_with(folder) ||
                    (host.size() > folder.size() && host[folder.size()] != '/'))
                    continue;
                std::optional<std::u16string> rest = DeviceName(host.substr(folder.size()));
                if (!rest || rest->find(u'\\') != rest->npos)
                    continue;
                std::replace(rest->begin(), rest->end(), u'/', u'\\');
                possible.emplace_back(folder.size(), mount->path + *rest);
            }
        }
    }
    std::stable_sort(possible.begin(), possible.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    std::vector<std::u16string> paths;
    for (auto& [length, path] : possible)
        paths.push_back(path.empty() ? u"\\" : std::move(path));
    return paths;
}

void FileTree::Leave()
{
    replacements->End();
    temporary.Leave();
    run.Remove();
}

} // namespace tavrix::platform
