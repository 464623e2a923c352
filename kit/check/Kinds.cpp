#include "kit/check/Kinds.h"

namespace plugincheck
{

namespace
{

struct KindRow {
    const char* word;
    const char* work;
    std::vector<std::string> others;
};

const KindRow& RowOf(Kind kind)
{
    static const KindRow rows[KindCount] = {
        {"INPUT", "GetImage", {"GetImageInfo", "GetImageFast", "Configure"}},
        {"OUTPUT", "PutImage", {"Configure"}},
        {"PRINT", "Print", {"Configure"}},
        {"EFFECT", "Effect", {"Configure"}},
        {"ADJUST", "AdjustImage", {"Configure"}},
        {"SCALE", "ScaleImage", {"Configure"}},
        {"SUBTRACT", "SubtractImage", {}},
    };
    return rows[kind];
}

} // namespace

const char* KindWord(Kind kind)
{
    return RowOf(kind).word;
}

bool KindOfWord(const std::string& word, Kind* kind)
{
    for (u32 i = 0; i < KindCount; ++i)
        if (word == KindWord(static_cast<Kind>(i))) {
            *kind = static_cast<Kind>(i);
            return true;
        }
    return false;
}

const char* WorkExport(Kind kind)
{
    return RowOf(kind).work;
}

std::vector<std::string> AllowedExports(Kind kind)
{
    std::vector<std::string> names = {"GetPluginInfo", "SetLanguage", WorkExport(kind)};
    const std::vector<std::string>& others = RowOf(kind).others;
    names.insert(names.end(), others.begin(), others.end());
    return names;
}

} // namespace plugincheck
