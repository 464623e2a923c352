// Modules: the program itself, the built-in shell library, and shared objects of the host. A
// module's handle is the address of its record here, looked up before it is used.

#include "platform/core/ElfFile.h"
#include "platform/core/FileNames.h"
#include "platform/core/FileTree.h"
#include "platform/core/Resources.h"
#include "platform/core/ShellModule.h"

#include "platform/host/Modules.h"

#include <handheld.h>

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

using namespace tavrix::platform;

namespace
{

constexpr WCHAR ProgramFolder[] = u"\\Program Files\\Tavrix\\";
constexpr WCHAR ProgramPath[] = u"\\Program Files\\Tavrix\\Tavrix.exe";
constexpr WCHAR ShellName[] = u"ceshell.dll";
constexpr WCHAR ShellPath[] = u"\\Windows\\ceshell.dll";

struct Module {
    std::u16string path;
    void* library = nullptr; // null for the built-in one
    unsigned loads = 0;
};

struct Modules {
    // Held over a whole load or unload, in which the library's own constructors and destructors
    // run; these may load and look up in their turn.
    std::recursive_mutex loading;
    std::mutex lock; // guards what follows; never held over code of a library
    std::vector<std::unique_ptr<Module>> loaded;
};

Modules& TheModules()
{
    static Modules* const modules = new Modules;
    return *modules;
}

/// The module whose constructors run on this thread.
thread_local Module* loadingHere = nullptr;

HMODULE HandleOf(Module* module)
{
    return reinterpret_cast<HMODULE>(module);
}

HMODULE ProgramInstance()
{
    static HINSTANCE__ program{};
    return &program;
}

/// The record behind a handle; null for any other value. The lock is held.
Module* Find(Modules& modules, HMODULE handle)
{
    for (const std::unique_ptr<Module>& module : modules.loaded)
        if (HandleOf(module.get()) == handle)
            return module.get();
    return nullptr;
}

std::u16string BaseName(const std::u16string& path)
{
    return path.substr(path.rfind(u'\\') + 1);
}

/// What a caller's name stands for: separators made one kind, the extension added where the last
/// part has no dot. A name without a folder is kept as such.
std::u16string FullName(LPCWSTR name)
{
    std::u16string path = name;
    std::replace(path.begin(), path.end(), u'/', u'\\');
    if (BaseName(path).find(u'.') == std::u16string::npos)
        path += u".dll";
    return path;
}

HMODULE NotFound()
{
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

/// The host file behind a device path; empty when no regular file stands there.
std::string RegularFileBehind(const std::u16string& path)
{
    DevicePath parsed;
    FoundFile found;
    if (ParsePath(path.c_str(), &parsed) != ERROR_SUCCESS ||
        CurrentTree()->Find(parsed, &found) != ERROR_SUCCESS || !found.IsRegular())
        return {};
    return found.host;
}

HMODULE LoadShell(Modules& modules)
{
    const std::lock_guard<std::mutex> held(modules.lock);
    for (const std::unique_ptr<Module>& module : modules.loaded)
        if (module->library == nullptr) {
            ++module->loads;
            return HandleOf(module.get());
        }
    auto module = std::make_unique<Module>();
    module->path = ShellPath;
    module->loads = 1;
    modules.loaded.push_back(std::move(module));
    return HandleOf(modules.loaded.back().get());
}

HMODULE LoadFromHost(Modules& modules, const std::u16string& path, const std::string& hostPath)
{
    auto module = std::make_unique<Module>();
    module->path = path;
    module->loads = 1;
    Module* const outer = std::exchange(loadingHere, module.get());
    module->library = dlopen(hostPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    loadingHere = outer;
    if (module->library == nullptr) {
        ForgetResources(HandleOf(module.get()));
        return NotFound();
    }
    const std::lock_guard<std::mutex> held(modules.lock);
    for (const std::unique_ptr<Module>& other : modules.loaded)
        if (other->library == module->library) {
            ++other->loads;
            return HandleOf(other.get());
        }
    modules.loaded.push_back(std::move(module));
    return HandleOf(modules.loaded.back().get());
}

/// The export itself, not one of the same name in a library that the module depends on: what a
/// module exports tells what it is.
FARPROC OwnExport(void* library, const char* name)
{
    void* address = dlsym(library, name);
    link_map* own = nullptr;
    link_map* found = nullptr;
    Dl_info info{};
    if (address == nullptr || dlinfo(library, RTLD_DI_LINKMAP, &own) != 0 ||
        dladdr1(address, &info, reinterpret_cast<void**>(&found), RTLD_DL_LINKMAP) == 0 ||
        own != found)
        return nullptr;
    return reinterpret_cast<FARPROC>(address);
}

} // namespace

HMODULE WINAPI LoadLibraryW(LPCWSTR name)
{
    if (name == nullptr || name[0] == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    Modules& modules = TheModules();
    const std::lock_guard<std::recursive_mutex> held(modules.loading);
    std::u16string path = FullName(name);
    if (Folded(path) == ShellName)
        return LoadShell(modules);
    if (path[0] != u'\\')
        path.insert(0, ProgramFolder);
    const std::string hostPath = RegularFileBehind(path);
    if (hostPath.empty() || !IsWholeLibrary(hostPath))
        return NotFound();
    return LoadFromHost(modules, path, hostPath);
}

BOOL WINAPI FreeLibrary(HMODULE handle)
{
    if (handle == ProgramInstance())
        return TRUE;
    Modules& modules = TheModules();
    const std::lock_guard<std::recursive_mutex> held(modules.loading);
    void* library = nullptr;
    bool last = false;
    {
        const std::lock_guard<std::mutex> guard(modules.lock);
        Module* module = Find(modules, handle);
        if (module == nullptr || module->loads == 0) {
            SetLastError(ERROR_MOD_NOT_FOUND);
            return FALSE;
        }
        library = module->library;
        last = --module->loads == 0;
    }
    // The record stays over the unloading, so that the library's destructors still find themselves.
    if (library != nullptr)
        dlclose(library);
    if (last) {
        ForgetResources(handle);
        const std::lock_guard<std::mutex> guard(modules.lock);
        std::erase_if(modules.loaded, [handle](const std::unique_ptr<Module>& module) {
            return HandleOf(module.get()) == handle;
        });
    }
    return TRUE;
}

HMODULE WINAPI GetModuleHandleW(LPCWSTR name)
{
    if (name == nullptr)
        return ProgramInstance();
    const std::u16string path = Folded(FullName(name));
    const bool bare = path.find(u'\\') == std::u16string::npos;
    const auto isMeant = [&path, bare](const std::u16string& candidate) {
        return Folded(bare ? BaseName(candidate) : candidate) == path;
    };
    if (isMeant(ProgramPath))
        return ProgramInstance();
    Modules& modules = TheModules();
    const std::lock_guard<std::mutex> guard(modules.lock);
    for (const std::unique_ptr<Module>& module : modules.loaded)
        if (isMeant(module->path))
            return HandleOf(module.get());
    return NotFound();
}

FARPROC WINAPI GetProcAddressW(HMODULE handle, LPCWSTR name)
{
    std::string export8;
    // Exports have ASCII names; looking one up by number is not known on this host.
    if (name != nullptr && !IS_INTRESOURCE(name))
        for (const WCHAR* unit = name; *unit != 0; ++unit)
            export8.push_back(*unit < 0x80 ? static_cast<char>(*unit) : '?');
    Modules& modules = TheModules();
    void* library = nullptr;
    {
        const std::lock_guard<std::mutex> guard(modules.lock);
        const Module* module = Find(modules, handle);
        if (module == nullptr) {
            SetLastError(ERROR_INVALID_HANDLE);
            return nullptr;
        }
        library = module->library;
    }
    const FARPROC address =
        library == nullptr ? FindShellExport(export8.c_str()) : OwnExport(library, export8.c_str());
    if (address == nullptr)
        SetLastError(ERROR_PROC_NOT_FOUND);
    return address;
}

DWORD WINAPI GetModuleFileNameW(HMODULE handle, LPWSTR buffer, DWORD capacity)
{
    std::u16string path;
    if (handle == nullptr || handle == ProgramInstance()) {
        path = ProgramPath;
    } else {
        Modules& modules = TheModules();
        const std::lock_guard<std::mutex> guard(modules.lock);
        const Module* module = Find(modules, handle);
        if (module == nullptr) {
            SetLastError(ERROR_MOD_NOT_FOUND);
            return 0;
        }
        path = module->path;
    }
    if (buffer == nullptr || capacity == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    // What does not fit is cut, ends with a zero all the same, and counts as the whole buffer.
    const size_t copied = std::min<size_t>(path.size(), capacity - 1);
    std::copy_n(path.begin(), copied, buffer);
    buffer[copied] = 0;
    if (copied == path.size())
        return static_cast<DWORD>(copied);
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return capacity;
}

HINSTANCE TavrixModuleOf(const void* address)
{
    Dl_info info{};
    link_map* map = nullptr;
    if (dladdr1(address, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) == 0)
        return nullptr;
    Modules& modules = TheModules();
    {
        const std::lock_guard<std::mutex> guard(modules.lock);
        for (const std::unique_ptr<Module>& module : modules.loaded) {
            link_map* own = nullptr;
            if (module->library != nullptr && dlinfo(module->library, RTLD_DI_LINKMAP, &own) == 0 &&
                own == map)
                return HandleOf(module.get());
        }
    }
    // Still in dlopen: the record has no library yet, and the address must at least be none of the
    // program's own.
    link_map* program = nullptr;
    Dl_info ours{};
    if (loadingHere != nullptr && loadingHere->library == nullptr &&
        dladdr1(reinterpret_cast<const void*>(&TavrixModuleOf), &ours,
                reinterpret_cast<void**>(&program), RTLD_DL_LINKMAP) != 0 &&
        program != map)
        return HandleOf(loadingHere);
    return nullptr;
}
