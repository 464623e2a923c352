// What the person did last, told when a run fails, crashes or hangs.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <string>
#include <thread>

namespace endurance
{

/// One in a process.
class Journal
{
public:
    /// With `trace` each action is also told when it is done.
    Journal(uint64_t seed, bool trace);
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    /// The next action of the person.
    void Note(const std::string& action);
    /// Says something where each action is told.
    void Tell(const std::string& line) const;
    /// The program's message loop has run. Without that for `LongestSilence` the process is ended.
    void Beat() { ++beats; }
    unsigned Step() const { return step; }
    /// Seed, step and the last actions.
    std::string Text() const;

private:
    static constexpr int LongestSilence = 120; // seconds; the sanitizers are slow
    static constexpr size_t Kept = 30;

    void Watch();

    uint64_t seed;
    bool trace;
    unsigned step = 0;
    std::deque<std::string> actions;
    std::atomic<unsigned> beats{0};
    std::atomic<bool> over{false};
    std::thread watcher;
};

} // namespace endurance
