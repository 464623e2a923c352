// What the tests with real peers share: pictures whose every pixel is known, as the program holds
// them, and a person who answers the dialog for an address by the keyboard.
#pragma once

#include "foundation/Result.h"
#include "platform/testing/core/TestHome.h"
#include "platform/testing/Wire.h"
#include "resources/Ids.h"
#include "tests/support/Daemon.h"
#include "tests/support/DeviceCalls.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace wirepictures
{

using namespace tavrix::testing;

/// A formula, how far a channel may be from it, and how much of the edge of each square of 16
/// pixels is not looked at: there a JPEG mixes the colours of two.
struct Formula {
    uint32_t (*color)(int x, int y);
    int most = 0;
    int edge = 0;

    bool Tells(int x, int y) const
    {
        return std::min({x % 16, 15 - x % 16, y % 16, 15 - y % 16}) >= edge;
    }
    bool Fits(int x, int y, uint32_t found) const
    {
        const uint32_t expected = color(x, y);
        for (const int shift : {0, 8, 16})
            if (std::abs(static_cast<int>(found >> shift & 255) -
                         static_cast<int>(expected >> shift & 255)) > most)
                return false;
        return true;
    }
};
inline constexpr Formula Png = {TestColor};
inline constexpr Formula Jpeg = {TestSquareColor, 4, 2};

/// The picture has this size and the formula's pixels.
inline void ExpectPicture(MainFrame& frame, int width, int height, const Formula& formula)
{
    RasterInfo info = {};
    info.size = sizeof info;
    ASSERT_EQ(frame.image->GetInfo(&info), Done);
    ASSERT_EQ(info.width, static_cast<u32>(width));
    ASSERT_EQ(info.height, static_cast<u32>(height));
    ASSERT_EQ(info.depth, 24u);
    for (int y = 0; y < height; ++y) {
        u8* line = nullptr;
        ASSERT_EQ(frame.image->LockLines(y, &line, nullptr), Done);
        for (int x = 0; x < width; ++x) {
            const u8* pixel = line + x * 3;
            const uint32_t found = uint32_t{pixel[2]} << 16 | uint32_t{pixel[1]} << 8 | pixel[0];
            if (formula.Tells(x, y)) {
                ASSERT_TRUE(formula.Fits(x, y, found))
                    << x << ", " << y << std::hex << " " << found;
            }
        }
        frame.image->ReleaseLines(y, 1, 0);
    }
}

/// The same on the screen, where it lies in the middle of the view: it is seen and not only held.
inline void ExpectSeen(MainFrame& frame, int width, int height, const Formula& formula)
{
    Pump(50);
    const Picture screen = ScreenPixels();
    const int bar = static_cast<int>(frame.clientOriginY);
    const int left = (screen.width - width) / 2;
    const int top = bar + (screen.height - bar - 1 - height) / 2;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (formula.Tells(x, y)) {
                ASSERT_TRUE(formula.Fits(x, y, screen.At(left + x, top + y))) << x << ", " << y;
            }
}

/// Answers boxes, notes the job's headlines, and types an address where one is asked for.
class Person
{
public:
    std::u16string address; // typed next
    std::vector<std::u16string> boxes;
    std::vector<std::u16string> headlines;

    Person()
    {
        OnModal([this](HWND dialog, bool box) {
            if (box) {
                boxes.push_back(BoxCaption(dialog) + u": " + BoxText(dialog));
                EndDialog(dialog, IDOK);
            } else if (GetDlgItem(dialog, ControlProgressBar) != nullptr) {
                headlines.push_back(ControlText(dialog, ControlHeadline));
            } else if (GetDlgItem(dialog, ControlUrl) != nullptr) {
                Pump(20);
                CommitText(address); // over what stands there
                TypeKey(VK_RETURN);
            } else {
                ADD_FAILURE() << "an unexpected dialog";
                PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            }
        });
    }
    ~Person() { OnModal(nullptr); }
    Person(const Person&) = delete;
    Person& operator=(const Person&) = delete;

    void Visit(MainFrame& frame, const std::string& page)
    {
        address = Wide("http://" + OwnAddress() + page);
        SendMessageW(frame.window, WM_COMMAND, CommandOpenUrl, 0);
    }
    /// The boxes since the last time, each as "caption: text".
    std::vector<std::u16string> TakeBoxes() { return std::exchange(boxes, {}); }
};

inline const std::u16string notReadable =
    u"Failed to load an image file, might be broken or unknown-format.";

} // namespace wirepictures
