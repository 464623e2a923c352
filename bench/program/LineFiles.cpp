#include "bench/program/LineFiles.h"

#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <vector>

namespace bench
{

namespace
{

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point begin)
{
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

std::string FolderIn(const std::string& pages)
{
    return pages + "-floor";
}

std::string NameOf(const std::string& folder, unsigned line)
{
    char name[16];
    std::snprintf(name, sizeof name, "/%06u.tmp", line);
    return folder + name;
}

bool Write(const std::string& name, const std::vector<char>& line)
{
    const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    const bool written =
        file >= 0 && write(file, line.data(), line.size()) == static_cast<ssize_t>(line.size());
    return file >= 0 && close(file) == 0 && written;
}

bool ReadAndRemove(const std::string& name, std::vector<char>* line)
{
    const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    const bool got =
        file >= 0 && read(file, line->data(), line->size()) == static_cast<ssize_t>(line->size());
    if (file >= 0)
        close(file);
    return unlink(name.c_str()) == 0 && got;
}

} // namespace

double MakeLineFiles(const std::string& pages, unsigned count, unsigned bytes)
{
    const std::string folder = FolderIn(pages);
    std::filesystem::remove_all(folder); // of a run that was ended
    std::filesystem::create_directories(folder);
    const std::vector<char> line(bytes, 'x');
    bool whole = true;
    const auto begin = Clock::now();
    for (unsigned i = 0; i < count && whole; ++i)
        whole = Write(NameOf(folder, i), line);
    const double spent = SecondsSince(begin);
    return whole ? spent : 0;
}

double ReadLineFiles(const std::string& pages, unsigned count, unsigned bytes)
{
    const std::string folder = FolderIn(pages);
    std::vector<char> line(bytes);
    bool whole = true;
    const auto begin = Clock::now();
    for (unsigned i = 0; i < count; ++i)
        whole = ReadAndRemove(NameOf(folder, i), &line) && whole;
    const double spent = SecondsSince(begin);
    std::filesystem::remove_all(folder);
    return whole ? spent : 0;
}

} // namespace bench
