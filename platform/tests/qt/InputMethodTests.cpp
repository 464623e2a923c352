// Input methods in edit fields: what is composed, what comes of it, and where it shows.
#include "platform/qt/Window.h"
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/ControlResources.h"
#include "platform/tests/qt/TestWindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QStyleHints>
#include <QWidget>

#include <string>
#include <vector>

using namespace tavrix::testing;
using tavrix::test::TestWindow;

namespace
{

constexpr int FieldId = 55;

/// What an input method sends: what is being composed now, and what is done.
void Compose(const std::u16string& composed, const std::u16string& done = u"")
{
    QObject* focus = QGuiApplication::focusObject();
    ASSERT_NE(focus, nullptr);
    QInputMethodEvent event(QString::fromStdU16String(composed), {});
    event.setCommitString(QString::fromStdU16String(done));
    QCoreApplication::sendEvent(focus, &event);
}

enum class Form { Line, Box, Combo };
constexpr Form Forms[] = {Form::Line, Form::Box, Form::Combo};

/// A field of each form under one name, with the word it gives its parent of a change.
class InputMethod : public ::testing::Test
{
protected:
    InputMethod()
        : parent([this](HWND, UINT message, WPARAM wParam, LPARAM) -> std::optional<LRESULT> {
              if (message != WM_COMMAND || LOWORD(wParam) != FieldId)
                  return std::nullopt;
              const bool change = HIWORD(wParam) == (combo ? CBN_EDITCHANGE : EN_CHANGE);
              changes += change ? 1 : 0;
              return 0;
          })
    {
    }

    void Make(Form form, const WCHAR* text, DWORD more = 0)
    {
        if (field != nullptr)
            DestroyWindow(field);
        combo = form == Form::Combo;
        const DWORD style = form == Form::Box     ? ES_MULTILINE
                            : form == Form::Combo ? CBS_DROPDOWN
                                                  : ES_AUTOHSCROLL;
        field = CreateWindowExW(0, combo ? TEXT("COMBOBOX") : TEXT("EDIT"), TEXT(""),
                                WS_CHILD | WS_VISIBLE | style | more, 40, 30, 200, 60,
                                parent.handle, reinterpret_cast<HMENU>(FieldId), nullptr, nullptr);
        SetWindowTextW(field, text);
        if (other == nullptr)
            other = CreateWindowExW(0, TEXT("BUTTON"), TEXT("b"), WS_CHILD | WS_VISIBLE, 300, 20,
                                    50, 20, parent.handle, nullptr, nullptr, nullptr);
        SetFocus(field);
        QGuiApplication::styleHints()->setCursorFlashTime(0); // looks are compared
        Pump(20);
        Select(static_cast<int>(std::char_traits<char16_t>::length(text)), -1);
        changes = 0;
    }
    void Select(int first, int behind)
    {
        if (combo)
            SendMessageW(field, CB_SETEDITSEL, 0, MAKELPARAM(first, behind));
        else
            SendMessageW(field, EM_SETSEL, static_cast<WPARAM>(first), behind);
    }
    LRESULT Selection() { return SendMessageW(field, combo ? CB_GETEDITSEL : EM_GETSEL, 0, 0); }
    std::u16string Text() { return ControlText(parent.handle, FieldId); }
    std::vector<uint32_t> Look()
    {
        Pump(20);
        return WindowPixels(field).pixels;
    }

    Scope scope;
    HWND field = nullptr;
    HWND other = nullptr;
    bool combo = false;
    int changes = 0;
    TestWindow parent;
};

} // namespace

TEST_F(InputMethod, WhatIsComposedShowsAndBecomesTextAtOnce)
{
    for (const Form form : Forms) {
        Make(form, TEXT("x"));
        const std::vector<uint32_t> before = Look();
        Compose(u"に");
        Compose(u"にほん");
        EXPECT_NE(Look(), before);
        EXPECT_EQ(Text(), u"x");
        EXPECT_EQ(changes, 0);
        Compose(u"日本");
        Compose(u"", u"日本");
        EXPECT_EQ(Text(), u"x日本");
        EXPECT_EQ(changes, 1);
        Compose(u"ご");
        Compose(u"か", u"語");
        EXPECT_EQ(Text(), u"x日本") << "the next is being composed already";
        Compose(u"", u"科");
        EXPECT_EQ(Text(), u"x日本語科");
        EXPECT_EQ(changes, 2);
    }
}

TEST_F(InputMethod, AComposingThatComesToNothingLeavesTheTextAndItsSelection)
{
    for (const Form form : Forms) {
        Make(form, TEXT("0123456"));
        Select(2, 5);
        Compose(u"か");
        Compose(u"");
        EXPECT_EQ(Text(), u"0123456");
        EXPECT_EQ(Selection(), MAKELONG(2, 5));
        EXPECT_EQ(changes, 0);
        Compose(u"か");
        Compose(u"", u"可");
        EXPECT_EQ(Text(), u"01可56");
        EXPECT_EQ(changes, 1);
        Select(0, -1);
        Compose(u"x");
        Compose(u"");
        Compose(u"", u"全"); // as some do: nothing first, then the text
        EXPECT_EQ(Text(), u"全");
        EXPECT_EQ(changes, 2);
    }
}

TEST_F(InputMethod, LosingTheFocusKeepsWhatWasThere)
{
    for (const Form form : Forms) {
        Make(form, TEXT("0123456"));
        Select(2, 5);
        Compose(u"かな");
        SetFocus(other);
        EXPECT_EQ(Text(), u"01かな56");
        EXPECT_EQ(changes, 1);
        SetFocus(field);
        Pump(20);
        Select(7, 7);
        TypeKey('A');
        EXPECT_EQ(Text().size(), 7u) << "and nothing hangs in the field any more";
    }
}

TEST_F(InputMethod, ATextOfTheProgramsEndsTheComposing)
{
    for (const Form form : Forms) {
        Make(form, TEXT("before"));
        Compose(u"かな");
        SetWindowTextW(field, TEXT("after"));
        EXPECT_EQ(Text(), u"after");
        const std::vector<uint32_t> look = Look();
        SetFocus(other);
        SetFocus(field);
        EXPECT_EQ(Text(), u"after");
        Make(form, TEXT("after"));
        EXPECT_EQ(Look(), look);
        if (form == Form::Combo)
            continue;
        Compose(u"かな");
        SendMessageW(field, EM_REPLACESEL, 0, reinterpret_cast<LPARAM>(TEXT("!")));
        EXPECT_EQ(Text(), u"after!");
        Compose(u"かな");
        SendMessageW(field, EM_SETREADONLY, TRUE, 0);
        Compose(u"", u"かな");
        EXPECT_EQ(Text(), u"after!");
    }
}

TEST_F(InputMethod, FieldsForNumbersPasswordsAndReadingAskForNone)
{
    const auto asks = [] {
        QInputMethodQueryEvent query(Qt::ImEnabled | Qt::ImHints);
        QCoreApplication::sendEvent(QGuiApplication::focusObject(), &query);
        return query.value(Qt::ImEnabled).toBool();
    };
    for (const Form form : {Form::Line, Form::Box}) {
        Make(form, TEXT("text"));
        EXPECT_TRUE(asks());
        Make(form, TEXT("text"), ES_READONLY);
        EXPECT_FALSE(asks());
        SendMessageW(field, EM_SETREADONLY, FALSE, 0);
        EXPECT_TRUE(asks());
        SendMessageW(field, EM_SETREADONLY, TRUE, 0);
        EXPECT_FALSE(asks());
    }
    Make(Form::Line, TEXT("secret"), ES_PASSWORD);
    EXPECT_FALSE(asks()) << "what is composed would be read";
    Make(Form::Line, TEXT("1"), ES_NUMBER);
    QInputMethodQueryEvent query(Qt::ImHints);
    QCoreApplication::sendEvent(QGuiApplication::focusObject(), &query);
    EXPECT_NE(query.value(Qt::ImHints).toInt() & Qt::ImhDigitsOnly, 0);
    Compose(u"にじゅう");
    Compose(u"", u"二十20");
    EXPECT_EQ(Text(), u"120");
    EXPECT_EQ(changes, 1);
    Select(0, -1);
    Compose(u"あ");
    Compose(u"", u"亜");
    EXPECT_EQ(changes, Text() == u"120" ? 1 : 2);
}

TEST_F(InputMethod, TheListOfCandidatesIsTakenToTheCaretAndMovesWithTheWindow)
{
    const auto where = [] { return QGuiApplication::inputMethod()->cursorRectangle(); };
    for (const Form form : Forms) {
        Make(form, TEXT(""));
        const QRectF first = where();
        POINT corner{0, 0};
        ClientToScreen(field, &corner);
        EXPECT_GE(first.left(), corner.x - 4);
        EXPECT_LT(first.left(), corner.x + 12);
        EXPECT_GE(first.top(), corner.y);
        EXPECT_LT(first.bottom(), corner.y + 60);
        SetWindowTextW(field, TEXT("some text before it"));
        Select(19, 19);
        EXPECT_GT(where().left(), first.left() + 80);
        MoveWindow(field, 140, 90, 200, 60, TRUE);
        Select(0, 0);
        EXPECT_EQ(where().left(), first.left() + 100);
        EXPECT_EQ(where().top(), first.top() + 60);
    }
}

namespace
{

std::vector<int> answers;

INT_PTR CALLBACK TellsAnswers(HWND, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED && LOWORD(wParam) <= IDCANCEL)
        answers.push_back(LOWORD(wParam));
    return message == WM_INITDIALOG;
}

} // namespace

TEST(InputMethodInADialog, TheListOfCandidatesMovesWithTheDialog)
{
    const Scope scope;
    const TestWindow owner;
    OnModal([&](HWND dialog, bool) {
        SetFocus(GetDlgItem(dialog, 1304));
        Pump(20);
        const QRectF before = QGuiApplication::inputMethod()->cursorRectangle();
        RECT place{};
        GetWindowRect(dialog, &place);
        SetWindowPos(dialog, nullptr, place.left + 50, place.top + 30, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER);
        Pump(20);
        const QRectF after = QGuiApplication::inputMethod()->cursorRectangle();
        EXPECT_EQ(after.left(), before.left() + 50);
        EXPECT_EQ(after.top(), before.top() + 30);
        EndDialog(dialog, 1);
    });
    DialogBoxIndirectParamW(ControlResources(), DialogResource(230), owner.handle, TellsAnswers, 0);
}

TEST(InputMethodInADialog, KeysThatEndAComposingAreNotTheDialogs)
{
    const Scope scope;
    const TestWindow owner;
    OnModal([&](HWND dialog, bool) {
        for (const int id : {1304, 1302}) {
            answers.clear();
            SetDlgItemTextW(dialog, id, TEXT(""));
            SetFocus(GetDlgItem(dialog, id));
            Pump(20);
            Compose(u"かな");
            TypeKey(VK_RETURN);
            EXPECT_EQ(ControlText(dialog, id), u"かな");
            Compose(u"もっと");
            TypeKey(VK_ESCAPE);
            EXPECT_EQ(ControlText(dialog, id), u"かな");
            EXPECT_TRUE(answers.empty());
            TypeKey(VK_RETURN);
            TypeKey(VK_ESCAPE);
            EXPECT_EQ(answers, (std::vector<int>{IDOK, IDCANCEL}));
            Compose(u"仮名");
            ClickControl(dialog, IDOK);
            EXPECT_EQ(ControlText(dialog, id), u"かな仮名") << "the button's handler has it all";
        }
        EndDialog(dialog, 1);
    });
    DialogBoxIndirectParamW(ControlResources(), DialogResource(230), owner.handle, TellsAnswers, 0);
}
