// What a check tells from its own process: findings, facts about the plugin, and what it is doing,
// in memory shared with the process that started it. The plugin under check runs beside the writer
// and may spoil all of this or end the process at any moment; so the reader takes nothing for
// granted, and what was told before a sudden end is kept.
//
// One writer at a time per record; findings may come from any thread of the check.
#pragma once

#include "foundation/Types.h"

#include <string>
#include <vector>

namespace plugincheck
{

/// One sentence about a plugin.
struct Finding {
    std::string key;     // the check that was not passed
    std::string subject; // the export concerned; one finding per key and subject is shown
    std::string text;    // a sentence
    bool note = false;   // worth knowing, but no violation
};

/// What a check found out for the following ones.
struct Facts {
    std::string identity;
    i32 identityResult = -1;
    std::string name;
};

struct SharedPage;

class Mailbox
{
public:
    /// Makes a new one, which children inherit.
    Mailbox();
    /// Takes over the one behind a file descriptor, in a child that started anew.
    explicit Mailbox(int descriptor);
    ~Mailbox();
    Mailbox(const Mailbox&) = delete;
    Mailbox& operator=(const Mailbox&) = delete;

    int Descriptor() const { return descriptor; }
    bool IsReady() const { return page != nullptr; }

    void Tell(const Finding& finding);
    void TellFacts(const Facts& facts);
    /// What came out of the work, to compare with the same check under other conditions.
    void TellOutcome(const std::string& outcome);
    /// What the plugin is made to do from now on: its export (empty: none of it runs) and the
    /// circumstances.
    void Doing(const std::string& subject, const std::string& circumstances);
    /// The check came to its end, whatever it found.
    void Finish();

    std::vector<Finding> Findings() const;
    Facts ReadFacts() const;
    std::string Outcome() const;
    std::string Subject() const;
    std::string Circumstances() const;
    bool IsFinished() const;

private:
    int descriptor;
    SharedPage* page;
};

} // namespace plugincheck
