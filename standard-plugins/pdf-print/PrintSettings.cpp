#include "standard-plugins/pdf-print/PrintSettings.h"

#include "standard-plugins/common/pdf/PageSettings.h"
#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/PluginSettings.h"
#include "standard-plugins/pdf-print/FileNames.h"

#include <string.h>

namespace
{

const PageSettingKeys pageKeys = PAGE_SETTINGS("PdfPrint", PaperCount);
const PluginSetting replaceSetting = {PLUGIN_TEXT("PdfPrintReplace"), 0, 1, 0};
const TavrixChar fileKey[] = PLUGIN_TEXT("PdfPrintFile");
const TavrixChar standardFile[] = PLUGIN_TEXT("\\My Documents\\Tavrix.pdf");

bool ReadFileName(TavrixChar (&file)[MAX_PATH], TavrixGetPropertyCallback get)
{
    Variant item = {};
    item.name = fileKey;
    item.type = VariantWide;
    if (!get || get(&item) < 1 || item.type != VariantWide || !item.value)
        return false;
    // The store's text goes at the next change of its key, so it is copied.
    const auto* text = reinterpret_cast<const TavrixChar*>(item.value);
    uint32_t length = 0;
    for (; text[length]; ++length) {
        if (length + 1 == MAX_PATH)
            return false;
        file[length] = text[length];
    }
    file[length] = 0;
    return IsFilePath(file);
}

bool StoreFileName(const TavrixChar* file, TavrixPutPropertyCallback put)
{
    Variant item = {};
    item.name = fileKey;
    item.type = VariantWide;
    item.value = reinterpret_cast<uintptr_t>(file);
    return put && put(&item) >= 1;
}

} // namespace

void ReadPrintSettings(PrintSettings* settings, TavrixGetPropertyCallback get)
{
    *settings = {};
    settings->page = ReadPageSettings(pageKeys, get);
    if (ReadFileName(settings->file, get))
        settings->mayReplace = ReadSetting(replaceSetting, get) != 0;
    else
        memcpy(settings->file, standardFile, sizeof standardFile);
}

bool StorePrintSettings(const PrintSettings& settings, TavrixPutPropertyCallback put)
{
    // The agreement last: it must never stand beside a path that it was not given for.
    return StoreSetting(replaceSetting, 0, put) &&
           StorePageSettings(pageKeys, settings.page, put) && StoreFileName(settings.file, put) &&
           (!settings.mayReplace || StoreSetting(replaceSetting, 1, put));
}

void EndReplacing(TavrixPutPropertyCallback put)
{
    (void)StoreSetting(replaceSetting, 0, put);
}
