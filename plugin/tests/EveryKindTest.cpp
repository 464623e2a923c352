// What the calls of all seven kinds have in common, tried on each kind with real libraries: when a
// plugin is called and when not, what it is given, and what is left behind whatever it did.

#include "plugin/AdjustPlugin.h"
#include "plugin/EffectPlugin.h"
#include "plugin/InputPlugin.h"
#include "plugin/OutputPlugin.h"
#include "plugin/PrintPlugin.h"
#include "plugin/ScalePlugin.h"
#include "plugin/SubtractPlugin.h"

#include "foundation/MemoryGauge.h"
#include "image/Raster.h"
#include "platform/testing/Faults.h"
#include "plugin/tests/Watched.h"

#include <memory>

namespace
{

using plugintest::AllHeapsTaken;
using plugintest::Callbacks;
using plugintest::CurrentTold;
using plugintest::IsMapped;
using plugintest::Number;
using plugintest::PluginFolder;
using tavrix::platform::CountHoldings;

/// A kind and how a test calls it.
struct Kind {
    const char* word;
    const char* of;    // what the names of its fixtures begin with
    const char* good;  // its fixture that does right
    i32 goodResult;    // what that one answers when it is run
    bool configurable; // it has a call of Configure
    bool inHeap;       // and that one runs in a heap
    bool forgets;      // Configure goes with the library
    std::unique_ptr<PluginModule> (*make)();
    i32 (*run)(PluginModule&, Raster*, const PluginCallbacks&);
    i32 (*configure)(PluginModule&, Raster*, const PluginCallbacks&);
};

std::ostream& operator<<(std::ostream& out, const Kind& kind)
{
    return out << kind.word;
}

template <typename Plugin>
std::unique_ptr<PluginModule> New()
{
    return std::make_unique<Plugin>();
}

template <typename Plugin>
Plugin& As(PluginModule& module)
{
    return static_cast<Plugin&>(module);
}

const HWND owner = reinterpret_cast<HWND>(uintptr_t{0x1230});

const Kind kinds[] = {
    {"INPUT", "", "good", 2, true, false, true, New<InputPlugin>,
     [](PluginModule& plugin, Raster* image, const PluginCallbacks& callbacks) {
         return As<InputPlugin>(plugin).GetImage(u"\\a.bad", nullptr, image, callbacks);
     },
     [](PluginModule& plugin, Raster*, const PluginCallbacks& callbacks) {
         return As<InputPlugin>(plugin).Configure(owner, callbacks);
     }},
    {"OUTPUT", "output_", "good_output", 2, true, false, false, New<OutputPlugin>,
     [](PluginModule& plugin, Raster* image, const PluginCallbacks& callbacks) {
         return As<OutputPlugin>(plugin).PutImage(u"\\a.bad", nullptr, image, callbacks);
     },
     [](PluginModule& plugin, Raster*, const PluginCallbacks& callbacks) {
         return As<OutputPlugin>(plugin).Configure(owner, callbacks);
     }},
    {"PRINT", "print_", "good_print", 22, true, true, true, New<PrintPlugin>,
     [](PluginModule& plugin, Raster* image, const PluginCallbacks& callbacks) {
         return As<PrintPlugin>(plugin).Print(image, owner, 0, 0, 0, 0, u"title", callbacks);
     },
     [](PluginModule& plugin, Raster*, const PluginCallbacks& callbacks) {
         return As<PrintPlugin>(plugin).Configure(owner, callbacks);
     }},
    {"EFFECT", "effect_", "good_effect", 22, true, true, false, New<EffectPlugin>,
     [](PluginModule& plugin, Raster* image, const PluginCallbacks& callbacks) {
         return As<EffectPlugin>(plugin).Process(image, callbacks);
     },
     [](PluginModule& plugin, Raster* image, const PluginCallbacks& callbacks) {
         return As<EffectPlugin>(plugin).Configure(owner, image, callbacks);
     }},
    {"ADJUST", "adjust_", "good_adjust", 22, true, true, false, New<AdjustPlugin>,
     [](PluginModule& plugin, Raster* image, const PluginCallbacks& callbacks) {
         return As<AdjustPlugin>(plugin).Process(image, callbacks);
     },
     [](PluginModule& plugin, Raster* image, const PluginCallbacks& callbacks) {
         return As<AdjustPlugin>(plugin).Configure(owner, image, callbacks);
     }},
    {"SCALE", "scale_", "good_scale", 22, false, false, false, New<ScalePlugin>,
     [](PluginModule& plugin, Raster* image, const PluginCallbacks& callbacks) {
         return As<ScalePlugin>(plugin).ScaleImage(image, 9, 8, callbacks);
     },
     nullptr},
    {"SUBTRACT", "subtract_", "good_subtract", 22, false, false, false, New<SubtractPlugin>,
     [](PluginModule& plugin, Raster* image, const PluginCallbacks& callbacks) {
         return As<SubtractPlugin>(plugin).SubtractImage(image, 7, callbacks);
     },
     nullptr},
};

class EveryKind : public ::testing::TestWithParam<Kind>
{
protected:
    EveryKind() : plugin(GetParam().make())
    {
        MemoryGauge::Sample();
        unsetenv("TAVRIX_FIXTURE_KEPT"); // see keeps_tables.c
        EXPECT_EQ(image.Create(8, 6, 24, nullptr, nullptr), 1);
    }
    ~EveryKind() override
    {
        EXPECT_EQ(PluginHeap(), nullptr);
        tavrix::testing::Reset();
        MemoryGauge::Sample();
    }

    /// Finds the fixture that does `misdeed` in the way of the kind, and loads it.
    void Load(const std::string& misdeed) { LoadFixture(GetParam().of + misdeed); }
    void LoadFixture(const std::string& fixture)
    {
        const PluginFolder folder;
        folder.Put(fixture, fixture + ".dll", GetParam().word);
        ASSERT_EQ(plugin->ScanIn(folder.Device().c_str(), ForgetPaths), 1) << fixture;
        ASSERT_EQ(plugin->LoadByIndex(0, 0), 1) << fixture;
    }
    i32 Run() { return GetParam().run(*plugin, &image, Callbacks()); }
    i32 Configure() { return GetParam().configure(*plugin, &image, Callbacks()); }
    u32 Width() { return InfoOf().width; }
    RasterInfo InfoOf()
    {
        RasterInfo info = {};
        info.size = sizeof(info);
        EXPECT_EQ(image.GetInfo(&info), 1);
        return info;
    }

    tavrix::testing::Scope scope;
    std::unique_ptr<PluginModule> plugin;
    Raster image;
};

/// The kinds that the host configures.
class EveryConfigurableKind : public EveryKind
{
};

constexpr u32 RastersSize = sizeof(void*) == 8 ? 136 : 68;
constexpr u32 PalettesSize = sizeof(void*) == 8 ? 88 : 44;

TEST_P(EveryKind, NothingIsCalledBeforeALoadOrBehindAnUnload)
{
    EXPECT_EQ(Run(), -3);
    if (GetParam().configurable) {
        EXPECT_EQ(Configure(), -3);
    }
    LoadFixture(GetParam().good);
    ASSERT_EQ(plugin->Unload(), 1);
    EXPECT_EQ(Run(), -3);
    if (GetParam().forgets) {
        EXPECT_EQ(Configure(), -3);
    }
    EXPECT_TRUE(CurrentTold().numbers.empty());
}

TEST_P(EveryKind, TheNextLoadBindsEveryExportAnew)
{
    LoadFixture(GetParam().good);
    ASSERT_EQ(plugin->Unload(), 1);
    LoadFixture(std::string("kind_") + GetParam().word); // has neither export
    EXPECT_EQ(Run(), -3);
    if (GetParam().configurable) {
        EXPECT_EQ(Configure(), -3);
    }
    LoadFixture(GetParam().good);
    EXPECT_EQ(Run(), GetParam().goodResult);
}

TEST_P(EveryKind, AMissingExportIsToldBeforeAHeapIsMade)
{
    Load("without_processing");
    const AllHeapsTaken taken;
    EXPECT_EQ(Run(), -3);
}

TEST_P(EveryConfigurableKind, APluginThatOnlyConfiguresIsConfigured)
{
    Load("without_processing");
    EXPECT_EQ(Configure(), 1);
    EXPECT_EQ(Run(), -3);
}

TEST_P(EveryConfigurableKind, AMissingConfigureIsAFailureAndTheRunGoesOn)
{
    Load("without_configure");
    EXPECT_EQ(Configure(), -3);
    EXPECT_EQ(Run(), 1);
}

TEST_P(EveryKind, WithoutAHeapThePluginIsNotCalled)
{
    LoadFixture(GetParam().good);
    {
        const AllHeapsTaken taken;
        EXPECT_EQ(Run(), -2);
    }
    EXPECT_TRUE(CurrentTold().numbers.empty());
    EXPECT_EQ(Run(), GetParam().goodResult);
}

TEST_P(EveryConfigurableKind, ConfigureRunsInAHeapOnlyWhereItGetsTables)
{
    LoadFixture(GetParam().good);
    (void)Configure();
    ASSERT_EQ(CurrentTold().messages, std::vector<std::u16string>{u"configured"});
    EXPECT_EQ(CurrentTold().heapAtMessage, GetParam().inHeap);
    EXPECT_EQ(PluginHeap(), nullptr);
    const AllHeapsTaken taken;
    const i32 result = Configure();
    if (GetParam().inHeap) {
        EXPECT_EQ(result, -2);
        EXPECT_TRUE(CurrentTold().messages.empty());
    } else {
        EXPECT_GE(result, 0);
        EXPECT_EQ(CurrentTold().messages.size(), 1u);
    }
}

TEST_P(EveryKind, SurvivesEveryShortageOfMemory)
{
    LoadFixture(GetParam().good);
    u32 refused = 0;
    const unsigned faults =
        tavrix::testing::ForEveryFault(tavrix::testing::FaultKind::Allocation, [&] {
            Raster fresh;
            if (fresh.Create(8, 6, 24, nullptr, nullptr) < 0)
                return;
            const i32 result = GetParam().run(*plugin, &fresh, Callbacks());
            EXPECT_TRUE(result == GetParam().goodResult || result < 0) << result;
            if (result == -2) {
                ++refused;
                EXPECT_TRUE(CurrentTold().numbers.empty());
            }
            EXPECT_EQ(PluginHeap(), nullptr);
        });
    EXPECT_GT(faults, 0u);
    EXPECT_GT(refused, 0u);
}

TEST_P(EveryKind, SpoiledTablesAreWholeAtTheNextCall)
{
    Load("wipes_tables");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Run(), 1) << i;
        EXPECT_EQ(Number(u"rasters"), RastersSize) << i;
        EXPECT_EQ(Number(u"palettes"), PalettesSize) << i;
    }
    // The tables are the module's, whichever plugin it loads.
    LoadFixture(GetParam().good);
    EXPECT_EQ(Run(), GetParam().goodResult);
}

TEST_P(EveryKind, WhatAPluginForgetsIsGivenBackWithItsFiles)
{
    namespace fs = std::filesystem;
    Load("never_frees");
    const auto files = [] {
        int found = 0;
        for (const auto& entry : fs::directory_iterator(tavrix::testing::HostPath(u"\\Temp")))
            found += entry.path().extension() == ".tmp";
        return found;
    };
    EXPECT_EQ(Run(), 1); // a first time, for what is made once and kept
    image.Reset();
    const auto before = CountHoldings();
    EXPECT_EQ(image.Create(8, 6, 24, nullptr, nullptr), 1);
    EXPECT_EQ(Run(), 1);
    EXPECT_EQ(Number(u"kept"), 1u);
    image.Reset();
    const auto after = CountHoldings();
    EXPECT_TRUE(before == after) << after.heapBytes - before.heapBytes << " bytes, "
                                 << after.heaps - before.heaps << " heaps";
    EXPECT_EQ(image.Create(8, 6, 24, nullptr, nullptr), 1);
    tavrix::testing::SetFreeMemory(0);
    MemoryGauge::Sample();
    EXPECT_EQ(Run(), 1);
    image.Reset();
    EXPECT_EQ(files(), 0);
}

TEST_P(EveryKind, AnExceptionOutOfARunIsAFailure)
{
    Load("throws_run");
    const std::string file = GetParam().of + std::string("throws_run.dll");
    EXPECT_EQ(Run(), -1);
    EXPECT_EQ(PluginHeap(), nullptr);
    EXPECT_EQ(Run(), -1);
    EXPECT_EQ(image.UnlockAll(), 1);
    EXPECT_EQ(plugin->Unload(), 1);
    EXPECT_FALSE(IsMapped(file));
}

TEST_P(EveryConfigurableKind, ExceptionsOutOfConfigureAndSetLanguageAreFailuresAndTheRunGoesOn)
{
    tavrix::testing::SetLanguage(1041);
    Load("throws_configure");
    EXPECT_EQ(Configure(), -1);
    EXPECT_EQ(PluginHeap(), nullptr);
    EXPECT_EQ(Run(), 1);
}

TEST_P(EveryConfigurableKind, TheAnswersOfConfigureArePassedOn)
{
    Load("configure_cancels");
    EXPECT_EQ(Configure(), 0);
    Load("configure_fails");
    EXPECT_EQ(Configure(), -5);
}

TEST_P(EveryKind, AnswersOfAnySizeArePassedOn)
{
    Load("returns_garbage");
    // The generator's first three numbers, as its author printed them.
    EXPECT_EQ(static_cast<u32>(Run()), 723471715u);
    EXPECT_EQ(static_cast<u32>(Run()), 2497366906u);
    EXPECT_EQ(static_cast<u32>(Run()), 2064144800u);
}

TEST_P(EveryKind, LinesLeftLockedStayThePicturesOwn)
{
    Load("locks_lines");
    EXPECT_EQ(Run(), 1);
    EXPECT_EQ(plugin->Unload(), 1);
    EXPECT_EQ(image.UnlockAll(), 1);
    u8* line = nullptr;
    EXPECT_EQ(image.LockLines(-1, &line, nullptr), 1);
    EXPECT_EQ(image.UnlockAll(), 1);
}

TEST_P(EveryKind, AThreadThatThePluginStartsReachesNoPicture)
{
    Load("own_thread");
    EXPECT_EQ(Run(), 1);
    EXPECT_EQ(static_cast<i32>(Number(u"alloc")), -1);
    EXPECT_EQ(static_cast<i32>(Number(u"create")), -2);
    EXPECT_EQ(static_cast<i32>(Number(u"palette")), -2);
    EXPECT_EQ(Width(), 40u);
}

TEST_P(EveryKind, WhatIsKeptFromACallIsOfNoUseLater)
{
    Load("keeps_tables");
    EXPECT_EQ(Run(), 1);
    WCHAR text[32] = {};
    EXPECT_EQ(plugin->Info(1, text, 32), 1); // uses what was kept, between two calls
    ASSERT_EQ(plugin->Unload(), 1);
    Load("keeps_tables"); // and while it is probed
    if (GetParam().configurable) {
        EXPECT_EQ(Configure(), 1);
    }
    EXPECT_EQ(Run(), 1);
    EXPECT_GE(Number(u"used"), 26u);
    EXPECT_EQ(Number(u"accepted"), 0u);
}

std::string WordOf(const ::testing::TestParamInfo<Kind>& kind)
{
    return kind.param.word;
}

INSTANTIATE_TEST_SUITE_P(Kinds, EveryKind, ::testing::ValuesIn(kinds), WordOf);
// The first five of the table.
INSTANTIATE_TEST_SUITE_P(Kinds, EveryConfigurableKind, ::testing::ValuesIn(kinds, kinds + 5),
                         WordOf);

} // namespace
