#include "platform/core/FolderLookup.h"

#include "platform/core/FileNames.h"

#include <cerrno>
#include <dirent.h>
#include <memory>

namespace tavrix::platform
{

namespace
{

struct ListingEnd {
    void operator()(DIR* listing) const { closedir(listing); }
};
using Listing = std::unique_ptr<DIR, ListingEnd>;

Listing OpenListing(const std::string& folder)
{
    return Listing(opendir(folder.empty() ? "/" : folder.c_str()));
}

int Status(const std::string& path, struct stat* info)
{
    return stat(path.empty() ? "/" : path.c_str(), info) == 0 ? 0 : errno;
}

/// The host's spelling of a name that it has in another case; empty when there is none.
std::string OtherSpelling(const std::string& folder, const std::u16string& part)
{
    const Listing listing = OpenListing(folder);
    if (listing == nullptr)
        return {};
    const std::u16string wanted = Folded(part);
    std::string best;
    while (const dirent* entry = readdir(listing.get())) {
        const std::string_view bytes = entry->d_name;
        if (!best.empty() && bytes >= best)
            continue;
        const std::optional<std::u16string> name = DeviceName(bytes);
        if (name && name->size() == wanted.size() && Folded(*name) == wanted)
            best = bytes;
    }
    return best;
}

} // namespace

int FindInFolder(const std::string& folder, const std::vector<std::u16string>& parts,
                 Spelling spelling, std::string* host, struct stat* info)
{
    std::string path = folder;
    for (const std::u16string& part : parts)
        path += "/" + HostName(part).value_or("");
    int error = Status(path, info);
    if (error == ENOENT && spelling == Spelling::AnyCase) {
        path = folder;
        for (const std::u16string& part : parts) {
            std::string next = path + "/" + HostName(part).value_or("");
            error = Status(next, info);
            if (error == ENOENT) {
                const std::string other = OtherSpelling(path, part);
                if (other.empty())
                    return ENOENT;
                next = path + "/" + other;
                error = Status(next, info);
            }
            if (error != 0)
                return error;
            path = std::move(next);
        }
    }
    if (error != 0)
        return error;
    *host = path.empty() ? "/" : std::move(path);
    return 0;
}

void ListFolder(const std::string& folder,
                const std::function<bool(std::u16string_view folded)>& wanted,
                const std::function<void(std::u16string folded, std::u16string name,
                                         const struct stat& info)>& take)
{
    const Listing listing = OpenListing(folder);
    if (listing == nullptr)
        return;
    while (const dirent* entry = readdir(listing.get())) {
        const std::string_view bytes = entry->d_name;
        if (bytes == "." || bytes == ".." || bytes.find('\\') != bytes.npos)
            continue;
        std::optional<std::u16string> name = DeviceName(bytes);
        if (!name || name->size() >= MAX_PATH)
            continue;
        std::u16string folded = Folded(*name);
        struct stat info {
        };
        if (wanted(folded) && Status(folder + "/" + entry->d_name, &info) == 0)
            take(std::move(folded), std::move(*name), info);
    }
}

} // namespace tavrix::platform
