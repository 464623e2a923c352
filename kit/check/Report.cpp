#include "kit/check/Report.h"

namespace plugincheck
{

Report::Report(std::ostream& stream, std::string file)
    : out(stream), name(std::move(file)), violations(0), hangs(0)
{
}

void Report::Add(const Finding& finding)
{
    if (finding.key == "hang" && !finding.note)
        ++hangs;
    if (!said.emplace(finding.key, finding.subject).second)
        return;
    out << name << ": " << (finding.note ? "(note) " : "") << '[' << finding.key << "] "
        << finding.text << '\n';
    out.flush();
    if (finding.note)
        return;
    ++violations;
    violated.insert(finding.key);
}

void Report::Passed(const std::string& kind)
{
    out << name << ": TX_" << kind << ", all checks passed\n";
    out.flush();
}

} // namespace plugincheck
