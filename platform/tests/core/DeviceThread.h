// A thread of the device for tests that end it or wake it from outside: what it runs, whether it
// came back, and whether it waits by now.
#pragma once

#include "platform/testing/Threads.h"

#include <windows.h>

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <string>

/// Waits for what comes in an instant on a machine that is not busy; false when it never does.
template <class Ready>
bool Eventually(const Ready& ready)
{
    for (int passed = 0; passed < 60000; ++passed) {
        if (ready())
            return true;
        Sleep(1);
    }
    return ready();
}

using tavrix::testing::CountThreads;

class DeviceThread
{
public:
    explicit DeviceThread(std::function<DWORD()> theBody)
        : body(std::move(theBody)), handle(CreateThread(nullptr, 0, Run, this, 0, nullptr))
    {
    }
    /// Waits for its end.
    ~DeviceThread()
    {
        (void)WaitForSingleObject(handle, INFINITE);
        CloseHandle(handle);
    }
    DeviceThread(const DeviceThread&) = delete;
    DeviceThread& operator=(const DeviceThread&) = delete;

    HANDLE Handle() const { return handle; }
    /// The body came to its end, instead of being ended.
    bool HasReturned() const { return returned; }
    /// Until the thread sleeps in the host.
    bool Waits() const
    {
        return Eventually([this] { return hostThread != 0 && State() == 'S'; });
    }
    /// Until it has ended; how.
    DWORD ExitCode() const
    {
        DWORD code = 0;
        (void)WaitForSingleObject(handle, INFINITE);
        (void)GetExitCodeThread(handle, &code);
        return code;
    }

private:
    static DWORD Run(LPVOID parameter)
    {
        DeviceThread& self = *static_cast<DeviceThread*>(parameter);
        self.hostThread = gettid();
        const DWORD code = self.body();
        self.returned = true;
        return code;
    }

    char State() const
    {
        std::ifstream file("/proc/self/task/" + std::to_string(hostThread) + "/stat");
        std::string line;
        std::getline(file, line);
        const size_t end = line.rfind(") ");
        return end != line.npos ? line[end + 2] : '?';
    }

    std::function<DWORD()> body;
    std::atomic<int> hostThread{0};
    std::atomic<bool> returned{false};
    HANDLE handle;
};
