#include "platform/core/Surroundings.h"

#include "platform/core/HostFiles.h"

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace tavrix::platform
{

namespace
{

/// A variable that holds an absolute path; empty text for any other.
std::string AbsoluteVariable(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr && value[0] == '/' ? value : std::string();
}

std::string HomeFolder()
{
    const std::string variable = AbsoluteVariable("HOME");
    if (!variable.empty())
        return variable;
    std::vector<char> buffer(16384);
    passwd record{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &record, buffer.data(), buffer.size(), &found) == 0 &&
        found != nullptr && found->pw_dir != nullptr && found->pw_dir[0] == '/')
        return found->pw_dir;
    return "/";
}

/// A folder of the base directory specification.
std::string XdgFolder(const char* name, const std::string& home, const char* otherwise)
{
    const std::string variable = AbsoluteVariable(name);
    return variable.empty() ? home + otherwise : WithoutTrailingSlash(variable);
}

std::string ProgramFolder()
{
    std::string path(4096, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    if (length <= 0 || static_cast<size_t>(length) == path.size())
        return {};
    path.resize(static_cast<size_t>(length));
    return path.substr(0, path.rfind('/'));
}

} // namespace

std::string WithoutTrailingSlash(std::string path)
{
    while (!path.empty() && path.back() == '/')
        path.pop_back();
    return path;
}

std::string DocumentsFrom(std::string_view userDirs, const std::string& home)
{
    constexpr std::string_view Key = "XDG_DOCUMENTS_DIR=\"";
    constexpr std::string_view Home = "$HOME";
    std::string documents;
    while (!userDirs.empty()) {
        const size_t end = userDirs.find('\n');
        std::string_view line = userDirs.substr(0, end);
        userDirs.remove_prefix(end == userDirs.npos ? userDirs.size() : end + 1);
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        if (!line.starts_with(Key))
            continue;
        line.remove_prefix(Key.size());
        std::string value;
        if (line.starts_with(Home) && (line.substr(Home.size()).starts_with('/') ||
                                       line.substr(Home.size()).starts_with('"'))) {
            value = home;
            line.remove_prefix(Home.size());
        } else if (!line.starts_with('/')) {
            continue;
        }
        bool closed = false;
        for (size_t i = 0; i < line.size() && !closed; ++i) {
            if (line[i] == '\\' && i + 1 < line.size())
                value += line[++i];
            else if (line[i] == '"')
                closed = true;
            else
                value += line[i];
        }
        if (closed) // a later line holds over an earlier one, as in the shell that reads the file
            documents = WithoutTrailingSlash(value);
    }
    return documents;
}

Surroundings ReadSurroundings()
{
    Surroundings found;
    found.home = WithoutTrailingSlash(HomeFolder());
    found.data = XdgFolder("XDG_DATA_HOME", found.home, "/.local/share");
    found.config = XdgFolder("XDG_CONFIG_HOME", found.home, "/.config");
    found.documents = DocumentsFrom(FileText(found.config + "/user-dirs.dirs"), found.home);
    if (found.documents.empty())
        found.documents = found.home + "/Documents";
    found.programFolder = ProgramFolder();
    const char* card = std::getenv("TAVRIX_STORAGE_CARD");
    found.hasStorageCard = card != nullptr && card[0] != '\0';
    if (found.hasStorageCard)
        found.storageCard = WithoutTrailingSlash(AbsolutePath(card));
    const std::string temporary = WithoutTrailingSlash(AbsoluteVariable("TMPDIR"));
    if (!temporary.empty())
        found.temporaryBases.push_back(temporary);
    found.temporaryBases.insert(found.temporaryBases.end(), {"/var/tmp", "/tmp"});
    return found;
}

} // namespace tavrix::platform
