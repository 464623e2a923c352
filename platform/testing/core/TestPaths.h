// Where sources and build lie. Told by functions, so that what asks for them compiles to the same
// bytes in every checkout, which is what lets a compiler cache serve it.
#pragma once

#include <string>
#include <vector>

namespace tavrix::testing
{

/// The host path of a file of the checkout. `below` begins with a slash.
std::string InSource(const std::string& below);

/// The host path of what the running build made. `below` begins with a slash, or is empty.
std::string InBuild(const std::string& below = "");

/// What stands before a test that starts a program of the build: nothing, or the emulator's words.
std::vector<std::string> TestEmulator();

} // namespace tavrix::testing
