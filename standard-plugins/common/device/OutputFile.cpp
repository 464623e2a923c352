#include "standard-plugins/common/device/OutputFile.h"

#include <handheld.h>

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr size_t bufferBytes = 64 * 1024;
// The full name is this and five digits; of a longer path the end of it that has room.
constexpr TavrixChar nameStart[] = {'~', 't', 'a', 'v', 'r', 'i', 'x'};
constexpr size_t startLength = sizeof nameStart / sizeof *nameStart;
constexpr size_t digitCount = 5;
constexpr size_t nameLength = startLength + digitCount;
constexpr uint32_t digitValues = 36;
constexpr int attempts = 1000;

bool Fail(OutputFile* output, WriteProblem problem)
{
    if (output->problem == WriteProblem::None)
        output->problem = problem;
    return false;
}

// The problem behind the last error of a file that could not be made.
WriteProblem ProblemOfMaking(DWORD error)
{
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        return WriteProblem::Folder;
    case ERROR_ACCESS_DENIED:
        return WriteProblem::Protected;
    case ERROR_DISK_FULL:
        return WriteProblem::DiskFull;
    case ERROR_NOT_ENOUGH_MEMORY:
        return WriteProblem::Memory;
    default:
        return WriteProblem::Making;
    }
}

// Characters in front of the file's name, its separator among them.
size_t FolderLength(const TavrixChar* path)
{
    size_t length = 0;
    for (size_t i = 0; path[i]; ++i)
        if (path[i] == '\\' || path[i] == '/')
            length = i + 1;
    return length;
}

bool CopyPath(OutputFile* output, const TavrixChar* path)
{
    size_t length = 0;
    while (path[length] && length < MAX_PATH)
        ++length;
    if (length == 0 || length == MAX_PATH || FolderLength(path) == length)
        return Fail(output, WriteProblem::Folder);
    memcpy(output->target, path, (length + 1) * sizeof *path);
    return true;
}

void NameBeside(OutputFile* output, uint32_t number)
{
    TavrixChar name[nameLength];
    memcpy(name, nameStart, sizeof nameStart);
    for (size_t i = nameLength; i > startLength; --i, number /= digitValues)
        name[i - 1] =
            static_cast<TavrixChar>(number % digitValues < 10 ? '0' + number % digitValues
                                                              : 'a' + number % digitValues - 10);
    const size_t folder = FolderLength(output->target);
    const size_t room = MAX_PATH - 1 - folder;
    const size_t taken = room < nameLength ? room : nameLength;
    memcpy(output->beside, output->target, folder * sizeof(TavrixChar));
    memcpy(output->beside + folder, name + nameLength - taken, taken * sizeof(TavrixChar));
    output->beside[folder + taken] = 0;
}

bool MakeBeside(OutputFile* output)
{
    const auto first = static_cast<uint32_t>(Random());
    for (uint32_t i = 0; i < attempts; ++i) {
        NameBeside(output, first + i);
        output->file = CreateFileW(output->beside, GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                   FILE_ATTRIBUTE_NORMAL, nullptr);
        if (output->file != INVALID_HANDLE_VALUE)
            return true;
        const DWORD error = GetLastError();
        if (error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS) {
            output->beside[0] = 0;
            return Fail(output, ProblemOfMaking(error));
        }
    }
    output->beside[0] = 0;
    return Fail(output, WriteProblem::Making);
}

// Refused before hours of work and not behind them.
bool MayReplace(OutputFile* output)
{
    const DWORD attributes = GetFileAttributesW(output->target);
    if (attributes != INVALID_FILE_ATTRIBUTES &&
        (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0)
        return Fail(output, WriteProblem::Protected);
    return true;
}

bool WriteToFile(OutputFile* output, const uint8_t* bytes, size_t count)
{
    while (count > 0) {
        DWORD done = 0;
        const BOOL written =
            WriteFile(output->file, bytes, static_cast<DWORD>(count), &done, nullptr);
        if (!written || done == 0 || done > count)
            return Fail(output, GetLastError() == ERROR_DISK_FULL ? WriteProblem::DiskFull
                                                                  : WriteProblem::Writing);
        bytes += done;
        count -= done;
    }
    return true;
}

// A stream that took less than it was given may take the rest at once; one that is full takes
// nothing more.
bool WriteToStream(OutputFile* output, const uint8_t* bytes, size_t count)
{
    while (count > 0) {
        auto done = static_cast<uint32_t>(count);
        const int32_t result = output->stream->write(output->stream->handle, bytes, &done);
        if (result < 1 || done > count)
            return Fail(output, WriteProblem::Writing);
        if (done == 0)
            return Fail(output, WriteProblem::DiskFull);
        bytes += done;
        count -= done;
    }
    return true;
}

bool MoveInFile(OutputFile* output, uint64_t offset)
{
    auto low = static_cast<LONG>(static_cast<uint32_t>(offset));
    auto high = static_cast<LONG>(offset >> 32);
    SetLastError(0);
    // A low half of all ones is no failure by itself.
    if (SetFilePointer(output->file, low, &high, FILE_BEGIN) == INVALID_SET_FILE_POINTER &&
        GetLastError() != 0)
        return Fail(output, WriteProblem::Writing);
    return true;
}

// Bytes that have left the buffer; the file's place is its end before and after.
bool OverwriteInFile(OutputFile* output, uint64_t offset, const uint8_t* bytes, size_t count)
{
    return MoveInFile(output, offset) && WriteToFile(output, bytes, count) &&
           MoveInFile(output, output->position - output->held);
}

bool EmptyBuffer(OutputFile* output)
{
    const size_t count = output->held;
    output->held = 0;
    return output->stream ? WriteToStream(output, output->buffer, count)
                          : WriteToFile(output, output->buffer, count);
}

} // namespace

bool OpenOutput(OutputFile* output, const TavrixChar* path, PluginStreamRecord* stream)
{
    *output = {};
    output->file = INVALID_HANDLE_VALUE;
    if (!path && (!stream || stream->size < sizeof(PluginStreamRecord) || !stream->write))
        return Fail(output, WriteProblem::Arguments);
    output->buffer = static_cast<uint8_t*>(malloc(bufferBytes));
    if (!output->buffer)
        return Fail(output, WriteProblem::Memory);
    if (!path) {
        output->stream = stream;
        return true;
    }
    return CopyPath(output, path) && MayReplace(output) && MakeBeside(output);
}

bool WriteOutput(OutputFile* output, const void* bytes, size_t count)
{
    if (output->problem != WriteProblem::None)
        return false;
    const auto* from = static_cast<const uint8_t*>(bytes);
    output->position += count;
    while (count > 0) {
        if (output->held == bufferBytes && !EmptyBuffer(output))
            return false;
        const size_t room = bufferBytes - output->held;
        const size_t run = count < room ? count : room;
        memcpy(output->buffer + output->held, from, run);
        output->held += run;
        from += run;
        count -= run;
    }
    return true;
}

bool OverwriteOutput(OutputFile* output, uint64_t offset, const void* bytes, size_t count)
{
    if (output->problem != WriteProblem::None)
        return false;
    if (output->stream)
        return Fail(output, WriteProblem::Stream);
    if (count > output->position || offset > output->position - count)
        return Fail(output, WriteProblem::Arguments);
    const auto* from = static_cast<const uint8_t*>(bytes);
    const uint64_t inFile = output->position - output->held;
    if (offset < inFile) {
        const uint64_t gone = inFile - offset;
        const size_t run = count < gone ? count : static_cast<size_t>(gone);
        if (!OverwriteInFile(output, offset, from, run))
            return false;
        offset += run;
        from += run;
        count -= run;
    }
    if (count > 0)
        memcpy(output->buffer + (offset - inFile), from, count);
    return true;
}

bool FinishOutput(OutputFile* output)
{
    if (output->problem != WriteProblem::None || !EmptyBuffer(output))
        return false;
    if (output->stream)
        return true;
    if (!FlushFileBuffers(output->file))
        return Fail(output, WriteProblem::Writing);
    (void)CloseHandle(output->file);
    output->file = INVALID_HANDLE_VALUE;
    if (!DeleteAndRenameFile(output->target, output->beside)) {
        const WriteProblem problem = ProblemOfMaking(GetLastError());
        return Fail(output, problem == WriteProblem::Making ? WriteProblem::Replacing : problem);
    }
    output->beside[0] = 0;
    return true;
}

void CloseOutput(OutputFile* output)
{
    // Zeroed memory, of which nothing was opened, holds no handle either.
    if (output->file && output->file != INVALID_HANDLE_VALUE)
        (void)CloseHandle(output->file);
    if (output->beside[0])
        (void)DeleteFileW(output->beside);
    free(output->buffer);
    const WriteProblem problem = output->problem;
    *output = {};
    output->file = INVALID_HANDLE_VALUE;
    output->problem = problem;
}
