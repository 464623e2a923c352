// What is printed: one line a violation or note, "FILE: [key] Sentence.", and one line for a file
// that passed. Keeps back what was said already: a plugin that crashes in one export is told so
// once, not once a check.
#pragma once

#include "kit/check/Mailbox.h"

#include <ostream>
#include <set>
#include <string>
#include <utility>

namespace plugincheck
{

class Report
{
public:
    /// `file` as the user gave it, without its folders.
    Report(std::ostream& stream, std::string file);

    /// Prints, unless something of the same key and subject was printed.
    void Add(const Finding& finding);
    /// Whether a violation of this key was found.
    bool Violates(const std::string& key) const { return violated.count(key) != 0; }
    u32 Violations() const { return violations; }
    /// Checks that ended at their time limit, told or not.
    u32 Hangs() const { return hangs; }
    /// The last line of a file without violations.
    void Passed(const std::string& kind);

private:
    std::ostream& out;
    std::string name;
    u32 violations;
    u32 hangs;
    std::set<std::pair<std::string, std::string>> said;
    std::set<std::string> violated;
};

} // namespace plugincheck
