// The parser of dialog templates, both the classic and the extended form, as they stand in compiled
// resources: bytes in, a record out. No window is made here and nothing is checked against the
// classes that exist. Safe from any thread.
//
// Positions and sizes are in dialog units. Class names come out in the case the template has (the
// resource compiler makes them upper case), the six classes that have an ordinal under their names.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace tavrix::platform
{

/// A text, or in its place the number of a resource (an icon's).
struct TemplateText {
    std::u16string text;
    std::optional<WORD> ordinal;
};

struct DialogItem {
    DWORD style = 0;
    DWORD extendedStyle = 0;
    DWORD helpId = 0;
    short x = 0;
    short y = 0;
    short width = 0;
    short height = 0;
    DWORD id = 0; // 16 bits in the classic form
    std::u16string className;
    TemplateText text;
    std::vector<BYTE> creationData;
};

struct DialogTemplate {
    bool extended = false;
    DWORD style = 0;
    DWORD extendedStyle = 0;
    DWORD helpId = 0;
    short x = 0;
    short y = 0;
    short width = 0;
    short height = 0;
    TemplateText menu;
    TemplateText className;
    std::u16string title;
    WORD pointSize = 0; // 0: no font told
    std::u16string faceName;
    std::vector<DialogItem> items;
};

/// How far a template whose length nobody knows is followed before it counts as broken.
inline constexpr size_t UnknownTemplateSize = 65536;

/// Reads the template at `bytes`, at most `size` bytes of it. Empty when it is null, cut short or
/// no template (an unknown version, an item with an unknown class ordinal).
CE_API std::optional<DialogTemplate> ParseDialogTemplate(const void* bytes,
                                                         size_t size = UnknownTemplateSize);

} // namespace tavrix::platform
