// The dialog for an address, over the real controls.

#include "view/UrlDialog.h"

#include "platform/host/Resources.h"
#include "view/tests/SizeDialogTesting.h"

using namespace sizedialogtest;

namespace
{

constexpr int Address = 1087;

class UrlDialog : public Windows
{
protected:
    i32 Show(const std::function<void(const Dialog&)>& script)
    {
        i32 result = Failed;
        EXPECT_EQ(Open([&] { result = ShowUrlDialog(owner, instance, address); }, script), 1);
        return result;
    }
    /// The caller's buffer, with signs behind the text that must not be taken for a part of it.
    void Fill(const Text& text)
    {
        std::fill_n(address, UrlCapacity, u'#');
        std::copy_n(text.c_str(), text.size() + 1, address);
    }

    WCHAR address[UrlCapacity + 1] = {};
};

} // namespace

TEST_F(UrlDialog, ShowsTheAddressAndHasTheFocusThere)
{
    for (const Text& text :
         {Text(u"http://"), Text(u""), Text(u"http://サーバー/画像.png?a=1&b=\"2\" %20")}) {
        Fill(text);
        Show([&](const Dialog& dialog) {
            Pump(20);
            EXPECT_EQ(dialog.Of(Address), text);
            EXPECT_EQ(GetParent(GetFocus()), dialog.Control(Address));
            EXPECT_EQ(Entries(dialog, Address), Texts{});
            dialog.Close();
        });
    }
}

TEST_F(UrlDialog, EachLanguageHasItsWordsAndNothingLiesOverAnything)
{
    const std::vector<int> ids = {Address, IDOK, IDCANCEL};
    const auto words = [](const Dialog& dialog) {
        return Texts{dialog.Caption(), dialog.Of(IDOK), dialog.Of(IDCANCEL)};
    };
    Show([&](const Dialog& dialog) {
        EXPECT_EQ(words(dialog), (Texts{u"Open URL", u"Open", u"Cancel"}));
        ExpectTidy(dialog, ids);
        dialog.Close();
    });
    SetLanguage(1041);
    Show([&](const Dialog& dialog) {
        EXPECT_EQ(words(dialog), (Texts{u"URLを開く", u"開く", u"キャンセル"}));
        ExpectTidy(dialog, ids);
        dialog.Close();
    });
}

// Some fifty characters, of which the widest are few.
TEST_F(UrlDialog, AnOrdinaryAddressIsSeenWhole)
{
    const Text text = u"http://www.example.org/pictures/2003/IMG_0001.jpg";
    Show([&](const Dialog& dialog) {
        const RECT place = PlaceOf(dialog.Control(Address));
        RECT needed = {};
        const HDC context = GetDC(dialog.window);
        const auto font =
            reinterpret_cast<HGDIOBJ>(SendMessageW(dialog.Control(Address), WM_GETFONT, 0, 0));
        const HGDIOBJ before = SelectObject(context, font);
        DrawTextW(context, text.c_str(), -1, &needed, DT_CALCRECT | DT_SINGLELINE);
        SelectObject(context, before);
        ReleaseDC(dialog.window, context);
        EXPECT_GT(needed.right, 100);
        EXPECT_LT(needed.right + 30, place.right - place.left) << "with the arrow beside it";
        dialog.Close();
    });
}

TEST_F(UrlDialog, OpenTakesWhatTheFieldHolds)
{
    for (const Text& text : {Text(u"http://a/b.png"), Text(u""), Text(u" x "), Text(u"日本語")}) {
        Fill(u"http://before/");
        EXPECT_EQ(Show([&](const Dialog& dialog) {
                      SetDlgItemTextW(dialog.window, Address, text.c_str());
                      ClickControl(dialog.window, IDOK);
                  }),
                  Done);
        EXPECT_EQ(Text(address), text);
    }
}

TEST_F(UrlDialog, OfALongAddress4095CharactersComeBack)
{
    for (const size_t length : {4094u, 4095u, 4096u, 9000u}) {
        Text text(length, u'b');
        for (size_t i = 0; i < length; ++i)
            text[i] = static_cast<char16_t>(u'a' + i % 26);
        Fill(u"");
        address[UrlCapacity] = u'!';
        EXPECT_EQ(Show([&](const Dialog& dialog) {
                      SetDlgItemTextW(dialog.window, Address, text.c_str());
                      EXPECT_EQ(GetWindowTextLengthW(dialog.Control(Address)),
                                static_cast<int>(length));
                      dialog.Close();
                  }),
                  Done);
        EXPECT_EQ(Text(address), text.substr(0, 4095));
        EXPECT_EQ(address[UrlCapacity], u'!');
    }
    Fill(Text(4095, u'z'));
    EXPECT_EQ(Show([&](const Dialog& dialog) {
                  EXPECT_EQ(dialog.Of(Address), Text(4095, u'z'));
                  dialog.Close();
              }),
              Done);
    EXPECT_EQ(Text(address), Text(4095, u'z'));
}

TEST_F(UrlDialog, MoreThanTheFieldShowsCanBeTyped)
{
    Fill(u"");
    EXPECT_EQ(Show([&](const Dialog&) {
                  Pump(20);
                  CommitText(Text(300, u'W'));
                  TypeKey(VK_RETURN);
              }),
              Done);
    EXPECT_EQ(Text(address), Text(300, u'W'));
}

TEST_F(UrlDialog, TheKeysAloneWriteAnAddressOverTheOldOneAndOpenIt)
{
    Fill(u"http://old/");
    EXPECT_EQ(Show([&](const Dialog& dialog) {
                  Pump(20);
                  CommitText(u"http://new/a.png");
                  EXPECT_EQ(dialog.Of(Address), u"http://new/a.png") << "over what stands there";
                  TypeKey(VK_RETURN);
              }),
              Done);
    EXPECT_EQ(Text(address), u"http://new/a.png");

    EXPECT_EQ(Show([&](const Dialog& dialog) {
                  Pump(20);
                  TypeKey(VK_END);
                  CommitText(u"?x");
                  TypeKey(VK_TAB);
                  EXPECT_EQ(GetFocus(), dialog.Control(IDOK));
                  TypeKey(VK_TAB);
                  EXPECT_EQ(GetFocus(), dialog.Control(IDCANCEL));
                  TypeKey(VK_TAB);
                  EXPECT_EQ(GetParent(GetFocus()), dialog.Control(Address));
                  TypeKey(VK_TAB, MK_SHIFT);
                  TypeKey(VK_TAB, MK_SHIFT);
                  TypeKey(VK_SPACE); // on "Open"
              }),
              Done);
    EXPECT_EQ(Text(address), u"http://new/a.png?x");
}

TEST_F(UrlDialog, GivenUpItLeavesTheAddressAsItWas)
{
    const std::function<void(const Dialog&)> ways[] = {
        [](const Dialog& dialog) { ClickControl(dialog.window, IDCANCEL); },
        [](const Dialog& dialog) { PostMessageW(dialog.window, WM_COMMAND, IDCANCEL, 0); },
        [](const Dialog& dialog) { PostMessageW(dialog.window, WM_CLOSE, 0, 0); },
        [](const Dialog&) { TypeKey(VK_ESCAPE); },
    };
    Fill(u"http://kept/");
    const Text all(address, UrlCapacity);
    for (size_t way = 0; way < std::size(ways); ++way) {
        EXPECT_EQ(Show([&](const Dialog& dialog) {
                      Pump(20);
                      SetDlgItemTextW(dialog.window, Address, u"http://typed/");
                      for (const WPARAM id : {0, 3, Address})
                          dialog.Command(id);
                      EXPECT_TRUE(IsWindowVisible(dialog.window)) << "another command ended it";
                      ways[way](dialog);
                  }),
                  NothingDone)
            << way;
        EXPECT_EQ(Text(address, UrlCapacity), all) << way;
    }
}

TEST_F(UrlDialog, NothingIsShownWithoutABufferNorWithoutItsTemplate)
{
    EXPECT_EQ(ShowUrlDialog(owner, instance, nullptr), BadArgument);
    const BYTE none = 0;
    TavrixRegisterResources(nullptr, &none, &none);
    Fill(u"http://kept/");
    EXPECT_EQ(ShowUrlDialog(owner, instance, address), Failed);
    EXPECT_EQ(Text(address), u"http://kept/");
}
