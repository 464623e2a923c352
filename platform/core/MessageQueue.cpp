#include "platform/core/MessageQueue.h"

#include "platform/core/KeyState.h"
#include "platform/core/Rest.h"
#include "platform/core/Timers.h"
#include "platform/core/WindowMessenger.h"
#include "platform/core/WindowRegistry.h"
#include "platform/core/WindowTable.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace tavrix::platform
{
namespace
{

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// With a queue that never runs empty the host would get no turn; it gets one this often.
constexpr milliseconds HostTurn{8};
constexpr DWORD InvalidWindowHandle = 1400;
// How long a timer without a window waits where the program rests, in milliseconds.
constexpr int RestBeat = 50;

/// A call that another thread waits for.
struct SentCall {
    std::function<LRESULT()> call;
    LRESULT result = 0;
    bool done = false;
    std::mutex lock;
    std::condition_variable finished;
};

struct Queue {
    std::mutex lock; // guards the fields down to `bell`
    std::condition_variable wakeUp;
    std::deque<std::shared_ptr<SentCall>> sent;
    std::deque<MSG> posted;
    std::deque<InputMessage> input;
    bool quit = false;
    int exitCode = 0;
    bool woken = false;
    int bell = -1; // rung at each sent call while the thread waits for a descriptor

    std::atomic<void (*)()> wakeHost{nullptr};

    // The user-interface thread's own.
    HostLoop host;
    Clock::time_point lastTurn{};
    InputMessage current; // the input message handed out last
    int callDepth = 0;    // calls of the program on the stack
    int hostDepth = 0;    // turns of the host on the stack
    int nestedLoops = 0;
};

// Never destroyed: worker threads may still post while the process ends.
Queue& TheQueue()
{
    static Queue& queue = *new Queue;
    return queue;
}

struct Depth {
    explicit Depth(int& counter) : value(counter) { ++value; }
    ~Depth() { --value; }
    int& value;
};

bool Outermost(const Queue& queue)
{
    return queue.callDepth == 0 && queue.hostDepth == 0 && queue.nestedLoops == 0;
}

// A turn of the host inside another one may have eaten the wake-up that the outer one waits for.
void EndTurn(Queue& queue)
{
    queue.lastTurn = Clock::now();
    if (queue.hostDepth > 0)
        WakeLoop();
}

void WaitForWork(Queue& queue, int limit)
{
    if (queue.host.wait != nullptr) {
        {
            Depth depth(queue.hostDepth);
            queue.host.wait(limit);
        }
        EndTurn(queue);
        return;
    }
    std::unique_lock guard(queue.lock);
    const auto woken = [&queue] { return queue.woken; };
    if (limit < 0)
        queue.wakeUp.wait(guard, woken);
    else
        queue.wakeUp.wait_for(guard, milliseconds(limit), woken);
    queue.woken = false;
}

void Send(const std::shared_ptr<SentCall>& sent)
{
    Queue& queue = TheQueue();
    {
        std::lock_guard guard(queue.lock);
        queue.sent.push_back(sent);
        const uint64_t one = 1;
        if (queue.bell >= 0)
            (void)!write(queue.bell, &one, sizeof one);
    }
    WakeLoop();
}

void RunSentCalls(Queue& queue)
{
    for (;;) {
        std::shared_ptr<SentCall> next;
        {
            std::lock_guard guard(queue.lock);
            if (queue.sent.empty())
                return;
            next = std::move(queue.sent.front());
            queue.sent.pop_front();
        }
        NoteActivity();
        LRESULT result = 0;
        {
            Depth depth(queue.callDepth);
            result = next->call();
        }
        std::lock_guard guard(next->lock);
        next->result = result;
        next->done = true;
        next->finished.notify_all();
    }
}

struct Filter {
    HWND window;
    UINT first;
    UINT last;
    bool Takes(UINT message) const
    {
        return (first == 0 && last == 0) || (message >= first && message <= last);
    }
    bool Takes(const MSG& message) const
    {
        return Takes(message.message) && (window == nullptr || IsSameOrBelow(message.hwnd, window));
    }
};

bool TakePosted(Queue& queue, const Filter& filter, bool take, MSG* message)
{
    std::lock_guard guard(queue.lock);
    for (auto entry = queue.posted.begin(); entry != queue.posted.end(); ++entry) {
        if (!filter.Takes(*entry))
            continue;
        *message = *entry;
        if (take)
            queue.posted.erase(entry);
        return true;
    }
    return false;
}

bool TakeInput(Queue& queue, const Filter& filter, bool take, MSG* message)
{
    std::lock_guard guard(queue.lock);
    if (queue.host.takesInput != nullptr)
        std::erase_if(queue.input, [&queue](const InputMessage& input) {
            return !queue.host.takesInput(input.message.hwnd);
        });
    for (auto entry = queue.input.begin(); entry != queue.input.end(); ++entry) {
        if (!filter.Takes(entry->message))
            continue;
        if (queue.host.freshen != nullptr)
            queue.host.freshen(&entry->message);
        *message = entry->message;
        if (take) {
            queue.current = std::move(*entry);
            queue.input.erase(entry);
            NoteMessageKeys(message->message, message->wParam, queue.current.modifiers);
        }
        return true;
    }
    return false;
}

bool TakeQuit(Queue& queue, bool take, MSG* message)
{
    std::lock_guard guard(queue.lock);
    if (!queue.quit)
        return false;
    *message = MSG{};
    message->message = WM_QUIT;
    message->wParam = static_cast<WPARAM>(static_cast<LPARAM>(queue.exitCode));
    if (take)
        queue.quit = false;
    return true;
}

bool TakePaint(Queue& queue, const Filter& filter, MSG* message)
{
    if (queue.host.nextPaint == nullptr || !filter.Takes(WM_PAINT))
        return false;
    const HWND window = queue.host.nextPaint(filter.window);
    if (window == nullptr)
        return false;
    *message = MSG{};
    message->hwnd = window;
    message->message = WM_PAINT;
    return true;
}

// The next message in the order of the head comment; false when there is none.
bool Next(Queue& queue, const Filter& filter, bool take, MSG* message)
{
    if (Outermost(queue) && queue.host.outermost != nullptr)
        queue.host.outermost();
    RunSentCalls(queue);
    if (Clock::now() - queue.lastTurn >= HostTurn)
        PumpHost();
    if (TakePosted(queue, filter, take, message) || TakeInput(queue, filter, take, message) ||
        TakeQuit(queue, take, message))
        return true;
    if (!TakePaint(queue, filter, message) &&
        !(filter.Takes(WM_TIMER) && TakeDueTimer(filter.window, take, message)))
        return false;
    message->time = GetTickCount();
    return true;
}

void Forget(std::deque<MSG>& messages, HWND window)
{
    std::erase_if(messages, [window](const MSG& message) { return message.hwnd == window; });
}

} // namespace

bool IsUiThread()
{
    thread_local const bool answer = syscall(SYS_gettid) == static_cast<long>(getpid());
    return answer;
}

void SetHostLoop(const HostLoop& loop)
{
    TheQueue().host = loop;
    TheQueue().wakeHost = loop.wake;
}

void WakeLoop()
{
    Queue& queue = TheQueue();
    if (void (*wake)() = queue.wakeHost; wake != nullptr) {
        wake();
        return;
    }
    std::lock_guard guard(queue.lock);
    queue.woken = true;
    queue.wakeUp.notify_one();
}

void PumpHost()
{
    Queue& queue = TheQueue();
    queue.lastTurn = Clock::now();
    if (queue.host.pump == nullptr || !IsUiThread())
        return;
    {
        Depth depth(queue.hostDepth);
        queue.host.pump();
    }
    EndTurn(queue);
}

void PostInput(InputMessage input)
{
    Queue& queue = TheQueue();
    {
        std::lock_guard guard(queue.lock);
        const bool replaces = input.message.message == WM_MOUSEMOVE && !queue.input.empty() &&
                              queue.input.back().message.message == WM_MOUSEMOVE &&
                              queue.input.back().message.hwnd == input.message.hwnd;
        if (replaces)
            queue.input.back() = std::move(input);
        else
            queue.input.push_back(std::move(input));
    }
    WakeLoop();
}

void ForgetWindow(HWND window)
{
    Queue& queue = TheQueue();
    {
        std::lock_guard guard(queue.lock);
        Forget(queue.posted, window);
        std::erase_if(queue.input,
                      [window](const InputMessage& input) { return input.message.hwnd == window; });
    }
    DropTimers(window);
}

LRESULT CallWindow(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const WNDPROC procedure = WindowProcedure(window);
    if (procedure == nullptr) {
        SetLastError(InvalidWindowHandle);
        return 0;
    }
    Depth depth(TheQueue().callDepth);
    return procedure(window, message, wParam, lParam);
}

LRESULT RunOnUiThread(std::function<LRESULT()> call)
{
    if (IsUiThread())
        return call();
    const auto sent = std::make_shared<SentCall>();
    sent->call = std::move(call);
    Send(sent);
    std::unique_lock guard(sent->lock);
    sent->finished.wait(guard, [&sent] { return sent->done; });
    return sent->result;
}

void CallSoon(std::function<LRESULT()> call)
{
    const auto sent = std::make_shared<SentCall>();
    sent->call = std::move(call);
    Send(sent);
}

void WaitForDescriptor(int file)
{
    Queue& queue = TheQueue();
    const bool serves = IsUiThread();
    const int bell = serves ? eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK) : -1;
    const auto exchangeBell = [&queue, serves](int other) {
        std::lock_guard guard(queue.lock);
        return serves ? std::exchange(queue.bell, other) : -1;
    };
    // A wait inside a call that this one serves has a bell of its own.
    const int before = exchangeBell(bell);
    pollfd watched[] = {{file, POLLIN, 0}, {bell, POLLIN, 0}};
    do {
        if (serves)
            RunSentCalls(queue);
        uint64_t rung = 0;
        if (poll(watched, 2, -1) < 0)
            watched[0].revents = watched[1].revents = 0; // a signal: look again
        else if (watched[1].revents != 0)
            (void)!read(bell, &rung, sizeof rung);
    } while (watched[0].revents == 0);
    exchangeBell(before);
    if (bell >= 0)
        close(bell);
}

NestedLoop::NestedLoop()
{
    ++TheQueue().nestedLoops;
}
NestedLoop::~NestedLoop()
{
    --TheQueue().nestedLoops;
}

} // namespace tavrix::platform

using namespace tavrix::platform;

extern "C" {

BOOL WINAPI GetMessageW(LPMSG message, HWND window, UINT first, UINT last)
{
    if (message == nullptr || !IsUiThread() || (window != nullptr && !IsWindow(window))) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return -1;
    }
    Queue& queue = TheQueue();
    const Filter filter{window, first, last};
    while (!Next(queue, filter, true, message)) {
        if (Outermost(queue) && queue.host.idle != nullptr)
            queue.host.idle();
        WaitForWork(queue, UntilNextTimer(IsAtRest() ? RestBeat : 0).value_or(-1));
    }
    if (message->message != WM_TIMER)
        NoteActivity();
    // The program goes down: from here on nobody is left to serve what another process sends.
    if (message->message == WM_QUIT && Outermost(queue))
        RetractAllWindows();
    return message->message != WM_QUIT;
}

BOOL WINAPI PeekMessageW(LPMSG message, HWND window, UINT first, UINT last, UINT remove)
{
    if (message == nullptr || !IsUiThread() || (window != nullptr && !IsWindow(window))) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    Queue& queue = TheQueue();
    const Filter filter{window, first, last};
    const bool take = (remove & PM_REMOVE) != 0;
    if (Next(queue, filter, take, message))
        return TRUE;
    PumpHost();
    return Next(queue, filter, take, message);
}

BOOL WINAPI TranslateMessage(const MSG* message)
{
    if (message == nullptr || (message->message != WM_KEYDOWN && message->message != WM_SYSKEYDOWN))
        return FALSE;
    // The text travels with the input message, since the keyboard may have moved on since.
    InputMessage& current = TheQueue().current;
    if (current.message.hwnd != message->hwnd || current.message.message != message->message ||
        current.message.wParam != message->wParam || current.message.time != message->time)
        return TRUE;
    const UINT kind = message->message == WM_KEYDOWN ? WM_CHAR : WM_SYSCHAR;
    for (const WCHAR unit : current.text)
        PostMessageW(message->hwnd, kind, unit, message->lParam);
    current.text.clear();
    return TRUE;
}

LRESULT WINAPI DispatchMessageW(const MSG* message)
{
    if (message == nullptr)
        return 0;
    if (message->message == WM_TIMER && message->lParam != 0) {
        const TIMERPROC callback = reinterpret_cast<TIMERPROC>(message->lParam);
        if (IsTimerCallback(message->hwnd, message->wParam, callback)) {
            Depth depth(TheQueue().callDepth);
            callback(message->hwnd, WM_TIMER, message->wParam, GetTickCount());
        }
        return 0;
    }
    if (message->hwnd == nullptr)
        return 0;
    return CallWindow(message->hwnd, message->message, message->wParam, message->lParam);
}

BOOL WINAPI PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (window != nullptr && !IsWindow(window)) {
        SetLastError(InvalidWindowHandle);
        return FALSE;
    }
    MSG entry{};
    entry.hwnd = window;
    entry.message = message;
    entry.wParam = wParam;
    entry.lParam = lParam;
    entry.time = GetTickCount();
    Queue& queue = TheQueue();
    {
        std::lock_guard guard(queue.lock);
        queue.posted.push_back(entry);
    }
    WakeLoop();
    return TRUE;
}

LRESULT WINAPI SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (!IsWindow(window)) {
        if (ForeignWindowOf(window))
            return SendToForeignWindow(window, message, lParam);
        SetLastError(InvalidWindowHandle);
        return 0;
    }
    return RunOnUiThread([=] { return CallWindow(window, message, wParam, lParam); });
}

void WINAPI PostQuitMessage(int exitCode)
{
    Queue& queue = TheQueue();
    {
        std::lock_guard guard(queue.lock);
        queue.quit = true;
        queue.exitCode = exitCode;
    }
    WakeLoop();
}

} // extern "C"
