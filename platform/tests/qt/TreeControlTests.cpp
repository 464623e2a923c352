// What the tree keeps of its items: order, records, bad handles, large numbers.
#include "platform/tests/qt/TestWindow.h"
#include "platform/tests/qt/TreeFixture.h"

#include <algorithm>
#include <thread>

using namespace tavrix::test;
using namespace tavrix::testing;

namespace
{

using TreeControl = TreeFamilyTest;

} // namespace

TEST_F(TreeControl, ANewTreeIsEmpty)
{
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(Send(TVM_GETCOUNT), 0);
    EXPECT_EQ(Next(TVGN_ROOT), nullptr);
    EXPECT_EQ(Selected(), nullptr);
    EXPECT_EQ(Send(TVM_GETIMAGELIST, TVSIL_NORMAL), 0);
}

TEST_F(TreeControl, ItemsStandWhereTheyWereInserted)
{
    const HTREEITEM c = Add(TVI_ROOT, u"c", 0, 0, TVI_LAST);
    const HTREEITEM first = Add(nullptr, u"a", 0, 0, TVI_FIRST);
    Add(TVI_ROOT, u"b", 0, 0, first);
    Add(nullptr, u"d", 0, 0, c);
    Add(TVI_ROOT, u"e", 0, 0, nullptr);
    EXPECT_EQ(Siblings(Next(TVGN_ROOT)), u"a b c d e");
    EXPECT_EQ(Send(TVM_GETCOUNT), 5);
    EXPECT_EQ(Next(TVGN_ROOT), first);
    std::u16string back;
    HTREEITEM last = c;
    while (Next(TVGN_NEXT, last) != nullptr)
        last = Next(TVGN_NEXT, last);
    for (HTREEITEM item = last; item != nullptr; item = Next(TVGN_PREVIOUS, item))
        back += Text(item);
    EXPECT_EQ(back, u"edcba");
}

TEST_F(TreeControl, AnItemAfterTheRootMarkStandsAtTheEndOfTheFirstLevel)
{
    AddFamily();
    const HTREEITEM c = Add(a, u"c", 0, 0, TVI_ROOT);
    EXPECT_EQ(Siblings(Next(TVGN_ROOT)), u"a b c");
    EXPECT_EQ(Next(TVGN_PARENT, c), nullptr);
}

TEST_F(TreeControl, ChildrenAndParentsFindEachOther)
{
    AddFamily();
    EXPECT_EQ(Send(TVM_GETCOUNT), 6);
    EXPECT_EQ(Next(TVGN_CHILD, a), a1);
    EXPECT_EQ(Next(TVGN_CHILD, a1), nullptr);
    EXPECT_EQ(Next(TVGN_PARENT, b2), b);
    EXPECT_EQ(Next(TVGN_PARENT, b), nullptr);
    EXPECT_EQ(Next(TVGN_NEXT, a2), nullptr) << "siblings alone";
    EXPECT_EQ(Next(TVGN_PREVIOUS, b1), nullptr);
    EXPECT_EQ(Next(TVGN_CHILD, TVI_ROOT), a);
    EXPECT_EQ(Next(TVGN_ROOT, b2), a) << "whatever item comes with it";
    EXPECT_EQ(Next(77, a), nullptr);
}

TEST_F(TreeControl, AnItemGoesBehindASiblingOnly)
{
    AddFamily();
    EXPECT_EQ(Add(a, u"x", 0, 0, b1), nullptr);
    EXPECT_EQ(Add(TVI_ROOT, u"x", 0, 0, a1), nullptr);
    EXPECT_EQ(Add(a1, u"x", 0, 0, a1), nullptr);
    EXPECT_EQ(Send(TVM_GETCOUNT), 6);
    EXPECT_NE(Add(a, u"x", 0, 0, a1), nullptr);
    EXPECT_EQ(Siblings(a1), u"a1 x a2");
}

TEST_F(TreeControl, GettingFillsWhatTheMaskNamesAndNothingElse)
{
    TVINSERTSTRUCTW record{};
    WCHAR text[] = TEXT("名前");
    record.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM;
    record.item.pszText = text;
    record.item.iImage = 4;
    record.item.iSelectedImage = 5;
    record.item.lParam = static_cast<LPARAM>(0x8123456789ABCDEFull);
    record.hInsertAfter = TVI_LAST;
    const HTREEITEM item = Insert(record);

    const auto fresh = [item](UINT mask, WCHAR* buffer) {
        TVITEMW get{};
        get.mask = mask;
        get.hItem = item;
        get.state = get.stateMask = 0x55;
        get.pszText = buffer;
        get.cchTextMax = 8;
        get.iImage = get.iSelectedImage = get.cChildren = 99;
        get.lParam = 98;
        return get;
    };
    WCHAR buffer[8] = TEXT("before");
    TVITEMW get = fresh(0, buffer);
    EXPECT_TRUE(Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&get)));
    EXPECT_EQ(std::u16string(buffer), u"before");
    EXPECT_EQ(get.iImage, 99);
    EXPECT_EQ(get.iSelectedImage, 99);
    EXPECT_EQ(get.cChildren, 99);
    EXPECT_EQ(get.state, 0x55u);
    EXPECT_EQ(get.lParam, 98);

    get =
        fresh(TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM | TVIF_CHILDREN | TVIF_STATE,
              buffer);
    EXPECT_TRUE(Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&get)));
    EXPECT_EQ(std::u16string(buffer), u"名前");
    EXPECT_EQ(get.iImage, 4);
    EXPECT_EQ(get.iSelectedImage, 5);
    EXPECT_EQ(get.cChildren, 0);
    EXPECT_EQ(get.state, 0u);
    EXPECT_EQ(get.lParam, static_cast<LPARAM>(0x8123456789ABCDEFull)) << "as wide as a pointer";
}

TEST_F(TreeControl, WhatWasNotGivenIsZero)
{
    TVINSERTSTRUCTW record{};
    const HTREEITEM item = Insert(record);
    ASSERT_NE(item, nullptr);
    TVITEMW get{};
    WCHAR buffer[4] = TEXT("xyz");
    get.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM;
    get.hItem = item;
    get.pszText = buffer;
    get.cchTextMax = 4;
    get.iImage = get.iSelectedImage = 7;
    get.lParam = 7;
    EXPECT_TRUE(Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&get)));
    EXPECT_EQ(std::u16string(buffer), u"");
    EXPECT_EQ(get.iImage, 0);
    EXPECT_EQ(get.iSelectedImage, 0);
    EXPECT_EQ(get.lParam, 0);
}

TEST_F(TreeControl, ATextIsCutToItsBufferAndAlwaysEnds)
{
    const HTREEITEM item = Add(TVI_ROOT, u"プラグイン");
    WCHAR buffer[8];
    const auto get = [&](WCHAR* target, int capacity) {
        std::fill_n(buffer, 8, u'#');
        TVITEMW record{};
        record.mask = TVIF_TEXT;
        record.hItem = item;
        record.pszText = target;
        record.cchTextMax = capacity;
        EXPECT_TRUE(Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&record)));
        return std::u16string(buffer, 8);
    };
    EXPECT_EQ(get(buffer, 8), std::u16string(u"プラグイン\0##", 8));
    EXPECT_EQ(get(buffer, 6), std::u16string(u"プラグイン\0##", 8));
    EXPECT_EQ(get(buffer, 5), std::u16string(u"プラグイ\0###", 8));
    EXPECT_EQ(get(buffer, 1), std::u16string(u"\0#######", 8));
    EXPECT_EQ(get(buffer, 0), u"########");
    EXPECT_EQ(get(buffer, -5), u"########");
    EXPECT_EQ(get(nullptr, 8), u"########");
}

TEST_F(TreeControl, SettingChangesWhatTheMaskNamesAndNothingElse)
{
    const HTREEITEM item = Add(TVI_ROOT, u"old", 5, 1);
    WCHAR text[] = TEXT("new");
    TVITEMW set{};
    set.mask = TVIF_TEXT;
    set.hItem = item;
    set.pszText = text;
    set.iImage = set.iSelectedImage = 9;
    set.lParam = 9;
    EXPECT_TRUE(Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set)));
    TVITEMW get{};
    get.mask = TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM;
    get.hItem = item;
    Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&get));
    EXPECT_EQ(Text(item), u"new");
    EXPECT_EQ(get.iImage, 1);
    EXPECT_EQ(get.iSelectedImage, 1);
    EXPECT_EQ(get.lParam, 5);

    set.mask = TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM;
    set.iSelectedImage = 8;
    EXPECT_TRUE(Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set)));
    Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&get));
    EXPECT_EQ(get.iImage, 9);
    EXPECT_EQ(get.iSelectedImage, 8);
    EXPECT_EQ(get.lParam, 9);
    EXPECT_TRUE(notices.empty());
}

TEST_F(TreeControl, ATextThatIsNoneIsEmpty)
{
    const HTREEITEM item = Add(TVI_ROOT, u"old");
    TVITEMW set{};
    set.mask = TVIF_TEXT;
    set.hItem = item;
    EXPECT_TRUE(Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set)));
    EXPECT_EQ(Text(item), u"");
    set.pszText = reinterpret_cast<LPWSTR>(LONG_PTR{-1}); // asks to be called back for it
    EXPECT_TRUE(Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set)));
    EXPECT_EQ(Text(item), u"");
}

TEST_F(TreeControl, ChildrenAreToldAsLongAsThereAreSome)
{
    AddFamily();
    EXPECT_EQ(Children(a), 1);
    EXPECT_EQ(Children(a1), 0);
    Delete(a1);
    EXPECT_EQ(Children(a), 1);
    Delete(a2);
    EXPECT_EQ(Children(a), 0);
    TVITEMW set{};
    set.mask = TVIF_CHILDREN;
    set.hItem = a;
    set.cChildren = 1;
    Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set));
    EXPECT_EQ(Children(a), 1) << "the program says so";
    set.hItem = b;
    set.cChildren = 0;
    Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set));
    EXPECT_EQ(Children(b), 1) << "they are there all the same";
}

TEST_F(TreeControl, StatesAreSetThroughRecordsToo)
{
    AddFamily();
    TVITEMW set{};
    set.mask = TVIF_STATE;
    set.hItem = a;
    set.state = TVIS_EXPANDED | TVIS_SELECTED;
    set.stateMask = TVIS_EXPANDED;
    EXPECT_TRUE(Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set)));
    EXPECT_EQ(State(a), TVIS_EXPANDED) << "only what the state's mask names";
    set.stateMask = TVIS_SELECTED;
    EXPECT_TRUE(Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set)));
    EXPECT_EQ(Selected(), a);
    EXPECT_EQ(SelectionNotices(), 1u);
    set.state = 0;
    set.stateMask = TVIS_EXPANDED | TVIS_SELECTED;
    EXPECT_TRUE(Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set)));
    EXPECT_EQ(State(a), 0u);
    EXPECT_EQ(Selected(), nullptr);
    TVITEMW get{};
    get.mask = TVIF_STATE;
    get.hItem = a;
    get.stateMask = TVIS_EXPANDED;
    Select(a);
    Expand(a);
    Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&get));
    EXPECT_EQ(get.state, TVIS_EXPANDED) << "the selected bit was not asked for";
}

TEST_F(TreeControl, AnItemInsertedExpandedShowsItsChildrenOnceTheyCome)
{
    TVINSERTSTRUCTW record{};
    record.hInsertAfter = TVI_LAST;
    record.item.mask = TVIF_STATE;
    record.item.state = record.item.stateMask = TVIS_EXPANDED;
    const HTREEITEM parent = Insert(record);
    const HTREEITEM child = Add(parent, u"child");
    EXPECT_EQ(State(parent), TVIS_EXPANDED);
    Delete(child);
    EXPECT_EQ(State(parent), 0u) << "no parent, nothing expanded";
}

TEST_F(TreeControl, AnItemInsertedSelectedIsSelected)
{
    TVINSERTSTRUCTW record{};
    record.hInsertAfter = TVI_LAST;
    record.item.mask = TVIF_STATE;
    record.item.state = record.item.stateMask = TVIS_SELECTED;
    const HTREEITEM item = Insert(record);
    EXPECT_EQ(Selected(), item);
    EXPECT_EQ(SelectionNotices(), 1u);
}

TEST_F(TreeControl, StaleAndForeignItemsFailEverywhere)
{
    AddFamily();
    const HTREEITEM stale = Add(TVI_ROOT, u"gone");
    Delete(stale);
    EXPECT_NE(Add(TVI_ROOT, u"next"), stale) << "a handle is given out once";
    const HWND other = CreateWindowExW(0, WC_TREEVIEWW, nullptr, WS_CHILD, 0, 0, 50, 50, dialog,
                                       nullptr, nullptr, nullptr);
    TVINSERTSTRUCTW record{};
    const auto foreign = reinterpret_cast<HTREEITEM>(
        SendMessageW(other, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&record)));
    ASSERT_NE(foreign, nullptr);
    int something = 0;
    Select(b);
    notices.clear();
    const LRESULT count = Send(TVM_GETCOUNT);
    for (const HTREEITEM bad : {stale, foreign, reinterpret_cast<HTREEITEM>(&something),
                                reinterpret_cast<HTREEITEM>(tree), TVI_FIRST, TVI_LAST,
                                reinterpret_cast<HTREEITEM>(LONG_PTR{1})}) {
        EXPECT_EQ(Add(bad, u"x"), nullptr);
        if (bad != TVI_FIRST && bad != TVI_LAST) {
            EXPECT_EQ(Add(TVI_ROOT, u"x", 0, 0, bad), nullptr);
        }
        TVITEMW item{};
        item.hItem = bad;
        EXPECT_EQ(Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)), 0);
        EXPECT_EQ(Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item)), 0);
        for (const WPARAM which : {TVGN_NEXT, TVGN_PREVIOUS, TVGN_PARENT, TVGN_CHILD})
            EXPECT_EQ(Next(which, bad), nullptr);
        EXPECT_FALSE(Select(bad));
        EXPECT_FALSE(Expand(bad));
        EXPECT_FALSE(Delete(bad));
        EXPECT_EQ(Send(TVM_ENSUREVISIBLE, 0, bad), 0);
    }
    for (const HTREEITEM none : {TVI_ROOT, static_cast<HTREEITEM>(nullptr)}) {
        TVITEMW item{};
        item.hItem = none;
        EXPECT_EQ(Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)), 0);
        EXPECT_EQ(Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item)), 0);
        EXPECT_FALSE(Expand(none));
        EXPECT_EQ(Next(TVGN_NEXT, none), nullptr);
        EXPECT_EQ(Send(TVM_ENSUREVISIBLE, 0, none), 0);
    }
    EXPECT_FALSE(Select(TVI_ROOT));
    EXPECT_EQ(Send(TVM_GETCOUNT), count);
    EXPECT_EQ(Selected(), b);
    EXPECT_TRUE(notices.empty());
}

TEST_F(TreeControl, MessagesWithoutARecordFail)
{
    EXPECT_EQ(Send(TVM_INSERTITEMW), 0);
    EXPECT_EQ(Send(TVM_GETITEMW), 0);
    EXPECT_EQ(Send(TVM_SETITEMW), 0);
    EXPECT_EQ(Send(0x11FF), 0);
    EXPECT_EQ(Send(TVM_GETCOUNT), 0);
}

TEST_F(TreeControl, TheImageListIsAnsweredAndStaysTheProgramsOwn)
{
    const HIMAGELIST first = ImageList_Create(16, 16, ILC_MASK, 1, 0);
    const HIMAGELIST second = ImageList_Create(16, 16, ILC_MASK, 1, 0);
    const auto set = [this](HIMAGELIST list, WPARAM kind = TVSIL_NORMAL) {
        return reinterpret_cast<HIMAGELIST>(
            Send(TVM_SETIMAGELIST, kind, reinterpret_cast<LPARAM>(list)));
    };
    const auto get = [this](WPARAM kind = TVSIL_NORMAL) {
        return reinterpret_cast<HIMAGELIST>(Send(TVM_GETIMAGELIST, kind));
    };
    EXPECT_EQ(set(first), nullptr);
    EXPECT_EQ(get(), first);
    EXPECT_EQ(set(second), first);
    EXPECT_EQ(set(reinterpret_cast<HIMAGELIST>(&scope)), nullptr);
    EXPECT_EQ(get(), second) << "a foreign handle changes nothing";
    EXPECT_EQ(set(first, 2), nullptr);
    EXPECT_EQ(get(2), nullptr);
    EXPECT_EQ(get(), second);
    EXPECT_EQ(set(nullptr), second);
    EXPECT_EQ(get(), nullptr);
    set(first);
    DestroyWindow(tree);
    EXPECT_TRUE(ImageList_Destroy(first)) << "the tree took it not along";
    EXPECT_TRUE(ImageList_Destroy(second));
}

TEST_F(TreeControl, AProgramsWindowIsToldTooAndAnswers)
{
    NMTREEVIEWW seen{};
    HWND child = nullptr;
    TestWindow parent(
        [&](HWND, UINT message, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
            if (message != WM_NOTIFY || wParam != 9)
                return std::nullopt;
            seen = *reinterpret_cast<const NMTREEVIEWW*>(lParam);
            return 0;
        });
    child = CreateWindowExW(0, TEXT("systreeview32"), nullptr, WS_CHILD | WS_VISIBLE, 5, 5, 90, 90,
                            parent.handle, reinterpret_cast<HMENU>(INT_PTR{9}), nullptr, nullptr);
    ASSERT_NE(child, nullptr);
    TVINSERTSTRUCTW record{};
    record.item.mask = TVIF_PARAM;
    record.item.lParam = 1234;
    const LRESULT item = SendMessageW(child, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&record));
    SendMessageW(child, TVM_SELECTITEM, TVGN_CARET, item);
    EXPECT_EQ(seen.hdr.hwndFrom, child);
    EXPECT_EQ(seen.itemNew.lParam, 1234);
}

TEST_F(TreeControl, AWorkerMayFillTheTree)
{
    HTREEITEM made = nullptr;
    bool done = false;
    std::thread worker([&] {
        made = Add(TVI_ROOT, u"from a worker", 3);
        Select(made);
        PostMessageW(dialog, WM_NULL, 0, 0);
        done = true;
    });
    EXPECT_TRUE(PumpUntil([&] { return SelectionNotices() == 1; }));
    worker.join();
    EXPECT_TRUE(done);
    EXPECT_EQ(Text(made), u"from a worker");
    EXPECT_EQ(Selected(), made);
}

TEST_F(TreeControl, ThousandsOfItemsStayInOrder)
{
    constexpr int Groups = 7;
    constexpr int Each = 1024;
    Show();
    HTREEITEM group = nullptr;
    HTREEITEM last = nullptr;
    for (int g = 0; g < Groups; ++g) {
        group = Add(TVI_ROOT, u"group");
        for (int i = 0; i < Each; ++i)
            last = Add(group, u"項目", g << 16 | i, 1);
        Expand(group);
    }
    EXPECT_EQ(Send(TVM_GETCOUNT), Groups * (Each + 1));
    int index = 0;
    for (HTREEITEM item = Next(TVGN_CHILD, group); item != nullptr; item = Next(TVGN_NEXT, item)) {
        TVITEMW get{};
        get.mask = TVIF_PARAM;
        get.hItem = item;
        Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&get));
        ASSERT_EQ(get.lParam, (Groups - 1) << 16 | index);
        ++index;
    }
    EXPECT_EQ(index, Each);
    Select(last);
    Pump(20);
    EXPECT_TRUE(Delete(group));
    EXPECT_EQ(Send(TVM_GETCOUNT), (Groups - 1) * (Each + 1));
    EXPECT_TRUE(Delete(TVI_ROOT));
    EXPECT_EQ(Send(TVM_GETCOUNT), 0);
    Pump(20);
}

TEST_F(TreeControl, AVeryDeepBranchOpensAndGoes)
{
    constexpr int Depth = 20000;
    Show();
    const HTREEITEM top = Add(TVI_ROOT, u"top");
    HTREEITEM item = top;
    for (int i = 0; i < Depth; ++i)
        item = Add(item, u"x");
    EXPECT_TRUE(Select(item));
    Pump(20);
    EXPECT_EQ(Send(TVM_GETCOUNT), Depth + 1);
    EXPECT_TRUE(Delete(top));
    EXPECT_EQ(Send(TVM_GETCOUNT), 0);
    Pump(20);
}
