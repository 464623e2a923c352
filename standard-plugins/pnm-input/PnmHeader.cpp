#include "standard-plugins/pnm-input/PnmHeader.h"

#include "standard-plugins/common/PluginResult.h"

#include <string.h>

namespace
{

constexpr uint32_t mostNumber = 65535;

bool IsSpace(int character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

bool IsDigit(int character)
{
    return character >= '0' && character <= '9';
}

// A comment reads as the end of its line.
int NextCharacter(RowReading* rows)
{
    int character = NextByte(rows);
    if (character == '#')
        while (character >= 0 && character != '\n' && character != '\r')
            character = NextByte(rows);
    return character;
}

int FirstBehindSpace(RowReading* rows)
{
    int character = NextCharacter(rows);
    while (IsSpace(character))
        character = NextCharacter(rows);
    return character;
}

// Continues a number whose first character was read. `end` is the character behind it, or -1 where
// the stream ends with the number.
bool FinishNumber(RowReading* rows, int first, uint32_t* number, int* end)
{
    if (!IsDigit(first))
        return FailReading(rows, PluginFailed);
    *number = 0;
    int character = first;
    for (; IsDigit(character); character = NextCharacter(rows)) {
        *number = *number * 10 + static_cast<uint32_t>(character - '0');
        if (*number > mostNumber)
            return FailReading(rows, PluginFailed);
    }
    *end = character;
    return true;
}

bool ReadHeaderNumber(RowReading* rows, uint32_t* number)
{
    int end = 0;
    if (!FinishNumber(rows, FirstBehindSpace(rows), number, &end))
        return false;
    return IsSpace(end) || FailReading(rows, PluginFailed);
}

bool ReadClassicHeader(RowReading* rows, int kind, PnmHeader* header)
{
    header->plain = kind <= '3';
    header->bits = kind == '1' || kind == '4';
    header->samples = kind == '3' || kind == '6' ? 3 : 1;
    header->highest = 1;
    return ReadHeaderNumber(rows, &header->width) && ReadHeaderNumber(rows, &header->height) &&
           (header->bits || ReadHeaderNumber(rows, &header->highest));
}

constexpr size_t wordRoom = 32;

// A word of a line of the P7 header; a longer one than any that is known is cut. `end` is the
// character behind it.
bool ReadWord(RowReading* rows, int first, char* word, int* end)
{
    size_t length = 0;
    int character = first;
    for (; character >= 0 && !IsSpace(character); character = NextByte(rows))
        if (length + 1 < wordRoom)
            word[length++] = static_cast<char>(character);
    word[length] = 0;
    *end = character;
    return character >= 0;
}

// What the lines of a P7 header have told.
struct PamLines {
    uint32_t depth;
    bool hasHeight;
    bool hasWidth;
    bool hasHighest;
    char type[wordRoom];
};

struct TupleType {
    const char* name;
    uint32_t samples;
};

constexpr TupleType tupleTypes[] = {
    {"BLACKANDWHITE", 1},       {"GRAYSCALE", 1},       {"RGB", 3},
    {"BLACKANDWHITE_ALPHA", 2}, {"GRAYSCALE_ALPHA", 2}, {"RGB_ALPHA", 4},
};

bool FitsTupleType(const PamLines& lines)
{
    if (lines.type[0] == 0)
        return lines.depth >= 1 && lines.depth <= 4;
    for (const TupleType& type : tupleTypes)
        if (strcmp(type.name, lines.type) == 0)
            return type.samples == lines.depth;
    return false;
}

bool TakeNumber(RowReading* rows, uint32_t* number, bool* seen)
{
    *seen = true;
    return ReadHeaderNumber(rows, number);
}

bool TakeTupleType(RowReading* rows, int end, PamLines* lines)
{
    int first = end;
    while (first == ' ' || first == '\t')
        first = NextByte(rows);
    return ReadWord(rows, first, lines->type, &end) || FailReading(rows, PluginFailed);
}

bool TakeLine(RowReading* rows, const char* word, int end, PnmHeader* header, PamLines* lines)
{
    bool seen = false;
    if (strcmp(word, "WIDTH") == 0)
        return TakeNumber(rows, &header->width, &lines->hasWidth);
    if (strcmp(word, "HEIGHT") == 0)
        return TakeNumber(rows, &header->height, &lines->hasHeight);
    if (strcmp(word, "MAXVAL") == 0)
        return TakeNumber(rows, &header->highest, &lines->hasHighest);
    if (strcmp(word, "DEPTH") == 0)
        return TakeNumber(rows, &lines->depth, &seen);
    if (strcmp(word, "TUPLTYPE") == 0)
        return TakeTupleType(rows, end, lines);
    return FailReading(rows, PluginFailed);
}

// Behind ENDHDR comes one line break and then the first sample.
bool ReadPamHeader(RowReading* rows, PnmHeader* header)
{
    PamLines lines = {};
    for (;;) {
        char word[wordRoom];
        int end = 0;
        if (!ReadWord(rows, FirstBehindSpace(rows), word, &end))
            return FailReading(rows, PluginFailed);
        if (strcmp(word, "ENDHDR") == 0)
            break;
        if (!TakeLine(rows, word, end, header, &lines))
            return false;
    }
    header->samples = lines.depth;
    const bool whole = lines.hasWidth && lines.hasHeight && lines.hasHighest;
    return (whole && FitsTupleType(lines)) || FailReading(rows, PluginFailed);
}

} // namespace

bool ReadPnmNumber(RowReading* rows, uint32_t* number)
{
    // The last number of a file may end with it.
    int end = 0;
    if (!FinishNumber(rows, FirstBehindSpace(rows), number, &end))
        return false;
    return end < 0 || IsSpace(end) || FailReading(rows, PluginFailed);
}

bool ReadPnmBit(RowReading* rows, uint32_t* bit)
{
    const int character = FirstBehindSpace(rows);
    *bit = character == '1';
    return character == '0' || character == '1' || FailReading(rows, PluginFailed);
}

bool ReadPnmHeader(RowReading* rows, PnmHeader* header)
{
    *header = {};
    uint8_t magic[2];
    if (!ReadBytes(rows, magic, sizeof magic))
        return false;
    const int kind = magic[1];
    if (magic[0] != 'P' || kind < '1' || kind > '7')
        return FailReading(rows, PluginFailed);
    const bool read =
        kind == '7' ? ReadPamHeader(rows, header) : ReadClassicHeader(rows, kind, header);
    if (!read)
        return false;
    return (header->highest >= 1 && IsPictureSize(header->width, header->height)) ||
           FailReading(rows, PluginFailed);
}
