// Save and Virtual Save: the user chooses a name and a format, and the picture is encoded to the
// file or, to learn the size that it would have, to nowhere. One flow, whose differences are data.

#include "foundation/BoundedText.h"
#include "foundation/Language.h"
#include "foundation/TextSearch.h"
#include "shell/Boxes.h"
#include "shell/FileChoice.h"
#include "shell/FilterText.h"
#include "shell/FormatOfName.h"
#include "shell/MainFrame.h"

namespace
{

struct SaveKind {
    const WCHAR* title;
    const WCHAR* japaneseTitle;
    u32 flags;
    i32 (MainFrame::*encode)(const WCHAR* path, i32 plugin, i32 configure);
    bool remembersName;
};

constexpr SaveKind toFile = {TEXT("Save"), TEXT("ファイルに保存"), OFN_OVERWRITEPROMPT,
                             &MainFrame::SaveToFile, true};
// Nothing is written, so that a file that is there needs no question.
constexpr SaveKind toNowhere = {TEXT("Save Virtual"), TEXT("仮想保存"), 0, &MainFrame::SaveVirtual,
                                false};

/// Has the user choose until the name tells a format. NothingDone when there is nothing to save.
i32 ChooseNameAndPlugin(MainFrame& frame, OPENFILENAMEW* record, i32* plugin)
{
    const FormatList& formats = *frame.outputExtensions;
    for (;;) {
        if (frame.fileDialog.Save(record) < Done)
            return NothingDone;
        // Meant: remembered before the name is looked at, also when nothing is saved under it.
        frame.settings->SetUInt(ProgramSection, TEXT("DefSavePlugin"), record->nFilterIndex);
        if (static_cast<i32>(record->nFilterIndex) >= 0) {
            CompleteExtension(formats, record->nFilterIndex, record->lpstrFile, record->nMaxFile);
            return formats.GetPluginIndex(record->nFilterIndex, plugin);
        }
        // An extension that no format has ends the flow without a word; only a name without any
        // is asked for once more. Meant: the point may stand in a folder's name.
        if (FindChar(record->lpstrFile, TEXT('.')) >= Done)
            return FindPluginOfName(formats, record->lpstrFile, plugin);
        ShowError(frame.window,
                  TEXT("Filed to identify file type by the file extension. Input available file "
                       "extension again."),
                  TEXT("使用するプラグインを判別できません。正しい拡張子を入力してください。"));
    }
}

// A picture is not asked for: the menu's entries wait for one, and a key that comes without one
// saves a picture of no size.
void SaveByName(MainFrame& frame, const SaveKind& kind)
{
    HeapAllocator work;
    WCHAR* const name = AllocText(work, NameCapacity);
    WCHAR* const filter = AllocText(work, FilterCapacity);
    if (name == nullptr || filter == nullptr) {
        MessageBeep(0xFFFFFFFF);
        return;
    }
    if (frame.outputExtensions->Count() == 0) {
        MessageBoxW(frame.window,
                    InLanguage(TEXT("No OUTPUT plugin is installed."),
                               TEXT("書き込みプラグインがインストールされていません。")),
                    InLanguage(TEXT("WARNING"), TEXT("警告")), MB_ICONEXCLAMATION);
        return;
    }
    BuildFilterText(filter, FilterCapacity, *frame.outputExtensions);
    // Meant: the name to begin with is that of the picture's source and not the one last saved.
    CopyText(name, NameCapacity, frame.openedPath);
    u32 filterIndex = AllFilesFilter;
    (void)frame.settings->GetUInt(ProgramSection, TEXT("DefSavePlugin"), &filterIndex);
    OPENFILENAMEW record = MakeFileRecord(frame, InLanguage(kind.title, kind.japaneseTitle),
                                          kind.flags, filter, filterIndex, name, NameCapacity);
    i32 plugin = -1;
    if (ChooseNameAndPlugin(frame, &record, &plugin) < Done)
        return;
    // The result does not tell a failed job, whose name is remembered too.
    if ((frame.*kind.encode)(name, plugin, 1) != 0 && kind.remembersName)
        CopyText(frame.savedPath, MainFrame::PathCapacity, name);
}

} // namespace

void MainFrame::Save()
{
    SaveByName(*this, toFile);
}

void MainFrame::SaveVirtualCommand()
{
    SaveByName(*this, toNowhere);
}
