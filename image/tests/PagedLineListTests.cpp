// Lists of paged lines: indices, what each operation refuses, lines, values, and who owns the
// store.

#include "image/PagedLineList.h"
#include "image/tests/PlainSwapStore.h"

using namespace tavrix::testing;
using tavrix::platform::FileOperation;

namespace
{

constexpr u32 Reserve = 1000;
constexpr u64 Plenty = 1u << 24;

class PagedLines : public SwapStoreTest
{
protected:
    void SetUp() override
    {
        SwapStoreTest::SetUp();
        SetFreeMemory(Plenty);
    }
    void TearDown() override
    {
        list.Destroy();
        SwapStoreTest::TearDown();
    }

    /// Lines of 4 pixels at 8 bits, each full of one letter.
    void Make(const std::string& letters)
    {
        ASSERT_EQ(list.Create(4, 0, 8), 1);
        for (size_t at = 0; at < letters.size(); ++at)
            ASSERT_EQ(list.InsertLine(static_cast<i32>(at), Line(letters[at]).data()), 1);
    }
    static std::string Line(char letter) { return std::string(4, letter); }
    /// The first letter of each line; '.' for a blank one.
    std::string Letters()
    {
        SetFreeMemory(Plenty);
        std::string letters;
        for (u32 at = 0; at < InfoOf(list).lineCount; ++at) {
            u8* line = nullptr;
            EXPECT_EQ(list.LockLine(static_cast<i32>(at), &line), 1);
            const char letter = static_cast<char>(line[0]);
            EXPECT_EQ(std::string(line, line + 4), Line(letter));
            letters += letter == 0 ? '.' : letter;
            EXPECT_EQ(list.UnlockLine(static_cast<i32>(at)), 1);
        }
        return letters;
    }
    static PagedLineInfo InfoOf(const PagedLineList& of)
    {
        PagedLineInfo info = {};
        EXPECT_EQ(of.GetInfo(&info), 1);
        return info;
    }
    void SendOut()
    {
        SetFreeMemory(Reserve);
        EXPECT_EQ(store.MakeRoom(0), -1);
        SetFreeMemory(Plenty);
    }

    SwapStore store{FirstFolder, Reserve};
    PagedLineList list{&store};
};

} // namespace

TEST_F(PagedLines, ANewListIsInTheWrongStateForAllButCreate)
{
    u8* line = nullptr;
    u32 count = 1;
    PagedLineInfo info = {};
    EXPECT_EQ(list.Destroy(), 0);
    EXPECT_EQ(list.InsertBlank(0, &count), -3);
    EXPECT_EQ(list.InsertBlank(0, nullptr), -3);
    EXPECT_EQ(list.InsertLine(0, nullptr), -3);
    EXPECT_EQ(list.RemoveLine(0), -3);
    EXPECT_EQ(list.RemoveFrom(0, &count), -3);
    EXPECT_EQ(list.LockLine(0, &line), -3);
    EXPECT_EQ(list.UnlockLine(0), -3);
    EXPECT_EQ(list.UnlockAll(), -3);
    EXPECT_EQ(list.GetInfo(&info), -3);
    EXPECT_EQ(list.SetValues(&count, 1), -3);
    EXPECT_EQ(list.AddValue(1), -3);
    EXPECT_EQ(list.RemoveValue(1), -3);
}

TEST_F(PagedLines, NullIsLookedAtBeforeTheState)
{
    EXPECT_EQ(list.LockLine(0, nullptr), -4);
    EXPECT_EQ(list.GetInfo(nullptr), -4);
    EXPECT_EQ(list.SetValues(nullptr, 1), -4);
    Make("ab");
    EXPECT_EQ(list.LockLine(0, nullptr), -4);
    EXPECT_EQ(list.UnlockLine(0), 0) << "nothing was locked";
    EXPECT_EQ(list.GetInfo(nullptr), -4);
    EXPECT_EQ(list.SetValues(nullptr, 1), -4);
    EXPECT_EQ(list.SetValues(nullptr, 0), 1);
}

TEST_F(PagedLines, CreateMakesBlankLinesWithoutAlignment)
{
    const u32 expected[][3] = {{1, 1, 1},   {7, 1, 1}, {8, 1, 1},  {9, 1, 2},
                               {5, 24, 15}, {3, 8, 3}, {3, 16, 6}, {7, 32, 28},
                               {3, 2, 1},   {5, 2, 2}, {1, 24, 3}, {100, 3, 38}};
    for (const auto& [width, depth, stride] : expected) {
        ASSERT_EQ(list.Create(width, 3, depth), 1);
        const PagedLineInfo info = InfoOf(list);
        EXPECT_EQ(info.width, width);
        EXPECT_EQ(info.lineCount, 3u);
        EXPECT_EQ(info.depth, depth);
        EXPECT_EQ(info.valueCount, 0u);
        EXPECT_EQ(info.stride, stride);
        for (i32 at = 0; at < 3; ++at) {
            u8* line = nullptr;
            ASSERT_EQ(list.LockLine(at, &line), 1);
            EXPECT_EQ(std::vector<u8>(line, line + stride), std::vector<u8>(stride));
        }
    }
}

TEST_F(PagedLines, AWidthOfZeroIsRefusedAndTouchesNothing)
{
    Make("abc");
    EXPECT_EQ(list.Create(0, 5, 8), -4);
    EXPECT_EQ(Letters(), "abc");
}

TEST_F(PagedLines, CreateDestroysWhatWasThere)
{
    Make("abc");
    ASSERT_EQ(list.AddValue(7), 1);
    SendOut();
    ASSERT_EQ(SwapFiles().size(), 3u);
    ASSERT_EQ(list.Create(4, 2, 8), 1);
    EXPECT_TRUE(SwapFiles().empty());
    EXPECT_EQ(Letters(), "..");
    EXPECT_EQ(InfoOf(list).valueCount, 0u);
    EXPECT_EQ(list.Destroy(), 1);
    EXPECT_EQ(list.Destroy(), 0);
    EXPECT_EQ(list.UnlockAll(), -3);
}

TEST_F(PagedLines, FewerLinesThanAskedLeaveNothing)
{
    Make("abc");
    int allocated = 0;
    // The sizes of the pages: the third does not come.
    SetAllocationFault([&](SIZE_T size) { return size == 77 && ++allocated == 3; });
    EXPECT_EQ(list.Create(77, 5, 8), -1);
    SetAllocationFault(nullptr);
    EXPECT_EQ(allocated, 3);
    EXPECT_EQ(list.UnlockAll(), -3);
    EXPECT_EQ(list.Destroy(), 0);
}

TEST_F(PagedLines, ALineOfMoreThan31BitsOfBytesIsRefused)
{
    for (const auto& [width, depth] : {std::pair{0xFFFFFFFFu, 32u},
                                       {0xFFFFFFFFu, 0xFFFFFFFFu},
                                       {0x80000000u, 8u},
                                       {0x20000000u, 32u},
                                       {0x40000001u, 32u}})
        // Without lines no page is asked for that could be refused instead.
        for (const u32 lines : {0u, 1u})
            EXPECT_EQ(list.Create(width, lines, depth), -1) << width;
    EXPECT_EQ(list.UnlockAll(), -3);
}

TEST_F(PagedLines, LinesEnterBeforeTheIndexAndNegativeOnesCountFromTheEnd)
{
    Make("abc");
    EXPECT_EQ(list.InsertLine(3, Line('d').data()), 1) << "the count is the end";
    EXPECT_EQ(Letters(), "abcd");
    EXPECT_EQ(list.InsertLine(0, Line('x').data()), 1);
    EXPECT_EQ(Letters(), "xabcd");
    EXPECT_EQ(list.InsertLine(-1, Line('y').data()), 1);
    EXPECT_EQ(Letters(), "xabcyd");
    EXPECT_EQ(list.InsertLine(-6, Line('z').data()), 1);
    EXPECT_EQ(Letters(), "zxabcyd");
    EXPECT_EQ(list.InsertLine(2, nullptr), 1);
    EXPECT_EQ(Letters(), "zx.abcyd");
}

TEST_F(PagedLines, BlankLinesEnterBeforeTheIndex)
{
    Make("abc");
    u32 count = 2;
    EXPECT_EQ(list.InsertBlank(1, &count), 1);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(Letters(), "a..bc");
    EXPECT_EQ(list.InsertBlank(5, nullptr), 1) << "one";
    EXPECT_EQ(Letters(), "a..bc.");
    count = 2;
    EXPECT_EQ(list.InsertBlank(-2, &count), 1);
    EXPECT_EQ(Letters(), "a..b..c.");
    count = 0;
    EXPECT_GE(list.InsertBlank(0, &count), 0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(Letters(), "a..b..c.");
}

TEST_F(PagedLines, BlankLinesStopAtTheFirstFailureAndTellHowManyCame)
{
    Make("abc");
    int allocated = 0;
    SetAllocationFault([&](SIZE_T size) { return size == 4 && ++allocated == 3; });
    u32 count = 5;
    EXPECT_LT(list.InsertBlank(1, &count), 0);
    SetAllocationFault(nullptr);
    EXPECT_EQ(allocated, 3);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(Letters(), "a..bc");
}

TEST_F(PagedLines, AnIndexOutsideIsABadArgumentAndTheCountIsNoLine)
{
    Make("abc");
    u8* line = nullptr;
    for (const i32 index : {4, 100, 0x7FFFFFFF, -4, -100, static_cast<i32>(0x80000000)}) {
        u32 count = 1;
        EXPECT_EQ(list.InsertBlank(index, &count), -4) << index;
        EXPECT_EQ(count, 0u);
        EXPECT_EQ(list.InsertLine(index, nullptr), -4);
        EXPECT_EQ(list.RemoveLine(index), -4);
        count = 1;
        EXPECT_EQ(list.RemoveFrom(index, &count), -4);
        EXPECT_EQ(count, 0u);
        EXPECT_EQ(list.LockLine(index, &line), -4);
        EXPECT_EQ(list.UnlockLine(index), -4);
    }
    EXPECT_EQ(list.RemoveLine(3), -1);
    EXPECT_EQ(list.LockLine(3, &line), -1);
    EXPECT_EQ(list.UnlockLine(3), -1);
    EXPECT_EQ(Letters(), "abc");
    ASSERT_EQ(list.Create(4, 0, 8), 1);
    EXPECT_EQ(list.RemoveLine(0), -1);
    EXPECT_EQ(list.RemoveLine(-1), -4);
    EXPECT_EQ(list.LockLine(0, &line), -1);
}

TEST_F(PagedLines, RemovingALineDeletesItsFileWhereverItStands)
{
    Make("abcde");
    SendOut();
    EXPECT_EQ(list.RemoveLine(2), 1);
    EXPECT_EQ(SwapFiles().size(), 4u);
    EXPECT_EQ(list.RemoveLine(0), 1) << "the first";
    EXPECT_EQ(list.RemoveLine(-1), 1) << "the last";
    EXPECT_EQ(SwapFiles().size(), 2u);
    EXPECT_EQ(Letters(), "bd");
    EXPECT_EQ(list.RemoveLine(0), 1);
    EXPECT_EQ(list.RemoveLine(0), 1);
    EXPECT_EQ(Letters(), "");
    EXPECT_EQ(list.InsertLine(0, Line('n').data()), 1) << "an empty list takes a line";
    EXPECT_EQ(Letters(), "n");
}

TEST_F(PagedLines, RemoveFromTakesAllToTheEndWhateverWasAsked)
{
    Make("abcde");
    u32 count = 2;
    EXPECT_EQ(list.RemoveFrom(2, &count), -1);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(Letters(), "ab");
    Make("abcde");
    count = 3;
    EXPECT_EQ(list.RemoveFrom(-3, &count), 1);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(Letters(), "ab");
    Make("abcde");
    count = 9;
    EXPECT_EQ(list.RemoveFrom(0, &count), -1) << "more than there are";
    EXPECT_EQ(count, 5u);
    EXPECT_EQ(Letters(), "");
}

TEST_F(PagedLines, RemoveFromWithoutACountAsksForOne)
{
    Make("abc");
    EXPECT_EQ(list.RemoveFrom(2, nullptr), 1);
    EXPECT_EQ(Letters(), "ab");
    EXPECT_EQ(list.RemoveFrom(0, nullptr), -1);
    EXPECT_EQ(Letters(), "");
}

TEST_F(PagedLines, RemoveFromTheCountTakesNothing)
{
    Make("abc");
    u32 count = 0;
    EXPECT_EQ(list.RemoveFrom(3, &count), 1);
    EXPECT_EQ(count, 0u);
    count = 2;
    EXPECT_EQ(list.RemoveFrom(3, &count), -1);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(list.RemoveFrom(3, nullptr), -1);
    EXPECT_EQ(Letters(), "abc");
}

TEST_F(PagedLines, LocksCountForEachLineAndUnlockAllTakesOneOfEach)
{
    Make("abc");
    u8* line = nullptr;
    ASSERT_EQ(list.LockLine(0, &line), 1);
    ASSERT_EQ(list.LockLine(1, &line), 1);
    ASSERT_EQ(list.LockLine(-2, &line), 1);
    EXPECT_EQ(line[0], 'b');
    EXPECT_EQ(list.UnlockAll(), 1);
    EXPECT_EQ(list.UnlockLine(0), 0);
    EXPECT_EQ(list.UnlockLine(1), 1) << "it was locked twice";
    EXPECT_EQ(list.UnlockLine(1), 0);
    EXPECT_EQ(list.UnlockLine(2), 0);
    EXPECT_EQ(list.UnlockAll(), 1);
}

TEST_F(PagedLines, ALockedLineStaysWhileTheOthersGo)
{
    Make("abc");
    u8* line = nullptr;
    ASSERT_EQ(list.LockLine(1, &line), 1);
    SendOut();
    EXPECT_EQ(SwapFiles().size(), 2u);
    EXPECT_EQ(line[0], 'b');
    EXPECT_EQ(list.UnlockLine(1), 1);
    SetFreeMemory(Reserve + 4);
    EXPECT_EQ(list.LockLine(0, &line), -1) << "no room for it";
    EXPECT_EQ(Letters(), "abc");
}

TEST_F(PagedLines, ALineThatFindsNoRoomChangesNothing)
{
    Make("abc");
    SetFreeMemory(Reserve + 4);
    EXPECT_EQ(list.InsertLine(1, Line('x').data()), -1);
    EXPECT_EQ(list.InsertLine(1, nullptr), -1);
    u32 count = 3;
    EXPECT_EQ(list.InsertBlank(0, &count), -1);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(Letters(), "abc");
}

TEST_F(PagedLines, ValuesAreAPlainListOfTheirOwn)
{
    ASSERT_EQ(list.Create(4, 1, 8), 1);
    const u32 values[] = {5, 6, 5, 7};
    EXPECT_EQ(list.SetValues(values, 4), 1);
    EXPECT_EQ(InfoOf(list).valueCount, 4u);
    EXPECT_EQ(list.AddValue(8), 1);
    EXPECT_EQ(list.RemoveValue(5), 1);
    EXPECT_EQ(InfoOf(list).valueCount, 4u) << "one of the two";
    EXPECT_EQ(list.RemoveValue(9), 0);
    EXPECT_EQ(list.RemoveValue(5), 1);
    EXPECT_EQ(list.RemoveValue(5), 0);
    EXPECT_EQ(list.RemoveValue(8), 1) << "the last";
    EXPECT_EQ(list.RemoveValue(6), 1) << "the first";
    EXPECT_EQ(list.RemoveValue(7), 1);
    EXPECT_EQ(InfoOf(list).valueCount, 0u);
    EXPECT_EQ(list.AddValue(1), 1);
    EXPECT_EQ(list.SetValues(values, 2), 1) << "in place of the old ones";
    EXPECT_EQ(InfoOf(list).valueCount, 2u);
    EXPECT_EQ(list.SetValues(nullptr, 0), 1);
    EXPECT_EQ(InfoOf(list).valueCount, 0u);
    EXPECT_EQ(InfoOf(list).lineCount, 1u);
}

TEST_F(PagedLines, AStoreOfItsOwnKeepsAMegabyteFreeAndHasNoFolder)
{
    const auto before = SwapFiles();
    PagedLineList own;
    ASSERT_EQ(own.Create(100, 2, 8), 1);
    SetFreeMemory(0x100000 + 101);
    u8* line = nullptr;
    EXPECT_EQ(own.LockLine(0, &line), 1);
    EXPECT_EQ(own.UnlockLine(0), 1);
    EXPECT_EQ(own.InsertLine(0, nullptr), 1);
    SetFreeMemory(0x100000 + 100);
    EXPECT_EQ(own.LockLine(0, &line), -1);
    EXPECT_EQ(own.InsertLine(0, nullptr), -1);
    EXPECT_EQ(SwapFiles(), before);
    EXPECT_EQ(own.Destroy(), 1);
    EXPECT_EQ(own.Create(100, 1, 8), -1);
    EXPECT_EQ(own.Create(99, 1, 8), 1);
}

TEST_F(PagedLines, AListThatGoesLeavesNoPageOrFileInAForeignStore)
{
    {
        PagedLineList gone(&store);
        ASSERT_EQ(gone.Create(4, 3, 8), 1);
        ASSERT_EQ(gone.AddValue(1), 1);
        SendOut();
        EXPECT_EQ(SwapFiles().size(), 3u);
    }
    EXPECT_TRUE(SwapFiles().empty());
    // The store is as good as new.
    Make("ab");
    EXPECT_EQ(Letters(), "ab");
}
