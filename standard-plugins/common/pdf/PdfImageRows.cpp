#include "standard-plugins/common/pdf/PdfImageRows.h"

#include "standard-plugins/common/PluginResult.h"

#include <stdlib.h>

namespace
{

constexpr uint8_t differenceToTheLeft = 1; // the number of this filter in front of a row
constexpr uint32_t bytesPerPixel = 3;

bool Pack(PdfImageRows* rows, int flush)
{
    do {
        rows->packer.next_out = rows->packed;
        rows->packer.avail_out = sizeof rows->packed;
        if (deflate(&rows->packer, flush) == Z_STREAM_ERROR)
            return false;
        const auto count = static_cast<uint32_t>(sizeof rows->packed - rows->packer.avail_out);
        if (count > 0)
            PutBytes(rows->file, rows->packed, count);
    } while (!rows->file->failed && rows->packer.avail_out == 0);
    return !rows->file->failed;
}

} // namespace

int32_t OpenImageRows(PdfImageRows* rows, PdfFile* file, uint32_t width)
{
    *rows = {};
    rows->file = file;
    rows->rowBytes = 1 + bytesPerPixel * width;
    rows->row = static_cast<uint8_t*>(malloc(rows->rowBytes));
    if (!rows->row)
        return PluginNoMemory;
    rows->isOpen = deflateInit(&rows->packer, Z_DEFAULT_COMPRESSION) == Z_OK;
    return rows->isOpen ? PluginDone : PluginNoMemory;
}

bool PutImageRow(PdfImageRows* rows, const uint8_t* colours)
{
    uint8_t* out = rows->row;
    *out++ = differenceToTheLeft;
    const uint32_t count = rows->rowBytes - 1;
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t left = i < bytesPerPixel ? 0u : colours[i - bytesPerPixel];
        out[i] = static_cast<uint8_t>(colours[i] - left);
    }
    rows->packer.next_in = rows->row;
    rows->packer.avail_in = rows->rowBytes;
    return Pack(rows, Z_NO_FLUSH);
}

bool FinishImageRows(PdfImageRows* rows)
{
    rows->packer.next_in = nullptr;
    rows->packer.avail_in = 0;
    return Pack(rows, Z_FINISH);
}

void CloseImageRows(PdfImageRows* rows)
{
    if (rows->isOpen)
        (void)deflateEnd(&rows->packer);
    free(rows->row);
    rows->row = nullptr;
    rows->isOpen = false;
}
