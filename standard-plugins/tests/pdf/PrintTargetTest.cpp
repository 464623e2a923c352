// Which file a print goes to: nothing that is there already is replaced without the user's word,
// and the user is told the name.

#include "standard-plugins/tests/pdf/Printing.h"

#include <filesystem>

using namespace pdftest;

namespace
{

class PrintTarget : public PrintTest
{
protected:
    PrintTarget() { SetFile("page.pdf"); }

    i32 PrintOne() { return Print(4, 4, Noise); }
    /// What the last line on the screen told, as "flags text".
    static std::string LastTold()
    {
        if (CurrentTold().messages.empty())
            return "(nothing)";
        const Message& last = CurrentTold().messages.back();
        return std::to_string(last.flags) + " " + tavrix::testing::Utf8(last.text.c_str());
    }
    std::string Device(const std::string& name) const
    {
        return tavrix::testing::Utf8(DevicePath(Path(name)).c_str());
    }
    using Names = std::vector<std::string>;
};

} // namespace

TEST_F(PrintTarget, IsTheChosenFileAndItsNameIsTold)
{
    ASSERT_EQ(PrintOne(), 1);
    EXPECT_EQ(NamesIn(folder), Names{"page.pdf"});
    EXPECT_EQ(LastTold(), "64 Printing to " + Device("page.pdf"));
    EXPECT_EQ(CurrentTold().messages.size(), 1u);
    EXPECT_EQ(CurrentTold().messages[0].caption, u"PDF file");
}

TEST_F(PrintTarget, IsTheNextFreeNameWhereTheFileIsThereAndNobodyAgreed)
{
    WriteFile(Path("page.pdf"), "precious");
    WriteFile(Path("page (2).pdf"), "precious too");
    std::filesystem::create_directory(Path("page (3).pdf"));
    ASSERT_EQ(PrintOne(), 1);
    EXPECT_EQ(NamesIn(folder), (Names{"page (2).pdf", "page (3).pdf", "page (4).pdf", "page.pdf"}));
    EXPECT_EQ(FileBytes(Path("page.pdf")), "precious");
    EXPECT_EQ(FileBytes(Path("page (2).pdf")), "precious too");
    ExpectSound(Path("page (4).pdf"));
    ASSERT_EQ(CurrentTold().messages.size(), 2u);
    EXPECT_EQ(tavrix::testing::Utf8(CurrentTold().messages[0].text.c_str()),
              "Printing to " + Device("page (4).pdf"));
    // 48: with this icon the host waits until the line has been read.
    EXPECT_EQ(LastTold(), "48 The name is taken, so this was printed to " + Device("page (4).pdf"));
}

TEST_F(PrintTarget, ReplacesTheFileOnceWhereTheUserAgreed)
{
    WriteFile(Path("page.pdf"), "old");
    CurrentTold().numbers[u"PdfPrintReplace"] = 1;
    ASSERT_EQ(PrintOne(), 1);
    EXPECT_EQ(NamesIn(folder), Names{"page.pdf"});
    ExpectSound(Path("page.pdf"));
    EXPECT_EQ(CurrentTold().numbers[u"PdfPrintReplace"], 0u);
    // Nobody was asked about what the first print wrote.
    ASSERT_EQ(PrintOne(), 1);
    EXPECT_EQ(NamesIn(folder), (Names{"page (2).pdf", "page.pdf"}));
}

TEST_F(PrintTarget, KeepsTheAgreementWhereNothingCameOfThePrint)
{
    WriteFile(Path("page.pdf"), "old");
    CurrentTold().numbers[u"PdfPrintReplace"] = 1;
    CurrentTold().refusedFrom = 0;
    EXPECT_LT(PrintOne(), 0);
    EXPECT_EQ(CurrentTold().numbers[u"PdfPrintReplace"], 1u);
    EXPECT_EQ(FileBytes(Path("page.pdf")), "old");
}

TEST_F(PrintTarget, IsInTheDocumentsWithoutSettings)
{
    CurrentTold().texts.clear();
    CurrentTold().numbers[u"PdfPrintReplace"] = 1; // an agreement without a file counts for nothing
    const std::string documents = tavrix::testing::HostPath(TEXT("\\My Documents"));
    std::filesystem::create_directories(documents);
    WriteFile(documents + "/Tavrix.pdf", "precious");
    ASSERT_EQ(PrintOne(), 1);
    EXPECT_EQ(FileBytes(documents + "/Tavrix.pdf"), "precious");
    ExpectSound(documents + "/Tavrix (2).pdf");
    std::filesystem::remove_all(documents);
    ASSERT_EQ(PrintOne(), 1); // the folder of the documents is made when it is needed
    EXPECT_EQ(NamesIn(documents), Names{"Tavrix.pdf"});
    std::filesystem::remove_all(documents);
}

TEST_F(PrintTarget, APathThatNamesNoFileIsAsGoodAsNone)
{
    const std::string documents = tavrix::testing::HostPath(TEXT("\\My Documents"));
    for (const std::u16string& path : {std::u16string(u"page.pdf"), std::u16string(u"\\folder\\"),
                                       std::u16string(u"\\"), u"\\" + std::u16string(259, u'x')}) {
        CurrentTold().texts[u"PdfPrintFile"] = path;
        ASSERT_EQ(PrintOne(), 1);
        EXPECT_EQ(NamesIn(documents), Names{"Tavrix.pdf"});
        std::filesystem::remove_all(documents);
    }
}

TEST_F(PrintTarget, WorksForTheLongestPath)
{
    const size_t room = 259 - DevicePath(folder).size() - 1;
    const std::string name(room, 'x');
    SetFile(name);
    ASSERT_EQ(PrintOne(), 1);
    EXPECT_EQ(NamesIn(folder), Names{name});
    // There is no room for a number, and nothing is replaced for want of it.
    WriteFile(Path(name), "precious");
    EXPECT_LT(PrintOne(), 0);
    EXPECT_EQ(NamesIn(folder), Names{name});
    EXPECT_EQ(FileBytes(Path(name)), "precious");
}

TEST_F(PrintTarget, IsToldInJapanese)
{
    Load(17);
    ASSERT_EQ(PrintOne(), 1);
    EXPECT_EQ(LastTold(), "64 印刷先: " + Device("page.pdf"));
    EXPECT_EQ(CurrentTold().messages[0].caption, u"PDF ファイル");
    ASSERT_EQ(PrintOne(), 1);
    EXPECT_EQ(LastTold(),
              "48 同じ名前のファイルがあるため、" + Device("page (2).pdf") + " に印刷しました。");
}
