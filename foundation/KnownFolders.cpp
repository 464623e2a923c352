#include "foundation/KnownFolders.h"

#include "foundation/BoundedText.h"
#include "foundation/TextSearch.h"

#include <windows.h>

#include <handheld.h>

namespace
{

constexpr int PersonalFolder = 5;

// The shell's memory object, as far as it is used: a pointer to its function table, of which the
// third and the sixth entry are called.
struct ShellMemory;
struct ShellMemoryTable {
    FARPROC queryInterface;
    FARPROC addReference;
    ULONG(WINAPI* release)(ShellMemory* memory);
    FARPROC allocate;
    FARPROC reallocate;
    void(WINAPI* free)(ShellMemory* memory, void* block);
};
struct ShellMemory {
    const ShellMemoryTable* table;
};

using GetMallocFunction = HRESULT(WINAPI*)(ShellMemory** out);
using GetLocationFunction = HRESULT(WINAPI*)(HWND owner, int folder, void** list);
using GetPathFunction = BOOL(WINAPI*)(const void* list, WCHAR* path);

template <class Function>
Function Lookup(HMODULE library, const WCHAR* name)
{
    // By way of a function of no arguments, which no compiler takes for a mistaken cast.
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddressW(library, name)));
}

i32 AskShell(HMODULE library, WCHAR* buffer, u32 capacity)
{
    const auto getMalloc = Lookup<GetMallocFunction>(library, TEXT("SHGetMalloc"));
    const auto getLocation =
        Lookup<GetLocationFunction>(library, TEXT("SHGetSpecialFolderLocation"));
    const auto getPath = Lookup<GetPathFunction>(library, TEXT("SHGetPathFromIDList"));
    // The shell writes up to MAX_PATH characters and is not told how many there are.
    if (getMalloc == nullptr || getLocation == nullptr || getPath == nullptr || capacity < MAX_PATH)
        return NothingDone;
    ShellMemory* memory = nullptr;
    void* list = nullptr;
    // Meant as it stands: where there is no such folder the shell's memory object is not released.
    // It belongs to the library, which goes next.
    if (getMalloc(&memory) < 0 || getLocation(nullptr, PersonalFolder, &list) < 0)
        return NothingDone;
    buffer[0] = 0;
    // A folder without a path is an answer, too: the empty one.
    (void)getPath(list, buffer);
    memory->table->free(memory, list);
    memory->table->release(memory);
    return Done;
}

} // namespace

i32 GetApplicationDirectory(WCHAR* buffer, u32 capacity)
{
    if (buffer == nullptr || capacity == 0)
        return BadArgument;
    buffer[0] = 0;
    const DWORD length = GetModuleFileNameW(nullptr, buffer, capacity);
    buffer[capacity - 1] = 0;
    // A path that fills the buffer was cut, and its last separator may be the wrong one.
    const WCHAR* separator = nullptr;
    if (length == 0 || length >= capacity || FindLastChar(buffer, TEXT('\\'), &separator) < 0)
        return NothingDone;
    buffer[separator - buffer] = 0;
    return Done;
}

i32 GetDocumentsDirectory(WCHAR* buffer, u32 capacity)
{
    if (buffer == nullptr || capacity == 0)
        return BadArgument;
    // Looked up at run time: not every device has the library.
    const HMODULE library = LoadLibraryW(TEXT("ceshell.dll"));
    if (library != nullptr) {
        const i32 result = AskShell(library, buffer, capacity);
        FreeLibrary(library);
        if (result > 0)
            return Done;
    }
    return CopyText(buffer, capacity, TEXT("\\My Documents"));
}
