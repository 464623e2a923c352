#include "shell/MainFrame.h"

#include "resources/Ids.h"

#include <new>
#include <stdlib.h>

MainFrame* mainFrame = nullptr;

namespace
{

WCHAR* MakePathBuffer()
{
    auto* path = static_cast<WCHAR*>(malloc(MainFrame::PathCapacity * sizeof(WCHAR)));
    if (path != nullptr)
        path[0] = 0;
    return path;
}

} // namespace

MainFrame::MainFrame()
    : viewRaster(&allocator), screenWidth(GetSystemMetrics(SM_CXSCREEN)),
      screenHeight(GetSystemMetrics(SM_CYSCREEN)), viewWidth(screenWidth), viewHeight(screenHeight),
      zoomCommand(CommandZoom100)
{
    openedPath = MakePathBuffer();
    savedPath = MakePathBuffer();
    image = new (std::nothrow) Raster(&allocator);
    sprites = new (std::nothrow) Raster(&allocator);
    brush = new (std::nothrow) Brush(&allocator);

    inputPlugins = new (std::nothrow) InputPlugin(&allocator);
    outputPlugins = new (std::nothrow) OutputPlugin(&allocator);
    printPlugins = new (std::nothrow) PrintPlugin(&allocator);
    effectPlugins = new (std::nothrow) EffectPlugin(&allocator);
    adjustPlugins = new (std::nothrow) AdjustPlugin(&allocator);
    scalePlugins = new (std::nothrow) ScalePlugin(&allocator);
    subtractPlugins = new (std::nothrow) SubtractPlugin(&allocator);

    inputExtensions = new (std::nothrow) FormatList(&allocator);
    outputExtensions = new (std::nothrow) FormatList(&allocator);

    inputNames = new (std::nothrow) PropertyList(&allocator);
    outputNames = new (std::nothrow) PropertyList(&allocator);
    effectNames = new (std::nothrow) PropertyList(&allocator);
    adjustNames = new (std::nothrow) PropertyList(&allocator);
    scaleNames = new (std::nothrow) PropertyList(&allocator);
    subtractNames = new (std::nothrow) PropertyList(&allocator);
    printNames = new (std::nothrow) PropertyList(&allocator);

    settings = new (std::nothrow) SettingsFile(&allocator);
    mainFrame = this;
}

MainFrame::~MainFrame()
{
    // They point into this record and must not outlive it.
    DestroyWindow(colorbox);
    DestroyWindow(toolbox);
    // The settings reach the disk here: the store saves itself as it closes.
    delete settings;
    free(openedPath);
    free(savedPath);
    delete image;
    delete sprites;
    delete brush;

    delete inputPlugins;
    delete outputPlugins;
    delete printPlugins;
    delete effectPlugins;
    delete adjustPlugins;
    delete scalePlugins;
    delete subtractPlugins;

    delete inputExtensions;
    delete outputExtensions;

    delete inputNames;
    delete outputNames;
    delete effectNames;
    delete adjustNames;
    delete scaleNames;
    delete subtractNames;
    delete printNames;

    // The clip, the work copy and their allocators go with the process.
    mainFrame = nullptr;
}

bool MainFrame::IsWhole() const
{
    const void* const parts[] = {
        openedPath,   savedPath,       image,           sprites,          brush,
        inputPlugins, outputPlugins,   printPlugins,    effectPlugins,    adjustPlugins,
        scalePlugins, subtractPlugins, inputExtensions, outputExtensions, inputNames,
        outputNames,  effectNames,     adjustNames,     scaleNames,       subtractNames,
        printNames,   settings,
    };
    for (const void* part : parts)
        if (part == nullptr)
            return false;
    return true;
}

void MainFrame::GetCreateParams(CREATESTRUCTW* record)
{
    *record = {};
    record->lpszClass = TEXT("Tavrix");
    record->lpszName = TEXT("Tavrix");
    record->style = WS_VISIBLE;
    record->x = CW_USEDEFAULT;
    record->y = CW_USEDEFAULT;
    record->cx = CW_USEDEFAULT;
    record->cy = CW_USEDEFAULT;
}
