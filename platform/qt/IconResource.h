// Icon resources as data: a group names the pictures of one icon in several sizes, each a resource
// of its own. Here the group is read and turned back into the bytes of an icon file, which every
// picture reader knows. No toolkit, any thread.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <vector>

namespace tavrix::platform
{

struct IconPicture {
    int width = 0; // 1..256
    int height = 0;
    BYTE colors = 0;
    WORD planes = 0;
    WORD bitsPerPixel = 0;
    DWORD length = 0;
    WORD id = 0; // of the picture's own resource
};

/// Reads a group; empty when it is cut short, not of an icon, or names no picture.
CE_API std::optional<std::vector<IconPicture>> ParseIconGroup(const void* bytes, size_t size);

/// The bytes of an icon file with those pictures whose bytes `find` can give; empty if none.
CE_API std::vector<BYTE> BuildIconFile(const std::vector<IconPicture>& pictures,
                                       const std::function<std::vector<BYTE>(WORD id)>& find);

} // namespace tavrix::platform
