// The list of windows that a process shows to others, as the bytes of a file. Pure functions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavrix::platform
{

struct ListedWindow {
    uint64_t number = 0; // the process's own handle
    std::u16string className;
    std::u16string title;
};

/// More windows than this are not listed, and longer names are cut.
constexpr size_t ListedWindowLimit = 64;
constexpr size_t ListedNameLimit = 1024;

std::string PackWindowList(const std::vector<ListedWindow>& windows);
/// What can be read of it: whole entries from the first on, none of a text that is no list.
std::vector<ListedWindow> UnpackWindowList(std::string_view bytes);

} // namespace tavrix::platform
