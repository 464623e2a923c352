#include "standard-plugins/cups-print/CupsServer.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr int longestConnecting = 5000; // milliseconds
constexpr double longestSilence = 5;    // seconds
constexpr uint32_t mostPrinters = 10000;

// Without this the library would ask on the terminal.
const char* RefuseToAsk(const char*, http_t*, const char*, const char*, void*)
{
    return nullptr;
}

ipp_t* AskForPrinters(CupsServer* server)
{
    const CupsLibrary& cups = server->cups;
    ipp_t* request = cups.newRequest(IPP_OP_CUPS_GET_PRINTERS);
    if (!request)
        return nullptr;
    (void)cups.addString(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes",
                         nullptr, "printer-name");
    // The request is given back by the call.
    return cups.doRequest(server->http, request, "/");
}

bool Append(PrinterList* list, const char* name)
{
    if (list->count == mostPrinters || strlen(name) >= sizeof(PrinterName))
        return true;
    void* grown = realloc(list->names, (list->count + 1) * sizeof(PrinterName));
    if (!grown)
        return false;
    list->names = static_cast<PrinterName*>(grown);
    (void)strcpy(list->names[list->count++].text, name);
    return true;
}

void TakeNames(const CupsLibrary& cups, ipp_t* answer, PrinterList* list)
{
    for (ipp_attribute_t* at = cups.firstAttribute(answer); at; at = cups.nextAttribute(answer)) {
        const char* name = cups.attributeName(at);
        if (!name || strcmp(name, "printer-name") != 0)
            continue;
        const char* value = cups.attributeString(at, 0, nullptr);
        if (value && value[0] && !Append(list, value))
            return;
    }
}

void FindStandard(CupsServer* server, PrinterList* list)
{
    const char* name = server->cups.defaultPrinter(server->http);
    if (!name)
        return;
    // The user's own may name a set of options behind a slash.
    PrinterName plain = {};
    (void)strncpy(plain.text, name, sizeof plain.text - 1);
    if (char* slash = strchr(plain.text, '/'))
        *slash = 0;
    const uint32_t found = FindPrinter(*list, plain.text);
    list->standard = found < list->count ? found : 0;
}

} // namespace

CupsProblem OpenServer(CupsServer* server)
{
    *server = {};
    if (!OpenCups(&server->cups))
        return CupsProblem::Library;
    // What an earlier print found is forgotten: the set-up may have changed since.
    server->cups.setServer(nullptr);
    server->cups.setPasswordCallback(RefuseToAsk, nullptr);
    server->http = ConnectAgain(server);
    return server->http ? CupsProblem::None : CupsProblem::Server;
}

http_t* ConnectAgain(CupsServer* server)
{
    const CupsLibrary& cups = server->cups;
    // Asking for the name first makes the library find the port.
    const char* name = cups.server();
    http_t* http = cups.connect(name, cups.port(), nullptr, AF_UNSPEC, cups.encryption(), 1,
                                longestConnecting, nullptr);
    if (http)
        cups.setTimeout(http, longestSilence, nullptr, nullptr);
    return http;
}

void CloseServer(CupsServer* server)
{
    if (!server->cups.host.handle)
        return;
    if (server->http)
        server->cups.close(server->http);
    server->http = nullptr;
    // The library outlives the plugin, whose function it must not keep.
    server->cups.setPasswordCallback(nullptr, nullptr);
    CloseCups(&server->cups);
}

CupsProblem ListPrinters(CupsServer* server, PrinterList* list)
{
    *list = {};
    ipp_t* answer = AskForPrinters(server);
    const bool isThere = answer && server->cups.statusOf(answer) < IPP_STATUS_ERROR_BAD_REQUEST;
    // The printing system calls it "not found" when it has none at all.
    const bool isNone = answer && server->cups.statusOf(answer) == IPP_STATUS_ERROR_NOT_FOUND;
    if (isThere)
        TakeNames(server->cups, answer, list);
    server->cups.deleteMessage(answer);
    if (list->count == 0)
        return isThere || isNone ? CupsProblem::NoPrinters : CupsProblem::Server;
    FindStandard(server, list);
    return CupsProblem::None;
}

void FreePrinters(PrinterList* list)
{
    free(list->names);
    *list = {};
}

uint32_t FindPrinter(const PrinterList& list, const char* name)
{
    uint32_t index = 0;
    while (index < list.count && strcmp(list.names[index].text, name) != 0)
        ++index;
    return index;
}
