// A piece of work in a process of its own that begins where the test stands, with a home folder of
// its own. For runs that a process can do only once, or that may crash or hang. To be used before
// anything of the test itself has asked the device for a window or a file.
#pragma once

#include <functional>
#include <string>
#include <sys/types.h>

#include <chrono>

namespace tavrix::testing
{

struct ApartResult {
    int exitCode = -1; // what the work answered, modulo 256; -1 when it did not come to its end
    int signal = 0;    // what ended it
    bool timedOut = false;
    std::string output; // standard output and standard error together
};

class Apart
{
public:
    /// Starts `work`. `home` is where the folders of its user lie; it is made if it is not there.
    /// Threads, windows and files that it leaves end with it.
    Apart(const std::string& home, const std::function<int()>& work, int secondsAtMost = 30);
    ~Apart();
    Apart(const Apart&) = delete;
    Apart& operator=(const Apart&) = delete;

    /// Whether it has ended; ends it when its time is over. Does not wait.
    bool HasEnded();
    /// Waits for its end.
    const ApartResult& Result();

private:
    std::string home;
    pid_t child;
    bool ended = false;
    std::chrono::steady_clock::time_point limit;
    ApartResult result;
};

} // namespace tavrix::testing
