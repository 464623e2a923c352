// The writer of the log file, which lies beside the program and holds one run: UTF-16 without a
// byte order mark, a line for each step of the start and one at the end, in universal time.
//
// One instance, made at the very start, on the user-interface thread.
#pragma once

#include "foundation/Directory.h"

class Logger
{
public:
    /// Works out where the log lies; opens nothing.
    Logger();
    /// Ends the log.
    virtual ~Logger();
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    /// Empties the file, opens it and writes "Begin logging.". Failed without a path, else the code
    /// of the step that failed, after which nothing is logged.
    i32 Begin();
    /// One line. BadArgument for null, Failed when not open or without memory, else the stream's
    /// result.
    i32 Write(const WCHAR* text);
    /// Writes "Ended." and closes. NothingDone when not open.
    i32 End();

private:
    enum : u32 { PathCapacity = 4096, LineBytes = 4096 };

    WCHAR* path;
    const WCHAR* name; // behind the last backslash of `path`
    Directory directory;
    FileStream* stream;
    i32 open;
};

/// The log of this process; null before the start and after the end.
extern Logger* logger;
