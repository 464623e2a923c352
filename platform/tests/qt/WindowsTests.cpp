#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>

namespace hand = tavrix::testing;
namespace test = tavrix::test;
using tavrix::test::TestWindow;

namespace
{

RECT RectOf(HWND window)
{
    RECT rectangle{-1, -1, -1, -1};
    GetWindowRect(window, &rectangle);
    return rectangle;
}

void ExpectRect(const RECT& got, LONG left, LONG top, LONG right, LONG bottom)
{
    EXPECT_EQ(got.left, left);
    EXPECT_EQ(got.top, top);
    EXPECT_EQ(got.right, right);
    EXPECT_EQ(got.bottom, bottom);
}

} // namespace

TEST(Windows, ATopLevelWindowWithoutAPlaceFillsTheScreen)
{
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 640);
    EXPECT_EQ(GetSystemMetrics(SM_CYSCREEN), 480);
    EXPECT_EQ(GetSystemMetrics(12345), 0);
    const TestWindow window;
    ASSERT_NE(window.handle, nullptr);
    ExpectRect(RectOf(window.handle), 0, 0, 640, 480);
    RECT client{};
    EXPECT_TRUE(GetClientRect(window.handle, &client));
    ExpectRect(client, 0, 0, 640, 480);
}

TEST(Windows, AWindowIsShownOnlyAfterItsCreationMessage)
{
    BOOL visibleInCreate = TRUE;
    CREATESTRUCTW seen{};
    const TestWindow window([&](HWND handle, UINT message, WPARAM, LPARAM lParam) {
        if (message == WM_CREATE) {
            visibleInCreate = IsWindowVisible(handle);
            seen = *reinterpret_cast<const CREATESTRUCTW*>(lParam);
        }
        return std::nullopt;
    });
    EXPECT_FALSE(visibleInCreate);
    EXPECT_TRUE(IsWindowVisible(window.handle));
    EXPECT_EQ(seen.cx, 640);
    EXPECT_EQ(seen.cy, 480);
    EXPECT_EQ(seen.style, static_cast<LONG>(WS_VISIBLE));
    EXPECT_EQ(window.messages.front().message, static_cast<UINT>(WM_CREATE));
}

TEST(Windows, MinusOneFromTheCreationMessageMeansNoWindow)
{
    const TestWindow window([](HWND, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (message == WM_CREATE)
            return -1;
        return std::nullopt;
    });
    EXPECT_EQ(window.handle, nullptr);
    EXPECT_EQ(FindWindowW(TEXT("TestWindow"), nullptr), nullptr);
}

TEST(Windows, UnknownClassesAndMissingParentsGiveNoWindow)
{
    EXPECT_EQ(CreateWindowExW(0, TEXT("NoSuchClass"), nullptr, 0, 0, 0, 1, 1, nullptr, nullptr,
                              nullptr, nullptr),
              nullptr);
    const TestWindow known; // registers the class
    EXPECT_EQ(CreateWindowExW(0, TEXT("TestWindow"), nullptr, WS_CHILD, 0, 0, 1, 1, nullptr,
                              nullptr, nullptr, nullptr),
              nullptr);
    EXPECT_EQ(CreateWindowExW(0, TEXT("TestWindow"), nullptr, 0, 0, 0, 1, 1,
                              reinterpret_cast<HWND>(0x4444), nullptr, nullptr, nullptr),
              nullptr);
    EXPECT_EQ(
        CreateWindowExW(0, nullptr, nullptr, 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr),
        nullptr);
}

TEST(Windows, AClassIsRegisteredOnceWithoutRegardToCase)
{
    const TestWindow known;
    WNDCLASSW record{};
    record.lpfnWndProc = DefWindowProcW;
    record.lpszClassName = TEXT("TESTWINDOW");
    EXPECT_EQ(RegisterClassW(&record), 0);
    record.lpszClassName = TEXT("AnotherClass");
    const ATOM atom = RegisterClassW(&record);
    ASSERT_NE(atom, 0);
    const HWND window = CreateWindowExW(0, MAKEINTRESOURCEW(atom), TEXT("x"), 0, 1, 2, 3, 4,
                                        nullptr, nullptr, nullptr, nullptr);
    WCHAR name[32];
    EXPECT_EQ(GetClassNameW(window, name, 32), 12);
    EXPECT_EQ(std::u16string(name), u"AnotherClass");
    DestroyWindow(window);
    record.lpfnWndProc = nullptr;
    record.lpszClassName = TEXT("Third");
    EXPECT_EQ(RegisterClassW(&record), 0);
    EXPECT_EQ(RegisterClassW(nullptr), 0);
}

TEST(Windows, DestroyingTakesChildrenAndOwnedWindowsAlong)
{
    std::vector<std::pair<HWND, UINT>> order;
    const test::Handler note = [&](HWND window, UINT message, WPARAM, LPARAM) {
        if (message == WM_DESTROY || message == WM_NCDESTROY)
            order.emplace_back(window, message);
        return std::nullopt;
    };
    const TestWindow owner(note, WS_VISIBLE);
    const TestWindow child(note, WS_CHILD | WS_VISIBLE, 5, 5, 50, 50, owner.handle);
    const TestWindow owned(note, WS_POPUP | WS_VISIBLE, 9, 9, 50, 50, child.handle);
    EXPECT_EQ(GetParent(child.handle), owner.handle);
    EXPECT_EQ(GetParent(owned.handle), owner.handle) << "a child owns nothing, its top level does";
    EXPECT_TRUE(DestroyWindow(owner.handle));
    EXPECT_FALSE(IsWindow(child.handle));
    EXPECT_FALSE(IsWindow(owned.handle));
    const std::vector<std::pair<HWND, UINT>> expected = {
        {owner.handle, WM_DESTROY}, {child.handle, WM_DESTROY},   {child.handle, WM_NCDESTROY},
        {owned.handle, WM_DESTROY}, {owned.handle, WM_NCDESTROY}, {owner.handle, WM_NCDESTROY}};
    EXPECT_EQ(order, expected);
    EXPECT_FALSE(DestroyWindow(owner.handle));
}

TEST(Windows, EveryCallTakesNullAndStaleHandles)
{
    HWND stale = nullptr;
    {
        const TestWindow window;
        stale = window.handle;
    }
    hand::Pump(10);
    POINT point{1, 2};
    WCHAR buffer[4] = {u'x'};
    PAINTSTRUCT paint{};
    for (const HWND handle : {HWND{nullptr}, stale, reinterpret_cast<HWND>(7)}) {
        RECT rectangle{1, 2, 3, 4};
        EXPECT_FALSE(GetWindowRect(handle, &rectangle));
        ExpectRect(rectangle, 1, 2, 3, 4);
        EXPECT_FALSE(GetClientRect(handle, &rectangle));
        EXPECT_FALSE(DestroyWindow(handle));
        EXPECT_FALSE(ShowWindow(handle, SW_SHOW));
        EXPECT_FALSE(EnableWindow(handle, FALSE));
        EXPECT_FALSE(IsWindowVisible(handle));
        EXPECT_FALSE(IsWindowEnabled(handle));
        EXPECT_FALSE(UpdateWindow(handle));
        EXPECT_EQ(GetParent(handle), nullptr);
        EXPECT_EQ(GetClassNameW(handle, buffer, 4), 0);
        EXPECT_FALSE(BringWindowToTop(handle));
        EXPECT_FALSE(SetForegroundWindow(handle));
        EXPECT_FALSE(SetWindowPos(handle, nullptr, 0, 0, 1, 1, 0));
        EXPECT_FALSE(MoveWindow(handle, 0, 0, 1, 1, TRUE));
        EXPECT_FALSE(ClientToScreen(handle, &point));
        EXPECT_FALSE(ScreenToClient(handle, &point));
        EXPECT_FALSE(SetWindowTextW(handle, TEXT("x")));
        EXPECT_EQ(GetWindowTextW(handle, buffer, 4), 0);
        EXPECT_EQ(GetWindowTextLengthW(handle), 0);
        EXPECT_EQ(GetWindowLongPtrW(handle, GWL_STYLE), 0);
        EXPECT_EQ(SetWindowLongPtrW(handle, GWLP_USERDATA, 5), 0);
        EXPECT_FALSE(InvalidateRect(handle, nullptr, TRUE));
        EXPECT_FALSE(ValidateRect(handle, nullptr));
        EXPECT_FALSE(GetUpdateRect(handle, &rectangle, FALSE));
        EXPECT_EQ(BeginPaint(handle, &paint), nullptr);
        EXPECT_EQ(DefWindowProcW(handle, WM_CLOSE, 0, 0), 0);
        EXPECT_EQ(CallWindowProcW(nullptr, handle, WM_NULL, 0, 0), 0);
    }
    EXPECT_EQ(GetDC(stale), nullptr);
    SetCapture(stale);
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(SetFocus(stale), nullptr);
}

TEST(Windows, TextsAreCutToTheBufferWithTheirEndMark)
{
    const TestWindow window;
    EXPECT_TRUE(SetWindowTextW(window.handle, TEXT("\u753b\u50cf abc")));
    EXPECT_EQ(GetWindowTextLengthW(window.handle), 6);
    WCHAR buffer[8];
    EXPECT_EQ(GetWindowTextW(window.handle, buffer, 4), 3);
    EXPECT_EQ(std::u16string(buffer), u"\u753b\u50cf ");
    EXPECT_EQ(GetWindowTextW(window.handle, buffer, 8), 6);
    EXPECT_EQ(std::u16string(buffer), u"\u753b\u50cf abc");
    EXPECT_EQ(GetWindowTextW(window.handle, buffer, 0), 0);
    EXPECT_EQ(GetWindowTextW(window.handle, nullptr, 5), 0);
    EXPECT_TRUE(SetWindowTextW(window.handle, nullptr));
    EXPECT_EQ(GetWindowTextLengthW(window.handle), 0);
}

TEST(Windows, PositionsAreThoseOfTheScreenAndChildrenAreRelative)
{
    const TestWindow window;
    const TestWindow tool({}, WS_POPUP | WS_VISIBLE, 100, 50, 80, 60, window.handle);
    const TestWindow child({}, WS_CHILD | WS_VISIBLE, 7, 8, 20, 10, tool.handle);
    ExpectRect(RectOf(child.handle), 107, 58, 127, 68);
    EXPECT_TRUE(SetWindowPos(tool.handle, nullptr, -30, 470, 0, 0, SWP_NOSIZE | SWP_NOZORDER));
    ExpectRect(RectOf(tool.handle), -30, 470, 50, 530);
    EXPECT_EQ(tool.Last(WM_MOVE).lParam, MAKELPARAM(-30, 470));
    const size_t sizes = tool.Count(WM_SIZE);
    EXPECT_TRUE(MoveWindow(tool.handle, -30, 470, 33, 44, TRUE));
    EXPECT_EQ(tool.Count(WM_SIZE), sizes + 1);
    EXPECT_EQ(tool.Last(WM_SIZE).lParam, MAKELPARAM(33, 44));
    POINT point{1, 1};
    EXPECT_TRUE(ClientToScreen(child.handle, &point));
    EXPECT_EQ(point.x, -22);
    EXPECT_EQ(point.y, 479);
    EXPECT_TRUE(ScreenToClient(child.handle, &point));
    EXPECT_EQ(point.x, 1);
    EXPECT_EQ(point.y, 1);
}

TEST(Windows, ShowAndEnableAnswerWhatWasBefore)
{
    const TestWindow window({}, 0);
    EXPECT_FALSE(IsWindowVisible(window.handle));
    EXPECT_FALSE(ShowWindow(window.handle, SW_SHOW));
    EXPECT_TRUE(ShowWindow(window.handle, SW_SHOW));
    EXPECT_EQ(window.Count(WM_SHOWWINDOW), 1u);
    const TestWindow child({}, WS_CHILD | WS_VISIBLE, 0, 0, 9, 9, window.handle);
    EXPECT_TRUE(IsWindowVisible(child.handle));
    EXPECT_TRUE(ShowWindow(window.handle, SW_HIDE));
    EXPECT_FALSE(IsWindowVisible(child.handle)) << "a child of a hidden window is not visible";
    EXPECT_FALSE(EnableWindow(window.handle, FALSE));
    EXPECT_TRUE(EnableWindow(window.handle, FALSE));
    EXPECT_FALSE(IsWindowEnabled(window.handle));
    EXPECT_EQ(window.Count(WM_ENABLE), 1u);
    EXPECT_TRUE(EnableWindow(window.handle, TRUE));
    EXPECT_TRUE(IsWindowEnabled(window.handle));
}

TEST(Windows, AWindowsWordsHoldPointersAndItsProcedureCanBeReplaced)
{
    const TestWindow window;
    static WNDPROC before = nullptr;
    static int seen = 0;
    seen = 0;
    const WNDPROC replacement = [](HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_APP)
            ++seen;
        return CallWindowProcW(before, handle, message, wParam, lParam);
    };
    before = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(window.handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(replacement)));
    ASSERT_NE(before, nullptr);
    SendMessageW(window.handle, WM_APP, 1, 2);
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(window.Last(WM_APP).lParam, 2);
    SetWindowLongPtrW(window.handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(before));
    SendMessageW(window.handle, WM_APP, 1, 2);
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(SetWindowLongPtrW(window.handle, DWLP_USER, reinterpret_cast<LONG_PTR>(&seen)), 0);
    EXPECT_EQ(GetWindowLongPtrW(window.handle, DWLP_USER), reinterpret_cast<LONG_PTR>(&seen));
    EXPECT_EQ(GetWindowLongPtrW(window.handle, 9999), 0);
}

TEST(Windows, FindWindowSearchesTopLevelWindowsByClassAndTitle)
{
    const TestWindow window;
    const TestWindow tool({}, WS_POPUP, 0, 0, 5, 5, window.handle);
    const TestWindow child({}, WS_CHILD, 0, 0, 5, 5, window.handle);
    SetWindowTextW(tool.handle, TEXT("Tool"));
    SetWindowTextW(child.handle, TEXT("Child"));
    EXPECT_EQ(FindWindowW(TEXT("testwindow"), nullptr), window.handle);
    EXPECT_EQ(FindWindowW(nullptr, TEXT("Tool")), tool.handle);
    EXPECT_EQ(FindWindowW(TEXT("TestWindow"), TEXT("Tool")), tool.handle);
    EXPECT_EQ(FindWindowW(nullptr, TEXT("Child")), nullptr);
    EXPECT_EQ(FindWindowW(TEXT("HHTaskBar"), nullptr), nullptr);
}

TEST(Windows, ClosingDestroysByDefault)
{
    const TestWindow window;
    PostMessageW(window.handle, WM_CLOSE, 0, 0);
    EXPECT_TRUE(hand::PumpUntil([&] { return !IsWindow(window.handle); }));
}

TEST(Windows, AWorkerReachesAWindowWhileTheLoopWaits)
{
    std::atomic<int> sum{0};
    const TestWindow window(
        [](HWND, UINT message, WPARAM wParam, LPARAM) -> std::optional<LRESULT> {
            if (message == WM_APP)
                return static_cast<LRESULT>(wParam) * 2;
            return std::nullopt;
        });
    hand::Pump(20);
    std::atomic<bool> done{false};
    std::thread worker([&] {
        for (WPARAM i = 0; i < 300; ++i)
            sum += static_cast<int>(SendMessageW(window.handle, WM_APP, i, 0));
        SetWindowTextW(window.handle, TEXT("from a worker"));
        PostMessageW(window.handle, WM_USER, 0, 0);
        done = true;
    });
    EXPECT_TRUE(hand::PumpUntil([&] { return done.load(); }));
    worker.join();
    EXPECT_EQ(sum, 300 * 299);
    EXPECT_EQ(GetWindowTextLengthW(window.handle), 13);
    EXPECT_TRUE(hand::PumpUntil([&] { return window.Count(WM_USER) == 1; }));
}

TEST(Windows, TimersStayPreciseWithTheToolkitUp)
{
    static int ticks = 0;
    constexpr int Ticks = 20;
    constexpr DWORD Least = Ticks * 5 - 5; // the clock counts whole milliseconds
    // None may be lost to rounding: with six milliseconds a tick it would be 120.
    constexpr DWORD Most = 115;
    const TestWindow window;
    hand::Pump(50);
    // A busy machine takes ticks away, each a period long: one undisturbed stretch is looked for.
    DWORD shortest = 0xFFFFFFFF;
    for (int attempt = 0; attempt < 100 && shortest > Most; ++attempt) {
        ticks = 0;
        const DWORD start = GetTickCount();
        const UINT_PTR id = SetTimer(nullptr, 0, 5, [](HWND, UINT, UINT_PTR, DWORD) { ++ticks; });
        const bool all = hand::PumpUntil([] { return ticks >= Ticks; });
        const DWORD taken = GetTickCount() - start;
        KillTimer(nullptr, id);
        ASSERT_TRUE(all);
        ASSERT_GE(taken, Least);
        shortest = std::min(shortest, taken);
    }
    EXPECT_LE(shortest, Most);
}

TEST(Windows, AQuitMessageInsideAWaitEndsIt)
{
    const TestWindow window;
    std::thread worker([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        PostMessageW(window.handle, WM_APP, 0, 0);
    });
    MSG message;
    BOOL more = TRUE;
    while ((more = GetMessageW(&message, nullptr, 0, 0)) > 0) {
        DispatchMessageW(&message);
        if (message.message == WM_APP)
            PostQuitMessage(12);
    }
    worker.join();
    EXPECT_EQ(more, 0);
    EXPECT_EQ(message.wParam, 12u);
}

namespace
{

// What a dialog that runs while its owner is still being created sees.
struct DuringCreation {
    HWND owner = nullptr;
    bool ownerVisible = true;
    bool ownerEnabled = true;
    bool dialogVisible = false;
    int steps = 0;
    std::thread worker;
};

INT_PTR CALLBACK StepProcedure(HWND dialog, UINT message, WPARAM, LPARAM lParam)
{
    static DuringCreation* seen = nullptr;
    switch (message) {
    case WM_INITDIALOG:
        seen = reinterpret_cast<DuringCreation*>(lParam);
        seen->worker = std::thread([dialog] {
            for (int i = 0; i < 100; ++i)
                SendMessageW(dialog, WM_APP, 0, 0);
            PostMessageW(dialog, WM_COMMAND, IDOK, 0);
        });
        return TRUE;
    case WM_APP:
        ++seen->steps;
        return TRUE;
    case WM_COMMAND:
        seen->ownerVisible = IsWindowVisible(seen->owner) != FALSE;
        seen->ownerEnabled = IsWindowEnabled(seen->owner) != FALSE;
        seen->dialogVisible = IsWindowVisible(dialog) != FALSE;
        hand::ClickScreen(600, 400); // on the owner's place, beside the dialog
        EndDialog(dialog, 33);
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

TEST(Windows, AModalDialogWithAWorkerRunsWhileItsOwnerIsBeingCreated)
{
    struct {
        DLGTEMPLATE head{};
        WORD menu = 0;
        WORD windowClass = 0;
        WORD title = 0;
    } layout;
    layout.head.style = WS_POPUP | WS_CAPTION;
    layout.head.cx = 60;
    layout.head.cy = 30;

    DuringCreation seen;
    INT_PTR result = 0;
    const TestWindow window(
        [&](HWND handle, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
            if (message == WM_CREATE) {
                seen.owner = handle;
                result = DialogBoxIndirectParamW(nullptr, &layout.head, handle, StepProcedure,
                                                 reinterpret_cast<LPARAM>(&seen));
                seen.worker.join();
            }
            return std::nullopt;
        });
    EXPECT_EQ(result, 33);
    EXPECT_EQ(seen.steps, 100);
    EXPECT_TRUE(seen.dialogVisible);
    EXPECT_FALSE(seen.ownerVisible);
    EXPECT_FALSE(seen.ownerEnabled);
    EXPECT_TRUE(IsWindowVisible(window.handle));
    EXPECT_TRUE(IsWindowEnabled(window.handle));
    hand::Pump(30);
    EXPECT_EQ(window.Count(WM_LBUTTONDOWN), 0u);
    hand::ClickScreen(600, 400);
    hand::Pump(30);
    EXPECT_EQ(window.Count(WM_LBUTTONDOWN), 1u) << "input works after the dialog";
}
