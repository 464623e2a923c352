// What the program has saved, read by programs that have nothing to do with it.
#pragma once

#include <map>
#include <string>
#include <utility>

namespace endurance
{

class SavedPictures
{
public:
    /// Each saved picture that was written since the last look is a whole one, whatever went wrong
    /// meanwhile: a save that fails leaves what was there.
    void Check();
    /// How many were looked at.
    unsigned Count() const { return count; }

private:
    using Stamp = std::pair<long long, unsigned long long>; // when it was written, and its length

    std::map<std::string, Stamp> seen;
    unsigned count = 0;
};

} // namespace endurance
