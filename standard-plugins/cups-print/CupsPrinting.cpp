#include "standard-plugins/cups-print/CupsPrinting.h"

// The library's headers come before the device's: on the device they bring the sockets.
#include "standard-plugins/cups-print/CupsJob.h"
#include "standard-plugins/cups-print/CupsSettings.h"
#include "standard-plugins/cups-print/PluginName.h"
#include "standard-plugins/cups-print/Utf8.h"

#include "standard-plugins/common/pdf/device/PrintedPage.h"
#include "standard-plugins/common/PluginResult.h"

#include <stdlib.h>

namespace
{

const BilingualText printingOn = {PLUGIN_TEXT("Printing on %s"), PLUGIN_TEXT("印刷先: %s")};

// In the order of PaperKind: the names of PWG 5101.1, Media Standardized Names.
const char* const mediaNames[] = {"iso_a4_210x297mm", "iso_a5_148x210mm", "iso_a3_297x420mm",
                                  "na_letter_8.5x11in", "na_legal_8.5x14in"};
static_assert(sizeof mediaNames / sizeof *mediaNames == printerPapers);

// A job's name has at most 255 bytes (RFC 8011, section 5.1.3).
constexpr size_t longestTitle = 255;

// Everything that one print holds, and what became of it.
struct Printing {
    PrintedPage page;
    CupsSettings settings;
    CupsServer server;
    PrinterList printers;
    CupsJob job;
    char title[longestTitle + 1];
    WriteProblem problem;
    CupsProblem ofServer;
};

bool SendToJob(void* job, const void* bytes, uint32_t count)
{
    return WriteToJob(static_cast<CupsJob*>(job), bytes, count);
}

// The chosen printer, or the standard one as long as none was.
CupsProblem ChoosePrinter(Printing* printing)
{
    PrinterName& name = printing->settings.printer;
    const PrinterList& printers = printing->printers;
    if (!name.text[0])
        name = printers.names[printers.standard];
    return FindPrinter(printers, name.text) < printers.count ? CupsProblem::None
                                                             : CupsProblem::Unknown;
}

void TellPrinter(const Printing& printing, TavrixMessageCallback message)
{
    constexpr size_t longestText = 64;
    TavrixChar name[sizeof(PrinterName)];
    TavrixChar told[sizeof(PrinterName) + longestText];
    (void)ToWide(printing.settings.printer.text, name, sizeof name / sizeof *name);
    wsprintfW(told, InLanguage(printingOn), name);
    if (message)
        (void)message(told, InLanguage(pluginName), MB_ICONASTERISK);
}

CupsProblem BeginJob(Printing* printing)
{
    const CupsSettings& settings = printing->settings;
    const JobOptions options = {settings.printer.text, printing->title,
                                mediaNames[settings.page.paper], settings.copies};
    return StartJob(&printing->job, &printing->server, options);
}

CupsProblem FindServer(Printing* printing)
{
    CupsProblem problem = OpenServer(&printing->server);
    if (problem == CupsProblem::None)
        problem = ListPrinters(&printing->server, &printing->printers);
    return problem == CupsProblem::None ? ChoosePrinter(printing) : problem;
}

void NameJob(Printing* printing, const TavrixChar* title)
{
    (void)ToUtf8(title && title[0] ? title : PLUGIN_TEXT("Tavrix"), printing->title,
                 sizeof printing->title);
}

void SendPage(Printing* printing, const PrintRequest& request)
{
    printing->ofServer = BeginJob(printing);
    if (printing->ofServer != CupsProblem::None)
        return;
    const ByteSink sink = {&printing->job, SendToJob};
    printing->problem =
        PutPage(&printing->page, sink, printing->settings.page, request.title, request.progress);
    if (printing->problem == WriteProblem::Writing)
        printing->ofServer = printing->job.problem;
    else if (printing->problem == WriteProblem::None)
        printing->ofServer = FinishJob(&printing->job);
}

void Run(Printing* printing, const PrintRequest& request)
{
    printing->problem = OpenPage(&printing->page, request.rasters, request.palettes, request.image);
    if (printing->problem != WriteProblem::None)
        return;
    ReadCupsSettings(&printing->settings, request.get);
    NameJob(printing, request.title);
    printing->ofServer = FindServer(printing);
    if (printing->ofServer != CupsProblem::None)
        return;
    TellPrinter(*printing, request.message);
    SendPage(printing, request);
}

void Close(Printing* printing)
{
    CloseJob(&printing->job);
    FreePrinters(&printing->printers);
    CloseServer(&printing->server);
    ClosePage(&printing->page);
}

// What the host does with the result is nothing, so the user is told here, once all is given back.
int32_t Tell(const Printing& printing, TavrixMessageCallback message)
{
    if (printing.ofServer != CupsProblem::None) {
        TellText(TextOf(printing.ofServer), pluginName, message);
        return PluginFailed;
    }
    TellPageProblem(printing.problem, pluginName, message);
    return ResultOf(printing.problem);
}

} // namespace

int32_t PrintPicture(const PrintRequest& request)
{
    auto* printing = static_cast<Printing*>(calloc(1, sizeof(Printing)));
    if (!printing) {
        TellProblem(WriteProblem::Memory, pluginName, request.message);
        return PluginNoMemory;
    }
    Run(printing, request);
    Close(printing);
    const int32_t result = Tell(*printing, request.message);
    free(printing);
    return result;
}
