// The dialog by its controls, as a user meets it, in both languages, with the printers of a
// printing system; and what comes in its place where there are none.

#include "platform/testing/WindowTesting.h"
#include "standard-plugins/common/pdf/device/PageDialogIds.h"
#include "standard-plugins/cups-print/CupsPrintIds.h"
#include "standard-plugins/tests/cups/CupsPrinting.h"

using namespace cupstest;
using namespace pdftest;
using namespace tavrix::testing;

namespace
{

using Texts = std::vector<std::u16string>;

class CupsDialog : public CupsTest
{
protected:
    /// Shows the dialog. `script` runs once it is up and has to end it; a box over it is answered
    /// with OK, and its text is kept.
    i32 Configure(const std::function<void(HWND)>& script)
    {
        boxes.clear();
        shown = 0;
        OnModal([this, script](HWND window, bool box) {
            if (!box) {
                ++shown;
                return script(window);
            }
            boxes.push_back(Utf8(BoxText(window).c_str()));
            ClickControl(window, IDOK);
        });
        const i32 result = plugin.Configure(nullptr, Callbacks());
        OnModal(nullptr);
        return result;
    }
    i32 ConfigureWithOk(const std::function<void(HWND)>& script = {})
    {
        return Configure([script](HWND dialog) {
            if (script)
                script(dialog);
            ClickControl(dialog, IDOK);
            EXPECT_FALSE(IsWindowVisible(dialog)) << "OK was refused";
            if (IsWindowVisible(dialog))
                ClickControl(dialog, IDCANCEL);
        });
    }
    /// The sentence with which OK is refused once this stands in the field.
    std::string RefusalOf(int control, const char16_t* text)
    {
        EXPECT_EQ(Configure([&](HWND dialog) {
                      SetDlgItemTextW(dialog, control, text);
                      ClickControl(dialog, IDOK);
                      EXPECT_TRUE(IsWindowVisible(dialog));
                      EXPECT_EQ(GetFocus(), GetDlgItem(dialog, control));
                      ClickControl(dialog, IDCANCEL);
                  }),
                  0);
        return boxes.size() == 1 ? boxes[0] : std::to_string(boxes.size()) + " boxes";
    }
    /// Configure where no dialog can be shown: what was told instead, in both languages.
    void ExpectToldInstead(const char* english, const char* japanese)
    {
        for (const u32 language : {0u, 17u}) {
            Load(language);
            CurrentTold().messages.clear();
            EXPECT_EQ(Configure([](HWND dialog) { ClickControl(dialog, IDOK); }), 0)
                << "anything else would print";
            EXPECT_EQ(shown, 0);
            EXPECT_EQ(Complaint(), language ? japanese : english);
        }
        EXPECT_TRUE(CurrentTold().texts.empty());
    }
    static u32 Number(const std::u16string& name)
    {
        const auto& numbers = CurrentTold().numbers;
        const auto found = numbers.find(u"CupsPrint" + name);
        return found == numbers.end() ? 12345 : static_cast<u32>(found->second);
    }
    static Texts Rows(HWND dialog, int control)
    {
        Texts rows;
        const LRESULT count = SendDlgItemMessageW(dialog, control, CB_GETCOUNT, 0, 0);
        for (LRESULT i = 0; i < count; ++i) {
            WCHAR text[128] = {};
            SendDlgItemMessageW(dialog, control, CB_GETLBTEXT, static_cast<WPARAM>(i),
                                reinterpret_cast<LPARAM>(text));
            rows.emplace_back(text);
        }
        return rows;
    }
    static LRESULT Row(HWND dialog, int control)
    {
        return SendDlgItemMessageW(dialog, control, CB_GETCURSEL, 0, 0);
    }
    static void Choose(HWND dialog, int control, u32 row)
    {
        SendDlgItemMessageW(dialog, control, CB_SETCURSEL, row, 0);
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(control, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, control)));
    }

    std::vector<std::string> boxes;
    int shown = 0;
};

} // namespace

TEST_F(CupsDialog, ShowsThePrintersAndTheStandardSettingsAndStoresThem)
{
    // The default one of the system is in the middle of the list, which is in alphabetical order.
    PrintingSystem system({"Main", "Attic", "Zoo"});
    EXPECT_EQ(ConfigureWithOk([](HWND dialog) {
                  EXPECT_EQ(Rows(dialog, ControlPrinter), (Texts{u"Attic", u"Main", u"Zoo"}));
                  EXPECT_EQ(Row(dialog, ControlPrinter), 1);
                  EXPECT_EQ(Row(dialog, ControlPaper), 0);
                  EXPECT_EQ(Row(dialog, ControlOrientation), 0);
                  EXPECT_EQ(ControlText(dialog, ControlMargin), u"10");
                  EXPECT_EQ(ControlText(dialog, ControlResolution), u"96");
                  EXPECT_EQ(ControlText(dialog, ControlCopies), u"1");
              }),
              1);
    EXPECT_EQ(CurrentTold().texts[u"CupsPrintPrinter"], u"Main");
    EXPECT_EQ(Number(u"Paper"), 0u);
    EXPECT_EQ(Number(u"Orientation"), 0u);
    EXPECT_EQ(Number(u"Margin"), 10u);
    EXPECT_EQ(Number(u"Fit"), 1u);
    EXPECT_EQ(Number(u"Resolution"), 96u);
    EXPECT_EQ(Number(u"Copies"), 1u);
    for (const auto& [key, value] : CurrentTold().numbers)
        EXPECT_EQ(key.rfind(u"CupsPrint", 0), 0u);
    EXPECT_TRUE(CurrentTold().messages.empty());
}

TEST_F(CupsDialog, TakesWhatIsChosenAndPrintsByIt)
{
    PrintingSystem system({"Main", "Zoo"});
    EXPECT_EQ(ConfigureWithOk([](HWND dialog) {
                  Choose(dialog, ControlPrinter, 1);
                  Choose(dialog, ControlPaper, 3);
                  Choose(dialog, ControlOrientation, 2);
                  SetDlgItemTextW(dialog, ControlMargin, u"0");
                  ClickControl(dialog, ControlRealSize);
                  SetDlgItemTextW(dialog, ControlResolution, u"300");
                  SetDlgItemTextW(dialog, ControlCopies, u"99");
              }),
              1);
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(CurrentTold().texts[u"CupsPrintPrinter"], u"Zoo");
    EXPECT_EQ(Number(u"Copies"), 99u);
    EXPECT_EQ(Number(u"Resolution"), 300u);
    EXPECT_EQ(Number(u"Fit"), 0u);
    EXPECT_EQ(Configure([](HWND dialog) {
                  EXPECT_EQ(Row(dialog, ControlPrinter), 1);
                  EXPECT_EQ(Row(dialog, ControlPaper), 3);
                  EXPECT_EQ(Row(dialog, ControlOrientation), 2);
                  EXPECT_EQ(ControlText(dialog, ControlCopies), u"99");
                  ClickControl(dialog, IDCANCEL);
              }),
              0);
    ASSERT_EQ(Print(30, 20, Noise), 1) << Complaint();
    system.WaitForJobs();
    ASSERT_EQ(system.JobsOf("Zoo").size(), 1u);
    EXPECT_EQ(system.JobsOf("Zoo")[0].copies, "99");
    EXPECT_EQ(InfoOf(Document(system), "Page size"), "792 x 612 pts (letter)");
}

TEST_F(CupsDialog, APrinterThatIsGoneGivesWayToTheDefaultOne)
{
    PrintingSystem system({"Main", "Attic"});
    SetPrinter(u"Gone");
    EXPECT_EQ(Configure([](HWND dialog) {
                  EXPECT_EQ(Row(dialog, ControlPrinter), 1);
                  ClickControl(dialog, IDCANCEL);
              }),
              0);
    EXPECT_EQ(CurrentTold().texts[u"CupsPrintPrinter"], u"Gone") << "cancelled: nothing is stored";
    EXPECT_EQ(ConfigureWithOk(), 1);
    EXPECT_EQ(CurrentTold().texts[u"CupsPrintPrinter"], u"Main");
}

TEST_F(CupsDialog, FollowsThePluginsLanguageInEveryText)
{
    PrintingSystem system;
    const struct {
        u32 language;
        const char16_t* caption;
        Texts papers;
        Texts orientations;
        Texts buttons;
        const char* margin;
        const char* copies;
    } rows[] = {
        {0,
         u"Printer",
         {u"A4", u"A5", u"A3", u"Letter", u"Legal"},
         {u"Automatic", u"Portrait", u"Landscape"},
         {u"&Fit to the page", u"&Real size, at", u"OK", u"Cancel"},
         "Margins are from 0 to 50 millimetres.",
         "From 1 to 99 copies can be printed."},
        {17,
         u"プリンタ",
         {u"A4", u"A5", u"A3", u"レター", u"リーガル"},
         {u"自動", u"縦", u"横"},
         {u"ページに合わせる(&F)", u"実寸(&R)", u"OK", u"キャンセル"},
         "余白は 0 から 50 ミリメートルまでです。",
         "部数は 1 から 99 までです。"},
    };
    for (const auto& row : rows) {
        Load(row.language);
        EXPECT_EQ(Configure([&](HWND dialog) {
                      WCHAR caption[64] = {};
                      GetWindowTextW(dialog, caption, 64);
                      EXPECT_EQ(std::u16string(caption), row.caption);
                      EXPECT_EQ(Rows(dialog, ControlPaper), row.papers);
                      EXPECT_EQ(Rows(dialog, ControlOrientation), row.orientations);
                      EXPECT_EQ((Texts{ControlText(dialog, ControlFit),
                                       ControlText(dialog, ControlRealSize),
                                       ControlText(dialog, IDOK), ControlText(dialog, IDCANCEL)}),
                                row.buttons);
                      ClickControl(dialog, IDCANCEL);
                  }),
                  0);
        EXPECT_EQ(RefusalOf(ControlMargin, u"51"), row.margin);
        for (const char16_t* copies : {u"0", u"", u"100"})
            EXPECT_EQ(RefusalOf(ControlCopies, copies), row.copies);
    }
}

TEST_F(CupsDialog, FitsTheSmallestScreenWithEveryControlInside)
{
    PrintingSystem system;
    for (const u32 language : {0u, 17u}) {
        Load(language);
        EXPECT_EQ(Configure([](HWND dialog) {
                      RECT frame = {};
                      GetWindowRect(dialog, &frame);
                      EXPECT_GE(frame.left, 0);
                      EXPECT_GE(frame.top, 0);
                      for (const int id : {ControlPrinter, ControlPaper, ControlOrientation,
                                           ControlMargin, ControlFit, ControlRealSize,
                                           ControlResolution, ControlCopies, IDOK, IDCANCEL}) {
                          RECT control = {};
                          GetWindowRect(GetDlgItem(dialog, id), &control);
                          EXPECT_GE(control.left, frame.left) << id;
                          EXPECT_LE(control.right, frame.right) << id;
                          EXPECT_LE(control.bottom, frame.bottom) << id;
                      }
                      ClickControl(dialog, IDCANCEL);
                  }),
                  0);
    }
}

TEST_F(CupsDialog, TabWalksTheControlsInTheirOrderAndEnterIsOk)
{
    PrintingSystem system;
    std::vector<int> walked;
    EXPECT_EQ(Configure([&](HWND) {
                  for (int i = 0; i < 8; ++i) {
                      walked.push_back(GetDlgCtrlID(GetFocus()));
                      TypeKey(VK_TAB);
                  }
                  TypeKey(VK_RETURN);
              }),
              1);
    EXPECT_EQ(walked, (std::vector<int>{ControlPrinter, ControlPaper, ControlOrientation,
                                        ControlMargin, ControlFit, ControlCopies, IDOK, IDCANCEL}));
}

TEST_F(CupsDialog, WithoutAPrinterASentenceComesInstead)
{
    PrintingSystem system(std::vector<std::string>{});
    ExpectToldInstead("The printing system has no printer.",
                      "印刷システムにプリンタが登録されていません。");
}

TEST_F(CupsDialog, WithoutAServerASentenceComesInstead)
{
    setenv("CUPS_SERVER", ("127.0.0.1:" + std::to_string(FreePort())).c_str(), 1);
    ExpectToldInstead("The printing system does not answer.", "印刷システムが応答しません。");
}

TEST_F(CupsDialog, NeverStoresAnEmptyText)
{
    PrintingSystem system;
    SetPrinter(u"");
    EXPECT_EQ(ConfigureWithOk(), 1);
    EXPECT_EQ(CurrentTold().texts[u"CupsPrintPrinter"], u"Real");
}

TEST_F(CupsDialog, FailsWhereNothingCanBeStored)
{
    PrintingSystem system;
    CurrentTold().refusesStoring = true;
    EXPECT_LT(ConfigureWithOk(), 0);
}
