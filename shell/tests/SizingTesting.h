// What the tests of New, Size and Resolution share: the answers to their dialogs, and pictures that
// are compared pixel by pixel with a formula.
#pragma once

#include "shell/tests/RoadTesting.h"

namespace sizingtest
{

using namespace roadtest;

inline constexpr u32 NewCommand = 40017;
inline constexpr u32 ResolutionCommand = 40005;
inline constexpr u32 SizeCommand = 40006;
inline constexpr u32 UndoCommand = 40205;
inline constexpr u32 FitCommand = 40020;

inline constexpr int WidthField = 1005;
inline constexpr int HeightField = 1006;
inline constexpr int AspectBox = 1013;

/// What stood in the fields when a dialog came up.
struct Offered {
    std::u16string width;
    std::u16string height;
};

/// A person who enters a size into each of these dialogs and ends it.
class Sizer : public Person
{
public:
    Sizer()
    {
        onDialog = [this](HWND dialog) { Answer(dialog); };
    }

    std::vector<Offered> offered;
    std::u16string width; // empty: as it stands
    std::u16string height;
    u32 anchor = 0;    // pressed, if it is none
    WPARAM end = IDOK; // the button that ends it
    bool keepsAspect = false;
    std::function<void(HWND dialog)> before; // what is done first

    void Enter(u32 newWidth, u32 newHeight, u32 newAnchor = 0)
    {
        width = Wide(std::to_string(newWidth));
        height = Wide(std::to_string(newHeight));
        anchor = newAnchor;
    }

private:
    void Answer(HWND dialog)
    {
        offered.push_back({ControlText(dialog, WidthField), ControlText(dialog, HeightField)});
        if (before)
            before(dialog);
        if (GetDlgItem(dialog, AspectBox) != nullptr && !keepsAspect)
            ClickControl(dialog, AspectBox);
        if (!width.empty())
            SetDlgItemTextW(dialog, WidthField, width.c_str());
        if (!height.empty())
            SetDlgItemTextW(dialog, HeightField, height.c_str());
        if (anchor != 0)
            ClickControl(dialog, static_cast<int>(anchor));
        PostMessageW(dialog, WM_COMMAND, end, 0);
    }
};

/// Makes the document anew by the formula of the test pictures.
inline void Paint(MainFrame& frame, int width, int height)
{
    ASSERT_EQ(frame.image->Create(static_cast<u32>(width), static_cast<u32>(height), 24, nullptr,
                                  nullptr),
              Done);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            ASSERT_EQ(frame.image->SetPixel(x, y, TestColor(x, y) << 8 | 0xFF), Done);
    frame.image->UnlockAll();
    frame.imagePresent = 1;
    frame.InitializeView();
}

/// The document is of that size, and each pixel as the function says, 0xRRGGBB.
inline void ExpectPixels(MainFrame& frame, int width, int height,
                         const std::function<u32(int x, int y)>& expected)
{
    const RasterInfo info = InfoOf(*frame.image);
    ASSERT_EQ(info.width, static_cast<u32>(width));
    ASSERT_EQ(info.height, static_cast<u32>(height));
    ASSERT_EQ(info.depth, 24u);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            ASSERT_EQ(PixelOf(*frame.image, x, y), expected(x, y)) << x << ", " << y;
}

/// The device screen shows the whole document at full size, where a picture of its size lies, and
/// black around it. For documents that are smaller than the view.
inline void ExpectOnScreen(MainFrame& frame, int width, int height)
{
    const Picture screen = ScreenPixels();
    const int bar = static_cast<int>(frame.clientOriginY);
    const f64 left = -frame.scrollX;
    const f64 top = bar - frame.scrollY;
    EXPECT_EQ(left, (640 - width) * 0.5);
    EXPECT_EQ(top, bar + (frame.viewHeight - height) * 0.5);
    for (int y = bar; y < 480; ++y)
        for (int x = 0; x < 640; ++x) {
            const int column = x - static_cast<int>(left);
            const int row = y - static_cast<int>(top);
            const bool inside = column >= 0 && row >= 0 && column < width && row < height;
            ASSERT_EQ(screen.At(x, y), inside ? PixelOf(*frame.image, column, row) : 0)
                << x << ", " << y;
        }
}

/// The settings of a run that can undo, without the windows that lie over the picture.
inline void UndoAndNoToolWindows()
{
    WriteSettings(u"[Tavrix]\r\nEnableUndo=1\r\nShowToolbox=0\r\nShowColorbox=0\r\n");
}

} // namespace sizingtest
