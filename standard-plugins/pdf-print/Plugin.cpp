// The exports of the PDF printer.
#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/pdf-print/PdfPrinting.h"
#include "standard-plugins/pdf-print/PluginName.h"
#include "standard-plugins/pdf-print/PrintDialog.h"

namespace
{

const PluginTexts texts = {
    PLUGIN_TEXT("TX_PRINT"),
    pluginName,
    PLUGIN_TEXT("1.0"),
    PLUGIN_TEXT("2026-11-21"),
    {PLUGIN_TEXT("Prints the picture to a PDF file of one page, without loss."),
     PLUGIN_TEXT("画像を 1 ページの PDF ファイルに劣化なしで印刷します。")},
    nullptr,
    0,
};

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

TAVRIX_EXPORT int32_t TAVRIX_CALL Configure(TavrixWindow owner, TavrixMessageCallback,
                                            TavrixPutPropertyCallback put,
                                            TavrixGetPropertyCallback get)
{
    if (!put || !get)
        return PluginBadArgument;
    PrintSettings settings;
    ReadPrintSettings(&settings, get);
    const int32_t result = AskPrintSettings(&settings, owner);
    if (result != PluginDone)
        return result;
    return StorePrintSettings(settings, put) ? PluginDone : PluginFailed;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL Print(TavrixImageHandle image, RasterFunctionTable* rasters,
                                        PaletteFunctionTable* palettes, TavrixWindow, uint32_t,
                                        uint32_t, uint32_t, uint32_t, const TavrixChar* title,
                                        TavrixProgressCallback progress,
                                        TavrixMessageCallback message,
                                        TavrixPutPropertyCallback put,
                                        TavrixGetPropertyCallback get)
{
    return PrintPicture({image, rasters, palettes, title, progress, message, put, get});
}

} // extern "C"
