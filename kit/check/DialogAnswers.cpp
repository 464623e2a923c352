#include "kit/check/DialogAnswers.h"

#include "platform/core/TestHooks.h"

#include <mutex>
#include <vector>

namespace plugincheck
{

namespace
{

constexpr UINT Interval = 15; // milliseconds
constexpr u32 TriesOfAnswer = 8;

struct Open {
    HWND dialog;
    u32 tries;
};

struct Answering {
    int answer = IDCANCEL;
    u32 dialogs = 0;
    bool forced = false;
    UINT_PTR timer = 0;
    std::vector<Open> open;
};

Answering& State()
{
    static Answering& state = *new Answering;
    return state;
}

/// The ways out, in turn.
void Press(Open* top)
{
    static const int others[] = {IDCANCEL, IDOK, IDNO, IDYES, IDABORT, IDIGNORE};
    Answering& state = State();
    const u32 tries = top->tries++;
    int id = state.answer;
    if (tries >= TriesOfAnswer) {
        state.forced = true;
        id = others[tries % (sizeof others / sizeof *others)];
    }
    PostMessageW(top->dialog, WM_COMMAND, static_cast<WPARAM>(id),
                 reinterpret_cast<LPARAM>(GetDlgItem(top->dialog, id)));
}

void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD)
{
    Answering& state = State();
    while (!state.open.empty() && !IsWindow(state.open.back().dialog))
        state.open.pop_back();
    if (!state.open.empty())
        Press(&state.open.back());
}

void SetScript(std::function<void(HWND, bool)> script)
{
    tavrix::platform::TestHooks& hooks = tavrix::platform::Hooks();
    const std::lock_guard<std::mutex> held(hooks.lock);
    hooks.active = script != nullptr;
    hooks.modalStarted = std::move(script);
}

} // namespace

DialogAnswers::DialogAnswers(int answer)
{
    State() = {};
    State().answer = answer;
    SetScript([](HWND dialog, bool) {
        ++State().dialogs;
        State().open.push_back({dialog, 0});
    });
    State().timer = SetTimer(nullptr, 0, Interval, OnTimer);
}

DialogAnswers::~DialogAnswers()
{
    KillTimer(nullptr, State().timer);
    SetScript(nullptr);
}

u32 DialogAnswers::Dialogs() const
{
    return State().dialogs;
}

bool DialogAnswers::WasForced() const
{
    return State().forced;
}

} // namespace plugincheck
