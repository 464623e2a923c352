#include "platform/tests/core/ChildRoles.h"

#include "platform/core/MessageQueue.h"
#include "platform/core/WindowReceiver.h"
#include "platform/core/WindowRegistry.h"
#include "platform/core/WindowTable.h"

#include <cstdlib>
#include <poll.h>
#include <string>
#include <unistd.h>

using namespace tavrix::platform;

namespace
{

LRESULT AskParentBack()
{
    WCHAR text[] = u"asked back";
    COPYDATASTRUCT record = {5, sizeof text, text};
    const HWND parent = FindForeignWindow(TEXT("Core_Test_Parent"), nullptr);
    return SendMessageW(parent, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record));
}

LRESULT OnData(const COPYDATASTRUCT& record)
{
    std::string text;
    const auto* units = static_cast<const WCHAR*>(record.lpData);
    for (DWORD i = 0; units != nullptr && i < record.cbData / 2 && i < 20 && units[i] != 0; ++i)
        text.push_back(static_cast<char>(units[i]));
    if (units == nullptr)
        text = "(null)";
    Tell(std::to_string(record.dwData) + " " + std::to_string(record.cbData) + " " + text);
    if (text == "exit")
        std::exit(0);
    if (text == "wait")
        WaitToGoOn();
    if (text == "back")
        return AskParentBack();
    return static_cast<LRESULT>(record.cbData) + 1000;
}

LRESULT CALLBACK Procedure(HWND, UINT message, WPARAM, LPARAM lParam)
{
    return message == WM_COPYDATA ? OnData(*reinterpret_cast<const COPYDATASTRUCT*>(lParam)) : 55;
}

WNDPROC procedure = Procedure;

HWND Show()
{
    const HWND window = AddWindowHandle(&procedure, &procedure);
    SetRaiseForOthers([](HWND raised, bool activate, const std::string& token) {
        Tell((activate ? "activate " : "raise ") + std::to_string(IsWindow(raised)) + " " + token);
    });
    PublishWindow(window, u"Core_Test_Window", u"A Title");
    Tell("ready");
    return window;
}

void Serve()
{
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
}

// Whether the parent has let this process go on, without waiting for it.
bool IsTold()
{
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    if (poll(&input, 1, 0) != 1)
        return false;
    WaitToGoOn();
    return true;
}

void ServeUntilTold()
{
    MSG message;
    while (!IsTold()) {
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
        Sleep(1);
    }
}

} // namespace

void ShowWindowToOthers()
{
    Show();
    Serve();
}

void ShowWindowUntilTold()
{
    const HWND window = Show();
    ServeUntilTold();
    RetractWindow(window);
    Tell("taken away");
    Serve();
}

void ShowWindowThatNobodyServes()
{
    Show();
    WaitToGoOn();
}

void ShowWindowThatChanges()
{
    const HWND window = Show();
    WaitToGoOn();
    RetitleWindow(window, u"Another Title");
    Tell("changed");
    WaitToGoOn();
}

void ShowWindowUntilQuit()
{
    Show();
    ServeUntilTold();
    PostQuitMessage(0);
    Serve();
    Tell("over");
    WaitToGoOn();
}

void SendToWindow()
{
    const HWND window = FindForeignWindow(TEXT("Core_Test_Window"), nullptr);
    if (window == nullptr) {
        Tell("no window");
        return;
    }
    WCHAR text[] = u"hello";
    COPYDATASTRUCT record = {1, sizeof text, text};
    Tell("sending");
    Tell(static_cast<unsigned long long>(
        SendMessageW(window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record))));
}
