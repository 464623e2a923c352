// There are no windows here, and reading a picture asks nothing.
#include "standard-plugins/common/device/BackgroundDialog.h"

#include <cstdlib>

int32_t AskBackground(const BackgroundSettings&, TavrixWindow, TavrixPutPropertyCallback,
                      TavrixGetPropertyCallback)
{
    std::abort();
}
