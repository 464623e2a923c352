// The pass over all kinds, as the program runs it at its start.

#include "plugin/PluginScan.h"

#include "plugin/AdjustPlugin.h"
#include "plugin/EffectPlugin.h"
#include "plugin/InputPlugin.h"
#include "plugin/OutputPlugin.h"
#include "plugin/PrintPlugin.h"
#include "plugin/ScalePlugin.h"
#include "plugin/SubtractPlugin.h"
#include "plugin/tests/Fixtures.h"

namespace
{

using plugintest::IsMapped;
using plugintest::PluginFolder;
using plugintest::ProgramPlugins;
using tavrix::testing::Utf8;

/// The names of a kind as "name=index", in the list's order.
std::vector<std::string> NamesOf(const PropertyList& names)
{
    std::vector<std::string> all;
    for (u32 i = 0;; ++i) {
        Variant item = {};
        item.type = VariantWide;
        if (names.GetAt(i, &item) < 0)
            return all;
        all.push_back(Utf8(item.name) + "=" + Utf8(reinterpret_cast<const WCHAR*>(item.value)));
    }
}

/// The formats of a kind as "plugin: description|patterns".
std::vector<std::string> FormatsOf(const FormatList& formats)
{
    std::vector<std::string> all;
    for (u32 i = 0; i < formats.Count(); ++i) {
        i32 plugin = -1;
        EXPECT_EQ(formats.GetPluginIndex(i, &plugin), 1);
        all.push_back(std::to_string(plugin) + ": " + Utf8(formats.GetDescription(i)) + "|" +
                      Utf8(formats.GetPatterns(i)));
    }
    return all;
}

using Texts = std::vector<std::string>;

class PluginScan : public ::testing::Test
{
protected:
    /// The pass over INPUT alone.
    i32 ScanInput()
    {
        const PluginKindEntry kind = {&input, &formats, &names};
        return ScanPluginKinds(&kind, 1);
    }

    tavrix::testing::Scope scope;
    PluginFolder folder = ProgramPlugins();
    InputPlugin input;
    FormatList formats;
    PropertyList names;
};

TEST_F(PluginScan, FindsNothingWithoutFolders)
{
    EXPECT_EQ(ScanInput(), 1);
    EXPECT_EQ(input.Count(), -1);
    EXPECT_EQ(formats.Count(), 0u);
    EXPECT_EQ(NamesOf(names), Texts{});
}

TEST_F(PluginScan, TakesNamesAndFormatsWithThePluginsIndex)
{
    folder.Put("good", "a.dll");
    folder.PutText("B.DLL");
    folder.Put("empty_pattern", "c.dll");
    EXPECT_EQ(ScanInput(), 1);
    EXPECT_EQ(NamesOf(names), (Texts{"Sample=0", "Empty pattern=1"}));
    // An empty pattern still makes an entry; the first empty description ends its plugin's list.
    EXPECT_EQ(FormatsOf(formats),
              (Texts{"0: Sample picture|*.smp;*.sample", "0: Other sample|*.oth", "1: No pattern|",
                     "1: Second|*.two"}));
}

TEST_F(PluginScan, LeavesNothingLoaded)
{
    folder.Put("good", "scanned-and-gone.dll");
    EXPECT_EQ(ScanInput(), 1);
    EXPECT_EQ(input.Count(), 1);
    EXPECT_FALSE(input.IsLoaded());
    EXPECT_FALSE(IsMapped("scanned-and-gone.dll"));
}

TEST_F(PluginScan, APluginWithoutANameHasAnIndexAndFormats)
{
    folder.Put("nameless", "a.dll");
    folder.Put("good", "b.dll");
    EXPECT_EQ(ScanInput(), 1);
    EXPECT_EQ(input.Count(), 2);
    EXPECT_EQ(NamesOf(names), Texts{"Sample=1"});
    EXPECT_EQ(FormatsOf(formats),
              (Texts{"0: Nameless picture|*.nam", "1: Sample picture|*.smp;*.sample",
                     "1: Other sample|*.oth"}));
}

TEST_F(PluginScan, OfTwoPluginsWithOneNameTheLaterWins)
{
    folder.Put("good", "a.dll");
    folder.Put("many_formats", "b.dll");
    folder.Put("good", "c.dll");
    EXPECT_EQ(ScanInput(), 1);
    EXPECT_EQ(NamesOf(names), (Texts{"Sample=2", "Many=1"}));
}

TEST_F(PluginScan, TakesNoMoreThanFiftyFormatsOfAPlugin)
{
    folder.Put("many_formats", "a.dll");
    EXPECT_EQ(ScanInput(), 1);
    EXPECT_EQ(formats.Count(), 50u);
    EXPECT_EQ(Utf8(formats.GetDescription(49)), "*.49");
    EXPECT_EQ(Utf8(formats.GetPatterns(49)), "*.49");
}

TEST_F(PluginScan, AFullFormatListStaysFull)
{
    for (int i = 0; i < 21; ++i)
        folder.Put("many_formats", "p" + std::to_string(i) + ".dll");
    EXPECT_EQ(ScanInput(), 1);
    EXPECT_EQ(input.Count(), 21);
    EXPECT_EQ(formats.Count(), 1024u);
}

TEST_F(PluginScan, APluginThatAnswersWithoutWritingRepeatsNothing)
{
    folder.Put("silent_answers", "a.dll");
    EXPECT_EQ(ScanInput(), 1);
    EXPECT_EQ(FormatsOf(formats), Texts{"0: Only format|*.one"});
    EXPECT_EQ(NamesOf(names), Texts{"Silent=0"});
}

TEST_F(PluginScan, UnterminatedAnswersAreCutAtTheBuffer)
{
    folder.Put("unterminated", "a.dll");
    EXPECT_EQ(ScanInput(), 1);
    EXPECT_EQ(FormatsOf(formats),
              Texts{"0: " + std::string(2047, 'a') + "|" + std::string(2047, 'b')});
    EXPECT_EQ(NamesOf(names), Texts{std::string(2047, 'b') + "=0"});
}

TEST_F(PluginScan, APluginThatThrowsHasNeitherNameNorFormats)
{
    folder.Put("throws", "a.dll");
    folder.Put("good", "b.dll");
    EXPECT_EQ(ScanInput(), 1);
    EXPECT_EQ(input.Count(), 2);
    EXPECT_EQ(NamesOf(names), Texts{"Sample=1"});
    EXPECT_EQ(formats.Count(), 2u);
}

TEST_F(PluginScan, JapanesePluginsGiveJapaneseNames)
{
    folder.Put("good", "a.dll");
    tavrix::testing::SetLanguage(1041);
    EXPECT_EQ(ScanInput(), 1);
    EXPECT_EQ(NamesOf(names), Texts{"見本=0"});
}

TEST_F(PluginScan, VisitsEveryKindAndAsksFormatsOfThoseThatHaveThem)
{
    const Texts words = {"INPUT", "OUTPUT", "PRINT", "EFFECT", "ADJUST", "SCALE", "SUBTRACT"};
    for (const std::string& word : words) {
        folder.Put("kind_" + word, "own.dll", word);
        folder.Put("kind_PRINT", "print.dll", word); // belongs into one of the folders only
    }
    OutputPlugin output;
    PrintPlugin print;
    EffectPlugin effect;
    AdjustPlugin adjust;
    ScalePlugin scale;
    SubtractPlugin subtract;
    FormatList outputFormats;
    PropertyList kindNames[7];
    PluginModule* modules[7] = {&input, &output, &print, &effect, &adjust, &scale, &subtract};
    PluginKindEntry kinds[7];
    for (size_t i = 0; i < 7; ++i)
        kinds[i] = {modules[i], nullptr, &kindNames[i]};
    kinds[0].formats = &formats;
    kinds[1].formats = &outputFormats;

    EXPECT_EQ(ScanPluginKinds(kinds, 7), 1);
    for (size_t i = 0; i < 7; ++i) {
        EXPECT_EQ(Utf8(modules[i]->Kind()), words[i]);
        const bool isPrint = words[i] == "PRINT";
        EXPECT_EQ(modules[i]->Count(), isPrint ? 2 : 1) << words[i];
        // Both PRINT plugins have one name; the later index is kept.
        EXPECT_EQ(NamesOf(kindNames[i]), Texts{"Name of " + words[i] + (isPrint ? "=1" : "=0")});
        EXPECT_FALSE(modules[i]->IsLoaded());
        EXPECT_EQ(modules[i]->LoadByIndex(0, 0), 1);
        EXPECT_EQ(modules[i]->Unload(), 1);
    }
    EXPECT_EQ(FormatsOf(formats), Texts{"0: Format of INPUT|*.one"});
    EXPECT_EQ(FormatsOf(outputFormats), Texts{"0: Format of OUTPUT|*.one"});
}

TEST_F(PluginScan, WithoutEitherWorkBufferNothingIsScanned)
{
    folder.Put("good", "a.dll");
    const PluginKindEntry kind = {&input, &formats, &names};
    HeapAllocator heap(nullptr);
    for (int failing = 1; failing <= 2; ++failing) {
        int asked = 0;
        tavrix::testing::SetAllocationFault(
            [&asked, failing](SIZE_T) { return ++asked == failing; });
        EXPECT_EQ(ScanPluginKinds(&kind, 1, &heap), -1) << failing;
        EXPECT_EQ(input.Count(), -1);
    }
    tavrix::testing::Reset();
    EXPECT_EQ(ScanPluginKinds(&kind, 1, &heap), 1);
    EXPECT_EQ(input.Count(), 1);
    EXPECT_EQ(ScanPluginKinds(nullptr, 1), -4);
}

} // namespace
