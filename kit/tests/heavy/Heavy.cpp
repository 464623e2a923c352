// A plugin that does what keeps a library from being unmapped, or leaks from it, where its build
// does not look after that: a template's static variable, a library with symbols of its own, the
// C++ library, a function of its own that is marked as an export.
#include <tavrix/module.h>
#include <tavrix/text.h>

#include <string>
#include <vector>

std::string ChattyName();

// Visible as the C++ library's own templates are, whatever the build asks for.
template <class T>
struct __attribute__((visibility("default"))) Shared {
    static inline std::vector<T> values;
};

TAVRIX_EXPORT uint32_t NoBusinessOfTheHost()
{
    return static_cast<uint32_t>(Shared<int>::values.size());
}

extern "C" {

TAVRIX_EXPORT int32_t TAVRIX_CALL GetPluginInfo(uint32_t index, TavrixChar* buffer,
                                                uint32_t capacity)
{
    const std::string narrow = index == PluginInfoIdentity ? "TX_EFFECT" : ChattyName();
    const std::u16string text(narrow.begin(), narrow.end());
    if (text.size() >= capacity)
        return -1;
    text.copy(buffer, text.size());
    buffer[text.size()] = 0;
    return 1;
}

// Gives its module's handle through a property, for the test to look for the resources.
TAVRIX_EXPORT int32_t TAVRIX_CALL Effect(TavrixImageHandle, RasterFunctionTable*,
                                         PaletteFunctionTable*, TavrixProgressCallback,
                                         TavrixMessageCallback, TavrixPutPropertyCallback put,
                                         TavrixGetPropertyCallback)
{
    Shared<int>::values.push_back(1);
    Variant item = {TAVRIX_TEXT("HeavyModule"), VariantUnsigned,
                    reinterpret_cast<uintptr_t>(TavrixThisModule())};
    put(&item);
    return static_cast<int32_t>(NoBusinessOfTheHost());
}

} // extern "C"
