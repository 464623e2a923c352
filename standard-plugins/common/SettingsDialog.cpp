#include "standard-plugins/common/SettingsDialog.h"

void ReadSettings(const SettingsDialog& dialog, TavrixGetPropertyCallback get, uint32_t* values)
{
    for (uint32_t i = 0; i < dialog.count; ++i)
        values[i] = ReadSetting(dialog.settings[i].setting, get);
}
