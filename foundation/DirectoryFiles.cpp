// Directory's operations that make, delete, copy, move and open. The platform's calls are written
// with "::", since members bear their names.
#include "foundation/Directory.h"
#include "foundation/PathText.h"

i32 Directory::MakeDirectory(WCHAR* path)
{
    if (path == nullptr)
        return BadArgument;
    TurnSlashes(path);
    const i32 resolved = Resolve(path);
    if (resolved < 0)
        return resolved;
    const i32 result = ::CreateDirectoryW(scratch, nullptr) ? Done : Failed;
    DropScratch();
    return result;
}

i32 Directory::RemoveDirectory(WCHAR* path)
{
    if (path == nullptr)
        return BadArgument;
    TurnSlashes(path);
    const i32 resolved = Resolve(path);
    if (resolved < 0)
        return resolved;
    const i32 result = ::RemoveDirectoryW(scratch) ? Done : Failed;
    DropScratch();
    return result;
}

i32 Directory::MakeFile(const WCHAR* path, u32 mode)
{
    const i32 resolved = Resolve(path);
    if (resolved < 0)
        return resolved;
    const DWORD disposition = mode == MakeEmpty ? CREATE_ALWAYS : CREATE_NEW;
    const HANDLE made = ::CreateFileW(scratch, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    DropScratch();
    if (made == INVALID_HANDLE_VALUE)
        return Failed;
    CloseHandle(made);
    return Done;
}

i32 Directory::DeleteFile(WCHAR* path)
{
    if (path == nullptr)
        return BadArgument;
    TurnSlashes(path);
    const i32 resolved = Resolve(path);
    if (resolved < 0)
        return resolved;
    const i32 result = ::DeleteFileW(scratch) ? Done : Failed;
    DropScratch();
    return result;
}

i32 Directory::CopyFile(const WCHAR* from, const WCHAR* to, i32 failIfExists)
{
    return ::CopyFileW(from, to, failIfExists != 0) ? Done : Failed;
}

i32 Directory::MoveFile(const WCHAR* from, const WCHAR* to)
{
    return ::MoveFileW(from, to) ? Done : Failed;
}

i32 Directory::OpenFile(const WCHAR* path, FileStream** out, i32 readOnly)
{
    if (path == nullptr || out == nullptr)
        return BadArgument;
    *out = nullptr;
    const i32 resolved = Resolve(path);
    if (resolved < 0)
        return resolved;
    FileStream* stream = new FileStream;
    if (stream == nullptr) {
        DropScratch();
        return NoMemory;
    }
    const i32 opened = stream->Open(scratch, readOnly);
    if (opened < 0) {
        // The resolved path is left standing; the next Resolve or the destructor frees it.
        delete stream;
        return opened;
    }
    DropScratch();
    *out = stream;
    return Done;
}

i32 Directory::CloseFile(FileStream** stream)
{
    if (stream == nullptr)
        return BadArgument;
    if (*stream == nullptr)
        return NothingDone;
    (void)(*stream)->Close();
    delete *stream;
    *stream = nullptr;
    return Done;
}
