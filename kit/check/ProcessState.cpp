#include "kit/check/ProcessState.h"

#include "platform/core/TestHooks.h"

#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#ifdef __SANITIZE_ADDRESS__
// Its header comes with another package than the compiler.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace plugincheck
{

namespace
{

constexpr int GraceSteps = 100;
constexpr unsigned GraceMicroseconds = 5000;

size_t CountEntries(const char* folder)
{
    size_t count = 0;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        ++count;
    return count;
}

} // namespace

size_t CountThreads()
{
    return CountEntries("/proc/self/task");
}

Holding CurrentHolding()
{
    const tavrix::platform::Holdings device = tavrix::platform::CountHoldings();
    return {CountThreads(), CountEntries("/proc/self/fd"), device.heapBytes,
            device.kernelHandles + device.drawingObjects + device.heaps};
}

bool ThreadsFallTo(size_t most)
{
    // A thread that was joined may stand in the list for a moment yet.
    for (int i = 0; i < GraceSteps && CountThreads() > most; ++i)
        usleep(GraceMicroseconds);
    return CountThreads() <= most;
}

bool IsMapped(const std::string& realPath)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.size() > realPath.size() &&
            line.compare(line.size() - realPath.size(), realPath.size(), realPath) == 0)
            return true;
    return false;
}

size_t AllocatedBytes()
{
#ifdef __SANITIZE_ADDRESS__
    return __sanitizer_get_current_allocated_bytes();
#else
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
#endif
}

} // namespace plugincheck
