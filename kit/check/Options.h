// The command line.
#pragma once

#include "kit/check/Kinds.h"

#include <string>
#include <vector>

namespace plugincheck
{

struct Options {
    enum What { CheckFiles, ShowHelp, ShowVersion, ShowList, RunRow };
    What what = CheckFiles;
    std::vector<std::string> files;
    std::vector<std::string> samples;
    Kind kind = KindCount;
    double seconds = 20;
    // A check that this program starts itself for, in a process of its own.
    u32 row = 0;
    int descriptor = -1;
    std::string pluginName;
};

/// False for a command line that cannot be meant; `error` then says why.
bool ParseOptions(const std::vector<std::string>& words, Options* options, std::string* error);
std::string HelpText();

} // namespace plugincheck
