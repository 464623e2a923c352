#include "tests/support/Daemon.h"

#include "platform/testing/Wire.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <thread>

namespace tavrix::testing
{

namespace
{

/// The line of the host's table of sockets tells the own end second, the peer's third and the state
/// fourth; 0A is listening.
bool IsListening(const std::string& address, unsigned short port)
{
    char wanted[32];
    in_addr number = {};
    inet_aton(address.c_str(), &number);
    std::snprintf(wanted, sizeof wanted, "%08X:%04X", number.s_addr, port);
    std::ifstream table("/proc/self/net/tcp");
    for (std::string line; std::getline(table, line);) {
        std::istringstream fields(line);
        std::string index, own, peer, state;
        fields >> index >> own >> peer >> state;
        if (own == wanted && state == "0A")
            return true;
    }
    return false;
}

/// Asks the host to end the program with the test.
std::vector<std::string> Tied(const std::string& program, std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), {"--pdeathsig", "KILL", "--", program});
    return arguments;
}

/// Asks nobody: a connection would be the one that a server waits for. False after a minute.
bool WaitForListener(const std::string& address, unsigned short port)
{
    for (int i = 0; i < 6000; ++i) {
        if (IsListening(address, port))
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

} // namespace

Daemon::Daemon(const std::string& program, std::vector<std::string> arguments, unsigned short port)
    : process(Tied(program, std::move(arguments)), {}, "/usr/bin/setpriv")
{
    if (WaitForListener(OwnAddress(), port))
        return;
    process.Signal(SIGTERM);
    ADD_FAILURE() << program << " does not listen: " << process.Wait().output;
}

} // namespace tavrix::testing
