// What the host's environment says about folders, gathered once: the file tree is made from this
// record, and tests make trees from records of their own.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavrix::platform
{

/// Absolute host paths without a trailing "/" (the root itself is the empty text).
struct Surroundings {
    std::string home;          // $HOME, else what the password database has
    std::string data;          // $XDG_DATA_HOME, else ~/.local/share
    std::string config;        // $XDG_CONFIG_HOME, else ~/.config
    std::string documents;     // the user's documents folder
    std::string programFolder; // where the program's file lies, links resolved
    std::string storageCard;   // $TAVRIX_STORAGE_CARD; with `hasStorageCard` only
    bool hasStorageCard = false;
    std::vector<std::string> temporaryBases; // where a private folder may be made, best first
};

/// Reads the environment of this process. XDG variables with relative values count as unset, as
/// their specification has it; a relative storage card counts from the current folder.
Surroundings ReadSurroundings();

/// The documents folder that the text of a user-dirs.dirs file names; empty when it names none.
std::string DocumentsFrom(std::string_view userDirs, const std::string& home);

/// The path without its trailing "/".
std::string WithoutTrailingSlash(std::string path);

} // namespace tavrix::platform
