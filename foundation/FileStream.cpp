#include "foundation/FileStream.h"

#include "foundation/BoundedText.h"
#include "foundation/TextSearch.h"

void* FileStream::operator new(size_t size) noexcept
{
    return GlobalAlloc(GPTR, size);
}

void FileStream::operator delete(void* block)
{
    GlobalFree(block);
}

FileStream::FileStream() : handle(INVALID_HANDLE_VALUE), isOpen(0) {}

FileStream::~FileStream()
{
    (void)CloseFile();
}

i32 FileStream::Open(const WCHAR* path, i32 readOnly)
{
    if (path == nullptr)
        return BadArgument;
    (void)CloseFile();
    const DWORD access = readOnly != 0 ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    handle = CreateFileW(path, access, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                         FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return Failed;
    isOpen = 1;
    const WCHAR* separator = nullptr;
    name.Assign(FindLastChar(path, TEXT('\\'), &separator) > 0 ? separator + 1 : path);
    return Done;
}

i32 FileStream::CloseFile()
{
    if (isOpen == 0)
        return NothingDone;
    CloseHandle(handle);
    handle = INVALID_HANDLE_VALUE;
    isOpen = 0;
    name.Clear();
    return Done;
}

i32 FileStream::GetName(WCHAR* buffer, i32 capacity)
{
    if (buffer == nullptr || capacity <= 0)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    return CopyText(buffer, static_cast<u32>(capacity), name.Get());
}

i32 FileStream::GetSize(u64* size)
{
    if (size == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    DWORD high = 0;
    const DWORD low = GetFileSize(handle, &high);
    *size = static_cast<u64>(high) << 32 | low;
    return Done;
}

i32 FileStream::Seek(const i64* offset, u64* newPosition, u32 origin)
{
    if (offset == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    LONG high = static_cast<LONG>(*offset >> 32);
    // The platform's refusal is not looked at: reading goes on from wherever the file stands.
    const DWORD low = SetFilePointer(handle, static_cast<LONG>(*offset), &high, origin);
    if (newPosition != nullptr)
        *newPosition = static_cast<u64>(static_cast<u32>(high)) << 32 | low;
    return Done;
}

i32 FileStream::Read(void* buffer, u32* length)
{
    if (buffer == nullptr || length == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    DWORD got = 0;
    ReadFile(handle, buffer, *length, &got, nullptr);
    *length = got;
    return Done;
}

i32 FileStream::Write(const void* buffer, u32* length)
{
    if (buffer == nullptr || length == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    DWORD written = 0;
    WriteFile(handle, buffer, *length, &written, nullptr);
    *length = written;
    return Done;
}

i32 FileStream::GetInterface(PluginStreamRecord* record)
{
    if (record == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    return Stream::GetInterface(record);
}

i32 FileStream::Close()
{
    return CloseFile();
}
