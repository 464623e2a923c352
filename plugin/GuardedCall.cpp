#include "plugin/GuardedCall.h"

namespace
{

thread_local u32 callDepth = 0; // a call may lead to another, through a dialog's loop

struct ScopedDepth {
    ScopedDepth() { ++callDepth; }
    ~ScopedDepth() { --callDepth; }
    ScopedDepth(const ScopedDepth&) = delete;
    ScopedDepth& operator=(const ScopedDepth&) = delete;
};

} // namespace

bool IsInPluginCall()
{
    return callDepth != 0;
}

template <typename... Parameters>
i32 CallPlugin(i32(TAVRIX_CALL* function)(Parameters...),
               std::type_identity_t<Parameters>... arguments)
{
    const ScopedDepth depth;
    try {
        return function(arguments...);
    } catch (...) {
        return Failed;
    }
}

using TavrixRasters = RasterFunctionTable*;
using TavrixPalettes = PaletteFunctionTable*;

template i32 CallPlugin(TavrixGetPluginInfoFunction, u32, TavrixChar*, u32);
template i32 CallPlugin(TavrixSetLanguageFunction, u32);
template i32 CallPlugin(TavrixGetImageInfoFunction, const TavrixChar*, PluginStreamRecord*, void*);
template i32 CallPlugin(TavrixImageFunction, const TavrixChar*, PluginStreamRecord*,
                        TavrixImageHandle, TavrixRasters, TavrixPalettes, TavrixProgressCallback,
                        TavrixMessageCallback, TavrixPutPropertyCallback,
                        TavrixGetPropertyCallback);
template i32 CallPlugin(TavrixPrintFunction, TavrixImageHandle, TavrixRasters, TavrixPalettes,
                        TavrixWindow, u32, u32, u32, u32, const TavrixChar*, TavrixProgressCallback,
                        TavrixMessageCallback, TavrixPutPropertyCallback,
                        TavrixGetPropertyCallback);
template i32 CallPlugin(TavrixProcessFunction, TavrixImageHandle, TavrixRasters, TavrixPalettes,
                        TavrixProgressCallback, TavrixMessageCallback, TavrixPutPropertyCallback,
                        TavrixGetPropertyCallback);
template i32 CallPlugin(TavrixScaleFunction, TavrixImageHandle, TavrixRasters, TavrixPalettes, u32,
                        u32, TavrixProgressCallback, TavrixMessageCallback,
                        TavrixPutPropertyCallback, TavrixGetPropertyCallback);
template i32 CallPlugin(TavrixSubtractFunction, TavrixImageHandle, TavrixRasters, TavrixPalettes,
                        u32, TavrixProgressCallback, TavrixMessageCallback,
                        TavrixPutPropertyCallback, TavrixGetPropertyCallback);
template i32 CallPlugin(TavrixConfigureFunction, TavrixWindow, TavrixMessageCallback,
                        TavrixPutPropertyCallback, TavrixGetPropertyCallback);
template i32 CallPlugin(TavrixConfigureImageFunction, TavrixWindow, TavrixImageHandle,
                        TavrixRasters, TavrixPalettes, TavrixMessageCallback,
                        TavrixPutPropertyCallback, TavrixGetPropertyCallback);
