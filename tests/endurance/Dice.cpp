#include "tests/endurance/Dice.h"

namespace endurance
{

uint64_t Dice::Next()
{
    // An odd step through all numbers, each then mixed.
    state += 0x9E3779B97F4A7C15u;
    uint64_t mixed = state;
    mixed = (mixed ^ mixed >> 30) * 0xBF58476D1CE4E5B9u;
    mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EBu;
    return mixed ^ mixed >> 31;
}

int Dice::Below(int count)
{
    return count < 1 ? 0 : static_cast<int>(Next() % static_cast<unsigned>(count));
}

} // namespace endurance
