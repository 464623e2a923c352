// What the flows that ask the user for a file share: their work buffers and the record that the
// file dialog takes. User-interface thread.
#pragma once

#include "foundation/Allocator.h"

#include <windows.h>

#include <commdlg.h>

class MainFrame;

/// Characters of the flows' buffers, the final zeros included.
enum : u32 {
    NameCapacity = 4096,         // a path before it is cut to what the frame keeps
    FilterCapacity = 8192,       // the formats of all plugins
    OpenAsFilterCapacity = 2048, // the formats of one
    SaveAsFilterCapacity = 4096
};

/// The filter that stands for all picture files, whatever their format. As a signed number it is
/// negative, and only that counts.
inline constexpr u32 AllFilesFilter = 0xFFFFFFFF;

/// Room for so many characters, cleared; null without memory. Goes with the allocator.
[[nodiscard]] WCHAR* AllocText(Allocator& allocator, u32 capacity);

/// The record for a file dialog over the main window. `file` has the name to begin with and takes
/// the path; all texts must outlive the dialog.
[[nodiscard]] OPENFILENAMEW MakeFileRecord(const MainFrame& frame, const WCHAR* title, u32 flags,
                                           const WCHAR* filter, u32 filterIndex, WCHAR* file,
                                           u32 fileCapacity);
