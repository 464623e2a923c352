// The callbacks that a plugin gets from the checker: they answer as the host's do, and look at what
// they are given.

#include "foundation/Result.h"
#include "kit/check/Check.h"
#include "kit/check/Text.h"
#include "kit/check/Watch.h"
#include "settings/PropertyList.h"

#include <cctype>
#include <memory>

namespace plugincheck
{

namespace
{

std::unique_ptr<PropertyList>& Store()
{
    static auto& store = *new std::unique_ptr<PropertyList>(new PropertyList);
    return store;
}

CheckContext*& Listener()
{
    static CheckContext* listener = nullptr;
    return listener;
}

/// Letters and digits only, small: "PNG reader" and "PngReaderDepth" are to be told akin.
std::string Bare(const std::string& text)
{
    std::string bare;
    for (const char character : text)
        if ((character & 0x80) != 0 || std::isalnum(static_cast<unsigned char>(character)) != 0)
            bare.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(character))));
    return bare;
}

bool BeginsWith(const std::string& text, const std::string& start)
{
    return !start.empty() && text.compare(0, start.size(), start) == 0;
}

/// Whether a key begins with the plugin's name, the name's first word or the library's file name.
bool CarriesName(const std::string& key, const PluginFile& plugin)
{
    const std::string bare = Bare(key);
    return BeginsWith(bare, Bare(plugin.pluginName)) ||
           BeginsWith(bare, Bare(plugin.pluginName.substr(0, plugin.pluginName.find(' ')))) ||
           BeginsWith(bare, Bare(plugin.name.substr(0, plugin.name.rfind('.'))));
}

bool IsEmptyText(const Variant& item)
{
    if (item.type == VariantWide)
        return item.value == 0 || *reinterpret_cast<const TavrixChar*>(item.value) == 0;
    if (item.type == VariantNarrow)
        return item.value == 0 || *reinterpret_cast<const char*>(item.value) == 0;
    return false;
}

void LookAtStored(const Variant& item)
{
    CheckContext* listener = Listener();
    if (listener == nullptr)
        return;
    const std::string key = Utf8(item.name);
    if (!CarriesName(key, listener->plugin))
        listener->ViolationOf("keys", key,
                              "It stores a setting under the key " + Quoted(key) +
                                  "; all plugins share one section, so a key begins with the "
                                  "plugin's own name.");
    if (IsEmptyText(item))
        listener->ViolationOf("texts", key,
                              "It stores an empty text under the key " + Quoted(key) +
                                  ", which the settings file cannot give back.");
}

template <HandSet Set>
i32 TAVRIX_CALL Progress(u32, u32 total)
{
    if (!IsAllowedHere("the progress callback", Set))
        return Failed;
    Seen& seen = SeenNow();
    ++seen.progress;
    if (total == 0)
        return NothingDone;
    const u32 from = CurrentConditions().refuseProgressFrom;
    if (from == 0 || seen.progress < from)
        return Done;
    if (seen.progress > from)
        ++seen.progressBehindRefusal;
    return Failed;
}

template <HandSet Set>
i32 TAVRIX_CALL Message(const TavrixChar* text, const TavrixChar*, u32)
{
    if (!IsAllowedHere("the message callback", Set))
        return Failed;
    ++SeenNow().messages;
    // Read to its end, as the host does.
    volatile size_t length = 0;
    while (text != nullptr && text[length] != 0)
        length = length + 1;
    return NothingDone;
}

template <HandSet Set>
i32 TAVRIX_CALL Put(Variant* item)
{
    if (!IsAllowedHere("the put callback", Set))
        return Failed;
    if (item == nullptr || item->name == nullptr)
        return BadArgument;
    LookAtStored(*item);
    return CurrentConditions().refuseProperties ? Failed : Store()->Set(item);
}

template <HandSet Set>
i32 TAVRIX_CALL Get(Variant* item)
{
    if (!IsAllowedHere("the get callback", Set))
        return Failed;
    if (item == nullptr || item->name == nullptr)
        return BadArgument;
    if (CurrentConditions().refuseProperties || Store()->Count() <= 0)
        return Failed; // the section is not there
    return Store()->Get(item);
}

} // namespace

PluginCallbacks WatchedCallbacks()
{
    if (NextSet() == HandSet::First)
        return {Progress<HandSet::First>, Message<HandSet::First>, Put<HandSet::First>,
                Get<HandSet::First>};
    return {Progress<HandSet::Second>, Message<HandSet::Second>, Put<HandSet::Second>,
            Get<HandSet::Second>};
}

void ListenToSettings(CheckContext* context)
{
    Listener() = context;
}

void ForgetSettings()
{
    Store().reset(new PropertyList);
}

} // namespace plugincheck
