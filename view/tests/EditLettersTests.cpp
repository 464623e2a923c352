// The dialog for letters over the real controls; where a test says so, with fonts of its own
// making.

#include "view/EditLetters.h"

#include "platform/testing/Faults.h"
#include "view/tests/DialogTesting.h"
#include "view/tests/EnumeratedFonts.h"
#include "view/tests/ToolWindowTesting.h"

using dialogtest::Dialog;
using toolwindowtest::Windows;
using Text = std::u16string;
using Texts = std::vector<Text>;
using namespace tavrix::testing;

namespace
{

constexpr int Font = 1029;
constexpr int FontSize = 1033;
constexpr int Unit = 1034;
constexpr int Letters = 1035;
constexpr int NoBreak = 1036;

LRESULT Ask(const Dialog& dialog, int id, UINT message, WPARAM wParam = 0)
{
    return SendMessageW(dialog.Control(id), message, wParam, 0);
}

Texts Choices(const Dialog& dialog, int id)
{
    Texts texts;
    for (LRESULT i = 0; i < Ask(dialog, id, CB_GETCOUNT); ++i) {
        WCHAR text[100] = {};
        SendMessageW(dialog.Control(id), CB_GETLBTEXT, static_cast<WPARAM>(i),
                     reinterpret_cast<LPARAM>(text));
        texts.push_back(text);
    }
    return texts;
}

void SetText(const Dialog& dialog, int id, const Text& text)
{
    SetDlgItemTextW(dialog.window, id, text.c_str());
}

class EditLetters : public Windows
{
protected:
    i32 Show(const std::function<void(const Dialog&)>& script)
    {
        const LettersRequest request = {nullptr, &stack, 0, 0, 0, 0, 0};
        i32 result = Failed;
        EXPECT_EQ(
            dialogtest::Open([&] { result = ShowEditLetters(owner, instance, &request); }, script),
            1);
        return result;
    }
    /// What lies on the stack, the first that was pushed first; it is empty then.
    Texts Pushed()
    {
        Texts texts;
        Variant item{nullptr, VariantWide, 0};
        while (stack.Pop(&item) == Done) {
            texts.insert(texts.begin(), reinterpret_cast<const WCHAR*>(item.value));
            item.type = VariantWide;
        }
        return texts;
    }

    VariantStack stack;
    EnumeratedFonts fonts;
};

} // namespace

TEST_F(EditLetters, EachLanguageHasItsWords)
{
    const auto words = [this](LANGID language) {
        SetLanguage(language);
        Texts texts;
        EXPECT_EQ(Show([&](const Dialog& dialog) {
                      texts = {dialog.Caption(), dialog.Of(NoBreak), dialog.Of(1), dialog.Of(2)};
                      dialog.Command(2);
                  }),
                  NothingDone);
        return texts;
    };
    EXPECT_EQ(words(1033), (Texts{u"Edit Letters", u"non-breaking at the right edge of region",
                                  u"Draw", u"Abort"}));
    EXPECT_EQ(words(1041), (Texts{u"文字の編集", u"領域の右端で折り返さない", u"描画", u"中止"}));
}

TEST_F(EditLetters, TheSizesStandInTheirOrderAndTheUnitIsFixed)
{
    for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
        SetLanguage(language);
        Show([](const Dialog& dialog) {
            EXPECT_EQ(Choices(dialog, FontSize),
                      (Texts{u"10", u"20", u"30", u"40", u"50", u"75", u"100"}));
            EXPECT_EQ(Ask(dialog, FontSize, CB_GETCURSEL), 0);
            EXPECT_EQ(dialog.Of(FontSize), u"10");
            EXPECT_EQ(Choices(dialog, Unit), Texts{u"px"});
            EXPECT_EQ(dialog.Of(Unit), u"px");
            EXPECT_EQ(dialog.Of(Letters), u"");
            for (const int id : {Unit, NoBreak}) {
                EXPECT_FALSE(IsWindowEnabled(dialog.Control(id))) << id;
                EXPECT_TRUE(IsWindowVisible(dialog.Control(id))) << id;
            }
            EXPECT_EQ(Ask(dialog, NoBreak, BM_GETCHECK), BST_UNCHECKED);
            dialog.Command(2);
        });
    }
}

TEST_F(EditLetters, FontsOfTheKind4AloneAreListedInOrderAndTheFirstIsChosen)
{
    fonts.made = {{u"Bamboo", 4}, {u"Raster", 1}, {u"Device", 2}, {u"アルプス", 4},
                  {u"Aspen", 4},  {u"None", 0},   {u"Cedar", 4}};
    Show([](const Dialog& dialog) {
        EXPECT_EQ(Choices(dialog, Font), (Texts{u"Aspen", u"Bamboo", u"Cedar", u"アルプス"}));
        EXPECT_EQ(Ask(dialog, Font, CB_GETCURSEL), 0);
        EXPECT_EQ(dialog.Of(Font), u"Aspen");
        dialog.Command(2);
    });
}

TEST_F(EditLetters, OfMoreFontsThanThatTheFirst512AreListed)
{
    for (int count = 511; count <= 514; ++count) {
        fonts.made.clear();
        for (int i = 0; i < count; ++i)
            fonts.made.push_back({Text(u"F") + static_cast<char16_t>(0x4E00 + i), 4});
        Show([&](const Dialog& dialog) {
            const Texts listed = Choices(dialog, Font);
            ASSERT_EQ(listed.size(), static_cast<size_t>(std::min(count, 512)));
            EXPECT_EQ(listed.front(), fonts.made.front().name);
            EXPECT_EQ(listed.back(), fonts.made[listed.size() - 1].name);
            dialog.Command(2);
        });
    }
}

TEST_F(EditLetters, WithoutAnEnumerationTheListSaysSoAndThatIsTheFont)
{
    fonts.made = {{u"Aspen", 4}};
    fonts.fails = true;
    for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
        SetLanguage(language);
        EXPECT_EQ(Show([](const Dialog& dialog) {
                      EXPECT_EQ(Choices(dialog, Font), Texts{u"unexpected error..."});
                      EXPECT_EQ(Ask(dialog, Font, CB_GETCURSEL), 0);
                      dialog.Command(1);
                  }),
                  Done);
        EXPECT_EQ(Pushed(), (Texts{u"10", u"", u"unexpected error..."}));
    }
}

TEST_F(EditLetters, WithoutFontsTheListIsEmptyAndNoNameIsPushed)
{
    fonts.made = {{u"Raster", 1}};
    EXPECT_EQ(Show([](const Dialog& dialog) {
                  EXPECT_EQ(Choices(dialog, Font), Texts{});
                  dialog.Command(1);
              }),
              Done);
    EXPECT_EQ(Pushed(), (Texts{u"10", u"", u""}));
}

TEST_F(EditLetters, TheMachinesOwnFontsAreListed)
{
    Show([&](const Dialog& dialog) {
        const Texts listed = Choices(dialog, Font);
        EXPECT_NE(std::find(listed.begin(), listed.end(), u"DejaVu Sans"), listed.end());
        EXPECT_GE(listed.size(), 2u);
        EXPECT_EQ(dialog.Of(Font), listed.front());
        dialog.Command(2);
    });
    EXPECT_EQ(fonts.families, 1u) << "all families, asked for once";
}

TEST_F(EditLetters, DrawPushesTheSizeTheTextAndTheFont)
{
    fonts.made = {{u"Aspen", 4}, {u"Bamboo", 4}};
    EXPECT_EQ(Show([](const Dialog& dialog) {
                  SetText(dialog, Letters, u"two\r\n文字");
                  Ask(dialog, FontSize, CB_SETCURSEL, 5);
                  Ask(dialog, Font, CB_SETCURSEL, 1);
                  ClickControl(dialog.window, 1);
              }),
              Done);
    EXPECT_EQ(Pushed(), (Texts{u"75", u"two\r\n文字", u"Bamboo"}));
}

TEST_F(EditLetters, GivingUpPushesNothing)
{
    fonts.made = {{u"Aspen", 4}};
    const std::function<void(const Dialog&)> ways[] = {
        [](const Dialog& dialog) { ClickControl(dialog.window, 2); },
        [](const Dialog& dialog) { PostMessageW(dialog.window, WM_COMMAND, 2, 0); },
        [](const Dialog& dialog) { PostMessageW(dialog.window, WM_CLOSE, 0, 0); },
        [](const Dialog&) { TypeKey(VK_ESCAPE); },
    };
    for (size_t way = 0; way < std::size(ways); ++way) {
        EXPECT_EQ(Show([&](const Dialog& dialog) {
                      Pump(20);
                      SetText(dialog, Letters, u"text");
                      for (const WPARAM id : {0, 3, Font, FontSize, Letters, NoBreak})
                          dialog.Command(id);
                      EXPECT_TRUE(IsWindowVisible(dialog.window));
                      ways[way](dialog);
                  }),
                  NothingDone)
            << way;
        EXPECT_EQ(Pushed(), Texts{}) << way;
    }
}

TEST_F(EditLetters, ASizeThatIsTypedCountsWhereTheListHasIt)
{
    fonts.made = {{u"Aspen", 4}};
    const struct {
        Text typed;
        Text pushed;
    } rows[] = {{u"20", u"20"}, {u"100", u"100"}, {u"24", u""},  {u"", u""},
                {u"1", u""},    {u"010", u""},    {u"10 ", u""}, {u"-10", u""},
                {u"1000", u""}, {u"十", u""},     {u"7", u""},   {Text(3000, u'9'), u""}};
    for (const auto& row : rows) {
        EXPECT_EQ(Show([&](const Dialog& dialog) {
                      SetText(dialog, FontSize, row.typed);
                      dialog.Command(1);
                  }),
                  Done);
        EXPECT_EQ(Pushed(), (Texts{row.pushed, u"", u"Aspen"})) << Utf8(row.typed.c_str());
    }
}

TEST_F(EditLetters, OfALongTextTheFirst1023CharactersCount)
{
    fonts.made = {{u"Aspen", 4}};
    for (const size_t length : {1022u, 1023u, 1024u, 5000u}) {
        EXPECT_EQ(Show([&](const Dialog& dialog) {
                      SetText(dialog, Letters, Text(length, u'字'));
                      dialog.Command(1);
                  }),
                  Done);
        EXPECT_EQ(Pushed(), (Texts{u"10", Text(std::min<size_t>(length, 1023), u'字'), u"Aspen"}));
    }
}

TEST_F(EditLetters, TheKeysAloneWriteChooseAndDraw)
{
    fonts.made = {{u"Aspen", 4}, {u"Bamboo", 4}, {u"Cedar", 4}};
    EXPECT_EQ(Show([](const Dialog& dialog) {
                  Pump(20);
                  EXPECT_EQ(GetFocus(), dialog.Control(Letters));
                  TypeKey('A');
                  TypeKey(VK_RETURN);
                  CommitText(u"日本");
                  EXPECT_TRUE(IsWindowVisible(dialog.window)) << "Enter ends a line";
                  TypeKey(VK_TAB);
                  EXPECT_EQ(GetFocus(), dialog.Control(Font));
                  TypeKey(VK_DOWN);
                  TypeKey(VK_TAB);
                  EXPECT_EQ(GetParent(GetFocus()), dialog.Control(FontSize));
                  TypeKey('3');
                  TypeKey('0');
                  TypeKey(VK_TAB);
                  EXPECT_EQ(GetFocus(), dialog.Control(1)) << "what is disabled is passed over";
                  TypeKey(VK_TAB);
                  EXPECT_EQ(GetFocus(), dialog.Control(2));
                  TypeKey(VK_TAB);
                  EXPECT_EQ(GetFocus(), dialog.Control(Letters));
                  TypeKey(VK_TAB, MK_SHIFT);
                  TypeKey(VK_TAB, MK_SHIFT);
                  TypeKey(VK_TAB, MK_SHIFT);
                  EXPECT_EQ(GetParent(GetFocus()), dialog.Control(FontSize));
                  EXPECT_EQ(dialog.Of(Letters), u"a\r\n日本");
                  TypeKey(VK_RETURN);
              }),
              Done);
    EXPECT_EQ(Pushed(), (Texts{u"30", u"a\r\n日本", u"Bamboo"}));
}

TEST_F(EditLetters, ASizeIsChosenFromTheListWithTheArrows)
{
    fonts.made = {{u"Aspen", 4}};
    EXPECT_EQ(Show([](const Dialog& dialog) {
                  Pump(20);
                  SetFocus(dialog.Control(FontSize));
                  TypeKey(VK_DOWN);
                  TypeKey(VK_DOWN);
                  TypeKey(VK_DOWN);
                  EXPECT_EQ(dialog.Of(FontSize), u"40");
                  TypeKey(VK_RETURN);
              }),
              Done);
    EXPECT_EQ(Pushed(), (Texts{u"40", u"", u"Aspen"}));
}

TEST_F(EditLetters, WithoutMemoryForItsOwnStackItBeepsAndStartsEmpty)
{
    fonts.made = {{u"Aspen", 4}};
    const unsigned beeps = tavrix::platform::Hooks().beeps;
    bool fired = false;
    SetAllocationFault([&](SIZE_T size) {
        const bool fires = !fired && size == sizeof(VariantStack);
        fired = fired || fires;
        return fires;
    });
    EXPECT_EQ(Show([&](const Dialog& dialog) {
                  SetAllocationFault(nullptr);
                  EXPECT_EQ(tavrix::platform::Hooks().beeps, beeps + 1);
                  for (const int id : {Font, FontSize, Unit})
                      EXPECT_EQ(Choices(dialog, id), Texts{}) << id;
                  SetText(dialog, Letters, u"text");
                  dialog.Command(1);
              }),
              Done);
    EXPECT_EQ(Pushed(), (Texts{u"", u"text", u""}));
}

TEST_F(EditLetters, AnyShortageOfMemoryIsSurvivedAndLeavesNothing)
{
    fonts.made = {{u"Aspen", 4}, {u"Bamboo", 4}};
    ForEveryFault(FaultKind::Allocation, [&] {
        VariantStack answers;
        const LettersRequest request = {nullptr, &answers, 0, 0, 0, 0, 0};
        (void)dialogtest::Open([&] { (void)ShowEditLetters(owner, instance, &request); },
                               [](const Dialog& dialog) {
                                   SetText(dialog, Letters, u"text");
                                   dialog.Close();
                               });
    });
}

TEST_F(EditLetters, NothingIsCutOffOnTheSmallScreenInEitherLanguage)
{
    for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
        SetLanguage(language);
        Show([](const Dialog& dialog) {
            Pump(20);
            const RECT whole = dialogtest::PlaceOf(dialog.window);
            EXPECT_GE(whole.left, 0);
            EXPECT_GE(whole.top, 0);
            EXPECT_LE(whole.right, 640);
            EXPECT_LE(whole.bottom, 480);
            std::vector<RECT> places;
            for (const int id : {Letters, Font, FontSize, Unit, NoBreak, 1, 2}) {
                const RECT place = dialogtest::PlaceOf(dialog.Control(id));
                EXPECT_GT(place.right, place.left) << id;
                EXPECT_GE(place.left, whole.left) << id;
                EXPECT_GE(place.top, whole.top) << id;
                EXPECT_LE(place.right, whole.right) << id;
                EXPECT_LE(place.bottom, whole.bottom) << id;
                for (const RECT& other : places)
                    EXPECT_TRUE(place.left >= other.right || other.left >= place.right ||
                                place.top >= other.bottom || other.top >= place.bottom)
                        << id << " lies over another";
                places.push_back(place);
            }
            dialog.Command(2);
        });
    }
}

TEST_F(EditLetters, NothingOpensWithoutARecordAStackOrItsTemplate)
{
    const LettersRequest none = {};
    EXPECT_EQ(ShowEditLetters(owner, instance, nullptr), BadArgument);
    EXPECT_EQ(ShowEditLetters(owner, instance, &none), BadArgument);
    const HMODULE other = LoadLibraryW(TEXT("ceshell.dll"));
    const LettersRequest request = {nullptr, &stack, 0, 0, 0, 0, 0};
    EXPECT_EQ(ShowEditLetters(owner, other, &request), Failed);
    FreeLibrary(other);
    EXPECT_EQ(Pushed(), Texts{});
}

TEST_F(EditLetters, AnOwnerThatGoesEndsIt)
{
    EXPECT_LT(Show([this](const Dialog&) { DestroyWindow(owner); }), Done);
    EXPECT_EQ(Pushed(), Texts{});
}
