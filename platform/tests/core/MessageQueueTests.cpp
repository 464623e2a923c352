#include "platform/core/MessageQueue.h"
#include "platform/core/WindowTable.h"
#include "platform/tests/core/EarlyTimer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

using namespace tavrix::platform;

namespace
{

struct Received {
    UINT message;
    WPARAM wParam;
    std::thread::id thread;
};
std::vector<Received> received;

LRESULT CALLBACK Record(HWND, UINT message, WPARAM wParam, LPARAM lParam)
{
    received.push_back({message, wParam, std::this_thread::get_id()});
    return static_cast<LRESULT>(wParam) + lParam;
}

// A window without anything to show: what the queue needs of one.
class TableWindow
{
public:
    explicit TableWindow(WNDPROC called = Record, HWND parent = nullptr)
        : procedure(called), handle(AddWindowHandle(this, &procedure, parent))
    {
    }
    ~TableWindow()
    {
        ForgetWindow(handle);
        RemoveWindowHandle(handle);
    }
    WNDPROC procedure;
    HWND handle;
};

class MessageQueueTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        received.clear();
        RestEarlyTimer();
    }
    void TearDown() override
    {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        }
        ResumeEarlyTimer();
    }
    static MSG Get()
    {
        MSG message{};
        GetMessageW(&message, nullptr, 0, 0);
        return message;
    }
    static void PutInput(HWND window, UINT kind, LPARAM position = 0, unsigned modifiers = 0)
    {
        InputMessage input;
        input.message.hwnd = window;
        input.message.message = kind;
        input.message.lParam = position;
        input.modifiers = modifiers;
        PostInput(std::move(input));
    }
};

} // namespace

TEST(WindowTable, AHandleIsStaleOnceItsWindowIsGoneEvenWhenItsPlaceIsUsedAgain)
{
    WNDPROC procedure = Record;
    int first = 0;
    int second = 0;
    const HWND old = AddWindowHandle(&first, &procedure);
    EXPECT_TRUE(IsWindow(old));
    EXPECT_EQ(WindowRecord(old), &first);
    RemoveWindowHandle(old);
    const HWND fresh = AddWindowHandle(&second, &procedure);
    EXPECT_NE(old, fresh);
    EXPECT_FALSE(IsWindow(old));
    EXPECT_EQ(WindowRecord(old), nullptr);
    EXPECT_EQ(WindowProcedure(old), nullptr);
    RemoveWindowHandle(fresh);
}

TEST(WindowTable, MadeUpHandlesAreNoWindows)
{
    EXPECT_FALSE(IsWindow(nullptr));
    EXPECT_FALSE(IsWindow(reinterpret_cast<HWND>(1)));
    EXPECT_FALSE(IsWindow(reinterpret_cast<HWND>(-1)));
    int local = 0;
    EXPECT_FALSE(IsWindow(reinterpret_cast<HWND>(&local)));
}

TEST_F(MessageQueueTest, PostedComesBeforeInputBeforeQuitBeforeTimers)
{
    const TableWindow window;
    SetTimer(window.handle, 7, 1, nullptr);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    PostQuitMessage(3);
    PutInput(window.handle, WM_LBUTTONDOWN);
    PostMessageW(window.handle, WM_USER, 0, 0);
    EXPECT_EQ(Get().message, static_cast<UINT>(WM_USER));
    EXPECT_EQ(Get().message, static_cast<UINT>(WM_LBUTTONDOWN));
    const MSG quit = Get();
    EXPECT_EQ(quit.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(quit.wParam, 3u);
    EXPECT_EQ(Get().message, static_cast<UINT>(WM_TIMER));
}

TEST_F(MessageQueueTest, GetMessageAnswersZeroForQuitOnlyOnce)
{
    PostQuitMessage(-1);
    MSG message;
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 0);
    EXPECT_EQ(static_cast<int>(message.wParam), -1);
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST_F(MessageQueueTest, PeekWithoutRemovingLeavesTheMessage)
{
    const TableWindow window;
    PostMessageW(window.handle, WM_USER, 1, 0);
    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.wParam, 1u);
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST_F(MessageQueueTest, AFilterTakesOnlyItsRangeAndWindowAndWhatLiesBelowIt)
{
    const TableWindow parent;
    const TableWindow child(Record, parent.handle);
    const TableWindow other;
    PostMessageW(other.handle, WM_USER, 1, 0);
    PostMessageW(child.handle, WM_USER + 1, 2, 0);
    PostMessageW(parent.handle, WM_USER + 2, 3, 0);
    MSG message;
    ASSERT_TRUE(PeekMessageW(&message, parent.handle, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.wParam, 2u);
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_USER + 2, WM_USER + 5, PM_REMOVE));
    EXPECT_EQ(message.wParam, 3u);
    ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.wParam, 1u);
}

TEST_F(MessageQueueTest, CallsWithStaleHandlesFailAndSayWhy)
{
    HWND stale = nullptr;
    {
        const TableWindow window;
        stale = window.handle;
    }
    SetLastError(0);
    EXPECT_FALSE(PostMessageW(stale, WM_USER, 0, 0));
    EXPECT_EQ(GetLastError(), 1400u);
    EXPECT_EQ(SendMessageW(stale, WM_USER, 5, 5), 0);
    EXPECT_EQ(SendMessageW(nullptr, WM_USER, 5, 5), 0);
    MSG message{};
    message.hwnd = stale;
    message.message = WM_USER;
    EXPECT_EQ(DispatchMessageW(&message), 0);
    EXPECT_EQ(DispatchMessageW(nullptr), 0);
    EXPECT_EQ(GetMessageW(&message, stale, 0, 0), -1);
    EXPECT_EQ(GetMessageW(nullptr, nullptr, 0, 0), -1);
    EXPECT_FALSE(TranslateMessage(nullptr));
}

TEST_F(MessageQueueTest, MessagesOfAWindowThatGoesAreDropped)
{
    {
        const TableWindow window;
        PostMessageW(window.handle, WM_USER, 0, 0);
        PutInput(window.handle, WM_MOUSEMOVE);
        SetTimer(window.handle, 1, 1, nullptr);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    MSG message;
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST_F(MessageQueueTest, SendingOnTheSameThreadCallsTheProcedureAtOnce)
{
    const TableWindow window;
    PostMessageW(window.handle, WM_USER, 1, 0);
    EXPECT_EQ(SendMessageW(window.handle, WM_APP, 40, 2), 42);
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].message, static_cast<UINT>(WM_APP));
}

TEST_F(MessageQueueTest, AWorkersSendsAreServedInsideGetMessageWithTheirResults)
{
    const TableWindow window;
    std::atomic<int> wrong{0};
    std::thread worker([&] {
        for (WPARAM i = 0; i < 1000; ++i) {
            if (SendMessageW(window.handle, WM_APP, i, 1) != static_cast<LRESULT>(i) + 1)
                ++wrong;
            PostMessageW(window.handle, WM_USER, i, 0);
        }
        PostMessageW(window.handle, WM_CLOSE, 0, 0);
    });
    MSG message;
    WPARAM posted = 0;
    while (GetMessageW(&message, nullptr, 0, 0) && message.message != WM_CLOSE) {
        EXPECT_EQ(message.wParam, posted++);
        DispatchMessageW(&message);
    }
    worker.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(posted, 1000u);
    for (const Received& entry : received)
        EXPECT_EQ(entry.thread, std::this_thread::get_id());
}

TEST_F(MessageQueueTest, ASentMessageOvertakesPostedOnes)
{
    const TableWindow window;
    PostMessageW(window.handle, WM_USER, 0, 0);
    std::atomic<bool> started{false};
    std::thread worker([&] {
        started = true;
        SendMessageW(window.handle, WM_APP, 0, 0);
    });
    while (!started)
        std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const MSG message = Get();
    EXPECT_EQ(message.message, static_cast<UINT>(WM_USER));
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].message, static_cast<UINT>(WM_APP));
    worker.join();
}

TEST_F(MessageQueueTest, PostingFromAWorkerEndsTheWait)
{
    const TableWindow window;
    std::thread worker([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        PostMessageW(window.handle, WM_USER, 9, 0);
    });
    EXPECT_EQ(Get().wParam, 9u);
    worker.join();
}

TEST_F(MessageQueueTest, ACallIsCarriedFromAWorkerToTheUserInterfaceThread)
{
    std::atomic<LRESULT> answer{0};
    std::thread::id ranOn;
    std::thread worker([&] {
        answer = RunOnUiThread([&]() -> LRESULT {
            ranOn = std::this_thread::get_id();
            return 17;
        });
        PostMessageW(nullptr, WM_NULL, 0, 0);
    });
    (void)Get();
    worker.join();
    EXPECT_EQ(answer, 17);
    EXPECT_EQ(ranOn, std::this_thread::get_id());
}

// Whether the thread is about to sleep, asleep or just awake when a call comes: no wake-up is
// missed.
TEST_F(MessageQueueTest, CallsBehindPausesOfAnyLengthAreAllAnswered)
{
    constexpr int Calls = 3000;
    std::atomic<int> served{0};
    std::atomic<int> wrong{0};
    const auto call = [&](int seed) {
        for (int i = 0; i < Calls; ++i) {
            const auto pause = std::chrono::microseconds(i % 64 == 0 ? 3000 : (i * 7 + seed) % 100);
            const auto end = std::chrono::steady_clock::now() + pause;
            while (std::chrono::steady_clock::now() < end)
                continue;
            if (i % 3 == 0)
                CallSoon([&]() -> LRESULT { return ++served; });
            else if (RunOnUiThread([&, i]() -> LRESULT { return ++served, i; }) != i)
                ++wrong;
        }
    };
    std::thread one(call, 0);
    std::thread other(call, 50);
    std::thread last([&] {
        one.join();
        other.join();
        PostMessageW(nullptr, WM_NULL, 0, 0);
    });
    (void)Get();
    last.join();
    EXPECT_EQ(served, 2 * Calls);
    EXPECT_EQ(wrong, 0);
}

TEST_F(MessageQueueTest, MovesInARowBecomeOneButNeverPassAClick)
{
    const TableWindow window;
    PutInput(window.handle, WM_MOUSEMOVE, 1);
    PutInput(window.handle, WM_MOUSEMOVE, 2);
    PutInput(window.handle, WM_LBUTTONDOWN, 3);
    PutInput(window.handle, WM_MOUSEMOVE, 4);
    EXPECT_EQ(Get().lParam, 2);
    EXPECT_EQ(Get().lParam, 3);
    EXPECT_EQ(Get().lParam, 4);
}

TEST_F(MessageQueueTest, TranslateMessageMakesTheCharacterFromTheKeysOwnText)
{
    const TableWindow window;
    InputMessage key;
    key.message.hwnd = window.handle;
    key.message.message = WM_KEYDOWN;
    key.message.wParam = 'A';
    key.text = u"\u3042";
    PostInput(key);
    const MSG down = Get();
    MSG none;
    EXPECT_FALSE(PeekMessageW(&none, nullptr, 0, 0, PM_REMOVE)) << "a character without asking";
    EXPECT_TRUE(TranslateMessage(&down));
    const MSG character = Get();
    EXPECT_EQ(character.message, static_cast<UINT>(WM_CHAR));
    EXPECT_EQ(character.wParam, 0x3042u);
}

TEST_F(MessageQueueTest, GetKeyStateFollowsTheMessagesThatWereTakenOut)
{
    const TableWindow window;
    PutInput(window.handle, WM_KEYDOWN, 0, MK_CONTROL);
    PutInput(window.handle, WM_KEYUP, 0, 0);
    EXPECT_GE(GetKeyState(VK_CONTROL), 0);
    (void)Get();
    EXPECT_LT(GetKeyState(VK_CONTROL), 0);
    (void)Get();
    EXPECT_GE(GetKeyState(VK_CONTROL), 0);
    EXPECT_EQ(GetKeyState(-1), 0);
    EXPECT_EQ(GetAsyncKeyState(300), 0);
}
