// A device for the tests of replaced files: one file in the settings' folder, and short ways to
// make it anew, to write to it and to look at it from inside and outside.
#pragma once

#include "platform/tests/core/FileWorld.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace tavrix::platform::tests
{

inline constexpr const WCHAR* Ini = u"\\Application Data\\Tavrix\\Tavrix.ini";
inline constexpr const WCHAR* Everything = u"\\Application Data\\Tavrix\\*";

/// A device whose settings folder holds one file, "old".
class SettingsWorld : public FileWorld
{
public:
    explicit SettingsWorld(const std::string& old = "old") { WriteHost(Ini(), old); }
    std::string Folder() const { return Host("config/tavrix"); }
    std::string Ini() const { return Folder() + "/Tavrix.ini"; }
    std::string Text() const { return ReadHost(Ini()); }
};

/// Makes the file always-new and closes it, as the program does before it writes.
inline bool MakeEmpty(const WCHAR* path)
{
    const HANDLE file = Open(path, CREATE_ALWAYS, GENERIC_WRITE);
    return file != INVALID_HANDLE_VALUE && CloseHandle(file);
}

inline DWORD Write(HANDLE file, const std::string& text)
{
    DWORD done = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &done, nullptr);
    return done;
}

/// Opens what is there, writes and closes.
inline bool WriteInto(const WCHAR* path, const std::string& text)
{
    return WriteDevice(path, text, OPEN_EXISTING);
}

inline struct stat StatusOf(const std::string& path)
{
    struct stat info {
    };
    EXPECT_EQ(0, stat(path.c_str(), &info)) << path;
    return info;
}

inline mode_t ModeOf(const std::string& path)
{
    return StatusOf(path).st_mode & 07777;
}

/// The size that a search tells; 999 when it finds nothing.
inline DWORD SizeFound(const WCHAR* pattern)
{
    WIN32_FIND_DATAW data{};
    const HANDLE find = FindFirstFileW(pattern, &data);
    if (find == INVALID_HANDLE_VALUE)
        return 999;
    FindClose(find);
    return data.nFileSizeLow;
}

inline void FailAt(FileOperation failing)
{
    tavrix::testing::SetFileFault(
        [failing](FileOperation operation, const WCHAR*, DWORD*) { return operation == failing; });
}

/// What another process of the same user reads.
inline std::string ReadElsewhere(const FileWorld& world, const WCHAR* path)
{
    int channel[2];
    if (pipe(channel) != 0)
        return "(no pipe)";
    const int result = InChild([&] {
        ReplaceTree(world.surroundings);
        const std::string text = ReadDevice(path);
        return write(channel[1], text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0
                                                                                                : 1;
    });
    close(channel[1]);
    std::string text(65536, '\0');
    const ssize_t length = read(channel[0], text.data(), text.size());
    close(channel[0]);
    text.resize(length > 0 ? static_cast<size_t>(length) : 0);
    return result == 0 ? text : "(child failed)";
}

} // namespace tavrix::platform::tests
