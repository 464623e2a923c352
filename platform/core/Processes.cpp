// Other programs, started as processes of their own. One that is to begin suspended is there at
// once but waits, before its program, for a byte on a socket: the program's start is that byte, and
// the socket's end, which comes with this process's end at the latest, takes the waiting one away.

#include "platform/core/BackgroundThread.h"
#include "platform/core/Deadline.h"
#include "platform/core/ErrorCodes.h"
#include "platform/core/FileTree.h"
#include "platform/core/HandleTable.h"
#include "platform/core/HostFiles.h"
#include "platform/core/HostPaths.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

using namespace tavrix::platform;

namespace
{

constexpr int ChannelInChild = 3; // right behind the standard ones
constexpr int NotStarted = 127;
constexpr char GoOn = 1;

/// A process as everybody sees it who holds one of its handles.
class Course
{
public:
    void End()
    {
        const std::lock_guard<std::mutex> held(lock);
        over = true;
        ended.notify_all();
    }

    DWORD Wait(DWORD milliseconds)
    {
        std::unique_lock<std::mutex> held(lock);
        return Deadline(milliseconds).WaitOn(ended, held, [this] { return over; }) ? WAIT_OBJECT_0
                                                                                   : WAIT_TIMEOUT;
    }

private:
    std::mutex lock; // guards what follows
    std::condition_variable ended;
    bool over = false;
};

class ProcessObject final : public KernelObject
{
public:
    explicit ProcessObject(std::shared_ptr<Course> ofProcess) : course(std::move(ofProcess)) {}
    DWORD Wait(DWORD milliseconds) override { return course->Wait(milliseconds); }

private:
    const std::shared_ptr<Course> course;
};

/// The one thread of a process by which it is let go.
class FirstThreadObject final : public KernelObject
{
public:
    FirstThreadObject(std::shared_ptr<Course> ofProcess, Descriptor channelToIt)
        : course(std::move(ofProcess)), channel(std::move(channelToIt))
    {
    }

    DWORD Wait(DWORD milliseconds) override { return course->Wait(milliseconds); }

    DWORD Resume() override
    {
        const std::lock_guard<std::mutex> held(lock);
        if (!channel.IsOpen())
            return 0;
        // One that was killed meanwhile is no reason to end with it.
        (void)!send(channel.Get(), &GoOn, sizeof GoOn, MSG_NOSIGNAL);
        channel = Descriptor();
        return 1;
    }

    /// The same, but waits until the program runs; the host's error number when it cannot.
    int Begin()
    {
        const std::lock_guard<std::mutex> held(lock);
        int error = 0;
        (void)!send(channel.Get(), &GoOn, sizeof GoOn, MSG_NOSIGNAL);
        const ssize_t size =
            TEMP_FAILURE_RETRY(recv(channel.Get(), &error, sizeof error, MSG_WAITALL));
        channel = Descriptor();
        return size == static_cast<ssize_t>(sizeof error) ? error : 0;
    }

private:
    const std::shared_ptr<Course> course;
    std::mutex lock;
    Descriptor channel; // guarded; open while the process waits
};

/// Takes its handle back unless it is kept.
class NewHandle
{
public:
    explicit NewHandle(std::shared_ptr<KernelObject> object) : handle(AddHandle(std::move(object)))
    {
    }
    ~NewHandle() { RemoveHandle(handle); }
    NewHandle(const NewHandle&) = delete;
    NewHandle& operator=(const NewHandle&) = delete;
    bool IsOpen() const { return handle != nullptr; }
    HANDLE Keep() { return std::exchange(handle, nullptr); }

private:
    HANDLE handle;
};

/// What the new process needs, made before it is: it must not ask for memory.
struct Start {
    const char* program;
    char* const* arguments;
    int highestDescriptor;
};

/// Hosts that cannot close a range are to close one after the other, and their limit may be huge.
int HighestDescriptor()
{
    int highest = ChannelInChild;
    DIR* open = opendir("/proc/self/fd");
    if (open == nullptr)
        return static_cast<int>(sysconf(_SC_OPEN_MAX)) - 1;
    while (const dirent* entry = readdir(open))
        highest = std::max(highest, atoi(entry->d_name));
    closedir(open);
    return highest;
}

void CloseAllBehindChannel(int highest)
{
    if (close_range(ChannelInChild + 1, ~0u, 0) == 0)
        return;
    for (int number = ChannelInChild + 1; number <= highest; ++number)
        close(number);
}

/// Runs in the new process, a copy of one that has many threads: nothing but plain system calls.
[[noreturn]] void RunChild(const Start& start, int channel)
{
    setsid();
    struct sigaction ordinary {
    };
    ordinary.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal)
        sigaction(signal, &ordinary, nullptr); // refused for some; those are as they should be
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    // Gone once the program runs, by which the other side sees that it does.
    if (channel == ChannelInChild)
        fcntl(channel, F_SETFD, FD_CLOEXEC);
    else if (dup3(channel, ChannelInChild, O_CLOEXEC) < 0)
        _exit(NotStarted);
    CloseAllBehindChannel(start.highestDescriptor);

    char byte = 0;
    ssize_t size;
    do
        size = read(ChannelInChild, &byte, sizeof byte);
    while (size < 0 && errno == EINTR);
    if (size <= 0)
        _exit(NotStarted);
    execve(start.program, start.arguments, environ);
    const int error = errno;
    (void)!send(ChannelInChild, &error, sizeof error, MSG_NOSIGNAL);
    _exit(NotStarted);
}

/// A pair of connected sockets above the standard descriptors, which the child keeps.
bool MakeChannel(Descriptor* here, Descriptor* there)
{
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return false;
    const Descriptor first(ends[0]);
    const Descriptor second(ends[1]);
    *here = Descriptor(fcntl(ends[0], F_DUPFD_CLOEXEC, ChannelInChild));
    *there = Descriptor(fcntl(ends[1], F_DUPFD_CLOEXEC, ChannelInChild));
    return here->IsOpen() && there->IsOpen();
}

/// Forks with all signals held back, so that no handler of ours runs in the child.
pid_t Fork(const Start& start, const Descriptor& channel)
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t process = fork();
    if (process == 0)
        RunChild(start, channel.Get());
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return process;
}

struct Watch {
    pid_t process;
    std::shared_ptr<Course> course;
};

void Reap(pid_t process)
{
    while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

void* WatchOver(void* parameter)
{
    const std::unique_ptr<Watch> watch(static_cast<Watch*>(parameter));
    Reap(watch->process);
    watch->course->End();
    return nullptr;
}

/// Sees the process off when it ends, whether or not anybody waits: else it would stay as a dead
/// entry.
bool StartWatch(pid_t process, const std::shared_ptr<Course>& course)
{
    auto watch = std::make_unique<Watch>(Watch{process, course});
    if (!StartBackgroundThread(WatchOver, watch.get()))
        return false;
    (void)watch.release();
    return true;
}

/// ERROR_SUCCESS and the host path of a program that may be run, or why there is none.
DWORD FindExactly(const std::u16string& path, std::string* host)
{
    DevicePath parsed;
    FoundFile found;
    DWORD error = ParsePath(path.c_str(), &parsed);
    if (error == ERROR_SUCCESS)
        error = CurrentTree()->Find(parsed, &found);
    if (error != ERROR_SUCCESS)
        return error == ERROR_PATH_NOT_FOUND ? ERROR_FILE_NOT_FOUND : error;
    if (!found.IsRegular() || access(found.host.c_str(), X_OK) != 0)
        return ERROR_ACCESS_DENIED;
    *host = found.host;
    return ERROR_SUCCESS;
}

/// The same by the names that a program has on the device and here: `Name.exe`, `Name`, `name`.
DWORD FindProgram(const std::u16string& path, std::string* host)
{
    constexpr std::u16string_view Extension = u".exe";
    std::vector<std::u16string> names = {path};
    if (Folded(path).ends_with(Extension)) {
        std::u16string bare = path.substr(0, path.size() - Extension.size());
        const size_t name = bare.find_last_of(u"\\/") + 1;
        names.push_back(bare);
        names.push_back(bare.substr(0, name) + Folded(bare.substr(name)));
    }
    DWORD result = ERROR_FILE_NOT_FOUND;
    for (const std::u16string& candidate : names) {
        const DWORD error = FindExactly(candidate, host);
        if (error == ERROR_SUCCESS)
            return error;
        if (error != ERROR_FILE_NOT_FOUND)
            result = error;
    }
    return result;
}

/// The one argument that a command line is here; empty for none. False for text that has no form on
/// the host.
bool FindArgument(LPCWSTR commandLine, std::string* argument)
{
    std::u16string_view text = commandLine != nullptr ? commandLine : u"";
    if (text.size() >= 2 && text.front() == u'"' && text.back() == u'"')
        text = text.substr(1, text.size() - 2);
    if (text.starts_with(u'\\'))
        *argument = HostPathOf(std::u16string(text).c_str());
    if (!argument->empty())
        return true;
    const std::optional<std::string> plain = HostName(text);
    *argument = plain.value_or("");
    return plain.has_value();
}

BOOL CreateProcess(LPCWSTR program, LPCWSTR commandLine, bool suspended,
                   LPPROCESS_INFORMATION information)
{
    std::string host;
    std::string argument;
    if (const DWORD error = FindProgram(program, &host); error != ERROR_SUCCESS)
        return FailWith(error);
    if (!FindArgument(commandLine, &argument))
        return FailWith(ERROR_INVALID_PARAMETER);
    char* arguments[] = {host.data(), argument.empty() ? nullptr : argument.data(), nullptr};

    const auto course = std::make_shared<Course>();
    Descriptor here;
    Descriptor there;
    if (!MakeChannel(&here, &there))
        return FailWithHost(errno);
    const pid_t process = Fork({host.c_str(), arguments, HighestDescriptor()}, there);
    if (process < 0)
        return FailWith(ERROR_NOT_ENOUGH_MEMORY);
    there = Descriptor();
    // From here on the process ends by itself if it is not let go: its channel closes.
    if (!StartWatch(process, course)) {
        here = Descriptor();
        Reap(process);
        return FailWith(ERROR_NOT_ENOUGH_MEMORY);
    }
    const auto thread = std::make_shared<FirstThreadObject>(course, std::move(here));
    NewHandle processHandle(std::make_shared<ProcessObject>(course));
    NewHandle threadHandle(thread);
    if (!processHandle.IsOpen() || !threadHandle.IsOpen())
        return FailWith(ERROR_NOT_ENOUGH_MEMORY);
    if (const int error = suspended ? 0 : thread->Begin(); error != 0)
        return FailWithHost(error);
    information->hProcess = processHandle.Keep();
    information->hThread = threadHandle.Keep();
    information->dwProcessId = static_cast<DWORD>(process);
    information->dwThreadId = static_cast<DWORD>(process);
    return TRUE;
}

} // namespace

BOOL WINAPI CreateProcessW(LPCWSTR program, LPWSTR commandLine, LPSECURITY_ATTRIBUTES,
                           LPSECURITY_ATTRIBUTES, BOOL, DWORD flags, LPVOID, LPCWSTR,
                           LPSTARTUPINFOW, LPPROCESS_INFORMATION information)
{
    if (program == nullptr || information == nullptr)
        return FailWith(ERROR_INVALID_PARAMETER);
    return WithoutThrowing(FALSE, [=] {
        return CreateProcess(program, commandLine, (flags & CREATE_SUSPENDED) != 0, information);
    });
}

DWORD WINAPI ResumeThread(HANDLE handle)
{
    // The object outlives the call, though its handle be closed meanwhile.
    const std::shared_ptr<KernelObject> thread = FindObject(handle);
    if (thread == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0xFFFFFFFF;
    }
    return thread->Resume();
}
