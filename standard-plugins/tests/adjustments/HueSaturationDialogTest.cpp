// What the dialog of hue and Saturation asks.

#include "standard-plugins/hue-saturation/HueSaturationIds.h"
#include "standard-plugins/tests/adjustments/AdjustDialog.h"

using namespace plugintest;

namespace plugintest
{

INSTANTIATE_TEST_SUITE_P(HueSaturation, AdjustDialog,
                         testing::Values(DialogShape{
                             "HueSaturation.dll",
                             u"Hue and Saturation",
                             u"色相と彩度",
                             {{u"HueSaturationHue", Asked::Trackbar, ControlHue, 0, 360, 180,
                               ControlHueNumber, u"-180", u"180", u"0"},
                              {u"HueSaturationSaturation", Asked::Trackbar, ControlSaturation, 0,
                               200, 100, ControlSaturationNumber, u"-100", u"100", u"0"},
                              {u"HueSaturationLightness", Asked::Trackbar, ControlLightness, 0, 200,
                               100, ControlLightnessNumber, u"-100", u"100", u"0"}},
                             ControlPreview}));

} // namespace plugintest
