// Windows that processes of one user on one display know of each other: what FindWindowW finds
// outside its own process.
//
// A process that shows windows has two files in the shared folder, named for it alone: a socket at
// which it listens (WindowReceiver) and the list of its windows. The list is written by replacing
// it, and read without asking its process, which may hang. Whether that process lives is told by
// the socket. What a killed process left is swept by the next search of any other.
//
// The window of another process is a handle of this one, told from its own windows' handles by its
// value alone; to every call that does not know better it is a window that does not exist. Handles
// stay for the life of the process, also when the window is gone.
//
// Safe from any thread.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

namespace tavrix::platform
{

/// Shows a window of this process to others, and starts to listen for them if it is the first. Does
/// nothing where processes do not meet.
void PublishWindow(HWND window, std::u16string_view className, std::u16string_view title);
/// A window's title has changed. Nothing for one that is not shown to others.
void RetitleWindow(HWND window, std::u16string_view title);
/// The window is no longer to be found. Nothing for one that is not shown.
void RetractWindow(HWND window);
/// None of this process's windows is to be found any more.
void RetractAllWindows();
/// Whether the window is shown to others now.
bool IsPublished(HWND window);

/// The first window of another live process that has this class and this title, without regard to
/// case; null for either takes any. Processes are asked in the order in which they began to show
/// windows. Null when there is none, or no handle is left for it.
HWND FindForeignWindow(const WCHAR* className, const WCHAR* title);

/// Where a window of another process is to be reached.
struct ForeignWindow {
    std::string socket; // the name in the shared folder
    uint64_t number;    // the handle there
};
/// Empty for anything that FindForeignWindow did not give.
std::optional<ForeignWindow> ForeignWindowOf(HWND window);

} // namespace tavrix::platform
