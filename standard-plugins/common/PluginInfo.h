// What a plugin says about itself. Each plugin keeps one constant PluginTexts and hands its
// GetPluginInfo and SetLanguage on to the two functions here. The language is the one thing that is
// remembered between two calls; it is forgotten when the library is unloaded. User-interface thread
// only, as the two exports are.
#pragma once

#include <tavrix/plugin.h>

// Text literals in the contract's character type, which is another one on the device itself.
#ifdef _WIN32
#define PLUGIN_TEXT(literal) L##literal
#else
#define PLUGIN_TEXT(literal) u##literal
#endif

/// A text in each language of the program.
struct BilingualText {
    const TavrixChar* english;
    const TavrixChar* japanese;
};

/// One entry of the file dialog.
struct PluginFormatText {
    BilingualText description;
    /// "*.ext" items joined with ";".
    const TavrixChar* patterns;
};

struct PluginTexts {
    /// "TX_" and the kind, exactly.
    const TavrixChar* identity;
    BilingualText name;
    const TavrixChar* version;
    const TavrixChar* date;
    BilingualText description;
    const PluginFormatText* formats;
    uint32_t formatCount;
};

/// Whether the language that was set last is Japanese.
bool SpeaksJapanese();
/// The text in the language that was set last, English at first.
const TavrixChar* InLanguage(const BilingualText& text);
/// Carries out SetLanguage. Any language but Japanese is English. PluginDone.
int32_t SetPluginLanguage(uint32_t language);
/// Carries out GetPluginInfo: the text is cut to capacity - 1 characters and always ended.
/// PluginDone; PluginBadArgument for a null buffer or no capacity; PluginFailed for an unknown
/// index, and then the buffer is not touched.
int32_t AnswerPluginInfo(const PluginTexts& texts, uint32_t index, TavrixChar* buffer,
                         uint32_t capacity);
