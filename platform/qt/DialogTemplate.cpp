#include "platform/qt/DialogTemplate.h"

#include "platform/qt/ByteReader.h"

namespace tavrix::platform
{
namespace
{

constexpr WORD OrdinalMark = 0xFFFF;

/// Text, nothing (a zero word), or the mark and an ordinal.
TemplateText ReadTextOrOrdinal(ByteReader& reader)
{
    TemplateText result;
    if (reader.PeekWord() == OrdinalMark) {
        reader.Word();
        result.ordinal = reader.Word();
    } else {
        result.text = reader.Text();
    }
    return result;
}

const WCHAR* ClassOfOrdinal(WORD ordinal)
{
    static const WCHAR* const names[] = {TEXT("BUTTON"),  TEXT("EDIT"),      TEXT("STATIC"),
                                         TEXT("LISTBOX"), TEXT("SCROLLBAR"), TEXT("COMBOBOX")};
    return ordinal >= 0x80 && ordinal <= 0x85 ? names[ordinal - 0x80] : nullptr;
}

short ReadShort(ByteReader& reader)
{
    return static_cast<short>(reader.Word());
}

void ReadPlace(ByteReader& reader, short& x, short& y, short& width, short& height)
{
    x = ReadShort(reader);
    y = ReadShort(reader);
    width = ReadShort(reader);
    height = ReadShort(reader);
}

bool ReadItem(ByteReader& reader, bool extended, DialogItem& item)
{
    reader.Align(4);
    if (extended) {
        item.helpId = reader.DoubleWord();
        item.extendedStyle = reader.DoubleWord();
        item.style = reader.DoubleWord();
    } else {
        item.style = reader.DoubleWord();
        item.extendedStyle = reader.DoubleWord();
    }
    ReadPlace(reader, item.x, item.y, item.width, item.height);
    item.id = extended ? reader.DoubleWord() : reader.Word();

    const TemplateText className = ReadTextOrOrdinal(reader);
    if (className.ordinal) {
        const WCHAR* name = ClassOfOrdinal(*className.ordinal);
        if (name == nullptr)
            return false;
        item.className = name;
    } else {
        item.className = className.text;
    }
    item.text = ReadTextOrOrdinal(reader);

    // The count of the creation data takes in its own word in the classic form, and not in the
    // extended one.
    size_t length = reader.Word();
    if (!extended && length != 0)
        length = length >= 2 ? length - 2 : 0;
    if (length > reader.Left())
        return false;
    for (size_t i = 0; i < length; ++i)
        item.creationData.push_back(reader.Byte());
    return !reader.Failed() && !item.className.empty();
}

} // namespace

std::optional<DialogTemplate> ParseDialogTemplate(const void* bytes, size_t size)
{
    if (bytes == nullptr)
        return std::nullopt;
    ByteReader reader(bytes, size);
    DialogTemplate result;

    const DWORD first = reader.DoubleWord();
    WORD count = 0;
    if ((first >> 16) == 0xFFFF) { // the extended form's signature stands where a style would
        if ((first & 0xFFFF) != 1)
            return std::nullopt;
        result.extended = true;
        result.helpId = reader.DoubleWord();
        result.extendedStyle = reader.DoubleWord();
        result.style = reader.DoubleWord();
    } else {
        result.style = first;
        result.extendedStyle = reader.DoubleWord();
    }
    count = reader.Word();
    ReadPlace(reader, result.x, result.y, result.width, result.height);
    result.menu = ReadTextOrOrdinal(reader);
    result.className = ReadTextOrOrdinal(reader);
    result.title = reader.Text();
    if ((result.style & DS_SETFONT) != 0) {
        result.pointSize = reader.Word();
        if (result.extended)
            reader.Skip(4); // weight, italic, character set
        result.faceName = reader.Text();
    }

    for (WORD i = 0; i < count && !reader.Failed(); ++i) {
        DialogItem item;
        if (!ReadItem(reader, result.extended, item))
            return std::nullopt;
        result.items.push_back(std::move(item));
    }
    if (reader.Failed())
        return std::nullopt;
    return result;
}

} // namespace tavrix::platform
