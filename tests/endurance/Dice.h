// Choices that a seed tells: the same ones on every machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace endurance
{

class Dice
{
public:
    explicit Dice(uint64_t seed) : state(seed) {}

    uint64_t Next();
    /// From 0 to `count` - 1; 0 for a count below 1.
    int Below(int count);
    /// From `least` to `most`.
    int Between(int least, int most) { return least + Below(most - least + 1); }
    bool Chance(int percent) { return Below(100) < percent; }
    /// Others, that go on by themselves: what they are asked changes nothing here.
    Dice Fork() { return Dice(Next()); }

    template <class T>
    const T& AnyOf(const std::vector<T>& of)
    {
        return of[static_cast<size_t>(Below(static_cast<int>(of.size())))];
    }
    template <class T, int Count>
    T Pick(const T (&of)[Count])
    {
        return of[Below(Count)];
    }

private:
    uint64_t state;
};

} // namespace endurance
