#include "standard-plugins/pdf-print/PdfPrinting.h"

#include "standard-plugins/common/device/OutputFile.h"
#include "standard-plugins/common/PictureReader.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/ProgressThrottle.h"
#include "standard-plugins/common/WriteProblem.h"
#include "standard-plugins/pdf-print/PdfDocument.h"
#include "standard-plugins/pdf-print/PluginName.h"
#include "standard-plugins/pdf-print/PrintTarget.h"

#include <stdlib.h>

namespace
{

constexpr DWORD longestSilence = 100; // milliseconds

const BilingualText printingTo = {PLUGIN_TEXT("Printing to %s"), PLUGIN_TEXT("印刷先: %s")};
const BilingualText printedInstead = {
    PLUGIN_TEXT("The name is taken, so this was printed to %s"),
    PLUGIN_TEXT("同じ名前のファイルがあるため、%s に印刷しました。")};
const BilingualText tooLong = {PLUGIN_TEXT("The picture is too large for a PDF file."),
                               PLUGIN_TEXT("画像が大きすぎて PDF ファイルにできません。")};

// Everything that one print holds.
struct Printing {
    PictureReader picture;
    PrintSettings settings;
    PrintTarget target;
    OutputFile output;
    PdfDocument document;
    uint8_t* row;
};

void TellPath(const PrintRequest& request, const BilingualText& text, const TavrixChar* path,
              uint32_t flags)
{
    constexpr uint32_t longestText = 64;
    TavrixChar told[MAX_PATH + longestText];
    wsprintfW(told, InLanguage(text), path);
    if (request.message)
        (void)request.message(told, InLanguage(pluginName), flags);
}

bool WriteToOutput(void* output, const void* bytes, uint32_t count)
{
    return WriteOutput(static_cast<OutputFile*>(output), bytes, count);
}

WriteProblem OpenTarget(Printing* printing)
{
    const bool isChosen = ChooseTarget(&printing->target, printing->settings);
    if (!OpenOutput(&printing->output, printing->target.path, nullptr))
        return printing->output.problem;
    return isChosen ? WriteProblem::None : WriteProblem::Making;
}

// The document only knows that its sink failed; the sink knows why.
WriteProblem ProblemOfFile(const Printing& printing)
{
    if (printing.document.file.isTooLong)
        return WriteProblem::Size;
    const WriteProblem problem = printing.output.problem;
    return problem == WriteProblem::None ? WriteProblem::Codec : problem;
}

WriteProblem BeginDocument(Printing* printing, const TavrixChar* title)
{
    PictureReader& picture = printing->picture;
    PdfDescription description = {};
    description.width = picture.width;
    description.height = picture.height;
    description.place = PlacePicture(printing->settings.page, picture.width, picture.height);
    description.title = title;
    GetSystemTime(&description.created);
    const ByteSink sink = {&printing->output, WriteToOutput};
    const int32_t result = StartDocument(&printing->document, sink, description);
    if (result == PluginNoMemory)
        return WriteProblem::Memory;
    return result < 0 ? ProblemOfFile(*printing) : WriteProblem::None;
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

WriteProblem PrintRows(Printing* printing, TavrixProgressCallback callback)
{
    PictureReader& picture = printing->picture;
    ProgressThrottle progress;
    StartProgress(&progress, callback, picture.height);
    DWORD last = GetTickCount();
    for (uint32_t y = 0; y < picture.height; ++y) {
        if (!ReadRow(&picture, y, printing->row))
            return picture.problem;
        if (!PutDocumentRow(&printing->document, printing->row))
            return ProblemOfFile(*printing);
        if (!Report(&progress, y + 1, &last))
            return WriteProblem::Stopped;
    }
    return WriteProblem::None;
}

WriteProblem FinishFile(Printing* printing)
{
    if (!FinishDocument(&printing->document))
        return ProblemOfFile(*printing);
    if (!FinishOutput(&printing->output))
        return printing->output.problem;
    printing->target.isKept = false;
    return WriteProblem::None;
}

WriteProblem Run(Printing* printing, const PrintRequest& request)
{
    if (!OpenPicture(&printing->picture, request.rasters, request.palettes, request.image))
        return printing->picture.problem;
    printing->row = static_cast<uint8_t*>(malloc(RowBytes(printing->picture)));
    if (!printing->row)
        return WriteProblem::Memory;
    ReadPrintSettings(&printing->settings, request.get);
    WriteProblem problem = OpenTarget(printing);
    if (problem != WriteProblem::None)
        return problem;
    TellPath(request, printingTo, printing->target.path, MB_ICONASTERISK);
    problem = BeginDocument(printing, request.title);
    if (problem == WriteProblem::None)
        problem = PrintRows(printing, request.progress);
    return problem == WriteProblem::None ? FinishFile(printing) : problem;
}

void Close(Printing* printing)
{
    CloseDocument(&printing->document);
    CloseOutput(&printing->output);
    GiveUpTarget(&printing->target);
    free(printing->row);
}

// What the host does with the result is nothing, so the user is told here, once all is given back.
void Tell(const Printing& printing, WriteProblem problem, const PrintRequest& request)
{
    if (problem == WriteProblem::Size)
        TellText(tooLong, pluginName, request.message);
    else
        TellProblem(problem, pluginName, request.message);
    // This icon makes the host wait until the line has been read.
    if (problem == WriteProblem::None && printing.target.isNumbered)
        TellPath(request, printedInstead, printing.target.path, MB_ICONEXCLAMATION);
}

} // namespace

int32_t PrintPicture(const PrintRequest& request)
{
    auto* printing = static_cast<Printing*>(calloc(1, sizeof(Printing)));
    if (!printing) {
        TellProblem(WriteProblem::Memory, pluginName, request.message);
        return PluginNoMemory;
    }
    const WriteProblem problem = Run(printing, request);
    Close(printing);
    if (problem == WriteProblem::None && printing->settings.mayReplace)
        EndReplacing(request.put);
    Tell(*printing, problem, request);
    free(printing);
    return ResultOf(problem);
}
