#include "shell/FileChoice.h"

#include "shell/MainFrame.h"

WCHAR* AllocText(Allocator& allocator, u32 capacity)
{
    void* block = nullptr;
    if (allocator.Alloc(&block, static_cast<u32>(capacity * sizeof(WCHAR))) < Done)
        return nullptr;
    return static_cast<WCHAR*>(block);
}

OPENFILENAMEW MakeFileRecord(const MainFrame& frame, const WCHAR* title, u32 flags,
                             const WCHAR* filter, u32 filterIndex, WCHAR* file, u32 fileCapacity)
{
    OPENFILENAMEW record = {};
    record.lStructSize = sizeof record;
    record.hwndOwner = frame.window;
    record.hInstance = frame.instance;
    record.lpstrFilter = filter;
    record.nFilterIndex = filterIndex;
    record.lpstrFile = file;
    record.nMaxFile = fileCapacity;
    record.lpstrTitle = title;
    record.Flags = flags;
    return record;
}
