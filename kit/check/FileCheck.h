// All checks of one file, one after the other, each in a process of its own; and what the sudden
// end of such a process says about the plugin.
#pragma once

#include "kit/check/Check.h"
#include "kit/check/Report.h"

#include <string>

namespace plugincheck
{

struct RunSettings {
    double secondsAtMost = 20;        // a check
    std::string folder;               // for what the checks write
    std::vector<std::string> restart; // the command line of this program, to start it anew
};

/// The memory of the device in the checks of short memory: less than the host's own reserve, so
/// that every line lies in a file.
inline constexpr const char* ShortMemory = "600K";

/// Runs all checks on a file; `plugin` holds path, name, samples and the kind that was given, and
/// then also what was found out. Tells the report.
void CheckFile(PluginFile* plugin, const RunSettings& settings, Report* report);

/// One check of a process that was started anew for it: runs row `row` and tells the mailbox behind
/// `descriptor`. Does not return.
[[noreturn]] void RunRestarted(const PluginFile& plugin, u32 row, int descriptor);

} // namespace plugincheck
