// What happens between the window's creation and its first message: surfaces, command bar, plugins,
// settings, and the file named on the command line, in this order.

#include "foundation/Language.h"
#include "plugin/PluginScan.h"
#include "resources/Ids.h"
#include "shell/Boxes.h"
#include "shell/MainFrame.h"

#include <handheld.h>

namespace
{

constexpr u32 DefaultRadius = 5;
constexpr u32 LargestRadius = 100; // that the settings may ask for

} // namespace

LRESULT MainFrame::OnCreate(const CREATESTRUCTW* record)
{
    instance = record->hInstance;
    smallIcon = static_cast<HICON>(
        LoadImageW(instance, MAKEINTRESOURCEW(IconApplication), IMAGE_ICON, 16, 16, 0));
    SendMessageW(window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(smallIcon));

    const u32 width = static_cast<u32>(screenWidth);
    const u32 height = static_cast<u32>(screenHeight);
    if (surface.Create(width, height, 24) < 0)
        (void)surface.Create(width, height, 2);
    if (viewRaster.Create(width, height, 24, nullptr, nullptr) < 0) {
        MessageBoxW(nullptr, TEXT("failed to create dibitmap for screen."), TEXT("Fatal Error"),
                    MB_ICONHAND);
        return -1;
    }
    viewRaster.FillAll(255);
    RedrawView();

    CreateCommandBar();
    ScanPlugins();
    BuildPluginMenus();
    ReadColors();
    ReadToolWindows();
    CreateToolWindows();
    FetchMenus();
    UpdateWindowChecks();
    ReadBrush();
    LoadSprites();
    TellToolbox();
    UpdateClipMenus();
    ReadZoom();
    ReadDither();
    ReadScreenMode();
    // Created anew at the depth that the settings ask for. A failure leaves the one from above.
    (void)CreateSurface();
    UpdateScreenChecks();
    TakeTaskBar();
    OpenCommandLine();
    ReadUndo();
    SetTimer(window, ClipboardTimer, ClipboardPollMilliseconds, nullptr);
    return 0;
}

void MainFrame::CreateCommandBar()
{
    commandBar = CommandBar_Create(instance, window, ControlCommandBar);
    CommandBar_InsertMenubar(commandBar, instance, IsJapanese() ? MenuJapanese : MenuEnglish, 0);
    CommandBar_AddAdornments(commandBar, 0, 0);
    const i32 height = CommandBar_Height(commandBar);
    clientOriginX = 0;
    clientOriginY = height;
    viewHeight -= height;
}

void MainFrame::ScanPlugins()
{
    const PluginKindEntry kinds[] = {
        {inputPlugins, inputExtensions, inputNames}, {outputPlugins, outputExtensions, outputNames},
        {printPlugins, nullptr, printNames},         {effectPlugins, nullptr, effectNames},
        {adjustPlugins, nullptr, adjustNames},       {scalePlugins, nullptr, scaleNames},
        {subtractPlugins, nullptr, subtractNames},
    };
    if (ScanPluginKinds(kinds, sizeof kinds / sizeof kinds[0], &allocator) < 0)
        ShowError(window, TEXT("Failed to allocate memory to initialize plugins."),
                  TEXT("プラグインの初期化に必要なメモリが確保できませんでした。"));
}

void MainFrame::ReadColors()
{
    (void)settings->GetUInt(ProgramSection, TEXT("FaceColor"), &faceColor);
    (void)settings->GetUInt(ProgramSection, TEXT("BackgroundColor"), &backgroundColor);
}

void MainFrame::ReadToolWindows()
{
    (void)settings->GetUInt(ProgramSection, TEXT("ShowToolbox"), &showToolbox);
    (void)settings->GetUInt(ProgramSection, TEXT("ShowColorbox"), &showColorbox);
}

void MainFrame::ReadBrush()
{
    u32 radius = DefaultRadius;
    u32 strength = 256;
    u32 diffusion = 1;
    (void)settings->GetUInt(ProgramSection, TEXT("BrushRadius"), &radius);
    (void)settings->GetUInt(ProgramSection, TEXT("BrushStrength"), &strength);
    (void)settings->GetUInt(ProgramSection, TEXT("BrushDiffusion"), &diffusion);
    if (radius > LargestRadius)
        radius = DefaultRadius;
    (void)brush->Create(radius, strength, diffusion);
}

// Without them the scroll tool works all the same, so that no failure is told.
void MainFrame::LoadSprites()
{
    constexpr u32 width = 21;
    constexpr u32 height = 48; // the two markers one below the other
    if (sprites->Create(width, height, 32, nullptr, nullptr) < Done)
        return;
    HRSRC found = FindResourceW(instance, MAKEINTRESOURCEW(BinaryMarkers), TEXT("binary"));
    if (found == nullptr || SizeofResource(instance, found) < width * height * 4)
        return;
    const void* pixels = LockResource(LoadResource(instance, found));
    if (pixels != nullptr)
        (void)sprites->LoadRaw(pixels);
}

void MainFrame::ReadZoom()
{
    u32 adjusted = 0;
    (void)settings->GetUInt(ProgramSection, TEXT("WindowAdjusted"), &adjusted);
    if (adjusted != 0)
        zoomCommand = CommandZoomWindow;
    UpdateZoomChecks();
}

void MainFrame::ReadDither()
{
    (void)settings->GetUInt(ProgramSection, TEXT("DitherMode"), &dither);
    UpdateDitherCheck();
}

void MainFrame::ReadScreenMode()
{
    (void)settings->GetUInt(ProgramSection, TEXT("ScreenMode"), &monoScreen);
}

void MainFrame::TakeTaskBar()
{
    RECT bar = {};
    if (!GetWindowRect(FindWindowW(TEXT("HHTaskBar"), nullptr), &bar))
        bar = {};
    viewHeight -= bar.bottom - bar.top;
    viewHeight -= 1;
}

void MainFrame::OpenCommandLine()
{
    const WCHAR* path = nullptr;
    if (settings->GetText(ProgramSection, TEXT("LastCommandLine"), &path) >= 1)
        OpenFile(path);
}

void MainFrame::ReadUndo()
{
    u32 enable = 0;
    if (settings->GetUInt(ProgramSection, TEXT("EnableUndo"), &enable) >= 1)
        undoEnabled = enable != 0 ? 1 : 0;
}
