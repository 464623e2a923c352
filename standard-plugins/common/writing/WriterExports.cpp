// The exports of an OUTPUT plugin.
#include "standard-plugins/common/device/PluginDialog.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/writing/Writer.h"

extern "C" {

TAVRIX_EXPORT int32_t TAVRIX_CALL GetPluginInfo(uint32_t index, TavrixChar* buffer,
                                                uint32_t capacity)
{
    return AnswerPluginInfo(writerPlugin.texts, index, buffer, capacity);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL SetLanguage(uint32_t language)
{
    return SetPluginLanguage(language);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL Configure(TavrixWindow owner, TavrixMessageCallback,
                                            TavrixPutPropertyCallback put,
                                            TavrixGetPropertyCallback get)
{
    const SettingsDialog& dialog = writerPlugin.dialog;
    return dialog.count == 0 ? PluginDone : AskSettings(dialog, owner, put, get);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL PutImage(const TavrixChar* path, PluginStreamRecord* stream,
                                           TavrixImageHandle image, RasterFunctionTable* rasters,
                                           PaletteFunctionTable* palettes,
                                           TavrixProgressCallback progress,
                                           TavrixMessageCallback message, TavrixPutPropertyCallback,
                                           TavrixGetPropertyCallback get)
{
    uint32_t values[mostDialogSettings];
    ReadSettings(writerPlugin.dialog, get, values);
    const WriteOutcome outcome = writerPlugin.write(
        {path, stream, image, rasters, palettes, progress, message, get, values});
    TellText(outcome.text ? *outcome.text : TextOf(outcome.problem), writerPlugin.texts.name,
             message);
    return ResultOf(outcome.problem);
}

} // extern "C"
