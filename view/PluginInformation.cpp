#include "view/PluginInformation.h"

#include "foundation/Language.h"
#include "resources/Ids.h"
#include "view/DialogResource.h"
#include "view/ListViewControl.h"

#include <commctrl.h>

#include <optional>
#include <string.h>

namespace
{

constexpr u32 PluginLimit = 1024;  // of one kind
constexpr u32 TextCapacity = 1024; // characters, as the plugins are told
constexpr u32 TextBytes = 4096;    // more than they are told, for one that writes past the end
constexpr i32 IconSize = 16;
constexpr i32 DetailRows = 4;
constexpr UINT GetInstanceMessage = WM_APP;

enum TreeImage : i32 { GroupImage = 0, PluginImage = 1 };

// What an item of the tree stands for is one word of 32 bits: the kind above and the plugin's index
// below; NoPlugin above for a group, above and below for the item that stands for no plugin.
constexpr u32 NoPlugin = 0xFFFF;

constexpr u32 ItemWord(u32 high, u32 low)
{
    return high << 16 | low;
}

/// The dialog while it is open.
struct Information {
    explicit Information(const PluginInformationHosts& shown) : hosts(shown) {}
    ~Information()
    {
        if (icons != nullptr)
            ImageList_Destroy(icons);
    }
    Information(const Information&) = delete;
    Information& operator=(const Information&) = delete;

    /// Emptied first: a plugin that answers without writing must not repeat the answer before.
    i32 Ask(PluginModule& module, u32 index)
    {
        memset(text, 0, sizeof text);
        return module.Info(index, text, TextCapacity);
    }

    const PluginInformationHosts& hosts;
    HWND dialog = nullptr;
    HWND tree = nullptr;
    HIMAGELIST icons = nullptr;
    std::optional<ListViewControl> list;
    WCHAR text[TextBytes / sizeof(WCHAR)];
};

Information* InformationOf(HWND dialog)
{
    return reinterpret_cast<Information*>(GetWindowLongPtrW(dialog, DWLP_USER));
}

void SetTexts(HWND dialog)
{
    SetDlgItemTextW(dialog, ControlHeadline,
                    InLanguage(TEXT("Plugin Information"), TEXT("プラグイン情報")));
    SetDlgItemTextW(dialog, ControlPluginDescription,
                    InLanguage(TEXT("Description of selected plugin is displayed here."),
                               TEXT("こちらに選択したプラグインの説明が表示されます。")));
}

void AddIcon(HIMAGELIST icons, HINSTANCE instance, u32 id)
{
    const auto icon = static_cast<HICON>(
        LoadImageW(instance, MAKEINTRESOURCEW(id), IMAGE_ICON, IconSize, IconSize, 0));
    ImageList_ReplaceIcon(icons, -1, icon);
    if (icon != nullptr)
        DestroyIcon(icon);
}

void SetTreeIcons(Information& information)
{
    const auto instance = reinterpret_cast<HINSTANCE>(
        SendMessageW(GetParent(information.dialog), GetInstanceMessage, 0, 0));
    information.icons = ImageList_Create(IconSize, IconSize, ILC_MASK, 2, 0);
    AddIcon(information.icons, instance, IconFolder);
    AddIcon(information.icons, instance, IconPlugin);
    SendMessageW(information.tree, TVM_SETIMAGELIST, TVSIL_NORMAL,
                 reinterpret_cast<LPARAM>(information.icons));
}

HTREEITEM AddItem(HWND tree, HTREEITEM parent, const WCHAR* text, i32 image, u32 word)
{
    TVINSERTSTRUCTW insert = {};
    insert.hParent = parent;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM;
    insert.item.pszText = const_cast<WCHAR*>(text);
    insert.item.iImage = image;
    insert.item.iSelectedImage = image;
    insert.item.lParam = static_cast<LPARAM>(static_cast<i32>(word));
    return reinterpret_cast<HTREEITEM>(
        SendMessageW(tree, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
}

void AddGroup(Information& information, u32 kind)
{
    PluginModule& module = *information.hosts.hosts[kind];
    const HTREEITEM group =
        AddItem(information.tree, TVI_ROOT, module.Kind(), GroupImage, ItemWord(NoPlugin, kind));
    for (u32 i = 0; i < PluginLimit; ++i) {
        // A library that is gone ends the group, and the plugins behind it are not listed. That is
        // meant: an index past the last plugin looks the same.
        if (module.LoadByIndex(i, 0) < 0) {
            if (i == 0)
                AddItem(information.tree, group, TEXT("NOT FOUND..."), PluginImage,
                        ItemWord(NoPlugin, NoPlugin));
            return;
        }
        if (information.Ask(module, PluginInfoName) > 0)
            AddItem(information.tree, group, information.text, PluginImage, ItemWord(kind, i));
        (void)module.Unload();
    }
}

void SetDetailRows(ListViewControl& list)
{
    const WCHAR* const titles[DetailRows] = {TEXT("Name"), TEXT("Version"), TEXT("Copyright"),
                                             TEXT("Date")};
    list.AddColumn(TEXT(""), 50, 0);
    list.AddColumn(TEXT(""), 180, 1);
    for (i32 row = 0; row < DetailRows; ++row)
        list.AddItem(titles[row], 0, row, 0);
}

void Start(HWND dialog, Information& information)
{
    SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&information));
    information.dialog = dialog;
    information.tree = GetDlgItem(dialog, ControlPluginTree);
    SetTexts(dialog);
    SetTreeIcons(information);
    for (u32 kind = 0; kind < PluginInformationHosts::Count; ++kind)
        AddGroup(information, kind);
    information.list.emplace(GetDlgItem(dialog, ControlPluginList));
    SetDetailRows(*information.list);
}

/// What a plugin does not answer keeps the text of the plugin selected before. That is meant, in
/// the rows as in the description.
void ShowDetails(Information& information, PluginModule& module, u32 index)
{
    // Not looked at: a library that does not load answers no question below.
    (void)module.LoadByIndex(index, 0);
    i32 result = information.Ask(module, PluginInfoName);
    for (i32 row = 0; row < DetailRows; ++row) {
        if (result > 0)
            information.list->SetSubItem(information.text, 1, row);
        result = information.Ask(module, PluginInfoVersion + static_cast<u32>(row));
    }
    if (result > 0)
        SetDlgItemTextW(information.dialog, ControlPluginDescription, information.text);
    (void)module.Unload();
}

void OnSelection(Information& information)
{
    TVITEMW item = {};
    item.mask = TVIF_PARAM | TVIF_CHILDREN;
    item.hItem =
        reinterpret_cast<HTREEITEM>(SendMessageW(information.tree, TVM_GETNEXTITEM, TVGN_CARET, 0));
    if (!SendMessageW(information.tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)))
        return;
    const u32 word = static_cast<u32>(item.lParam);
    const u32 kind = word >> 16;
    if (item.cChildren != 0 || kind >= PluginInformationHosts::Count)
        return;
    ShowDetails(information, *information.hosts.hosts[kind], word & 0xFFFF);
}

void OnNotify(HWND dialog, const NMHDR& header)
{
    Information* information = InformationOf(dialog);
    // While the tree is filled there is no list yet.
    if (information != nullptr && information->list && header.code == TVN_SELCHANGEDW)
        OnSelection(*information);
}

void OnCommand(HWND dialog, u32 id)
{
    if (id != 0 && id <= ControlPluginClose)
        EndDialog(dialog, 0);
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        Start(dialog, *reinterpret_cast<Information*>(lParam));
        return TRUE;
    case WM_NOTIFY:
        OnNotify(dialog, *reinterpret_cast<const NMHDR*>(lParam));
        return TRUE;
    case WM_COMMAND:
        OnCommand(dialog, LOWORD(wParam));
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

i32 ShowPluginInformation(HWND owner, HINSTANCE instance, const PluginInformationHosts& hosts)
{
    Information information(hosts);
    const INT_PTR result =
        DialogBoxIndirectParamW(instance, FindDialogResource(instance, DialogPluginInformation),
                                owner, Procedure, reinterpret_cast<LPARAM>(&information));
    return result == 0 ? NothingDone : Failed;
}
