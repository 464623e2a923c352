// The dialog for the clipboard's format over the real controls.

#include "view/ClipboardFormat.h"

#include "view/tests/DialogTesting.h"

using namespace dialogtest;

namespace
{

constexpr int List = 1110;
constexpr int Description = 1112;
constexpr i32 Unanswered = -99;

const Text dibEnglish =
    u"Copy image to clipboard in Device Independent Bitmap (DIB) format. It can be "
    u"handled by Pocket Word and other softwares.";
const Text dibJapanese =
    u"デバイス非依存BITMAP(DIB)形式でクリップボードにコピーします。Pocket Word等で"
    u"扱える形式です。";
const Text bitmapEnglish = u"Copy image to clipboard in BITMAP format.";
const Text bitmapJapanese = u"BITMAP形式でクリップボードにコピーします。";

class ClipboardFormat : public ::testing::Test
{
protected:
    ClipboardFormat() { SetLanguage(1033); }

    i32 Ask(u32 last, const std::function<void(const Dialog&)>& script)
    {
        i32 answer = Unanswered;
        EXPECT_EQ(
            Open([&] { answer = AskClipboardFormat(frame.window, frame.instance, last); }, script),
            1);
        return answer;
    }
    static int Chosen(const Dialog& dialog)
    {
        return static_cast<int>(SendMessageW(dialog.Control(List), LB_GETCURSEL, 0, 0));
    }
    static Text Row(const Dialog& dialog, WPARAM row)
    {
        WCHAR text[40] = {};
        SendMessageW(dialog.Control(List), LB_GETTEXT, row, reinterpret_cast<LPARAM>(text));
        return text;
    }
    /// The middle of a row, on the screen.
    static POINT PlaceOfRow(const Dialog& dialog, int row)
    {
        const RECT place = PlaceOf(dialog.Control(List));
        return {place.left + 30, place.top + 10 + row * 17};
    }

    Scope scope;
    PenFrame frame;
};

} // namespace

TEST_F(ClipboardFormat, TheLastFormatIsChosenAndDescribedFromTheStartInBothLanguages)
{
    for (const LANGID language : {LANGID{1033}, LANGID{1041}})
        for (const u32 last : {0u, 1u}) {
            SetLanguage(language);
            EXPECT_EQ(Ask(last,
                          [&](const Dialog& dialog) {
                              EXPECT_EQ(SendMessageW(dialog.Control(List), LB_GETCOUNT, 0, 0), 2);
                              EXPECT_EQ(Row(dialog, 0), u"CF_DIB");
                              EXPECT_EQ(Row(dialog, 1), u"CF_BITMAP");
                              EXPECT_EQ(Chosen(dialog), static_cast<int>(last));
                              EXPECT_EQ(dialog.Of(Description), u"") << "posted";
                              Pump(20);
                              const bool english = language == 1033;
                              EXPECT_EQ(dialog.Of(Description),
                                        last == 0 ? (english ? dibEnglish : dibJapanese)
                                                  : (english ? bitmapEnglish : bitmapJapanese));
                              EXPECT_EQ(dialog.Caption(),
                                        english ? u"Copy to Clipboard" : u"クリップボードへコピー");
                              EXPECT_EQ(dialog.Of(IDOK), u"COPY");
                              dialog.Close();
                          }),
                      static_cast<i32>(last));
        }
}

TEST_F(ClipboardFormat, TheKeyboardAloneChoosesAndTakes)
{
    EXPECT_EQ(Ask(0,
                  [](const Dialog& dialog) {
                      Pump(20);
                      EXPECT_EQ(GetFocus(), dialog.Control(List));
                      TypeKey(VK_DOWN);
                      Pump(20);
                      EXPECT_EQ(dialog.Of(Description), bitmapEnglish);
                      TypeKey(VK_RETURN);
                  }),
              1);
    EXPECT_EQ(Ask(1,
                  [](const Dialog& dialog) {
                      Pump(20);
                      TypeKey(VK_UP);
                      Pump(20);
                      EXPECT_EQ(dialog.Of(Description), dibEnglish);
                      TypeKey(VK_TAB);
                      EXPECT_EQ(GetFocus(), dialog.Control(IDOK));
                      TypeKey(VK_TAB);
                      EXPECT_EQ(GetFocus(), dialog.Control(List));
                      TypeKey(VK_TAB);
                      TypeKey(VK_SPACE);
                  }),
              0);
}

TEST_F(ClipboardFormat, AClickChoosesAndADoubleClickTakes)
{
    EXPECT_EQ(Ask(0,
                  [](const Dialog& dialog) {
                      Pump(20);
                      const POINT row = PlaceOfRow(dialog, 1);
                      ClickScreen(row.x, row.y);
                      Pump(20);
                      EXPECT_EQ(Chosen(dialog), 1);
                      EXPECT_EQ(dialog.Of(Description), bitmapEnglish);
                      EXPECT_TRUE(IsWindowVisible(dialog.window));
                      ClickControl(dialog.window, IDOK);
                  }),
              1);
    EXPECT_EQ(Ask(0,
                  [](const Dialog& dialog) {
                      Pump(20);
                      const POINT row = PlaceOfRow(dialog, 1);
                      DoubleClickScreen(row.x, row.y);
                  }),
              1);
}

TEST_F(ClipboardFormat, EveryWayToCloseItGivesNone)
{
    const std::function<void(const Dialog&)> ways[] = {
        [](const Dialog& dialog) { ClickCross(dialog.window); },
        [](const Dialog&) { TypeKey(VK_ESCAPE); },
        [](const Dialog& dialog) { PostMessageW(dialog.window, WM_CLOSE, 0, 0); },
        [](const Dialog& dialog) { PostMessageW(dialog.window, WM_COMMAND, IDCANCEL, 0); },
    };
    for (const LANGID language : {LANGID{1033}, LANGID{1041}})
        for (const auto& way : ways) {
            SetLanguage(language);
            EXPECT_EQ(Ask(1,
                          [&](const Dialog& dialog) {
                              Pump(20);
                              dialog.Command(3);
                              dialog.Command(MAKELONG(List, LBN_SETFOCUS));
                              dialog.Command(Description);
                              EXPECT_TRUE(IsWindowVisible(dialog.window));
                              way(dialog);
                          }),
                      -1);
        }
}

TEST_F(ClipboardFormat, ARowThatIsNotThereLeavesNoneChosen)
{
    for (const u32 last : {2u, 0xFFFFFFFFu})
        EXPECT_EQ(Ask(last,
                      [](const Dialog& dialog) {
                          Pump(20);
                          EXPECT_EQ(Chosen(dialog), -1);
                          EXPECT_EQ(dialog.Of(Description), u"");
                          dialog.Close();
                      }),
                  -1);
}

TEST_F(ClipboardFormat, WithoutItsTemplateThereIsNone)
{
    const HMODULE other = LoadLibraryW(TEXT("ceshell.dll"));
    EXPECT_EQ(AskClipboardFormat(frame.window, other, 0), -1);
    FreeLibrary(other);
}

TEST_F(ClipboardFormat, TheLongestTextHasItsRoomAndTheDialogItsPlaceOnTheScreen)
{
    for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
        SetLanguage(language);
        Ask(0, [&](const Dialog& dialog) {
            Pump(50);
            const RECT dialogPlace = PlaceOf(dialog.window);
            EXPECT_GE(dialogPlace.left, 0);
            EXPECT_GE(dialogPlace.top, 0);
            EXPECT_LE(dialogPlace.right, 640);
            EXPECT_LE(dialogPlace.bottom, 480);
            // The last of the text's lines ends above the end of its place.
            const HWND text = dialog.Control(Description);
            const Picture picture = WindowPixels(text);
            const uint32_t ground = picture.At(picture.width - 1, picture.height - 1);
            int last = 0;
            for (int y = 0; y < picture.height; ++y)
                for (int x = 0; x < picture.width; ++x)
                    if (picture.At(x, y) != ground)
                        last = y;
            EXPECT_GT(last, 20) << "two lines at least";
            EXPECT_LT(last, picture.height - 4);
            TypeKey(VK_ESCAPE);
        });
    }
}
