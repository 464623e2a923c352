#include "standard-plugins/common/PluginInfo.h"

#include "standard-plugins/common/PluginResult.h"

namespace
{

constexpr uint32_t japaneseLanguage = 17;

bool speaksJapanese = false;

const TavrixChar* FindText(const PluginTexts& texts, uint32_t index)
{
    switch (index) {
    case PluginInfoIdentity:
        return texts.identity;
    case PluginInfoName:
        return InLanguage(texts.name);
    case PluginInfoVersion:
        return texts.version;
    case PluginInfoCopyright:
        return PLUGIN_TEXT("Copyright (c) 2026 The Tavrix authors");
    case PluginInfoDate:
        return texts.date;
    case PluginInfoDescription:
        return InLanguage(texts.description);
    default:
        break;
    }
    if (index < PluginInfoFormat)
        return nullptr;
    const uint32_t format = (index - PluginInfoFormat) / 2;
    if (format >= texts.formatCount)
        return nullptr;
    const bool wantsPatterns = (index - PluginInfoFormat) % 2 != 0;
    return wantsPatterns ? texts.formats[format].patterns
                         : InLanguage(texts.formats[format].description);
}

} // namespace

bool SpeaksJapanese()
{
    return speaksJapanese;
}

const TavrixChar* InLanguage(const BilingualText& text)
{
    return speaksJapanese ? text.japanese : text.english;
}

int32_t SetPluginLanguage(uint32_t language)
{
    speaksJapanese = language == japaneseLanguage;
    return PluginDone;
}

int32_t AnswerPluginInfo(const PluginTexts& texts, uint32_t index, TavrixChar* buffer,
                         uint32_t capacity)
{
    if (!buffer || capacity == 0)
        return PluginBadArgument;
    const TavrixChar* text = FindText(texts, index);
    if (!text)
        return PluginFailed;
    uint32_t length = 0;
    for (; length + 1 < capacity && text[length]; ++length)
        buffer[length] = text[length];
    buffer[length] = 0;
    return PluginDone;
}
