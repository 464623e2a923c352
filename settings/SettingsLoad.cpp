// SettingsFile::Load: characters to lines, lines to the two lists.
#include "foundation/BoundedText.h"
#include "foundation/TextSearch.h"
#include "settings/SettingsFile.h"
#include "settings/SettingsLine.h"

i32 SettingsFile::Load(const WCHAR* newPath)
{
    if (newPath == nullptr)
        return BadArgument;
    if (allocator == nullptr)
        return NoMemory;
    (void)Close(1);
    // A load that failed has left what it read and its path behind.
    FreeText(&path);
    (void)sections.Clear();
    (void)keys.Clear();
    sectionCount = 0;

    i32 result = AllocLoadBuffers();
    if (result > 0)
        result = KeepPath(newPath);
    if (result > 0)
        result = ReadFile();
    FreeBuffers();
    isOpen = result > 0 ? 1 : 0;
    return result;
}

i32 SettingsFile::AllocLoadBuffers()
{
    const struct {
        WCHAR** buffer;
        u32 cells;
    } wanted[] = {{&readBuffer, BlockCells},   {&lineBuffer, BlockCells},
                  {&sectionBuffer, NameCells}, {&keyBuffer, NameCells},
                  {&valueBuffer, BlockCells},  {&composeBuffer, ComposeCells}};
    for (const auto& each : wanted) {
        if (AllocText(each.cells, each.buffer) < 0)
            return NoMemory;
    }
    readPosition = 0;
    readCount = 0;
    loadBuffersReady = 1;
    return Done;
}

i32 SettingsFile::KeepPath(const WCHAR* newPath)
{
    u32 length = 0;
    (void)TextLength(newPath, &length);
    if (length > UINT32_MAX - 2 || AllocText(length + 2, &path) < 0)
        return NoMemory;
    (void)CopyText(path, length + 2, newPath);
    return Done;
}

i32 SettingsFile::ReadFile()
{
    // A file that is there already is left alone, and a refusal shows at the opening.
    (void)directory.MakeFile(path, MakeNew);
    if (file.Open(path, 1) < 0) {
        FreeText(&path);
        return Failed;
    }
    const i32 result = SkipMark() > 0 ? ReadLines() : Done;
    (void)file.CloseFile();
    return result;
}

i32 SettingsFile::SkipMark()
{
    u32 length = sizeof(WCHAR);
    if (file.Read(readBuffer, &length) < 1 || length < sizeof(WCHAR))
        return NothingDone;
    readCount = readBuffer[0] == ByteOrderMark ? 0 : 1;
    return Done;
}

i32 SettingsFile::ReadLines()
{
    u32 keyCount = 0;
    while (ReadLine() > 0) {
        const SettingsLine line = ParseSettingsLine(lineBuffer);
        i32 result = Done;
        if (line.kind == SettingsLineKind::Broken)
            result = Failed;
        else if (line.kind == SettingsLineKind::Section)
            result = EnterSection(line.name, &keyCount);
        else if (line.kind == SettingsLineKind::Key)
            result = TakeKey(line.name, line.value, &keyCount);
        if (result < 0)
            return Failed;
    }
    return Done;
}

i32 SettingsFile::EnterSection(const WCHAR* name, u32* keyCount)
{
    *keyCount = 0;
    (void)CopyText(sectionBuffer, NameCells, name);
    if (sections.GetUnsigned(sectionBuffer, keyCount) > 0)
        return Done;
    const i32 added = sections.SetUnsigned(sectionBuffer, 0);
    if (added > 0)
        ++sectionCount;
    return added;
}

i32 SettingsFile::TakeKey(const WCHAR* name, const WCHAR* value, u32* keyCount)
{
    (void)CopyText(keyBuffer, NameCells, name);
    Compose(composeBuffer, sectionBuffer, keyBuffer);
    if (value == nullptr) {
        // Counted also where a full list refuses it.
        (void)keys.SetEmpty(composeBuffer);
    } else {
        (void)CopyText(valueBuffer, BlockCells, value);
        // What a full list refuses is left out, and the load goes on.
        if (keys.SetWide(composeBuffer, valueBuffer) < 0)
            return NothingDone;
    }
    ++*keyCount;
    // A key before any section line puts the section of the empty name into the list here.
    return sections.SetUnsigned(sectionBuffer, *keyCount);
}

i32 SettingsFile::ReadLine()
{
    linePosition = 0;
    WCHAR character = 0;
    while (NextCharacter(&character) > 0) {
        // Only the pair ends a line: a CR is an ordinary character until an LF follows it.
        if (character == TEXT('\n') && linePosition > 0 &&
            lineBuffer[linePosition - 1] == TEXT('\r')) {
            lineBuffer[linePosition - 1] = 0;
            return Done;
        }
        // The last cell may hold no more than the CR of a line that just fits. A longer line ends
        // the reading, and nothing of it is used.
        if (linePosition == BlockCells)
            return NothingDone;
        lineBuffer[linePosition] = character;
        ++linePosition;
    }
    if (linePosition == 0 || linePosition == BlockCells)
        return NothingDone;
    lineBuffer[linePosition] = 0;
    return Done;
}

i32 SettingsFile::NextCharacter(WCHAR* out)
{
    if (readPosition >= readCount) {
        u32 length = BlockCells * sizeof(WCHAR);
        if (file.Read(readBuffer, &length) < 1)
            return NothingDone;
        readPosition = 0;
        // An odd last byte is dropped.
        readCount = length / static_cast<u32>(sizeof(WCHAR));
        if (readCount == 0)
            return NothingDone;
    }
    *out = readBuffer[readPosition];
    ++readPosition;
    return Done;
}
