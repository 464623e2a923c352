#include "platform/core/Language.h"

#include "platform/core/TestHooks.h"

#include <cstdlib>
#include <cstring>

namespace tavrix::platform
{

LANGID LanguageFor(const char* wanted, const char* allCategories, const char* messages,
                   const char* lang)
{
    if (wanted != nullptr && std::strcmp(wanted, "ja") == 0)
        return LanguageJapanese;
    if (wanted != nullptr && std::strcmp(wanted, "en") == 0)
        return LanguageEnglish;
    for (const char* locale : {allCategories, messages, lang})
        if (locale != nullptr && locale[0] != 0)
            return std::strncmp(locale, "ja", 2) == 0 ? LanguageJapanese : LanguageEnglish;
    return LanguageEnglish;
}

} // namespace tavrix::platform

using namespace tavrix::platform;

LANGID WINAPI GetSystemDefaultLangID(void)
{
    TestHooks& hooks = Hooks();
    if (hooks.active.load(std::memory_order_relaxed)) {
        const std::lock_guard<std::mutex> guard(hooks.lock);
        if (hooks.language)
            return *hooks.language;
    }
    // Asked once: a device does not change its language while a program runs, and the environment
    // may not be read while another thread writes it.
    static const LANGID language = LanguageFor(std::getenv("TAVRIX_LANG"), std::getenv("LC_ALL"),
                                               std::getenv("LC_MESSAGES"), std::getenv("LANG"));
    return language;
}
