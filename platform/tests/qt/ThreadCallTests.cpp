// Calls from other threads while the toolkit waits for work.
#include "platform/tests/qt/TestWindow.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

using tavrix::test::TestWindow;

namespace
{

constexpr UINT AskMessage = WM_APP;
constexpr UINT EndMessage = WM_APP + 1;

// What a job's thread tells of its progress comes in a row, with pauses of any length between. No
// timer ends a wait here.
TEST(ThreadCalls, AreAllAnsweredBehindPausesOfAnyLength)
{
    constexpr int Calls = 2000;
    int asked = 0;
    const TestWindow window(
        [&](HWND, UINT message, WPARAM wParam, LPARAM) -> std::optional<LRESULT> {
            if (message != AskMessage)
                return std::nullopt;
            ++asked;
            return static_cast<LRESULT>(wParam) + 1;
        });
    std::atomic<int> wrong{0};
    std::thread worker([&] {
        for (int i = 0; i < Calls; ++i) {
            const auto pause = std::chrono::microseconds(i % 64 == 0 ? 3000 : i * 7 % 120);
            const auto end = std::chrono::steady_clock::now() + pause;
            while (std::chrono::steady_clock::now() < end)
                continue;
            if (SendMessageW(window.handle, AskMessage, static_cast<WPARAM>(i), 0) != i + 1)
                ++wrong;
        }
        PostMessageW(window.handle, EndMessage, 0, 0);
    });
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0 && message.message != EndMessage)
        DispatchMessageW(&message);
    worker.join();
    EXPECT_EQ(asked, Calls);
    EXPECT_EQ(wrong, 0);
}

} // namespace
