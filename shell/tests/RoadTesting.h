// What the tests of opening, saving and printing share: plugins of any formats, and a person who
// answers every dialog on the road by the ids of its controls.
#pragma once

#include "shell/tests/FlowTesting.h"

#include <commctrl.h>

#include <deque>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>

namespace roadtest
{

using namespace flowtest;

inline constexpr u32 OpenCommand = 40003;
inline constexpr u32 SaveCommand = 40004;
inline constexpr u32 ReloadOpenedCommand = 40007;
inline constexpr u32 VirtualSaveCommand = 40184;
inline constexpr u32 ReloadSavedCommand = 40185;
inline constexpr u32 FirstOpenAs = 41000;
inline constexpr u32 FirstSaveAs = 41100;

/// A plugin whose file's name tells its name and formats (FormatFixture.h).
inline void InstallReader(const std::string& file)
{
    InstallPluginAs(tavrix::testing::InBuild("/tests/shell-fixtures/reading.dll"), "INPUT",
                    file + ".dll");
}
inline void InstallWriter(const std::string& file)
{
    InstallPluginAs(tavrix::testing::InBuild("/tests/shell-fixtures/writing.dll"), "OUTPUT",
                    file + ".dll");
}
inline void RemovePlugin(const std::string& kind, const std::string& file)
{
    EXPECT_TRUE(
        std::filesystem::remove(TestHome() + "/data/tavrix/PLUGINS/" + kind + "/" + file + ".dll"));
}

/// A file in the root of the device that begins with `byte`, which the reader makes the picture of.
inline void MakeSource(const std::string& name, char byte)
{
    std::ofstream(TestHome() + "/" + name) << byte;
}

/// The colour of every pixel of a picture that was read from such a file.
inline u32 ColorOf(char byte)
{
    return static_cast<u32>(static_cast<unsigned char>(byte)) * 0x010101u;
}

inline std::string FileBytes(const std::string& name)
{
    std::ifstream file(TestHome() + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
inline bool FileIsThere(const std::string& name)
{
    return std::filesystem::exists(TestHome() + "/" + name);
}

/// What the writer makes of a part of the test picture.
inline std::string PictureBytes(int left = 0, int top = 0, int right = PictureWidth - 1,
                                int bottom = PictureHeight - 1)
{
    std::string bytes;
    for (int y = top; y <= bottom; ++y)
        for (int x = left; x <= right; ++x) {
            const u32 color = TestColor(x, y);
            for (const int shift : {0, 8, 16})
                bytes.push_back(static_cast<char>(color >> shift & 255));
        }
    return bytes;
}

inline u32 Setting(MainFrame& frame, const WCHAR* key)
{
    u32 value = 12345;
    (void)frame.settings->GetUInt(TEXT("Tavrix"), key, &value);
    return value;
}

inline std::u16string Opened(const MainFrame& frame)
{
    return frame.openedPath;
}
inline std::u16string Saved(const MainFrame& frame)
{
    return frame.savedPath;
}
inline void SetPaths(MainFrame& frame, const std::u16string& opened, const std::u16string& saved)
{
    std::copy_n(opened.c_str(), opened.size() + 1, frame.openedPath);
    std::copy_n(saved.c_str(), saved.size() + 1, frame.savedPath);
}

inline void HandOver(const MainFrame& frame, const std::u16string& path)
{
    std::u16string text = path;
    COPYDATASTRUCT record = {1, static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR)), text.data()};
    EXPECT_EQ(SendMessageW(frame.window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record)), 1);
}

/// What the person does in a file dialog. Without a name or a filter it is left as it stands.
struct Choice {
    std::optional<std::u16string> name;
    std::optional<i32> filter; // the number behind the entry; -1 is the one for all files
    bool cancel = false;
    bool cancelIfItStays = false;
    std::vector<std::u16string> folders = {}; // entered first, one after the other
};
inline Choice Choose(const std::u16string& name, std::optional<i32> filter = {})
{
    return {name, filter, false, false, {}};
}
inline Choice ChooseBelow(const std::vector<std::u16string>& folders, const std::u16string& name,
                          std::optional<i32> filter = {})
{
    return {name, filter, false, false, folders};
}
inline Choice Cancel()
{
    return {{}, {}, true, false, {}};
}
inline Choice Try(const std::u16string& name, std::optional<i32> filter = {})
{
    return {name, filter, false, true, {}};
}

/// A file dialog as it came up.
struct Seen {
    std::u16string title;
    std::u16string name;
    i32 filter;
    std::vector<std::u16string> filters; // of number 0, 1, ...; last the one for all files
    HWND owner;
};

/// Answers whatever comes up, from its making to its end. A file dialog for which no choice is left
/// fails the test and is cancelled. Make it before the run, so that the status texts are noted,
/// too.
class Person
{
public:
    std::deque<Choice> choices;
    std::vector<Seen> seen;
    std::vector<std::u16string> headlines; // of the progress dialogs
    HWND fileDialog = nullptr;             // the last one
    std::function<void()> onFileDialog;    // before the choice
    std::function<void()> onProgress;
    std::function<void(const std::u16string& text)> onBox; // before the answer
    std::map<std::u16string, int> answers; // by text; the others are answered with Yes or OK

    Person()
    {
        OnModal([this](HWND dialog, bool box) {
            if (box)
                AnswerBox(dialog);
            else if (GetDlgItem(dialog, ControlFileFilter) != nullptr)
                ChooseFile(dialog);
            else if (GetDlgItem(dialog, ControlProgressBar) != nullptr) {
                headlines.push_back(ControlText(dialog, ControlHeadline));
                if (onProgress)
                    onProgress();
            } else if (onDialog)
                onDialog(dialog);
            else
                ADD_FAILURE() << "an unexpected dialog";
        });
    }
    ~Person() { OnModal(nullptr); }
    Person(const Person&) = delete;
    Person& operator=(const Person&) = delete;

    std::function<void(HWND dialog)> onDialog; // any other

    /// The boxes since the last time, and forgets them.
    std::vector<BoxCall> TakeBoxes()
    {
        const std::vector<BoxCall> boxes(BoxCalls().begin() + static_cast<std::ptrdiff_t>(firstBox),
                                         BoxCalls().end());
        firstBox = BoxCalls().size();
        return boxes;
    }

    /// From now on `path` cannot be opened any more once the last file dialog has closed.
    void LetVanishBehindTheDialog(const std::u16string& path)
    {
        SetFileFault(
            [this, path](tavrix::platform::FileOperation operation, const WCHAR* asked, DWORD*) {
                return operation == tavrix::platform::FileOperation::Open && path == asked &&
                       fileDialog != nullptr && !IsWindow(fileDialog);
            });
    }

private:
    void AnswerBox(HWND box)
    {
        const std::u16string text = BoxText(box);
        if (onBox)
            onBox(text);
        const auto answer = answers.find(text);
        if (answer != answers.end())
            EndDialog(box, answer->second);
        else
            EndDialog(box, GetDlgItem(box, IDYES) != nullptr ? IDYES : IDOK);
    }

    void ChooseFile(HWND dialog)
    {
        fileDialog = dialog;
        const HWND box = GetDlgItem(dialog, ControlFileFilter);
        Note(dialog, box);
        if (onFileDialog)
            onFileDialog();
        if (choices.empty()) {
            ADD_FAILURE() << "an unexpected file dialog: " << Utf8(seen.back().title.c_str());
            PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            return;
        }
        const Choice choice = choices.front();
        choices.pop_front();
        for (const std::u16string& folder : choice.folders) {
            SetDlgItemTextW(dialog, ControlFileName, (folder + u"\\").c_str());
            SendMessageW(dialog, WM_COMMAND, IDOK, 0);
        }
        if (choice.filter)
            ChooseFilter(dialog, box, *choice.filter);
        if (choice.name)
            SetDlgItemTextW(dialog, ControlFileName, choice.name->c_str());
        if (!choice.cancel)
            PostMessageW(dialog, WM_COMMAND, IDOK, 0);
        if (choice.cancel || choice.cancelIfItStays)
            PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }

    static i32 DataOf(HWND box, WPARAM item)
    {
        return static_cast<i32>(SendMessageW(box, CB_GETITEMDATA, item, 0));
    }

    void Note(HWND dialog, HWND box)
    {
        Seen row = {ControlText(dialog, ControlHeadline),
                    ControlText(dialog, ControlFileName),
                    -2,
                    {},
                    GetParent(dialog)};
        const auto count = static_cast<WPARAM>(SendMessageW(box, CB_GETCOUNT, 0, 0));
        row.filters.resize(count);
        for (WPARAM i = 0; i < count; ++i) {
            WCHAR text[256] = {};
            SendMessageW(box, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(text));
            const i32 data = DataOf(box, i);
            row.filters[data < 0 ? count - 1 : static_cast<size_t>(data)] = text;
        }
        row.filter = DataOf(box, static_cast<WPARAM>(SendMessageW(box, CB_GETCURSEL, 0, 0)));
        seen.push_back(row);
    }

    static void ChooseFilter(HWND dialog, HWND box, i32 filter)
    {
        const auto count = static_cast<WPARAM>(SendMessageW(box, CB_GETCOUNT, 0, 0));
        for (WPARAM i = 0; i < count; ++i)
            if (DataOf(box, i) == filter) {
                SendMessageW(box, CB_SETCURSEL, i, 0);
                SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(ControlFileFilter, CBN_SELCHANGE),
                             reinterpret_cast<LPARAM>(box));
                return;
            }
        ADD_FAILURE() << "no filter " << filter;
    }

    size_t firstBox = BoxCalls().size();
};

/// Exactly one box came, on the main window.
inline void ExpectBox(const MainFrame& frame, Person& person, const std::u16string& text,
                      const std::u16string& caption, UINT flags)
{
    const std::vector<BoxCall> boxes = person.TakeBoxes();
    ASSERT_EQ(boxes.size(), 1u) << Utf8(text.c_str());
    EXPECT_EQ(boxes[0].text, text);
    EXPECT_EQ(boxes[0].caption, caption);
    EXPECT_EQ(boxes[0].flags, flags);
    EXPECT_EQ(boxes[0].owner, frame.window);
}

/// A picture that a reader made of a file that begins with `byte`.
inline void ExpectRead(MainFrame& frame, char byte)
{
    EXPECT_EQ(InfoOf(*frame.image).width, 30u);
    EXPECT_EQ(InfoOf(*frame.image).height, 20u);
    EXPECT_EQ(PixelOf(*frame.image, 7, 7), ColorOf(byte));
}

} // namespace roadtest
