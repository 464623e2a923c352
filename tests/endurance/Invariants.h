// What holds at any time of a run, and between two moments at which the person has put everything
// away.
#pragma once

#include "platform/core/TestHooks.h"
#include "shell/MainFrame.h"

#include <string>
#include <vector>

namespace endurance
{

/// What the program holds.
struct Figures {
    tavrix::platform::Holdings device;
    size_t hostBytes = 0; // of the host's heap; 0 where no sanitizer counts them
    long descriptors = 0;
    long threads = 0;
    size_t pagingFiles = 0;
};
Figures TakeFigures();
std::string TextOf(const Figures& figures);

class Invariants
{
public:
    /// With no dialog open and no job running.
    void CheckFrame(MainFrame& frame);
    /// The message loop has done a round. `step` is the person's.
    void CheckLoop(unsigned step);
    /// All pictures were put away. Growth against the first such moment fails the test.
    void CheckGrowth(MainFrame& frame);
    const std::vector<Figures>& Rests() const { return rests; }
    /// The program has ended: what is left behind fails the test. `before` is from before its
    /// start.
    void CheckEnd(const Figures& before) const;

private:
    static void CALLBACK Heard(HWND, UINT, UINT_PTR timer, DWORD);

    std::vector<Figures> rests;
};

} // namespace endurance
