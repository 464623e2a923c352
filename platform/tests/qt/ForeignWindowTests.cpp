// A window of another process, with the toolkit on both sides. The other process is this program
// once more in a role of its own, which it plays before main.
#include "platform/qt/Window.h"
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"

#include <QWidget>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace hand = tavrix::testing;
using tavrix::test::TestWindow;

namespace
{

constexpr const WCHAR* ClassName = TEXT("Foreign_Class");
enum : ULONG_PTR { Retitle, Destroy, Minimise, IsMinimised };

LRESULT Obey(HWND window, const COPYDATASTRUCT& order)
{
    QWidget* screen = tavrix::platform::ScreenWidget()->window();
    switch (order.dwData) {
    case Retitle:
        return SetWindowTextW(window, TEXT("名前"));
    case Destroy:
        return DestroyWindow(window);
    case Minimise:
        screen->showMinimized();
        return screen->isMinimized();
    case IsMinimised:
        return screen->isMinimized();
    default:
        return 99;
    }
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_COPYDATA)
        return Obey(window, *reinterpret_cast<const COPYDATASTRUCT*>(lParam));
    return DefWindowProcW(window, message, wParam, lParam);
}

HWND Show(const WCHAR* title)
{
    WNDCLASSW record = {};
    record.lpfnWndProc = Procedure;
    record.lpszClassName = ClassName;
    RegisterClassW(&record);
    return CreateWindowExW(0, ClassName, title, WS_VISIBLE, CW_USEDEFAULT, CW_USEDEFAULT,
                           CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, nullptr, nullptr);
}

constexpr const char* RoleName = "TAVRIX_QT_TEST_ROLE";

const struct Start {
    Start()
    {
        if (std::getenv(RoleName) == nullptr)
            return;
        const HWND shown = Show(TEXT("Title"));
        CreateWindowExW(0, TEXT("STATIC"), TEXT("Tool"), WS_POPUP, 0, 0, 9, 9, shown, nullptr,
                        nullptr, nullptr);
        hand::Pump(60000);
        _exit(0);
    }
} start;

/// Another process with a window of the class and a tool window of a stock one.
class OtherProcess
{
public:
    OtherProcess()
    {
        setenv(RoleName, "window", 1);
        char name[] = "child";
        char* arguments[] = {name, nullptr};
        EXPECT_EQ(posix_spawn(&process, "/proc/self/exe", nullptr, nullptr, arguments, environ), 0);
        unsetenv(RoleName);
        for (int turn = 0; turn < 2000 && window == nullptr; ++turn) {
            usleep(10000);
            window = FindWindowW(ClassName, nullptr);
        }
        EXPECT_NE(window, nullptr);
    }
    ~OtherProcess()
    {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
    LRESULT Order(ULONG_PTR order) const
    {
        COPYDATASTRUCT record = {order, 0, nullptr};
        return SendMessageW(window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record));
    }
    HWND window = nullptr;

private:
    pid_t process = -1;
};

} // namespace

TEST(ForeignWindows, ItIsFoundByClassOrTitleAndItsToolWindowsAreNot)
{
    const OtherProcess other;
    EXPECT_EQ(FindWindowW(TEXT("FOREIGN_class"), nullptr), other.window);
    EXPECT_EQ(FindWindowW(nullptr, TEXT("title")), other.window);
    EXPECT_EQ(FindWindowW(ClassName, TEXT("Other title")), nullptr);
    EXPECT_EQ(FindWindowW(nullptr, TEXT("Tool")), nullptr);
    EXPECT_EQ(FindWindowW(reinterpret_cast<LPCWSTR>(uintptr_t{0xC000}), nullptr), nullptr);
    EXPECT_EQ(FindWindowW(TEXT("HHTaskBar"), nullptr), nullptr);
    EXPECT_EQ(other.Order(12345), 99);
    EXPECT_EQ(other.Order(Retitle), 1);
    EXPECT_EQ(FindWindowW(nullptr, TEXT("名前")), other.window);
    EXPECT_EQ(FindWindowW(nullptr, TEXT("Title")), nullptr);
}

TEST(ForeignWindows, AnOwnWindowOfTheNameIsFoundFirst)
{
    const OtherProcess other;
    const HWND own = Show(TEXT("Title"));
    EXPECT_EQ(FindWindowW(ClassName, nullptr), own);
    EXPECT_EQ(FindWindowW(nullptr, TEXT("Title")), own);
    DestroyWindow(own);
    EXPECT_EQ(FindWindowW(ClassName, nullptr), other.window);
}

TEST(ForeignWindows, OneThatIsDestroyedIsGone)
{
    const OtherProcess other;
    EXPECT_EQ(other.Order(Destroy), 1);
    EXPECT_EQ(FindWindowW(ClassName, nullptr), nullptr);
    EXPECT_EQ(other.Order(Destroy), 0);
    EXPECT_EQ(GetLastError(), 1400U);
}

TEST(ForeignWindows, BringingItToTheFrontTakesItsScreenOutOfTheTaskBar)
{
    const OtherProcess other;
    for (BOOL(WINAPI * raise)(HWND) : {BringWindowToTop, SetForegroundWindow}) {
        EXPECT_EQ(other.Order(Minimise), 1);
        EXPECT_TRUE(raise(other.window));
        EXPECT_EQ(other.Order(IsMinimised), 0); // comes behind the wish
    }
}

TEST(ForeignWindows, EveryOtherCallTakesItForNoWindow)
{
    const OtherProcess other;
    const HWND handle = other.window;
    const TestWindow own;
    POINT point = {1, 2};
    RECT rectangle = {1, 2, 3, 4};
    WCHAR buffer[4] = {u'x'};
    PAINTSTRUCT paint = {};
    MSG message = {};
    EXPECT_FALSE(IsWindow(handle));
    EXPECT_FALSE(GetWindowRect(handle, &rectangle));
    EXPECT_FALSE(GetClientRect(handle, &rectangle));
    EXPECT_EQ(rectangle.left, 1);
    EXPECT_FALSE(DestroyWindow(handle));
    EXPECT_FALSE(ShowWindow(handle, SW_HIDE));
    EXPECT_FALSE(EnableWindow(handle, FALSE));
    EXPECT_FALSE(IsWindowVisible(handle));
    EXPECT_FALSE(IsWindowEnabled(handle));
    EXPECT_FALSE(UpdateWindow(handle));
    EXPECT_EQ(GetParent(handle), nullptr);
    EXPECT_EQ(GetClassNameW(handle, buffer, 4), 0);
    EXPECT_FALSE(SetWindowPos(handle, nullptr, 0, 0, 1, 1, 0));
    EXPECT_TRUE(SetWindowPos(own.handle, handle, 0, 0, 10, 10, 0)); // behind it: nothing to do
    EXPECT_FALSE(MoveWindow(handle, 0, 0, 1, 1, TRUE));
    EXPECT_FALSE(ClientToScreen(handle, &point));
    EXPECT_FALSE(SetWindowTextW(handle, TEXT("x")));
    EXPECT_EQ(GetWindowTextW(handle, buffer, 4), 0);
    EXPECT_EQ(GetWindowTextLengthW(handle), 0);
    EXPECT_EQ(GetWindowLongPtrW(handle, GWL_STYLE), 0);
    EXPECT_EQ(SetWindowLongPtrW(handle, GWLP_USERDATA, 5), 0);
    EXPECT_FALSE(InvalidateRect(handle, nullptr, TRUE));
    EXPECT_EQ(BeginPaint(handle, &paint), nullptr);
    EXPECT_EQ(GetDC(handle), nullptr);
    EXPECT_EQ(GetDlgItem(handle, 1), nullptr);
    EXPECT_EQ(SetTimer(handle, 1, 10, nullptr), 0U);
    EXPECT_FALSE(PostMessageW(handle, WM_CLOSE, 0, 0));
    EXPECT_EQ(SendMessageW(handle, WM_CLOSE, 0, 0), 0);
    EXPECT_EQ(DefWindowProcW(handle, WM_CLOSE, 0, 0), 0);
    EXPECT_EQ(GetMessageW(&message, handle, 0, 0), -1);
    EXPECT_EQ(CreateWindowExW(0, ClassName, nullptr, WS_CHILD, 0, 0, 1, 1, handle, nullptr, nullptr,
                              nullptr),
              nullptr);
    SetCapture(handle);
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(SetFocus(handle), nullptr);
    EXPECT_EQ(other.Order(12345), 99); // and it still is there
}
