// The formats that INPUT and OUTPUT plugins name, and that no other kind has.

#include "kit/check/Answers.h"
#include "kit/check/Check.h"
#include "kit/check/Text.h"
#include "kit/check/Workbench.h"

namespace plugincheck
{

namespace
{

/// Whether an item is "*." and an extension without another sign of a pattern.
bool IsPattern(const std::string& item)
{
    return item.size() > 2 && item[0] == '*' && item[1] == '.' &&
           item.find_first_of("*?;/\\: \t\"<>|", 2) == std::string::npos;
}

/// The first item that is no pattern; empty when all are.
std::string FirstBadItem(const std::string& patterns)
{
    size_t start = 0;
    for (;;) {
        const size_t end = patterns.find(';', start);
        const std::string item = patterns.substr(start, end - start);
        if (!IsPattern(item))
            return item.empty() ? "an empty one" : Quoted(item);
        if (end == std::string::npos)
            return {};
        start = end + 1;
    }
}

Answer AskFormat(CheckContext& context, Workbench* bench, u32 format, u32 first)
{
    context.Doing("GetPluginInfo", "when it was asked for format " + std::to_string(format));
    return Ask(&bench->Plugin(), first + 2 * format, HostRoom);
}

} // namespace

void CheckFormats(CheckContext& context)
{
    Workbench bench(context);
    const bool has = context.plugin.kind == Input || context.plugin.kind == Output;
    u32 count = 0;
    for (; count <= PluginFormatLimit; ++count) {
        const Answer description = AskFormat(context, &bench, count, PluginInfoFormat);
        if (description.result < 0 || description.Text().empty())
            break;
    }
    if (!has && count != 0)
        context.Violation(std::string("It names file formats, which ") +
                          KindWord(context.plugin.kind) + " plugins have none of.");
    else if (count > PluginFormatLimit)
        context.Violation("Its formats do not end behind the 50th; the host asks for 50 and the "
                          "others are lost.");
    else if (has && count == 0)
        context.Note("It names no file format, so it is never chosen for a file by itself.");
}

void CheckPatterns(CheckContext& context)
{
    Workbench bench(context);
    for (u32 format = 0; format < PluginFormatLimit; ++format) {
        const Answer description = AskFormat(context, &bench, format, PluginInfoFormat);
        if (description.result < 0 || description.Text().empty())
            return;
        const Answer patterns = AskFormat(context, &bench, format, PluginInfoPattern);
        const std::string text = patterns.Utf8Text();
        const std::string of =
            "Format " + std::to_string(format) + ", " + Quoted(description.Utf8Text()) + ", ";
        if (patterns.result < 0 || text.empty())
            context.Violation(of + "has no pattern of file names.", std::to_string(format));
        else if (const std::string bad = FirstBadItem(text); !bad.empty())
            context.Violation(of + "has the patterns " + Quoted(text) + ", of which " + bad +
                                  " is not of the form *.ext; items are joined with \";\".",
                              std::to_string(format));
    }
}

} // namespace plugincheck
