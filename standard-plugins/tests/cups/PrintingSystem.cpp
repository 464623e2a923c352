#include "standard-plugins/tests/cups/PrintingSystem.h"

#include "platform/testing/Testing.h"
#include "standard-plugins/tests/pdf/Printing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <poll.h>
#include <sstream>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace cupstest
{

namespace
{

namespace fs = std::filesystem;
using pdftest::FileBytes;
using pdftest::WriteFile;
using tavrix::testing::BackgroundProcess;

constexpr unsigned short schedulerPort = 6631;

/// Of all programs of this machine no two at a time have the same.
std::string AddressOfThisProcess()
{
    const unsigned number = static_cast<unsigned>(getpid());
    return "127." + std::to_string(64 + (number >> 16) % 128) + "." +
           std::to_string(number >> 8 & 255) + "." + std::to_string(number & 255);
}

/// Parts of the scheduler run as a user who may not go through the test's own folder.
std::string OpenFolder()
{
    std::string name = "/tmp/tavrix-printing-XXXXXX";
    EXPECT_NE(mkdtemp(name.data()), nullptr) << name;
    fs::permissions(name, fs::perms(0755));
    return name;
}

sockaddr_in Loopback(const std::string& address, unsigned short port)
{
    sockaddr_in name = {};
    name.sin_family = AF_INET;
    name.sin_port = htons(port);
    inet_aton(address.c_str(), &name.sin_addr);
    return name;
}

bool Answers(const std::string& address, unsigned short port)
{
    const int client = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in name = Loopback(address, port);
    const bool answers =
        connect(client, reinterpret_cast<const sockaddr*>(&name), sizeof name) == 0;
    close(client);
    return answers;
}

/// Half a minute at most, and no longer than the program runs.
bool WaitUntil(BackgroundProcess& process, const std::function<bool()>& ready)
{
    for (int i = 0; i < 1500 && !process.HasEnded(); ++i) {
        if (ready())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

/// Ends with the test, whatever becomes of that.
std::unique_ptr<BackgroundProcess> Start(const std::string& program,
                                         std::vector<std::string> arguments,
                                         const std::string& output,
                                         const std::map<std::string, std::string>& environment = {})
{
    if (!fs::exists(program))
        return nullptr;
    std::string line = "exec '" + program + "'";
    for (const std::string& argument : arguments)
        line += " '" + argument + "'";
    line += " > '" + output + "' 2>&1";
    return std::make_unique<BackgroundProcess>(
        std::vector<std::string>{"--pdeathsig", "TERM", "--", "/bin/sh", "-c", line}, environment,
        "/usr/bin/setpriv");
}

std::string SchedulerSettings(const std::string& address)
{
    return "Listen " + address + ":" + std::to_string(schedulerPort) +
           "\nLogLevel debug\nBrowsing Off\nDefaultAuthType None\nWebInterface No\n"
           "<Location />\nOrder allow,deny\nAllow from 127.0.0.0/255.0.0.0\n</Location>\n"
           "<Policy default>\nJobPrivateAccess all\nJobPrivateValues none\n"
           "<Limit All>\nOrder allow,deny\nAllow all\n</Limit>\n</Policy>\n";
}

std::string SchedulerFiles(const std::string& folder)
{
    return "ServerRoot " + folder + "/root\nCacheDir " + folder + "/cache\nRequestRoot " + folder +
           "/spool\nTempDir " + folder + "/spool/tmp\nStateDir " + folder + "/state\nAccessLog " +
           folder + "/access\nErrorLog " + folder + "/error\nPageLog " + folder +
           "/page\nPrintcap\n";
}

std::string QueueSettings(const std::vector<std::string>& queues, unsigned short printerPort)
{
    std::string text;
    for (size_t i = 0; i < queues.size(); ++i) {
        const std::string kind = i == 0 ? "DefaultPrinter" : "Printer";
        text += "<" + kind + " " + queues[i] +
                ">\nDeviceURI ipp://127.0.0.1:" + std::to_string(printerPort) +
                "/ipp/print\nState Idle\nAccepting Yes\nShared No\nJobSheets none none\n</" + kind +
                ">\n";
    }
    return text;
}

constexpr const char* busSettings =
    "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
    "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
    "<busconfig><type>session</type><listen>unix:path=FOLDER/bus</listen><auth>EXTERNAL</auth>\n"
    "<policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>\n"
    "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>\n";

// One line a job, which ipptool prints as a table of commas.
constexpr const char* jobQuestion =
    "{\nOPERATION Get-Jobs\nGROUP operation-attributes-tag\n"
    "ATTR charset attributes-charset utf-8\nATTR naturalLanguage attributes-natural-language en\n"
    "ATTR uri printer-uri $uri\nATTR keyword which-jobs all\nATTR integer limit 100\n"
    "ATTR keyword requested-attributes job-id,job-state,job-name,copies,media\n"
    "DISPLAY job-state\nDISPLAY job-name\nDISPLAY copies\nDISPLAY media\n}\n";

bool IsOnItsWay(const Job& job)
{
    return job.state != "completed" && job.state != "canceled" && job.state != "aborted" &&
           job.state != "pending-held";
}

} // namespace

PrintingSystem::PrintingSystem(const std::vector<std::string>& queues)
    : folder(OpenFolder()), address(AddressOfThisProcess())
{
    if (StartBus() && StartPrinter() && StartScheduler(queues))
        setenv("CUPS_SERVER", (address + ":" + std::to_string(schedulerPort)).c_str(), 1);
    else
        setenv("CUPS_SERVER", "127.0.0.1:1", 1);
}

PrintingSystem::~PrintingSystem()
{
    for (const auto& process : {&scheduler, &printer, &bus})
        if (*process)
            (*process)->Signal(SIGTERM);
    scheduler.reset();
    printer.reset();
    bus.reset();
    fs::remove_all(folder);
}

// Both programs announce themselves over this bus; nobody need listen there.
bool PrintingSystem::StartBus()
{
    std::string settings = busSettings;
    settings.replace(settings.find("FOLDER"), 6, folder);
    WriteFile(Path("bus.conf"), settings);
    bus = Start("/usr/bin/dbus-daemon", {"--config-file=" + Path("bus.conf"), "--nofork"},
                Path("bus.log"));
    if (bus && WaitUntil(*bus, [&] { return fs::exists(Path("bus")); }))
        return true;
    ADD_FAILURE() << "dbus-daemon (package dbus-daemon) does not come up:\n"
                  << FileBytes(Path("bus.log"));
    return false;
}

std::map<std::string, std::string> PrintingSystem::BusEnvironment() const
{
    return {{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + Path("bus")}};
}

bool PrintingSystem::StartPrinter()
{
    fs::create_directory(Path("documents"));
    for (int attempt = 0; attempt < 3; ++attempt) {
        printerPort = FreePort();
        printer = Start("/usr/sbin/ippeveprinter",
                        {"-vv", "-r", "off", "-p", std::to_string(printerPort), "-d",
                         Path("documents"), "-k", "-c", "/bin/true", "-f",
                         "application/pdf,image/jpeg,image/pwg-raster", "Printer"},
                        Path("printer.log"), BusEnvironment());
        if (printer && WaitUntil(*printer, [&] { return Answers("127.0.0.1", printerPort); }))
            return true;
    }
    ADD_FAILURE() << "ippeveprinter (package cups-ipp-utils) does not come up:\n"
                  << FileBytes(Path("printer.log"));
    return false;
}

bool PrintingSystem::StartScheduler(const std::vector<std::string>& queues)
{
    for (const char* name : {"root", "cache", "spool", "spool/tmp", "state"})
        fs::create_directory(Path(name));
    WriteFile(Path("root/cupsd.conf"), SchedulerSettings(address));
    WriteFile(Path("root/cups-files.conf"), SchedulerFiles(folder));
    WriteFile(Path("root/printers.conf"), QueueSettings(queues, printerPort));
    scheduler = Start("/usr/sbin/cupsd",
                      {"-f", "-c", Path("root/cupsd.conf"), "-s", Path("root/cups-files.conf")},
                      Path("cupsd.log"), BusEnvironment());
    if (scheduler && WaitUntil(*scheduler, [&] { return Answers(address, schedulerPort); }))
        return true;
    ADD_FAILURE() << "cupsd (package cups-daemon) does not come up:\n"
                  << FileBytes(Path("cupsd.log")) << FileBytes(Path("error"));
    return false;
}

void PrintingSystem::KillScheduler()
{
    scheduler->Signal(SIGKILL);
    (void)scheduler->Wait();
}

void PrintingSystem::RejectJobs(const std::string& queue) const
{
    const pdftest::Ran ran = pdftest::Shell("/usr/sbin/cupsreject " + queue);
    EXPECT_EQ(ran.status, 0) << "cupsreject (package cups-client): " << ran.output;
}

std::vector<Job> PrintingSystem::Jobs() const
{
    return JobsAt("/");
}

std::vector<Job> PrintingSystem::JobsOf(const std::string& queue) const
{
    return JobsAt("/printers/" + queue);
}

std::vector<Job> PrintingSystem::JobsAt(const std::string& path) const
{
    const std::string question = Path("jobs.test");
    WriteFile(question, jobQuestion);
    const std::string uri = "ipp://" + address + ":" + std::to_string(schedulerPort) + path;
    std::istringstream table(
        pdftest::Shell("ipptool -c " + uri + " " + pdftest::Quoted(question)).output);
    std::vector<Job> jobs;
    std::string line;
    // The first line has the columns' names.
    std::getline(table, line);
    EXPECT_EQ(line, "job-state,job-name,copies,media") << "ipptool (package cups-ipp-utils)";
    while (std::getline(table, line)) {
        std::istringstream fields(line);
        Job job;
        std::getline(fields, job.state, ',');
        std::getline(fields, job.name, ',');
        std::getline(fields, job.copies, ',');
        std::getline(fields, job.media, ',');
        jobs.push_back(job);
    }
    return jobs;
}

void PrintingSystem::WaitForJobs() const
{
    std::vector<Job> jobs;
    for (int i = 0; i < 150; ++i) {
        jobs = Jobs();
        if (std::none_of(jobs.begin(), jobs.end(), IsOnItsWay))
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    ADD_FAILURE() << "a job is still " << jobs.back().state << "\n"
                  << pdftest::Shell("grep '.Job [0-9]' " + Path("error") + " | tail -n 20").output;
}

std::vector<std::string> PrintingSystem::Documents() const
{
    std::vector<std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(Path("documents")))
        if (entry.path().extension() == ".pdf")
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

std::string PrintingSystem::PrinterLog() const
{
    return FileBytes(Path("printer.log"));
}

SilentServer::SilentServer() : listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    // Connections are made by the system and wait to be taken.
    const sockaddr_in name = Loopback("127.0.0.1", 0);
    EXPECT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
    EXPECT_EQ(listen(listener, 16), 0);
}

SilentServer::~SilentServer()
{
    close(listener);
}

std::string SilentServer::Name() const
{
    sockaddr_in name = {};
    socklen_t length = sizeof name;
    getsockname(listener, reinterpret_cast<sockaddr*>(&name), &length);
    return "127.0.0.1:" + std::to_string(ntohs(name.sin_port));
}

SilentBus::SilentBus(const std::string& path) : listener(socket(AF_UNIX, SOCK_STREAM, 0))
{
    sockaddr_un name = {};
    name.sun_family = AF_UNIX;
    path.copy(name.sun_path, sizeof name.sun_path - 1);
    EXPECT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&name), sizeof name), 0) << path;
    EXPECT_EQ(listen(listener, 16), 0);
    setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + path).c_str(), 1);
}

SilentBus::~SilentBus()
{
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    close(listener);
}

bool SilentBus::WasAsked() const
{
    pollfd entry = {listener, POLLIN, 0};
    return poll(&entry, 1, 0) != 0;
}

unsigned short FreePort()
{
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in name = {};
    name.sin_family = AF_INET;
    socklen_t length = sizeof name;
    EXPECT_EQ(bind(probe, reinterpret_cast<const sockaddr*>(&name), length), 0);
    getsockname(probe, reinterpret_cast<sockaddr*>(&name), &length);
    close(probe);
    return ntohs(name.sin_port);
}

} // namespace cupstest
