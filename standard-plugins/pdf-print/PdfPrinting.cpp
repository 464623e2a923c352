#include "standard-plugins/pdf-print/PdfPrinting.h"

#include "standard-plugins/common/device/OutputFile.h"
#include "standard-plugins/common/pdf/device/PrintedPage.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/WriteProblem.h"
#include "standard-plugins/pdf-print/PluginName.h"
#include "standard-plugins/pdf-print/PrintTarget.h"

#include <stdlib.h>

namespace
{

const BilingualText printingTo = {PLUGIN_TEXT("Printing to %s"), PLUGIN_TEXT("印刷先: %s")};
const BilingualText printedInstead = {
    PLUGIN_TEXT("The name is taken, so this was printed to %s"),
    PLUGIN_TEXT("同じ名前のファイルがあるため、%s に印刷しました。")};

// Everything that one print holds.
struct Printing {
    PrintedPage page;
    PrintSettings settings;
    PrintTarget target;
    OutputFile output;
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

// The page only knows that its sink failed; the sink knows why.
WriteProblem ProblemOfFile(const Printing& printing, WriteProblem problem)
{
    const WriteProblem ofOutput = printing.output.problem;
    return problem == WriteProblem::Writing && ofOutput != WriteProblem::None ? ofOutput : problem;
}

WriteProblem FinishFile(Printing* printing)
{
    if (!FinishOutput(&printing->output))
        return printing->output.problem;
    printing->target.isKept = false;
    return WriteProblem::None;
}

WriteProblem Run(Printing* printing, const PrintRequest& request)
{
    WriteProblem problem =
        OpenPage(&printing->page, request.rasters, request.palettes, request.image);
    if (problem != WriteProblem::None)
        return problem;
    ReadPrintSettings(&printing->settings, request.get);
    problem = OpenTarget(printing);
    if (problem != WriteProblem::None)
        return problem;
    TellPath(request, printingTo, printing->target.path, MB_ICONASTERISK);
    const ByteSink sink = {&printing->output, WriteToOutput};
    problem =
        PutPage(&printing->page, sink, printing->settings.page, request.title, request.progress);
    return problem == WriteProblem::None ? FinishFile(printing) : ProblemOfFile(*printing, problem);
}

void Close(Printing* printing)
{
    ClosePage(&printing->page);
    CloseOutput(&printing->output);
    GiveUpTarget(&printing->target);
}

// What the host does with the result is nothing, so the user is told here, once all is given back.
void Tell(const Printing& printing, WriteProblem problem, const PrintRequest& request)
{
    TellPageProblem(problem, pluginName, request.message);
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
