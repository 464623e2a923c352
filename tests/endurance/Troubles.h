// What goes wrong around the program for a while: memory, disks, files, threads and sockets that
// fail by chance, and always a fence that keeps its writing inside the test's own folders.
#pragma once

#include "tests/endurance/Dice.h"

#include <string>

namespace endurance
{

class Troubles
{
public:
    Troubles();
    ~Troubles();
    Troubles(const Troubles&) = delete;
    Troubles& operator=(const Troubles&) = delete;

    /// Begins one that lasts some steps; answers what it is. It takes the place of the last one.
    std::string Begin(Dice& dice);
    /// One step of the person is over.
    void Step();
    /// Nothing fails any more, and there is memory and room on the disk.
    void End();
    /// The message loop has come round: what the program holds now is no more there to take.
    void Round();
    bool UnderWay() const { return steps > 0; }

private:
    int steps = 0;
    bool memoryShort = false; // by a figure that stays
};

} // namespace endurance
