// What the dialog of threshold asks.

#include "standard-plugins/tests/adjustments/AdjustDialog.h"
#include "standard-plugins/threshold/ThresholdIds.h"

using namespace plugintest;

namespace plugintest
{

INSTANTIATE_TEST_SUITE_P(Threshold, AdjustDialog,
                         testing::Values(DialogShape{
                             "Threshold.dll",
                             u"Threshold",
                             u"2 階調化",
                             {{u"ThresholdLevel", Asked::Trackbar, ControlLevel, 1, 255, 128,
                               ControlLevelNumber, u"1", u"255", u"128"},
                              {u"ThresholdAutomatic", Asked::Check, ControlAutomatic, 0, 1, 0}},
                             ControlPreview}));

} // namespace plugintest
