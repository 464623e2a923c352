// Where the running test program's own home folder lies.
#pragma once

#include <string>

namespace tavrix::testing
{

/// The host path of the folder that is HOME for this run; it is gone when the program ends.
std::string TestHome();

} // namespace tavrix::testing
