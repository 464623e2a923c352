// The page store written out plainly: pages by size in a list, each in memory or in a file of a
// pretended folder, on a pretended device whose free memory, disk and faults are known. A store and
// its twin run the same operation; afterwards results, blocks and files must be the same.
#pragma once

#include "image/SwapStore.h"
#include "image/tests/PagingTest.h"

#include <algorithm>
#include <list>
#include <memory>
#include <random>

/// What happens to the n-th operation of a kind on swap files; true or above 0 is a fault.
struct PlainFaults {
    std::vector<bool> create;
    std::vector<bool> open;
    std::vector<u32> writeShortBy;
    std::vector<u32> readShortBy; // or PlainDevice::ReadFails
};

/// The device as a store sees it. Counters begin anew with each operation (see Rest).
struct PlainDevice {
    static constexpr u32 ReadFails = 0xFFFFFFFF;

    u64 freeMemory = 1u << 30;
    u64 gain = 0; // by so much the free memory grows at each write of a page
    u64 disk = 1u << 30;
    u32 tick = 0;
    std::vector<LONG> random;
    PlainFaults faults;
    std::map<std::string, std::vector<u8>> files;

    size_t randomNext = 0;
    size_t creates = 0;
    size_t opens = 0;
    size_t writes = 0;
    size_t reads = 0;

    void Rest() { randomNext = creates = opens = writes = reads = 0; }

    template <class Fault>
    static Fault FaultOf(const std::vector<Fault>& list, size_t number)
    {
        return number < list.size() ? Fault{list[number]} : Fault{};
    }

    u32 NewId() { return tick + static_cast<u32>(random.at(randomNext++)); }
    static std::string NameOf(u32 id) { return std::to_string(id) + ".swp"; }

    bool Create(u32 id)
    {
        if (FaultOf(faults.create, creates++) || disk == 0 || files.count(NameOf(id)) != 0)
            return false;
        files[NameOf(id)] = {};
        return true;
    }
    bool Open(u32 id) { return !FaultOf(faults.open, opens++) && files.count(NameOf(id)) != 0; }
    /// How many bytes were written.
    u32 Write(u32 id, const std::vector<u8>& bytes)
    {
        const u32 size = static_cast<u32>(bytes.size());
        freeMemory += gain;
        const u32 asked = size - std::min(size, FaultOf(faults.writeShortBy, writes++));
        const u32 put = static_cast<u32>(std::min<u64>(asked, disk));
        disk -= put;
        files[NameOf(id)].assign(bytes.begin(), bytes.begin() + put);
        return put;
    }
    /// A block of that size with as much of the file as was read, and zeros behind it.
    std::vector<u8> Read(u32 id, u32 size)
    {
        const std::vector<u8>& file = files[NameOf(id)];
        const u32 wanted = size - std::min(size, FaultOf(faults.readShortBy, reads++));
        std::vector<u8> block(size);
        std::copy_n(file.begin(), std::min<size_t>(wanted, file.size()), block.begin());
        return block;
    }
};

struct PlainPage {
    std::vector<u8> bytes; // what the page holds, wherever it is
    u32 fileId = 0;
    u32 lockCount = 0;
    bool out = false;

    u32 Size() const { return static_cast<u32>(bytes.size()); }
};

class PlainSwapStore
{
public:
    using Handle = PlainPage*;

    PlainSwapStore(PlainDevice& theDevice, u32 theReserve, bool hasFolder)
        : device(theDevice), reserve(theReserve), folder(hasFolder)
    {
    }

    i32 MakeRoom(u32 needed)
    {
        if (HasRoom(needed))
            return Done;
        if (!folder)
            return Failed;
        for (PlainPage& page : pages) {
            if (HasRoom(needed))
                return Done;
            if (page.out || page.lockCount >= 1 || device.disk <= page.Size())
                continue;
            u32 id = page.fileId;
            int attempt = 1;
            while (!device.Create(id)) {
                if (++attempt > 11)
                    return Failed;
                id = device.NewId();
            }
            if (!device.Open(id)) {
                device.files.erase(PlainDevice::NameOf(id));
                continue;
            }
            if (device.Write(id, page.bytes) < page.Size()) {
                device.files.erase(PlainDevice::NameOf(id));
                return Failed;
            }
            page.out = true;
            page.fileId = id;
        }
        return Failed; // nobody looks again behind the last page
    }

    i32 Allocate(Handle* handle, u32 size)
    {
        *handle = nullptr;
        if (MakeRoom(size) < 0)
            return Failed;
        auto behind = pages.begin();
        while (behind != pages.end() && behind->Size() >= size)
            ++behind;
        PlainPage page;
        page.bytes.resize(size);
        page.fileId = device.NewId();
        *handle = &*pages.insert(behind, page);
        return Done;
    }

    i32 Free(Handle handle)
    {
        const auto page = Find(handle);
        if (page == pages.end())
            return Failed;
        if (page->out)
            device.files.erase(PlainDevice::NameOf(page->fileId));
        pages.erase(page);
        return Done;
    }

    i32 Lock(Handle handle)
    {
        const auto page = Find(handle);
        if (page == pages.end())
            return Failed;
        if (page->lockCount >= 1) {
            ++page->lockCount;
            return Done;
        }
        if (const i32 result = MakeRoom(page->Size()); result < 0)
            return result;
        if (page->out) {
            if (MakeRoom(page->Size()) < 0 || !device.Open(page->fileId))
                return Failed;
            page->bytes = device.Read(page->fileId, page->Size());
            device.files.erase(PlainDevice::NameOf(page->fileId));
            page->out = false;
        }
        page->lockCount = 1;
        return Done;
    }

    i32 Unlock(Handle handle)
    {
        const auto page = Find(handle);
        if (page == pages.end())
            return Failed;
        if (page->lockCount == 0)
            return NothingDone;
        --page->lockCount;
        return Done;
    }

    std::list<PlainPage> pages; // the largest first, those of one size as they were made

private:
    bool HasRoom(u32 needed) const { return device.freeMemory > u64{reserve} + needed; }
    std::list<PlainPage>::iterator Find(Handle handle)
    {
        return std::find_if(pages.begin(), pages.end(),
                            [handle](const PlainPage& page) { return &page == handle; });
    }

    PlainDevice& device;
    u32 reserve;
    bool folder;
};

/// Swap files in a folder by name, with what is in them.
inline std::map<std::string, std::vector<u8>> SwapFiles(const WCHAR* folder = FirstFolder)
{
    std::map<std::string, std::vector<u8>> files;
    for (const auto& entry : std::filesystem::directory_iterator(tavrix::testing::HostPath(folder)))
        if (entry.path().extension() == ".swp")
            files[entry.path().filename().string()] = ReadHostFile(entry.path().string());
    return files;
}

/// Makes the real device what the plain one is, for the next operation.
inline void ArmDevice(PlainDevice& device)
{
    namespace testing = tavrix::testing;
    using tavrix::platform::FileOperation;
    device.Rest();
    testing::SetFreeMemory(device.freeMemory);
    testing::SetDiskSpace(device.disk);
    testing::SetTickCount(device.tick);
    testing::SetRandom(device.random);
    struct Seen {
        PlainFaults faults;
        u64 freeMemory = 0;
        u64 gain = 0;
        size_t creates = 0;
        size_t opens = 0;
        size_t writes = 0;
        size_t reads = 0;
    };
    // Shared: the platform asks a copy of the function each time.
    const auto seen = std::make_shared<Seen>();
    seen->faults = device.faults;
    seen->freeMemory = device.freeMemory;
    seen->gain = device.gain;
    testing::SetFileFault([seen](FileOperation operation, const WCHAR*, DWORD* shortBy) {
        const PlainFaults& faults = seen->faults;
        switch (operation) {
        case FileOperation::Create:
            return PlainDevice::FaultOf(faults.create, seen->creates++);
        case FileOperation::Open:
            return PlainDevice::FaultOf(faults.open, seen->opens++);
        case FileOperation::Write:
            seen->freeMemory += seen->gain;
            testing::SetFreeMemory(seen->freeMemory);
            *shortBy = PlainDevice::FaultOf(faults.writeShortBy, seen->writes++);
            return *shortBy != 0;
        case FileOperation::Read: {
            const u32 missing = PlainDevice::FaultOf(faults.readShortBy, seen->reads++);
            *shortBy = missing == PlainDevice::ReadFails ? 0 : missing;
            return missing != 0;
        }
        default:
            return false;
        }
    });
}

/// The folder exists and holds no swap file at the start and at the end.
class SwapStoreTest : public PagingTest
{
protected:
    void SetUp() override
    {
        PagingTest::SetUp();
        ClearSwapFiles();
    }
    void TearDown() override
    {
        tavrix::testing::Reset();
        EXPECT_TRUE(SwapFiles().empty());
        ClearSwapFiles();
        PagingTest::TearDown();
    }
    static void ClearSwapFiles()
    {
        for (const auto& file : SwapFiles())
            std::filesystem::remove(HostFile(FirstFolder, file.first));
    }
};

/// A page's bytes with the pattern of `seed`.
inline std::vector<u8> PageBytes(u32 size, u32 seed)
{
    std::vector<u8> bytes(size);
    for (u32 at = 0; at < size; ++at)
        bytes[at] = PatternByte(seed, 3, at);
    return bytes;
}
