#include "platform/qt/MessageBoxText.h"
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/ControlResources.h"

#include <gtest/gtest.h>

#include <vector>

using namespace tavrix::testing;
using tavrix::platform::BoxButtons;
using tavrix::platform::EscapeAnswers;

namespace
{

constexpr LANGID English = 1033;
constexpr LANGID Japanese = 1041;

std::vector<std::u16string> Captions(UINT flags, LANGID language)
{
    std::vector<std::u16string> captions;
    for (const auto& button : BoxButtons(flags, language))
        captions.push_back(button.caption);
    return captions;
}

struct Worker {
    HWND owner = nullptr;
    int result = 0;
};

} // namespace

TEST(MessageBoxes, ButtonsCarryCaptionsOfTheLanguage)
{
    using Texts = std::vector<std::u16string>;
    EXPECT_EQ(Captions(MB_OK, English), (Texts{u"OK"}));
    EXPECT_EQ(Captions(MB_OKCANCEL, English), (Texts{u"OK", u"Cancel"}));
    EXPECT_EQ(Captions(MB_YESNO, English), (Texts{u"&Yes", u"&No"}));
    EXPECT_EQ(Captions(MB_OKCANCEL, Japanese), (Texts{u"OK", u"キャンセル"}));
    EXPECT_EQ(Captions(36, Japanese), (Texts{u"はい(&Y)", u"いいえ(&N)"}));
    EXPECT_EQ(Captions(MB_YESNOCANCEL, Japanese),
              (Texts{u"はい(&Y)", u"いいえ(&N)", u"キャンセル"}));
    EXPECT_EQ(Captions(15, English), (Texts{u"OK"})) << "an unknown type";
}

TEST(MessageBoxes, EscapeAnswersWhereThereIsACancelOrJustAnOk)
{
    EXPECT_TRUE(EscapeAnswers(MB_OK));
    EXPECT_TRUE(EscapeAnswers(MB_OKCANCEL | MB_ICONHAND));
    EXPECT_TRUE(EscapeAnswers(MB_YESNOCANCEL));
    EXPECT_FALSE(EscapeAnswers(MB_YESNO));
}

TEST(MessageBoxes, TextCaptionAndAnswerGoThroughWithoutAnOwner)
{
    const Scope scope;
    bool isBox = false;
    std::u16string text;
    std::u16string caption;
    OnModal([&](HWND box, bool message) {
        isBox = message;
        text = BoxText(box);
        caption = BoxCaption(box);
        ClickControl(box, IDNO);
    });
    EXPECT_EQ(MessageBoxW(nullptr, TEXT("A & B\r\n二行目"), TEXT("警告"), 36), IDNO);
    EXPECT_TRUE(isBox);
    EXPECT_EQ(text, u"A & B\r\n二行目");
    EXPECT_EQ(caption, u"警告");
}

TEST(MessageBoxes, AnEmptyCaptionStaysEmptyAndANullOneIsTheDevicesWord)
{
    const Scope scope;
    std::u16string caption;
    OnModal([&](HWND box, bool) {
        caption = BoxCaption(box);
        EndDialog(box, IDOK);
    });
    SetLanguage(Japanese);
    MessageBoxW(nullptr, TEXT("x"), TEXT(""), MB_OK);
    EXPECT_EQ(caption, u"");
    MessageBoxW(nullptr, nullptr, nullptr, MB_OK);
    EXPECT_EQ(caption, u"エラー");
    SetLanguage(English);
    MessageBoxW(nullptr, nullptr, nullptr, MB_OK);
    EXPECT_EQ(caption, u"Error");
}

TEST(MessageBoxes, EscapeIsOkForASingleOkAndCancelWhereThereIsOne)
{
    const Scope scope;
    OnModal([](HWND, bool) { TypeKey(VK_ESCAPE); });
    EXPECT_EQ(MessageBoxW(nullptr, TEXT("x"), TEXT("y"), MB_OK), IDOK);
    EXPECT_EQ(MessageBoxW(nullptr, TEXT("x"), TEXT("y"), MB_OKCANCEL), IDCANCEL);
    EXPECT_EQ(MessageBoxW(nullptr, TEXT("x"), TEXT("y"), MB_YESNOCANCEL), IDCANCEL);
}

TEST(MessageBoxes, EscapeDoesNothingToAYesNoQuestion)
{
    const Scope scope;
    bool open = false;
    OnModal([&](HWND box, bool) {
        TypeKey(VK_ESCAPE);
        SendMessageW(box, WM_CLOSE, 0, 0);
        Pump(30);
        open = IsWindowVisible(box);
        ClickControl(box, IDYES);
    });
    EXPECT_EQ(MessageBoxW(nullptr, TEXT("x"), TEXT("y"), MB_YESNO), IDYES);
    EXPECT_TRUE(open);
}

TEST(MessageBoxes, EnterPressesTheDefaultButton)
{
    const Scope scope;
    OnModal([](HWND, bool) { TypeKey(VK_RETURN); });
    EXPECT_EQ(MessageBoxW(nullptr, TEXT("x"), TEXT("y"), MB_YESNO), IDYES);
    EXPECT_EQ(MessageBoxW(nullptr, TEXT("x"), TEXT("y"), MB_YESNO | MB_DEFBUTTON2), IDNO);
}

TEST(MessageBoxes, ALetterAnswersItsButton)
{
    const Scope scope;
    OnModal([](HWND, bool) { TypeKey('N'); });
    EXPECT_EQ(MessageBoxW(nullptr, TEXT("x"), TEXT("y"), MB_YESNO), IDNO);
}

TEST(MessageBoxes, AWorkersBoxIsShownByTheUserInterfaceThreadOverItsDialog)
{
    const Scope scope;
    static Worker worker;
    worker = {};
    HANDLE thread = nullptr;
    static HANDLE* threadWord;
    threadWord = &thread;
    OnModal([](HWND window, bool box) {
        if (box)
            ClickControl(window, IDYES);
    });
    const auto procedure = [](HWND dialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            worker.owner = dialog;
            *threadWord = CreateThread(
                nullptr, 0,
                [](LPVOID) -> DWORD {
                    worker.result = MessageBoxW(worker.owner, TEXT("from afar"), TEXT(""), 52);
                    PostMessageW(worker.owner, WM_COMMAND, 1, 0);
                    return 0;
                },
                nullptr, 0, nullptr);
            return TRUE;
        }
        if (message == WM_COMMAND && LOWORD(wParam) == 1) {
            WaitForSingleObject(*threadWord, INFINITE);
            CloseHandle(*threadWord);
            EndDialog(dialog, 1);
        }
        return FALSE;
    };
    EXPECT_EQ(
        DialogBoxIndirectParamW(ControlResources(), DialogResource(105), nullptr, procedure, 0), 1);
    EXPECT_EQ(worker.result, IDYES);
}

TEST(MessageBoxes, ABoxInsideABoxAnswersFirst)
{
    const Scope scope;
    std::vector<int> answers;
    int depth = 0;
    OnModal([&](HWND box, bool) {
        if (++depth == 1)
            answers.push_back(MessageBoxW(box, TEXT("inner"), TEXT("y"), MB_OKCANCEL));
        ClickControl(box, IDOK);
    });
    answers.push_back(MessageBoxW(nullptr, TEXT("outer"), TEXT("y"), MB_OK));
    EXPECT_EQ(answers, (std::vector<int>{IDOK, IDOK}));
}

TEST(MessageBoxes, ALongTextKeepsTheBoxOnTheScreenAndItsButtonInReach)
{
    const Scope scope;
    std::u16string text;
    for (int i = 0; i < 400; ++i)
        text += u"ファイルが壊れているか未対応の画像形式です。";
    RECT place{};
    OnModal([&](HWND box, bool) {
        GetWindowRect(box, &place);
        ClickControl(box, IDOK);
    });
    EXPECT_EQ(MessageBoxW(nullptr, text.c_str(), TEXT("y"), MB_OK | MB_ICONHAND), IDOK);
    EXPECT_GE(place.left, 0);
    EXPECT_GE(place.top, 0);
    EXPECT_LE(place.right, 640);
    EXPECT_LE(place.bottom, 480);
}

TEST(MessageBoxes, BeepsAreCountedAndComeFromAnyThread)
{
    const Scope scope;
    MessageBeep(0xFFFFFFFF);
    const HANDLE thread = CreateThread(
        nullptr, 0,
        [](LPVOID) -> DWORD {
            MessageBeep(16);
            return 0;
        },
        nullptr, 0, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    EXPECT_EQ(tavrix::platform::Hooks().beeps, 2u);
}
