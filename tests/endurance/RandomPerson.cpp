#include "tests/endurance/RandomPerson.h"

#include "foundation/MemoryGauge.h"
#include "platform/testing/Controls.h"
#include "platform/testing/Testing.h"
#include "platform/testing/WindowTesting.h"
#include "resources/Ids.h"
#include "tests/endurance/DialogActions.h"
#include "tests/endurance/Time.h"
#include "tests/support/Program.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace endurance
{

namespace
{

using namespace tavrix::testing;

constexpr int MostActionsInADialog = 200;
constexpr unsigned RestsInARun = 8;
constexpr DWORD StepMilliseconds = 20;
constexpr DWORD JobTickMilliseconds = 100;

RandomPerson* person = nullptr;
Journal* notes = nullptr;

void Note(const std::string& action)
{
    notes->Note(action);
}

} // namespace

RandomPerson::RandomPerson(uint64_t seed, unsigned stepCount)
    : dice(seed), jobDice(dice.Fork()), steps(stepCount),
      journal(seed, std::getenv("TAVRIX_ENDURANCE_TRACE") != nullptr), surroundings(dice),
      server(std::make_unique<WebServer>(InRoot("a.png"))), nextRest(stepCount / RestsInARun)
{
    person = this;
    notes = &journal;
}

RandomPerson::~RandomPerson()
{
    person = nullptr;
    notes = nullptr;
}

int RandomPerson::UseTheProgram()
{
    RegisterProgramResources();
    SetLanguage(dice.Pick({1033, 1041}));
    BeginTime();
    tavrix::testing::OnModal([this](HWND window, bool box) { OnModal(window, box); });
    troubles = std::make_unique<Troubles>();
    const Figures before = TakeFigures();
    const UINT_PTR timer = SetTimer(nullptr, 0, 1, Tick);
    WCHAR nothing[] = {0};
    const int result = wWinMain(GetModuleHandleW(nullptr), nullptr, nothing, SW_SHOWNORMAL);
    KillTimer(nullptr, timer);
    EXPECT_TRUE(over) << "the program ended by itself";
    troubles.reset();
    tavrix::testing::OnModal(nullptr);
    invariants.CheckEnd(before);
    pictures.Check();
    return result;
}

void CALLBACK RandomPerson::Tick(HWND, UINT, UINT_PTR, DWORD)
{
    if (person != nullptr && mainFrame != nullptr && IsWindowVisible(mainFrame->window))
        person->OnTick();
}

/// A person who goes on: nothing but the end of the run closes the program.
LRESULT CALLBACK RandomPerson::Screen(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CLOSE && !person->over)
        return 0;
    return MainWindowProcedure(window, message, wParam, lParam);
}

void RandomPerson::OnModal(HWND window, bool box)
{
    modals.Opened(window, box);
}

void RandomPerson::OnTick()
{
    journal.Beat();
    troubles->Round();
    if (over)
        return;
    static bool taken = false;
    if (!taken) {
        taken = true;
        SetWindowLongPtrW(mainFrame->window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Screen));
    }
    Modal* modal = modals.Innermost();
    if (modal != nullptr && SituationOf(*modal) == Situation::Job) {
        WatchJob(*modal);
        return;
    }
    PassTime(StepMilliseconds);
    if (busy) {
        if (modal != nullptr)
            AnswerWhileSettling(*modal);
        return;
    }
    if (::testing::Test::HasFailure())
        steps = 0;
    if (modal == nullptr && !IsPopupOpen() &&
        (journal.Step() >= nextRest || journal.Step() >= steps))
        Rest();
    else
        Act();
}

void RandomPerson::Act()
{
    troubles->Step();
    if (Modal* modal = modals.Innermost())
        ActInModal(*modal);
    else if (IsPopupOpen())
        ActInPopup(dice, Note);
    else
        ActInWindow();
}

void RandomPerson::ActInModal(Modal& modal)
{
    if (modal.actions > MostActionsInADialog) {
        ADD_FAILURE() << "a dialog that cannot be left: " << NameOf(modal.window) << '\n'
                      << journal.Text();
        std::abort();
    }
    // The dialog's record may go with the dialog.
    const Modal now = modal;
    ++modal.actions;
    if (IsPopupOpen())
        ActInPopup(dice, Note);
    else if (now.box)
        ActInBox(now, dice, Note);
    else if (SituationOf(now) == Situation::FileDialog)
        ActInFileDialog(now, dice, surroundings, Note);
    else
        ActInDialog(now, dice, Note);
}

// What is done here is no step: how many rounds a job takes is not told by the seed.
void RandomPerson::WatchJob(Modal& job)
{
    PassTime(JobTickMilliseconds);
    const HWND window = job.window;
    const int tick = job.ticks++;
    if (tick == 0)
        jobDice = Dice(++jobs);
    if (busy || tick > 3 || jobDice.Chance(80))
        return;
    switch (jobDice.Below(6)) {
    case 0:
        ClickControl(window, ControlAbort);
        break;
    case 1:
        TypeKey(jobDice.Pick({VK_ESCAPE, VK_RETURN, VK_SPACE}));
        break;
    case 2:
        DropFile(InRoot(surroundings.AnyName(jobDice)));
        break;
    case 3:
        ClickScreen(jobDice.Below(640), jobDice.Below(480));
        break;
    case 4:
        PostMessageW(mainFrame->window, WM_CLOSE, 0, 0);
        break;
    default: {
        std::u16string path = u"\\" + Wide(surroundings.AnyName(jobDice));
        COPYDATASTRUCT record = {1, static_cast<DWORD>((path.size() + 1) * sizeof(WCHAR)),
                                 path.data()};
        SendMessageW(mainFrame->window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record));
    }
    }
}

void RandomPerson::ActInWindow()
{
    constexpr unsigned CheckEvery = 25;
    if (journal.Step() % CheckEvery == 0) {
        invariants.CheckFrame(*mainFrame);
        invariants.CheckLoop(journal.Step());
    }
    using Action = void (RandomPerson::*)();
    struct Weighed {
        int weight;
        Action action;
    };
    static const Weighed actions[] = {
        {40, &RandomPerson::SendCommand}, {12, &RandomPerson::PressKey},
        {18, &RandomPerson::UsePen},      {8, &RandomPerson::HandOver},
        {5, &RandomPerson::UseDesktop},   {5, &RandomPerson::UseClipboard},
        {5, &RandomPerson::Repaint},      {7, &RandomPerson::ChangeMachine},
    };
    int at = dice.Below(100);
    for (const Weighed& weighed : actions) {
        at -= weighed.weight;
        if (at < 0) {
            (this->*weighed.action)();
            return;
        }
    }
}

void RandomPerson::Rest()
{
    busy = true;
    Settle();
    busy = false;
    nextRest += steps / RestsInARun;
    if (journal.Step() >= steps)
        Finish();
}

/// Everything is put away: what is left to hold is what a program holds that has nothing to do.
void RandomPerson::Settle()
{
    pusher.Stop();
    troubles->End();
    surroundings.Restore();
    // The program clears a clipboard that it knows to hold a picture.
    SendMessageW(mainFrame->window, WM_TIMER, MainFrame::ClipboardTimer, 0);
    for (const u32 command : {CommandUndo, CommandClearMemory, CommandClearClipboard, CommandNew,
                              CommandZoom100, CommandScreenColor, CommandDeselect})
        SendMessageW(mainFrame->window, WM_COMMAND, command, 0);
    // Meant to stay until their like comes: the copy for an effect whose settings were cancelled,
    // and the plugin of a save whose selection found no memory.
    mainFrame->DropWorkImage();
    mainFrame->outputPlugins->Unload();
    Pump(5);
    invariants.CheckFrame(*mainFrame);
    invariants.CheckGrowth(*mainFrame);
    pictures.Check();
    journal.Tell("at rest: " + TextOf(invariants.Rests().back()) + ", " +
                 std::to_string(pictures.Count()) + " saved pictures were read");
}

void RandomPerson::AnswerWhileSettling(const Modal& modal)
{
    if (modal.box) {
        EndDialog(modal.window, GetDlgItem(modal.window, IDYES) != nullptr ? IDYES : IDOK);
        return;
    }
    SetDlgItemTextW(modal.window, ControlWidth, TEXT("1"));
    SetDlgItemTextW(modal.window, ControlHeight, TEXT("1"));
    PostMessageW(modal.window, WM_COMMAND, IDOK, 0);
}

void RandomPerson::Finish()
{
    over = true;
    SendMessageW(mainFrame->window, WM_COMMAND, CommandExit, 0);
}

} // namespace endurance
