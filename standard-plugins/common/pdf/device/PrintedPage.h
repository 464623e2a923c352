// The host's picture, a line at a time, as a document of one page. Held are one row and the
// packer's window. The order of calls: OpenPage, PutPage where that went well, ClosePage in any
// case. Worker thread.
#pragma once

#include "standard-plugins/common/pdf/device/PdfDocument.h"
#include "standard-plugins/common/PictureReader.h"

/// Plain data; zeroed memory holds nothing.
struct PrintedPage {
    PictureReader picture;
    PdfDocument document;
    uint8_t* row;
};

/// Looks at the picture, as OpenPicture does. None, or that one's problem or Memory.
WriteProblem OpenPage(PrintedPage* page, RasterFunctionTable* rasters,
                      PaletteFunctionTable* palettes, TavrixImageHandle image);
/// Writes the whole document. `title` and `progress` may be null. None; Writing when the sink took
/// no more, which knows why; Size when the file would be too long; Stopped; Line; Memory; Codec.
/// Progress at every hundredth of the lines, and within a tenth of a second.
WriteProblem PutPage(PrintedPage* page, const ByteSink& sink, const PageSettings& settings,
                     const TavrixChar* title, TavrixProgressCallback progress);
/// Gives everything back.
void ClosePage(PrintedPage* page);

/// As TellProblem, with a sentence for Size.
void TellPageProblem(WriteProblem problem, const BilingualText& caption,
                     TavrixMessageCallback message);
