// Reads what the host has available: /proc/meminfo and the limits of control groups, old and new.
// Plain descriptors and no streams, since this runs before main.

#include "platform/core/MemoryStatus.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace tavrix::platform
{

namespace
{

using Bytes = unsigned long long;

std::optional<std::string> ReadText(const std::string& path)
{
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return std::nullopt;
    std::string text;
    char buffer[4096];
    ssize_t got = 0;
    while (text.size() < 65536 && (got = read(file, buffer, sizeof buffer)) > 0)
        text.append(buffer, static_cast<size_t>(got));
    close(file);
    return text;
}

// The number behind `key` where it begins a line.
std::optional<Bytes> NumberAfter(const std::string& text, std::string_view key)
{
    for (size_t at = text.find(key); at != std::string::npos; at = text.find(key, at + 1))
        if (at == 0 || text[at - 1] == '\n') {
            const char* start = text.c_str() + at + key.size();
            char* end = nullptr;
            const Bytes number = std::strtoull(start, &end, 10);
            if (end != start)
                return number;
        }
    return std::nullopt;
}

// "max" and whatever else is no number means no limit.
std::optional<Bytes> ReadNumber(const std::string& path)
{
    const std::optional<std::string> text = ReadText(path);
    return text ? NumberAfter(*text, "") : std::nullopt;
}

struct GroupFiles {
    const char* root;
    const char* limit;
    const char* usage;
    const char* inactive; // key in memory.stat: file pages that the host drops when it needs room
};

constexpr GroupFiles Unified{"/sys/fs/cgroup", "/memory.max", "/memory.current", "inactive_file "};
constexpr GroupFiles Legacy{"/sys/fs/cgroup/memory", "/memory.limit_in_bytes",
                            "/memory.usage_in_bytes", "total_inactive_file "};

// What one group leaves.
std::optional<Bytes> RoomOf(const std::string& folder, const GroupFiles& files)
{
    const std::optional<Bytes> limit = ReadNumber(folder + files.limit);
    const std::optional<Bytes> usage = ReadNumber(folder + files.usage);
    if (!limit || !usage)
        return std::nullopt;
    Bytes used = *usage;
    if (const auto stat = ReadText(folder + "/memory.stat"))
        used -= std::min(used, NumberAfter(*stat, files.inactive).value_or(0));
    return *limit > used ? *limit - used : 0;
}

// A group's limit binds all below it, so the walk goes up to the mount. In a container the path
// names folders that the mount does not show; its own top is then the group.
void LowerToGroups(std::optional<Bytes>& available, const std::string& root, std::string path,
                   const GroupFiles& files)
{
    for (;;) {
        if (const auto room = RoomOf(root + files.root + path, files))
            available = std::min(available.value_or(*room), *room);
        const size_t slash = path.rfind('/');
        if (slash == std::string::npos)
            return;
        path.resize(slash);
    }
}

bool NamesMemory(std::string_view controllers)
{
    for (;;) {
        const size_t comma = controllers.find(',');
        if (controllers.substr(0, comma) == "memory")
            return true;
        if (comma == std::string_view::npos)
            return false;
        controllers.remove_prefix(comma + 1);
    }
}

// One line of /proc/self/cgroup: number, controllers (none for the unified tree), path.
void LowerToLine(std::optional<Bytes>& available, const std::string& root, std::string_view line)
{
    const size_t first = line.find(':');
    const size_t second = first == line.npos ? line.npos : line.find(':', first + 1);
    if (second == line.npos)
        return;
    const std::string_view controllers = line.substr(first + 1, second - first - 1);
    std::string path(line.substr(second + 1));
    while (!path.empty() && path.back() == '/')
        path.pop_back();
    if (controllers.empty())
        LowerToGroups(available, root, std::move(path), Unified);
    else if (NamesMemory(controllers))
        LowerToGroups(available, root, std::move(path), Legacy);
}

} // namespace

std::optional<unsigned long long> HostAvailableBytes(const std::string& root)
{
    std::optional<Bytes> available;
    if (const auto memory = ReadText(root + "/proc/meminfo"))
        if (const auto kilobytes = NumberAfter(*memory, "MemAvailable:"))
            available = *kilobytes * 1024;
    if (const auto groups = ReadText(root + "/proc/self/cgroup")) {
        std::string_view rest = *groups;
        while (!rest.empty()) {
            const size_t end = std::min(rest.find('\n'), rest.size());
            LowerToLine(available, root, rest.substr(0, end));
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }
    return available;
}

} // namespace tavrix::platform
