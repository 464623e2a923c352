// The plugin under check, loaded and called by the host's own class for plugins: heap, tables,
// streams and handles are the program's. Between the two stands the watch (WatchedExport.h).
//
// Ask, Language and Configure are called on the main thread, the others on a worker, as the host
// does; one call at a time.
#pragma once

#include "kit/check/Kinds.h"
#include "kit/check/WatchedExport.h"
#include "plugin/PluginModule.h"

#include <string>

namespace plugincheck
{

class PluginUnderCheck final : public PluginModule
{
public:
    /// KindCount where the kind is not known.
    explicit PluginUnderCheck(plugincheck::Kind kind);

    /// Loads the library behind a path of the device. False when the host cannot.
    bool Load(const std::u16string& path);
    bool Has(const char* exportName) const { return Find(exportName) != nullptr; }

    // WrongState without the export.
    i32 Ask(u32 index, TavrixChar* buffer, u32 capacity);
    i32 Language(u32 language);
    /// With a picture for EFFECT and ADJUST.
    i32 Configure(Raster* image);

    i32 ReadHeader(Stream* stream, void* info);
    /// GetImage, GetImageFast or PutImage.
    i32 Transfer(const char* exportName, const WCHAR* path, Stream* stream, Raster* image);
    /// Effect, AdjustImage.
    i32 Process(Raster* image);
    i32 Resize(Raster* image, u32 width, u32 height);
    i32 Reduce(Raster* image, u32 argument);
    i32 PrintImage(Raster* image);

private:
    using Address = void (*)();
    Address Find(const char* exportName) const;
    i32 Resolve() override;
    i32 Unresolve() override;

    /// Puts the watch before the export; false when the plugin lacks it.
    template <typename Function>
    bool Watch(const char* exportName)
    {
        WatchedExport<Function>::real = reinterpret_cast<Function>(Find(exportName));
        WatchedExport<Function>::name = exportName;
        return WatchedExport<Function>::real != nullptr;
    }

    plugincheck::Kind kind; // the base has an operation of that name
};

} // namespace plugincheck
