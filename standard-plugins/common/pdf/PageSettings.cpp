#include "standard-plugins/common/pdf/PageSettings.h"

PageSettings ReadPageSettings(const PageSettingKeys& keys, TavrixGetPropertyCallback get)
{
    PageSettings page = {};
    page.paper = ReadSetting(keys.paper, get);
    page.orientation = ReadSetting(keys.orientation, get);
    page.margin = ReadSetting(keys.margin, get);
    page.fitsPage = ReadSetting(keys.fit, get) != 0;
    page.resolution = ReadSetting(keys.resolution, get);
    return page;
}

bool StorePageSettings(const PageSettingKeys& keys, const PageSettings& page,
                       TavrixPutPropertyCallback put)
{
    return StoreSetting(keys.paper, page.paper, put) &&
           StoreSetting(keys.orientation, page.orientation, put) &&
           StoreSetting(keys.margin, page.margin, put) &&
           StoreSetting(keys.fit, page.fitsPage, put) &&
           StoreSetting(keys.resolution, page.resolution, put);
}
