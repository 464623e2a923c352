#include "standard-plugins/pdf-print/FileNames.h"

#include "standard-plugins/common/PluginInfo.h"

namespace
{

const TavrixChar standardFolder[] = PLUGIN_TEXT("\\My Documents\\");
const TavrixChar extension[] = PLUGIN_TEXT(".pdf");
constexpr uint32_t extensionLength = sizeof extension / sizeof *extension - 1;

// A text that grows in a path's room and remembers when it did not fit.
struct PathWriter {
    TavrixChar* path;
    uint32_t length;
    bool isWhole;

    void Add(TavrixChar character)
    {
        if (length + 1 < MAX_PATH)
            path[length++] = character;
        else
            isWhole = false;
        path[length] = 0;
    }
    void Add(const TavrixChar* text)
    {
        for (; *text; ++text)
            Add(*text);
    }
    void AddNumber(uint32_t number)
    {
        if (number >= 10)
            AddNumber(number / 10);
        Add(static_cast<TavrixChar>('0' + number % 10));
    }
};

uint32_t LengthOf(const TavrixChar* text)
{
    uint32_t length = 0;
    while (text[length])
        ++length;
    return length;
}

// Where the name behind the last separator begins.
uint32_t NameStart(const TavrixChar* path)
{
    uint32_t start = 0;
    for (uint32_t i = 0; path[i]; ++i)
        if (path[i] == '\\')
            start = i + 1;
    return start;
}

// Where the extension begins, with its dot; the end of a path without one.
uint32_t ExtensionStart(const TavrixChar* path)
{
    const uint32_t length = LengthOf(path);
    for (uint32_t i = length; i > NameStart(path) + 1; --i)
        if (path[i - 1] == '.')
            return i - 1;
    return length;
}

TavrixChar Small(TavrixChar letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<TavrixChar>(letter - 'A' + 'a') : letter;
}

bool HasExtension(const TavrixChar* path)
{
    const TavrixChar* at = path + ExtensionStart(path);
    for (uint32_t i = 0; i <= extensionLength; ++i)
        if (Small(at[i]) != extension[i])
            return false;
    return true;
}

bool IsSpace(TavrixChar character)
{
    return character == ' ' || character == '\t' || character == 0x3000; // the wide one too
}

bool IsSeparator(TavrixChar character)
{
    return character == '\\' || character == '/';
}

} // namespace

bool IsFilePath(const TavrixChar* path)
{
    return path[0] == '\\' && path[NameStart(path)] != 0;
}

bool MakeFilePath(TavrixChar (&path)[MAX_PATH], const TavrixChar* typed)
{
    PathWriter writer = {path, 0, true};
    path[0] = 0;
    while (IsSpace(*typed))
        ++typed;
    uint32_t length = LengthOf(typed);
    while (length > 0 && IsSpace(typed[length - 1]))
        --length;
    if (length == 0 || IsSeparator(typed[length - 1]))
        return false;
    if (!IsSeparator(typed[0]))
        writer.Add(standardFolder);
    for (uint32_t i = 0; i < length; ++i)
        writer.Add(typed[i] == '/' ? static_cast<TavrixChar>('\\') : typed[i]);
    if (!HasExtension(path))
        writer.Add(extension);
    return writer.isWhole;
}

bool MakeNumberedPath(TavrixChar (&path)[MAX_PATH], const TavrixChar* from, uint32_t number)
{
    PathWriter writer = {path, 0, true};
    const uint32_t end = ExtensionStart(from);
    for (uint32_t i = 0; i < end; ++i)
        writer.Add(from[i]);
    writer.Add(PLUGIN_TEXT(" ("));
    writer.AddNumber(number);
    writer.Add(PLUGIN_TEXT(")"));
    writer.Add(from + end);
    return writer.isWhole;
}

bool HasFolder(const TavrixChar* path)
{
    TavrixChar folder[MAX_PATH];
    PathWriter writer = {folder, 0, true};
    const uint32_t name = NameStart(path);
    if (name <= 1)
        return true;
    for (uint32_t i = 0; i + 1 < name; ++i)
        writer.Add(path[i]);
    const DWORD attributes = GetFileAttributesW(folder);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}
