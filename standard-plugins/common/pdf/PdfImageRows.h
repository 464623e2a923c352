// The data of a picture in a PDF file: rows of red, green and blue, deflated as they come. Before
// that each byte becomes its difference to the same colour of the pixel on its left, which the
// dictionary tells as predictor 11: of the filters that need one row alone or two it packed
// photographs and screens best for its time. Held are one row, the packer's window (some 300
// kilobytes) and one piece of output; nothing of the picture's height.
#pragma once

#include "standard-plugins/common/pdf/PdfFile.h"

#include <zlib.h>

struct PdfImageRows {
    PdfFile* file;
    z_stream packer;
    bool isOpen;
    /// The row as it is packed: the filter's number and 3 * width bytes.
    uint8_t* row;
    uint32_t rowBytes;
    uint8_t packed[16 * 1024];
};

/// PluginDone or PluginNoMemory. The record is to be closed after either.
int32_t OpenImageRows(PdfImageRows* rows, PdfFile* file, uint32_t width);
/// Packs the 3 * width bytes of a row. False after a failure of the file.
bool PutImageRow(PdfImageRows* rows, const uint8_t* colours);
/// Writes what the packer still holds. False after a failure of the file.
bool FinishImageRows(PdfImageRows* rows);
/// Gives back the memory; also right for a record that is all zero.
void CloseImageRows(PdfImageRows* rows);
