#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/ControlResources.h"
#include "platform/tests/qt/TestWindow.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

#include <chrono>
#include <climits>
#include <set>
#include <string>
#include <tuple>
#include <vector>

using namespace tavrix::testing;
using tavrix::test::TestWindow;

namespace
{

constexpr int ListId = 77;
constexpr UINT Several = LVS_REPORT;

/// What LVN_ITEMCHANGED tells: row, state before, state after.
using Change = std::tuple<int, UINT, UINT>;

class ListControl : public ::testing::Test
{
protected:
    ListControl()
        : parent([this](HWND, UINT message, WPARAM wParam, LPARAM lParam) {
              return message == WM_NOTIFY ? OnNotify(wParam, lParam) : std::nullopt;
          })
    {
    }
    ~ListControl() override
    {
        for (const HIMAGELIST made : images)
            ImageList_Destroy(made);
    }

    std::optional<LRESULT> OnNotify(WPARAM wParam, LPARAM lParam)
    {
        const auto& record = *reinterpret_cast<const NMLISTVIEW*>(lParam);
        EXPECT_EQ(record.hdr.hwndFrom, list);
        EXPECT_EQ(record.hdr.idFrom, static_cast<UINT_PTR>(ListId));
        EXPECT_EQ(wParam, static_cast<WPARAM>(ListId));
        codes.push_back(static_cast<int>(record.hdr.code));
        last = record;
        if (record.hdr.code == LVN_ITEMCHANGED) {
            EXPECT_EQ(record.uChanged, LVIF_STATE);
            changes.emplace_back(record.iItem, record.uOldState, record.uNewState);
        }
        if (handler)
            handler(record);
        return 0;
    }

    void Make(UINT style, int width = 240, int height = 160)
    {
        list = CreateWindowExW(0, WC_LISTVIEWW, TEXT(""), WS_CHILD | WS_VISIBLE | style, 10, 20,
                               width, height, parent.handle, reinterpret_cast<HMENU>(ListId),
                               nullptr, nullptr);
        ASSERT_NE(list, nullptr);
        Pump(20);
    }

    template <typename Record>
    LRESULT Send(UINT message, WPARAM wParam, Record* record)
    {
        return SendMessageW(list, message, wParam, reinterpret_cast<LPARAM>(record));
    }
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return SendMessageW(list, message, wParam, lParam);
    }

    LRESULT AddColumn(int index, const WCHAR* title, int width, int format = LVCFMT_LEFT)
    {
        LVCOLUMNW column{};
        column.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
        column.fmt = format;
        column.cx = width;
        column.pszText = const_cast<WCHAR*>(title);
        column.iSubItem = index;
        return Send(LVM_INSERTCOLUMNW, static_cast<WPARAM>(index), &column);
    }

    LRESULT Add(int row, const WCHAR* text, LPARAM tag = 0, int image = 0)
    {
        LVITEMW item{};
        item.mask = LVIF_TEXT | LVIF_PARAM | LVIF_IMAGE;
        item.iItem = row;
        item.pszText = const_cast<WCHAR*>(text);
        item.iImage = image;
        item.lParam = tag;
        return Send(LVM_INSERTITEMW, 0, &item);
    }

    LRESULT SetText(int row, int column, const WCHAR* text)
    {
        LVITEMW item{};
        item.iSubItem = column;
        item.pszText = const_cast<WCHAR*>(text);
        return Send(LVM_SETITEMTEXTW, static_cast<WPARAM>(row), &item);
    }

    std::u16string Text(int row, int column = 0)
    {
        WCHAR buffer[64] = TEXT("untouched");
        LVITEMW item{};
        item.iSubItem = column;
        item.pszText = buffer;
        item.cchTextMax = 64;
        const LRESULT length = Send(LVM_GETITEMTEXTW, static_cast<WPARAM>(row), &item);
        return std::u16string(buffer, static_cast<size_t>(length));
    }

    std::vector<std::u16string> Texts()
    {
        std::vector<std::u16string> texts;
        for (int row = 0; row < Send(LVM_GETITEMCOUNT); ++row)
            texts.push_back(Text(row));
        return texts;
    }

    LPARAM Tag(int row)
    {
        LVITEMW item{};
        item.mask = LVIF_PARAM;
        item.iItem = row;
        return Send(LVM_GETITEMW, 0, &item) != 0 ? item.lParam : -1;
    }

    LRESULT SetState(int row, UINT state, UINT mask)
    {
        LVITEMW item{};
        item.state = state;
        item.stateMask = mask;
        return Send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), &item);
    }
    UINT State(int row)
    {
        return static_cast<UINT>(Send(LVM_GETITEMSTATE, static_cast<WPARAM>(row), 0xFFFF));
    }
    std::vector<int> Selected()
    {
        std::vector<int> rows;
        for (LRESULT row = -1;
             (row = Send(LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED)) >= 0;)
            rows.push_back(static_cast<int>(row));
        EXPECT_EQ(Send(LVM_GETSELECTEDCOUNT), static_cast<LRESULT>(rows.size()));
        return rows;
    }
    int Focus()
    {
        return static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
    }

    RECT Place(int row, int part)
    {
        RECT place{part, 0, 0, 0};
        EXPECT_TRUE(Send(LVM_GETITEMRECT, static_cast<WPARAM>(row), &place));
        return place;
    }

    /// The middle of a row's label, or a point of the list, on the device screen.
    POINT OnScreen(POINT at)
    {
        RECT whole{};
        GetWindowRect(list, &whole);
        return {whole.left + at.x, whole.top + at.y};
    }
    POINT Middle(int row)
    {
        const RECT place = Place(row, LVIR_LABEL);
        return OnScreen({(place.left + place.right) / 2, (place.top + place.bottom) / 2});
    }
    void Click(int row, int modifiers = 0)
    {
        const POINT at = Middle(row);
        ClickScreen(at.x, at.y, modifiers);
    }

    /// A list of `count` stock icons for one kind of view.
    void GiveIcons(int kind, int size)
    {
        const HIMAGELIST made = ImageList_Create(size, size, ILC_COLOR | ILC_MASK, 2, 0);
        for (const int icon : {32513, 32516}) // an error's and an information's
            ASSERT_GE(ImageList_ReplaceIcon(made, -1, LoadIconW(nullptr, MAKEINTRESOURCEW(icon))),
                      0);
        images.push_back(made);
        EXPECT_EQ(Send(LVM_SETIMAGELIST, static_cast<WPARAM>(kind), reinterpret_cast<LPARAM>(made)),
                  0);
    }

    std::vector<uint32_t> Pixels(RECT place)
    {
        const Picture picture = WindowPixels(list);
        std::vector<uint32_t> pixels;
        for (int y = std::max(0, static_cast<int>(place.top));
             y < std::min(picture.height, static_cast<int>(place.bottom)); ++y)
            for (int x = std::max(0, static_cast<int>(place.left));
                 x < std::min(picture.width, static_cast<int>(place.right)); ++x)
                pixels.push_back(picture.At(x, y));
        return pixels;
    }
    size_t Colors(RECT place)
    {
        const auto pixels = Pixels(place);
        return std::set<uint32_t>(pixels.begin(), pixels.end()).size();
    }
    /// How many pixels are more red than anything else, as the sign of an error is.
    int Reds(RECT place)
    {
        int count = 0;
        for (const uint32_t pixel : Pixels(place))
            count += (pixel >> 16) > 0x80 && ((pixel >> 8) & 0xFF) < 0x60 && (pixel & 0xFF) < 0x60;
        return count;
    }

    void MakeFive(UINT style)
    {
        Make(style);
        AddColumn(0, TEXT("file"), 100);
        AddColumn(1, TEXT("size"), 60, LVCFMT_RIGHT);
        const WCHAR* const names[] = {TEXT("alpha"), TEXT("beta"), TEXT("gamma"), TEXT("delta"),
                                      TEXT("日本語")};
        for (int row = 0; row < 5; ++row)
            Add(row, names[row], 100 + row, row % 2);
        changes.clear();
        codes.clear();
    }

    Scope scope;
    HWND list = nullptr;
    std::vector<int> codes;
    std::vector<Change> changes;
    NMLISTVIEW last{};
    std::function<void(const NMLISTVIEW&)> handler;
    std::vector<HIMAGELIST> images;
    TestWindow parent;
};

int CALLBACK ByTag(LPARAM first, LPARAM second, LPARAM)
{
    return first < second ? -1 : first > second ? 1 : 0;
}

} // namespace

TEST_F(ListControl, RowsGoInAtBeforeAndPastOthers)
{
    Make(Several);
    EXPECT_EQ(Add(0, TEXT("one")), 0);
    EXPECT_EQ(Add(0, TEXT("zero")), 0);
    EXPECT_EQ(Add(2, TEXT("three")), 2);
    EXPECT_EQ(Add(2, TEXT("two")), 2);
    EXPECT_EQ(Add(INT_MAX, TEXT("last")), 4);
    EXPECT_EQ(Add(-1, TEXT("never")), -1);
    EXPECT_EQ(Texts(), (std::vector<std::u16string>{u"zero", u"one", u"two", u"three", u"last"}));
    LVITEMW subItem{};
    subItem.mask = LVIF_TEXT;
    subItem.iSubItem = 1;
    EXPECT_EQ(Send(LVM_INSERTITEMW, 0, &subItem), -1) << "a row begins with its item";
    EXPECT_EQ(Send(LVM_INSERTITEMW), -1);
    EXPECT_TRUE(codes.empty());
}

TEST_F(ListControl, AnItemIsReadByItsMaskAlone)
{
    MakeFive(Several);
    LVITEMW item{};
    WCHAR buffer[8] = TEXT("as it w");
    item.iItem = 1;
    item.pszText = buffer;
    item.cchTextMax = 8;
    item.iImage = 99;
    item.lParam = 98;
    item.state = 97;
    EXPECT_TRUE(Send(LVM_GETITEMW, 0, &item));
    EXPECT_EQ(std::u16string(buffer), u"as it w");
    EXPECT_EQ(item.iImage, 99);
    EXPECT_EQ(item.lParam, 98);
    EXPECT_EQ(item.state, 97u);

    SetState(1, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM | LVIF_STATE;
    item.stateMask = LVIS_FOCUSED;
    EXPECT_TRUE(Send(LVM_GETITEMW, 0, &item));
    EXPECT_EQ(std::u16string(buffer), u"beta");
    EXPECT_EQ(item.iImage, 1);
    EXPECT_EQ(item.lParam, 101);
    EXPECT_EQ(item.state, LVIS_FOCUSED);
    item.iItem = 5;
    EXPECT_FALSE(Send(LVM_GETITEMW, 0, &item));
    item.iItem = -1;
    EXPECT_FALSE(Send(LVM_GETITEMW, 0, &item));
    EXPECT_FALSE(Send(LVM_GETITEMW));
}

TEST_F(ListControl, ATextIsCutToTheBufferAndNothingStandsBehindIt)
{
    MakeFive(Several);
    WCHAR buffer[6] = {'#', '#', '#', '#', '#', '#'};
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    item.pszText = buffer;
    item.cchTextMax = 4;
    EXPECT_TRUE(Send(LVM_GETITEMW, 0, &item));
    EXPECT_EQ(std::u16string(buffer, 6), (std::u16string{'a', 'l', 'p', 0, '#', '#'}));
    buffer[0] = '#';
    item.cchTextMax = 0;
    EXPECT_TRUE(Send(LVM_GETITEMW, 0, &item));
    EXPECT_EQ(buffer[0], '#');
    item.cchTextMax = -3;
    EXPECT_EQ(Send(LVM_GETITEMTEXTW, 0, &item), 0);
    EXPECT_EQ(buffer[0], '#');
    item.cchTextMax = 6;
    item.pszText = nullptr;
    EXPECT_TRUE(Send(LVM_GETITEMW, 0, &item));
    item.pszText = buffer;
    EXPECT_EQ(Send(LVM_GETITEMTEXTW, 1, &item), 4);
}

TEST_F(ListControl, ATagHoldsAPointer)
{
    Make(Several);
    int object = 0;
    const auto tag = reinterpret_cast<LPARAM>(&object);
    Add(0, TEXT("a"), tag);
    EXPECT_EQ(Tag(0), tag);
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.lParam = -5;
    EXPECT_TRUE(Send(LVM_SETITEMW, 0, &item));
    EXPECT_EQ(Tag(0), -5);
}

TEST_F(ListControl, SubItemsKeepTextsOfTheirOwnAndMoveWithTheirColumn)
{
    MakeFive(Several);
    EXPECT_TRUE(SetText(2, 1, TEXT("12")));
    EXPECT_EQ(Text(2, 1), u"12");
    EXPECT_EQ(Text(2, 0), u"gamma");
    EXPECT_EQ(Text(1, 1), u"");
    EXPECT_EQ(AddColumn(1, TEXT("new"), 40), 1);
    EXPECT_EQ(Text(2, 1), u"");
    EXPECT_EQ(Text(2, 2), u"12");
    EXPECT_FALSE(SetText(2, INT_MAX, TEXT("x")));
    EXPECT_FALSE(SetText(2, -1, TEXT("x")));
    EXPECT_FALSE(SetText(9, 1, TEXT("x")));
    EXPECT_FALSE(SetText(-1, 1, TEXT("x")));
}

TEST_F(ListControl, ColumnsHaveTheirWidths)
{
    Make(Several);
    EXPECT_EQ(AddColumn(0, TEXT("a"), 50), 0);
    EXPECT_EQ(AddColumn(9, TEXT("c"), 180), 1) << "past the last is behind it";
    EXPECT_EQ(AddColumn(1, TEXT("b"), 70), 1);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 0), 50);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 1), 70);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 2), 180);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 3), 0);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(-1)), 0);
    EXPECT_EQ(AddColumn(-1, TEXT("z"), 10), -1);
    EXPECT_EQ(Send(LVM_INSERTCOLUMNW), -1);
}

TEST_F(ListControl, DeletingARowMovesTheOthersUpAndKeepsTheirState)
{
    MakeFive(Several);
    SetState(3, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    EXPECT_TRUE(Send(LVM_DELETEITEM, 1));
    EXPECT_FALSE(Send(LVM_DELETEITEM, 4));
    EXPECT_FALSE(Send(LVM_DELETEITEM, static_cast<WPARAM>(-1)));
    EXPECT_EQ(Texts(), (std::vector<std::u16string>{u"alpha", u"gamma", u"delta", u"日本語"}));
    EXPECT_EQ(Selected(), std::vector<int>{2});
    EXPECT_EQ(Focus(), 2);
    Add(0, TEXT("first"));
    EXPECT_EQ(Selected(), std::vector<int>{3});
    EXPECT_EQ(Focus(), 3);
    EXPECT_TRUE(Send(LVM_DELETEITEM, 3));
    EXPECT_EQ(Selected(), std::vector<int>{});
    EXPECT_EQ(Focus(), -1);
    EXPECT_TRUE(Send(LVM_DELETEALLITEMS));
    EXPECT_EQ(Send(LVM_GETITEMCOUNT), 0);
    EXPECT_TRUE(Send(LVM_DELETEALLITEMS));
}

TEST_F(ListControl, EachChangeOfStateIsToldOnce)
{
    MakeFive(Several);
    EXPECT_TRUE(SetState(1, LVIS_SELECTED, LVIS_SELECTED));
    EXPECT_EQ(changes, (std::vector<Change>{{1, 0, LVIS_SELECTED}}));
    EXPECT_EQ(last.lParam, 101);
    EXPECT_TRUE(SetState(1, LVIS_SELECTED, LVIS_SELECTED));
    EXPECT_EQ(changes.size(), 1u) << "nothing changed";
    changes.clear();
    SetState(1, LVIS_FOCUSED, LVIS_FOCUSED);
    SetState(4, LVIS_FOCUSED, LVIS_FOCUSED);
    EXPECT_EQ(changes, (std::vector<Change>{{1, LVIS_SELECTED, LVIS_SELECTED | LVIS_FOCUSED},
                                            {1, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED},
                                            {4, 0, LVIS_FOCUSED}}));
    EXPECT_FALSE(SetState(5, LVIS_SELECTED, LVIS_SELECTED));
    EXPECT_FALSE(SetState(-2, LVIS_SELECTED, LVIS_SELECTED));
}

TEST_F(ListControl, RowMinusOneMeansAllRows)
{
    MakeFive(Several);
    EXPECT_TRUE(SetState(-1, LVIS_SELECTED, LVIS_SELECTED));
    EXPECT_EQ(Selected(), (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_EQ(changes.size(), 5u);
    EXPECT_TRUE(SetState(-1, 0, LVIS_SELECTED));
    EXPECT_EQ(Selected(), std::vector<int>{});
    EXPECT_FALSE(SetState(-1, LVIS_FOCUSED, LVIS_FOCUSED)) << "one row has the focus";
    EXPECT_EQ(Focus(), -1);
}

TEST_F(ListControl, ASingleSelectionLeavesTheRowBefore)
{
    MakeFive(LVS_REPORT | LVS_SINGLESEL);
    SetState(1, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    changes.clear();
    SetState(3, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    EXPECT_EQ(Selected(), std::vector<int>{3});
    EXPECT_EQ(changes, (std::vector<Change>{{1, LVIS_SELECTED | LVIS_FOCUSED, 0},
                                            {3, 0, LVIS_SELECTED | LVIS_FOCUSED}}));
    EXPECT_FALSE(SetState(-1, LVIS_SELECTED, LVIS_SELECTED));
    EXPECT_EQ(Selected(), std::vector<int>{3});
}

TEST_F(ListControl, NextItemGoesOnBehindTheRowItIsGiven)
{
    MakeFive(Several);
    SetState(0, LVIS_SELECTED, LVIS_SELECTED);
    SetState(3, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    const auto next = [this](int row, UINT flags) {
        return Send(LVM_GETNEXTITEM, static_cast<WPARAM>(row), MAKELPARAM(flags, 0));
    };
    EXPECT_EQ(next(-1, LVNI_SELECTED), 0);
    EXPECT_EQ(next(0, LVNI_SELECTED), 3);
    EXPECT_EQ(next(3, LVNI_SELECTED), -1);
    EXPECT_EQ(next(-1, LVNI_FOCUSED), 3);
    EXPECT_EQ(next(3, LVNI_FOCUSED), -1);
    EXPECT_EQ(next(-1, LVNI_FOCUSED | LVNI_SELECTED), 3);
    EXPECT_EQ(next(-1, LVNI_ALL), 0);
    EXPECT_EQ(next(3, LVNI_ALL), 4);
    EXPECT_EQ(next(4, LVNI_ALL), -1);
    EXPECT_EQ(next(INT_MAX, LVNI_ALL), -1);
    SetState(3, 0, LVIS_SELECTED);
    EXPECT_EQ(next(-1, LVNI_FOCUSED | LVNI_SELECTED), -1);
}

TEST_F(ListControl, FindingByTagTakesTheFirstBehindTheStart)
{
    Make(Several);
    for (int row = 0; row < 6; ++row)
        Add(row, TEXT("x"), row % 3);
    LVFINDINFOW wanted{};
    wanted.flags = LVFI_PARAM;
    wanted.lParam = 2;
    EXPECT_EQ(Send(LVM_FINDITEMW, static_cast<WPARAM>(-1), &wanted), 2);
    EXPECT_EQ(Send(LVM_FINDITEMW, 2, &wanted), 5);
    EXPECT_EQ(Send(LVM_FINDITEMW, 5, &wanted), -1);
    EXPECT_EQ(Send(LVM_FINDITEMW, INT_MAX, &wanted), -1);
    wanted.flags = 0;
    EXPECT_EQ(Send(LVM_FINDITEMW, static_cast<WPARAM>(-1), &wanted), -1);
    EXPECT_EQ(Send(LVM_FINDITEMW, static_cast<WPARAM>(-1), 0), -1);
}

TEST_F(ListControl, SortingKeepsEqualRowsInOrderAndStatesWithTheirRows)
{
    Make(Several);
    const std::pair<const WCHAR*, int> rows[] = {{TEXT("c1"), 3}, {TEXT("a1"), 1}, {TEXT("c2"), 3},
                                                 {TEXT("b1"), 2}, {TEXT("a2"), 1}, {TEXT("c3"), 3},
                                                 {TEXT("b2"), 2}};
    int at = 0;
    for (const auto& [text, tag] : rows)
        Add(at++, text, tag);
    SetState(3, LVIS_SELECTED, LVIS_SELECTED);
    SetState(0, LVIS_FOCUSED, LVIS_FOCUSED);
    codes.clear();
    EXPECT_TRUE(Send(LVM_SORTITEMS, 0, reinterpret_cast<LPARAM>(ByTag)));
    EXPECT_EQ(Texts(),
              (std::vector<std::u16string>{u"a1", u"a2", u"b1", u"b2", u"c1", u"c2", u"c3"}));
    EXPECT_EQ(Selected(), std::vector<int>{2});
    EXPECT_EQ(Focus(), 4);
    EXPECT_TRUE(codes.empty());
    EXPECT_FALSE(Send(LVM_SORTITEMS));
}

namespace
{

/// Sorts by the text, which it asks the control for.
int CALLBACK ByText(LPARAM first, LPARAM second, LPARAM window)
{
    const auto list = reinterpret_cast<HWND>(window);
    std::u16string texts[2];
    for (const LPARAM tag : {first, second}) {
        LVFINDINFOW wanted{};
        wanted.flags = LVFI_PARAM;
        wanted.lParam = tag;
        WCHAR buffer[32] = {};
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.iItem = static_cast<int>(SendMessageW(list, LVM_FINDITEMW, static_cast<WPARAM>(-1),
                                                   reinterpret_cast<LPARAM>(&wanted)));
        item.pszText = buffer;
        item.cchTextMax = 32;
        SendMessageW(list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        texts[tag == first ? 0 : 1] = buffer;
    }
    return texts[0].compare(texts[1]);
}

int CALLBACK Deleting(LPARAM, LPARAM, LPARAM window)
{
    SendMessageW(reinterpret_cast<HWND>(window), LVM_DELETEITEM, 0, 0);
    return 1;
}

int CALLBACK Destroying(LPARAM, LPARAM, LPARAM window)
{
    DestroyWindow(reinterpret_cast<HWND>(window));
    return 1;
}

int CALLBACK Contradicting(LPARAM, LPARAM, LPARAM)
{
    static unsigned number = 1;
    number = number * 1103515245u + 12345u;
    return (number >> 16) % 3 == 0 ? 1 : -1;
}

} // namespace

TEST_F(ListControl, TheItemsCanBeReadWhileTheSortRuns)
{
    Make(Several);
    for (int row = 0; row < 40; ++row) {
        const std::u16string text =
            u"t" + std::u16string(1, static_cast<char16_t>('A' + row * 17 % 40));
        Add(row, text.c_str(), 1000 + row);
    }
    std::vector<std::u16string> expected = Texts();
    std::sort(expected.begin(), expected.end());
    EXPECT_TRUE(
        Send(LVM_SORTITEMS, reinterpret_cast<WPARAM>(list), reinterpret_cast<LPARAM>(ByText)));
    EXPECT_EQ(Texts(), expected);
}

TEST_F(ListControl, ACompareFunctionThatTakesRowsAwayEndsTheSort)
{
    MakeFive(Several);
    EXPECT_FALSE(
        Send(LVM_SORTITEMS, reinterpret_cast<WPARAM>(list), reinterpret_cast<LPARAM>(Deleting)));
    EXPECT_EQ(Texts(), (std::vector<std::u16string>{u"beta", u"gamma", u"delta", u"日本語"}));
    EXPECT_FALSE(
        Send(LVM_SORTITEMS, reinterpret_cast<WPARAM>(list), reinterpret_cast<LPARAM>(Destroying)));
    EXPECT_FALSE(IsWindow(list));
}

TEST_F(ListControl, ACompareFunctionThatContradictsItselfLosesNoRow)
{
    Make(Several);
    for (int row = 0; row < 100; ++row)
        Add(row, TEXT("x"), row);
    Send(LVM_SORTITEMS, 0, reinterpret_cast<LPARAM>(Contradicting));
    std::set<LPARAM> tags;
    for (int row = 0; row < 100; ++row)
        tags.insert(Tag(row));
    EXPECT_EQ(tags.size(), 100u);
}

TEST_F(ListControl, FiveThousandRowsGoInAndSortFast)
{
    Make(Several);
    const auto start = std::chrono::steady_clock::now();
    for (int row = 0; row < 5000; ++row) {
        const std::u16string text =
            std::u16string(1, static_cast<char16_t>('0' + row * 7919 % 5000));
        Add(row, text.c_str(), row);
    }
    EXPECT_TRUE(
        Send(LVM_SORTITEMS, reinterpret_cast<WPARAM>(list), reinterpret_cast<LPARAM>(ByText)));
    Pump(1);
    const auto took = std::chrono::steady_clock::now() - start;
    // Generous for a build with sanitizers; a walk over all rows at each question takes minutes.
    EXPECT_LT(std::chrono::duration_cast<std::chrono::milliseconds>(took).count(), 5000);
    EXPECT_EQ(Send(LVM_GETITEMCOUNT), 5000);
    for (int row = 1; row < 5000; ++row)
        ASSERT_LE(Text(row - 1), Text(row));
}

TEST_F(ListControl, FiveThousandRowsWithTheirTextsAtHandSortWithoutAPause)
{
    Make(Several);
    for (int row = 0; row < 5000; ++row)
        Add(row, TEXT("x"), row * 7919 % 5000);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(Send(LVM_SORTITEMS, 0, reinterpret_cast<LPARAM>(ByTag)));
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    RecordProperty("milliseconds", static_cast<int>(took.count()));
#ifdef NDEBUG
    EXPECT_LT(took.count(), 50);
#else
    EXPECT_LT(took.count(), 500) << "with sanitizers";
#endif
    for (int row = 0; row < 5000; ++row)
        ASSERT_EQ(Tag(row), row);
}

TEST(ListControlInADialog, EnterOnTheListIsTheDefaultButtons)
{
    const Scope scope;
    const TestWindow owner;
    std::vector<int> pressed;
    static std::vector<int>* told = nullptr;
    told = &pressed;
    const DLGPROC procedure = [](HWND, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED && LOWORD(wParam) <= IDCANCEL)
            told->push_back(LOWORD(wParam));
        return message == WM_INITDIALOG;
    };
    OnModal([&](HWND dialog, bool) {
        const HWND list = CreateWindowExW(0, WC_LISTVIEWW, TEXT(""),
                                          WS_CHILD | WS_VISIBLE | WS_TABSTOP | LVS_REPORT, 5, 150,
                                          90, 50, dialog, nullptr, nullptr, nullptr);
        SetFocus(list);
        Pump(20);
        TypeKey(VK_RETURN);
        EXPECT_EQ(pressed, std::vector<int>{IDOK});
        EXPECT_EQ(GetFocus(), list);
        EndDialog(dialog, 1);
    });
    DialogBoxIndirectParamW(ControlResources(), DialogResource(230), owner.handle, procedure, 0);
}

TEST_F(ListControl, AClickSelectsTellsAndIsReported)
{
    MakeFive(Several);
    Click(2);
    EXPECT_EQ(Selected(), std::vector<int>{2});
    EXPECT_EQ(Focus(), 2);
    EXPECT_EQ(GetFocus(), list);
    EXPECT_EQ(codes, (std::vector<int>{-101, -101, -2}));
    EXPECT_EQ(changes, (std::vector<Change>{{2, 0, LVIS_SELECTED},
                                            {2, LVIS_SELECTED, LVIS_SELECTED | LVIS_FOCUSED}}));
    EXPECT_EQ(last.iItem, 2);
    EXPECT_EQ(last.iSubItem, 0);
    EXPECT_EQ(last.lParam, 102);
    Click(4);
    EXPECT_EQ(Selected(), std::vector<int>{4});
    const POINT below = OnScreen({20, 150});
    ClickScreen(below.x, below.y);
    EXPECT_EQ(Selected(), std::vector<int>{});
    EXPECT_EQ(last.hdr.code, NM_CLICK);
    EXPECT_EQ(last.iItem, -1);
}

TEST_F(ListControl, AClickOnASubItemTellsItsColumn)
{
    MakeFive(Several);
    const RECT row = Place(3, LVIR_BOUNDS);
    const POINT at = OnScreen({130, (row.top + row.bottom) / 2});
    ClickScreen(at.x, at.y);
    EXPECT_EQ(last.hdr.code, NM_CLICK);
    EXPECT_EQ(last.iItem, 3);
    EXPECT_EQ(last.iSubItem, 1);
}

TEST_F(ListControl, ADoubleClickIsToldAfterTheClick)
{
    MakeFive(Several);
    const POINT at = Middle(1);
    DoubleClickScreen(at.x, at.y);
    EXPECT_EQ(Selected(), std::vector<int>{1});
    EXPECT_EQ(codes, (std::vector<int>{-101, -101, -2, -3}));
    EXPECT_EQ(last.iItem, 1);
}

TEST_F(ListControl, APressThatIsDraggedAwayIsNoClick)
{
    MakeFive(Several);
    const POINT from = Middle(1);
    const POINT to = Middle(3);
    DragScreen(from.x, from.y, to.x, to.y);
    EXPECT_EQ(Selected(), std::vector<int>{1});
    EXPECT_EQ(codes, (std::vector<int>{-101, -101}));
}

TEST_F(ListControl, ControlAndShiftSelectSeveralRows)
{
    MakeFive(Several);
    Click(1);
    Click(3, MK_CONTROL);
    EXPECT_EQ(Selected(), (std::vector<int>{1, 3}));
    Click(1, MK_CONTROL);
    EXPECT_EQ(Selected(), std::vector<int>{3});
    Click(4);
    Click(2, MK_SHIFT);
    EXPECT_EQ(Selected(), (std::vector<int>{2, 3, 4}));
    EXPECT_EQ(Focus(), 2);
    Click(0);
    EXPECT_EQ(Selected(), std::vector<int>{0});
}

TEST_F(ListControl, AListForOneSelectionTakesOneRowWhateverIsHeld)
{
    MakeFive(LVS_REPORT | LVS_SINGLESEL);
    Click(1);
    Click(3, MK_CONTROL);
    EXPECT_EQ(Selected(), std::vector<int>{3});
    Click(0, MK_SHIFT);
    EXPECT_EQ(Selected(), std::vector<int>{0});
}

TEST_F(ListControl, KeysMoveTheSelection)
{
    MakeFive(Several);
    SetFocus(list);
    TypeKey(VK_DOWN);
    EXPECT_EQ(Selected(), std::vector<int>{0});
    TypeKey(VK_DOWN);
    TypeKey(VK_DOWN, MK_SHIFT);
    EXPECT_EQ(Selected(), (std::vector<int>{1, 2}));
    TypeKey(VK_END);
    EXPECT_EQ(Selected(), std::vector<int>{4});
    TypeKey(VK_DOWN);
    EXPECT_EQ(Selected(), std::vector<int>{4});
    TypeKey(VK_UP, MK_CONTROL);
    EXPECT_EQ(Selected(), std::vector<int>{4});
    EXPECT_EQ(Focus(), 3);
    TypeKey(VK_SPACE);
    EXPECT_EQ(Selected(), (std::vector<int>{3, 4}));
    TypeKey(VK_SPACE, MK_CONTROL);
    EXPECT_EQ(Selected(), std::vector<int>{4});
    TypeKey(VK_HOME);
    EXPECT_EQ(Selected(), std::vector<int>{0});
}

TEST_F(ListControl, TypingGoesToARowThatBeginsSo)
{
    MakeFive(Several);
    Add(1, TEXT("bravo"));
    SetFocus(list);
    TypeKey('D');
    EXPECT_EQ(Selected(), std::vector<int>{4});
    TypeKey('X');
    EXPECT_EQ(Selected(), std::vector<int>{4}) << "no row begins with dx";
    Sleep(1100); // a pause begins a new text
    TypeKey('B');
    EXPECT_EQ(Selected(), std::vector<int>{1});
    TypeKey('E');
    EXPECT_EQ(Selected(), std::vector<int>{2});
    Sleep(1100);
    TypeKey('B');
    TypeKey('B');
    EXPECT_EQ(Selected(), std::vector<int>{2}) << "a letter again goes on to the next row";
}

TEST_F(ListControl, ArrowsFollowTheArrangementOfEachView)
{
    MakeFive(LVS_ICON); // cells of 75 pixels, three to a line
    SetState(0, LVIS_FOCUSED, LVIS_FOCUSED);
    SetFocus(list);
    TypeKey(VK_RIGHT);
    EXPECT_EQ(Focus(), 1);
    TypeKey(VK_DOWN);
    EXPECT_EQ(Focus(), 4);
    TypeKey(VK_LEFT);
    EXPECT_EQ(Focus(), 3);
    TypeKey(VK_UP);
    EXPECT_EQ(Focus(), 0);
    SetWindowLongPtrW(list, GWL_STYLE, WS_CHILD | LVS_LIST);
    TypeKey(VK_DOWN);
    EXPECT_EQ(Focus(), 1);
    TypeKey(VK_RIGHT);
    EXPECT_EQ(Focus(), 1) << "all rows stand in one column";
}

TEST_F(ListControl, AClickOnAHeadTellsItsColumn)
{
    MakeFive(Several);
    const POINT at = OnScreen({130, 8});
    ClickScreen(at.x, at.y);
    EXPECT_EQ(codes, std::vector<int>{-108});
    EXPECT_EQ(last.iSubItem, 1);
    EXPECT_EQ(last.iItem, -1);
    const POINT behind = OnScreen({200, 8});
    ClickScreen(behind.x, behind.y);
    EXPECT_EQ(codes.size(), 1u);
    SetWindowLongPtrW(list, GWL_STYLE,
                      GetWindowLongPtrW(list, GWL_STYLE) | static_cast<LONG_PTR>(LVS_NOSORTHEADER));
    ClickScreen(at.x, at.y);
    EXPECT_EQ(codes.size(), 1u);
}

TEST_F(ListControl, TheLineBetweenTwoHeadsCanBeDragged)
{
    MakeFive(Several);
    const POINT from = OnScreen({100, 8});
    DragScreen(from.x, from.y, from.x + 30, from.y);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 0), 130);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 1), 60);
    EXPECT_TRUE(codes.empty());
    DragScreen(from.x + 30, from.y, from.x - 200, from.y);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 0), 0);
}

TEST_F(ListControl, WithoutPicturesTheFirstColumnsTextsBeginAtItsEdge)
{
    MakeFive(Several);
    Pump(20);
    EXPECT_EQ(Place(2, LVIR_LABEL).left, 0);
    GiveIcons(LVSIL_SMALL, 16);
    Pump(20);
    EXPECT_GT(Place(2, LVIR_LABEL).left, 16);
}

// A text is shown whole when no three dots stand at its end: then a wider column changes nothing.
TEST_F(ListControl, ADoubleClickOnTheLineMakesTheColumnAsWideAsItsTexts)
{
    MakeFive(Several);
    GiveIcons(LVSIL_SMALL, 16);
    SetText(2, 1, u"a text that is wider than its column");
    const POINT line = OnScreen({160, 8});
    DoubleClickScreen(line.x, line.y);
    Pump(20);
    const LRESULT fitted = Send(LVM_GETCOLUMNWIDTH, 1);
    EXPECT_GT(fitted, 150);
    EXPECT_LT(fitted, 400);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 0), 100) << "the other stays";
    EXPECT_TRUE(codes.empty());
    MoveScreen(line.x + 60, line.y);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 1), fitted) << "nothing is dragged";

    // The first column has its picture beside the text.
    const POINT first = OnScreen({100, 8});
    DoubleClickScreen(first.x, first.y);
    Pump(20);
    const LRESULT narrow = Send(LVM_GETCOLUMNWIDTH, 0);
    EXPECT_LT(narrow, 100);
    const auto shown = [&](int row) {
        const RECT place = Place(row, LVIR_BOUNDS);
        const Picture picture = WindowPixels(list);
        std::vector<uint32_t> pixels;
        for (LONG y = place.top; y < place.bottom; ++y)
            for (LONG x = 0; x < narrow - 1; ++x)
                pixels.push_back(picture.At(static_cast<int>(x), static_cast<int>(y)));
        return pixels;
    };
    std::vector<std::vector<uint32_t>> before;
    for (int row = 0; row < 5; ++row)
        before.push_back(shown(row));
    const POINT edge = OnScreen({static_cast<LONG>(narrow), 8});
    DragScreen(edge.x, edge.y, edge.x + 50, edge.y);
    Pump(20);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 0), narrow + 50);
    for (int row = 0; row < 5; ++row)
        EXPECT_EQ(shown(row), before[static_cast<size_t>(row)]) << row;
}

TEST_F(ListControl, ControlAndPlusMakeAllColumnsAsWideAsTheirTexts)
{
    for (const bool keypad : {false, true}) {
        MakeFive(Several);
        SetText(2, 1, u"a text that is wider than its column");
        SetFocus(list);
        const Qt::KeyboardModifiers held = keypad ? Qt::KeypadModifier : Qt::NoModifier;
        const auto press = [](Qt::KeyboardModifiers modifiers) {
            QKeyEvent event(QEvent::KeyPress, Qt::Key_Plus, modifiers);
            QCoreApplication::sendEvent(QApplication::focusWidget(), &event);
        };
        press(held);
        Pump(20);
        EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 1), 60) << "not without Control";
        press(held | Qt::ControlModifier);
        Pump(20);
        EXPECT_GT(Send(LVM_GETCOLUMNWIDTH, 1), 150) << keypad;
        EXPECT_LT(Send(LVM_GETCOLUMNWIDTH, 0), 100) << keypad;
        DestroyWindow(list);
    }
}

TEST_F(ListControl, EachViewShowsItsIconsAndTexts)
{
    MakeFive(Several);
    GiveIcons(LVSIL_NORMAL, 32);
    GiveIcons(LVSIL_SMALL, 16);
    const std::pair<UINT, int> views[] = {
        {LVS_REPORT, 16}, {LVS_LIST, 16}, {LVS_SMALLICON, 16}, {LVS_ICON, 32}};
    for (const auto& [view, side] : views) {
        SCOPED_TRACE(view);
        SetWindowLongPtrW(list, GWL_STYLE,
                          (GetWindowLongPtrW(list, GWL_STYLE) & ~LONG_PTR{3}) | view);
        Pump(20);
        for (int row = 0; row < 5; ++row) {
            const RECT icon = Place(row, LVIR_ICON);
            EXPECT_EQ(icon.right - icon.left, side);
            EXPECT_EQ(icon.bottom - icon.top, side);
            // The even rows have the error's sign, which is red, the odd ones a blue one.
            if (row % 2 == 0)
                EXPECT_GT(Reds(icon), side * side / 4) << row;
            else
                EXPECT_EQ(Reds(icon), 0) << row;
            EXPECT_GT(Colors(icon), 2u) << row;
            EXPECT_GT(Colors(Place(row, LVIR_LABEL)), 1u) << row;
        }
        SetText(4, 0, TEXT(""));
        EXPECT_EQ(Colors(Place(4, LVIR_LABEL)),
                  Place(4, LVIR_LABEL).right > Place(4, LVIR_LABEL).left &&
                          Place(4, LVIR_LABEL).bottom > Place(4, LVIR_LABEL).top
                      ? 1u
                      : 0u);
        SetText(4, 0, TEXT("日本語"));
    }
}

TEST_F(ListControl, AnImageListThatIsGoneLeavesTheRowsWithoutIcons)
{
    MakeFive(Several);
    GiveIcons(LVSIL_SMALL, 16);
    Pump(20);
    const RECT icon = Place(0, LVIR_ICON);
    EXPECT_GT(Colors(icon), 2u);
    ImageList_Destroy(images[0]);
    EXPECT_EQ(Colors(icon), 1u);
    EXPECT_EQ(Send(LVM_SETIMAGELIST, LVSIL_SMALL, 0), reinterpret_cast<LRESULT>(images[0]));
    EXPECT_EQ(Send(LVM_SETIMAGELIST, 2, 0x1234), 0);
    LVITEMW item{};
    item.mask = LVIF_IMAGE;
    item.iImage = INT_MAX;
    GiveIcons(LVSIL_SMALL, 16);
    EXPECT_TRUE(Send(LVM_SETITEMW, 0, &item));
    EXPECT_EQ(Colors(Place(0, LVIR_ICON)), 1u);
}

TEST_F(ListControl, ASubItemsTextStandsInItsColumn)
{
    MakeFive(Several);
    const RECT row = Place(1, LVIR_BOUNDS);
    const RECT cell{100, row.top, 160, row.bottom};
    const RECT right{130, row.top, 160, row.bottom};
    EXPECT_EQ(Colors(cell), 1u);
    SetText(1, 1, TEXT("12"));
    EXPECT_GT(Colors(right), 1u) << "numbers stand to the right here";
    EXPECT_EQ(Colors({100, row.top, 130, row.bottom}), 1u);
}

TEST_F(ListControl, ASelectionIsLitWithTheKeyboardAndStaysGreyWhereTheStyleSaysSo)
{
    MakeFive(Several);
    const HWND other = CreateWindowExW(0, TEXT("BUTTON"), TEXT("b"), WS_CHILD | WS_VISIBLE, 300, 20,
                                       50, 20, parent.handle, nullptr, nullptr, nullptr);
    const auto ground = [this] {
        Pump(20);
        const RECT label = Place(1, LVIR_LABEL);
        return Pixels({label.left + 1, label.top + 1, label.left + 2, label.top + 2}).at(0);
    };
    const uint32_t plain = ground();
    Click(1);
    const uint32_t lit = ground();
    EXPECT_NE(lit, plain);
    SetFocus(other);
    EXPECT_EQ(ground(), plain);
    SetWindowLongPtrW(list, GWL_STYLE,
                      GetWindowLongPtrW(list, GWL_STYLE) |
                          static_cast<LONG_PTR>(LVS_SHOWSELALWAYS));
    EXPECT_NE(ground(), plain);
    EXPECT_NE(ground(), lit);
}

TEST_F(ListControl, EnsuringARowScrollsToIt)
{
    Make(Several);
    AddColumn(0, TEXT("a"), 100);
    for (int row = 0; row < 200; ++row)
        Add(row, TEXT("row"), row);
    const auto shown = [this](int row) {
        const RECT place = Place(row, LVIR_BOUNDS);
        return place.top >= 0 && place.bottom <= 160;
    };
    EXPECT_TRUE(shown(0));
    EXPECT_FALSE(shown(150));
    EXPECT_TRUE(Send(LVM_ENSUREVISIBLE, 150, FALSE));
    EXPECT_TRUE(shown(150));
    EXPECT_FALSE(shown(0));
    EXPECT_TRUE(Send(LVM_ENSUREVISIBLE, 0, FALSE));
    EXPECT_TRUE(shown(0));
    EXPECT_FALSE(Send(LVM_ENSUREVISIBLE, 200, FALSE));
    EXPECT_FALSE(Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(-1), FALSE));
    SetWindowLongPtrW(list, GWL_STYLE, WS_CHILD | LVS_LIST);
    EXPECT_TRUE(Send(LVM_ENSUREVISIBLE, 199, FALSE));
    EXPECT_LE(Place(199, LVIR_BOUNDS).right, 240);
    EXPECT_LT(Place(0, LVIR_BOUNDS).right, 0);
}

TEST_F(ListControl, TheParentMayEndTheControlInAnyHandler)
{
    for (const UINT fatal : {LVN_ITEMCHANGED, NM_CLICK, NM_DBLCLK}) {
        SCOPED_TRACE(static_cast<int>(fatal));
        handler = nullptr;
        MakeFive(Several);
        handler = [this, fatal](const NMLISTVIEW& record) {
            if (record.hdr.code == fatal)
                DestroyWindow(list);
        };
        const POINT at = Middle(1);
        DoubleClickScreen(at.x, at.y);
        EXPECT_FALSE(IsWindow(list));
        Pump(20);
    }
    handler = nullptr;
    MakeFive(Several);
    handler = [this](const NMLISTVIEW&) { DestroyWindow(list); };
    SetState(-1, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_FALSE(IsWindow(list));
    EXPECT_EQ(changes.size(), 1u);
    handler = nullptr;
    MakeFive(Several);
    handler = [this](const NMLISTVIEW&) { DestroyWindow(list); };
    const POINT head = OnScreen({20, 8});
    ClickScreen(head.x, head.y);
    EXPECT_FALSE(IsWindow(list));
    Pump(20);
    EXPECT_EQ(Send(LVM_GETITEMCOUNT), 0) << "a stale handle";
}

TEST_F(ListControl, TheParentMayRefillTheListInADoubleClick)
{
    MakeFive(Several);
    handler = [this](const NMLISTVIEW& record) {
        if (record.hdr.code != NM_DBLCLK)
            return;
        Send(LVM_DELETEALLITEMS);
        Add(0, TEXT("new"), 7);
    };
    const POINT at = Middle(4);
    DoubleClickScreen(at.x, at.y);
    Pump(20);
    EXPECT_EQ(Texts(), std::vector<std::u16string>{u"new"});
    EXPECT_EQ(Selected(), std::vector<int>{});
}

namespace
{

WNDPROC before = nullptr;
std::vector<UINT> seen;

LRESULT CALLBACK InFront(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_KEYDOWN || message == WM_CHAR || message == WM_LBUTTONDOWN)
        seen.push_back(message);
    if (message == WM_KEYDOWN && wParam == VK_DOWN)
        wParam = VK_END;
    if (message == WM_LBUTTONDOWN)
        return 0;
    return CallWindowProcW(before, window, message, wParam, lParam);
}

} // namespace

TEST_F(ListControl, AProcedureInFrontSeesTheInputFirstAndMayChangeIt)
{
    MakeFive(Several);
    SetFocus(list);
    seen.clear();
    before = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(InFront)));
    SetState(1, LVIS_FOCUSED, LVIS_FOCUSED);
    TypeKey(VK_DOWN);
    EXPECT_EQ(Selected(), std::vector<int>{4});
    Click(1);
    EXPECT_EQ(Selected(), std::vector<int>{4}) << "swallowed";
    EXPECT_EQ(seen, (std::vector<UINT>{WM_KEYDOWN, WM_LBUTTONDOWN}));
}

TEST_F(ListControl, ADisabledListTakesNoInput)
{
    MakeFive(Several);
    EnableWindow(list, FALSE);
    Click(1);
    EXPECT_EQ(Selected(), std::vector<int>{});
    EXPECT_TRUE(codes.empty());
}
