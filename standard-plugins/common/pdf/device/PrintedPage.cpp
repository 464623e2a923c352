#include "standard-plugins/common/pdf/device/PrintedPage.h"

#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/ProgressThrottle.h"

#include <stdlib.h>

namespace
{

constexpr DWORD longestSilence = 100; // milliseconds

const BilingualText tooLong = {PLUGIN_TEXT("The picture is too large for a PDF file."),
                               PLUGIN_TEXT("画像が大きすぎて PDF ファイルにできません。")};

WriteProblem ProblemOfDocument(const PrintedPage& page)
{
    const PdfFile& file = page.document.file;
    if (file.isTooLong)
        return WriteProblem::Size;
    return file.failed ? WriteProblem::Writing : WriteProblem::Codec;
}

WriteProblem BeginDocument(PrintedPage* page, const ByteSink& sink, const PageSettings& settings,
                           const TavrixChar* title)
{
    const PictureReader& picture = page->picture;
    PdfDescription description = {};
    description.width = picture.width;
    description.height = picture.height;
    description.place = PlacePicture(settings, picture.width, picture.height);
    description.title = title;
    GetSystemTime(&description.created);
    const int32_t result = StartDocument(&page->document, sink, description);
    if (result == PluginNoMemory)
        return WriteProblem::Memory;
    return result < 0 ? ProblemOfDocument(*page) : WriteProblem::None;
}

// A large picture takes long for a hundredth of its lines; the user's Abort is heard all the same.
bool Report(ProgressThrottle* progress, uint32_t done, DWORD* last)
{
    const DWORD now = GetTickCount();
    if (now - *last < longestSilence)
        return ReportProgress(progress, done);
    *last = now;
    return ReportProgressNow(progress, done);
}

WriteProblem PutRows(PrintedPage* page, TavrixProgressCallback callback)
{
    PictureReader& picture = page->picture;
    ProgressThrottle progress;
    StartProgress(&progress, callback, picture.height);
    DWORD last = GetTickCount();
    for (uint32_t y = 0; y < picture.height; ++y) {
        if (!ReadRow(&picture, y, page->row))
            return picture.problem;
        if (!PutDocumentRow(&page->document, page->row))
            return ProblemOfDocument(*page);
        if (!Report(&progress, y + 1, &last))
            return WriteProblem::Stopped;
    }
    return WriteProblem::None;
}

} // namespace

WriteProblem OpenPage(PrintedPage* page, RasterFunctionTable* rasters,
                      PaletteFunctionTable* palettes, TavrixImageHandle image)
{
    if (!OpenPicture(&page->picture, rasters, palettes, image))
        return page->picture.problem;
    page->row = static_cast<uint8_t*>(malloc(RowBytes(page->picture)));
    return page->row ? WriteProblem::None : WriteProblem::Memory;
}

WriteProblem PutPage(PrintedPage* page, const ByteSink& sink, const PageSettings& settings,
                     const TavrixChar* title, TavrixProgressCallback progress)
{
    WriteProblem problem = BeginDocument(page, sink, settings, title);
    if (problem == WriteProblem::None)
        problem = PutRows(page, progress);
    if (problem != WriteProblem::None)
        return problem;
    return FinishDocument(&page->document) ? WriteProblem::None : ProblemOfDocument(*page);
}

void ClosePage(PrintedPage* page)
{
    CloseDocument(&page->document);
    free(page->row);
    page->row = nullptr;
}

void TellPageProblem(WriteProblem problem, const BilingualText& caption,
                     TavrixMessageCallback message)
{
    if (problem == WriteProblem::Size)
        TellText(tooLong, caption, message);
    else
        TellProblem(problem, caption, message);
}
