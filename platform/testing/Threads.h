// The threads of this process, for tests that look for one that was left behind.
#pragma once

#include <filesystem>
#include <iterator>
#include <thread>

namespace tavrix::testing
{

/// As the host counts them. One that has just ended may be counted for a moment yet.
inline long CountThreads()
{
    // A sanitizer brings a thread of its own together with the process's first.
    [[maybe_unused]] static const bool settled = [] {
        std::thread([] {}).join();
        return true;
    }();
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"),
                         std::filesystem::directory_iterator());
}

} // namespace tavrix::testing
