// The three readers side by side: each test below runs for every one of them.
#pragma once

#include "standard-plugins/tests/modern-readers/Reference.h"
#include "standard-plugins/tests/support/Decoding.h"

#include "platform/testing/Testing.h"

#include <gtest/gtest.h>

#include "platform/testing/core/TestPaths.h"

namespace moderntest
{

struct Format {
    const char* name;
    const char* plugin;
    /// The codec, as the plugin loads it.
    const char* library;
    const char* extension;
    /// Makes OUT of IN.
    const char* reference;
    /// Its keys begin with this.
    const char16_t* settings;
    /// A kept file that is decoded row by row or as a whole, and one with alpha.
    const char* plain;
    const char* transparent;
};

inline const Format formats[] = {
    {"Avif", "INPUT/AVIF", "libavif.so.15", "avif", "avifdec -d 8 IN OUT", u"AvifInput",
     "good-420-8-bits", "good-alpha"},
    {"Jxl", "INPUT/JXL", "libjxl.so.0.7", "jxl", "djxl IN OUT", u"JxlInput", "good-groups",
     "good-alpha-lossless"},
    {"Heif", "INPUT/HEIF", "libheif.so.1", "heic", "heif-convert IN OUT", u"HeifInput", "good-420",
     "good-alpha"},
};

inline std::string InputFolder(const Format& format)
{
    const std::string folder = format.extension == std::string("heic") ? "heif" : format.extension;
    return tavrix::testing::InSource("/tests/inputs/") + folder + "/";
}

inline std::string Input(const Format& format, const std::string& name)
{
    return Contents(InputFolder(format) + name + "." + format.extension);
}

class EachFormat : public testing::TestWithParam<Format>
{
protected:
    EachFormat() { plugintest::CurrentHost() = {}; }
    ~EachFormat() override { plugintest::CurrentHost() = {}; }
    std::string Plain() const { return Input(GetParam(), GetParam().plain); }
    tavrix::testing::Scope scope;
    plugintest::PluginLibrary plugin{GetParam().plugin};
};

inline std::string NameOfFormat(const testing::TestParamInfo<Format>& entry)
{
    return entry.param.name;
}

inline void PrintTo(const Format& format, std::ostream* out)
{
    *out << format.name;
}

} // namespace moderntest
