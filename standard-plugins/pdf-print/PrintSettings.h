// What Configure asks for and Print goes by. Kept in the program's settings under keys that begin
// with "PdfPrint"; what is read is always within its range, whatever stands there.
#pragma once

#include "standard-plugins/common/pdf/PageGeometry.h"

#include <tavrix/plugin.h>

#include <windows.h>

struct PrintSettings {
    PageSettings page;
    /// A path of the device that names a file, at most MAX_PATH - 1 characters.
    TavrixChar file[MAX_PATH];
    /// The user was asked about the file that exists under this path, and wants it replaced. Holds
    /// for one print: what that one has written is a file that nobody was asked about.
    bool mayReplace;
};

/// Standard values where nothing is stored, and for a null `get`.
void ReadPrintSettings(PrintSettings* settings, TavrixGetPropertyCallback get);
/// False when something could not be stored.
bool StorePrintSettings(const PrintSettings& settings, TavrixPutPropertyCallback put);
/// Takes back the stored agreement to replace a file.
void EndReplacing(TavrixPutPropertyCallback put);
