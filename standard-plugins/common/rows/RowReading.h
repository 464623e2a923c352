// One reading of a format that is read by rows with the C library alone: the stream, the lines of
// the host's picture, progress and a row of blue, green and red bytes to fill.
//
// Order: OpenRowReading, ReadBytes and SkipBytes for the header, StartRows, then for each row of
// the file the row's bytes and PutRow, in the end EndRowReading, and CloseRowReading in every case.
// What fails sets `result` and gives false; the lines that were put stay in the picture.
//
// Plain data, so that a codec's jump may pass over it; zeroed memory is a closed one.
#pragma once

#include "standard-plugins/common/LineWriter.h"
#include "standard-plugins/common/ProgressThrottle.h"
#include "standard-plugins/common/reading/Reader.h"
#include "standard-plugins/common/StreamReader.h"

#include <stddef.h>

struct RowReading {
    StreamReader reader;
    LineWriter lines;
    ProgressThrottle progress;
    TavrixProgressCallback callback;
    /// Bytes taken from the stream so far.
    uint64_t position;
    uint32_t width;
    uint32_t height;
    uint32_t rowsDone;
    /// 3 * width bytes, once StartRows was called.
    uint8_t* row;
    /// Something in the data is not sound though rows can go on.
    bool damaged;
    int32_t result;
};

/// False with `result` set: BadArgument, NoMemory. Nothing is read.
bool OpenRowReading(RowReading* rows, const ReadOrder& order);
/// For the header alone: no picture, no progress.
bool OpenHeaderReading(RowReading* rows, PluginStreamRecord* stream);
/// Goes on reading from another stream, which counts from its own start.
bool SwitchStream(RowReading* rows, PluginStreamRecord* stream);
void CloseRowReading(RowReading* rows);

/// Notes why the reading ends, and gives false.
bool FailReading(RowReading* rows, int32_t result);
/// The next byte, or -1 with `result` set at the end of the stream.
int NextByte(RowReading* rows);
bool ReadBytes(RowReading* rows, void* bytes, size_t count);
/// Passes over bytes. Once StartRows was called the user is asked every 64 KB.
bool SkipBytes(RowReading* rows, uint64_t count);

/// The picture's size, which is refused unless IsPictureSize. `fromTheEnd`: its rows come from the
/// last line to the first, otherwise from the first to the last.
bool StartRows(RowReading* rows, uint32_t width, uint32_t height, bool fromTheEnd);
/// Copies `row` into line `y` and reports progress.
bool PutRow(RowReading* rows, uint32_t y);
/// The line of the row that comes as the n-th (from 0).
inline uint32_t LineOfRow(const RowReading& rows, uint32_t row)
{
    return rows.lines.fromTheEnd ? rows.height - 1 - row : row;
}
/// Behind the last row: PluginDone, or PluginFailed for data that were damaged.
int32_t EndRowReading(const RowReading& rows);

/// Words of a header.
inline uint32_t Little16(const uint8_t* bytes)
{
    return bytes[0] | static_cast<uint32_t>(bytes[1]) << 8;
}
inline uint32_t Little32(const uint8_t* bytes)
{
    return Little16(bytes) | Little16(bytes + 2) << 16;
}
/// A sample from 0 to `highest` as one from 0 to 255, to the nearest; a half, which only an even
/// `highest` can give, upwards: (255 * s + highest div 2) div highest.
inline uint8_t ScaleToByte(uint32_t sample, uint32_t highest)
{
    return static_cast<uint8_t>((uint64_t{255} * sample + highest / 2) / highest);
}
