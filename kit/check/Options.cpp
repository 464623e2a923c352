#include "kit/check/Options.h"

#include <cstdlib>

namespace plugincheck
{

namespace
{

constexpr double ShortestLimit = 0.1;
constexpr double LongestLimit = 3600;

bool ParseSeconds(const std::string& text, double* seconds)
{
    char* end = nullptr;
    *seconds = std::strtod(text.c_str(), &end);
    return !text.empty() && *end == 0 && *seconds >= ShortestLimit && *seconds <= LongestLimit;
}

} // namespace

bool ParseOptions(const std::vector<std::string>& words, Options* options, std::string* error)
{
    bool named = true; // options may still come
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        const auto value = [&](std::string* out) {
            if (i + 1 >= words.size()) {
                *error = word + " needs a value";
                return false;
            }
            *out = words[++i];
            return true;
        };
        std::string text;
        if (!named || word.empty() || word[0] != '-' || word == "-") {
            options->files.push_back(word);
        } else if (word == "--") {
            named = false;
        } else if (word == "--help" || word == "-h") {
            options->what = Options::ShowHelp;
            return true;
        } else if (word == "--version") {
            options->what = Options::ShowVersion;
            return true;
        } else if (word == "--list") {
            options->what = Options::ShowList;
        } else if (word == "--kind") {
            if (!value(&text))
                return false;
            if (!KindOfWord(text, &options->kind)) {
                *error = "no such kind: " + text;
                return false;
            }
        } else if (word == "--sample") {
            if (!value(&text))
                return false;
            options->samples.push_back(text);
        } else if (word == "--time-limit") {
            if (!value(&text))
                return false;
            if (!ParseSeconds(text, &options->seconds)) {
                *error = "no number of seconds: " + text;
                return false;
            }
        } else if (word == "--row" && i + 3 < words.size()) {
            options->what = Options::RunRow;
            options->row = static_cast<u32>(std::strtoul(words[i + 1].c_str(), nullptr, 10));
            options->descriptor = std::atoi(words[i + 2].c_str());
            options->pluginName = words[i + 3];
            i += 3;
            named = false;
        } else {
            *error = "no such option: " + word;
            return false;
        }
    }
    if (options->files.empty() && options->what == Options::CheckFiles) {
        *error = "no file was named";
        return false;
    }
    return true;
}

std::string HelpText()
{
    return "Usage: tavrix-plugin-check [OPTION]... FILE...\n"
           "Checks plugins of Tavrix against the contract that they have with it.\n\n"
           "  --sample FILE         a sound picture in an INPUT plugin's own format; may be\n"
           "                        repeated. Without one its reading is hardly checked.\n"
           "  --kind KIND           what a plugin is whose identification does not say so:\n"
           "                        INPUT, OUTPUT, PRINT, EFFECT, ADJUST, SCALE or SUBTRACT\n"
           "  --time-limit SECONDS  what a single check may take (20)\n"
           "  --list                list the checks\n"
           "  --help                show this text\n"
           "  --version             show the version\n"
           "  --                    what follows is a file name\n\n"
           "Each violation is one line, \"FILE: [check] What is wrong.\"; a line with \"(note)\"\n"
           "is worth knowing and no violation. Plugins are loaded and run, each check in a\n"
           "process of its own; no display is needed and the user's settings are not touched.\n\n"
           "The exit status is 0 when all plugins passed, 1 when one violates the contract,\n"
           "2 for a wrong command line or a file that cannot be read.\n";
}

} // namespace plugincheck
