// What the dialog of automatic Levels asks.

#include "standard-plugins/auto-levels/AutoLevelsIds.h"
#include "standard-plugins/tests/adjustments/AdjustDialog.h"

using namespace plugintest;

namespace plugintest
{

INSTANTIATE_TEST_SUITE_P(AutoLevels, AdjustDialog,
                         testing::Values(DialogShape{
                             "AutoLevels.dll",
                             u"Automatic Levels",
                             u"自動レベル補正",
                             {{u"AutoLevelsClip", Asked::Trackbar, ControlClip, 0, 500, 10,
                               ControlClipNumber, u"0.00", u"5.00", u"0.10"},
                              {u"AutoLevelsPerChannel", Asked::Check, ControlPerChannel, 0, 1, 1}},
                             ControlPreview}));

} // namespace plugintest
