// A check: a row of the table in CheckTable.cpp, and what its operation gets. An operation runs in
// a process of its own, tells what it finds through the context and simply returns when the plugin
// is in order. What the plugin breaks in passing (a line left locked, an exception) is told by the
// watch (Watch.h) under the keys of the rows without an operation.
#pragma once

#include "kit/check/Kinds.h"
#include "kit/check/Mailbox.h"

#include <string>
#include <vector>

namespace plugincheck
{

/// A picture in the plugin's own format.
struct Sample {
    std::string name; // for sentences: "SAMPLE.EXT"
    std::vector<u8> bytes;
};

/// What all checks of one file share.
struct PluginFile {
    std::string path; // of the host, absolute
    std::string name; // without folders
    Kind kind = KindCount;
    std::string pluginName; // text 1 in English; empty until it is known
    std::vector<Sample> samples;
};

class CheckContext
{
public:
    CheckContext(const PluginFile& file, const char* ownKey, Mailbox& mailbox)
        : plugin(file), key(ownKey), box(mailbox)
    {
    }

    /// A violation of the running check. `subject` tells several sentences of one check apart.
    void Violation(const std::string& text, const std::string& subject = {});
    void Note(const std::string& text, const std::string& subject = {});
    /// The same for another check than the running one.
    void ViolationOf(const char* otherKey, const std::string& subject, const std::string& text);
    /// From here on the plugin's export runs under these circumstances ("while it ...").
    void Doing(const std::string& subject, const std::string& circumstances);
    /// Nothing of the plugin runs any more.
    void DoingNothing() { Doing({}, {}); }
    /// What came out, to be compared with the same check under short memory.
    void Outcome(const std::string& text) { box.TellOutcome(text); }
    void TellFacts(const Facts& facts) { box.TellFacts(facts); }
    /// Ends the process of the check: nothing that follows would make sense.
    [[noreturn]] void End();

    const PluginFile& plugin;

private:
    const char* key;
    Mailbox& box;
};

/// What must be known or in order before a check makes sense.
enum class Needs {
    Nothing,
    Library, // it loads
    Answers, // it answers GetPluginInfo
    Kind,    // its kind is known
    Work     // it has the export that does the work
};

struct Check {
    const char* key;
    const char* rule; // the sentence of --list: what is demanded
    u32 kinds;
    Needs needs;
    const char* after;          // a check that must have been passed before; null: none
    void (*run)(CheckContext&); // null: watched in every call
    bool shortMemory;           // run a second time on a device with little memory
};

/// All checks in the order in which they run, ended by a row without a key.
extern const Check Checks[];

// The operations, by topic.
void CheckLoads(CheckContext& context);
void CheckToolkit(CheckContext& context);
void CheckSurplus(CheckContext& context);
void CheckQuestions(CheckContext& context);
void CheckIdentity(CheckContext& context);
void CheckProcessing(CheckContext& context);
void CheckListed(CheckContext& context);
void CheckQuick(CheckContext& context);
void CheckUnmapped(CheckContext& context);
void CheckGrowth(CheckContext& context);

void CheckName(CheckContext& context);
void CheckTerminated(CheckContext& context);
void CheckOverrun(CheckContext& context);
void CheckRepeated(CheckContext& context);
void CheckUnknown(CheckContext& context);
void CheckLanguage(CheckContext& context);
void CheckFormats(CheckContext& context);
void CheckPatterns(CheckContext& context);

void CheckConfigureThere(CheckContext& context);
void CheckConfirmed(CheckContext& context);
void CheckCancelled(CheckContext& context);
void CheckQuiet(CheckContext& context);
void CheckNoPicture(CheckContext& context);
void CheckConfigureRefused(CheckContext& context);

void CheckSamples(CheckContext& context);
void CheckEmptyStream(CheckContext& context);
void CheckGarbage(CheckContext& context);
void CheckShortReads(CheckContext& context);
void CheckFailingReads(CheckContext& context);
void CheckCutStreams(CheckContext& context);
void CheckHeaderRead(CheckContext& context);
void CheckQuickRead(CheckContext& context);

void CheckWorks(CheckContext& context);
void CheckPictures(CheckContext& context);
void CheckScaledSize(CheckContext& context);
void CheckArguments(CheckContext& context);

void CheckUnchanged(CheckContext& context);
void CheckStreamForm(CheckContext& context);
void CheckCountingStream(CheckContext& context);
void CheckFailingWrites(CheckContext& context);
void CheckFullStream(CheckContext& context);
void CheckBadPath(CheckContext& context);

void CheckPrints(CheckContext& context);

void CheckProgress(CheckContext& context);
void CheckRefusal(CheckContext& context);
void CheckLockRefusal(CheckContext& context);
void CheckAllocRefusal(CheckContext& context);
void CheckPropertyRefusal(CheckContext& context);
void CheckPaging(CheckContext& context);
void CheckTwice(CheckContext& context);

} // namespace plugincheck
