#include "foundation/Directory.h"

#include "foundation/BoundedText.h"
#include "foundation/PathText.h"
#include "foundation/TextSearch.h"

#include <new>

namespace
{

constexpr u32 ApplicationPathBytes = 8192;

i32 AllocText(Allocator* allocator, u64 cells, WCHAR** out)
{
    *out = nullptr;
    const u64 bytes = cells * sizeof(WCHAR);
    void* block = nullptr;
    if (allocator == nullptr || bytes > UINT32_MAX ||
        allocator->Alloc(&block, static_cast<u32>(bytes)) < 0)
        return NoMemory;
    *out = static_cast<WCHAR*>(block);
    return Done;
}

} // namespace

Directory::Directory()
    : base(nullptr), allocator(new (std::nothrow) MallocAllocator), scratch(nullptr)
{
}

Directory::~Directory()
{
    DropScratch();
    if (base != nullptr)
        (void)allocator->Free(base);
    delete allocator;
}

i32 Directory::SetBase(const WCHAR* path)
{
    WCHAR* fresh = nullptr;
    if (path == nullptr) {
        constexpr u32 cells = ApplicationPathBytes / sizeof(WCHAR);
        if (AllocText(allocator, cells, &fresh) < 0)
            return NoMemory;
        if (GetApplicationDirectory(fresh, cells) < 1)
            fresh[0] = 0;
    } else {
        u32 length = 0;
        (void)TextLength(path, &length);
        // The two cells beyond the text keep CopyText from meeting its exact fit.
        if (AllocText(allocator, static_cast<u64>(length) + 2, &fresh) < 0)
            return NoMemory;
        (void)CopyText(fresh, length + 2, path);
    }
    if (base != nullptr)
        (void)allocator->Free(base);
    base = fresh;
    return Done;
}

i32 Directory::GetBase(WCHAR* buffer, i32 capacity)
{
    if (buffer == nullptr || capacity <= 0)
        return BadArgument;
    if (base == nullptr) {
        buffer[0] = 0;
        return Done;
    }
    return AppendText(buffer, static_cast<u32>(capacity), base);
}

i32 Directory::Enter(const WCHAR* name)
{
    if (name == nullptr)
        return BadArgument;
    while (*name == TEXT('\\'))
        ++name;
    u32 nameLength = 0;
    u32 baseLength = 0;
    (void)TextLength(name, &nameLength);
    if (base != nullptr)
        (void)TextLength(base, &baseLength);
    const u64 cells = static_cast<u64>(baseLength) + nameLength + 3;
    WCHAR* fresh = nullptr;
    if (AllocText(allocator, cells, &fresh) < 0)
        return NoMemory;
    if (base != nullptr)
        (void)CopyText(fresh, static_cast<u32>(cells), base);
    (void)AppendText(fresh, static_cast<u32>(cells), TEXT("\\"));
    (void)AppendText(fresh, static_cast<u32>(cells), name);
    if (base != nullptr)
        (void)allocator->Free(base);
    base = fresh;
    return Done;
}

i32 Directory::Resolve(const WCHAR* path)
{
    if (path == nullptr)
        return BadArgument;
    DropScratch();
    u32 pathLength = 0;
    u32 baseLength = 0;
    (void)TextLength(path, &pathLength);
    if (base != nullptr)
        (void)TextLength(base, &baseLength);
    const u64 cells = ResolvedCells(baseLength, pathLength);
    if (AllocText(allocator, cells, &scratch) < 0)
        return NoMemory;
    ResolvePath(scratch, static_cast<u32>(cells), base, path);
    return Done;
}

void Directory::DropScratch()
{
    if (scratch != nullptr)
        (void)allocator->Free(scratch);
    scratch = nullptr;
}
