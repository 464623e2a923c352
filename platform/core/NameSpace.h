// Where processes of one user on one display meet: a private folder for what they share by name.
//
// Tests and runs that only draw a picture have a space of their own: the former bring their own
// XDG_RUNTIME_DIR, the latter share nothing.
#pragma once

#include <string>

namespace tavrix::platform
{

/// The host folder of this user and display, made if need be with access for the user alone. Empty
/// when this process shares with no other: TAVRIX_SHOT is set, or no folder can be made that is
/// surely private.
std::string SharedFolder();

} // namespace tavrix::platform
