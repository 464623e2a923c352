#include "standard-plugins/common/reading/Background.h"

Background ReadBackground(const BackgroundSettings& settings, TavrixGetPropertyCallback get)
{
    return {static_cast<uint8_t>(ReadSetting(settings.red, get)),
            static_cast<uint8_t>(ReadSetting(settings.green, get)),
            static_cast<uint8_t>(ReadSetting(settings.blue, get))};
}
