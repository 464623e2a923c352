#include "standard-plugins/common/PluginSettings.h"

uint32_t ReadSetting(const PluginSetting& setting, TavrixGetPropertyCallback get)
{
    Variant item = {};
    item.name = setting.key;
    item.type = VariantUnsigned;
    if (!get || get(&item) < 1 || item.type != VariantUnsigned)
        return setting.standard;
    if (item.value < setting.least)
        return setting.least;
    return item.value > setting.most ? setting.most : static_cast<uint32_t>(item.value);
}

bool StoreSetting(const PluginSetting& setting, uint32_t value, TavrixPutPropertyCallback put)
{
    Variant item = {};
    item.name = setting.key;
    item.type = VariantUnsigned;
    item.value = value;
    return put && put(&item) >= 1;
}
