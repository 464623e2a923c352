// Tells, for each line that it reads, whether the desktop's clipboard holds a picture and how many
// milliseconds the question took. Its message loop runs for a while before each answer but the
// first.
#include "platform/testing/WindowTesting.h"

#include <windows.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <string>

int main()
{
    constexpr DWORD Pause = 300; // for the desktop's word of a change to arrive
    using Clock = std::chrono::steady_clock;
    (void)GetSystemMetrics(SM_CXSCREEN); // the toolkit's start is not what is measured
    std::signal(SIGTERM, SIG_DFL);       // there is no window that could be asked to close
    std::string line;
    for (bool first = true; std::getline(std::cin, line); first = false) {
        if (!first)
            tavrix::testing::Pump(Pause);
        const Clock::time_point before = Clock::now();
        const BOOL dib = IsClipboardFormatAvailable(CF_DIB);
        const BOOL bitmap = IsClipboardFormatAvailable(CF_BITMAP);
        const auto took =
            std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - before).count();
        std::cout << dib + bitmap << ' ' << took << std::endl;
    }
    return 0;
}
