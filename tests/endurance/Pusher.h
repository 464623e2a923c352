// Another device that pushes an object to the program, well or badly, once that listens.
#pragma once

#include "tests/endurance/Dice.h"

#include <atomic>
#include <string>
#include <thread>

namespace endurance
{

class Pusher
{
public:
    /// Lets the program listen on the test's own address.
    Pusher();
    ~Pusher() { Stop(); }
    Pusher(const Pusher&) = delete;
    Pusher& operator=(const Pusher&) = delete;

    /// Waits for the listener on a thread of its own, at most a moment, and pushes the host file
    /// under a name. One at a time: the last one is given up.
    void Push(const std::string& file, Dice dice);
    void Stop();

private:
    std::atomic<bool> stop{false};
    std::thread thread;
};

} // namespace endurance
