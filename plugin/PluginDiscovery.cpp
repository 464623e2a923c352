// How a PluginModule finds its libraries.

#include "plugin/PluginModule.h"

#include "foundation/BoundedText.h"

namespace
{

constexpr u32 PathCapacity = MAX_PATH;
constexpr u32 IdentityCapacity = 1024;
constexpr const WCHAR* Family = TEXT("TX");

/// Appends when the whole of `text` fits, else changes nothing: half a path is another path.
bool AppendWhole(WCHAR* path, const WCHAR* text)
{
    if (wcslen(path) + wcslen(text) >= PathCapacity)
        return false;
    (void)AppendText(path, PathCapacity, text);
    return true;
}

bool AppendBackslash(WCHAR* path)
{
    const size_t length = wcslen(path);
    if (length > 0 && path[length - 1] == TEXT('\\'))
        return true;
    return AppendWhole(path, TEXT("\\"));
}

} // namespace

i32 PluginModule::Scan(HMODULE base, PluginScanMode mode)
{
    return ScanFolder(base, Family, kindWord, mode);
}

i32 PluginModule::ScanIn(const WCHAR* folder, PluginScanMode mode)
{
    return ScanPath(folder, Family, kindWord, mode);
}

i32 PluginModule::ScanFolder(HMODULE base, const WCHAR* family, const WCHAR* kind,
                             PluginScanMode mode)
{
    WCHAR folder[PathCapacity] = {};
    const DWORD length = GetModuleFileNameW(base, folder, PathCapacity);
    if (length == 0 || length >= PathCapacity)
        return static_cast<i32>(PathCount());
    for (u32 i = length; i > 0; --i) {
        if (folder[i - 1] == TEXT('\\')) {
            folder[i - 1] = 0;
            break;
        }
    }
    if (!AppendWhole(folder, TEXT("\\PLUGINS\\")))
        return static_cast<i32>(PathCount());
    return ScanPath(folder, family, kind, mode);
}

i32 PluginModule::ScanPath(const WCHAR* given, const WCHAR* family, const WCHAR* kind,
                           PluginScanMode mode)
{
    if (given == nullptr || family == nullptr || kind == nullptr)
        return BadArgument;
    if (paths == nullptr)
        return 0;
    if (mode == ForgetPaths)
        (void)paths->Clear();

    WCHAR folder[PathCapacity] = {};
    WCHAR file[PathCapacity] = {};
    if (!AppendWhole(folder, given) || !AppendBackslash(folder) || !AppendWhole(folder, kind) ||
        !AppendBackslash(folder))
        return static_cast<i32>(PathCount());
    (void)AppendWhole(file, folder);
    if (!AppendWhole(file, TEXT("*.") TEXT("DLL")))
        return static_cast<i32>(PathCount());

    WIN32_FIND_DATAW found;
    const HANDLE find = FindFirstFileW(file, &found);
    if (find == INVALID_HANDLE_VALUE)
        return static_cast<i32>(PathCount());
    do {
        file[0] = 0;
        (void)AppendWhole(file, folder);
        if (AppendWhole(file, found.cFileName) && Probe(file, family, kind) > 0)
            (void)paths->Add(file); // the 513th and later ones are left out
    } while (FindNextFileW(find, &found));
    FindClose(find);
    count = static_cast<i32>(PathCount());
    return count;
}

i32 PluginModule::Probe(const WCHAR* path, const WCHAR* family, const WCHAR* kind)
{
    if (path == nullptr || family == nullptr || kind == nullptr)
        return BadArgument;
    // One character more than the plugin is told of, for one that puts its zero behind the end.
    WCHAR identity[IdentityCapacity + 1] = {};
    WCHAR expected[IdentityCapacity] = {};
    (void)AppendText(expected, IdentityCapacity, family);
    (void)AppendText(expected, IdentityCapacity, TEXT("_"));
    (void)AppendText(expected, IdentityCapacity, kind);

    // A library that does not load has no exports, and Info says so.
    (void)LoadLibraryFile(path);
    Bind(&setLanguage, TEXT("SetLanguage"));
    Bind(&getPluginInfo, TEXT("GetPluginInfo"));
    const i32 result = Info(0, identity, IdentityCapacity);
    if (result < 0 || wcscmp(identity, expected) != 0)
        return Failed;
    return result;
}
