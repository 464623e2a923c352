#include "view/FileDialog.h"

#include "foundation/BoundedText.h"
#include "foundation/Language.h"
#include "foundation/TextSearch.h"
#include "resources/Ids.h"
#include "view/DialogResource.h"

#include <memory>
#include <new>

namespace
{

constexpr i32 TitleHeight = 13; // pixels
constexpr i32 IconSize = 16;
constexpr u32 PathCapacity = 4096; // the folder and as much again for the name field
constexpr u32 QuestionFlags = MB_YESNO | MB_ICONQUESTION;

HFONT MakeTitleFont()
{
    LOGFONTW wanted = {};
    wanted.lfHeight = -TitleHeight; // of the letters, not of the line
    wanted.lfWeight = FW_BOLD;
    wanted.lfCharSet = SHIFTJIS_CHARSET;
    return CreateFontIndirectW(&wanted);
}

bool IsExistingFile(const WCHAR* path)
{
    const DWORD attributes = GetFileAttributesW(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

/// The last part of a path.
const WCHAR* NameOf(const WCHAR* path)
{
    const WCHAR* separator = nullptr;
    return FindLastChar(path, TEXT('\\'), &separator) > 0 ? separator + 1 : path;
}

} // namespace

FileDialog::FileDialog() : font(MakeTitleFont()) {}

FileDialog::~FileDialog()
{
    DestroyIcons();
    if (font != nullptr)
        DeleteObject(font);
}

i32 FileDialog::Open(OPENFILENAMEW* record)
{
    return record != nullptr ? Run(record, *record) : BadArgument;
}

i32 FileDialog::Save(OPENFILENAMEW* record)
{
    // Meant as it stands: saving asks the record of the use before, which has no file in a run's
    // first use. The name itself is the new record's.
    return record != nullptr ? Run(record, kept) : BadArgument;
}

i32 FileDialog::Run(OPENFILENAMEW* record, const OPENFILENAMEW& named)
{
    if (record->lpstrInitialDir != nullptr)
        (void)SetFolder(record->lpstrInitialDir);
    if (currentFolder[0] == 0)
        (void)SetFolder(TEXT("\\"));
    const bool hasName = named.lpstrFile != nullptr && record->lpstrFile != nullptr;
    initialName = hasName ? NameOf(record->lpstrFile) : nullptr;
    kept = *record;
    const INT_PTR result =
        DialogBoxIndirectParamW(kept.hInstance, FindDialogResource(kept.hInstance, DialogFile),
                                kept.hwndOwner, Procedure, reinterpret_cast<LPARAM>(this));
    list.reset();
    dialog = nullptr;
    initialName = nullptr;
    *record = kept;
    return result == Done ? Done : NothingDone;
}

void FileDialog::Start(HWND window)
{
    SetWindowLongPtrW(window, DWLP_USER, reinterpret_cast<LONG_PTR>(this));
    dialog = window;
    list.emplace(GetDlgItem(dialog, ControlFileList));
    LoadIcons();
    list->AddColumn(InLanguage(TEXT("file"), TEXT("名前")), 150, 0);
    list->AddColumn(InLanguage(TEXT("size"), TEXT("ｻｲｽﾞ")), 50, 1);
    FillFilters();
    if (initialName != nullptr)
        SetDlgItemTextW(dialog, ControlFileName, initialName);
    Refresh();
    if (kept.lpstrTitle != nullptr)
        SetDlgItemTextW(dialog, ControlHeadline, kept.lpstrTitle);
    SendDlgItemMessageW(dialog, ControlHeadline, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    SetFocus(list->Window());
}

void FileDialog::LoadIcons()
{
    DestroyIcons(); // those of a use that was given up
    const u32 ids[IconCount] = {IconParentFolder, IconFolder, IconFile};
    for (u32 i = 0; i < IconCount; ++i)
        icons[i] = static_cast<HICON>(LoadImageW(kept.hInstance, MAKEINTRESOURCEW(ids[i]),
                                                 IMAGE_ICON, IconSize, IconSize, 0));
    (void)list->SetIcons(icons, IconCount, IconSize, LVSIL_SMALL);
}

void FileDialog::DestroyIcons()
{
    for (HICON& icon : icons) {
        if (icon != nullptr)
            DestroyIcon(icon);
        icon = nullptr;
    }
}

void FileDialog::FillFilters()
{
    const HWND box = GetDlgItem(dialog, ControlFileFilter);
    const auto add = [box](UINT message, const WCHAR* text, i32 number) {
        const LRESULT at = SendMessageW(box, message, 0, reinterpret_cast<LPARAM>(text));
        SendMessageW(box, CB_SETITEMDATA, static_cast<WPARAM>(at), static_cast<LPARAM>(number));
        return at;
    };
    // Each in front of those before it: the box shows them in reverse, and their numbers tell them.
    FilterPairs pairs(kept.lpstrFilter);
    FilterPair pair;
    for (i32 number = 0; pairs.Next(&pair); ++number)
        (void)add(CB_INSERTSTRING, pair.description, number);
    const LRESULT all =
        add(CB_ADDSTRING, InLanguage(TEXT("All image files"), TEXT("全ての画像ﾌｧｲﾙ")), -1);
    SendMessageW(box, CB_SETCURSEL, static_cast<WPARAM>(all), 0);

    const auto wanted = static_cast<i32>(kept.nFilterIndex);
    for (LRESULT i = 0; i <= all; ++i) {
        const auto index = static_cast<WPARAM>(i);
        if (static_cast<i32>(SendMessageW(box, CB_GETITEMDATA, index, 0)) == wanted)
            SendMessageW(box, CB_SETCURSEL, index, 0);
    }
}

void FileDialog::OnCommand(u32 id, u32 code)
{
    if (id == IDOK)
        OnOk();
    else if (id == IDCANCEL)
        // Meant as it stands: the filter is not told and the icons stay. They go with the next use
        // or with this object, so that there are never more than three.
        EndDialog(dialog, NothingDone);
    else if (id == ControlFileFilter && code == CBN_SELCHANGE)
        Refresh();
}

void FileDialog::OnOk()
{
    const std::unique_ptr<WCHAR[]> path(new (std::nothrow) WCHAR[PathCapacity]);
    if (path == nullptr)
        return;
    i32 row = -1;
    i32 icon = FileIcon;
    if (list->FindNext(&row, 0, path.get(), PathCapacity, &icon) > 0 && icon != FileIcon) {
        Follow(icon, path.get());
        return;
    }
    ApplyExtension(ForeignExtension::Keep);

    u32 folderLength = 0;
    (void)TextLength(currentFolder, &folderLength);
    (void)CopyText(path.get(), PathCapacity, currentFolder);
    WCHAR* const name = path.get() + folderLength;
    const u32 room = PathCapacity - folderLength;
    const HWND field = GetDlgItem(dialog, ControlFileName);
    const auto nameLength = static_cast<u32>(GetWindowTextLengthW(field));
    if (nameLength == 0 || nameLength >= room)
        return;
    GetWindowTextW(field, name, static_cast<int>(room));
    if (name[nameLength - 1] == TEXT('\\')) {
        if (Descend(name) > 0) {
            SetWindowTextW(field, TEXT(""));
            Refresh();
        }
        return;
    }
    // A folder that fills the caller's buffer by itself leaves nothing that could be handed over.
    if (kept.lpstrFile != nullptr && folderLength + 1 >= kept.nMaxFile)
        return;
    if (!MayTake(path.get()))
        return;
    (void)CopyText(kept.lpstrFile, kept.nMaxFile, path.get());
    kept.nFilterIndex = static_cast<DWORD>(ChosenFilter());
    DestroyIcons();
    EndDialog(dialog, Done);
}

bool FileDialog::MayTake(const WCHAR* path) const
{
    const bool isThere = IsExistingFile(path);
    if ((kept.Flags & OFN_FILEMUSTEXIST) != 0 && !isThere)
        return false;
    if ((kept.Flags & OFN_OVERWRITEPROMPT) == 0 || !isThere)
        return true;
    return MessageBoxW(dialog,
                       InLanguage(TEXT("This file already exists. Are you sure to overwrite it?"),
                                  TEXT("指定されたファイルは既に存在します。上書きしますか？")),
                       InLanguage(TEXT("Question"), TEXT("確認")), QuestionFlags) == IDYES;
}

void FileDialog::OnNotify(const NMHDR& header)
{
    if (header.idFrom != ControlFileList || !list)
        return;
    WCHAR name[MAX_PATH];
    switch (header.code) {
    case LVN_ITEMCHANGED: {
        const auto& change = reinterpret_cast<const NMLISTVIEW&>(header);
        // An item that loses the selection names nothing: a name that was typed since stays.
        if ((change.uNewState & LVIS_SELECTED) != 0)
            (void)ReadItem(change.iItem, name);
        break;
    }
    case NM_DBLCLK: {
        const i32 icon = ReadItem(reinterpret_cast<const NMITEMACTIVATE&>(header).iItem, name);
        if (icon == FileIcon)
            OnOk();
        else
            Follow(icon, name);
        break;
    }
    case LVN_COLUMNCLICK:
        if (reinterpret_cast<const NMLISTVIEW&>(header).iSubItem == 0) {
            sortDescending = !sortDescending;
            Sort();
        }
        break;
    default:
        break;
    }
}

i32 FileDialog::ReadItem(i32 row, WCHAR (&name)[MAX_PATH])
{
    i32 icon = -1;
    name[0] = 0;
    if (list->GetItemText(row, 0, name, MAX_PATH, &icon) > 0 && icon == FileIcon)
        SetDlgItemTextW(dialog, ControlFileName, name);
    return icon;
}

INT_PTR CALLBACK FileDialog::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        reinterpret_cast<FileDialog*>(lParam)->Start(window);
        return FALSE; // the focus is where it is to be
    }
    auto* const shown = reinterpret_cast<FileDialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (shown == nullptr)
        return FALSE;
    switch (message) {
    case WM_COMMAND:
        shown->OnCommand(LOWORD(wParam), HIWORD(wParam));
        return TRUE;
    case WM_NOTIFY:
        shown->OnNotify(*reinterpret_cast<const NMHDR*>(lParam));
        return TRUE;
    default:
        return FALSE;
    }
}
