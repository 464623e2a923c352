// Runs this test program once more in a role of its own, for what only shows between processes or
// before main. The roles run before main: a child never gets there.
#pragma once

#include <string>
#include <vector>

/// A child in a role. Ends with its scope; killed if it still runs.
class ChildProcess
{
public:
    /// `settings` are "NAME=value" texts that are added to the environment.
    explicit ChildProcess(const std::string& role, const std::vector<std::string>& settings = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// The next line that the child writes; empty at its end.
    std::string Line();
    /// Lets the child go on where it waits.
    void GoOn();
    /// Sends it a signal of the host.
    void Signal(int number);
    /// Waits until it ends by itself; its exit code.
    int Wait();
    /// Ends it the hard way and waits until it is gone.
    void Kill();

private:
    int process = -1;
    int toChild = -1;
    int fromChild = -1;
};
