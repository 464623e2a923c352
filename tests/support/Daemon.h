// A server of the host that runs beside a test, on a port of the test's own address.
#pragma once

#include "tests/support/Process.h"

namespace tavrix::testing
{

/// Ends with the object, and with the test whatever becomes of that. To be started as a program
/// that stays in the foreground.
class Daemon
{
public:
    /// Returns once it listens on `port` of OwnAddress(). Fails the test, with what the program
    /// said, when it does not come to that.
    Daemon(const std::string& program, std::vector<std::string> arguments, unsigned short port);

private:
    BackgroundProcess process;
};

} // namespace tavrix::testing
