// What was built with the installed kit, seen from outside: by the linker's tools, by a strange
// loader, and on the screen of the installed program.

#include "kit/tests/Loaded.h"
#include "platform/testing/Testing.h"
#include "plugin/AdjustPlugin.h"
#include "plugin/EffectPlugin.h"
#include "plugin/InputPlugin.h"
#include "plugin/OutputPlugin.h"
#include "plugin/PrintPlugin.h"
#include "plugin/ScalePlugin.h"
#include "plugin/SubtractPlugin.h"

#include <QImage>

#include <dlfcn.h>

#include <cstdio>
#include <set>
#include <sstream>

using namespace kittest;

namespace
{

std::string OutputOf(const std::string& command)
{
    FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    char part[4096];
    for (size_t got = 0; (got = fread(part, 1, sizeof part, pipe)) > 0;)
        output.append(part, got);
    EXPECT_EQ(pclose(pipe), 0) << command;
    return output;
}

using Names = std::set<std::string>;

struct Built {
    const char* file;
    Names exports;
    Names libraries;
};

const std::string device = "libtavrix-platform.so";

/// Typed from the contract: what each template exports, and what it may need at its load. The C
/// library is left out, since optimising decides whether it is called at all.
const Built built[] = {
    {"INPUT/PlainInput.dll",
     {"GetPluginInfo", "SetLanguage", "Configure", "GetImage", "GetImageInfo"},
     {}},
    {"OUTPUT/PlainOutput.dll", {"GetPluginInfo", "SetLanguage", "Configure", "PutImage"}, {device}},
    {"PRINT/TextPrint.dll", {"GetPluginInfo", "SetLanguage", "Configure", "Print"}, {device}},
    {"EFFECT/Invert.dll", {"GetPluginInfo", "SetLanguage", "Configure", "Effect"}, {device}},
    {"ADJUST/Contrast.dll", {"GetPluginInfo", "SetLanguage", "Configure", "AdjustImage"}, {}},
    {"SCALE/NearestScale.dll", {"GetPluginInfo", "SetLanguage", "ScaleImage"}, {}},
    {"SUBTRACT/ColourCube.dll", {"GetPluginInfo", "SetLanguage", "SubtractImage"}, {}},
};

std::string Quoted(const std::filesystem::path& path)
{
    return "'" + path.string() + "'";
}

std::filesystem::path PluginFile(const std::string& file)
{
    return WorkFolder() / "plugins/PLUGINS" / file;
}

Names ExportsOf(const std::filesystem::path& file)
{
    std::istringstream lines(OutputOf("nm -D --defined-only " + Quoted(file)));
    Names names;
    std::string address;
    std::string type;
    std::string name;
    while (lines >> address >> type >> name)
        names.insert(name);
    return names;
}

/// All that the dynamic section names by a tag.
Names Dynamic(const std::filesystem::path& file, const std::string& tag)
{
    std::istringstream lines(OutputOf("readelf -dW " + Quoted(file)));
    Names names;
    for (std::string line; std::getline(lines, line);)
        if (line.find("(" + tag + ")") != std::string::npos)
            names.insert(line.substr(line.find('[') + 1, line.find(']') - line.find('[') - 1));
    return names;
}

TEST(Installed, APluginExportsTheFunctionsOfItsKindAlone)
{
    for (const Built& plugin : built)
        EXPECT_EQ(ExportsOf(PluginFile(plugin.file)), plugin.exports) << plugin.file;
    EXPECT_EQ(ExportsOf(PluginFile("EFFECT/Heavy one.dll")), (Names{"GetPluginInfo", "Effect"}))
        << "neither its library's nor what it marked itself";
}

TEST(Installed, APluginNeedsNoToolkitAndNoPath)
{
    for (const Built& plugin : built) {
        Names libraries = Dynamic(PluginFile(plugin.file), "NEEDED");
        libraries.erase("libc.so.6");
        EXPECT_EQ(libraries, plugin.libraries) << plugin.file;
    }
    for (const Built& plugin : built) {
        EXPECT_EQ(Dynamic(PluginFile(plugin.file), "RUNPATH"), Names{}) << plugin.file;
        EXPECT_EQ(Dynamic(PluginFile(plugin.file), "RPATH"), Names{}) << plugin.file;
    }
}

template <class Kind>
void ExpectNames(const char* file, const std::u16string& english, const std::u16string& japanese)
{
    {
        Loaded<Kind> plugin(file);
        EXPECT_EQ(plugin.Info(1), english);
        EXPECT_TRUE(IsMapped(std::string(file) + ".dll"));
        for (u32 index = 2; index <= 5; ++index)
            EXPECT_GT(plugin.Info(index).size(), 1u) << file << " says nothing to " << index;
    }
    Loaded<Kind> plugin(file, 17);
    EXPECT_EQ(plugin.Info(1), japanese);
}

TEST_F(KitTest, EveryTemplateIsFoundAsItsKindAndFollowsTheLanguage)
{
    ExpectNames<InputPlugin>("PlainInput", u"Plain reader", u"プレーン読み込み");
    ExpectNames<OutputPlugin>("PlainOutput", u"Plain writer", u"プレーン書き込み");
    ExpectNames<PrintPlugin>("TextPrint", u"Text file", u"テキストファイル");
    ExpectNames<EffectPlugin>("Invert", u"Invert", u"反転");
    ExpectNames<AdjustPlugin>("Contrast", u"Full contrast", u"コントラスト最大化");
    ExpectNames<ScalePlugin>("NearestScale", u"Nearest", u"最近傍法");
    ExpectNames<SubtractPlugin>("ColourCube", u"216 colours", u"216 色");
}

TEST_F(KitTest, TheFormatsOfReaderAndWriterEndAfterOne)
{
    Loaded<InputPlugin> reader("PlainInput");
    Loaded<OutputPlugin> writer("PlainOutput");
    EXPECT_EQ(reader.Info(0x10000), u"Plain picture (*.tlp)");
    EXPECT_EQ(reader.Info(0x10001), u"*.tlp");
    EXPECT_EQ(reader.Info(0x10002), u"(none)");
    EXPECT_EQ(writer.Info(0x10000), u"Plain picture (*.tlp)");
    EXPECT_EQ(writer.Info(0x10001), u"*.tlp");
    EXPECT_EQ(writer.Info(0x10002), u"(none)");
}

TEST_F(KitTest, APluginThatIsLoadedByAStrangerLeavesTheProgramsResources)
{
    const std::u16string id = u"#7";
    ASSERT_EQ(FindResourceW(nullptr, id.c_str(), RT_RCDATA), nullptr);
    void* library = dlopen(PluginFile("EFFECT/Heavy one.dll").c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_EQ(FindResourceW(nullptr, id.c_str(), RT_RCDATA), nullptr);
    EXPECT_EQ(dlclose(library), 0);
    EXPECT_FALSE(IsMapped("Heavy one.dll")) << "a unique symbol keeps it";
}

TEST_F(KitTest, ThePluginThatThePlainCompilerMadeWorksLikeTheTemplate)
{
    const std::filesystem::path user = WorkFolder() / "home/.local/share/tavrix/PLUGINS";
    InputPlugin reader;
    ASSERT_EQ(reader.ScanIn(DevicePath(user).c_str(), ForgetPaths), 1);
    ASSERT_EQ(reader.LoadByIndex(0, 0), 1);
    WCHAR name[65] = {};
    EXPECT_GT(reader.Info(1, name, 64), 0);
    EXPECT_STREQ(tavrix::testing::Utf8(name).c_str(), "Plain reader");
    reader.Unload();
    EffectPlugin effect;
    EXPECT_EQ(effect.ScanIn(DevicePath(user).c_str(), ForgetPaths), 1) << "the one built by CMake";
}

TEST(Installed, TheInstalledProgramShowsWhatATemplateReads)
{
    const QImage screen(QString::fromStdString((WorkFolder() / "shot.png").string()));
    ASSERT_EQ(screen.size(), QSize(640, 480));
    int red = 0;
    for (int y = 0; y < screen.height(); ++y)
        for (int x = 0; x < screen.width(); ++x)
            red += screen.pixel(x, y) == qRgb(255, 0, 0);
    EXPECT_EQ(red, 64 * 64);
}

} // namespace
