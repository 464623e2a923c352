// Runs of tavrix-plugin-check as an author starts it, and what it printed.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "platform/testing/core/TestPaths.h"

namespace checktest
{

namespace fs = std::filesystem;

struct CheckRun {
    int status = -1;
    std::string output; // both streams
    std::vector<std::string> lines;

    /// The keys of the violations, or of the notes.
    std::set<std::string> Keys(bool notes = false) const
    {
        std::set<std::string> keys;
        for (const std::string& line : lines) {
            const size_t start = line.find('[');
            const bool note = line.find("(note)") != std::string::npos;
            if (start != std::string::npos && note == notes)
                keys.insert(line.substr(start + 1, line.find(']') - start - 1));
        }
        return keys;
    }
};

inline std::string Quote(const std::string& word)
{
    std::string quoted = "'";
    for (const char character : word)
        quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
    return quoted + "'";
}

inline CheckRun RunCheck(const std::vector<std::string>& arguments, const std::string& before = {})
{
    std::string command =
        before + " " + Quote(tavrix::testing::InBuild("/bin/tavrix-plugin-check"));
    for (const std::string& argument : arguments)
        command += " " + Quote(argument);
    CheckRun run;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    char buffer[4096];
    for (size_t got = fread(buffer, 1, sizeof buffer, pipe); got != 0;
         got = fread(buffer, 1, sizeof buffer, pipe))
        run.output.append(buffer, got);
    const int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::istringstream text(run.output);
    for (std::string line; std::getline(text, line);)
        run.lines.push_back(line);
    return run;
}

/// A plugin of these tests, and one of the tests of the host.
inline std::string Fixture(const std::string& name)
{
    return tavrix::testing::InBuild("/tests/plugins/check/") + name + ".dll";
}
inline std::string HostFixture(const std::string& name)
{
    return tavrix::testing::InBuild("/tests/plugins/fixtures/") + name + ".dll";
}

/// A folder that is removed with the object.
class Folder
{
public:
    Folder()
    {
        std::string pattern = (fs::temp_directory_path() / "check-test-XXXXXX").string();
        path = mkdtemp(pattern.data());
    }
    ~Folder()
    {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    std::string File(const std::string& name) const { return (path / name).string(); }
    std::string Write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(File(name), std::ios::binary) << bytes;
        return File(name);
    }
    const fs::path& Path() const { return path; }

private:
    fs::path path;
};

/// A picture in the format of fixtures/GoodInput.h: 30 x 20 pixels.
inline std::string SampleBytes()
{
    std::string bytes = "FX";
    bytes += char{30};
    bytes += char{20};
    for (int i = 0; i < 30 * 20 * 3; ++i)
        bytes += static_cast<char>(i * 13 % 251);
    return bytes;
}

} // namespace checktest
