// Over the real control: what each operation does to it, and the sort that the file list uses.

#include "view/ListViewControl.h"

#include "platform/testing/WindowTesting.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace tavrix::testing;

namespace
{

/// A record of the control's last message of a kind, as a procedure in front of it sees it.
struct Sent {
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    UINT mask = 0;
};
std::vector<Sent> sent;
WNDPROC before = nullptr;

LRESULT CALLBACK InFront(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    Sent entry{message, wParam, lParam, 0};
    // Both records begin with their mask, as the search's with its flags.
    if (lParam != 0 && (message == 4193 || message == 4173 || message == 4172 || message == 4171 ||
                        message == 4179))
        entry.mask = *reinterpret_cast<const UINT*>(lParam);
    sent.push_back(entry);
    return CallWindowProcW(before, window, message, wParam, lParam);
}

LRESULT CALLBACK ParentProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return DefWindowProcW(window, message, wParam, lParam);
}

HWND MakeParent()
{
    WNDCLASSW record{};
    record.lpfnWndProc = ParentProcedure;
    record.lpszClassName = TEXT("ListViewParent");
    RegisterClassW(&record);
    return CreateWindowExW(0, TEXT("ListViewParent"), TEXT(""), WS_VISIBLE, 0, 0, 400, 300, nullptr,
                           nullptr, nullptr, nullptr);
}

class ListView : public ::testing::Test
{
protected:
    ListView()
        : parent(MakeParent()),
          window(CreateWindowExW(
              0, WC_LISTVIEWW, TEXT(""), WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_SHOWSELALWAYS, 10,
              10, 260, 200, parent, reinterpret_cast<HMENU>(1001), nullptr, nullptr)),
          list(window)
    {
        before = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(InFront)));
        sent.clear();
    }
    ~ListView() override { DestroyWindow(parent); }

    /// The one message that an operation is.
    Sent Only()
    {
        EXPECT_EQ(sent.size(), 1u);
        const Sent only = sent.empty() ? Sent{} : sent.back();
        sent.clear();
        return only;
    }

    std::vector<std::u16string> Names()
    {
        std::vector<std::u16string> names;
        WCHAR buffer[64];
        for (i32 row = 0; list.GetItemText(row, 0, buffer, 64, nullptr) == Done; ++row)
            names.push_back(buffer);
        return names;
    }

    void Select(int row)
    {
        LVITEMW item{};
        item.state = LVIS_SELECTED;
        item.stateMask = LVIS_SELECTED;
        SendMessageW(window, LVM_SETITEMSTATE, static_cast<WPARAM>(row),
                     reinterpret_cast<LPARAM>(&item));
        sent.clear();
    }

    LPARAM Tag(int row)
    {
        LVITEMW item{};
        item.mask = LVIF_PARAM;
        item.iItem = row;
        SendMessageW(window, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        sent.clear();
        return item.lParam;
    }

    Scope scope;
    HWND parent;
    HWND window;
    ListViewControl list;
};

} // namespace

TEST_F(ListView, AddingAColumnGivesFormatWidthTextAndNumber)
{
    EXPECT_EQ(list.AddColumn(TEXT("file"), 150, 0), 0);
    const Sent first = Only();
    EXPECT_EQ(first.message, 4193u);
    EXPECT_EQ(first.mask, 15u);
    EXPECT_EQ(list.AddColumn(TEXT("size"), 50, 1), 1);
    EXPECT_EQ(SendMessageW(window, LVM_GETCOLUMNWIDTH, 0, 0), 150);
    EXPECT_EQ(SendMessageW(window, LVM_GETCOLUMNWIDTH, 1, 0), 50);
}

TEST_F(ListView, AddedItemsHaveTagsThatCountUp)
{
    EXPECT_EQ(list.AddItem(TEXT("b"), 0, 0, 2), 0);
    const Sent first = Only();
    EXPECT_EQ(first.message, 4173u);
    EXPECT_EQ(first.mask, 7u);
    EXPECT_EQ(list.AddItem(TEXT("a"), 0, 0, 1), 0);
    EXPECT_EQ(list.AddItem(TEXT("c"), 0, 99, 1), 2);
    EXPECT_EQ(Names(), (std::vector<std::u16string>{u"a", u"b", u"c"}));
    EXPECT_EQ(Tag(0), 1);
    EXPECT_EQ(Tag(1), 0);
    EXPECT_EQ(Tag(2), 2);
    EXPECT_EQ(list.AddItem(TEXT("d"), 1, 0, 1), -1) << "a row begins with its item";
}

TEST_F(ListView, ASubItemIsATextAlone)
{
    list.AddItem(TEXT("a"), 0, 0, 0);
    sent.clear();
    EXPECT_EQ(list.SetSubItem(TEXT("123"), 1, 0), Done);
    const Sent only = Only();
    EXPECT_EQ(only.message, 4172u);
    EXPECT_EQ(only.mask, 1u);
    WCHAR buffer[8];
    EXPECT_EQ(list.GetItemText(0, 1, buffer, 8, nullptr), Done);
    EXPECT_EQ(std::u16string(buffer), u"123");
    EXPECT_EQ(list.SetSubItem(TEXT("x"), 1, 1), NothingDone);
}

TEST_F(ListView, AnImageIsReadByItself)
{
    list.AddItem(TEXT("a"), 0, 0, 2);
    sent.clear();
    i32 image = 77;
    EXPECT_EQ(list.GetItemImage(0, 0, &image), Done);
    const Sent only = Only();
    EXPECT_EQ(only.message, 4171u);
    EXPECT_EQ(only.mask, 2u);
    EXPECT_EQ(image, 2);
    image = 77;
    EXPECT_EQ(list.GetItemImage(1, 0, &image), NothingDone);
    EXPECT_EQ(image, 77);
    EXPECT_EQ(list.GetItemImage(0, 0, nullptr), BadArgument);
}

TEST_F(ListView, ATextIsReadWithItsImageAndCutToTheBuffer)
{
    list.AddItem(TEXT("picture.jpg"), 0, 0, 2);
    sent.clear();
    WCHAR buffer[6] = {'#', '#', '#', '#', '#', '#'};
    i32 image = 77;
    EXPECT_EQ(list.GetItemText(0, 0, buffer, 5, &image), Done);
    const Sent only = Only();
    EXPECT_EQ(only.message, 4171u);
    EXPECT_EQ(only.mask, 3u);
    EXPECT_EQ(std::u16string(buffer, 6), (std::u16string{'p', 'i', 'c', 't', 0, '#'}));
    EXPECT_EQ(image, 2);
    EXPECT_EQ(list.GetItemText(1, 0, buffer, 5, &image), NothingDone);
    EXPECT_EQ(image, -1);
    EXPECT_EQ(list.GetItemText(0, 0, buffer, 5, nullptr), Done);
}

TEST_F(ListView, FindNextWalksTheSelectedRows)
{
    for (i32 row = 0; row < 5; ++row)
        list.AddItem(row % 2 == 0 ? TEXT("even") : TEXT("odd"), 0, row, row);
    Select(1);
    Select(4);
    WCHAR buffer[8];
    i32 row = -1;
    i32 image = 0;
    EXPECT_EQ(list.FindNext(&row, 0, buffer, 8, &image), Done);
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[0].message, 4108u);
    EXPECT_EQ(sent[0].lParam, 2);
    EXPECT_EQ(sent[1].mask, 3u);
    EXPECT_EQ(row, 1);
    EXPECT_EQ(image, 1);
    EXPECT_EQ(std::u16string(buffer), u"odd");
    sent.clear();
    EXPECT_EQ(list.FindNext(&row, 0, nullptr, 0, &image), Done);
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[1].mask, 2u);
    EXPECT_EQ(row, 4);
    EXPECT_EQ(image, 4);
    EXPECT_EQ(list.FindNext(&row, 0, buffer, 8, &image), NothingDone);
    EXPECT_EQ(row, 4);
    EXPECT_EQ(list.FindNext(nullptr, 0, buffer, 8, &image), BadArgument);
}

TEST_F(ListView, ClearingBeginsTheTagsAnew)
{
    list.AddItem(TEXT("a"), 0, 0, 0);
    list.AddItem(TEXT("b"), 0, 1, 0);
    sent.clear();
    EXPECT_EQ(list.Clear(), Done);
    EXPECT_EQ(Only().message, 4105u);
    EXPECT_EQ(Names(), std::vector<std::u16string>{});
    list.AddItem(TEXT("c"), 0, 0, 0);
    EXPECT_EQ(Tag(0), 0);
}

TEST_F(ListView, TheViewIsTheLowTwoBitsOfTheStyle)
{
    const LONG_PTR others = GetWindowLongPtrW(window, GWL_STYLE) & ~LONG_PTR{3};
    EXPECT_NE(others & LONG_PTR{LVS_SHOWSELALWAYS}, 0);
    for (const u32 view : {0u, 2u, 3u, 1u, 0xFFFFFFFEu}) {
        list.SetView(view);
        EXPECT_EQ(GetWindowLongPtrW(window, GWL_STYLE), others | (view & 3));
    }
}

TEST_F(ListView, IconsBecomeAnImageListOfTheKind)
{
    const HICON icons[] = {LoadIconW(nullptr, MAKEINTRESOURCEW(32513)),
                           LoadIconW(nullptr, MAKEINTRESOURCEW(32516))};
    sent.clear();
    EXPECT_EQ(list.SetIcons(icons, 2, 16, LVSIL_SMALL), Done);
    const Sent only = Only();
    EXPECT_EQ(only.message, 4099u);
    EXPECT_EQ(only.wParam, 1u);
    const auto first = reinterpret_cast<HIMAGELIST>(only.lParam);
    EXPECT_EQ(ImageList_GetImageCount(first), 2);
    EXPECT_EQ(list.SetIcons(icons, 1, 32, LVSIL_NORMAL), Done);
    EXPECT_EQ(ImageList_GetImageCount(first), 2) << "the other kind stays";
    EXPECT_EQ(list.SetIcons(icons, 1, 16, LVSIL_SMALL), Done);
    EXPECT_FALSE(ImageList_Destroy(first)) << "taken back when another took its place";

    sent.clear();
    const HICON missing[] = {icons[0], nullptr};
    EXPECT_EQ(list.SetIcons(missing, 2, 16, LVSIL_SMALL), NothingDone);
    EXPECT_EQ(list.SetIcons(icons, 2, 0, LVSIL_SMALL), NothingDone);
    EXPECT_EQ(list.SetIcons(icons, 2, 16, 2), NothingDone);
    EXPECT_EQ(list.SetIcons(nullptr, 2, 16, LVSIL_SMALL), BadArgument);
    EXPECT_TRUE(sent.empty());
}

TEST_F(ListView, TheListOfIconsGoesWithTheObject)
{
    HIMAGELIST made = nullptr;
    {
        ListViewControl other(window);
        const HICON icon = LoadIconW(nullptr, MAKEINTRESOURCEW(32513));
        sent.clear();
        EXPECT_EQ(other.SetIcons(&icon, 1, 16, LVSIL_SMALL), Done);
        made = reinterpret_cast<HIMAGELIST>(Only().lParam);
        EXPECT_EQ(ImageList_GetImageCount(made), 1);
    }
    EXPECT_FALSE(ImageList_Destroy(made));
}

namespace
{

constexpr i32 Folder = 1;
constexpr i32 File = 2;

} // namespace

TEST_F(ListView, TheSortKeepsFoldersBeforeFilesInBothDirections)
{
    // Letters without regard to case, punctuation before digits before letters, digits one by one.
    list.AddItem(TEXT("b.jpg"), 0, 0, File);
    list.AddItem(TEXT("zeta"), 0, 1, Folder);
    list.AddItem(TEXT("A9.jpg"), 0, 2, File);
    list.AddItem(TEXT("a10.jpg"), 0, 3, File);
    list.AddItem(TEXT("Alpha"), 0, 4, Folder);
    list.AddItem(TEXT("_c.jpg"), 0, 5, File);
    list.AddItem(TEXT("mid"), 0, 6, Folder);
    EXPECT_EQ(list.Sort(1, 1), Done);
    EXPECT_EQ(Names(), (std::vector<std::u16string>{u"Alpha", u"mid", u"zeta", u"_c.jpg",
                                                    u"a10.jpg", u"A9.jpg", u"b.jpg"}));
    EXPECT_EQ(list.Sort(1, 0), Done);
    EXPECT_EQ(Names(), (std::vector<std::u16string>{u"zeta", u"mid", u"Alpha", u"b.jpg", u"A9.jpg",
                                                    u"a10.jpg", u"_c.jpg"}));
}

TEST_F(ListView, TheSortAsksByTagAndGoesByMessages)
{
    list.AddItem(TEXT("b"), 0, 0, File);
    list.AddItem(TEXT("a"), 0, 1, File);
    sent.clear();
    EXPECT_EQ(list.Sort(1, 1), Done);
    ASSERT_EQ(sent.size(), 5u);
    EXPECT_EQ(sent[0].message, 4144u);
    EXPECT_EQ(sent[1].message, 4179u);
    EXPECT_EQ(sent[1].mask, 1u);
    EXPECT_EQ(sent[2].message, 4171u);
    EXPECT_EQ(sent[2].mask, 3u);
}

TEST_F(ListView, NamesThatAreAlikeKeepTheirOrder)
{
    list.AddItem(TEXT("same"), 0, 0, File);
    list.AddItem(TEXT("SAME"), 0, 1, File);
    list.AddItem(TEXT("Same"), 0, 2, File);
    EXPECT_EQ(list.Sort(1, 0), Done);
    EXPECT_EQ(Names(), (std::vector<std::u16string>{u"same", u"SAME", u"Same"}));
}

TEST_F(ListView, OtherColumnsDoNotSort)
{
    list.AddItem(TEXT("b"), 0, 0, File);
    list.AddItem(TEXT("a"), 0, 1, File);
    sent.clear();
    EXPECT_EQ(list.Sort(0, 1), NothingDone);
    EXPECT_EQ(list.Sort(2, 1), NothingDone);
    EXPECT_TRUE(sent.empty());
    EXPECT_EQ(Names(), (std::vector<std::u16string>{u"b", u"a"}));
}

TEST_F(ListView, AWindowThatIsGoneAnswersNothing)
{
    DestroyWindow(window);
    i32 row = -1;
    i32 image = 5;
    WCHAR buffer[4];
    EXPECT_EQ(list.SetSubItem(TEXT("x"), 1, 0), NothingDone);
    EXPECT_EQ(list.GetItemText(0, 0, buffer, 4, &image), NothingDone);
    EXPECT_EQ(image, -1);
    EXPECT_EQ(list.FindNext(&row, 0, buffer, 4, &image), NothingDone);
    EXPECT_EQ(list.Clear(), NothingDone);
    EXPECT_EQ(list.Sort(1, 1), NothingDone);
    list.SetView(1);
}
