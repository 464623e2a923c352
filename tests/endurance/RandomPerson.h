// The person: does one thing after the other whenever the program's message loop has nothing else
// to do, in the main window or in whatever is open over it.
#pragma once

#include "tests/endurance/Dice.h"
#include "tests/endurance/Invariants.h"
#include "tests/endurance/Journal.h"
#include "tests/endurance/Modals.h"
#include "tests/endurance/Pusher.h"
#include "tests/endurance/SavedPictures.h"
#include "tests/endurance/Surroundings.h"
#include "tests/endurance/Troubles.h"
#include "tests/endurance/WebServer.h"

#include "shell/MainFrame.h"

#include <memory>

namespace endurance
{

class RandomPerson
{
public:
    RandomPerson(uint64_t seed, unsigned steps);
    ~RandomPerson();
    RandomPerson(const RandomPerson&) = delete;
    RandomPerson& operator=(const RandomPerson&) = delete;

    /// Runs the program from its start to its own end; answers its exit code.
    int UseTheProgram();
    const Journal& Notes() const { return journal; }

private:
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD);
    static LRESULT CALLBACK Screen(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    void OnTick();
    void OnModal(HWND window, bool box);
    void TakeOver();
    void Act();
    void ActInWindow();
    void ActInModal(Modal& modal);
    void WatchJob(Modal& job);
    void Rest();
    void Settle();
    void AnswerWhileSettling(const Modal& modal);
    void Finish();

    // In the main window (WindowActions.cpp).
    void SendCommand();
    void PressKey();
    void UsePen();
    void OpenOverTheWire();
    void HandOver();
    void UseDesktop();
    void UseClipboard();
    void Repaint();
    void ChangeMachine();

    Dice dice;
    Dice jobDice; // what is done while a job runs must not hang on how long it runs
    unsigned steps;
    Journal journal;
    Surroundings surroundings;
    std::unique_ptr<Troubles> troubles;
    std::unique_ptr<WebServer> server;
    Pusher pusher;
    Modals modals;
    Invariants invariants;
    SavedPictures pictures;
    unsigned nextRest;
    uint64_t jobs = 0; // so far
    bool busy = false; // settling
    bool over = false;
};

} // namespace endurance
