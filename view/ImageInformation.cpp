// What the dialog about the picture shows: its size, depth and palette, and the file that it came
// from. It fills its list once, when it opens.
#include "foundation/BoundedText.h"
#include "foundation/FileStream.h"
#include "foundation/Language.h"
#include "foundation/TextSearch.h"
#include "resources/Ids.h"
#include "shell/MainFrame.h"
#include "view/DialogResource.h"
#include "view/ListViewControl.h"

#include <optional>

namespace
{

constexpr u32 WorkBytes = 4096;
constexpr u32 WorkCapacity = WorkBytes / sizeof(WCHAR); // characters; a path is far shorter
constexpr i32 IconSize = 16;
constexpr i32 PropertyWidth = 88;
constexpr i32 ValueWidth = 135;
constexpr u32 FirstOtherId = 3; // commands below it end the dialog

enum RowIcon : i32 { FileRow = 0, PictureRow = 1 };

/// The dialog while it is open.
struct Information {
    explicit Information(MainFrame& shown) : frame(shown) {}

    MainFrame& frame;
    RasterInfo picture = {};
    std::optional<ListViewControl> list;
};

void WriteNumber(WCHAR* text, u32 number)
{
    // Signed, so that a file beyond 2^31 bytes shows a negative size. That is meant.
    wsprintfW(text, TEXT("%d"), static_cast<int>(number));
}

void WriteWidth(const Information& shown, WCHAR* text)
{
    WriteNumber(text, shown.picture.width);
}

void WriteHeight(const Information& shown, WCHAR* text)
{
    WriteNumber(text, shown.picture.height);
}

void WriteDepth(const Information& shown, WCHAR* text)
{
    WriteNumber(text, shown.picture.depth);
}

void WritePalette(const Information& shown, WCHAR* text)
{
    ColorTable* palette = nullptr;
    (void)shown.frame.image->GetPalette(&palette);
    const u32 colors = palette != nullptr ? palette->Count() : 0;
    if (colors == 0)
        (void)CopyText(text, WorkCapacity, InLanguage(TEXT("off"), TEXT("なし")));
    else
        wsprintfW(text, InLanguage(TEXT("on(%d colors)"), TEXT("あり(%d色)")),
                  static_cast<int>(colors));
}

/// The last "\" of the picture's path; null when it has none.
const WCHAR* LastSeparator(const WCHAR* path)
{
    const WCHAR* separator = nullptr;
    (void)FindLastChar(path, TEXT('\\'), &separator);
    return separator;
}

void WriteName(const Information& shown, WCHAR* text)
{
    const WCHAR* path = shown.frame.openedPath;
    const WCHAR* separator = LastSeparator(path);
    (void)CopyText(text, WorkCapacity, separator != nullptr ? separator + 1 : path);
}

void WriteFolder(const Information& shown, WCHAR* text)
{
    const WCHAR* path = shown.frame.openedPath;
    const WCHAR* separator = LastSeparator(path);
    if (separator == nullptr)
        return;
    (void)CopyText(text, WorkCapacity, path);
    text[separator == path ? 1 : separator - path] = 0;
}

void WriteFileSize(const Information& shown, WCHAR* text)
{
    FileStream file;
    u64 size = 0;
    // For writing too: a file that may not be written shows 0. That is meant.
    if (file.Open(shown.frame.openedPath, 0) >= Done)
        (void)file.GetSize(&size);
    WriteNumber(text, static_cast<u32>(size));
}

struct Row {
    const WCHAR* english;
    const WCHAR* japanese;
    RowIcon icon;
    void (*write)(const Information& shown, WCHAR* text); // into an empty text
};

constexpr Row Rows[] = {
    {TEXT("width"), TEXT("幅"), PictureRow, WriteWidth},
    {TEXT("height"), TEXT("高さ"), PictureRow, WriteHeight},
    {TEXT("bit-depth"), TEXT("ビット深度"), PictureRow, WriteDepth},
    {TEXT("palette"), TEXT("パレット"), PictureRow, WritePalette},
    {TEXT("name"), TEXT("名前"), FileRow, WriteName},
    {TEXT("folder"), TEXT("場所"), FileRow, WriteFolder},
    {TEXT("filesize"), TEXT("サイズ"), FileRow, WriteFileSize},
};

HICON LoadSmallIcon(HINSTANCE instance, u32 id)
{
    return static_cast<HICON>(
        LoadImageW(instance, MAKEINTRESOURCEW(id), IMAGE_ICON, IconSize, IconSize, 0));
}

void SetIcons(ListViewControl& list, HINSTANCE instance)
{
    const HICON icons[] = {LoadSmallIcon(instance, IconFileProperty),
                           LoadSmallIcon(instance, IconFile)};
    (void)list.SetIcons(icons, 2, IconSize, LVSIL_SMALL);
    for (const HICON icon : icons)
        if (icon != nullptr)
            DestroyIcon(icon);
}

void FillList(Information& shown, WCHAR* text)
{
    ListViewControl& list = *shown.list;
    SetIcons(list, shown.frame.instance);
    list.AddColumn(InLanguage(TEXT("property"), TEXT("プロパティ")), PropertyWidth, 0);
    list.AddColumn(InLanguage(TEXT("value"), TEXT("値")), ValueWidth, 1);
    i32 index = 0;
    for (const Row& row : Rows) {
        list.AddItem(InLanguage(row.english, row.japanese), 0, index, row.icon);
        text[0] = 0;
        row.write(shown, text);
        list.SetSubItem(text, 1, index);
        ++index;
    }
}

void Start(HWND dialog, Information& shown)
{
    SetWindowTextW(dialog, InLanguage(TEXT("Image Information"), TEXT("画像情報")));
    shown.list.emplace(GetDlgItem(dialog, ControlInformationList));
    shown.picture.size = sizeof(shown.picture);
    (void)shown.frame.image->GetInfo(&shown.picture);
    void* text = nullptr;
    if (shown.frame.allocator.Alloc(&text, WorkBytes) < Done) {
        MessageBeep(0xFFFFFFFF);
        return;
    }
    FillList(shown, static_cast<WCHAR*>(text));
    shown.frame.allocator.Free(text);
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        Start(dialog, *reinterpret_cast<Information*>(lParam));
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) != 0 && LOWORD(wParam) < FirstOtherId)
            EndDialog(dialog, 0);
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

void MainFrame::ShowImageInformation()
{
    Information shown(*this);
    DialogBoxIndirectParamW(instance, FindDialogResource(instance, DialogImageInformation), window,
                            Procedure, reinterpret_cast<LPARAM>(&shown));
}
