// The dialog by its controls, as a user meets it: what it shows, what it takes, what it refuses,
// what it asks before a file is replaced, in both languages.

#include "platform/testing/WindowTesting.h"
#include "standard-plugins/common/pdf/device/PageDialogIds.h"
#include "standard-plugins/pdf-print/PdfPrintIds.h"
#include "standard-plugins/tests/pdf/Printing.h"

#include <filesystem>

using namespace pdftest;
using namespace tavrix::testing;

namespace
{

class PrintDialog : public PrintTest
{
protected:
    PrintDialog() { SetFile("page.pdf"); }

    /// Shows the dialog. `script` runs once it is up and has to end it; a box over it is answered
    /// with `answer`, and its text and caption are kept.
    i32 Configure(const std::function<void(HWND)>& script)
    {
        boxes.clear();
        OnModal([this, script](HWND window, bool box) {
            if (!box)
                return script(window);
            boxes.push_back(Utf8(BoxText(window).c_str()));
            boxCaption = BoxCaption(window);
            // A box that nobody expected must not wait for ever.
            const bool offers = GetDlgItem(window, answer) != nullptr;
            EXPECT_TRUE(offers) << boxes.back();
            ClickControl(window, offers ? answer : answer == IDOK ? IDNO : IDOK);
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
    /// Types into a field and presses OK, which has to be refused with a sentence.
    std::string RefusalOf(int control, const std::u16string& text)
    {
        HWND focus = nullptr;
        HWND wanted = nullptr;
        EXPECT_EQ(Configure([&](HWND dialog) {
                      SetDlgItemTextW(dialog, control, text.c_str());
                      ClickControl(dialog, IDOK);
                      EXPECT_TRUE(IsWindowVisible(dialog));
                      focus = GetFocus();
                      wanted = GetDlgItem(dialog, control);
                      ClickControl(dialog, IDCANCEL);
                  }),
                  0);
        EXPECT_EQ(focus, wanted);
        return boxes.size() == 1 ? boxes[0] : std::to_string(boxes.size()) + " boxes";
    }
    static u32 Number(const std::u16string& name)
    {
        const auto& numbers = CurrentTold().numbers;
        const auto found = numbers.find(u"PdfPrint" + name);
        return found == numbers.end() ? 12345 : static_cast<u32>(found->second);
    }
    static std::u16string File() { return CurrentTold().texts[u"PdfPrintFile"]; }
    static LRESULT Row(HWND dialog, int control)
    {
        return SendDlgItemMessageW(dialog, control, CB_GETCURSEL, 0, 0);
    }
    /// Chooses as a user does, the dialog being told.
    static void Choose(HWND dialog, int control, u32 row)
    {
        SendDlgItemMessageW(dialog, control, CB_SETCURSEL, row, 0);
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(control, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, control)));
    }
    static std::vector<std::u16string> Rows(HWND dialog, int control)
    {
        std::vector<std::u16string> rows;
        const LRESULT count = SendDlgItemMessageW(dialog, control, CB_GETCOUNT, 0, 0);
        for (LRESULT i = 0; i < count; ++i) {
            WCHAR text[64] = {};
            SendDlgItemMessageW(dialog, control, CB_GETLBTEXT, static_cast<WPARAM>(i),
                                reinterpret_cast<LPARAM>(text));
            rows.emplace_back(text);
        }
        return rows;
    }
    static bool IsEnabled(HWND dialog, int control)
    {
        return IsWindowEnabled(GetDlgItem(dialog, control)) != 0;
    }
    static bool IsChecked(HWND dialog, int control)
    {
        return SendDlgItemMessageW(dialog, control, BM_GETCHECK, 0, 0) == BST_CHECKED;
    }
    static std::u16string Caption(HWND dialog)
    {
        WCHAR text[64] = {};
        GetWindowTextW(dialog, text, 64);
        return text;
    }

    std::vector<std::string> boxes;
    std::u16string boxCaption;
    int answer = IDOK;
};

} // namespace

TEST_F(PrintDialog, ShowsTheStandardSettingsAndStoresThem)
{
    CurrentTold().texts.clear();
    std::filesystem::create_directories(HostPath(TEXT("\\My Documents")));
    EXPECT_EQ(ConfigureWithOk([](HWND dialog) {
                  EXPECT_EQ(ControlText(dialog, ControlFile), u"\\My Documents\\Tavrix.pdf");
                  EXPECT_EQ(Row(dialog, ControlPaper), 0);
                  EXPECT_EQ(Row(dialog, ControlOrientation), 0);
                  EXPECT_EQ(ControlText(dialog, ControlMargin), u"10");
                  EXPECT_TRUE(IsChecked(dialog, ControlFit));
                  EXPECT_FALSE(IsChecked(dialog, ControlRealSize));
                  EXPECT_EQ(ControlText(dialog, ControlResolution), u"96");
                  EXPECT_FALSE(IsEnabled(dialog, ControlResolution));
                  EXPECT_TRUE(IsEnabled(dialog, ControlOrientation));
              }),
              1);
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(File(), u"\\My Documents\\Tavrix.pdf");
    EXPECT_EQ(Number(u"Paper"), 0u);
    EXPECT_EQ(Number(u"Orientation"), 0u);
    EXPECT_EQ(Number(u"Margin"), 10u);
    EXPECT_EQ(Number(u"Fit"), 1u);
    EXPECT_EQ(Number(u"Resolution"), 96u);
    EXPECT_EQ(Number(u"Replace"), 0u);
    for (const auto& [key, value] : CurrentTold().numbers)
        EXPECT_EQ(key.rfind(u"PdfPrint", 0), 0u);
}

TEST_F(PrintDialog, WorksBeforeTheDocumentsFolderWasMade)
{
    CurrentTold().texts.clear();
    std::filesystem::remove_all(HostPath(TEXT("\\My Documents")));
    EXPECT_EQ(ConfigureWithOk(), 1);
    EXPECT_TRUE(boxes.empty()) << boxes[0];
}

TEST_F(PrintDialog, TakesWhatIsChosenAndShowsItAgain)
{
    EXPECT_EQ(ConfigureWithOk([this](HWND dialog) {
                  SetDlgItemTextW(dialog, ControlFile, DevicePath(Path("other")).c_str());
                  Choose(dialog, ControlPaper, 3);
                  Choose(dialog, ControlOrientation, 2);
                  SetDlgItemTextW(dialog, ControlMargin, u"0");
                  ClickControl(dialog, ControlRealSize);
                  EXPECT_TRUE(IsEnabled(dialog, ControlResolution));
                  SetDlgItemTextW(dialog, ControlResolution, u"300");
              }),
              1);
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(File(), DevicePath(Path("other.pdf")));
    EXPECT_EQ(Number(u"Paper"), 3u);
    EXPECT_EQ(Number(u"Orientation"), 2u);
    EXPECT_EQ(Number(u"Margin"), 0u);
    EXPECT_EQ(Number(u"Fit"), 0u);
    EXPECT_EQ(Number(u"Resolution"), 300u);
    EXPECT_EQ(Configure([this](HWND dialog) {
                  EXPECT_EQ(ControlText(dialog, ControlFile), DevicePath(Path("other.pdf")));
                  EXPECT_EQ(Row(dialog, ControlPaper), 3);
                  EXPECT_EQ(Row(dialog, ControlOrientation), 2);
                  EXPECT_EQ(ControlText(dialog, ControlMargin), u"0");
                  EXPECT_TRUE(IsChecked(dialog, ControlRealSize));
                  EXPECT_FALSE(IsChecked(dialog, ControlFit));
                  EXPECT_EQ(ControlText(dialog, ControlResolution), u"300");
                  ClickControl(dialog, IDCANCEL);
              }),
              0);
}

TEST_F(PrintDialog, ThePictureAsPaperTurnsOffWhatMeansNothing)
{
    EXPECT_EQ(ConfigureWithOk([](HWND dialog) {
                  Choose(dialog, ControlPaper, 5);
                  EXPECT_FALSE(IsEnabled(dialog, ControlOrientation));
                  EXPECT_FALSE(IsEnabled(dialog, ControlFit));
                  EXPECT_FALSE(IsEnabled(dialog, ControlRealSize));
                  EXPECT_TRUE(IsEnabled(dialog, ControlResolution));
                  Choose(dialog, ControlPaper, 1);
                  EXPECT_TRUE(IsEnabled(dialog, ControlOrientation));
                  EXPECT_TRUE(IsEnabled(dialog, ControlFit));
                  EXPECT_FALSE(IsEnabled(dialog, ControlResolution));
                  Choose(dialog, ControlPaper, 5);
              }),
              1);
    EXPECT_EQ(Number(u"Paper"), 5u);
}

TEST_F(PrintDialog, CancelEscAndItsCrossChangeNothing)
{
    const std::function<void(HWND)> ways[] = {
        [](HWND dialog) { ClickControl(dialog, IDCANCEL); },
        [](HWND) { TypeKey(VK_ESCAPE); },
        [](HWND dialog) { PostMessageW(dialog, WM_CLOSE, 0, 0); },
    };
    for (const auto& leave : ways) {
        CurrentTold().numbers.clear();
        EXPECT_EQ(Configure([&](HWND dialog) {
                      SetDlgItemTextW(dialog, ControlMargin, u"20");
                      leave(dialog);
                  }),
                  0);
        EXPECT_TRUE(CurrentTold().numbers.empty());
        EXPECT_EQ(File(), DevicePath(Path("page.pdf")));
    }
}

TEST_F(PrintDialog, TabWalksTheControlsInTheirOrderAndEnterIsOk)
{
    std::vector<int> walked;
    EXPECT_EQ(Configure([&](HWND) {
                  for (int i = 0; i < 7; ++i) {
                      walked.push_back(GetDlgCtrlID(GetFocus()));
                      TypeKey(VK_TAB);
                  }
                  TypeKey(VK_RETURN);
              }),
              1);
    EXPECT_EQ(walked, (std::vector<int>{ControlFile, ControlPaper, ControlOrientation,
                                        ControlMargin, ControlFit, IDOK, IDCANCEL}));
}

TEST_F(PrintDialog, FitsTheSmallestScreenWithEveryControlInside)
{
    for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
        SetLanguage(language);
        Load(language == 1041 ? 17 : 0);
        EXPECT_EQ(Configure([](HWND dialog) {
                      RECT frame = {};
                      GetWindowRect(dialog, &frame);
                      EXPECT_GE(frame.left, 0);
                      EXPECT_GE(frame.top, 0);
                      // In the middle, so that it fits over an owner anywhere.
                      EXPECT_NEAR(frame.left + frame.right, 640, 2);
                      EXPECT_NEAR(frame.top + frame.bottom, 480, 2);
                      for (const int id :
                           {ControlFile, ControlPaper, ControlOrientation, ControlMargin,
                            ControlFit, ControlRealSize, ControlResolution, IDOK, IDCANCEL}) {
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

TEST_F(PrintDialog, FollowsThePluginsLanguageInEveryText)
{
    using Texts = std::vector<std::u16string>;
    struct {
        u32 language;
        const char16_t* caption;
        Texts papers;
        Texts orientations;
        Texts buttons;
    } rows[] = {
        {0,
         u"PDF file",
         {u"A4", u"A5", u"A3", u"Letter", u"Legal", u"Size of the picture"},
         {u"Automatic", u"Portrait", u"Landscape"},
         {u"&Fit to the page", u"&Real size, at", u"OK", u"Cancel"}},
        {17,
         u"PDF ファイル",
         {u"A4", u"A5", u"A3", u"レター", u"リーガル", u"画像の大きさ"},
         {u"自動", u"縦", u"横"},
         {u"ページに合わせる(&F)", u"実寸(&R)", u"OK", u"キャンセル"}},
    };
    for (const auto& row : rows) {
        Load(row.language);
        EXPECT_EQ(Configure([&](HWND dialog) {
                      EXPECT_EQ(Caption(dialog), row.caption);
                      EXPECT_EQ(Rows(dialog, ControlPaper), row.papers);
                      EXPECT_EQ(Rows(dialog, ControlOrientation), row.orientations);
                      EXPECT_EQ((Texts{ControlText(dialog, ControlFit),
                                       ControlText(dialog, ControlRealSize),
                                       ControlText(dialog, IDOK), ControlText(dialog, IDCANCEL)}),
                                row.buttons);
                      ClickControl(dialog, IDCANCEL);
                  }),
                  0);
    }
}

TEST_F(PrintDialog, RefusesWhatIsOutOfRangeInBothLanguages)
{
    const std::u16string tooLong = u"\\" + std::u16string(257, u'x');
    const std::u16string folderName = DevicePath(Path("folder.pdf"));
    std::filesystem::create_directory(Path("folder.pdf"));
    const std::u16string missing = DevicePath(Path("none/page.pdf"));
    struct {
        int control;
        std::u16string text;
        const char* english;
        const char* japanese;
    } rows[] = {
        {ControlFile, u"", "Enter the name of the file to print to.",
         "印刷先のファイル名を入力してください。"},
        {ControlFile, u" \\ ", "Enter the name of the file to print to.",
         "印刷先のファイル名を入力してください。"},
        {ControlFile, tooLong, "The name of the file is too long.", "ファイル名が長すぎます。"},
        {ControlFile, folderName, "This is the name of a folder.", "これはフォルダの名前です。"},
        {ControlFile, missing, "The folder cannot be found.", "フォルダが見つかりません。"},
        {ControlMargin, u"51", "Margins are from 0 to 50 millimetres.",
         "余白は 0 から 50 ミリメートルまでです。"},
        {ControlMargin, u"", "Margins are from 0 to 50 millimetres.",
         "余白は 0 から 50 ミリメートルまでです。"},
        {ControlResolution, u"9", "The resolution is from 10 to 2400 pixels an inch.",
         "解像度は 1 インチあたり 10 から 2400 ピクセルまでです。"},
        {ControlResolution, u"2401", "The resolution is from 10 to 2400 pixels an inch.",
         "解像度は 1 インチあたり 10 から 2400 ピクセルまでです。"},
    };
    CurrentTold().numbers[u"PdfPrintFit"] = 0;
    for (const u32 language : {0u, 17u}) {
        Load(language);
        for (const auto& row : rows)
            EXPECT_EQ(RefusalOf(row.control, row.text), language ? row.japanese : row.english);
        EXPECT_EQ(boxCaption, language ? u"PDF ファイル" : u"PDF file");
    }
}

TEST_F(PrintDialog, AResolutionThatIsNotAskedForMayHoldAnything)
{
    EXPECT_EQ(ConfigureWithOk([](HWND dialog) { SetDlgItemTextW(dialog, ControlResolution, u""); }),
              1);
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(Number(u"Resolution"), 96u);
}

TEST_F(PrintDialog, AsksBeforeAFileIsReplaced)
{
    WriteFile(Path("page.pdf"), "old");
    answer = IDNO;
    EXPECT_EQ(Configure([](HWND dialog) {
                  ClickControl(dialog, IDOK);
                  EXPECT_TRUE(IsWindowVisible(dialog)) << "No goes back to the dialog";
                  EXPECT_EQ(GetDlgCtrlID(GetFocus()), ControlFile);
                  ClickControl(dialog, IDCANCEL);
              }),
              0);
    EXPECT_EQ(boxes, std::vector<std::string>{"This file is there already. Replace it?"});
    answer = IDYES;
    EXPECT_EQ(ConfigureWithOk(), 1);
    EXPECT_EQ(Number(u"Replace"), 1u);
    ASSERT_EQ(Print(4, 4, Noise), 1);
    EXPECT_EQ(NamesIn(folder), std::vector<std::string>{"page.pdf"});
    ExpectSound(Path("page.pdf"));
    // Chosen again, it is asked about again, in the language of the day.
    Load(17);
    EXPECT_EQ(ConfigureWithOk(), 1);
    EXPECT_EQ(boxes, std::vector<std::string>{"このファイルは既に存在します。上書きしますか？"});
}

TEST_F(PrintDialog, AnotherFileEndsTheAgreementAboutTheOldOne)
{
    CurrentTold().numbers[u"PdfPrintReplace"] = 1;
    EXPECT_EQ(ConfigureWithOk([this](HWND dialog) {
                  SetDlgItemTextW(dialog, ControlFile, DevicePath(Path("new.pdf")).c_str());
              }),
              1);
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(Number(u"Replace"), 0u);
}

TEST_F(PrintDialog, FailsWhereNothingCanBeStored)
{
    CurrentTold().refusesStoring = true;
    EXPECT_LT(ConfigureWithOk(), 0);
}

TEST_F(PrintDialog, WildSettingsAreShownWithinTheirRange)
{
    for (const char16_t* name : {u"Paper", u"Orientation", u"Margin", u"Fit", u"Resolution"})
        CurrentTold().numbers[u"PdfPrint" + std::u16string(name)] = 0x80000000;
    EXPECT_EQ(Configure([](HWND dialog) {
                  EXPECT_EQ(Row(dialog, ControlPaper), 5);
                  EXPECT_EQ(Row(dialog, ControlOrientation), 2);
                  EXPECT_EQ(ControlText(dialog, ControlMargin), u"50");
                  EXPECT_TRUE(IsChecked(dialog, ControlFit));
                  EXPECT_EQ(ControlText(dialog, ControlResolution), u"2400");
                  ClickControl(dialog, IDCANCEL);
              }),
              0);
}
