#include "foundation/BlockList.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace
{

int a, b, c, d; // four places to point at

std::vector<void*> DataOf(const BlockList& list)
{
    std::vector<void*> data;
    BlockList::Node* node = nullptr;
    (void)list.GetHead(&node);
    for (; node != nullptr; node = node->next)
        data.push_back(node->data);
    return data;
}

BlockList::Node* Append(BlockList& list, void* data)
{
    BlockList::Node* tail = nullptr;
    (void)list.GetTail(&tail);
    EXPECT_EQ(1, list.Insert(data, tail));
    (void)list.GetTail(&tail);
    return tail;
}

/// A list that owns what it points at, and compares what is there.
class Numbers final : public BlockList
{
public:
    i32 Matches(const void* key, const void* data) override
    {
        ++compared;
        // Anything above 0 is a match.
        return *static_cast<const int*>(key) == *static_cast<const int*>(data) ? 7 : 0;
    }
    i32 OnRemove(void* data) override
    {
        removed.push_back(*static_cast<int*>(data));
        return -1;
    }
    int compared = 0;
    std::vector<int> removed;
};

} // namespace

TEST(BlockList, GrowsAtItsTail)
{
    BlockList list;
    BlockList::Node* first = Append(list, &a);
    BlockList::Node* second = Append(list, &b);
    BlockList::Node* third = Append(list, &c);
    EXPECT_EQ((std::vector<void*>{&a, &b, &c}), DataOf(list));
    EXPECT_EQ(nullptr, first->prev);
    EXPECT_EQ(first, second->prev);
    EXPECT_EQ(second, third->prev);
    EXPECT_EQ(nullptr, third->next);
}

TEST(BlockList, AnEmptyListHasNeitherHeadNorTail)
{
    BlockList list;
    BlockList::Node mark{};
    BlockList::Node* node = &mark;
    EXPECT_EQ(1, list.GetHead(&node));
    EXPECT_EQ(nullptr, node);
    node = &mark;
    EXPECT_EQ(1, list.GetTail(&node));
    EXPECT_EQ(nullptr, node);
}

TEST(BlockList, RefusesNull)
{
    BlockList list;
    EXPECT_EQ(-4, list.Contains(nullptr));
    EXPECT_EQ(-4, list.GetHead(nullptr));
    EXPECT_EQ(-4, list.GetTail(nullptr));
    EXPECT_EQ(-4, list.Find(&a, nullptr));
}

TEST(BlockList, KnowsItsOwnNodesOnly)
{
    BlockList list;
    BlockList other;
    BlockList::Node* mine = Append(list, &a);
    BlockList::Node* theirs = Append(other, &a);
    EXPECT_EQ(1, list.Contains(mine));
    EXPECT_EQ(-1, list.Contains(theirs));
    BlockList empty;
    EXPECT_EQ(-1, empty.Contains(mine));
}

TEST(BlockList, InsertBehindNothingPutsInFront)
{
    BlockList list;
    ASSERT_EQ(1, list.Insert(&a, nullptr));
    ASSERT_EQ(1, list.Insert(&b, nullptr));
    EXPECT_EQ((std::vector<void*>{&b, &a}), DataOf(list));
}

TEST(BlockList, InsertBehindAStrangerIsRefused)
{
    BlockList list;
    BlockList other;
    BlockList::Node* stranger = Append(other, &a);
    EXPECT_EQ(-4, list.Insert(&b, stranger)) << "an empty list takes null alone";
    Append(list, &c);
    EXPECT_EQ(-4, list.Insert(&b, stranger));
    EXPECT_EQ((std::vector<void*>{&c}), DataOf(list));
}

TEST(BlockList, InsertInTheMiddleLeavesTheFollowersPrevAlone)
{
    BlockList list;
    BlockList::Node* first = Append(list, &a);
    BlockList::Node* last = Append(list, &b);
    ASSERT_EQ(1, list.Insert(&c, first));
    EXPECT_EQ((std::vector<void*>{&a, &c, &b}), DataOf(list));
    EXPECT_EQ(first, first->next->prev);
    EXPECT_EQ(last, first->next->next);
    EXPECT_EQ(first, last->prev) << "not the new node";
    ASSERT_EQ(1, list.Insert(&d, nullptr));
    EXPECT_EQ(nullptr, first->prev);
}

TEST(BlockList, RemovingTheLastNodeEmptiesTheListAndAnswersFailed)
{
    BlockList list;
    BlockList::Node* only = Append(list, &a);
    EXPECT_EQ(-1, list.Remove(only));
    BlockList::Node* head = only;
    EXPECT_EQ(1, list.GetHead(&head));
    EXPECT_EQ(nullptr, head);
}

TEST(BlockList, RemovesInFrontInTheMiddleAndAtTheTail)
{
    BlockList list;
    BlockList::Node* first = Append(list, &a);
    BlockList::Node* second = Append(list, &b);
    BlockList::Node* third = Append(list, &c);
    BlockList::Node* fourth = Append(list, &d);
    EXPECT_EQ(-1, list.Remove(second));
    EXPECT_EQ((std::vector<void*>{&a, &c, &d}), DataOf(list));
    EXPECT_EQ(-1, list.Remove(first));
    EXPECT_EQ((std::vector<void*>{&c, &d}), DataOf(list));
    EXPECT_EQ(-1, list.Remove(fourth));
    EXPECT_EQ((std::vector<void*>{&c}), DataOf(list));
    EXPECT_EQ(-1, list.Remove(third));
    EXPECT_TRUE(DataOf(list).empty());
}

TEST(BlockList, TheTailIsTheLastWhateverCameAndWent)
{
    std::mt19937 random(7);
    int places[200];
    BlockList list;
    std::vector<void*> expected;
    for (int step = 0; step < 4000; ++step) {
        const size_t at = random() % (expected.size() + 1);
        BlockList::Node* node = nullptr;
        (void)list.GetHead(&node);
        for (size_t i = 1; i < at; ++i)
            node = node->next;
        if (random() % 2 == 0 && expected.size() < 200) {
            void* const data = &places[random() % 200];
            ASSERT_EQ(1, list.Insert(data, at == 0 ? nullptr : node));
            expected.insert(expected.begin() + static_cast<long>(at), data);
        } else if (at > 0) {
            (void)list.Remove(node);
            expected.erase(expected.begin() + static_cast<long>(at) - 1);
        }
        ASSERT_EQ(expected, DataOf(list));
        BlockList::Node* tail = nullptr;
        ASSERT_EQ(1, list.GetTail(&tail));
        ASSERT_EQ(expected.empty() ? nullptr : expected.back(), tail ? tail->data : nullptr);
        ASSERT_TRUE(tail == nullptr || tail->next == nullptr);
    }
}

TEST(BlockList, RemoveGoesByTheOrderAndNotByPrev)
{
    BlockList list;
    BlockList::Node* first = Append(list, &a);
    BlockList::Node* last = Append(list, &b);
    ASSERT_EQ(1, list.Insert(&c, first)); // `last->prev` still names `first`
    EXPECT_EQ(-1, list.Remove(last));
    EXPECT_EQ((std::vector<void*>{&a, &c}), DataOf(list));
}

TEST(BlockList, RemoveTellsAStrangerFromAnEmptyList)
{
    BlockList list;
    BlockList other;
    BlockList::Node* stranger = Append(other, &a);
    EXPECT_EQ(-1, list.Remove(stranger));
    EXPECT_EQ(-1, list.Remove(nullptr));
    Append(list, &b);
    EXPECT_EQ(-4, list.Remove(stranger));
    EXPECT_EQ(-4, list.Remove(nullptr));
    EXPECT_EQ((std::vector<void*>{&b}), DataOf(list));
}

TEST(BlockList, FindsTheFirstOfTheSameValue)
{
    BlockList list;
    BlockList::Node mark{};
    BlockList::Node* node = &mark;
    EXPECT_EQ(-1, list.Find(&a, &node));
    BlockList::Node* first = Append(list, &a);
    Append(list, &a);
    BlockList::Node* third = Append(list, &b);
    EXPECT_EQ(-1, list.Find(&c, &node));
    EXPECT_EQ(&mark, node);
    EXPECT_EQ(1, list.Find(&a, &node));
    EXPECT_EQ(first, node);
    EXPECT_EQ(1, list.Find(&b, &node));
    EXPECT_EQ(third, node);
}

TEST(BlockList, AnswersOfItsOwnByDefault)
{
    BlockList list;
    EXPECT_EQ(1, list.Matches(&a, &a));
    EXPECT_EQ(1, list.Matches(nullptr, nullptr));
    EXPECT_EQ(-1, list.Matches(&a, &b));
    EXPECT_EQ(1, list.OnRemove(&a));
}

TEST(BlockList, ADerivedListComparesAndGivesBackItsOwnWay)
{
    int numbers[] = {5, 6, 7, 6};
    Numbers list;
    for (int& number : numbers)
        Append(list, &number);
    const int six = 6;
    BlockList::Node* node = nullptr;
    EXPECT_EQ(1, list.Find(&six, &node));
    EXPECT_EQ(&numbers[1], node->data);
    EXPECT_EQ(2, list.compared);
    EXPECT_EQ(-1, list.Remove(node));
    EXPECT_EQ((std::vector<int>{6}), list.removed);
    EXPECT_EQ(1, list.Find(&six, &node));
    EXPECT_EQ(&numbers[3], node->data);
    const int eight = 8;
    EXPECT_EQ(-1, list.Find(&eight, &node));
}
