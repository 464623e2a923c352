// What the jobs' tests share: the fixture plugins, jobs of every kind started as a command would
// start them, and calls as a plugin makes them.
#pragma once

#include "platform/testing/core/TestHome.h"
#include "platform/testing/WindowTesting.h"
#include "plugin/GuardedCall.h"
#include "resources/Ids.h"
#include "shell/Job.h"
#include "shell/PluginCallbacks.h"
#include "shell/ProgressDialog.h"
#include "tests/support/Program.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>

#include "platform/testing/core/TestPaths.h"

namespace jobtest
{

using namespace tavrix::testing;

inline void InstallFixture(const std::string& name, const std::string& kind = "INPUT")
{
    InstallPlugin(tavrix::testing::InBuild("/tests/shell-fixtures/") + name + ".dll", kind);
}

/// One plugin of every kind that a job runs; `input` is that of the first.
inline void InstallKinds(const std::string& input = "quick")
{
    InstallFixture(input, "INPUT");
    InstallFixture("saving", "OUTPUT");
    InstallFixture("printing", "PRINT");
    InstallFixture("effecting", "EFFECT");
    InstallFixture("adjusting", "ADJUST");
    InstallFixture("scaling", "SCALE");
    InstallFixture("subtracting", "SUBTRACT");
}

/// A file of that many bytes below the test's home; its host path.
inline std::string MakeFile(const std::string& name, size_t size = 8)
{
    const std::string path = TestHome() + "/" + name;
    std::ofstream(path) << std::string(size, 'x');
    return path;
}

/// Runs `work` as the export of a plugin would run: the callbacks answer nobody else.
inline i32 InPluginCall(const std::function<i32()>& work)
{
    static thread_local const std::function<i32()>* running;
    running = &work;
    const TavrixSetLanguageFunction run = [](u32) -> i32 { return (*running)(); };
    return CallPlugin(run, 0);
}

inline i32 Report(u32 done, u32 total)
{
    return InPluginCall([=] { return ProgressCallback(done, total); });
}

/// Rules the work of the fixtures (KindFixture.h).
inline void Ask(MainFrame& frame, const WCHAR* key, u32 value)
{
    EXPECT_GT(frame.settings->SetUInt(TEXT("Global"), key, value), 0);
}

inline u32 Stored(MainFrame& frame, const WCHAR* key)
{
    u32 value = 0;
    EXPECT_EQ(frame.settings->GetUInt(TEXT("Global"), key, &value), Done) << Utf8(key);
    return value;
}

inline std::u16string StoredText(MainFrame& frame, const WCHAR* key)
{
    const WCHAR* text = nullptr;
    EXPECT_EQ(frame.settings->GetText(TEXT("Global"), key, &text), Done) << Utf8(key);
    return text != nullptr ? text : u"(none)";
}

inline bool IsStored(MainFrame& frame, const WCHAR* key)
{
    u32 value = 0;
    return frame.settings->GetUInt(TEXT("Global"), key, &value) == Done;
}

/// What a job of any kind is started with besides its plugin.
struct Blocks {
    const WCHAR* path = TEXT("\\picture.fixture");
    Raster* image = nullptr; // null: one of 8 by 4 pixels that is dropped
    u32 width = 20;
    u32 height = 10;
    u32 argument = 77;
    TavrixPutPropertyCallback put = PutPropertyCallback;
    TavrixGetPropertyCallback get = GetPropertyCallback;
};

template <class Host, class Arguments>
i32 RunLoaded(MainFrame& frame, u32 kind, Host* host, Arguments arguments)
{
    EXPECT_EQ(host->LoadByIndex(0, 0), Done);
    JobRecord record = {kind, &arguments};
    const i32 result = RunJob(frame.window, frame.instance, &record);
    host->Unload();
    return result;
}

/// Runs a job of a kind with the plugin of that kind, as a command does: arguments on the stack.
inline i32 RunKind(MainFrame& frame, u32 kind, const Blocks& blocks = {})
{
    Raster own(&frame.allocator);
    EXPECT_EQ(own.Create(8, 4, 24, nullptr, nullptr), Done);
    Raster* image = blocks.image != nullptr ? blocks.image : &own;
    switch (kind) {
    case JobLoad:
        return RunLoaded(frame, kind, frame.inputPlugins,
                         LoadArguments{frame.inputPlugins, nullptr, nullptr, image});
    case JobReceive: {
        ReceiveArguments arguments = {nullptr}; // which fails at once
        JobRecord record = {kind, &arguments};
        return RunJob(frame.window, frame.instance, &record);
    }
    case JobSave:
    case JobVirtualSave:
        return RunLoaded(frame, kind, frame.outputPlugins,
                         SaveArguments{frame.outputPlugins, blocks.path, image});
    case JobEffect:
        return RunLoaded(frame, kind, frame.effectPlugins,
                         EffectArguments{frame.effectPlugins, image, blocks.put, blocks.get});
    case JobAdjust:
        return RunLoaded(frame, kind, frame.adjustPlugins,
                         AdjustArguments{frame.adjustPlugins, image});
    case JobScale:
        return RunLoaded(frame, kind, frame.scalePlugins,
                         ScaleArguments{frame.scalePlugins, image, blocks.width, blocks.height,
                                        blocks.put, blocks.get});
    case JobSubtract:
        return RunLoaded(frame, kind, frame.subtractPlugins,
                         SubtractArguments{frame.subtractPlugins, image, blocks.argument});
    case JobPrint:
        return RunLoaded(frame, kind, frame.printPlugins,
                         PrintArguments{frame.printPlugins, frame.window, image});
    default:
        ADD_FAILURE() << "no such kind";
        return 0;
    }
}

/// Watches dialogs and boxes; answers each box.
struct Watched {
    struct Box {
        std::u16string text;
        std::u16string caption;
    };
    std::vector<Box> boxes;
    std::vector<std::u16string> headlines;
    std::vector<bool> stoppable; // of each progress dialog: whether Abort was enabled
    std::function<void(HWND dialog, bool box)> script;
    size_t deepest = 0;

    Watched()
    {
        OnModal([this](HWND dialog, bool box) {
            std::erase_if(open, [](HWND other) { return !IsWindow(other); });
            open.push_back(dialog);
            deepest = std::max(deepest, open.size());
            if (box) {
                boxes.push_back({BoxText(dialog), BoxCaption(dialog)});
            } else {
                headlines.push_back(ControlText(dialog, ControlHeadline));
                stoppable.push_back(IsWindowEnabled(GetDlgItem(dialog, ControlAbort)) != FALSE);
            }
            if (script)
                script(dialog, box);
            if (box)
                EndDialog(dialog, IDOK);
        });
    }

private:
    std::vector<HWND> open;
};

} // namespace jobtest
