#include "platform/tests/qt/TestWindow.h"

#include <algorithm>

namespace tavrix::test
{
namespace
{

LRESULT CALLBACK TestProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE) {
        const auto* creation = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(window, GWLP_USERDATA,
                          reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
    }
    auto* test = reinterpret_cast<TestWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (test == nullptr)
        return DefWindowProcW(window, message, wParam, lParam);
    test->messages.push_back({message, wParam, lParam});
    if (test->handler)
        if (const auto answer = test->handler(window, message, wParam, lParam))
            return *answer;
    return DefWindowProcW(window, message, wParam, lParam);
}

void RegisterTestClass()
{
    static bool done = false;
    if (done)
        return;
    done = true;
    WNDCLASSW record{};
    record.style = CS_DBLCLKS;
    record.lpfnWndProc = TestProcedure;
    record.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    record.lpszClassName = TEXT("TestWindow");
    RegisterClassW(&record);
}

} // namespace

TestWindow::TestWindow(Handler first, DWORD style, int x, int y, int width, int height, HWND parent)
    : handler(std::move(first))
{
    RegisterTestClass();
    handle = CreateWindowExW(0, TEXT("TestWindow"), TEXT("Title"), style, x, y, width, height,
                             parent, nullptr, nullptr, this);
}

TestWindow::~TestWindow()
{
    if (IsWindow(handle)) {
        SetWindowLongPtrW(handle, GWLP_USERDATA, 0);
        DestroyWindow(handle);
    }
}

size_t TestWindow::Count(UINT message) const
{
    return static_cast<size_t>(
        std::count_if(messages.begin(), messages.end(),
                      [message](const Kept& entry) { return entry.message == message; }));
}

Kept TestWindow::Last(UINT message) const
{
    for (auto entry = messages.rbegin(); entry != messages.rend(); ++entry)
        if (entry->message == message)
            return *entry;
    return {};
}

} // namespace tavrix::test
