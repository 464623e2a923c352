// Does with the desktop's clipboard what the lines on its standard input say, and answers each with
// a word and how many milliseconds it took:
//     (an empty line)                how many of the two formats there are; the message loop runs
//                                    for a while before each answer but the first
//     dib WIDTH HEIGHT FILE          "set": copies the pixels of the file, three bytes each (red,
//     bitmap WIDTH HEIGHT FILE       green, blue) from the top, as a block or as a bitmap
//     paste FILE                     "WIDTHxHEIGHT" of what was pasted, or "none"; writes its
//     pixels turn                           "turned": the message loop runs for a while
// Between the lines its message loop runs, so that what was copied is given to others.
#include "platform/qt/ClipboardEnd.h"
#include "platform/testing/WindowTesting.h"

#include <windows.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iostream>
#include <poll.h>
#include <sstream>
#include <string>
#include <vector>

namespace
{

constexpr DWORD Pause = 300; // for the desktop's word of a change to arrive

size_t RowSize(LONG width)
{
    return (static_cast<size_t>(width) * 3 + 3) / 4 * 4;
}

/// Red, green and blue from the top to blue, green and red from below, or back.
void TurnRows(const char* from, size_t fromRow, char* to, size_t toRow, LONG width, LONG height)
{
    for (LONG y = 0; y < height; ++y) {
        const char* source = from + fromRow * static_cast<size_t>(y);
        char* target = to + toRow * static_cast<size_t>(height - 1 - y);
        for (LONG x = 0; x < width; ++x, source += 3, target += 3) {
            target[0] = source[2];
            target[1] = source[1];
            target[2] = source[0];
        }
    }
}

bool Copy(const std::string& how, LONG width, LONG height, const std::string& file)
{
    std::ifstream input(file, std::ios::binary);
    const size_t row = static_cast<size_t>(width) * 3;
    std::vector<char> pixels(row * static_cast<size_t>(height));
    if (!input.read(pixels.data(), static_cast<std::streamsize>(pixels.size())))
        return false;
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biSizeImage = static_cast<DWORD>(RowSize(width) * static_cast<size_t>(height));
    HANDLE object = nullptr;
    void* bits = nullptr;
    if (how == "bitmap") {
        object = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    } else {
        object = LocalAlloc(LPTR, sizeof(BITMAPINFOHEADER) + info.bmiHeader.biSizeImage);
        std::memcpy(object, &info, sizeof(BITMAPINFOHEADER));
        bits = static_cast<char*>(object) + sizeof(BITMAPINFOHEADER);
    }
    TurnRows(pixels.data(), row, static_cast<char*>(bits), RowSize(width), width, height);
    const bool done = OpenClipboard(nullptr) && EmptyClipboard() &&
                      SetClipboardData(how == "bitmap" ? CF_BITMAP : CF_DIB, object) == object;
    return CloseClipboard() && done;
}

std::string Paste(const std::string& file)
{
    OpenClipboard(nullptr);
    std::string answer = "none";
    if (const HANDLE block = GetClipboardData(CF_DIB)) {
        BITMAPINFOHEADER header;
        std::memcpy(&header, block, sizeof(header));
        const size_t row = static_cast<size_t>(header.biWidth) * 3;
        std::vector<char> pixels(row * static_cast<size_t>(header.biHeight));
        TurnRows(static_cast<const char*>(block) + sizeof(header), RowSize(header.biWidth),
                 pixels.data(), row, header.biWidth, header.biHeight);
        std::ofstream(file, std::ios::binary)
            .write(pixels.data(), static_cast<std::streamsize>(pixels.size()));
        answer = std::to_string(header.biWidth) + "x" + std::to_string(header.biHeight);
    }
    CloseClipboard();
    return answer;
}

std::string Answer(std::istringstream& line)
{
    std::string command;
    line >> command;
    if (command.empty())
        return std::to_string(IsClipboardFormatAvailable(CF_DIB) +
                              IsClipboardFormatAvailable(CF_BITMAP));
    std::string file;
    if (command == "paste" && line >> file)
        return Paste(file);
    LONG width = 0;
    LONG height = 0;
    if ((command == "dib" || command == "bitmap") && line >> width >> height >> file)
        return Copy(command, width, height, file) ? "set" : "refused";
    tavrix::testing::Pump(Pause);
    return command == "turn" ? "turned" : "what?";
}

/// Whether there is a line to read; waits a little.
bool IsLineThere()
{
    pollfd input{0, POLLIN, 0};
    return std::cin.rdbuf()->in_avail() > 0 || poll(&input, 1, 5) != 0;
}

} // namespace

int main()
{
    using Clock = std::chrono::steady_clock;
    (void)GetSystemMetrics(SM_CXSCREEN); // the toolkit's start is not what is measured
    std::signal(SIGTERM, SIG_DFL);       // there is no window that could be asked to close
    std::string line;
    for (bool first = true;; first = false) {
        while (!first && !IsLineThere())
            tavrix::testing::Pump(5);
        if (!std::getline(std::cin, line))
            break;
        if (!first && line.empty())
            tavrix::testing::Pump(Pause);
        std::istringstream words(line);
        const Clock::time_point before = Clock::now();
        const std::string answer = Answer(words);
        const auto took =
            std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - before).count();
        std::cout << answer << ' ' << took << std::endl;
    }
    tavrix::platform::LeaveClipboardToDesktop();
    return 0;
}
