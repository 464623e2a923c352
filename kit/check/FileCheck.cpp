#include "kit/check/FileCheck.h"

#include "kit/check/ChildProcess.h"
#include "kit/check/Text.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace plugincheck
{

namespace
{

constexpr u32 MostHangs = 2; // so many time limits a user waits for

/// What is known after the checks so far.
struct Progressing {
    bool loads = false;
    bool answers = false;
    bool kindKnown = false;
    bool works = false;
};

std::string Subjective(const Mailbox& box)
{
    const std::string subject = box.Subject();
    return subject.empty() ? "It" : subject;
}

std::string Ending(const Mailbox& box)
{
    const std::string circumstances = box.Circumstances();
    return circumstances.empty() ? "." : " " + circumstances + ".";
}

/// The sentence for a check whose process ended before its end.
void TellSuddenEnd(const ChildOutcome& outcome, const Mailbox& box, double seconds,
                   const Check& check, Report* report)
{
    const std::string who = Subjective(box);
    const std::string how = Ending(box);
    const std::string tool = SanitizerText(outcome.errors);
    switch (outcome.how) {
    case ChildOutcome::Killed:
        report->Add({"crash", box.Subject(),
                     who + " crashed (" + SignalText(outcome.number) + ")" + how, false});
        break;
    case ChildOutcome::TimedOut:
        report->Add({"hang", box.Subject(),
                     who + " did not return within " +
                         Counted(static_cast<size_t>(seconds), "second") + how,
                     false});
        break;
    case ChildOutcome::Exited:
    case ChildOutcome::Returned:
        if (tool == "SEGV")
            report->Add({"crash", box.Subject(),
                         who + " crashed (" + SignalText(SIGSEGV) + ")" + how, false});
        else if (!tool.empty())
            report->Add({"crash", box.Subject(),
                         who + " was stopped by a sanitizer (" + tool + ")" + how, false});
        else
            report->Add({"exit", box.Subject(),
                         who + " ended the process of its host (exit status " +
                             std::to_string(outcome.number) + ")" + how,
                         false});
        break;
    case ChildOutcome::NotStarted:
        report->Add({check.key, "", "The check could not be started on this machine.", false});
        break;
    }
}

void RunHere(const PluginFile& plugin, const Check& check, Mailbox* box)
{
    CheckContext context(plugin, check.key, *box);
    check.run(context);
    box->Finish();
}

/// In a child: starts this program anew with little memory, which it takes in before it runs.
[[noreturn]] void Restart(const RunSettings& settings, const PluginFile& plugin, u32 row,
                          const Mailbox& box)
{
    setenv("TAVRIX_MEMORY", ShortMemory, 1);
    fcntl(box.Descriptor(), F_SETFD, 0);
    std::vector<std::string> words = settings.restart;
    for (const std::string& word :
         {std::string("--kind"), std::string(KindWord(plugin.kind)), std::string("--row"),
          std::to_string(row), std::to_string(box.Descriptor()), plugin.pluginName, plugin.path})
        words.push_back(word);
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    execv("/proc/self/exe", arguments.data());
    _exit(127);
}

/// Runs a row once and tells the report. What came out of it, if it told.
std::string RunRow(const PluginFile& plugin, u32 row, const RunSettings& settings, bool shortMemory,
                   Report* report, Facts* facts)
{
    const Check& check = Checks[row];
    Mailbox box;
    if (!box.IsReady()) {
        report->Add({check.key, "", "The check could not be started on this machine.", false});
        return {};
    }
    ChildPlan plan;
    plan.seconds = settings.secondsAtMost;
    plan.folder = settings.folder;
    plan.work = [&] {
        if (shortMemory)
            Restart(settings, plugin, row, box);
        RunHere(plugin, check, &box);
    };
    const ChildOutcome outcome = RunChild(plan);
    if (outcome.how != ChildOutcome::Returned || !box.IsFinished())
        TellSuddenEnd(outcome, box, settings.secondsAtMost, check, report);
    for (const Finding& finding : box.Findings())
        report->Add(finding);
    if (facts != nullptr)
        *facts = box.ReadFacts();
    return box.IsFinished() ? box.Outcome() : std::string();
}

void RunBoth(const PluginFile& plugin, u32 row, const RunSettings& settings, Report* report)
{
    const std::string plenty = RunRow(plugin, row, settings, false, report, nullptr);
    const std::string scarce = RunRow(plugin, row, settings, true, report, nullptr);
    size_t a = 0;
    size_t b = 0;
    while (a < plenty.size() && b < scarce.size()) {
        const size_t endA = plenty.find(' ', a);
        const size_t endB = scarce.find(' ', b);
        const std::string wordA = plenty.substr(a, endA - a);
        const std::string wordB = scarce.substr(b, endB - b);
        if (wordA != wordB && wordA != "refused" && wordB != "refused")
            report->Add({Checks[row].key, "",
                         std::string(WorkExport(plugin.kind)) +
                             " makes another picture where memory is short; the address of a line "
                             "is good only until the line is unlocked.",
                         false});
        a = endA + 1;
        b = endB + 1;
    }
}

bool IsReady(const Check& check, const Progressing& known, const Report& report, Kind kind)
{
    if (check.run == nullptr || (check.after != nullptr && report.Violates(check.after)))
        return false;
    if (check.needs >= Needs::Kind && (check.kinds & Bit(kind)) == 0)
        return false;
    switch (check.needs) {
    case Needs::Nothing:
        return true;
    case Needs::Library:
        return known.loads;
    case Needs::Answers:
        return known.answers;
    case Needs::Kind:
        return known.kindKnown;
    default:
        return known.works;
    }
}

/// Takes over what the check of the identification found out.
void TakeFacts(const Facts& facts, PluginFile* plugin, Progressing* known)
{
    plugin->pluginName = facts.name;
    Kind told = KindCount;
    if (facts.identity.compare(0, 3, "TX_") == 0 && KindOfWord(facts.identity.substr(3), &told))
        plugin->kind = told;
    known->kindKnown = plugin->kind != KindCount;
}

} // namespace

void CheckFile(PluginFile* plugin, const RunSettings& settings, Report* report)
{
    Progressing known;
    known.kindKnown = plugin->kind != KindCount;
    bool loaded = true;
    for (u32 row = 0; Checks[row].key != nullptr; ++row) {
        const Check& check = Checks[row];
        if (report->Hangs() >= MostHangs) {
            report->Add({"hang", "rest", "The remaining checks were left out.", true});
            return;
        }
        if (!loaded || !IsReady(check, known, *report, plugin->kind))
            continue;
        const std::string key = check.key;
        const u32 before = report->Violations();
        Facts facts;
        if (check.shortMemory)
            RunBoth(*plugin, row, settings, report);
        else
            (void)RunRow(*plugin, row, settings, false, report, &facts);
        const bool passed = report->Violations() == before;
        if (key == "loads")
            loaded = known.loads = passed;
        else if (key == "questions")
            loaded = known.answers = passed;
        else if (key == "identity")
            TakeFacts(facts, plugin, &known);
        else if (key == "processing")
            known.works = passed;
    }
}

void RunRestarted(const PluginFile& plugin, u32 row, int descriptor)
{
    Mailbox box(descriptor);
    if (box.IsReady())
        RunHere(plugin, Checks[row], &box);
    EndChild();
}

} // namespace plugincheck
