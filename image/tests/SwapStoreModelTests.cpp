// Random runs of the page store beside its plain twin, under memory, disks and files that come and
// go.

#include "image/tests/PlainSwapStore.h"

namespace
{

using SwapStoreModel = SwapStoreTest;

/// A store and its twin on one device.
class StorePair
{
public:
    StorePair(u32 seed, bool hasFolder, u64 gain)
        : random(seed), store(hasFolder ? FirstFolder : nullptr, Reserve),
          plain(device, Reserve, hasFolder)
    {
        device.gain = gain;
        device.tick = Below(3) == 0 ? 0xFFFFFFF0 : Below(1000);
        // A few foreign files stand in the way.
        for (u32 number = 0; number < 3; ++number) {
            const std::string name = PlainDevice::NameOf(device.tick + Below(40));
            std::ofstream(HostFile(FirstFolder, name)) << "foreign";
            device.files[name] = {'f', 'o', 'r', 'e', 'i', 'g', 'n'};
        }
    }

    void Step()
    {
        Bend();
        ArmDevice(device);
        switch (Below(8)) {
        case 0:
        case 1:
            Allocate();
            break;
        case 2:
            if (handles.size() > 12)
                Free(Pick());
            break;
        case 3:
        case 4:
            Lock(Pick());
            break;
        case 5:
        case 6:
            Unlock(Pick());
            break;
        default: {
            const u32 needed = Below(600);
            EXPECT_EQ(store.MakeRoom(needed), plain.MakeRoom(needed));
        }
        }
        tavrix::testing::SetFileFault(nullptr);
        Compare();
    }

    void End()
    {
        device.freeMemory = 1u << 30;
        device.disk = 1u << 30;
        device.faults = {};
        ArmDevice(device);
        while (!handles.empty())
            Free(0);
        Compare();
        tavrix::testing::Reset();
        for (const auto& file : device.files)
            std::filesystem::remove(HostFile(FirstFolder, file.first));
    }

    u32 sentOut = 0; // how many comparisons saw a page in its file

private:
    static constexpr u32 Reserve = 5000;

    struct Both {
        PageHandle handle;
        PlainSwapStore::Handle plain;
    };

    u32 Below(u32 count) { return static_cast<u32>(random()) % count; }
    size_t Pick() { return handles.empty() ? 0 : Below(static_cast<u32>(handles.size())); }

    /// Another device for the next operation.
    void Bend()
    {
        const u64 memories[] = {Reserve,       Reserve + 100, Reserve + 300,
                                Reserve + 301, 1u << 30,      1u << 30};
        device.freeMemory = memories[Below(6)] + (Below(3) == 0 ? Below(200) : 0);
        const u64 disks[] = {0, 100, 300, 1u << 30, 1u << 30, 1ull << 33};
        device.disk = disks[Below(6)];
        // Few numbers, so that names clash.
        device.random.assign(200, 0);
        for (LONG& number : device.random)
            number = static_cast<LONG>(Below(40));
        device.faults = {};
        // Sometimes around eleven names in a row are taken.
        if (Below(6) == 0)
            device.faults.create.assign(9 + Below(4), true);
        if (Below(3) != 0)
            return;
        const u32 rate = 2 + Below(6);
        for (int at = 0; at < 40; ++at) {
            device.faults.create.push_back(Below(rate) == 0);
            device.faults.open.push_back(Below(rate) == 0);
            device.faults.writeShortBy.push_back(Below(rate) == 0 ? 1 + Below(300) : 0);
            const u32 missing = Below(3) == 0 ? PlainDevice::ReadFails : 1 + Below(300);
            device.faults.readShortBy.push_back(Below(rate) == 0 ? missing : 0);
        }
    }

    void Allocate()
    {
        const u32 sizes[] = {0, 1, 16, 100, 100, 299, 300};
        const u32 size = sizes[Below(7)];
        void* marked = nullptr;
        Both both{&marked, nullptr};
        const i32 expected = plain.Allocate(&both.plain, size);
        EXPECT_EQ(store.Allocate(&both.handle, size), expected);
        if (expected != Done) {
            EXPECT_EQ(both.handle, nullptr);
            return;
        }
        ASSERT_NE(both.handle, nullptr);
        handles.push_back(both);
    }

    void Free(size_t at)
    {
        if (handles.empty())
            return;
        EXPECT_EQ(store.Free(handles[at].handle), plain.Free(handles[at].plain));
        handles.erase(handles.begin() + static_cast<std::ptrdiff_t>(at));
    }

    /// Locks, and writes to what was locked.
    void Lock(size_t at)
    {
        if (handles.empty())
            return;
        const Both& both = handles[at];
        void* block = nullptr;
        const i32 expected = plain.Lock(both.plain);
        ASSERT_EQ(store.Lock(both.handle, &block), expected);
        if (expected != Done)
            return;
        ASSERT_EQ(block, *both.handle);
        ASSERT_NE(block, nullptr);
        ExpectBytes(both);
        for (u8& byte : both.plain->bytes)
            byte = static_cast<u8>(random());
        std::copy(both.plain->bytes.begin(), both.plain->bytes.end(), static_cast<u8*>(block));
    }

    void Unlock(size_t at)
    {
        if (!handles.empty()) {
            EXPECT_EQ(store.Unlock(handles[at].handle), plain.Unlock(handles[at].plain));
        }
    }

    static void ExpectBytes(const Both& both)
    {
        const u8* block = static_cast<const u8*>(*both.handle);
        ASSERT_TRUE(std::equal(both.plain->bytes.begin(), both.plain->bytes.end(), block));
    }

    void Compare()
    {
        for (const Both& both : handles) {
            ASSERT_EQ(*both.handle == nullptr, both.plain->out);
            if (!both.plain->out)
                ExpectBytes(both);
            sentOut += both.plain->out ? 1 : 0;
        }
        ASSERT_EQ(SwapFiles(), device.files);
    }

    std::mt19937 random;
    PlainDevice device;
    SwapStore store;
    PlainSwapStore plain;
    std::vector<Both> handles;
};

void RunPairs(bool hasFolder, u64 gain, u32 firstSeed)
{
    u32 sentOut = 0;
    for (u32 seed = firstSeed; seed < firstSeed + 8; ++seed) {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        StorePair pair(seed, hasFolder, gain);
        for (int step = 0; step < 150 && !::testing::Test::HasFailure(); ++step) {
            SCOPED_TRACE(::testing::Message() << "step " << step);
            pair.Step();
        }
        pair.End();
        sentOut += pair.sentOut;
        if (::testing::Test::HasFailure())
            return;
    }
    EXPECT_EQ(sentOut > 100, hasFolder) << sentOut;
}

} // namespace

TEST_F(SwapStoreModel, DoesAsItsTwinWhereSendingOutFreesNothing)
{
    RunPairs(true, 0, 1);
}

TEST_F(SwapStoreModel, DoesAsItsTwinWhereEachPageFreesALittle)
{
    RunPairs(true, 60, 100);
}

TEST_F(SwapStoreModel, DoesAsItsTwinWhereOnePageIsMostlyEnough)
{
    RunPairs(true, 250, 200);
}

TEST_F(SwapStoreModel, DoesAsItsTwinWithoutAFolder)
{
    RunPairs(false, 60, 300);
}
