#include "platform/core/ShellModule.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace
{

constexpr HRESULT Good = 0;
constexpr HRESULT NoSuchInterface = static_cast<HRESULT>(0x80004002u);
constexpr HRESULT InvalidArgument = static_cast<HRESULT>(0x80070057u);
constexpr HRESULT NoMemory = static_cast<HRESULT>(0x8007000Eu);

constexpr int PersonalFolder = 5;
// Answered instead of \My Documents, so that settings lie where the host's users look for them.
constexpr WCHAR DocumentsPath[] = u"\\Application Data\\Tavrix";

/// An item list: its one item holds the path. Callers only hand it back and free it.
struct ItemList {
    WORD size;
    WCHAR path[std::size(DocumentsPath)];
    WORD end; // an item of no size ends the list
};

struct ShellAllocator;

/// The order of the entries is the interface: callers know them by position.
struct ShellAllocatorTable {
    HRESULT(WINAPI* QueryInterface)(ShellAllocator*, const void* id, void** out);
    ULONG(WINAPI* AddRef)(ShellAllocator*);
    ULONG(WINAPI* Release)(ShellAllocator*);
    void*(WINAPI* Alloc)(ShellAllocator*, SIZE_T size);
    void*(WINAPI* Realloc)(ShellAllocator*, void* block, SIZE_T size);
    void(WINAPI* Free)(ShellAllocator*, void* block);
};

struct ShellAllocator {
    const ShellAllocatorTable* table;
};

// The one object lives as long as the process, so that its count never ends it.
ULONG WINAPI AddRef(ShellAllocator*)
{
    return 2;
}

ULONG WINAPI Release(ShellAllocator*)
{
    return 1;
}

HRESULT WINAPI QueryInterface(ShellAllocator* allocator, const void* id, void** out)
{
    // The interface every object has, and that of allocators: 0 and 2 in one numbering.
    static const BYTE family[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46};
    if (out == nullptr)
        return InvalidArgument;
    *out = nullptr;
    BYTE asked[16] = {};
    if (id != nullptr)
        std::memcpy(asked, id, sizeof asked);
    if (asked[0] == 2)
        asked[0] = 0;
    if (id == nullptr || std::memcmp(asked, family, sizeof family) != 0)
        return NoSuchInterface;
    *out = allocator;
    return Good;
}

void* WINAPI Alloc(ShellAllocator*, SIZE_T size)
{
    return std::malloc(size == 0 ? 1 : size);
}

void* WINAPI Realloc(ShellAllocator*, void* block, SIZE_T size)
{
    if (block != nullptr && size == 0) {
        std::free(block);
        return nullptr;
    }
    return std::realloc(block, size == 0 ? 1 : size);
}

void WINAPI Free(ShellAllocator*, void* block)
{
    std::free(block);
}

constexpr ShellAllocatorTable allocatorTable = {QueryInterface, AddRef,  Release,
                                                Alloc,          Realloc, Free};
ShellAllocator shellAllocator = {&allocatorTable};

HRESULT WINAPI SHGetMalloc(ShellAllocator** out)
{
    if (out == nullptr)
        return InvalidArgument;
    *out = &shellAllocator;
    return Good;
}

HRESULT WINAPI SHGetSpecialFolderLocation(HWND, int folder, ItemList** out)
{
    if (out == nullptr)
        return InvalidArgument;
    *out = nullptr;
    if (folder != PersonalFolder)
        return InvalidArgument;
    auto* list = static_cast<ItemList*>(std::malloc(sizeof(ItemList)));
    if (list == nullptr)
        return NoMemory;
    list->size = offsetof(ItemList, end);
    std::memcpy(list->path, DocumentsPath, sizeof DocumentsPath);
    list->end = 0;
    *out = list;
    return Good;
}

// The buffer has room for MAX_PATH characters, as the interface asks of callers.
BOOL WINAPI SHGetPathFromIDList(const ItemList* list, LPWSTR path)
{
    if (list == nullptr || path == nullptr || list->size != offsetof(ItemList, end))
        return FALSE;
    std::memcpy(path, list->path, sizeof list->path);
    return TRUE;
}

// By way of a plain address: the compiler warns of a cast between unlike function types, which is
// just what the interface's one type for exports asks for.
template <class Function>
FARPROC Address(Function* function)
{
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

struct Export {
    const char* name;
    FARPROC address;
};

} // namespace

FARPROC tavrix::platform::FindShellExport(const char* name)
{
    static const Export exports[] = {
        {"SHGetMalloc", Address(&SHGetMalloc)},
        {"SHGetSpecialFolderLocation", Address(&SHGetSpecialFolderLocation)},
        {"SHGetPathFromIDList", Address(&SHGetPathFromIDList)},
    };
    for (const Export& entry : exports)
        if (std::strcmp(entry.name, name) == 0)
            return entry.address;
    return nullptr;
}
