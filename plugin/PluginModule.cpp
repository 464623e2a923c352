#include "plugin/PluginModule.h"

#include "foundation/Language.h"
#include "plugin/FunctionTables.h"
#include "plugin/PluginObjects.h"
#include "plugin/ScopedStreamRecord.h"

#include <handheld.h>

#include <new>

namespace
{

constexpr u32 JapaneseLanguage = 17; // the primary language number that plugins are told

} // namespace

PluginModule::PluginModule(Allocator* allocator, const WCHAR* word)
    : getPluginInfo(nullptr), kindWord(word), paths(new (std::nothrow) PluginPathList(allocator)),
      count(-1), current(-1), library(nullptr), setLanguage(nullptr)
{
    WriteTables();
}

PluginModule::~PluginModule()
{
    count = -1;
    current = -1;
    (void)Unload();
    delete paths;
    rasterFunctions = {};
    paletteFunctions = {};
}

i32 PluginModule::LoadLibraryFile(const WCHAR* path)
{
    if (path == nullptr)
        return Failed;
    (void)Unload();
    library = LoadLibraryW(path);
    return library == nullptr ? Failed : Done;
}

i32 PluginModule::Unload()
{
    (void)Unresolve();
    setLanguage = nullptr;
    getPluginInfo = nullptr;
    if (library != nullptr)
        FreeLibrary(library);
    library = nullptr;
    return Done;
}

i32 PluginModule::LoadByIndex(u32 index, u32 language)
{
    if (count < 0 || index >= static_cast<u32>(count))
        return Failed;
    const i32 result = LoadLibraryFile(Path(index));
    if (result < 0) {
        current = -1;
        return result;
    }
    current = static_cast<i32>(index);
    Bind(&setLanguage, TEXT("SetLanguage"));
    if (setLanguage != nullptr) {
        if (language != 0)
            (void)CallPlugin(setLanguage, language);
        else if (IsJapanese())
            (void)CallPlugin(setLanguage, JapaneseLanguage);
    }
    Bind(&getPluginInfo, TEXT("GetPluginInfo"));
    return Resolve();
}

i32 PluginModule::Info(u32 index, WCHAR* buffer, u32 capacity)
{
    if (buffer == nullptr || capacity == 0)
        return BadArgument;
    if (getPluginInfo == nullptr)
        return WrongState;
    const i32 result = CallPlugin(getPluginInfo, index, buffer, capacity);
    // A plugin that fills the buffer to its end without a zero must not lead readers past it.
    buffer[capacity - 1] = 0;
    return result;
}

const WCHAR* PluginModule::Path(u32 index) const
{
    return paths == nullptr ? nullptr : paths->Get(index);
}

i32 PluginModule::Unresolve()
{
    return Failed;
}

i32 PluginModule::CallWithStream(TavrixImageFunction function, const WCHAR* path, Stream* stream,
                                 Raster* image, const PluginCallbacks& callbacks)
{
    if (function == nullptr)
        return WrongState;
    if (BeginCall(image) < 0)
        return NoMemory;
    i32 result;
    {
        ScopedStreamRecord record(stream);
        result = CallPlugin(function, record.PathOrNull(path), record.Get(), ToHandle(image),
                            &rasterFunctions, &paletteFunctions, callbacks.progress,
                            callbacks.message, callbacks.put, callbacks.get);
    }
    (void)DropHeap();
    return result;
}

i32 PluginModule::BeginCall(Raster* image)
{
    if (MakeHeap() < Done)
        return NoMemory;
    LendPluginImage(image);
    WriteTables();
    return Done;
}

void PluginModule::WriteTables()
{
    WriteRasterFunctions(&rasterFunctions);
    WritePaletteFunctions(&paletteFunctions);
}

PluginModule::AnyFunction PluginModule::FindExport(const WCHAR* name) const
{
    if (library == nullptr)
        return nullptr;
    return reinterpret_cast<AnyFunction>(GetProcAddressW(library, name));
}

u32 PluginModule::PathCount() const
{
    return paths == nullptr ? 0 : paths->Count();
}
