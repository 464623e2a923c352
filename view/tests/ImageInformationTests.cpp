// The dialog about the picture over the real controls: every row in both languages, where the words
// and numbers come from, and the ways out.

#include "view/tests/ColumnTesting.h"
#include "view/tests/DialogTesting.h"

#include "foundation/BoundedText.h"
#include "platform/testing/core/TestHome.h"
#include "platform/testing/Faults.h"

#include "platform/testing/core/TestPaths.h"

#include <filesystem>
#include <fstream>
#include <unistd.h>

using namespace dialogtest;

namespace
{

constexpr int List = 1006;

LRESULT Ask(const Dialog& dialog, UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
{
    return SendMessageW(dialog.Control(List), message, wParam, lParam);
}

LVITEMW Cell(const Dialog& dialog, int row, int column, WCHAR* text, int capacity)
{
    LVITEMW item = {};
    item.mask = LVIF_TEXT | LVIF_IMAGE;
    item.iItem = row;
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = capacity;
    EXPECT_NE(Ask(dialog, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)), 0)
        << row << ", " << column;
    return item;
}

/// The texts of a column, from the top.
Texts Column(const Dialog& dialog, int column)
{
    Texts texts;
    const LRESULT count = Ask(dialog, LVM_GETITEMCOUNT);
    for (int row = 0; row < count; ++row) {
        WCHAR text[500] = {};
        (void)Cell(dialog, row, column, text, 500);
        texts.emplace_back(text);
    }
    return texts;
}

class ImageInformation : public ::testing::Test
{
protected:
    ImageInformation() { SetLanguage(1033); }

    int Show(const std::function<void(const Dialog&)>& script)
    {
        return Open([this] { frame.ShowImageInformation(); }, script);
    }
    /// The second column, for a document of that path.
    Texts Values(const Text& path)
    {
        EXPECT_LT(path.size(), size_t{MainFrame::PathCapacity});
        CopyText(frame.openedPath, MainFrame::PathCapacity, path.c_str());
        Texts values;
        Show([&](const Dialog& dialog) {
            values = Column(dialog, 1);
            dialog.Close();
        });
        return values;
    }
    Text SizeOf(const std::string& hostFile) { return Values(DevicePath(hostFile)).at(6); }

    Scope scope;
    PenFrame frame;
};

/// A file of that many bytes, most of which lie nowhere.
std::string SparseFile(u64 size)
{
    const std::string path = TestHome() + "/sparse.bin";
    std::ofstream(path).close();
    std::filesystem::resize_file(path, size);
    return path;
}

} // namespace

TEST_F(ImageInformation, SevenRowsTellOfThePictureAndItsFile)
{
    frame.Show(60, 50);
    const std::string file = TestHome() + "/a picture.png";
    std::ofstream(file) << std::string(12345, 'x');
    const Text path = DevicePath(file);
    const Text folder = path.substr(0, path.size() - 14);
    EXPECT_EQ(Values(path),
              (Texts{u"60", u"50", u"24", u"off", u"a picture.png", folder, u"12345"}));
    EXPECT_EQ(Show([](const Dialog& dialog) {
                  EXPECT_EQ(dialog.Caption(), u"Image Information");
                  EXPECT_EQ(Column(dialog, 0), (Texts{u"width", u"height", u"bit-depth", u"palette",
                                                      u"name", u"folder", u"filesize"}));
                  ExpectColumns(dialog.Control(List), {{u"property", 88}, {u"value", 135}});
                  EXPECT_EQ(ControlText(dialog.window, IDOK), u"OK");
                  dialog.Close();
              }),
              1);
}

TEST_F(ImageInformation, TheRowsAreJapaneseOnAJapaneseDevice)
{
    SetLanguage(1041);
    frame.Show(60, 50);
    EXPECT_EQ(Values(u"\\写真\\犬.png"),
              (Texts{u"60", u"50", u"24", u"なし", u"犬.png", u"\\写真", u"0"}));
    Show([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Caption(), u"画像情報");
        EXPECT_EQ(Column(dialog, 0),
                  (Texts{u"幅", u"高さ", u"ビット深度", u"パレット", u"名前", u"場所", u"サイズ"}));
        ExpectColumns(dialog.Control(List), {{u"プロパティ", 88}, {u"値", 135}});
        dialog.Close();
    });
}

TEST_F(ImageInformation, AnEmptyDocumentIsAllZeros)
{
    EXPECT_EQ(Values(u""), (Texts{u"0", u"0", u"0", u"off", u"", u"", u"0"}));
}

TEST_F(ImageInformation, NameAndFolderArePartedAtTheLastSeparator)
{
    const struct {
        Text path;
        Text name;
        Text folder;
    } rows[] = {
        {u"\\one.png", u"one.png", u"\\"},
        {u"\\a\\one.png", u"one.png", u"\\a"},
        {u"\\a b\\c\\one two.png", u"one two.png", u"\\a b\\c"},
        {u"one.png", u"one.png", u""},
        {u"http://host/one.png", u"http://host/one.png", u""},
        {u"\\a\\", u"", u"\\a"},
        {u"\\" + Text(200, u'f') + u"\\100%d.png", u"100%d.png", u"\\" + Text(200, u'f')},
        {u"\\" + Text(258, u'n'), Text(258, u'n'), u"\\"},
    };
    for (const auto& row : rows) {
        const Texts values = Values(row.path);
        ASSERT_EQ(values.size(), 7u);
        EXPECT_EQ(values[4], row.name) << Utf8(row.path.c_str());
        EXPECT_EQ(values[5], row.folder) << Utf8(row.path.c_str());
        EXPECT_EQ(values[6], u"0");
    }
}

TEST_F(ImageInformation, APaletteIsCounted)
{
    ASSERT_EQ(frame.image->Create(4, 3, 8, nullptr, nullptr), Done);
    ColorTable* palette = nullptr;
    ASSERT_EQ(frame.image->GetPalette(&palette), Done);
    ASSERT_EQ(palette->Create(256), Done);
    for (u32 i = 0; i < 256; ++i)
        ASSERT_EQ(palette->Add(i, 255 - i, 7, 0), Done);
    EXPECT_EQ(Values(u""), (Texts{u"4", u"3", u"8", u"on(256 colors)", u"", u"", u"0"}));
    SetLanguage(1041);
    EXPECT_EQ(Values(u"").at(3), u"あり(256色)");
    ASSERT_EQ(palette->Create(16), Done);
    ASSERT_EQ(palette->Add(1, 2, 3, 0), Done);
    EXPECT_EQ(Values(u"").at(3), u"あり(1色)") << "the entries in use, not the room for them";
}

// The size is a signed number of 32 bits.
TEST_F(ImageInformation, LargeFilesShowTheirSizeCutTo32SignedBits)
{
    EXPECT_EQ(SizeOf(SparseFile(1234567890)), u"1234567890");
    EXPECT_EQ(SizeOf(SparseFile(0x7FFFFFFFull)), u"2147483647");
    EXPECT_EQ(SizeOf(SparseFile(0x80000000ull)), u"-2147483648");
    EXPECT_EQ(SizeOf(SparseFile(3000000000ull)), u"-1294967296");
    EXPECT_EQ(SizeOf(SparseFile(0x140000000ull)), u"1073741824");
}

TEST_F(ImageInformation, AFileThatCannotBeOpenedForWritingHasNoSize)
{
    // A program that runs is closed to everyone's writing, whoever runs this test.
    EXPECT_EQ(SizeOf(std::filesystem::read_symlink("/proc/self/exe")), u"0");
    const std::string file = SparseFile(100);
    EXPECT_EQ(SizeOf(file), u"100");
    if (geteuid() != 0) {
        std::filesystem::permissions(file, std::filesystem::perms(0444));
        EXPECT_EQ(SizeOf(file), u"0");
        std::filesystem::permissions(file, std::filesystem::perms(0644));
    }
    SetFileFault([](tavrix::platform::FileOperation operation, const WCHAR*, DWORD*) {
        return operation == tavrix::platform::FileOperation::Open;
    });
    EXPECT_EQ(SizeOf(file), u"0");
    SetFileFault(nullptr);
    std::filesystem::remove(file);
    EXPECT_EQ(SizeOf(file), u"0");
    EXPECT_FALSE(std::filesystem::exists(file)) << "looking makes no file";
    EXPECT_EQ(SizeOf(TestHome()), u"0") << "a folder";
}

TEST_F(ImageInformation, LookingAtAFileLeavesItAsItWas)
{
    const std::string file = TestHome() + "/kept.png";
    std::ofstream(file) << "1234567";
    const auto written = std::filesystem::last_write_time(file);
    EXPECT_EQ(SizeOf(file), u"7");
    EXPECT_EQ(std::filesystem::last_write_time(file), written);
    std::string content;
    std::ifstream(file) >> content;
    EXPECT_EQ(content, "1234567");
}

TEST_F(ImageInformation, ThePicturesRowsAndTheFilesRowsHaveTheirIcons)
{
    frame.Show(60, 50);
    Show([](const Dialog& dialog) {
        Pump(50);
        for (int row = 0; row < 7; ++row) {
            WCHAR text[100] = {};
            EXPECT_EQ(Cell(dialog, row, 0, text, 100).iImage, row < 4 ? 1 : 0) << row;
            RECT place = {LVIR_ICON, 0, 0, 0};
            EXPECT_TRUE(Ask(dialog, LVM_GETITEMRECT, static_cast<WPARAM>(row),
                            reinterpret_cast<LPARAM>(&place)));
            EXPECT_EQ(place.right - place.left, 16);
            // Of the two only the sheet with the picture has green, and only the tag has red.
            const Picture picture = WindowPixels(dialog.Control(List));
            int green = 0;
            int red = 0;
            for (int y = place.top; y < place.bottom; ++y)
                for (int x = place.left; x < place.right; ++x) {
                    green += picture.At(x, y) == 0x58A050;
                    red += picture.At(x, y) == 0xD04030;
                }
            EXPECT_EQ(green > 0, row < 4) << row;
            EXPECT_EQ(red > 0, row >= 4) << row;
        }
        dialog.Close();
    });
}

TEST_F(ImageInformation, TheColumnsHaveTheirWidthsAndGoIntoTheList)
{
    frame.Show(60, 50);
    Show([](const Dialog& dialog) {
        EXPECT_EQ(Ask(dialog, LVM_GETCOLUMNWIDTH, 0), 88);
        EXPECT_EQ(Ask(dialog, LVM_GETCOLUMNWIDTH, 1), 135);
        RECT client = {};
        GetClientRect(dialog.Control(List), &client);
        EXPECT_GE(client.right, 88 + 135);
        RECT last = {LVIR_BOUNDS, 0, 0, 0};
        Ask(dialog, LVM_GETITEMRECT, 6, reinterpret_cast<LPARAM>(&last));
        EXPECT_LE(last.bottom + 18, client.bottom) << "with room for the bar below the rows";
        dialog.Close();
    });
}

// What a person does to read a long folder, by the pointer and by keys alone.
TEST_F(ImageInformation, AWidenedColumnIsReadWholeByScrolling)
{
    CopyText(frame.openedPath, MainFrame::PathCapacity,
             (u"\\" + Text(250, u'm') + u"\\a.png").c_str());
    Show([](const Dialog& dialog) {
        Pump(30);
        TypeKey(0xBB, MK_CONTROL); // plus
        Pump(30);
        EXPECT_GT(Ask(dialog, LVM_GETCOLUMNWIDTH, 1), 250 * 8) << "the whole folder";
        dialog.Close();
    });
    Show([](const Dialog& dialog) {
        Pump(30);
        EXPECT_EQ(Ask(dialog, LVM_GETCOLUMNWIDTH, 1), 135) << "each time anew";
        const RECT list = PlaceOf(dialog.Control(List));
        DragScreen(list.left + 88 + 135, list.top + 10, list.left + 600, list.top + 10);
        Pump(30);
        const LRESULT widened = Ask(dialog, LVM_GETCOLUMNWIDTH, 1);
        EXPECT_GT(widened, 400);
        const auto leftEdge = [&] {
            RECT row = {LVIR_BOUNDS, 0, 0, 0};
            Ask(dialog, LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row));
            return row.left;
        };
        const LONG before = leftEdge();
        TypeKey(VK_RIGHT);
        Pump(20);
        EXPECT_LT(leftEdge(), before) << "the keys scroll";
        RECT last = {LVIR_BOUNDS, 0, 0, 0};
        Ask(dialog, LVM_GETITEMRECT, 6, reinterpret_cast<LPARAM>(&last));
        EXPECT_LE(last.bottom, list.bottom - list.top - 14) << "no row under the bar";
        dialog.Close();
    });
}

TEST_F(ImageInformation, WithoutItsWorkBufferItBeepsAndStaysEmpty)
{
    frame.Show(60, 50);
    const unsigned beeps = tavrix::platform::Hooks().beeps;
    SetAllocationFault([](SIZE_T size) { return size == 4096; });
    EXPECT_EQ(Show([&](const Dialog& dialog) {
                  SetAllocationFault(nullptr);
                  EXPECT_EQ(tavrix::platform::Hooks().beeps, beeps + 1);
                  EXPECT_EQ(Ask(dialog, LVM_GETITEMCOUNT), 0);
                  EXPECT_EQ(Ask(dialog, LVM_GETCOLUMNWIDTH, 0), 0) << "no columns either";
                  TypeKey(VK_RETURN);
              }),
              1);
    EXPECT_EQ(Values(u"").size(), 7u) << "the next one has its buffer";
    EXPECT_EQ(tavrix::platform::Hooks().beeps, beeps + 1);
}

TEST_F(ImageInformation, AnyShortageOfMemoryIsSurvivedAndLeavesNothing)
{
    frame.Show(60, 50);
    (void)Values(u"\\a\\b.png");
    ForEveryFault(FaultKind::Allocation,
                  [&] { Show([](const Dialog& dialog) { dialog.Close(); }); });
}

TEST_F(ImageInformation, EveryWayOutEndsItAndNoOtherCommand)
{
    frame.Show(60, 50);
    ExpectWaysOut([this] { frame.ShowImageInformation(); }, {0, 3, 4, List, 0x8001, 0xFFFF});
}

TEST_F(ImageInformation, TheListHasTheKeyboardFirst)
{
    frame.Show(60, 50);
    Show([](const Dialog& dialog) {
        Pump(20);
        ExpectTabOrder(dialog, {List, IDOK});
        TypeKey(VK_RETURN);
    });
}

TEST_F(ImageInformation, ItLiesInTheMiddleOfTheScreen)
{
    frame.Show(60, 50);
    Show([](const Dialog& dialog) {
        const RECT place = PlaceOf(dialog.window);
        EXPECT_NEAR(place.left + place.right, 640, 1);
        EXPECT_NEAR(place.top + place.bottom, 480, 1);
        dialog.Close();
    });
}

// The whole program, with the picture of a file.
TEST(ImageInformationOfTheProgram, APictureThatWasOpenedIsTold)
{
    InstallBundledPlugins();
    const std::string file = WriteTestPng(61, 47);
    RunProgramOn(file, [&](MainFrame& frame) {
        int dialogs =
            Open([&] { frame.ShowImageInformation(); },
                 [&](const Dialog& dialog) {
                     const Text path = DevicePath(file);
                     const Text folder = path.substr(0, path.rfind(u'\\'));
                     const Text size = Wide(std::to_string(std::filesystem::file_size(file)));
                     EXPECT_EQ(Column(dialog, 1),
                               (Texts{u"61", u"47", u"24", u"off", u"picture.png", folder, size}));
                     EXPECT_FALSE(IsWindowEnabled(frame.window));
                     dialog.Close();
                 });
        EXPECT_EQ(dialogs, 1);
        EXPECT_TRUE(IsWindowEnabled(frame.window));
    });
}
