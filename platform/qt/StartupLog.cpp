#include "platform/qt/StartupLog.h"

#include "platform/qt/Backing.h"
#include "platform/qt/Window.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <utility>

namespace tavrix::platform
{
namespace
{

bool screenPainted = false;
bool firstPaintLogged = false;
bool startOverLogged = false;

std::function<void()>& Waiting()
{
    static auto& work = *new std::function<void()>; // may hold what must not outlive the toolkit
    return work;
}

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

void WhenScreenIsPainted(std::function<void()> work)
{
    if (firstPaintLogged)
        work();
    else
        Waiting() = std::move(work);
}

void LogFirstPaint()
{
    if (!screenPainted || firstPaintLogged)
        return;
    firstPaintLogged = true;
    Log("first-paint");
    if (const std::function<void()> work = std::exchange(Waiting(), nullptr))
        work();
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
