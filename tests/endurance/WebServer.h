// A web server on port 80 of the test's own address that may behave in any way, by the page.
#pragma once

#include "platform/testing/Wire.h"

#include <string>

namespace endurance
{

class WebServer
{
public:
    /// `picture` is the host path of the file that "/good.png" is.
    explicit WebServer(const std::string& picture);

private:
    std::string bytes;
    tavrix::testing::WireServer server;
};

/// An address of a page of it, or of none.
std::string AnyAddress(unsigned number);

} // namespace endurance
