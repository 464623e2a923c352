// Random runs of two lists over one page store beside their plain twins, while lines come and go.

#include "image/tests/PlainLineList.h"

namespace
{

using PagedLineListModel = SwapStoreTest;

class ListPair
{
public:
    explicit ListPair(u32 seed)
        : random(seed), store(FirstFolder, Reserve),
          plainStore(device, Reserve, true), lists{PagedLineList(&store), PagedLineList(&store)},
          plains{PlainLineList(plainStore), PlainLineList(plainStore)}
    {
        device.gain = Below(120);
        device.tick = Below(1000);
    }

    void Step()
    {
        const u64 memories[] = {Reserve, Reserve + 20, 1u << 30, 1u << 30};
        device.freeMemory = memories[Below(4)] + Below(30);
        device.disk = Below(6) == 0 ? 40 : 1u << 30;
        device.random.assign(200, 0);
        for (LONG& number : device.random)
            number = static_cast<LONG>(Below(60));
        device.faults = {};
        for (int at = 0; at < 40 && Below(3) == 0; ++at) {
            device.faults.create.push_back(Below(4) == 0);
            device.faults.open.push_back(Below(4) == 0);
            device.faults.writeShortBy.push_back(Below(4) == 0 ? 1 : 0);
        }
        ArmDevice(device);
        const u32 which = Below(2);
        Operate(lists[which], plains[which]);
        tavrix::testing::SetFileFault(nullptr);
        ASSERT_EQ(SwapFiles(), device.files);
        sentOut += static_cast<u32>(device.files.size());
    }

    /// Every line of both lists as its twin says, under plentiful memory.
    void End()
    {
        device.freeMemory = 1u << 30;
        device.disk = 1u << 30;
        device.faults = {};
        ArmDevice(device);
        for (u32 which = 0; which < 2; ++which) {
            PlainLineList& plain = plains[which];
            for (i32 at = 0; at < plain.Count(); ++at)
                Lock(lists[which], plain, at);
            EXPECT_EQ(lists[which].Destroy(), plain.Destroy());
        }
        EXPECT_TRUE(SwapFiles().empty());
    }

    u32 sentOut = 0;

private:
    static constexpr u32 Reserve = 5000;

    u32 Below(u32 count) { return static_cast<u32>(random()) % count; }

    /// Mostly a line or a place, sometimes beyond.
    i32 Index(const PlainLineList& plain)
    {
        const u32 count = static_cast<u32>(plain.Count());
        return static_cast<i32>(Below(2 * count + 3)) - static_cast<i32>(count) - 1;
    }

    void Operate(PagedLineList& list, PlainLineList& plain)
    {
        const i32 index = Index(plain);
        switch (Below(14)) {
        case 0:
            Create(list, plain);
            break;
        case 1:
            if (Below(4) == 0) {
                EXPECT_EQ(list.Destroy(), plain.Destroy());
            }
            break;
        case 2: {
            u32 count = Below(4);
            u32 expected = count;
            const i32 result = plain.InsertBlank(index, &expected);
            EXPECT_EQ(list.InsertBlank(index, &count), result);
            if (result >= -1) {
                EXPECT_EQ(count, expected);
            }
            break;
        }
        case 3:
        case 4:
        case 5: {
            std::vector<u8> source(plain.stride);
            for (u8& byte : source)
                byte = static_cast<u8>(random());
            const i32 result = plain.InsertLine(index, source.data());
            EXPECT_EQ(list.InsertLine(index, source.data()), result);
            break;
        }
        case 6:
            EXPECT_EQ(list.RemoveLine(index), plain.RemoveLine(index));
            break;
        case 7: {
            if (Below(3) != 0)
                break;
            u32 count = Below(4);
            u32 expected = count;
            const i32 result = plain.RemoveFrom(index, &expected);
            EXPECT_EQ(list.RemoveFrom(index, &count), result);
            if (result >= -1) {
                EXPECT_EQ(count, expected);
            }
            break;
        }
        case 8:
        case 9:
        case 10:
            Lock(list, plain, index);
            break;
        case 11:
        case 12:
            EXPECT_EQ(list.UnlockLine(index), plain.UnlockLine(index));
            break;
        default:
            EXPECT_EQ(list.UnlockAll(), plain.UnlockAll());
        }
        PagedLineInfo info = {};
        ASSERT_EQ(list.GetInfo(&info), plain.created ? Done : WrongState);
        if (plain.created) {
            EXPECT_EQ(i64{info.lineCount}, plain.Count());
            EXPECT_EQ(info.stride, plain.stride);
        }
    }

    void Create(PagedLineList& list, PlainLineList& plain)
    {
        const u32 width = 1 + Below(12);
        const u32 count = Below(5);
        const u32 depths[] = {1, 8, 24, 32};
        const u32 depth = depths[Below(4)];
        const i32 expected = plain.Create(width, count, depth);
        EXPECT_EQ(list.Create(width, count, depth), expected);
    }

    /// Locks, compares and writes.
    void Lock(PagedLineList& list, PlainLineList& plain, i32 index)
    {
        PlainSwapStore::Handle page = nullptr;
        u8* line = nullptr;
        const i32 expected = plain.LockLine(index, &page);
        ASSERT_EQ(list.LockLine(index, &line), expected);
        if (expected != Done)
            return;
        ASSERT_EQ(std::vector<u8>(line, line + plain.stride), page->bytes) << "line " << index;
        for (u8& byte : page->bytes)
            byte = static_cast<u8>(random());
        std::copy(page->bytes.begin(), page->bytes.end(), line);
    }

    std::mt19937 random;
    PlainDevice device;
    SwapStore store;
    PlainSwapStore plainStore;
    PagedLineList lists[2];
    PlainLineList plains[2];
};

} // namespace

TEST_F(PagedLineListModel, TwoListsOverOneStoreDoAsTheirTwins)
{
    u32 sentOut = 0;
    for (u32 seed = 1; seed <= 16; ++seed) {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        ListPair pair(seed);
        for (int step = 0; step < 200 && !::testing::Test::HasFailure(); ++step) {
            SCOPED_TRACE(::testing::Message() << "step " << step);
            pair.Step();
        }
        pair.End();
        sentOut += pair.sentOut;
        if (::testing::Test::HasFailure())
            return;
    }
    EXPECT_GT(sentOut, 1000u);
}
