#include "platform/core/WindowRegistry.h"

#include "platform/core/FileNames.h"
#include "platform/core/HostFiles.h"
#include "platform/core/LocalSocket.h"
#include "platform/core/NameSpace.h"
#include "platform/core/WindowList.h"
#include "platform/core/WindowReceiver.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <set>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tavrix::platform
{

namespace
{

constexpr std::string_view ListEnding = ".windows";
constexpr std::string_view SocketEnding = ".socket";
constexpr std::string_view UnfinishedEnding = ".new";
// A process is named by 16 digits of time and 8 of chance.
constexpr size_t ProcessNameLength = 24;
// What has no socket is in the making, or left by a process that was killed in the middle of that.
constexpr time_t UnfinishedFor = 60; // seconds
constexpr size_t ForeignLimit = 1000;
// Own handles are multiples of four.
constexpr uintptr_t FirstForeign = 0x100000;
constexpr int ForeignShift = 2;
constexpr uintptr_t ForeignMark = 2;

struct Registry {
    std::mutex lock;     // guards what follows
    std::string process; // empty until the first window is shown
    pid_t owner = 0;
    bool listening = false;
    std::vector<ListedWindow> shown;
    std::vector<ForeignWindow> foreign;
};

// Never destroyed: threads may still ask while the process ends.
Registry& TheRegistry()
{
    static Registry& registry = *new Registry;
    return registry;
}

uint64_t NumberOf(HWND window)
{
    return reinterpret_cast<uintptr_t>(window);
}

std::string NameWith(std::string_view process, std::string_view ending)
{
    return std::string(process).append(ending);
}

std::string PathOf(const std::string& folder, std::string_view process, std::string_view ending)
{
    return folder + "/" + NameWith(process, ending);
}

/// A name that no other process ever has, sorted by time.
std::string NewProcessName()
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    uint32_t chance = static_cast<uint32_t>(getpid());
    (void)!getrandom(&chance, sizeof chance, GRND_NONBLOCK);
    char name[ProcessNameLength + 1];
    std::snprintf(name, sizeof name, "%016llx%08x",
                  static_cast<unsigned long long>(now.tv_sec) * 1'000'000'000ULL +
                      static_cast<unsigned long long>(now.tv_nsec),
                  chance);
    return name;
}

void RemoveFiles(const std::string& folder, std::string_view process)
{
    for (const std::string_view ending : {ListEnding, SocketEnding}) {
        const std::string path = PathOf(folder, process, ending);
        unlink(path.c_str());
        unlink((path + std::string(UnfinishedEnding)).c_str());
    }
}

void RemoveOwnFiles()
{
    const Registry& registry = TheRegistry();
    // A child that has not become another program yet must not take its parent's name away.
    if (registry.owner == getpid())
        RemoveFiles(SharedFolder(), registry.process);
}

// The lock is held. A list that cannot be written leaves the one before.
void WriteList(Registry& registry)
{
    const std::string path = PathOf(SharedFolder(), registry.process, ListEnding);
    if (registry.shown.empty()) {
        unlink(path.c_str());
        return;
    }
    const std::string unfinished = path + std::string(UnfinishedEnding);
    const std::string bytes = PackWindowList(registry.shown);
    bool whole = false;
    {
        Descriptor file;
        int error = OpenRegular(unfinished, O_WRONLY | O_CREAT | O_TRUNC, 0600, &file);
        whole = error == 0 &&
                WriteAt(file.Get(), bytes.data(), bytes.size(), 0, &error) == bytes.size();
    }
    if (!whole || rename(unfinished.c_str(), path.c_str()) != 0)
        unlink(unfinished.c_str());
}

// The lock is held.
bool Listen(Registry& registry)
{
    if (registry.listening)
        return true;
    const std::string folder = SharedFolder();
    if (folder.empty())
        return false;
    if (registry.process.empty()) {
        registry.process = NewProcessName();
        registry.owner = getpid();
    }
    registry.listening = StartWindowReceiver(folder, NameWith(registry.process, SocketEnding));
    if (registry.listening)
        std::atexit(RemoveOwnFiles);
    return registry.listening;
}

// The lock is held.
auto FindShown(Registry& registry, HWND window)
{
    return std::find_if(
        registry.shown.begin(), registry.shown.end(),
        [window](const ListedWindow& shown) { return shown.number == NumberOf(window); });
}

bool IsOld(const std::string& path)
{
    struct stat found = {};
    return lstat(path.c_str(), &found) == 0 && time(nullptr) - found.st_mtime > UnfinishedFor;
}

/// The processes that have files in the folder, in the order of their beginnings.
std::set<std::string> ProcessesIn(const std::string& folder)
{
    std::set<std::string> processes;
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(folder.c_str()), closedir);
    if (listing == nullptr)
        return processes;
    while (const dirent* entry = readdir(listing.get())) {
        const std::string_view name = entry->d_name;
        if (name.size() <= ProcessNameLength ||
            name.find_first_not_of("0123456789abcdef") != ProcessNameLength)
            continue;
        std::string_view ending = name.substr(ProcessNameLength);
        if (ending.ends_with(UnfinishedEnding))
            ending.remove_suffix(UnfinishedEnding.size());
        if (ending == ListEnding || ending == SocketEnding)
            processes.emplace(name.substr(0, ProcessNameLength));
    }
    return processes;
}

/// Whether the process lives. Clears what a dead one left.
bool LivesOrIsSwept(const std::string& folder, const std::string& process)
{
    switch (FindListener(folder, NameWith(process, SocketEnding))) {
    case Listener::Alive:
        return true;
    case Listener::Dead:
        RemoveFiles(folder, process);
        return false;
    case Listener::Absent:
        for (const std::string_view ending : {ListEnding, SocketEnding}) {
            const std::string path = PathOf(folder, process, ending);
            for (const std::string& left : {path, path + std::string(UnfinishedEnding)})
                if (IsOld(left))
                    unlink(left.c_str());
        }
        return false;
    }
    return false;
}

HWND HandleFor(const ForeignWindow& window)
{
    Registry& registry = TheRegistry();
    const std::lock_guard guard(registry.lock);
    size_t index = 0;
    while (index < registry.foreign.size() && (registry.foreign[index].socket != window.socket ||
                                               registry.foreign[index].number != window.number))
        ++index;
    if (index == ForeignLimit)
        return nullptr;
    if (index == registry.foreign.size())
        registry.foreign.push_back(window);
    return reinterpret_cast<HWND>((FirstForeign + index) << ForeignShift | ForeignMark);
}

} // namespace

void PublishWindow(HWND window, std::u16string_view className, std::u16string_view title)
{
    Registry& registry = TheRegistry();
    const std::lock_guard guard(registry.lock);
    if (!Listen(registry))
        return;
    registry.shown.push_back({NumberOf(window), std::u16string(className), std::u16string(title)});
    WriteList(registry);
}

void RetitleWindow(HWND window, std::u16string_view title)
{
    Registry& registry = TheRegistry();
    const std::lock_guard guard(registry.lock);
    const auto shown = FindShown(registry, window);
    if (shown == registry.shown.end() || shown->title == title)
        return;
    shown->title = title;
    WriteList(registry);
}

void RetractWindow(HWND window)
{
    Registry& registry = TheRegistry();
    const std::lock_guard guard(registry.lock);
    const auto shown = FindShown(registry, window);
    if (shown == registry.shown.end())
        return;
    registry.shown.erase(shown);
    WriteList(registry);
}

void RetractAllWindows()
{
    Registry& registry = TheRegistry();
    const std::lock_guard guard(registry.lock);
    if (registry.shown.empty())
        return;
    registry.shown.clear();
    WriteList(registry);
}

bool IsPublished(HWND window)
{
    Registry& registry = TheRegistry();
    const std::lock_guard guard(registry.lock);
    return FindShown(registry, window) != registry.shown.end();
}

HWND FindForeignWindow(const WCHAR* className, const WCHAR* title)
{
    const std::string folder = SharedFolder();
    if (folder.empty())
        return nullptr;
    std::string own;
    {
        Registry& registry = TheRegistry();
        const std::lock_guard guard(registry.lock);
        own = registry.process;
    }
    const auto fits = [](const std::u16string& name, const WCHAR* wanted) {
        return wanted == nullptr || Folded(name) == Folded(wanted);
    };
    for (const std::string& process : ProcessesIn(folder)) {
        if (process == own || !LivesOrIsSwept(folder, process))
            continue;
        for (const ListedWindow& window :
             UnpackWindowList(FileText(PathOf(folder, process, ListEnding))))
            if (fits(window.className, className) && fits(window.title, title))
                return HandleFor({NameWith(process, SocketEnding), window.number});
    }
    return nullptr;
}

std::optional<ForeignWindow> ForeignWindowOf(HWND window)
{
    const auto value = reinterpret_cast<uintptr_t>(window);
    if ((value & ((1U << ForeignShift) - 1)) != ForeignMark)
        return std::nullopt;
    Registry& registry = TheRegistry();
    const std::lock_guard guard(registry.lock);
    const uintptr_t index = (value >> ForeignShift) - FirstForeign;
    if (index >= registry.foreign.size())
        return std::nullopt;
    return registry.foreign[index];
}

} // namespace tavrix::platform
