// What happens to the selection when the program selects, collapses and deletes, and what the
// parent may do when it is told.
#include "platform/tests/qt/TreeFixture.h"

using namespace tavrix::test;
using namespace tavrix::testing;

namespace
{

using TreeSelection = TreeFamilyTest;

const NMTREEVIEWW& LastSelection(const std::vector<Notice>& notices)
{
    return notices.back().selection;
}

} // namespace

TEST_F(TreeSelection, ASelectionByMessageTellsTheParentWhatWasAndWhatIs)
{
    AddFamily();
    EXPECT_TRUE(notices.empty()) << "insertions are quiet";
    EXPECT_TRUE(Select(a));
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(notices[0].header.hwndFrom, tree);
    EXPECT_EQ(notices[0].header.idFrom, 1101u);
    EXPECT_EQ(notices[0].id, 1101u);
    EXPECT_EQ(notices[0].header.code, static_cast<UINT>(-451));
    EXPECT_EQ(notices[0].selection.action, 0u);
    EXPECT_EQ(notices[0].selection.itemOld.hItem, nullptr);
    EXPECT_EQ(notices[0].selection.itemOld.mask, 0u);
    EXPECT_EQ(notices[0].selection.itemNew.hItem, a);
    EXPECT_EQ(notices[0].selection.itemNew.lParam, 1);
    EXPECT_EQ(notices[0].selection.itemNew.mask, TVIF_HANDLE | TVIF_PARAM | TVIF_STATE);
    EXPECT_EQ(notices[0].selection.itemNew.state, TVIS_SELECTED);

    EXPECT_TRUE(Select(b2));
    ASSERT_EQ(notices.size(), 2u);
    EXPECT_EQ(LastSelection(notices).itemOld.hItem, a);
    EXPECT_EQ(LastSelection(notices).itemOld.lParam, 1);
    EXPECT_EQ(LastSelection(notices).itemOld.state, 0u);
    EXPECT_EQ(LastSelection(notices).itemNew.hItem, b2);
    EXPECT_EQ(LastSelection(notices).itemNew.lParam, 22);
    EXPECT_EQ(Selected(), b2);
    EXPECT_EQ(State(b2), TVIS_SELECTED);
    EXPECT_EQ(State(a), 0u);

    EXPECT_TRUE(Select(b2));
    EXPECT_EQ(notices.size(), 2u) << "it was selected already";
    EXPECT_TRUE(Select(nullptr));
    ASSERT_EQ(notices.size(), 3u);
    EXPECT_EQ(LastSelection(notices).itemOld.hItem, b2);
    EXPECT_EQ(LastSelection(notices).itemNew.hItem, nullptr);
    EXPECT_EQ(Selected(), nullptr);
}

TEST_F(TreeSelection, TheNewSelectionStandsBeforeTheParentIsTold)
{
    AddFamily();
    HTREEITEM seen = nullptr;
    onNotice = [&](const Notice&) {
        seen = Selected();
        return 0;
    };
    Select(b);
    EXPECT_EQ(seen, b);
}

TEST_F(TreeSelection, OtherKindsOfSelectionFail)
{
    AddFamily();
    EXPECT_EQ(Send(TVM_SELECTITEM, 8, a), 0);
    EXPECT_EQ(Send(TVM_SELECTITEM, 5, a), 0);
    EXPECT_EQ(Selected(), nullptr);
}

TEST_F(TreeSelection, SelectingExpandsWhatTheItemLiesIn)
{
    AddFamily();
    const HTREEITEM deep = Add(a2, u"deep");
    Select(deep);
    EXPECT_TRUE(IsExpanded(a));
    EXPECT_TRUE(IsExpanded(a2));
    EXPECT_FALSE(IsExpanded(b));
    EXPECT_FALSE(IsExpanded(deep));
}

TEST_F(TreeSelection, ItemsExpandAndCollapse)
{
    AddFamily();
    EXPECT_FALSE(IsExpanded(a));
    EXPECT_TRUE(Expand(a));
    EXPECT_TRUE(IsExpanded(a));
    EXPECT_TRUE(Expand(a)) << "it is as wished";
    EXPECT_TRUE(Expand(a, TVE_TOGGLE));
    EXPECT_FALSE(IsExpanded(a));
    EXPECT_TRUE(Expand(a, TVE_TOGGLE));
    EXPECT_TRUE(IsExpanded(a));
    EXPECT_TRUE(Expand(a, TVE_COLLAPSE));
    EXPECT_FALSE(IsExpanded(a));
    EXPECT_FALSE(Expand(a1)) << "nothing below it";
    EXPECT_FALSE(IsExpanded(a1));
    EXPECT_FALSE(Expand(a, 0));
    EXPECT_FALSE(Expand(a, 4));
    EXPECT_TRUE(notices.empty());
}

TEST_F(TreeSelection, ASelectionThatWouldBeHiddenMovesToTheItemThatCollapses)
{
    AddFamily();
    Select(a2);
    notices.clear();
    Expand(a, TVE_COLLAPSE);
    EXPECT_EQ(Selected(), a);
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(LastSelection(notices).itemOld.hItem, a2);
    EXPECT_EQ(LastSelection(notices).itemNew.hItem, a);
    EXPECT_EQ(LastSelection(notices).itemNew.state, TVIS_SELECTED) << "collapsed by now";
    EXPECT_FALSE(IsExpanded(a));
}

TEST_F(TreeSelection, DeletingTakesEverythingBelowAlong)
{
    AddFamily();
    const HTREEITEM deep = Add(a2, u"deep");
    EXPECT_TRUE(Delete(a));
    EXPECT_EQ(Send(TVM_GETCOUNT), 3);
    for (const HTREEITEM gone : {a, a1, a2, deep})
        EXPECT_FALSE(Exists(gone));
    EXPECT_EQ(Siblings(Next(TVGN_ROOT)), u"b");
    EXPECT_EQ(Next(TVGN_PREVIOUS, b), nullptr);
    EXPECT_TRUE(Delete(b1));
    EXPECT_EQ(Next(TVGN_CHILD, b), b2);
    EXPECT_TRUE(notices.empty());
}

TEST_F(TreeSelection, TheRootMarkDeletesEverything)
{
    for (const HTREEITEM mark : {TVI_ROOT, static_cast<HTREEITEM>(nullptr)}) {
        AddFamily();
        Select(a1);
        notices.clear();
        EXPECT_TRUE(Delete(mark));
        EXPECT_EQ(Send(TVM_GETCOUNT), 0);
        EXPECT_EQ(Next(TVGN_ROOT), nullptr);
        EXPECT_EQ(Selected(), nullptr);
        EXPECT_FALSE(Exists(b2));
        ASSERT_EQ(notices.size(), 1u);
        EXPECT_EQ(LastSelection(notices).itemOld.hItem, a1);
        EXPECT_EQ(LastSelection(notices).itemNew.hItem, nullptr);
        EXPECT_TRUE(Delete(mark)) << "an empty tree as well";
    }
    const HTREEITEM next = Add(TVI_ROOT, u"again");
    EXPECT_EQ(Next(TVGN_ROOT), next);
}

TEST_F(TreeSelection, ASelectionThatIsDeletedMovesToTheNextElseThePreviousElseTheParent)
{
    AddFamily();
    const HTREEITEM a3 = Add(a, u"a3");
    Select(a2);
    notices.clear();
    bool oldWasThere = false;
    onNotice = [&](const Notice& notice) {
        oldWasThere = Text(notice.selection.itemOld.hItem) == u"a2";
        return 0;
    };
    EXPECT_TRUE(Delete(a2));
    onNotice = {};
    EXPECT_EQ(Selected(), a3);
    EXPECT_TRUE(oldWasThere);
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(LastSelection(notices).itemOld.lParam, 12);
    EXPECT_TRUE(Delete(a3));
    EXPECT_EQ(Selected(), a1);
    EXPECT_TRUE(Delete(a1));
    EXPECT_EQ(Selected(), a);
    Select(b2);
    EXPECT_TRUE(Delete(b)) << "with the selection below it";
    EXPECT_EQ(Selected(), a);
    EXPECT_TRUE(Delete(a));
    EXPECT_EQ(Selected(), nullptr);
    EXPECT_EQ(notices.back().selection.itemNew.hItem, nullptr);
}

TEST_F(TreeSelection, DeletingAnotherItemLeavesTheSelection)
{
    AddFamily();
    Select(a1);
    notices.clear();
    Delete(a2);
    Delete(b);
    EXPECT_EQ(Selected(), a1);
    EXPECT_TRUE(notices.empty());
}

TEST_F(TreeSelection, TheParentMayDestroyTheTreeWhenItIsTold)
{
    onNotice = [this](const Notice&) {
        DestroyWindow(tree);
        return 0;
    };
    AddFamily();
    EXPECT_TRUE(Select(b2));
    EXPECT_FALSE(IsWindow(tree));
    EXPECT_EQ(Send(TVM_GETCOUNT), 0);
    EXPECT_EQ(notices.size(), 1u);
    Pump(20);
}

TEST_F(TreeSelection, TheParentMayDestroyTheTreeWhileItDeletesCollapsesOrInserts)
{
    for (int way = 0; way < 4; ++way) {
        onNotice = {};
        tree = CreateWindowExW(0, WC_TREEVIEWW, nullptr, WS_CHILD | WS_VISIBLE, 0, 0, 50, 50,
                               dialog, reinterpret_cast<HMENU>(INT_PTR{77}), nullptr, nullptr);
        AddFamily();
        Select(a1);
        onNotice = [this](const Notice&) {
            DestroyWindow(tree);
            return 0;
        };
        TVINSERTSTRUCTW record{};
        record.item.mask = TVIF_STATE;
        record.item.state = record.item.stateMask = TVIS_SELECTED;
        switch (way) {
        case 0:
            EXPECT_TRUE(Delete(a));
            break;
        case 1:
            EXPECT_TRUE(Delete(TVI_ROOT));
            break;
        case 2:
            EXPECT_TRUE(Expand(a, TVE_COLLAPSE));
            break;
        default:
            EXPECT_EQ(Insert(record), nullptr);
            break;
        }
        EXPECT_FALSE(IsWindow(tree)) << way;
        Pump(10);
    }
}

TEST_F(TreeSelection, TheParentMayDestroyItsOwnDialogWhenItIsTold)
{
    onNotice = [this](const Notice&) {
        DestroyWindow(dialog);
        return 0;
    };
    AddFamily();
    Show();
    Select(a2);
    EXPECT_FALSE(IsWindow(dialog));
    Pump(20);
}

TEST_F(TreeSelection, TheParentMayDeleteTheItemsItIsToldOf)
{
    AddFamily();
    Select(a1);
    bool busy = false;
    onNotice = [&](const Notice&) {
        if (!busy) {
            busy = true;
            Delete(TVI_ROOT);
        }
        return 0;
    };
    EXPECT_TRUE(Select(b1));
    EXPECT_EQ(Send(TVM_GETCOUNT), 0);
    EXPECT_EQ(Selected(), nullptr);
    EXPECT_EQ(SelectionNotices(), 3u);
}

TEST_F(TreeSelection, AParentThatPutsADeletedSelectionBackGetsNone)
{
    AddFamily();
    Select(a2);
    bool busy = false;
    onNotice = [&](const Notice&) {
        if (!busy) {
            busy = true;
            Select(a2);
        }
        return 0;
    };
    EXPECT_TRUE(Delete(a2));
    EXPECT_FALSE(Exists(a2));
    EXPECT_EQ(Selected(), nullptr);
}

TEST_F(TreeSelection, AParentThatDeletesFirstIsNoFailure)
{
    AddFamily();
    Select(a2);
    onNotice = [&](const Notice& notice) {
        if (notice.selection.itemOld.hItem == a2)
            Delete(a2);
        return 0;
    };
    EXPECT_TRUE(Delete(a2));
    EXPECT_FALSE(Exists(a2));
    EXPECT_EQ(Send(TVM_GETCOUNT), 5);
    EXPECT_EQ(Selected(), a1);
}
