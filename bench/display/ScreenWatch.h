// A screen as somebody outside sees it: an X server of its own, told by the server of every change,
// whose pixels are then looked at. The same eyes for every program.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench
{

/// The pixels of the whole screen, row by row, as 0x00RRGGBB.
struct ScreenPixels {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;
};

class ScreenWatch
{
public:
    /// Starts a server and fills its screen with `Ground`. Ends the process with a message where
    /// there is no server to start.
    ScreenWatch();
    ~ScreenWatch();
    ScreenWatch(const ScreenWatch&) = delete;
    ScreenWatch& operator=(const ScreenWatch&) = delete;

    static constexpr uint32_t Ground = 0x7B3F5A;

    /// For a program's environment.
    const std::string& Display() const;
    /// Looks at the screen after every change until it is as wished; when that change was told, on
    /// the monotonic clock in seconds. Negative when it took longer than `seconds`.
    double Await(const std::function<bool(const ScreenPixels&)>& wished, double seconds);

private:
    struct Server;
    std::unique_ptr<Server> server;
};

/// The monotonic clock, in seconds.
double Now();

} // namespace bench
