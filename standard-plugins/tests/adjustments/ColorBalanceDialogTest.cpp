// What the dialog of color Balance asks.

#include "standard-plugins/color-balance/ColorBalanceIds.h"
#include "standard-plugins/tests/adjustments/AdjustDialog.h"

using namespace plugintest;

namespace plugintest
{

INSTANTIATE_TEST_SUITE_P(
    ColorBalance, AdjustDialog,
    testing::Values(DialogShape{
        "ColorBalance.dll",
        u"Color Balance",
        u"カラーバランス",
        {{u"ColorBalanceRedShadows", Asked::Trackbar, ControlRedShadows, 0, 200, 100,
          ControlRedShadowsNumber, u"-100", u"100", u"0"},
         {u"ColorBalanceRedMidtones", Asked::Trackbar, ControlRedMidtones, 0, 200, 100,
          ControlRedMidtonesNumber, u"-100", u"100", u"0"},
         {u"ColorBalanceRedHighlights", Asked::Trackbar, ControlRedHighlights, 0, 200, 100,
          ControlRedHighlightsNumber, u"-100", u"100", u"0"},
         {u"ColorBalanceGreenShadows", Asked::Trackbar, ControlGreenShadows, 0, 200, 100,
          ControlGreenShadowsNumber, u"-100", u"100", u"0"},
         {u"ColorBalanceGreenMidtones", Asked::Trackbar, ControlGreenMidtones, 0, 200, 100,
          ControlGreenMidtonesNumber, u"-100", u"100", u"0"},
         {u"ColorBalanceGreenHighlights", Asked::Trackbar, ControlGreenHighlights, 0, 200, 100,
          ControlGreenHighlightsNumber, u"-100", u"100", u"0"},
         {u"ColorBalanceBlueShadows", Asked::Trackbar, ControlBlueShadows, 0, 200, 100,
          ControlBlueShadowsNumber, u"-100", u"100", u"0"},
         {u"ColorBalanceBlueMidtones", Asked::Trackbar, ControlBlueMidtones, 0, 200, 100,
          ControlBlueMidtonesNumber, u"-100", u"100", u"0"},
         {u"ColorBalanceBlueHighlights", Asked::Trackbar, ControlBlueHighlights, 0, 200, 100,
          ControlBlueHighlightsNumber, u"-100", u"100", u"0"},
         {u"ColorBalanceKeepLightness", Asked::Check, ControlKeepLightness, 0, 1, 1}},
        ControlPreview}));

} // namespace plugintest
