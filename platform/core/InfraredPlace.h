// Where the infrared service is to be had on this host, which has no infrared: on a port of the
// object protocol's, or in the file system, as TAVRIX_IR says.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrix::platform
{

/// One address to listen at or to connect to.
struct InfraredEndpoint {
    std::string address;     // a number with points or colons; empty for `path`
    unsigned short port = 0; // host order
    std::string path;
};

/// Places in the order of preference; those of one place, two at most, are listened at together,
/// where the first one must be had.
using InfraredPlaces = std::vector<std::vector<InfraredEndpoint>>;

/// The one service that has a place.
inline constexpr std::string_view InfraredService = "OBEX";

/// By the setting's text: "tcp", "tcp:PORT", "tcp:ADDRESS:PORT" (an address of version 6 in
/// brackets) or "unix:PATH"; null is "tcp". Empty for a text that is none of them.
InfraredPlaces ReadInfraredPlaces(const char* setting);

} // namespace tavrix::platform
