// What a plugin says about itself: its seven texts and its languages.

#include "kit/check/Answers.h"
#include "kit/check/Check.h"
#include "kit/check/Text.h"
#include "kit/check/Workbench.h"

namespace plugincheck
{

namespace
{

constexpr u32 Japanese = 17;
constexpr u32 English = 9;

} // namespace

void CheckIdentity(CheckContext& context)
{
    WatchFor(&context, {});
    PluginUnderCheck plugin(KindCount);
    if (!plugin.Load(DevicePath(context.plugin.path)))
        return;
    context.Doing("GetPluginInfo", "when it was asked for its identification");
    const Answer identity = Ask(&plugin, PluginInfoIdentity, HostRoom);
    // Told before the name is asked for: that may be the end of the process.
    Facts facts = {identity.Utf8Text(), identity.result, {}};
    context.TellFacts(facts);
    const std::string text = identity.Utf8Text();
    Kind kind = KindCount;
    const bool known = text.compare(0, 3, "TX_") == 0 && KindOfWord(text.substr(3), &kind);
    if (identity.result < 0)
        context.Violation("It refuses to tell its identification (result " +
                          std::to_string(identity.result) + ").");
    else if (!known)
        context.Violation("Its identification is " + Quoted(text) +
                          " and none of TX_INPUT, TX_OUTPUT, TX_PRINT, TX_EFFECT, TX_ADJUST, "
                          "TX_SCALE, TX_SUBTRACT, letter for letter.");
    else if (identity.result == 0)
        context.Violation("It answers 0 with its identification; the host needs a result above 0.");
    context.Doing("GetPluginInfo", "when it was asked for its name");
    facts.name = Ask(&plugin, PluginInfoName, HostRoom).Utf8Text();
    context.TellFacts(facts);
}

void CheckName(CheckContext& context)
{
    Workbench bench(context);
    context.Doing("GetPluginInfo", "when it was asked for its name");
    const Answer name = Ask(&bench.Plugin(), PluginInfoName, HostRoom);
    if (name.result <= 0)
        context.Violation("It has no name (result " + std::to_string(name.result) +
                          " for text 1); without one it has no entry in the menus.");
    else if (name.Text().empty())
        context.Violation("Its name is an empty text.");
}

void CheckTerminated(CheckContext& context)
{
    Workbench bench(context);
    for (const u32 capacity : {1U, 2U, 5U, HostRoom}) {
        for (u32 index = PluginInfoIdentity; index <= PluginInfoDescription; ++index) {
            context.Doing("GetPluginInfo", "when it was asked for text " + std::to_string(index) +
                                               " in " + Counted(capacity, "character"));
            const Answer answer = Ask(&bench.Plugin(), index, capacity);
            if (answer.result > 0 && !answer.isTerminated) {
                context.Violation("GetPluginInfo answers " + std::to_string(answer.result) +
                                  " for text " + std::to_string(index) + " and leaves no zero in " +
                                  "the " + Counted(capacity, "character") + " of the buffer.");
                return;
            }
        }
    }
}

void CheckOverrun(CheckContext& context)
{
    Workbench bench(context);
    for (const u32 capacity : {1U, 2U, 5U, 64U, HostRoom}) {
        for (const u32 index : {0U, 1U, 2U, 3U, 4U, 5U, 0x10000U, 0x10001U}) {
            context.Doing("GetPluginInfo", "when it was asked for text " + Hex(index) + " in " +
                                               Counted(capacity, "character"));
            if (Ask(&bench.Plugin(), index, capacity).isOverrun) {
                context.Violation(
                    "GetPluginInfo writes past the buffer when it is asked for text " + Hex(index) +
                    " in " + Counted(capacity, "character") + ".");
                return;
            }
        }
    }
}

void CheckRepeated(CheckContext& context)
{
    Workbench bench(context);
    for (const u32 index : {0U, 1U, 2U, 3U, 4U, 5U, 0x10000U, 0x10001U}) {
        context.Doing("GetPluginInfo", "when it was asked for text " + Hex(index) + " twice");
        const Answer first = Ask(&bench.Plugin(), index, HostRoom);
        const Answer second = Ask(&bench.Plugin(), index, HostRoom);
        if (first.result != second.result || first.Text() != second.Text()) {
            context.Violation("GetPluginInfo gives two answers to the same question (text " +
                              Hex(index) + ": " + Quoted(first.Utf8Text()) + ", then " +
                              Quoted(second.Utf8Text()) + ").");
            return;
        }
    }
}

void CheckUnknown(CheckContext& context)
{
    Workbench bench(context);
    for (const u32 index : {6U, 0xFFFFU, 0x20000U, 0xFFFFFFFFU}) {
        context.Doing("GetPluginInfo", "when it was asked for the unknown text " + Hex(index));
        const Answer answer = Ask(&bench.Plugin(), index, HostRoom);
        if (answer.result >= 0) {
            context.Violation("GetPluginInfo answers " + std::to_string(answer.result) +
                              " for the unknown text " + Hex(index) +
                              "; an index that it does not know is answered with a negative "
                              "result.");
            return;
        }
    }
}

void CheckLanguage(CheckContext& context)
{
    Workbench bench(context);
    if (!bench.Plugin().Has("SetLanguage"))
        return;
    for (const u32 language : {Japanese, English, 0U, 0xFFFFFFFFU, 0x411U, 255U, Japanese}) {
        context.Doing("SetLanguage", "when it was told language " + Hex(language));
        (void)bench.Plugin().Language(language);
        context.Doing("GetPluginInfo", "when it had been told language " + Hex(language));
        const Answer identity = Ask(&bench.Plugin(), PluginInfoIdentity, HostRoom);
        const Answer name = Ask(&bench.Plugin(), PluginInfoName, HostRoom);
        const std::string expected = std::string("TX_") + KindWord(context.plugin.kind);
        if (identity.Utf8Text() != expected || name.result <= 0 || name.Text().empty()) {
            context.Violation("Behind SetLanguage(" + std::to_string(language) +
                              ") it has lost its identification or its name.");
            return;
        }
    }
}

} // namespace plugincheck
