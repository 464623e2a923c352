// What the dialog of curves asks.

#include "standard-plugins/curves/CurvesIds.h"
#include "standard-plugins/tests/adjustments/AdjustDialog.h"

using namespace plugintest;

namespace plugintest
{

INSTANTIATE_TEST_SUITE_P(Curves, AdjustDialog,
                         testing::Values(DialogShape{
                             "Curves.dll",
                             u"Curves",
                             u"トーンカーブ",
                             {{u"Curves0", Asked::Trackbar, ControlAt0, 0, 255, 0, ControlAt0Number,
                               u"0", u"255", u"0"},
                              {u"Curves64", Asked::Trackbar, ControlAt64, 0, 255, 64,
                               ControlAt64Number, u"0", u"255", u"64"},
                              {u"Curves128", Asked::Trackbar, ControlAt128, 0, 255, 128,
                               ControlAt128Number, u"0", u"255", u"128"},
                              {u"Curves192", Asked::Trackbar, ControlAt192, 0, 255, 192,
                               ControlAt192Number, u"0", u"255", u"192"},
                              {u"Curves255", Asked::Trackbar, ControlAt255, 0, 255, 255,
                               ControlAt255Number, u"0", u"255", u"255"},
                              {u"CurvesChannel", Asked::Choice, ControlAllChannels, 0, 3, 0}},
                             ControlPreview}));

} // namespace plugintest
