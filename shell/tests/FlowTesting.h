// What the tests of the commands share: a picture whose every pixel is known, the answers to
// message boxes, and the plugins that change each pixel in a known way.
#pragma once

#include "foundation/MemoryGauge.h"
#include "settings/tests/SettingsText.h"
#include "shell/tests/JobTesting.h"
#include "tests/support/DeviceCalls.h"
#include "tests/support/TestPicture.h"

#include <filesystem>

namespace flowtest
{

using namespace jobtest;

/// The picture that the runs start with.
inline constexpr int PictureWidth = 60;
inline constexpr int PictureHeight = 50;

inline void SwitchUndoOn()
{
    WriteSettings(u"[Tavrix]\r\nEnableUndo=1\r\n");
}

/// A run on the picture with an EFFECT plugin that inverts and an ADJUST plugin that halves.
inline void RunOnPicture(const std::vector<Step>& steps, int width = PictureWidth,
                         int height = PictureHeight)
{
    InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/INPUT/PNG.dll"));
    InstallFixture("inverting", "EFFECT");
    InstallFixture("halving", "ADJUST");
    EXPECT_EQ(RunProgramOn(WriteTestPng(width, height), steps), 0);
}

inline void RunOnPicture(const Step& step, int width = PictureWidth, int height = PictureHeight)
{
    RunOnPicture(std::vector<Step>{step}, width, height);
}

inline void Send(MainFrame& frame, u32 id)
{
    EXPECT_EQ(SendMessageW(frame.window, WM_COMMAND, id, 0), 0);
}

inline constexpr u32 FirstEffect = 41200;
inline constexpr u32 FirstAdjust = 41300;

inline RasterInfo InfoOf(Raster& raster)
{
    RasterInfo info = {};
    info.size = sizeof info;
    EXPECT_EQ(raster.GetInfo(&info), Done);
    return info;
}

/// 0xRRGGBB, or what no pixel is.
inline u32 PixelOf(Raster& raster, int x, int y)
{
    u32 color = 0;
    if (raster.GetPixel(x, y, &color) < Done)
        return 0xFFFFFFFF;
    raster.ReleaseLines(y, 1, 0);
    return color >> 8;
}

inline u32 Inverted(u32 color)
{
    return 0xFFFFFF - color;
}
inline u32 Halved(u32 color)
{
    return (color >> 17 & 127) << 16 | (color >> 9 & 127) << 8 | (color >> 1 & 127);
}
inline u32 Unchanged(u32 color)
{
    return color;
}

struct Area {
    int left;
    int top;
    int right; // inclusive
    int bottom;
    bool Holds(int x, int y) const { return x >= left && x <= right && y >= top && y <= bottom; }
};
inline constexpr Area Everywhere = {0, 0, 9999, 9999};

/// The test picture, of which `change` has been made inside an area.
inline void ExpectPicture(Raster& raster, u32 (*change)(u32) = Unchanged, Area area = Everywhere,
                          int width = PictureWidth, int height = PictureHeight)
{
    const RasterInfo info = InfoOf(raster);
    ASSERT_EQ(info.width, static_cast<u32>(width));
    ASSERT_EQ(info.height, static_cast<u32>(height));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const u32 color = TestColor(x, y);
            ASSERT_EQ(PixelOf(raster, x, y), area.Holds(x, y) ? change(color) : color)
                << x << ", " << y;
        }
}

/// Makes a selection as the tool does.
inline void Select(MainFrame& frame, f64 left, f64 top, f64 right, f64 bottom)
{
    frame.selectionLeft = left;
    frame.selectionTop = top;
    frame.selectionRight = right;
    frame.selectionBottom = bottom;
    frame.selectionActive = 1;
}

inline bool IsGray(HMENU menu, UINT item)
{
    const UINT state = GetMenuState(menu, item, MF_BYCOMMAND);
    EXPECT_NE(state, static_cast<UINT>(-1)) << item;
    return (state & MF_GRAYED) != 0;
}

inline bool CanUndo(MainFrame& frame)
{
    frame.FetchMenus();
    return !IsGray(frame.editMenu, 40205);
}

/// Whether there is a snapshot, whole or not.
inline bool HasSnapshot(MainFrame& frame)
{
    return InfoOf(frame.undoImage).depth != 0;
}

inline unsigned Beeps()
{
    return tavrix::platform::Hooks().beeps;
}

/// Answers every box and counts what came up, from its making to its end.
struct Answering {
    int answer = IDOK;
    size_t firstBox = BoxCalls().size();
    std::vector<std::u16string> headlines; // of the progress dialogs
    std::function<void()> onBox;           // before the answer

    explicit Answering(int boxAnswer = IDOK) : answer(boxAnswer)
    {
        OnModal([this](HWND dialog, bool box) {
            if (!box) {
                headlines.push_back(ControlText(dialog, ControlHeadline));
                return;
            }
            if (onBox)
                onBox();
            EndDialog(dialog, answer);
        });
    }
    ~Answering() { OnModal(nullptr); }
    Answering(const Answering&) = delete;
    Answering& operator=(const Answering&) = delete;

    std::vector<BoxCall> Boxes() const
    {
        return {BoxCalls().begin() + static_cast<std::ptrdiff_t>(firstBox), BoxCalls().end()};
    }
};

/// How many lines of paging pictures lie in files.
inline size_t LinesInFiles()
{
    size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(HostPath(TEXT("\\Temp")).c_str()))
        count += entry.path().extension() == ".tmp" ? 1 : 0;
    return count;
}

/// Whether other lines go out to files when one comes in and memory is short: not while all of them
/// are locked.
inline bool CanPage(Raster& raster)
{
    EXPECT_GE(raster.ReleaseLines(0, 1, 1), NothingDone);
    EXPECT_GE(LinesInFiles(), 1u);
    SetFreeMemory(1);
    MemoryGauge::Sample();
    u8* line = nullptr;
    (void)raster.LockLines(0, &line, nullptr);
    const size_t left = LinesInFiles();
    SetFreeMemory(64u << 20);
    MemoryGauge::Sample();
    return left > 0;
}

/// Exactly one box came, with these words and on the main window.
inline void ExpectOneBox(const MainFrame& frame, const Answering& answering,
                         const std::u16string& text, const std::u16string& caption, UINT flags)
{
    const std::vector<BoxCall> boxes = answering.Boxes();
    ASSERT_EQ(boxes.size(), 1u) << Utf8(text.c_str());
    EXPECT_EQ(boxes[0].text, text);
    EXPECT_EQ(boxes[0].caption, caption);
    EXPECT_EQ(boxes[0].flags, flags);
    EXPECT_EQ(boxes[0].owner, frame.window);
}

} // namespace flowtest
