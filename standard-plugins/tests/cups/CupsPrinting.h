// What the tests of the printer plugin share: a printing system, and the plugin of no settings in
// the host's hands.
#pragma once

#include "standard-plugins/tests/cups/PrintingSystem.h"
#include "standard-plugins/tests/pdf/Printing.h"

namespace cupstest
{

class CupsTest : public pdftest::PrintTest
{
protected:
    CupsTest() : PrintTest("CUPS") {}
    ~CupsTest() override;

    static void SetNumber(const std::u16string& name, u32 value);
    static void SetPrinter(const std::u16string& name);
    /// What was told with the stop icon.
    static std::string Complaint();
    /// Prints in both languages and looks at the two sentences and that nothing else went well.
    void ExpectComplaints(const char* english, const char* japanese);
    /// The printer's only document, once all jobs have ended.
    static std::string Document(const PrintingSystem& system);
};

/// Threads of this process.
size_t Threads();

} // namespace cupstest
