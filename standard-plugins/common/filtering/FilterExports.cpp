// The exports of an EFFECT or ADJUST plugin. Only that of its own kind is let out by the linker.
#include "standard-plugins/common/filtering/Filter.h"
#include "standard-plugins/common/filtering/FilterRun.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/WriteProblem.h"

namespace
{

int32_t Process(TavrixImageHandle image, RasterFunctionTable* rasters,
                TavrixProgressCallback progress, TavrixMessageCallback message,
                TavrixGetPropertyCallback get)
{
    uint32_t values[mostDialogSettings];
    ReadSettings(filterPlugin.dialog, get, values);
    const WriteProblem problem = RunFilter(filterPlugin.work, {image, rasters, progress, values});
    TellProblem(problem, filterPlugin.caption, message);
    return ResultOf(problem);
}

} // namespace

extern "C" {

TAVRIX_EXPORT int32_t TAVRIX_CALL GetPluginInfo(uint32_t index, TavrixChar* buffer,
                                                uint32_t capacity)
{
    return AnswerPluginInfo(filterPlugin.texts, index, buffer, capacity);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL SetLanguage(uint32_t language)
{
    return SetPluginLanguage(language);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL Configure(TavrixWindow owner, TavrixImageHandle image,
                                            RasterFunctionTable* rasters, PaletteFunctionTable*,
                                            TavrixMessageCallback, TavrixPutPropertyCallback put,
                                            TavrixGetPropertyCallback get)
{
    return filterPlugin.configure ? filterPlugin.configure(owner, image, rasters, put, get)
                                  : PluginDone;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL Effect(TavrixImageHandle image, RasterFunctionTable* rasters,
                                         PaletteFunctionTable*, TavrixProgressCallback progress,
                                         TavrixMessageCallback message, TavrixPutPropertyCallback,
                                         TavrixGetPropertyCallback get)
{
    return Process(image, rasters, progress, message, get);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL AdjustImage(TavrixImageHandle image, RasterFunctionTable* rasters,
                                              PaletteFunctionTable*,
                                              TavrixProgressCallback progress,
                                              TavrixMessageCallback message,
                                              TavrixPutPropertyCallback,
                                              TavrixGetPropertyCallback get)
{
    return Process(image, rasters, progress, message, get);
}

} // extern "C"
