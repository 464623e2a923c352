// What the program asks of the device while it starts, in order. The calls named below are led
// through a recorder in every program that links this; the device's own do the work all the same.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace tavrix::testing
{

struct BoxCall {
    HWND owner;
    std::u16string text;
    std::u16string caption;
    UINT flags;
};

/// The message boxes so far.
const std::vector<BoxCall>& BoxCalls();

/// What happened so far, a line each: "box TEXT", "mutex NAME", "class NAME", "accelerators ID",
/// "find CLASS", "window CLASS", "common controls SIZE CLASSES", and with WatchFiles "create",
/// "open", "read" or "write" and a device path. Of equal lines that follow one another there is
/// one.
const std::vector<std::string>& Happenings();
/// From now on file operations are recorded, too. Takes the place of a file fault.
void WatchFiles();
/// Adds a line of the test's own.
void AddHappening(const std::string& line);

/// The record of the last class that was registered.
const WNDCLASSW& LastClass();

} // namespace tavrix::testing
