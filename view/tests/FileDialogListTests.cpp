// The file dialog's list: which folders and files it shows, how large they are, in which order, and
// how filters and folders change it.

#include "view/tests/FileDialogTesting.h"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>

using namespace filedialogtest;

namespace
{

/// Nobody in particular, who may not look into closed folders, for as long as it lives.
class Unprivileged
{
public:
    Unprivileged() : user(geteuid()) { EXPECT_EQ(seteuid(user == 0 ? 65534 : user), 0); }
    ~Unprivileged() { EXPECT_EQ(seteuid(user), 0); }
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;

private:
    uid_t user;
};

/// A click on a column's head, as the list tells it.
void ClickColumn(const Dialog& dialog, int column)
{
    NMLISTVIEW click = {};
    click.hdr = {dialog.List(), 1001, 0u - 108u};
    click.iItem = -1;
    click.iSubItem = column;
    SendMessageW(dialog.window, WM_NOTIFY, 1001, reinterpret_cast<LPARAM>(&click));
}

} // namespace

TEST_F(FileDialogTest, AllImageFilesAreThoseOfEveryFilter)
{
    Open([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 sub", u"2 A.png 0", u"2 b.jpg 7"}));
    });
}

TEST_F(FileDialogTest, AFilterShowsItsOwnFilesAndAllFolders)
{
    folder.Write("d.JPG", "1");
    Open([](const Dialog& dialog) {
        dialog.ChooseFilter(u"JPEG");
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 sub", u"2 b.jpg 7", u"2 d.JPG 1"}));
        dialog.ChooseFilter(u"PNG picture");
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 sub", u"2 A.png 0"}));
        dialog.ChooseFilter(u"All image files");
        EXPECT_EQ(dialog.Rows().size(), 5u);
    });
}

TEST_F(FileDialogTest, PatternsThatDifferInCaseListEachFileOnce)
{
    filter = FilterOf({u"J", u"*.jpg;*.JPG", u"Again", u"*.Jpg;*.png;*.jpg"});
    record.lpstrFilter = filter.c_str();
    Open([](const Dialog& dialog) {
        const Texts all = {u"0 Upto", u"1 sub", u"2 A.png 0", u"2 b.jpg 7"};
        EXPECT_EQ(dialog.Rows(), all);
        dialog.ChooseFilter(u"J");
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 sub", u"2 b.jpg 7"}));
        dialog.ChooseFilter(u"Again");
        EXPECT_EQ(dialog.Rows(), all);
    });
}

TEST_F(FileDialogTest, DifferentPatternsThatFitOneFileListItForEach)
{
    filter = FilterOf({u"Two", u"b*;;*.jpg;"});
    record.lpstrFilter = filter.c_str();
    Open([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 sub", u"2 b.jpg 7", u"2 b.jpg 7"}));
    });
}

TEST_F(FileDialogTest, AFolderNamedLikeAPictureIsAFolder)
{
    std::filesystem::create_directory(folder.Host("z.jpg"));
    Open([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Rows(),
                  (Texts{u"0 Upto", u"1 sub", u"1 z.jpg", u"2 A.png 0", u"2 b.jpg 7"}));
    });
}

TEST_F(FileDialogTest, NamesOfManyScriptsAndDotsAreListedAndOpened)
{
    folder.Write("夏の思い出.jpg", "12");
    folder.Write("v1.2.final.jpg", "123");
    folder.Write("𠮷野家.jpg", "1");
    std::filesystem::create_directory(folder.Host("写真.2026"));
    folder.Write("写真.2026/ﾊﾟﾝ ﾀﾞ.png", "");
    EXPECT_EQ(Open([](const Dialog& dialog) {
                  EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 sub", u"1 写真.2026", u"2 A.png 0",
                                                  u"2 b.jpg 7", u"2 v1.2.final.jpg 3",
                                                  u"2 夏の思い出.jpg 2", u"2 𠮷野家.jpg 1"}));
                  dialog.ChooseFilter(u"JPEG");
                  dialog.Select(u"2 v1.2.final.jpg");
                  EXPECT_EQ(dialog.Name(), u"v1.2.final.jpg");
                  dialog.ChooseFilter(u"All image files");
                  dialog.Enter({u"写真.2026"});
                  dialog.Select(u"2 ﾊﾟﾝ ﾀﾞ.png");
                  dialog.Ok();
              }),
              Done);
    EXPECT_EQ(file, Path(u"写真.2026\\ﾊﾟﾝ ﾀﾞ.png"));
}

TEST_F(FileDialogTest, SizesAreWholeBeyondFourGigabytes)
{
    folder.Write("b.jpg", "");
    std::filesystem::resize_file(folder.Host("b.jpg"), 5000000000);
    folder.Write("c.jpg", "");
    std::filesystem::resize_file(folder.Host("c.jpg"), 4294967295);
    record.nFilterIndex = 0;
    Open([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Rows(),
                  (Texts{u"0 Upto", u"1 sub", u"2 b.jpg 5000000000", u"2 c.jpg 4294967295"}));
    });
}

TEST_F(FileDialogTest, TheParentStandsFirstOfAll)
{
    std::filesystem::create_directory(folder.Host("!"));
    Open([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 !", u"1 sub", u"2 A.png 0", u"2 b.jpg 7"}));
    });
}

TEST_F(FileDialogTest, AClickOnTheFirstColumnTurnsTheNamesRoundWithinTheirKind)
{
    std::filesystem::create_directory(folder.Host("Able"));
    const Texts up = {u"0 Upto", u"1 Able", u"1 sub", u"2 A.png 0", u"2 b.jpg 7"};
    const Texts down = {u"0 Upto", u"1 sub", u"1 Able", u"2 b.jpg 7", u"2 A.png 0"};
    Open([&](const Dialog& dialog) {
        EXPECT_EQ(dialog.Rows(), up);
        ClickColumn(dialog, 0);
        EXPECT_EQ(dialog.Rows(), down);
        ClickColumn(dialog, 1);
        EXPECT_EQ(dialog.Rows(), down);
        ClickColumn(dialog, 0);
        EXPECT_EQ(dialog.Rows(), up);
        ClickColumn(dialog, 0);
        dialog.ChooseFilter(u"JPEG");
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 sub", u"1 Able", u"2 b.jpg 7"}));
    });
    Open([&](const Dialog& dialog) { EXPECT_EQ(dialog.Rows(), down) << "it stays"; });
}

TEST_F(FileDialogTest, NamesAreSortedAsListsAre)
{
    for (const char* name : {"_z.png", "a10.png", "a9.png", "B.png", "1.png", "é.png"})
        folder.Write(name, "");
    record.nFilterIndex = 1;
    Open([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Rows(),
                  (Texts{u"0 Upto", u"1 sub", u"2 _z.png 0", u"2 1.png 0", u"2 A.png 0",
                         u"2 a10.png 0", u"2 a9.png 0", u"2 B.png 0", u"2 é.png 0"}));
    });
}

TEST_F(FileDialogTest, ASelectedFilesNameGoesToTheNameFieldAndAFoldersDoesNot)
{
    Open([](const Dialog& dialog) {
        dialog.Select(u"2 b.jpg");
        EXPECT_EQ(dialog.Name(), u"b.jpg");
        dialog.Select(u"1 sub");
        EXPECT_EQ(dialog.Name(), u"b.jpg");
        dialog.Select(u"2 A.png");
        EXPECT_EQ(dialog.Name(), u"A.png");
        dialog.Select(u"0 Upto");
        EXPECT_EQ(dialog.Name(), u"A.png");
    });
}

TEST_F(FileDialogTest, AFileThatLosesTheSelectionLeavesATypedName)
{
    Open([](const Dialog& dialog) {
        dialog.Select(u"2 b.jpg");
        dialog.Type(u"typed.jpg");
        dialog.Select(u"1 sub");
        EXPECT_EQ(dialog.Name(), u"typed.jpg");
    });
}

TEST_F(FileDialogTest, SwitchingTheFilterChangesTheExtensionOfATypedName)
{
    Save([](const Dialog& dialog) {
        dialog.Type(u"new");
        dialog.ChooseFilter(u"JPEG");
        EXPECT_EQ(dialog.Name(), u"new.jpg");
        dialog.ChooseFilter(u"PNG picture");
        EXPECT_EQ(dialog.Name(), u"new.png");
        dialog.ChooseFilter(u"All image files");
        EXPECT_EQ(dialog.Name(), u"new.png");
        dialog.Type(u"v1.2");
        dialog.ChooseFilter(u"PNG picture");
        EXPECT_EQ(dialog.Name(), u"v1.png");
        dialog.Type(u"sub\\");
        dialog.ChooseFilter(u"JPEG");
        EXPECT_EQ(dialog.Name(), u"sub\\");
    });
}

TEST_F(FileDialogTest, EnteringAFolderMakesANameFitTheFilterToo)
{
    record.nFilterIndex = 0;
    Open([](const Dialog& dialog) {
        dialog.Type(u"a.png");
        dialog.Enter({u"sub"});
        EXPECT_EQ(dialog.Name(), u"a.jpg");
    });
}

TEST_F(FileDialogTest, AFilterWithoutPatternsShowsFoldersAlone)
{
    filter = FilterOf({u"None", u";;", u"Exact", u"notes.txt"});
    record.lpstrFilter = filter.c_str();
    record.nFilterIndex = 0;
    Open([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 sub"}));
        dialog.ChooseFilter(u"Exact");
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 sub", u"2 notes.txt 5"}));
    });
}

TEST_F(FileDialogTest, PatternsBehindTheFirst1023CharactersAreNotAmongAllImageFiles)
{
    // "*.png" begins at place 1,018 and is whole; the one behind it is not searched for.
    const Text many = Text(1017, u'q');
    filter = FilterOf({u"Long", many, u"PNG", u"*.png", u"Text", u"*.txt"});
    record.lpstrFilter = filter.c_str();
    Open([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 sub", u"2 A.png 0"}));
        dialog.ChooseFilter(u"Text");
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 sub", u"2 notes.txt 5"}));
    });
}

TEST_F(FileDialogTest, AFolderThatVanishedIsEmptyAndCanBeLeft)
{
    Open([this](const Dialog& dialog) {
        dialog.Enter({u"sub"});
        std::filesystem::remove_all(folder.Host("sub"));
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"2 c.JPEG 12"}));
        dialog.ChooseFilter(u"JPEG");
        EXPECT_EQ(dialog.Rows(), Texts{u"0 Upto"});
        dialog.Select(u"0 Upto");
        dialog.Ok();
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"2 b.jpg 7"}));
    });
}

TEST_F(FileDialogTest, AFolderThatMayNotBeReadIsEmpty)
{
    chmod(folder.Host("sub").c_str(), 0);
    {
        const Unprivileged nobody;
        Open([](const Dialog& dialog) {
            dialog.Type(u"sub\\");
            dialog.Ok();
            EXPECT_EQ(dialog.Rows(), Texts{u"0 Upto"});
        });
    }
    chmod(folder.Host("sub").c_str(), 0700);
}

TEST_F(FileDialogTest, AnEmptyFolderShowsTheParentAlone)
{
    std::filesystem::create_directory(folder.Host("empty"));
    Open([](const Dialog& dialog) {
        dialog.Enter({u"empty"});
        EXPECT_EQ(dialog.Rows(), Texts{u"0 Upto"});
    });
}

TEST_F(FileDialogTest, FiveThousandFilesAreListedQuickly)
{
    std::filesystem::create_directory(folder.Host("many"));
    for (int i = 0; i < 5000; ++i)
        folder.Write("many/picture " + std::to_string(i * 7919 % 5000) + ".jpg", "");
    Open([](const Dialog& dialog) {
        const auto before = std::chrono::steady_clock::now();
        dialog.Enter({u"many"});
        const auto spent = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - before);
        EXPECT_EQ(SendMessageW(dialog.List(), LVM_GETITEMCOUNT, 0, 0), 5001);
        EXPECT_EQ(dialog.Row(1), u"2 picture 0.jpg 0");
        EXPECT_EQ(dialog.Row(5000), u"2 picture 999.jpg 0");
        RecordProperty("milliseconds", static_cast<int>(spent.count()));
        EXPECT_LT(spent.count(), 10000) << "with all checks of a debug build";
    });
}
