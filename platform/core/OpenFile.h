// An open file as a kernel object. It keeps its own position and is read and written at it, so that
// what the host would refuse (a position set on a file opened without access) behaves as on the
// device.
#pragma once

#include "platform/core/HandleTable.h"
#include "platform/core/HostFiles.h"

#include <mutex>
#include <string>

namespace tavrix::platform
{

class OpenFile : public KernelObject
{
public:
    OpenFile(Descriptor opened, DWORD access, LPCWSTR devicePath)
        : file(std::move(opened)), canRead((access & GENERIC_READ) != 0),
          canWrite((access & GENERIC_WRITE) != 0), path(devicePath)
    {
    }

    const Descriptor file;
    const bool canRead;
    const bool canWrite;
    const std::u16string path; // as the program gave it
    std::mutex lock;           // guards the position
    int64_t position = 0;
};

} // namespace tavrix::platform
