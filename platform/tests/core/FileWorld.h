// A device of its own for a test of the file layer: home, settings, program folder, card and
// temporary folder under one fresh host folder, and short ways to make and read files.
#pragma once

#include "platform/core/FileTree.h"
#include "platform/testing/Testing.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrix::platform::tests
{

class FileWorld
{
public:
    explicit FileWorld(const std::function<void(Surroundings&)>& change = {})
        : base(testing::FreshFolder())
    {
        surroundings.home = base + "/home";
        surroundings.data = base + "/data";
        surroundings.config = base + "/config";
        surroundings.documents = base + "/home/Dokumente";
        surroundings.programFolder = base + "/program";
        surroundings.storageCard = base + "/card";
        surroundings.hasStorageCard = true;
        surroundings.temporaryBases = {base + "/tmp"};
        for (const char* name : {"/home", "/program", "/card", "/tmp"})
            std::filesystem::create_directories(base + name);
        if (change)
            change(surroundings);
        ReplaceTree(surroundings);
    }
    ~FileWorld() { ReplaceTree(ReadSurroundings()); }
    FileWorld(const FileWorld&) = delete;
    FileWorld& operator=(const FileWorld&) = delete;

    /// A host path below the world's folder.
    std::string Host(const std::string& relative) const { return base + "/" + relative; }

    const std::string base;
    Surroundings surroundings;
};

inline void WriteHost(const std::string& path, const std::string& text)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

inline std::string ReadHost(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline bool HostExists(const std::string& path)
{
    return std::filesystem::exists(std::filesystem::symlink_status(path));
}

/// Opens, with both kinds of access unless told otherwise.
inline HANDLE Open(const WCHAR* path, DWORD disposition,
                   DWORD access = GENERIC_READ | GENERIC_WRITE)
{
    return CreateFileW(path, access, FILE_SHARE_READ, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

/// Writes a whole device file; tells whether every byte went in.
inline bool WriteDevice(const WCHAR* path, const std::string& text,
                        DWORD disposition = CREATE_ALWAYS)
{
    const HANDLE file = Open(path, disposition, GENERIC_WRITE);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    DWORD done = 0;
    const BOOL written =
        WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &done, nullptr);
    CloseHandle(file);
    return written != FALSE && done == text.size();
}

/// A whole device file; "(none)" when it does not open.
inline std::string ReadDevice(const WCHAR* path)
{
    const HANDLE file = Open(path, OPEN_EXISTING, GENERIC_READ);
    if (file == INVALID_HANDLE_VALUE)
        return "(none)";
    std::string text(65536, '\0');
    DWORD done = 0;
    ReadFile(file, text.data(), static_cast<DWORD>(text.size()), &done, nullptr);
    CloseHandle(file);
    text.resize(done);
    return text;
}

/// Whether the existence probe of the program finds a file.
inline bool Probe(const WCHAR* path)
{
    const HANDLE file = Open(path, OPEN_EXISTING, 0);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    CloseHandle(file);
    return true;
}

/// The names that a pattern finds, in order, separated by "|"; folders end in "/".
inline std::string Names(const WCHAR* pattern)
{
    WIN32_FIND_DATAW data{};
    const HANDLE find = FindFirstFileW(pattern, &data);
    if (find == INVALID_HANDLE_VALUE)
        return "(none)";
    std::string names;
    do {
        names += (names.empty() ? "" : "|") + testing::Utf8(data.cFileName);
        if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            names += "/";
    } while (FindNextFileW(find, &data));
    FindClose(find);
    return names;
}

/// How many hidden files of replacements lie in a host folder.
inline int CountHidden(const std::string& folder)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        count += IsReplacementName(entry.path().filename().string());
    return count;
}

/// Lets every user of the host come to a folder below the test's own ones.
inline void LetAnyoneReach(const std::string& folder)
{
    for (std::filesystem::path above = folder; above != above.root_path();
         above = above.parent_path())
        if (access(above.c_str(), W_OK) == 0 &&
            above.string().find("tavrix-test-") != std::string::npos)
            std::filesystem::permissions(above, std::filesystem::perms(0755));
}

/// Becomes somebody whom permissions hold back, as they do not root.
inline bool BecomeOrdinary()
{
    constexpr uid_t Nobody = 65534;
    return geteuid() != 0 || setresuid(Nobody, Nobody, Nobody) == 0;
}

/// Takes this process into a mount space of its own, where it may mount what nobody else sees: as
/// root, or as root of a user space of its own. Needs a process with one thread.
inline bool EnterMountSpace()
{
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if (unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0)
        return false;
    if (user != 0) {
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
        if (geteuid() != 0)
            return false;
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

/// Runs `body` in a process of its own that ends by exit(); tells its exit status.
inline int InChild(const std::function<int()>& body)
{
    const pid_t child = fork();
    if (child == 0)
        exit(body());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace tavrix::platform::tests
