// A document of one page with one picture. The order of calls: StartDocument, PutDocumentRow for
// each row from the top, FinishDocument where all went well, and CloseDocument in any case.
#pragma once

#include "standard-plugins/common/pdf/PageGeometry.h"
#include "standard-plugins/common/pdf/PdfFile.h"
#include "standard-plugins/common/pdf/PdfImageRows.h"

#include <windows.h>

struct PdfDocument {
    PdfFile file;
    PdfImageRows rows;
    /// Where the picture's data begin.
    uint64_t dataOffset;
};

struct PdfDescription {
    /// Pixels.
    uint32_t width;
    uint32_t height;
    PagePlace place;
    /// May be null or empty: then the document has no title.
    const TavrixChar* title;
    /// In universal time.
    SYSTEMTIME created;
};

/// Writes all that stands before the picture's data. PluginDone, PluginNoMemory, or PluginFailed
/// when the sink failed.
int32_t StartDocument(PdfDocument* document, const ByteSink& sink,
                      const PdfDescription& description);
/// The next row: 3 * width bytes of red, green, blue. False after a failure of the sink.
bool PutDocumentRow(PdfDocument* document, const uint8_t* colours);
/// Writes the rest behind the last row. False after a failure of the sink.
bool FinishDocument(PdfDocument* document);
/// Gives the memory back; also right for a record that is all zero.
void CloseDocument(PdfDocument* document);
