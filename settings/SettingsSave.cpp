// SettingsFile::Save: the two lists to text.
#include "foundation/TextFind.h"
#include "foundation/TextSearch.h"
#include "settings/SettingsFile.h"

i32 SettingsFile::Save(const WCHAR* newPath)
{
    if (isOpen == 0)
        return Failed;
    if (AllocText(BlockCells, &lineBuffer) < 0 || AllocText(ComposeCells, &composeBuffer) < 0) {
        FreeBuffers();
        return NoMemory;
    }
    saveBuffersReady = 1;
    linePosition = 0;
    const WCHAR* target = newPath != nullptr ? newPath : path;
    // Neither result is told: what cannot be written is lost, and the program ends all the same. A
    // file that cannot be emptied is not opened, since its old text would stand on behind the new.
    if (directory.MakeFile(target, MakeEmpty) > 0)
        (void)file.Open(target, 0);
    Put(ByteOrderMark);
    WriteSections();
    Flush();
    (void)file.CloseFile();
    FreeBuffers();
    return Done;
}

// In both walks an entry whose text was lost for want of memory is known by its name, which the end
// of the list does not have: what stands behind it is not lost with it.

void SettingsFile::WriteSections()
{
    for (u32 i = 0;; ++i) {
        // A count that was lost leaves the 1, so that the section's keys stay in the file.
        Variant section{nullptr, VariantUnsigned, 1};
        if (sections.GetAt(i, &section) < 1 && section.name == nullptr)
            return;
        if (section.value == 0)
            continue;
        PutText(TEXT("["));
        PutText(section.name);
        PutText(TEXT("]\r\n"));
        WriteKeys(section.name);
        PutText(TEXT("\r\n"));
    }
}

void SettingsFile::WriteKeys(const WCHAR* section)
{
    Compose(composeBuffer, section, TEXT(""));
    u32 prefixLength = 0;
    (void)TextLength(composeBuffer, &prefixLength);
    // Two things about this walk are meant as they stand, as other files would come of the same
    // lists. The section's text is found anywhere in a composed name, so that "ab" also collects
    // the keys of "xab". And a key without a value ends the walk: it and all keys stored after it
    // are lost.
    for (u32 i = 0;; ++i) {
        Variant key{nullptr, VariantWide, 0};
        const bool has = keys.GetAt(i, &key) > 0;
        if (!has && key.name == nullptr)
            return;
        const WCHAR* found = nullptr;
        if (has && FindText(key.name, composeBuffer, &found) > 0) {
            PutText(found + prefixLength);
            PutText(TEXT("="));
            PutText(reinterpret_cast<const WCHAR*>(key.value));
            PutText(TEXT("\r\n"));
        }
    }
}

void SettingsFile::PutText(const WCHAR* text)
{
    for (; *text != 0; ++text)
        Put(*text);
}

void SettingsFile::Put(WCHAR character)
{
    if (linePosition == BlockCells)
        Flush();
    lineBuffer[linePosition] = character;
    ++linePosition;
}

void SettingsFile::Flush()
{
    u32 length = linePosition * static_cast<u32>(sizeof(WCHAR));
    (void)file.Write(lineBuffer, &length);
    linePosition = 0;
}
