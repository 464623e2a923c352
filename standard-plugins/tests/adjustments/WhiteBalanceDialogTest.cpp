// What the dialog of white Balance asks.

#include "standard-plugins/tests/adjustments/AdjustDialog.h"
#include "standard-plugins/white-balance/WhiteBalanceIds.h"

using namespace plugintest;
using namespace tavrix::testing;

namespace plugintest
{

static const DialogShape shape =
    DialogShape{"WhiteBalance.dll",
                u"White Balance",
                u"ホワイトバランス",
                {{u"WhiteBalanceRed", Asked::Trackbar, ControlRed, 0, 255, 255, ControlRedNumber,
                  u"0", u"255", u"255"},
                 {u"WhiteBalanceGreen", Asked::Trackbar, ControlGreen, 0, 255, 255,
                  ControlGreenNumber, u"0", u"255", u"255"},
                 {u"WhiteBalanceBlue", Asked::Trackbar, ControlBlue, 0, 255, 255, ControlBlueNumber,
                  u"0", u"255", u"255"},
                 {u"WhiteBalanceAutomatic", Asked::Check, ControlAutomatic, 0, 1, 0}},
                ControlPreview};

INSTANTIATE_TEST_SUITE_P(WhiteBalance, AdjustDialog, testing::Values(shape));

} // namespace plugintest

namespace
{

class WhiteBalanceDialog : public AdjustDialog
{
protected:
    void TouchPixel(HWND dialog, u32 x, u32 y)
    {
        const POINT at = PlaceOfPixel(dialog, x, y);
        ClickScreen(static_cast<int>(at.x), static_cast<int>(at.y));
        Pump(10);
    }
    static std::vector<u32> ColorAt(u32 x, u32 y)
    {
        return {Wild(x, y, 0), Wild(x, y, 1), Wild(x, y, 2), 0};
    }
};

INSTANTIATE_TEST_SUITE_P(Alone, WhiteBalanceDialog, testing::Values(shape));

} // namespace

TEST_P(WhiteBalanceDialog, TouchInThePreviewTakesThePixelAsItWasForGrey)
{
    for (const u32 language : {9u, 17u}) {
        Set(u"WhiteBalanceAutomatic", 1);
        EXPECT_EQ(Ask(language,
                      [&](HWND dialog) {
                          TouchPixel(dialog, 7, 3);
                          EXPECT_EQ(Shown(dialog), ColorAt(7, 3)) << "not automatic any more";
                          const Pixels first = PreviewOf(dialog);
                          TouchPixel(dialog, 0, 0);
                          EXPECT_EQ(Shown(dialog), ColorAt(0, 0));
                          EXPECT_NE(PreviewOf(dialog), first);
                          TouchPixel(dialog, width - 1, height - 1);
                          Press(dialog, IDOK);
                      }),
                  1);
        EXPECT_EQ(StoredValues(), ColorAt(width - 1, height - 1));
    }
}

TEST_P(WhiteBalanceDialog, TouchBesideThePictureTakesNothing)
{
    EXPECT_EQ(Ask(9,
                  [&](HWND dialog) {
                      const std::vector<u32> before = Shown(dialog);
                      TouchPixel(dialog, width, 3);
                      TouchPixel(dialog, 3, height);
                      TouchPixel(dialog, static_cast<u32>(-1), 3);
                      TouchPixel(dialog, 3, static_cast<u32>(-1));
                      EXPECT_EQ(Shown(dialog), before);
                      Press(dialog, IDCANCEL);
                  }),
              0);
}
