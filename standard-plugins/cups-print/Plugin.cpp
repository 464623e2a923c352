// The exports of the printer plugin.
#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/WriteProblem.h"
#include "standard-plugins/cups-print/CupsDialog.h"
#include "standard-plugins/cups-print/CupsPrinting.h"
#include "standard-plugins/cups-print/PluginName.h"

namespace
{

const PluginTexts texts = {
    PLUGIN_TEXT("TX_PRINT"),
    pluginName,
    PLUGIN_TEXT("1.0"),
    PLUGIN_TEXT("2026-11-22"),
    {PLUGIN_TEXT("Prints the picture on a printer of the printing system CUPS."),
     PLUGIN_TEXT("印刷システム CUPS のプリンタで画像を印刷します。")},
    nullptr,
    0,
};

// The connection is not kept while the user thinks.
CupsProblem GetPrinters(PrinterList* printers)
{
    CupsServer server;
    CupsProblem problem = OpenServer(&server);
    if (problem == CupsProblem::None)
        problem = ListPrinters(&server, printers);
    CloseServer(&server);
    return problem;
}

} // namespace

extern "C" {

TAVRIX_EXPORT int32_t TAVRIX_CALL GetPluginInfo(uint32_t index, TavrixChar* buffer,
                                                uint32_t capacity)
{
    return AnswerPluginInfo(texts, index, buffer, capacity);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL SetLanguage(uint32_t language)
{
    return SetPluginLanguage(language);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL Configure(TavrixWindow owner, TavrixMessageCallback message,
                                            TavrixPutPropertyCallback put,
                                            TavrixGetPropertyCallback get)
{
    if (!put || !get)
        return PluginBadArgument;
    PrinterList printers = {};
    const CupsProblem problem = GetPrinters(&printers);
    if (problem != CupsProblem::None) {
        TellText(TextOf(problem), pluginName, message);
        // With a failure the host would go on and print.
        return PluginNothing;
    }
    CupsSettings settings;
    ReadCupsSettings(&settings, get);
    int32_t result = AskCupsSettings(&settings, printers, owner);
    FreePrinters(&printers);
    if (result == PluginDone && !StoreCupsSettings(settings, put))
        result = PluginFailed;
    return result;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL Print(TavrixImageHandle image, RasterFunctionTable* rasters,
                                        PaletteFunctionTable* palettes, TavrixWindow, uint32_t,
                                        uint32_t, uint32_t, uint32_t, const TavrixChar* title,
                                        TavrixProgressCallback progress,
                                        TavrixMessageCallback message, TavrixPutPropertyCallback,
                                        TavrixGetPropertyCallback get)
{
    return PrintPicture({image, rasters, palettes, title, progress, message, get});
}

} // extern "C"
