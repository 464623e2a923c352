#include "platform/qt/StartupLog.h"

#include "platform/qt/Backing.h"
#include "platform/qt/Window.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace tavrix::platform
{
namespace
{

bool screenPainted = false;
bool firstPaintLogged = false;
bool startOverLogged = false;

void Log(const char* what)
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const char* path = std::getenv("TAVRIX_STARTUP_LOG");
    if (path == nullptr || *path == 0)
        return;
    std::FILE* file = std::fopen(path, "ae");
    if (file == nullptr)
        return;
    constexpr long long NanosecondsOfSecond = 1'000'000'000;
    std::fprintf(file, "%s %lld\n", what,
                 static_cast<long long>(now.tv_sec) * NanosecondsOfSecond + now.tv_nsec);
    std::fclose(file);
}

} // namespace

void NoteScreenPainted()
{
    screenPainted = true;
}

bool ScreenWasPainted()
{
    return screenPainted;
}

void LogFirstPaint()
{
    if (!screenPainted || firstPaintLogged)
        return;
    firstPaintLogged = true;
    Log("first-paint");
}

bool StartIsOver()
{
    Window* window = MainWindow();
    return window != nullptr && screenPainted && IsWindowVisible(window->handle) &&
           !GetUpdateRect(window->handle, nullptr, FALSE);
}

void LogStartOver()
{
    if (startOverLogged)
        return;
    startOverLogged = true;
    Log("start-over");
}

} // namespace tavrix::platform
