#include "standard-plugins/tests/cups/CupsPrinting.h"

#include <algorithm>
#include <filesystem>

namespace cupstest
{

using pdftest::CurrentTold;

CupsTest::~CupsTest()
{
    unsetenv("CUPS_SERVER");
}

void CupsTest::SetNumber(const std::u16string& name, u32 value)
{
    CurrentTold().numbers[u"CupsPrint" + name] = value;
}

void CupsTest::SetPrinter(const std::u16string& name)
{
    CurrentTold().texts[u"CupsPrintPrinter"] = name;
}

std::string CupsTest::Complaint()
{
    std::string told;
    for (const pdftest::Message& message : CurrentTold().messages)
        if (message.flags == MB_ICONHAND)
            told += tavrix::testing::Utf8(message.text.c_str());
    return told;
}

void CupsTest::ExpectComplaints(const char* english, const char* japanese)
{
    const std::pair<u32, const char*> languages[] = {{0, english}, {17, japanese}};
    for (const auto& [language, sentence] : languages) {
        CurrentTold().messages.clear();
        Load(language);
        EXPECT_EQ(Print(20, 20, pdftest::Noise), -1);
        EXPECT_EQ(Complaint(), sentence);
    }
}

std::string CupsTest::Document(const PrintingSystem& system)
{
    system.WaitForJobs();
    const std::vector<std::string> files = system.Documents();
    EXPECT_EQ(files.size(), 1u);
    return files.empty() ? "" : files[0];
}

size_t Threads()
{
    const std::filesystem::directory_iterator all("/proc/self/task");
    return static_cast<size_t>(std::distance(begin(all), end(all)));
}

} // namespace cupstest
