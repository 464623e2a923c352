#include "platform/qt/ControlMessages.h"
#include "platform/qt/Window.h"
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/Bytes.h"
#include "platform/tests/qt/ControlResources.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <QTest>
#include <QWidget>
#include <QWindow>

#include <functional>
#include <vector>

using namespace tavrix::testing;

namespace
{

/// What the dialog procedure below does, set anew by every test. 0 leaves the message.
std::function<INT_PTR(HWND, UINT, WPARAM, LPARAM)> onMessage;

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    return onMessage ? onMessage(dialog, message, wParam, lParam) : 0;
}

/// Ends with the id of any command.
INT_PTR EndByCommand(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message != WM_COMMAND)
        return message == WM_INITDIALOG;
    EndDialog(dialog, LOWORD(wParam));
    return TRUE;
}

INT_PTR RunDialogResource(int id, HWND owner = nullptr, LPARAM parameter = 0)
{
    return DialogBoxIndirectParamW(ControlResources(), DialogResource(id), owner, Procedure,
                                   parameter);
}

LRESULT CALLBACK PlainProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return DefWindowProcW(window, message, wParam, lParam);
}

class Dialogs : public ::testing::Test
{
protected:
    Dialogs()
    {
        onMessage = EndByCommand;
        WNDCLASSW record{};
        record.lpfnWndProc = PlainProcedure;
        record.lpszClassName = TEXT("DialogTestOwner");
        RegisterClassW(&record);
    }
    ~Dialogs() override
    {
        if (IsWindow(owner))
            DestroyWindow(owner);
        onMessage = nullptr;
    }

    HWND MakeOwner(DWORD style = WS_VISIBLE)
    {
        owner = CreateWindowExW(0, TEXT("DialogTestOwner"), TEXT("owner"), style, 0, 0, 640, 480,
                                nullptr, nullptr, nullptr, nullptr);
        return owner;
    }

    Scope scope;
    HWND owner = nullptr;
};

} // namespace

TEST_F(Dialogs, APopupWithoutAFrameIsItsClientArea)
{
    onMessage = nullptr;
    const HWND dialog =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(205), nullptr, Procedure, 0);
    ASSERT_NE(dialog, nullptr);
    RECT outside{};
    RECT inside{};
    POINT corner{0, 0};
    GetWindowRect(dialog, &outside);
    GetClientRect(dialog, &inside);
    ClientToScreen(dialog, &corner);
    EXPECT_EQ(inside.right, outside.right - outside.left);
    EXPECT_EQ(inside.bottom, outside.bottom - outside.top);
    EXPECT_EQ(corner.x, outside.left);
    EXPECT_EQ(corner.y, outside.top);
    DestroyWindow(dialog);
}

TEST_F(Dialogs, EndInsideInitDialogGivesItsResultAndShowsNothing)
{
    bool shown = false;
    OnModal([&](HWND, bool) { shown = true; });
    onMessage = [](HWND dialog, UINT message, WPARAM, LPARAM parameter) -> INT_PTR {
        if (message == WM_INITDIALOG)
            EndDialog(dialog, parameter + 1);
        return 0;
    };
    EXPECT_EQ(RunDialogResource(200, nullptr, 41), 42);
    EXPECT_FALSE(shown);
}

TEST_F(Dialogs, InitDialogComesBeforeItIsShownWithTheParameterAndTheFirstControl)
{
    bool visible = true;
    LPARAM parameter = 0;
    int first = 0;
    onMessage = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) -> INT_PTR {
        if (message != WM_INITDIALOG)
            return EndByCommand(dialog, message, wParam, lParam);
        visible = IsWindowVisible(dialog);
        parameter = lParam;
        first = GetDlgCtrlID(reinterpret_cast<HWND>(wParam));
        return TRUE;
    };
    OnModal([](HWND dialog, bool) { ClickControl(dialog, IDOK); });
    EXPECT_EQ(RunDialogResource(200, nullptr, 7), IDOK);
    EXPECT_FALSE(visible);
    EXPECT_EQ(parameter, 7);
    EXPECT_EQ(first, 1010);
}

TEST_F(Dialogs, AWorkerStartedInInitDialogMayPostItsEndAtOnce)
{
    static HWND target;
    HANDLE thread = nullptr;
    onMessage = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            target = dialog;
            thread = CreateThread(
                nullptr, 0,
                [](LPVOID) -> DWORD {
                    PostMessageW(target, WM_COMMAND, 1, 0);
                    return 0;
                },
                nullptr, 0, nullptr);
            return TRUE;
        }
        if (message == WM_COMMAND && LOWORD(wParam) == 1) {
            WaitForSingleObject(thread, INFINITE);
            CloseHandle(thread);
            EndDialog(dialog, 1);
            return TRUE;
        }
        return FALSE;
    };
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(RunDialogResource(105), 1);
}

TEST_F(Dialogs, AThousandPositionsSentByAWorkerAreAllAnswered)
{
    static HWND bar;
    static HWND target;
    static unsigned wrong;
    wrong = 0;
    HANDLE thread = nullptr;
    unsigned drawn = 0;
    onMessage = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            target = dialog;
            bar = GetDlgItem(dialog, 1000);
            SendMessageW(bar, PBM_SETRANGE, 0, 19660800); // 0 to 300
            thread = CreateThread(
                nullptr, 0,
                [](LPVOID) -> DWORD {
                    for (unsigned i = 1; i <= 1000; ++i) {
                        const unsigned before = (i - 1) * 300 / 1000;
                        const LRESULT answer = SendMessageW(bar, PBM_SETPOS, i * 300 / 1000, 0);
                        wrong += answer != static_cast<LRESULT>(before);
                    }
                    PostMessageW(target, WM_COMMAND, 1, 0);
                    return 0;
                },
                nullptr, 0, nullptr);
            return TRUE;
        }
        if (message == WM_COMMAND && LOWORD(wParam) == 1) {
            WaitForSingleObject(thread, INFINITE);
            CloseHandle(thread);
            const Picture picture = WindowPixels(bar);
            for (int x = 2; x < picture.width - 2; ++x)
                drawn += picture.At(x, picture.height / 2) != 0xFFFFFF;
            EXPECT_EQ(drawn, static_cast<unsigned>(picture.width) - 4) << "the bar is full";
            EndDialog(dialog, 1);
            return TRUE;
        }
        return FALSE;
    };
    EXPECT_EQ(RunDialogResource(105), 1);
    EXPECT_EQ(wrong, 0u);
}

TEST_F(Dialogs, TheOwnerIsDisabledMeanwhileAndEnabledAfterwards)
{
    MakeOwner();
    bool enabled = true;
    OnModal([&](HWND dialog, bool) {
        enabled = IsWindowEnabled(owner);
        EndDialog(dialog, 5);
    });
    EXPECT_EQ(RunDialogResource(200, owner), 5);
    EXPECT_FALSE(enabled);
    EXPECT_TRUE(IsWindowEnabled(owner));
}

TEST_F(Dialogs, AnOwnerThatWasDisabledBeforeStaysSo)
{
    MakeOwner();
    EnableWindow(owner, FALSE);
    OnModal([](HWND dialog, bool) { EndDialog(dialog, 5); });
    EXPECT_EQ(RunDialogResource(200, owner), 5);
    EXPECT_FALSE(IsWindowEnabled(owner));
}

TEST_F(Dialogs, FiveNestedDialogsEndFromTheInside)
{
    MakeOwner();
    int depth = 0;
    std::vector<INT_PTR> results;
    OnModal([&](HWND dialog, bool) {
        const int here = ++depth;
        if (here < 5)
            results.push_back(RunDialogResource(200, dialog));
        EndDialog(dialog, here);
    });
    EXPECT_EQ(RunDialogResource(200, owner), 1);
    EXPECT_EQ(results, (std::vector<INT_PTR>{5, 4, 3, 2}));
    EXPECT_TRUE(IsWindowEnabled(owner));
}

TEST_F(Dialogs, ADialogOfAHiddenOwnerLiesOnTheScreen)
{
    MakeOwner(0);
    bool visible = false;
    OnModal([&](HWND dialog, bool) {
        visible = IsWindowVisible(dialog);
        Pump(20);
        RECT place{};
        GetWindowRect(dialog, &place);
        const Picture screen = ScreenPixels();
        EXPECT_NE(screen.At(place.left + 4, place.bottom - 4), 0x000000u);
        EndDialog(dialog, 3);
    });
    EXPECT_EQ(RunDialogResource(105, owner), 3);
    EXPECT_TRUE(visible);
}

TEST_F(Dialogs, AnUnknownClassInTheTemplateGivesMinusOneAndEnablesTheOwner)
{
    MakeOwner();
    EXPECT_EQ(RunDialogResource(201, owner), -1);
    EXPECT_TRUE(IsWindowEnabled(owner));
    EXPECT_EQ(
        CreateDialogIndirectParamW(ControlResources(), DialogResource(201), owner, Procedure, 0),
        nullptr);
}

TEST_F(Dialogs, ANullTemplateGivesMinusOneAndAStaleOwnerZero)
{
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, nullptr, nullptr, Procedure, 0), -1);
    MakeOwner();
    DestroyWindow(owner);
    EXPECT_EQ(RunDialogResource(200, owner), 0);
}

TEST_F(Dialogs, EscapeSendsCancelAndEnterPressesTheDefaultButton)
{
    OnModal([](HWND, bool) { TypeKey(VK_ESCAPE); });
    EXPECT_EQ(RunDialogResource(200), IDCANCEL);
    OnModal([](HWND, bool) { TypeKey(VK_RETURN); });
    EXPECT_EQ(RunDialogResource(200), IDOK);
}

TEST_F(Dialogs, EnterPressesThePushButtonThatHasTheFocus)
{
    OnModal([](HWND dialog, bool) {
        SetFocus(GetDlgItem(dialog, 1040));
        TypeKey(VK_RETURN);
    });
    EXPECT_EQ(RunDialogResource(200), 1040);
}

TEST_F(Dialogs, TheButtonThatEnterPressesLooksLikeTheDefaultOne)
{
    OnModal([](HWND dialog, bool box) {
        if (box) {
            EndDialog(dialog, IDOK);
            return;
        }
        const auto look = [dialog](int id) {
            Pump(10);
            const Picture picture = WindowPixels(GetDlgItem(dialog, id));
            return std::pair(picture.At(picture.width / 2, 0),
                             picture.At(6, picture.height / 2)); // edge and ground
        };
        const auto chosen = look(1);
        const auto plain = look(2);
        EXPECT_NE(chosen.first, plain.first) << "the focus is on a check box";
        EXPECT_NE(chosen.second, plain.second);
        EXPECT_EQ(look(1040), plain);
        SetFocus(GetDlgItem(dialog, 1040));
        EXPECT_EQ(look(1040), chosen);
        EXPECT_EQ(look(1), plain);
        SetFocus(GetDlgItem(dialog, 2));
        EXPECT_EQ(look(2), chosen);
        EXPECT_EQ(look(1040), plain);
        EXPECT_EQ(SendMessageW(GetDlgItem(dialog, 2), WM_GETDLGCODE, 0, 0),
                  tavrix::platform::DLGC_BUTTON | tavrix::platform::DLGC_UNDEFPUSHBUTTON)
            << "a look and no style";
        MessageBoxW(dialog, TEXT("in between"), TEXT(""), MB_OK);
        EXPECT_EQ(look(2), chosen) << "again with the focus";
        SetFocus(GetDlgItem(dialog, 1011));
        EXPECT_EQ(look(1), chosen);
        EXPECT_EQ(look(2), plain);
        EndDialog(dialog, 1);
    });
    EXPECT_EQ(RunDialogResource(200), 1);
}

TEST_F(Dialogs, AButtonOfAnyKindShowsThatItHasTheKeyboard)
{
    OnModal([](HWND dialog, bool) {
        const auto pixels = [dialog](int id) {
            Pump(10);
            return WindowPixels(GetDlgItem(dialog, id)).pixels;
        };
        for (const int id : {1010, 1021, 1040}) {
            SetFocus(GetDlgItem(dialog, 1011));
            const auto without = pixels(id);
            SetFocus(GetDlgItem(dialog, id));
            EXPECT_NE(pixels(id), without) << id;
        }
        EndDialog(dialog, 1);
    });
    EXPECT_EQ(RunDialogResource(200), 1);
}

TEST_F(Dialogs, EnterInADialogWithoutAnOkButtonSendsNothing)
{
    unsigned commands = 0;
    onMessage = [&](HWND, UINT message, WPARAM, LPARAM) -> INT_PTR {
        commands += message == WM_COMMAND;
        return message == WM_INITDIALOG;
    };
    OnModal([&](HWND dialog, bool) {
        TypeKey(VK_RETURN);
        Pump(20);
        EndDialog(dialog, 9);
    });
    EXPECT_EQ(RunDialogResource(105), 9);
    EXPECT_EQ(commands, 0u);
}

TEST_F(Dialogs, TheFocusStartsOnTheFirstTabStopAndTabWalksAround)
{
    std::vector<int> order;
    OnModal([&](HWND dialog, bool) {
        order.push_back(GetDlgCtrlID(GetFocus()));
        for (int i = 0; i < 8; ++i) {
            TypeKey(VK_TAB);
            order.push_back(GetDlgCtrlID(GetFocus()));
        }
        TypeKey(VK_TAB, MK_SHIFT);
        order.push_back(GetDlgCtrlID(GetFocus()));
        EndDialog(dialog, 0);
    });
    RunDialogResource(200);
    EXPECT_EQ(order, (std::vector<int>{1010, 1011, 1021, 1023, 1, 1040, 2, 1010, 1011, 1010}));
}

TEST_F(Dialogs, FalseFromInitDialogKeepsTheFocusThatTheProcedureSet)
{
    onMessage = [](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG)
            SetFocus(GetDlgItem(dialog, 1040));
        return FALSE;
    };
    int focus = 0;
    OnModal([&](HWND dialog, bool) {
        focus = GetDlgCtrlID(GetFocus());
        EndDialog(dialog, 0);
    });
    RunDialogResource(200);
    EXPECT_EQ(focus, 1040);
}

TEST_F(Dialogs, AnUnderlinedLetterPressesItsButton)
{
    OnModal([](HWND dialog, bool) {
        SetFocus(GetDlgItem(dialog, IDOK));
        TypeKey('L');
    });
    EXPECT_EQ(RunDialogResource(200), 1040);
}

TEST_F(Dialogs, TheResultOfAMessageIsTheWordThatTheProcedureSet)
{
    onMessage = [](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
        if (message != WM_APP)
            return FALSE;
        SetWindowLongPtrW(dialog, DWLP_MSGRESULT, 1234);
        return TRUE;
    };
    const HWND dialog =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(105), nullptr, Procedure, 0);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(SendMessageW(dialog, WM_APP, 0, 0), 1234);
    EXPECT_EQ(SendMessageW(dialog, WM_APP + 1, 0, 0), 0);
    DestroyWindow(dialog);
}

TEST_F(Dialogs, CreatedDialogsAreVisibleOnlyWithTheStyle)
{
    const HWND hidden =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(105), nullptr, Procedure, 0);
    const HWND shown =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(200), nullptr, Procedure, 0);
    EXPECT_FALSE(IsWindowVisible(hidden));
    EXPECT_TRUE(IsWindowVisible(shown));
    WCHAR name[32] = {};
    GetClassNameW(shown, name, 32);
    EXPECT_EQ(std::u16string(name), u"#32770");
    EXPECT_EQ(FindWindowW(nullptr, TEXT("設定 Settings")), shown);
    DestroyWindow(hidden);
    DestroyWindow(shown);
    EXPECT_FALSE(IsWindow(shown));
}

TEST_F(Dialogs, APositionIsCountedFromTheOwnersClientArea)
{
    owner = CreateWindowExW(0, TEXT("DialogTestOwner"), TEXT("owner"), WS_VISIBLE, 30, 40, 300, 200,
                            nullptr, nullptr, nullptr, nullptr);
    const HWND on =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(200), owner, Procedure, 0);
    const HWND off =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(200), nullptr, Procedure, 0);
    RECT with{};
    RECT without{};
    GetWindowRect(on, &with);
    GetWindowRect(off, &without);
    EXPECT_GT(without.left, 0); // 20 dialog units
    EXPECT_EQ(with.left - without.left, 30);
    EXPECT_EQ(with.top - without.top, 40);
    DestroyWindow(on);
    DestroyWindow(off);
}

TEST_F(Dialogs, ADialogThatAsksForItLiesInTheMiddleOfTheScreenWhereverItsOwnerIs)
{
    owner = CreateWindowExW(0, TEXT("DialogTestOwner"), TEXT("owner"), WS_VISIBLE, 30, 40, 300, 200,
                            nullptr, nullptr, nullptr, nullptr);
    const HWND dialog =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(203), owner, Procedure, 0);
    RECT place{};
    GetWindowRect(dialog, &place);
    EXPECT_GT(place.right - place.left, 100);
    EXPECT_EQ(place.left, (640 - (place.right - place.left)) / 2);
    EXPECT_EQ(place.top, (480 - (place.bottom - place.top)) / 2);
    DestroyWindow(dialog);
}

TEST_F(Dialogs, OneThatIsWiderThanTheScreenBeginsAtItsEdge)
{
    const HWND dialog =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(204), nullptr, Procedure, 0);
    RECT place{};
    GetWindowRect(dialog, &place);
    ASSERT_GT(place.right - place.left, 640);
    EXPECT_EQ(place.left, 0);
    DestroyWindow(dialog);
}

TEST_F(Dialogs, TheCaptionStandsAboveTheClientArea)
{
    const HWND captioned =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(200), nullptr, Procedure, 0);
    const HWND plain =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(105), nullptr, Procedure, 0);
    const auto top = [](HWND dialog) {
        RECT place{};
        POINT origin{0, 0};
        GetWindowRect(dialog, &place);
        ClientToScreen(dialog, &origin);
        return origin.y - place.top;
    };
    EXPECT_GE(top(captioned), 14);
    EXPECT_LE(top(plain), 3);
    DestroyWindow(captioned);
    DestroyWindow(plain);
}

TEST_F(Dialogs, TheClientAreaHasItsSizeBeforeTheDialogIsShown)
{
    RECT early{};
    RECT resized{};
    RECT late{};
    onMessage = [&](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
        if (message != WM_INITDIALOG)
            return FALSE;
        GetClientRect(dialog, &early);
        RECT place{};
        GetWindowRect(dialog, &place);
        SetWindowPos(dialog, nullptr, 0, 0, place.right - place.left + 10,
                     place.bottom - place.top + 20, SWP_NOMOVE | SWP_NOZORDER);
        GetClientRect(dialog, &resized);
        return TRUE;
    };
    OnModal([&](HWND dialog, bool) {
        GetClientRect(dialog, &late);
        EndDialog(dialog, 0);
    });
    RunDialogResource(200);
    EXPECT_GT(early.right, 200); // 180 dialog units of more than 5 pixels to 4
    EXPECT_EQ(resized.right, early.right + 10);
    EXPECT_EQ(resized.bottom, early.bottom + 20);
    EXPECT_EQ(late.right, resized.right);
    EXPECT_EQ(late.bottom, resized.bottom);
}

TEST_F(Dialogs, TheBackgroundIsTheBrushThatTheProcedureAnswers)
{
    const HBRUSH brush = CreateSolidBrush(RGB(10, 200, 30));
    onMessage = [brush](HWND, UINT message, WPARAM, LPARAM) -> INT_PTR {
        return message == WM_CTLCOLORDLG ? reinterpret_cast<INT_PTR>(brush) : 0;
    };
    const HWND dialog =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(105), nullptr, Procedure, 0);
    ShowWindow(dialog, SW_SHOW);
    Pump(30);
    const Picture picture = WindowPixels(dialog);
    EXPECT_EQ(picture.At(picture.width / 2, picture.height - 6), 0x0AC81Eu);
    EXPECT_NE(picture.At(picture.width / 2, 1), 0x0AC81Eu) << "the border";
    DestroyWindow(dialog);
    DeleteObject(brush);
}

TEST_F(Dialogs, AHollowBrushLeavesWhatTheProcedureHasPainted)
{
    unsigned paints = 0;
    onMessage = [&](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
        if (message == WM_CTLCOLORDLG)
            return reinterpret_cast<INT_PTR>(GetStockObject(NULL_BRUSH));
        if (message != WM_PAINT)
            return FALSE;
        PAINTSTRUCT paint{};
        const HDC dc = BeginPaint(dialog, &paint);
        if (paints++ == 0) {
            const HBRUSH brush = CreateSolidBrush(RGB(200, 20, 90));
            const RECT area{0, 0, 1000, 1000};
            FillRect(dc, &area, brush);
            DeleteObject(brush);
        }
        EndPaint(dialog, &paint);
        return TRUE;
    };
    const HWND dialog =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(105), nullptr, Procedure, 0);
    ShowWindow(dialog, SW_SHOW);
    Pump(30);
    InvalidateRect(dialog, nullptr, TRUE);
    Pump(30);
    EXPECT_EQ(paints, 2u);
    const Picture picture = WindowPixels(dialog);
    EXPECT_EQ(picture.At(picture.width / 2, picture.height - 6), 0xC8145Au);
    DestroyWindow(dialog);
}

TEST_F(Dialogs, DraggingTheCaptionMovesTheDialog)
{
    RECT before{};
    RECT after{};
    OnModal([&](HWND dialog, bool) {
        Pump(20);
        GetWindowRect(dialog, &before);
        QWindow* screen = tavrix::platform::ScreenWidget()->window()->windowHandle();
        const QPoint grip(before.left + 40, before.top + 10);
        QTest::mousePress(screen, Qt::LeftButton, Qt::NoModifier, grip);
        QTest::mouseMove(screen, grip + QPoint(10, 5));
        QTest::mouseMove(screen, grip + QPoint(70, 33));
        QTest::mouseRelease(screen, Qt::LeftButton, Qt::NoModifier, grip + QPoint(70, 33));
        QTest::mouseMove(screen, grip);
        GetWindowRect(dialog, &after);
        EndDialog(dialog, 0);
    });
    RunDialogResource(200);
    EXPECT_EQ(after.left - before.left, 70);
    EXPECT_EQ(after.top - before.top, 33);
    EXPECT_EQ(after.right - after.left, before.right - before.left);
}

TEST_F(Dialogs, TheCaptionsCloseButtonCancelsAlsoWhereTheDialogWasMoved)
{
    OnModal([](HWND dialog, bool) {
        SetWindowPos(dialog, nullptr, 100, 90, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        RECT place{};
        GetWindowRect(dialog, &place);
        EXPECT_EQ(place.left, 100);
        EXPECT_EQ(place.top, 90);
        ClickScreen(place.right - 12, place.top + 11);
    });
    EXPECT_EQ(RunDialogResource(200), IDCANCEL);
}

TEST_F(Dialogs, ADialogDestroyedUnderItsLoopEndsWithZero)
{
    OnModal([](HWND dialog, bool) { DestroyWindow(dialog); });
    EXPECT_EQ(RunDialogResource(200), 0);
}

TEST_F(Dialogs, MissingControlsAndStaleDialogsAreHarmless)
{
    EXPECT_EQ(GetDlgItem(nullptr, 1), nullptr);
    EXPECT_FALSE(SetDlgItemTextW(nullptr, 1, TEXT("x")));
    EXPECT_EQ(SendDlgItemMessageW(nullptr, 1, WM_GETTEXTLENGTH, 0, 0), 0);
    EXPECT_FALSE(EndDialog(nullptr, 1));
    const HWND dialog =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(105), nullptr, Procedure, 0);
    WCHAR text[4] = {u'x', 0};
    EXPECT_EQ(GetDlgItem(dialog, 4711), nullptr);
    EXPECT_EQ(GetDlgItemTextW(dialog, 4711, text, 4), 0u);
    EXPECT_EQ(text[0], 0);
    DestroyWindow(dialog);
    EXPECT_EQ(GetDlgItem(dialog, 1000), nullptr);
    EXPECT_FALSE(EndDialog(dialog, 1));
}

TEST_F(Dialogs, AnExtendedTemplateRunsAsWell)
{
    Bytes bytes;
    bytes.Word(1).Word(0xFFFF).Double(0).Double(0).Double(WS_POPUP | WS_VISIBLE);
    bytes.Word(1).Word(0).Word(0).Word(60).Word(40).Word(0).Word(0).Text(u"").Align(4);
    bytes.Double(0).Double(0).Double(WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_DEFPUSHBUTTON);
    bytes.Word(5).Word(5).Word(40).Word(14).Double(77);
    bytes.Word(0xFFFF).Word(0x80).Text(u"Go").Word(0);
    OnModal([](HWND dialog, bool) { ClickControl(dialog, 77); });
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, reinterpret_cast<LPCDLGTEMPLATEW>(bytes.Data()),
                                      nullptr, Procedure, 0),
              77);
}
