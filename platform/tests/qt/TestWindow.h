// A window of a program's class for tests: its messages are kept in order, and a test may put in a
// function that sees each first.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <vector>

namespace tavrix::test
{

struct Kept {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

/// Answers a message in place of the default; empty leaves it to the default.
using Handler =
    std::function<std::optional<LRESULT>(HWND window, UINT message, WPARAM wParam, LPARAM lParam)>;

struct TestWindow {
    explicit TestWindow(Handler first = {}, DWORD style = WS_VISIBLE, int x = CW_USEDEFAULT,
                        int y = CW_USEDEFAULT, int width = CW_USEDEFAULT,
                        int height = CW_USEDEFAULT, HWND parent = nullptr);
    ~TestWindow();
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    size_t Count(UINT message) const;
    /// The last message of that number; a record of zeros when there was none.
    Kept Last(UINT message) const;

    HWND handle = nullptr;
    Handler handler;
    std::vector<Kept> messages;
};

} // namespace tavrix::test
