#include "kit/check/PluginUnderCheck.h"

#include "plugin/FunctionTables.h"
#include "plugin/ScopedStreamRecord.h"

namespace plugincheck
{

namespace
{

constexpr const WCHAR* PrintTitle = TEXT("Tavrix -image-");

} // namespace

PluginUnderCheck::PluginUnderCheck(plugincheck::Kind given)
    : PluginModule(nullptr, TEXT("")), kind(given)
{
}

bool PluginUnderCheck::Load(const std::u16string& path)
{
    return LoadLibraryFile(path.c_str()) > 0;
}

PluginUnderCheck::Address PluginUnderCheck::Find(const char* exportName) const
{
    const std::string narrow = exportName;
    const std::u16string name(narrow.begin(), narrow.end());
    Address address = nullptr;
    Bind(&address, name.c_str());
    return address;
}

i32 PluginUnderCheck::Resolve()
{
    return Done;
}

i32 PluginUnderCheck::Unresolve()
{
    return Done;
}

i32 PluginUnderCheck::Ask(u32 index, TavrixChar* buffer, u32 capacity)
{
    using Function = TavrixGetPluginInfoFunction;
    if (!Watch<Function>("GetPluginInfo"))
        return WrongState;
    return WatchedExport<Function>::Call(index, buffer, capacity);
}

i32 PluginUnderCheck::Language(u32 language)
{
    using Function = TavrixSetLanguageFunction;
    if (!Watch<Function>("SetLanguage"))
        return WrongState;
    return WatchedExport<Function>::Call(language);
}

i32 PluginUnderCheck::Configure(Raster* image)
{
    const PluginCallbacks calls = WatchedCallbacks();
    if (kind == Effect || kind == Adjust) {
        using Function = TavrixConfigureImageFunction;
        if (!Watch<Function>("Configure"))
            return WrongState;
        return CallInHeap(&WatchedExport<Function>::Call, image, nullptr, ToHandle(image),
                          &rasterFunctions, &paletteFunctions, calls.message, calls.put, calls.get);
    }
    using Function = TavrixConfigureFunction;
    if (!Watch<Function>("Configure"))
        return WrongState;
    if (kind == Print)
        return CallInHeap(&WatchedExport<Function>::Call, nullptr, nullptr, calls.message,
                          calls.put, calls.get);
    return WatchedExport<Function>::Call(nullptr, calls.message, calls.put, calls.get);
}

i32 PluginUnderCheck::ReadHeader(Stream* stream, void* info)
{
    using Function = TavrixGetImageInfoFunction;
    if (!Watch<Function>("GetImageInfo"))
        return WrongState;
    ScopedStreamRecord record(stream);
    return WatchedExport<Function>::Call(nullptr, record.Get(), info);
}

i32 PluginUnderCheck::Transfer(const char* exportName, const WCHAR* path, Stream* stream,
                               Raster* image)
{
    using Function = TavrixImageFunction;
    if (!Watch<Function>(exportName))
        return WrongState;
    return CallWithStream(&WatchedExport<Function>::Call, path, stream, image, WatchedCallbacks());
}

i32 PluginUnderCheck::Process(Raster* image)
{
    using Function = TavrixProcessFunction;
    const PluginCallbacks calls = WatchedCallbacks();
    if (!Watch<Function>(WorkExport(kind)))
        return WrongState;
    return CallInHeap(&WatchedExport<Function>::Call, image, ToHandle(image), &rasterFunctions,
                      &paletteFunctions, calls.progress, calls.message, calls.put, calls.get);
}

i32 PluginUnderCheck::Resize(Raster* image, u32 width, u32 height)
{
    using Function = TavrixScaleFunction;
    const PluginCallbacks calls = WatchedCallbacks();
    if (!Watch<Function>("ScaleImage"))
        return WrongState;
    return CallInHeap(&WatchedExport<Function>::Call, image, ToHandle(image), &rasterFunctions,
                      &paletteFunctions, width, height, calls.progress, calls.message, calls.put,
                      calls.get);
}

i32 PluginUnderCheck::Reduce(Raster* image, u32 argument)
{
    using Function = TavrixSubtractFunction;
    const PluginCallbacks calls = WatchedCallbacks();
    if (!Watch<Function>("SubtractImage"))
        return WrongState;
    return CallInHeap(&WatchedExport<Function>::Call, image, ToHandle(image), &rasterFunctions,
                      &paletteFunctions, argument, calls.progress, calls.message, calls.put,
                      calls.get);
}

i32 PluginUnderCheck::PrintImage(Raster* image)
{
    using Function = TavrixPrintFunction;
    const PluginCallbacks calls = WatchedCallbacks();
    if (!Watch<Function>("Print"))
        return WrongState;
    return CallInHeap(&WatchedExport<Function>::Call, image, ToHandle(image), &rasterFunctions,
                      &paletteFunctions, nullptr, 0U, 0U, 0U, 0U, PrintTitle, calls.progress,
                      calls.message, calls.put, calls.get);
}

} // namespace plugincheck
