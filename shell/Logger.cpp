#include "shell/Logger.h"

#include "foundation/BoundedText.h"
#include "foundation/TextSearch.h"

#include <stdlib.h>

Logger* logger = nullptr;

Logger::Logger() : name(nullptr), stream(nullptr), open(0)
{
    directory.SetBase(nullptr);
    path = static_cast<WCHAR*>(calloc(PathCapacity, sizeof(WCHAR)));
    if (path == nullptr)
        return;
    if (GetModuleFileNameW(nullptr, path, PathCapacity) != 0) {
        const WCHAR* found = nullptr;
        // The last dot of the whole path, wherever it stands.
        if (FindLastChar(path, TEXT('.'), &found) > 0)
            path[found - path] = 0;
        if (FindLastChar(path, TEXT('\\'), &found) > 0)
            name = found + 1;
    }
    AppendText(path, PathCapacity, TEXT(".log"));
}

Logger::~Logger()
{
    End();
    free(path);
}

i32 Logger::Begin()
{
    if (path == nullptr)
        return Failed;
    End();
    i32 result = directory.MakeFile(name, MakeEmpty);
    if (result < 0)
        return result;
    result = directory.OpenFile(name, &stream, 0);
    if (result < 0)
        return result;
    open = 1;
    const i64 offset = 0;
    stream->Seek(&offset, nullptr, 2);
    return Write(TEXT("Begin logging."));
}

i32 Logger::Write(const WCHAR* text)
{
    if (text == nullptr)
        return BadArgument;
    if (open == 0)
        return Failed;
    auto* line = static_cast<WCHAR*>(calloc(1, LineBytes));
    if (line == nullptr)
        return Failed;
    SYSTEMTIME now;
    GetSystemTime(&now);
    wsprintfW(line, TEXT("%04u/%02u/%02u %02u:%02u:%02u : %s\r\n"), now.wYear, now.wMonth, now.wDay,
              now.wHour, now.wMinute, now.wSecond, text);
    u32 length = 0;
    TextLength(line, &length);
    length *= sizeof(WCHAR);
    const i32 result = stream->Write(line, &length);
    free(line);
    return result;
}

i32 Logger::End()
{
    if (open == 0)
        return NothingDone;
    const i32 result = Write(TEXT("Ended."));
    directory.CloseFile(&stream);
    open = 0;
    return result;
}
