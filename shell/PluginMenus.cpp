// The plugins before the user: their entries in the menus, and the dialog that tells about them.

#include "resources/Ids.h"
#include "shell/MainFrame.h"
#include "view/PluginInformation.h"

namespace
{

struct PluginMenu {
    HMENU MainFrame::*popup;
    PropertyList* MainFrame::*names;
    u32 firstId;
    u32 flags;
    u32 placeholder;
};

// Plugins that reduce colours have no menu, and there are none for the popup of streams, whose
// placeholder stays for ever. The entries of the stretching methods stay gray: nothing chooses one.
constexpr PluginMenu pluginMenus[] = {
    {&MainFrame::openAsMenu, &MainFrame::inputNames, CommandFirstOpenAs, 0, CommandNoFilePlugin},
    {&MainFrame::saveAsMenu, &MainFrame::outputNames, CommandFirstSaveAs, 0, CommandNoFilePlugin},
    {&MainFrame::printMenu, &MainFrame::printNames, CommandFirstPrint, 0, CommandNoFilePlugin},
    {&MainFrame::effectMenu, &MainFrame::effectNames, CommandFirstEffect, 0, CommandNoEffectPlugin},
    {&MainFrame::adjustMenu, &MainFrame::adjustNames, CommandFirstAdjust, 0, CommandNoAdjustPlugin},
    {&MainFrame::methodMenu, &MainFrame::scaleNames, CommandFirstScale, MF_GRAYED,
     CommandNoScalePlugin},
};

/// Gives the number of entries.
u32 AppendNames(HMENU popup, const PropertyList& names, u32 firstId, u32 flags)
{
    for (u32 i = 0; i < PluginMenuLimit; ++i) {
        Variant item = {};
        item.type = VariantWide;
        (void)names.GetAt(i, &item); // past the last name the record is empty
        if (item.name == nullptr || item.type == VariantNone)
            return i;
        AppendMenuW(popup, flags, firstId + i, item.name);
    }
    return PluginMenuLimit;
}

} // namespace

void MainFrame::BuildPluginMenus()
{
    FetchMenus();
    for (const PluginMenu& menu : pluginMenus) {
        const HMENU popup = this->*menu.popup;
        if (AppendNames(popup, *(this->*menu.names), menu.firstId, menu.flags) > 0)
            DeleteMenu(popup, menu.placeholder, MF_BYCOMMAND);
    }
}

void MainFrame::ShowPlugins()
{
    const PluginInformationHosts hosts = {{inputPlugins, outputPlugins, effectPlugins,
                                           adjustPlugins, scalePlugins, subtractPlugins,
                                           printPlugins}};
    // The dialog loads a plugin at every selection. A picture that is handed over meanwhile would
    // load another into the same host.
    const ScopedHold hold(this);
    (void)ShowPluginInformation(window, instance, hosts);
}
