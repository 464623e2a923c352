#include "standard-plugins/common/rows/RowReading.h"

#include "standard-plugins/common/PluginResult.h"

#include <stdlib.h>
#include <string.h>

bool OpenRowReading(RowReading* rows, const ReadOrder& order)
{
    *rows = {};
    rows->callback = order.progress;
    rows->result = OpenReader(&rows->reader, order.stream);
    if (rows->result >= 0)
        rows->result = OpenLines(&rows->lines, order.rasters, order.image);
    return rows->result >= 0;
}

bool OpenHeaderReading(RowReading* rows, PluginStreamRecord* stream)
{
    *rows = {};
    rows->result = OpenReader(&rows->reader, stream);
    return rows->result >= 0;
}

bool SwitchStream(RowReading* rows, PluginStreamRecord* stream)
{
    CloseReader(&rows->reader);
    rows->position = 0;
    rows->result = OpenReader(&rows->reader, stream);
    return rows->result >= 0;
}

void CloseRowReading(RowReading* rows)
{
    CloseReader(&rows->reader);
    free(rows->row);
    rows->row = nullptr;
}

bool FailReading(RowReading* rows, int32_t result)
{
    rows->result = result;
    return false;
}

int NextByte(RowReading* rows)
{
    StreamReader& reader = rows->reader;
    if (reader.taken == reader.filled && !FillReader(&reader)) {
        rows->result = PluginFailed;
        return -1;
    }
    ++rows->position;
    return reader.buffer[reader.taken++];
}

bool ReadBytes(RowReading* rows, void* bytes, size_t count)
{
    if (!ReadExactly(&rows->reader, static_cast<uint8_t*>(bytes), count))
        return FailReading(rows, PluginFailed);
    rows->position += count;
    return true;
}

bool SkipBytes(RowReading* rows, uint64_t count)
{
    constexpr uint64_t askedEach = 64 * 1024;
    StreamReader& reader = rows->reader;
    uint64_t unasked = 0;
    rows->position += count;
    while (count > 0) {
        if (reader.taken == reader.filled && !FillReader(&reader))
            return FailReading(rows, PluginFailed);
        uint64_t run = reader.filled - reader.taken;
        if (run > count)
            run = count;
        reader.taken += static_cast<uint32_t>(run);
        count -= run;
        unasked += run;
        if (unasked >= askedEach) {
            if (rows->height > 0 && !ReportProgressNow(&rows->progress, rows->rowsDone))
                return FailReading(rows, PluginFailed);
            unasked = 0;
        }
    }
    return true;
}

bool StartRows(RowReading* rows, uint32_t width, uint32_t height, bool fromTheEnd)
{
    if (!IsPictureSize(width, height))
        return FailReading(rows, PluginFailed);
    rows->width = width;
    rows->height = height;
    rows->row = static_cast<uint8_t*>(malloc(size_t{3} * width));
    if (!rows->row)
        return FailReading(rows, PluginNoMemory);
    SetLinesSize(&rows->lines, width, height);
    if (fromTheEnd)
        SetLinesFromTheEnd(&rows->lines);
    StartProgress(&rows->progress, rows->callback, height);
    return true;
}

bool PutRow(RowReading* rows, uint32_t y)
{
    uint8_t* line = LockLine(&rows->lines, y);
    if (!line)
        return FailReading(rows, rows->lines.result);
    memcpy(line, rows->row, size_t{3} * rows->width);
    if (!UnlockLine(&rows->lines, y))
        return FailReading(rows, rows->lines.result);
    return ReportProgress(&rows->progress, ++rows->rowsDone) || FailReading(rows, PluginFailed);
}

int32_t EndRowReading(const RowReading& rows)
{
    return rows.damaged ? PluginFailed : PluginDone;
}
