// Names of files on the device: what a user types, and the next one where a name is taken.
#pragma once

#include <tavrix/plugin.h>

#include <windows.h>

/// Whether a path is absolute and names something behind its last separator.
bool IsFilePath(const TavrixChar* path);

/// Makes a path of what was typed: without the spaces around it, with the device's separators, in
/// the documents' folder where it begins with none, with ".pdf" at its end where it has not. False,
/// and `path` an empty text, for a text without a name; false, and `path` not empty, for one that
/// is too long.
bool MakeFilePath(TavrixChar (&path)[MAX_PATH], const TavrixChar* typed);

/// Puts " (number)" between name and extension of the path. False when that is too long.
bool MakeNumberedPath(TavrixChar (&path)[MAX_PATH], const TavrixChar* from, uint32_t number);

/// Whether the path's folder is there. The root always is.
bool HasFolder(const TavrixChar* path);
