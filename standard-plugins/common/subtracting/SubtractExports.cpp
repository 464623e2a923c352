// The exports of a SUBTRACT plugin.
#include "standard-plugins/common/subtracting/Subtractor.h"
#include "standard-plugins/common/subtracting/SubtractRun.h"

extern "C" {

TAVRIX_EXPORT int32_t TAVRIX_CALL GetPluginInfo(uint32_t index, TavrixChar* buffer,
                                                uint32_t capacity)
{
    return AnswerPluginInfo(subtractPlugin.texts, index, buffer, capacity);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL SetLanguage(uint32_t language)
{
    return SetPluginLanguage(language);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL SubtractImage(TavrixImageHandle image,
                                                RasterFunctionTable* rasters, PaletteFunctionTable*,
                                                uint32_t, TavrixProgressCallback progress,
                                                TavrixMessageCallback message,
                                                TavrixPutPropertyCallback,
                                                TavrixGetPropertyCallback get)
{
    const bool diffuses = ReadSetting(subtractPlugin.diffusion, get) != 0;
    const uint32_t choice = ReadSetting(subtractPlugin.choice, get);
    ReducedPalette palette;
    if (subtractPlugin.fill)
        subtractPlugin.fill(choice, &palette);
    const WriteProblem problem = RunSubtraction(
        {image, rasters, progress, diffuses, choice, subtractPlugin.fill ? &palette : nullptr});
    TellProblem(problem, subtractPlugin.texts.name, message);
    return ResultOf(problem);
}

} // extern "C"
