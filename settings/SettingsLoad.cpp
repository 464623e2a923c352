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
    i32 result = SkipMark();
    if (result > 0)
        result = ReadLines();
    (void)file.CloseFile();
    return result < 0 ? Failed : Done;
}

// NothingDone for a file without text.
i32 SettingsFile::SkipMark()
{
    const i32 filled = FillReadBuffer(1);
    if (filled > 0 && readBuffer[0] == ByteOrderMark)
        readPosition = 1;
    return filled;
}

i32 SettingsFile::ReadLines()
{
    u32 keyCount = 0;
    for (;;) {
        const i32 read = ReadLine();
        if (read < 1)
            return read;
        const SettingsLine line = ParseSettingsLine(lineBuffer);
        i32 result = Done;
        if (line.kind == SettingsLineKind::Broken)
            result = Failed;
        else if (line.kind == SettingsLineKind::Section)
            result = EnterSection(line.name, &keyCount);
        else if (line.kind == SettingsLineKind::Key)
            result = TakeKey(line.name, line.value, &keyCount);
        if (result < 0)
            return result;
    }
}

i32 SettingsFile::EnterSection(const WCHAR* name, u32* keyCount)
{
    *keyCount = 0;
    (void)CopyText(sectionBuffer, NameCells, name);
    if (sections.GetUnsigned(sectionBuffer, keyCount) > 0)
        return Done;
    const i32 added = StoreCount(sectionBuffer, 0);
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
        if (keys.SetWide(composeBuffer, valueBuffer) == Failed)
            return NothingDone;
        // No memory for the text is not told by the list. The load must not succeed without it:
        // the next save would take it out of the file.
        const WCHAR* held = nullptr;
        if (keys.GetWide(composeBuffer, &held) < 1)
            return NoMemory;
    }
    ++*keyCount;
    // A key before any section line puts the section of the empty name into the list here.
    return StoreCount(sectionBuffer, *keyCount);
}

// NothingDone at the end of the text, Failed where reading fails.
i32 SettingsFile::ReadLine()
{
    linePosition = 0;
    WCHAR character = 0;
    i32 got = NothingDone;
    while ((got = NextCharacter(&character)) > 0) {
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
    if (got < 0)
        return got;
    if (linePosition == 0 || linePosition == BlockCells)
        return NothingDone;
    lineBuffer[linePosition] = 0;
    return Done;
}

i32 SettingsFile::NextCharacter(WCHAR* out)
{
    if (readPosition >= readCount) {
        const i32 filled = FillReadBuffer(BlockCells);
        if (filled < 1)
            return filled;
    }
    *out = readBuffer[readPosition];
    ++readPosition;
    return Done;
}

// Reads up to `cells` characters. NothingDone at the file's end; an odd last byte is dropped there.
i32 SettingsFile::FillReadBuffer(u32 cells)
{
    u8* bytes = reinterpret_cast<u8*>(readBuffer);
    const u32 wanted = cells * static_cast<u32>(sizeof(WCHAR));
    u32 got = 0;
    while (got < wanted) {
        u32 length = wanted - got;
        if (file.Read(bytes + got, &length) < 1 || length == 0)
            break;
        got += length;
    }
    // A stream does not tell a failing read from the end of the file, and half a file taken for the
    // whole would lose its other half at the next save.
    if (got < wanted && !IsReadToItsEnd())
        return Failed;
    readPosition = 0;
    readCount = got / static_cast<u32>(sizeof(WCHAR));
    return readCount > 0 ? Done : NothingDone;
}

bool SettingsFile::IsReadToItsEnd()
{
    u64 size = 0;
    u64 position = 0;
    const i64 here = 0;
    (void)file.GetSize(&size);
    (void)file.Seek(&here, &position, FILE_CURRENT);
    return position >= size;
}
