// A printing system of another maker that runs beside a test: a scheduler of its own (cupsd), with
// one queue that hands documents on untouched to a printer (ippeveprinter), which keeps them in a
// folder. All on the loopback network, at an address that no other test uses; nothing of the
// machine's own printing is touched. For any user.
#pragma once

#include "tests/support/Process.h"

#include <memory>
#include <string>
#include <vector>

namespace cupstest
{

/// What the scheduler knows of a job.
struct Job {
    std::string state; // as ipptool names it: completed, canceled, ...
    std::string name;
    std::string copies;
    std::string media;
};

class PrintingSystem
{
public:
    /// Queues by these names, the first being the default one. Fails the test, and says why, when
    /// a program is missing or does not come up. CUPS_SERVER names it then, for this process.
    explicit PrintingSystem(const std::vector<std::string>& queues = {"Real"});
    ~PrintingSystem();

    /// Ends the scheduler at a stroke.
    void KillScheduler();
    /// Makes a queue refuse every job from now on.
    void RejectJobs(const std::string& queue) const;
    /// All jobs, finished or not, in their order.
    std::vector<Job> Jobs() const;
    /// Those of one queue.
    std::vector<Job> JobsOf(const std::string& queue) const;
    /// Waits until no job is on its way any more: done, cancelled, or held behind a failure.
    void WaitForJobs() const;
    /// The documents that the printer got, in their order.
    std::vector<std::string> Documents() const;
    /// What the printer was told of the jobs, as it writes it down.
    std::string PrinterLog() const;

private:
    std::vector<Job> JobsAt(const std::string& path) const;
    bool StartBus();
    bool StartPrinter();
    bool StartScheduler(const std::vector<std::string>& queues);
    std::map<std::string, std::string> BusEnvironment() const;
    std::string Path(const std::string& name) const { return folder + "/" + name; }

    std::string folder;
    std::string address;
    unsigned short printerPort = 0;
    std::unique_ptr<tavrix::testing::BackgroundProcess> bus;
    std::unique_ptr<tavrix::testing::BackgroundProcess> printer;
    std::unique_ptr<tavrix::testing::BackgroundProcess> scheduler;
};

/// A port of the loopback network at which one can connect and gets no word.
class SilentServer
{
public:
    SilentServer();
    ~SilentServer();
    /// As CUPS_SERVER takes it.
    std::string Name() const;

private:
    int listener;
};

/// A system bus for this process at which one can connect and gets no word.
class SilentBus
{
public:
    /// `path` is that of its socket.
    explicit SilentBus(const std::string& path);
    ~SilentBus();
    bool WasAsked() const;

private:
    int listener;
};

/// A port of this machine at which nobody listens.
unsigned short FreePort();

} // namespace cupstest
