// The printing system as libcups is set up to find it (CUPS_SERVER, client.conf, its socket), and
// the names of its printers. Every call ends after some seconds, whatever the other side does, and
// none looks around in the network for printers that the printing system does not have.
#pragma once

#include "standard-plugins/cups-print/CupsLibrary.h"
#include "standard-plugins/cups-print/CupsProblem.h"

struct CupsServer {
    CupsLibrary cups;
    /// Null once the connection is given up.
    http_t* http;
};

/// A printer's name as the printing system has it: UTF-8 of at most 127 bytes.
struct PrinterName {
    char text[128];
};

struct PrinterList {
    PrinterName* names;
    uint32_t count;
    /// The index of the user's or the system's default printer, else of the first one.
    uint32_t standard;
};

/// Opens the library and connects. None, Library, Server. To be closed after either.
CupsProblem OpenServer(CupsServer* server);
/// A further connection; null when there is none to be had.
http_t* ConnectAgain(CupsServer* server);
/// Also right for a record that is all zero.
void CloseServer(CupsServer* server);

/// All printers, at least one. None, Server, NoPrinters. To be given back after either.
CupsProblem ListPrinters(CupsServer* server, PrinterList* list);
void FreePrinters(PrinterList* list);
/// The index of the printer of this name; list.count where there is none.
uint32_t FindPrinter(const PrinterList& list, const char* name);
