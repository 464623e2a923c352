// An open file as a kernel object. It keeps its own position and is read and written at it, so that
// what the host would refuse (a position set on a file opened without access) behaves as on the
// device.
#pragma once

#include "platform/core/HandleTable.h"
#include "platform/core/HostFiles.h"
#include "platform/core/Replacement.h"

#include <mutex>
#include <string>

namespace tavrix::platform
{

class OpenFile : public KernelObject
{
public:
    /// With `pending` the file is open on a hidden one that is to replace it.
    OpenFile(Descriptor opened, DWORD access, LPCWSTR devicePath,
             std::shared_ptr<Replacement> pending = nullptr)
        : file(std::move(opened)), canRead((access & GENERIC_READ) != 0),
          canWrite((access & GENERIC_WRITE) != 0), path(devicePath),
          replacement(canWrite ? std::move(pending) : nullptr)
    {
        if (replacement != nullptr)
            replacement->Join();
    }
    ~OpenFile() override
    {
        // Whether it took its place is not told: the calls that close a file always succeed.
        if (replacement != nullptr)
            (void)replacement->Close();
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    /// Something was written, or should have been.
    void NoteWrite(bool whole) const
    {
        if (replacement != nullptr)
            replacement->NoteWrite(whole);
    }

    const Descriptor file;
    const bool canRead;
    const bool canWrite;
    const std::u16string path;                      // as the program gave it
    const std::shared_ptr<Replacement> replacement; // null for any other file
    std::mutex lock;                                // guards the position
    int64_t position = 0;
};

} // namespace tavrix::platform
