// What the dialog of greyscale asks.

#include "standard-plugins/greyscale/GreyscaleIds.h"
#include "standard-plugins/tests/adjustments/AdjustDialog.h"

using namespace plugintest;

namespace plugintest
{

INSTANTIATE_TEST_SUITE_P(Greyscale, AdjustDialog,
                         testing::Values(DialogShape{
                             "Greyscale.dll",
                             u"Greyscale",
                             u"グレースケール",
                             {{u"GreyscaleLuma", Asked::Choice, ControlLuma601, 0, 2, 0}},
                             ControlPreview}));

} // namespace plugintest
