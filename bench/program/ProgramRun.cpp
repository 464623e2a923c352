// The whole program, headless, under the hand of a list of steps: its own entry runs, the steps are
// sent as a person's commands, names are typed into its file dialog. Prints for each step the time
// on the clock and of the processor, in seconds, and the largest resident size, in KB:
//
//   program-run STEP...
//     open:FILE      the Open command; timed from the answer to its last dialog, as is
//     save:FILE      the Save command, the format by the file's extension
//     rotate         the quarter turn that the menu offers
//     reverse        left and right exchanged
//     zoom:PERCENT:N a zoom command N times, each of which draws the view; PERCENT may be "whole"
//     dabs:N         N dabs of the brush across the view, a drag
//     corners        scrolls to each corner of the picture by the pen and dabs there
//     check          prints the picture's size and four of its pixels: "check W H RRGGBB..."
//
// Closing the window is the last step. A step that did not do its work ends the process with 1.

#include "bench/program/Person.h"
#include "bench/program/StepClock.h"
#include "platform/host/Resources.h"
#include "resources/Embedded.h"
#include "resources/Ids.h"
#include "shell/MainFrame.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace
{

using bench::StepClock;

std::vector<std::string> steps;
size_t nextStep = 0;
bool stepRunning = false;
StepClock* closing = nullptr;

[[noreturn]] void Fail(const std::string& what)
{
    std::printf("fault %s\n", what.c_str());
    std::fflush(stdout);
    std::_Exit(1);
}

RasterInfo InfoOf(MainFrame& frame)
{
    RasterInfo info = {};
    info.size = sizeof info;
    (void)frame.image->GetInfo(&info);
    return info;
}

void Command(MainFrame& frame, u32 id)
{
    SendMessageW(frame.window, WM_COMMAND, id, 0);
}

u32 PixelAt(MainFrame& frame, i32 x, i32 y)
{
    u32 color = 0;
    if (frame.image->GetPixel(x, y, &color) != Done)
        Fail("a pixel of the picture cannot be read");
    frame.image->UnlockAll();
    return color >> 8;
}

void RunNamed(MainFrame& frame, const std::string& what, const std::string& file)
{
    const bool opens = what == "open";
    if (!bench::TypeNextName(file))
        Fail("no name on the device: " + file);
    StepClock clock(what + "_" + file.substr(file.rfind('.') + 1));
    bench::OnLastAnswer([&clock] { clock.Restart(); });
    Command(frame, opens ? CommandOpenFile : CommandSave);
    clock.Stop();
    bench::OnLastAnswer({});
    if (!bench::IsNameTaken())
        Fail("the file dialog did not come up");
    if (opens ? frame.imagePresent == 0 : !std::filesystem::exists(file))
        Fail(what + " came to nothing: " + file);
}

void RunCommand(MainFrame& frame, const char* name, u32 id)
{
    const RasterInfo before = InfoOf(frame);
    StepClock clock(name);
    Command(frame, id);
    clock.Stop();
    const RasterInfo after = InfoOf(frame);
    const bool turned = id == CommandRotateCounterClockwise;
    if (after.width != (turned ? before.height : before.width) ||
        after.height != (turned ? before.width : before.height))
        Fail(std::string(name) + " left another size");
}

void Zoom(MainFrame& frame, const std::string& argument)
{
    const size_t colon = argument.find(':');
    const std::string percent = argument.substr(0, colon);
    const u32 id = percent == "whole" ? CommandZoomWindow
                   : percent == "25"  ? CommandZoom25
                   : percent == "400" ? CommandZoom400
                                      : CommandZoom100;
    const int count = std::atoi(argument.c_str() + colon + 1);
    StepClock clock("redraw_" + percent, count);
    for (int i = 0; i < count; ++i)
        Command(frame, id);
    clock.Stop();
    if (frame.zoomCommand != id)
        Fail("the zoom was not taken");
}

void Pen(MainFrame& frame, UINT message, f64 x, f64 y)
{
    SendMessageW(frame.window, message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON,
                 MAKELPARAM(static_cast<int>(x), static_cast<int>(y)));
}

// The middle of a dab covers by 255 of 256, and the step from the old colour rounds.
void ExpectInk(MainFrame& frame, f64 x, f64 y)
{
    MainFrame::Point point = {x, y};
    frame.WindowToView(&point);
    frame.ViewToImage(&point);
    const u32 got = PixelAt(frame, static_cast<i32>(point.x), static_cast<i32>(point.y));
    for (const int shift : {0, 8, 16}) {
        const u32 channel = got >> shift & 255;
        const u32 ink = frame.faceColor >> (shift + 8) & 255;
        if (channel > ink + 1 || channel + 1 < ink)
            Fail("the dab is not in the picture");
    }
}

void Dabs(MainFrame& frame, int count)
{
    Command(frame, CommandBrush);
    frame.faceColor = 0x20C04000;
    const f64 middleX = frame.screenWidth / 2.0;
    const f64 middleY = frame.screenHeight / 2.0;
    f64 x = middleX;
    f64 y = middleY;
    StepClock clock("dab", count);
    Pen(frame, WM_LBUTTONDOWN, x, y);
    for (int i = 1; i < count; ++i) {
        x = middleX - 150 + i * 37 % 300;
        y = middleY - 100 + i * 23 % 200;
        Pen(frame, WM_MOUSEMOVE, x, y);
    }
    clock.Stop();
    Pen(frame, WM_LBUTTONUP, x, y);
    ExpectInk(frame, x, y);
}

// One drag, in moves that a message's coordinates hold.
void ScrollTo(MainFrame& frame, f64 x, f64 y)
{
    constexpr f64 MostPixels = 15000;
    Command(frame, CommandScroll);
    while (frame.scrollX != x || frame.scrollY != y) {
        const f64 aside = std::clamp((frame.scrollX - x) / frame.zoom, -MostPixels, MostPixels);
        const f64 down = std::clamp((frame.scrollY - y) / frame.zoom, -MostPixels, MostPixels);
        Pen(frame, WM_LBUTTONDOWN, 400, 240);
        Pen(frame, WM_MOUSEMOVE, 400 + aside, 240 + down);
        Pen(frame, WM_LBUTTONUP, 400 + aside, 240 + down);
        if (aside > -1 && aside < 1 && down > -1 && down < 1)
            return;
    }
}

// At 100%: a pixel of the view for one of the picture.
void Corners(MainFrame& frame)
{
    constexpr f64 Inside = 20;
    const RasterInfo info = InfoOf(frame);
    const f64 right = static_cast<f64>(info.width) - frame.screenWidth;
    const f64 bottom = static_cast<f64>(info.height) - frame.viewHeight;
    const std::array<std::array<bool, 2>, 4> corners = {
        {{false, false}, {true, false}, {true, true}, {false, true}}};
    for (const auto& [atRight, atBottom] : corners) {
        {
            StepClock clock("scroll");
            ScrollTo(frame, atRight ? right : 0, atBottom ? bottom : 0);
            clock.Stop();
        }
        Command(frame, CommandBrush);
        frame.faceColor = 0xC0204000;
        const f64 x = atRight ? frame.screenWidth - Inside : Inside;
        const f64 y = frame.clientOriginY + (atBottom ? frame.viewHeight - Inside : Inside);
        StepClock clock("corner_dab");
        Pen(frame, WM_LBUTTONDOWN, x, y);
        clock.Stop();
        Pen(frame, WM_LBUTTONUP, x, y);
        ExpectInk(frame, x, y);
    }
}

// Four places that change among themselves when the picture is turned or reversed.
void Check(MainFrame& frame)
{
    const RasterInfo info = InfoOf(frame);
    const i32 x = static_cast<i32>(info.width / 8);
    const i32 y = static_cast<i32>(info.height / 8);
    const i32 right = static_cast<i32>(info.width) - 1 - x;
    const i32 bottom = static_cast<i32>(info.height) - 1 - y;
    std::printf("check %u %u %06X %06X %06X %06X\n", info.width, info.height, PixelAt(frame, x, y),
                PixelAt(frame, right, y), PixelAt(frame, x, bottom), PixelAt(frame, right, bottom));
}

void Run(MainFrame& frame, const std::string& step)
{
    const size_t colon = step.find(':');
    const std::string name = step.substr(0, colon);
    const std::string argument = colon == std::string::npos ? "" : step.substr(colon + 1);
    if (name == "open" || name == "save")
        RunNamed(frame, name, argument);
    else if (name == "rotate")
        RunCommand(frame, "rotate", CommandRotateCounterClockwise);
    else if (name == "reverse")
        RunCommand(frame, "reverse", CommandReverseHorizontal);
    else if (name == "zoom")
        Zoom(frame, argument);
    else if (name == "dabs")
        Dabs(frame, std::atoi(argument.c_str()));
    else if (name == "corners")
        Corners(frame);
    else if (name == "check")
        Check(frame);
    else
        Fail("no such step: " + step);
}

// Between two steps the program's own loop runs, until the timer's next message.
void CALLBACK Tick(HWND, UINT, UINT_PTR timer, DWORD)
{
    if (stepRunning || mainFrame == nullptr || !IsWindowVisible(mainFrame->window))
        return;
    if (nextStep == steps.size()) {
        KillTimer(nullptr, timer);
        closing = new StepClock("close");
        SendMessageW(mainFrame->window, WM_CLOSE, 0, 0);
        return;
    }
    stepRunning = true;
    Run(*mainFrame, steps[nextStep++]);
    stepRunning = false;
}

} // namespace

int main(int argc, char** argv)
{
    steps.assign(argv + 1, argv + argc);
    const EmbeddedResources resources = GetEmbeddedResources();
    TavrixRegisterResources(nullptr, resources.begin, resources.end);
    SetTimer(nullptr, 0, 20, Tick);
    WCHAR noPicture[] = {0};
    const int result = wWinMain(GetModuleHandleW(nullptr), nullptr, noPicture, SW_SHOWNORMAL);
    if (closing == nullptr)
        Fail("the main window never came up");
    closing->Stop();
    delete closing;
    return result;
}
