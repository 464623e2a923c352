#include "tests/support/Program.h"

#include "platform/host/Resources.h"
#include "platform/testing/core/TestHome.h"
#include "resources/Embedded.h"
#include "resources/Ids.h"
#include "settings/tests/SettingsText.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/testing/core/TestPaths.h"

namespace tavrix::testing
{

namespace
{

constexpr DWORD StepDelay = 100; // milliseconds of the program's own loop between two steps

std::vector<Step> pendingSteps;
DWORD lastStep = 0;
bool stepRunning = false;
std::vector<std::u16string> statusTexts;
HWND progressDialog = nullptr;
DWORD progressOpened = 0;
DWORD progressTime = 0;

void WatchProgress()
{
    if (progressDialog == nullptr)
        return;
    if (!IsWindow(progressDialog)) {
        progressDialog = nullptr;
        return;
    }
    progressTime = GetTickCount() - progressOpened;
    std::u16string text = ControlText(progressDialog, ControlProgressStatus);
    if (!text.empty() && (statusTexts.empty() || statusTexts.back() != text))
        statusTexts.push_back(std::move(text));
}

void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD)
{
    WatchProgress();
    if (stepRunning || pendingSteps.empty() || mainFrame == nullptr ||
        !IsWindowVisible(mainFrame->window) || GetTickCount() - lastStep < StepDelay)
        return;
    stepRunning = true;
    const Step step = std::move(pendingSteps.front());
    pendingSteps.erase(pendingSteps.begin());
    step(*mainFrame);
    lastStep = GetTickCount();
    stepRunning = false;
    if (pendingSteps.empty())
        PostMessageW(mainFrame->window, WM_CLOSE, 0, 0);
}

} // namespace

void InstallPlugin(const std::string& library, const std::string& kind)
{
    InstallPluginAs(library, kind, std::filesystem::path(library).filename());
}

void InstallPluginAs(const std::string& library, const std::string& kind, const std::string& file)
{
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(TestHome()) / "data" / "tavrix" / "PLUGINS" / kind;
    fs::create_directories(folder);
    fs::copy_file(library, folder / file, fs::copy_options::overwrite_existing);
}

void InstallLabelled(const std::string& kind, const std::string& label)
{
    InstallPluginAs(tavrix::testing::InBuild("/tests/shell-fixtures/labelled.dll"), kind,
                    label + ".dll");
}

void InstallBundledPlugins()
{
    for (const auto& entry :
         std::filesystem::directory_iterator(tavrix::testing::InBuild("/bin/PLUGINS/INPUT")))
        InstallPlugin(entry.path());
}

void WriteSettings(const std::u16string& lines)
{
    const std::string folder = TestHome() + "/config/tavrix/Configuration Files";
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/Tavrix.ini", std::ios::binary) << FileOf(lines);
}

void HideToolWindows()
{
    WriteSettings(u"[Tavrix]\r\nShowToolbox=0\r\nShowColorbox=0\r\n");
}

std::u16string DevicePath(const std::string& hostPath)
{
    std::u16string path = u"\\Computer" + Wide(std::filesystem::absolute(hostPath).string());
    for (char16_t& character : path)
        if (character == u'/')
            character = u'\\';
    return path;
}

void RegisterProgramResources()
{
    const EmbeddedResources resources = GetEmbeddedResources();
    TavrixRegisterResources(nullptr, resources.begin, resources.end);
}

int RunProgram(const std::u16string& commandLine, const std::vector<Step>& steps)
{
    RegisterProgramResources();
    pendingSteps = steps;
    auto onModal = platform::Hooks().modalStarted;
    OnModal([onModal](HWND dialog, bool box) {
        if (!box && GetDlgItem(dialog, ControlProgressBar) != nullptr) {
            progressDialog = dialog;
            progressOpened = GetTickCount();
        }
        if (onModal)
            onModal(dialog, box);
    });
    const UINT_PTR timer = SetTimer(nullptr, 0, 5, Tick);
    std::u16string line = commandLine;
    const int result = wWinMain(GetModuleHandleW(nullptr), nullptr, line.data(), SW_SHOWNORMAL);
    KillTimer(nullptr, timer);
    EXPECT_TRUE(pendingSteps.empty()) << "the main window never came up";
    return result;
}

int RunProgram(const std::u16string& commandLine, const Step& step)
{
    return RunProgram(commandLine, std::vector<Step>{step});
}

int RunProgramOn(const std::string& hostPath, const std::vector<Step>& steps)
{
    return RunProgram(u"\"" + DevicePath(hostPath) + u"\"", steps);
}

int RunProgramOn(const std::string& hostPath, const Step& step)
{
    return RunProgramOn(hostPath, std::vector<Step>{step});
}

const std::vector<std::u16string>& StatusTexts()
{
    return statusTexts;
}

DWORD ProgressDialogTime()
{
    return progressTime;
}

} // namespace tavrix::testing
