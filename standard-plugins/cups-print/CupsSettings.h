// What Configure asks for and Print goes by. Kept in the program's settings under keys that begin
// with "CupsPrint"; what is read is always within its range, whatever stands there.
#pragma once

#include "standard-plugins/common/pdf/PageGeometry.h"
#include "standard-plugins/cups-print/CupsServer.h"

/// The papers that are offered: all but the picture's own size, which no printer holds.
constexpr uint32_t printerPapers = PaperOfPicture;
constexpr uint32_t mostCopies = 99;

struct CupsSettings {
    /// Empty as long as none was chosen; the default printer is meant then.
    PrinterName printer;
    PageSettings page;
    /// 1 to mostCopies.
    uint32_t copies;
};

/// Standard values where nothing is stored, and for a null `get`.
void ReadCupsSettings(CupsSettings* settings, TavrixGetPropertyCallback get);
/// False when something could not be stored. A printer must have been chosen.
bool StoreCupsSettings(const CupsSettings& settings, TavrixPutPropertyCallback put);
