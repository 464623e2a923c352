#include "platform/core/NameSpace.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace tavrix::platform
{

namespace
{

const char* Setting(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr && value[0] != 0 ? value : nullptr;
}

/// The display that a person sits at, as part of a file name.
std::string DisplayName()
{
    std::string display;
    if (const char* wayland = Setting("WAYLAND_DISPLAY"))
        display = wayland;
    else if (const char* x = Setting("DISPLAY"))
        display = x;
    else
        return "headless";
    // ":0" and ":0.0" are one display.
    const size_t colon = display.rfind(':');
    if (colon != std::string::npos)
        display.resize(std::min(display.find('.', colon), display.size()));
    for (char& character : display)
        if (std::isalnum(static_cast<unsigned char>(character)) == 0 && character != '-')
            character = '_';
    return display;
}

/// Makes the folder if it is not there. False unless it is a folder that nobody else may enter: in
/// a place where all may write, its name could be somebody else's trap.
bool MakePrivate(const std::string& folder)
{
    (void)mkdir(folder.c_str(), 0700);
    struct stat found = {};
    return lstat(folder.c_str(), &found) == 0 && S_ISDIR(found.st_mode) &&
           found.st_uid == geteuid() && (found.st_mode & 077) == 0;
}

std::string MakeSharedFolder()
{
    if (Setting("TAVRIX_SHOT") != nullptr)
        return {};
    const std::string display = DisplayName();
    const char* runtime = Setting("XDG_RUNTIME_DIR");
    if (runtime != nullptr && runtime[0] == '/') {
        std::string folder = std::string(runtime) + "/tavrix-" + display;
        if (MakePrivate(folder))
            return folder;
    }
    const std::string user = std::to_string(geteuid());
    std::string folder = "/var/tmp/tavrix-" + user + "-" + display;
    return MakePrivate(folder) ? folder : std::string();
}

} // namespace

std::string SharedFolder()
{
    // Found once: a process does not move to another display.
    static const std::string folder = MakeSharedFolder();
    return folder;
}

} // namespace tavrix::platform
