#include "tests/endurance/Invariants.h"

#include "foundation/Result.h"
#include "platform/testing/core/TestHome.h"
#include "platform/testing/Testing.h"
#include "platform/testing/Threads.h"
#include "tests/endurance/Surroundings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#if defined(__SANITIZE_ADDRESS__)
// This compiler brings the function and no header for it.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace endurance
{

namespace
{

namespace fs = std::filesystem;
using namespace tavrix::testing;

unsigned asked = 0; // the step at which the loop was asked for an answer; 0: it has given it

long CountDescriptors()
{
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

} // namespace

Figures TakeFigures()
{
    Figures figures;
    figures.device = tavrix::platform::CountHoldings();
#if defined(__SANITIZE_ADDRESS__)
    figures.hostBytes = __sanitizer_get_current_allocated_bytes();
#endif
    figures.descriptors = CountDescriptors();
    figures.threads = CountThreads();
    figures.pagingFiles = PagingFiles().size();
    return figures;
}

std::string TextOf(const Figures& figures)
{
    std::ostringstream text;
    text << figures.device.heapBytes << " bytes in " << figures.device.heaps << " heaps, "
         << figures.device.kernelHandles << " handles, " << figures.device.drawingObjects
         << " drawing objects, " << figures.hostBytes << " bytes of the host, "
         << figures.descriptors << " descriptors, " << figures.threads << " threads, "
         << figures.pagingFiles << " paging files";
    return text.str();
}

void Invariants::CheckFrame(MainFrame& frame)
{
    EXPECT_TRUE(IsWindow(frame.window));
    EXPECT_TRUE(IsWindowEnabled(frame.window)) << "no dialog is open";
    EXPECT_EQ(frame.handOvers.holds, 0u) << "a plugin counts as loaded";
    if (frame.imagePresent == 0)
        return;
    RasterInfo info = {};
    info.size = sizeof info;
    EXPECT_EQ(frame.image->GetInfo(&info), Done);
}

void CALLBACK Invariants::Heard(HWND, UINT, UINT_PTR timer, DWORD)
{
    KillTimer(nullptr, timer);
    asked = 0;
}

void Invariants::CheckLoop(unsigned step)
{
    constexpr unsigned MostSteps = 200;
    if (asked != 0) {
        EXPECT_LT(step - asked, MostSteps) << "a timer of the program's got no turn";
        return;
    }
    asked = step;
    SetTimer(nullptr, 0, 1, Heard);
}

/// The size of a raster; nothing for none.
std::string SizeOf(Raster* raster)
{
    RasterInfo info = {};
    info.size = sizeof info;
    if (raster == nullptr || raster->GetInfo(&info) < Done)
        return "nothing";
    return std::to_string(info.width) + "x" + std::to_string(info.height) + "x" +
           std::to_string(info.depth);
}

void Invariants::CheckGrowth(MainFrame& frame)
{
    SCOPED_TRACE("picture " + SizeOf(frame.image) + ", undo " + SizeOf(&frame.undoImage) +
                 ", clip " + SizeOf(frame.clipImage) + ", work " + SizeOf(frame.workImage));
    EXPECT_EQ(SizeOf(frame.image), "1x1x24");
    rests.push_back(TakeFigures());
    const Figures& first = rests.front();
    const Figures& last = rests.back();
    const std::string both = "first " + TextOf(first) + "\n last " + TextOf(last);
    constexpr size_t FreeBytes = 64 << 10;      // texts of the last names, settings
    constexpr size_t FreeHostBytes = 32u << 20; // the toolkit's caches
    EXPECT_LE(last.device.heapBytes, first.device.heapBytes + FreeBytes) << both;
    EXPECT_LE(last.device.heaps, first.device.heaps) << both;
    EXPECT_LE(last.device.kernelHandles, first.device.kernelHandles) << both;
    EXPECT_LE(last.device.drawingObjects, first.device.drawingObjects + 2) << both;
    EXPECT_LE(last.hostBytes, first.hostBytes + FreeHostBytes) << both;
    EXPECT_LE(last.descriptors, first.descriptors + 2) << both;
    EXPECT_EQ(last.pagingFiles, 0u) << both;
}

void Invariants::CheckEnd(const Figures& before) const
{
    const Figures after = TakeFigures();
    // What the toolkit and the window's receiver have is there until the process ends.
    const long threads = rests.empty() ? before.threads : rests.front().threads;
    const std::string both = "before " + TextOf(before) + "\n after " + TextOf(after);
    EXPECT_LE(after.device.heaps, before.device.heaps) << both;
    EXPECT_LE(after.device.heapBytes, before.device.heapBytes) << both;
    EXPECT_LE(after.device.kernelHandles, before.device.kernelHandles + 1) << both;
    EXPECT_LE(after.device.drawingObjects, before.device.drawingObjects) << both;
    EXPECT_LE(after.threads, threads) << both;
    EXPECT_EQ(PagingFiles(), std::vector<std::string>()) << both;
    for (const auto& entry : fs::recursive_directory_iterator(TestHome())) {
        const std::string name = entry.path().filename();
        EXPECT_FALSE(name.starts_with(".tavrix-")) << entry.path() << " stays behind";
    }
}

} // namespace endurance
