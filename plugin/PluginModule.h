// The plugins of one kind: where they are, and the one that is loaded. Libraries are looked for
// once, at the start; each is then loaded for a single use and unloaded right after, so that no
// plugin takes memory while a picture is edited.
//
// A use: LoadByIndex, what the kind's class offers, Unload. Scanning, loading and unloading belong
// to the user-interface thread; a processing export runs on the worker between them.
#pragma once

#include "plugin/GuardedCall.h"
#include "plugin/PluginHeap.h"
#include "plugin/PluginPathList.h"

#include <windows.h>

/// The four callbacks of a plugin run. Configure gets the last three.
struct PluginCallbacks {
    TavrixProgressCallback progress;
    TavrixMessageCallback message;
    TavrixPutPropertyCallback put;
    TavrixGetPropertyCallback get;
};

/// Whether a scan adds to the paths that are known.
enum PluginScanMode : i32 { ForgetPaths = 0, KeepPaths = 1 };

class Raster;
class Stream;

class PluginModule
{
public:
    virtual ~PluginModule();
    PluginModule(const PluginModule&) = delete;
    PluginModule& operator=(const PluginModule&) = delete;

    /// Unloads what is loaded, then loads. Done; Failed for null or a library that does not load.
    [[nodiscard]] i32 LoadLibraryFile(const WCHAR* path);
    /// Done, also when nothing is loaded. Current stays as it is.
    i32 Unload();

    /// Looks for the plugins of the kind below the folder PLUGINS beside the module's file (null:
    /// the program) and takes those that Probe. Gives the number of paths known then. The library
    /// that was probed last stays loaded until the next load.
    i32 Scan(HMODULE base, PluginScanMode mode);
    /// The same below `folder`, which needs no final backslash.
    i32 ScanIn(const WCHAR* folder, PluginScanMode mode);
    i32 ScanFolder(HMODULE base, const WCHAR* family, const WCHAR* kind, PluginScanMode mode);
    i32 ScanPath(const WCHAR* folder, const WCHAR* family, const WCHAR* kind, PluginScanMode mode);
    /// Loads the library and asks for its identity. Positive when it is `family`_`kind`; else 0 or
    /// negative.
    [[nodiscard]] i32 Probe(const WCHAR* path, const WCHAR* family, const WCHAR* kind);
    /// Loads a plugin, tells it the language (0: Japanese on Japanese systems, else nothing) and
    /// binds its exports. Done, or Failed for an index that is not known and a failing library.
    [[nodiscard]] i32 LoadByIndex(u32 index, u32 language);

    /// Asks the loaded plugin. `capacity` is in characters; the text is always terminated.
    /// WrongState when it does not answer questions or none is loaded, BadArgument for no buffer,
    /// else what the plugin gave.
    [[nodiscard]] i32 Info(u32 index, WCHAR* buffer, u32 capacity);

    /// The number of plugins; -1 until a scan has met a file.
    i32 Count() const { return count; }
    /// The index last loaded; -1 for none.
    i32 Current() const { return current; }
    bool IsLoaded() const { return library != nullptr; }
    /// Null for an index that is not known.
    const WCHAR* Path(u32 index) const;
    /// The kind's word, such as "INPUT".
    const WCHAR* Kind() const { return kindWord; }

protected:
    /// `allocator` is that of the path list; `word` must outlive the object.
    PluginModule(Allocator* allocator, const WCHAR* word);

    /// Binds the exports of the kind. Done, whatever is missing.
    virtual i32 Resolve() = 0;
    /// Clears them.
    virtual i32 Unresolve();

    /// Looks one export up; null when the library has none of that name.
    template <typename Function>
    void Bind(Function* slot, const WCHAR* name) const
    {
        *slot = reinterpret_cast<Function>(FindExport(name));
    }

    /// Calls an export of the running use with a heap of its own and with the tables written anew;
    /// `image` is the picture that it is lent, null for none. WrongState for a null export, for
    /// which no heap is made; NoMemory without a heap; else what the export gave.
    template <typename... Parameters>
    [[nodiscard]] i32 CallInHeap(i32(TAVRIX_CALL* function)(Parameters...), Raster* image,
                                 std::type_identity_t<Parameters>... arguments)
    {
        if (function == nullptr)
            return WrongState;
        if (BeginCall(image) < 0)
            return NoMemory;
        const i32 result = CallPlugin(function, arguments...);
        (void)DropHeap();
        return result;
    }
    /// The same for an export that takes a path or a stream. With a stream the path is not given to
    /// it; the stream's record is given back as soon as the call has returned.
    [[nodiscard]] i32 CallWithStream(TavrixImageFunction function, const WCHAR* path,
                                     Stream* stream, Raster* image,
                                     const PluginCallbacks& callbacks);

    TavrixGetPluginInfoFunction getPluginInfo;
    RasterFunctionTable rasterFunctions;
    PaletteFunctionTable paletteFunctions;

private:
    using AnyFunction = void (*)();
    AnyFunction FindExport(const WCHAR* name) const;
    i32 BeginCall(Raster* image);
    void WriteTables();
    u32 PathCount() const;

    const WCHAR* kindWord;
    PluginPathList* paths;
    i32 count;
    i32 current;
    HMODULE library;
    TavrixSetLanguageFunction setLanguage;
};
