// A named thing that processes share, held by locks on an open descriptor of one small file. The
// host drops the locks when the descriptor closes, however the process ends, so that a killed one
// leaves nothing behind but an empty file.
//
// Byte 0 says that the thing exists: whoever has it open holds a shared lock there. Byte 1 says who
// owns it: an exclusive lock.
#pragma once

#include <memory>
#include <string>

namespace tavrix::platform
{

class NameLock
{
public:
    /// Opens the thing called `name` (any text) in `folder`; null when the host refuses. `*existed`
    /// tells whether another process has it. With `own` a new one comes owned, without a moment in
    /// between where another process could own it.
    static std::unique_ptr<NameLock> Open(const std::string& folder, const std::string& name,
                                          bool own, bool* existed);
    ~NameLock();
    NameLock(const NameLock&) = delete;
    NameLock& operator=(const NameLock&) = delete;

    /// Owns the thing unless another process does. Not meant for two threads at once.
    bool TryOwn();
    void Disown();

private:
    explicit NameLock(int openFile) : file(openFile) {}

    int file;
};

} // namespace tavrix::platform
