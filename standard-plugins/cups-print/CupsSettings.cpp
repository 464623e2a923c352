#include "standard-plugins/cups-print/CupsSettings.h"

#include "standard-plugins/common/pdf/PageSettings.h"
#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/cups-print/Utf8.h"

namespace
{

const PageSettingKeys pageKeys = PAGE_SETTINGS("CupsPrint", printerPapers);
const PluginSetting copiesSetting = {PLUGIN_TEXT("CupsPrintCopies"), 1, mostCopies, 1};
const TavrixChar printerKey[] = PLUGIN_TEXT("CupsPrintPrinter");

PrinterName ReadPrinter(TavrixGetPropertyCallback get)
{
    PrinterName name = {};
    Variant item = {};
    item.name = printerKey;
    item.type = VariantWide;
    if (!get || get(&item) < 1 || item.type != VariantWide || !item.value)
        return name;
    if (!ToUtf8(reinterpret_cast<const TavrixChar*>(item.value), name.text, sizeof name.text))
        name = {};
    return name;
}

// An empty text would come back as a key without a value.
bool StorePrinter(const PrinterName& name, TavrixPutPropertyCallback put)
{
    TavrixChar text[sizeof name.text];
    if (!put || !name.text[0] || !ToWide(name.text, text, sizeof text / sizeof *text))
        return false;
    Variant item = {};
    item.name = printerKey;
    item.type = VariantWide;
    item.value = reinterpret_cast<uintptr_t>(text);
    return put(&item) >= 1;
}

} // namespace

void ReadCupsSettings(CupsSettings* settings, TavrixGetPropertyCallback get)
{
    settings->printer = ReadPrinter(get);
    settings->page = ReadPageSettings(pageKeys, get);
    settings->copies = ReadSetting(copiesSetting, get);
}

bool StoreCupsSettings(const CupsSettings& settings, TavrixPutPropertyCallback put)
{
    return StorePrinter(settings.printer, put) && StorePageSettings(pageKeys, settings.page, put) &&
           StoreSetting(copiesSetting, settings.copies, put);
}
