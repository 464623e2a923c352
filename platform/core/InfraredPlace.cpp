#include "platform/core/InfraredPlace.h"

#include <charconv>

namespace tavrix::platform
{

namespace
{

constexpr unsigned short RegisteredPort = 650; // of the object protocol over TCP
constexpr unsigned short OpenPort = 10650;     // where that one may not be bound

bool TakePrefix(std::string_view& text, std::string_view prefix)
{
    if (!text.starts_with(prefix))
        return false;
    text.remove_prefix(prefix.size());
    return true;
}

std::optional<unsigned short> ReadPort(std::string_view text)
{
    unsigned short port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size() || port == 0)
        return std::nullopt;
    return port;
}

/// Both addresses of this machine to itself: clients ask for either.
std::vector<InfraredEndpoint> OnLoopback(unsigned short port)
{
    return {{"127.0.0.1", port, {}}, {"::1", port, {}}};
}

InfraredPlaces ReadTcp(std::string_view text)
{
    const size_t colon = text.rfind(':');
    const auto port = ReadPort(colon == text.npos ? text : text.substr(colon + 1));
    if (!port)
        return {};
    if (colon == text.npos)
        return {OnLoopback(*port)};
    std::string_view address = text.substr(0, colon);
    if (address.starts_with('[') && address.ends_with(']'))
        address = address.substr(1, address.size() - 2);
    if (address.empty())
        return {};
    return {{{std::string(address), *port, {}}}};
}

} // namespace

InfraredPlaces ReadInfraredPlaces(const char* setting)
{
    std::string_view text = setting != nullptr ? setting : "tcp";
    if (text == "tcp")
        return {OnLoopback(RegisteredPort), OnLoopback(OpenPort)};
    if (TakePrefix(text, "tcp:"))
        return ReadTcp(text);
    if (TakePrefix(text, "unix:") && !text.empty())
        return {{{{}, 0, std::string(text)}}};
    return {};
}

} // namespace tavrix::platform
