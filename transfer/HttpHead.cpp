#include "transfer/HttpHead.h"

#include "foundation/DualString.h"
#include "foundation/TextSearch.h"
#include "transfer/ScanNumbers.h"

namespace
{

/// `line` has one cell more than `capacity`: a line that fills its buffer comes unterminated.
i32 ReadTerminatedLine(LineReader& reader, char* line, u32 capacity, u32* length)
{
    line[0] = 0;
    *length = capacity;
    const i32 result = reader.ReadLine(line, length);
    line[*length] = 0;
    return result;
}

i32 Widen(DualString& target, const char* text)
{
    target.AssignNarrow(text);
    return *text != 0 && *target.Get() == 0 ? NoMemory : Done;
}

i32 StoreHeader(char* line, PropertyList& headers)
{
    const char* colon = nullptr;
    if (FindChar(line, ':', &colon) < Done)
        return Failed;
    line[colon - line] = 0;
    const char* text = colon + 1;
    while (*text == ' ')
        ++text;
    DualString name;
    DualString value;
    if (Widen(name, line) < Done || Widen(value, text) < Done)
        return NoMemory;
    // A full list drops the name, and nobody is told.
    (void)headers.SetWide(name.Get(), value.Get());
    return Done;
}

/// As ReadHeaderLines. `*isBroken` is set to 1 when the stream fails.
i32 ReadLines(LineReader& reader, PropertyList& headers, i32* isBroken)
{
    char line[HeaderLineSize + 1];
    for (;;) {
        u32 length = 0;
        if (ReadTerminatedLine(reader, line, HeaderLineSize, &length) < NothingDone) {
            *isBroken = 1;
            return Failed;
        }
        if (length == 0)
            return Done;
        const i32 result = StoreHeader(line, headers);
        if (result < Done)
            return result;
    }
}

} // namespace

i32 ReadHeaderLines(LineReader& reader, PropertyList& headers)
{
    i32 isBroken = 0;
    return ReadLines(reader, headers, &isBroken);
}

i32 ReadHttpHead(Stream* source, PropertyList& headers, HttpHead& head)
{
    head = {-1, 0, 0};
    // One byte, so that none of the body is taken out of the stream.
    LineReader reader(nullptr, 1);
    const i32 attached = reader.Attach(source);
    if (attached < Done)
        return attached;
    char line[StatusLineSize + 1];
    u32 length = 0;
    u32 fields[3] = {};
    // What a failing stream gave until then is looked at all the same.
    if (ReadTerminatedLine(reader, line, StatusLineSize, &length) < NothingDone)
        head.isBroken = 1;
    head.fields = ScanStatusLine(line, fields);
    head.status = fields[2];
    if (head.isBroken != 0)
        return Done;
    return ReadLines(reader, headers, &head.isBroken) == NoMemory ? NoMemory : Done;
}
