// What the dialog of levels asks.

#include "standard-plugins/levels/LevelsIds.h"
#include "standard-plugins/tests/adjustments/AdjustDialog.h"

using namespace plugintest;

namespace plugintest
{

INSTANTIATE_TEST_SUITE_P(Levels, AdjustDialog,
                         testing::Values(DialogShape{
                             "Levels.dll",
                             u"Levels",
                             u"レベル補正",
                             {{u"LevelsInputBlack", Asked::Trackbar, ControlInputBlack, 0, 255, 0,
                               ControlInputBlackNumber, u"0", u"255", u"0"},
                              {u"LevelsInputWhite", Asked::Trackbar, ControlInputWhite, 0, 255, 255,
                               ControlInputWhiteNumber, u"0", u"255", u"255"},
                              {u"LevelsGamma", Asked::Trackbar, ControlGamma, 10, 1000, 100,
                               ControlGammaNumber, u"0.10", u"10.00", u"1.00"},
                              {u"LevelsOutputBlack", Asked::Trackbar, ControlOutputBlack, 0, 255, 0,
                               ControlOutputBlackNumber, u"0", u"255", u"0"},
                              {u"LevelsOutputWhite", Asked::Trackbar, ControlOutputWhite, 0, 255,
                               255, ControlOutputWhiteNumber, u"0", u"255", u"255"}},
                             ControlPreview}));

} // namespace plugintest
