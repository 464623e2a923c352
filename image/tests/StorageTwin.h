// A raster beside its plain form, and the device that both see: memory, names, folders and faults
// are set once for both, before each operation. Comparing looks at results, counts, addresses,
// bytes of pinned lines, sizes and every file of the folders.
#pragma once

#include "image/tests/PlainPaging.h"

#include <handheld.h>

#include <random>

inline constexpr const WCHAR* AbsentFolder = TEXT("\\No Card\\Temp\\");

/// More numbers than one operation draws.
inline constexpr size_t NumbersAStep = 1200;

/// The device's two sides. Every line file that the raster makes shall stand in `plain` too.
class StorageDevice
{
public:
    explicit StorageDevice(u32 seed, u32 nameCount = 24) : names(nameCount), random(seed)
    {
        plain.folders[FirstFolder];
        plain.folders[SecondFolder];
        plain.folders[AbsentFolder].exists = false;
    }

    PagingDevice plain;

    u32 Below(u32 count) { return random() % count; }
    u8 Byte() { return static_cast<u8>(random()); }

    void SetFree(u32 bytes)
    {
        plain.freeMemory = bytes;
        tavrix::testing::SetFreeMemory(bytes);
        MemoryGauge::Sample();
    }

    /// The next numbers of Random for both sides.
    void SetNumbers(const std::vector<LONG>& numbers)
    {
        plain.numbers.assign(numbers.begin(), numbers.end());
        tavrix::testing::SetRandom(numbers);
    }

    /// Few names, so that many are taken; now and then a number that stays for longer than anybody
    /// draws again.
    void DrawNumbers(size_t count)
    {
        std::vector<LONG> drawn(count);
        for (LONG& number : drawn)
            number = static_cast<LONG>(Below(names) + 1000000 * Below(2000));
        if (Below(6) == 0) {
            const size_t from = Below(8);
            for (size_t i = from; i < from + 120; ++i)
                drawn[i] = drawn[from] % 1000000 + static_cast<LONG>(1000000 * i);
        }
        SetNumbers(drawn);
    }

    void SetDiskSpace(u64 bytes)
    {
        plain.diskSpace = bytes;
        tavrix::testing::SetDiskSpace(bytes);
    }

    /// Brings what `plain` says about its folders to the real ones.
    void ArmFolders()
    {
        tavrix::testing::SetFileFault(
            [folders = plain.folders](tavrix::platform::FileOperation operation, const WCHAR* path,
                                      DWORD* shortBy) {
                using tavrix::platform::FileOperation;
                const std::u16string text = path;
                const auto found = folders.find(text.substr(0, text.rfind(u'\\') + 1));
                if (found == folders.end())
                    return false;
                const PlainFolder& folder = found->second;
                if (operation == FileOperation::Create)
                    return folder.refusesFiles;
                if (operation == FileOperation::Open)
                    return folder.hidesFiles;
                if (operation == FileOperation::Write) {
                    *shortBy = folder.writesShortBy;
                    return folder.writesShortBy != 0;
                }
                *shortBy = folder.readsShortBy.value_or(0);
                return operation == FileOperation::Read && folder.readsShortBy.has_value();
            });
    }

    /// Nothing fails any more.
    void Rest()
    {
        for (auto& [name, folder] : plain.folders) {
            folder.refusesFiles = folder.hidesFiles = false;
            folder.writesShortBy = 0;
            folder.readsShortBy.reset();
        }
        plain.diskSpace.reset();
        plain.lineBlocks.reset();
        plain.nameBlocks.reset();
        plain.noTables = plain.noRecords = false;
        tavrix::testing::SetFileFault(nullptr);
        tavrix::testing::SetDiskSpace(~0ull);
    }

    /// Puts a file there (or changes it) on both sides.
    void PutFile(const WCHAR* folder, const std::string& name, const std::vector<u8>& bytes)
    {
        plain.folders[folder].files[name] = bytes;
        std::ofstream file(HostFile(folder, name), std::ios::binary | std::ios::trunc);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<i64>(bytes.size()));
    }

    void RemoveFile(const WCHAR* folder, std::string name)
    {
        plain.folders[folder].files.erase(name);
        std::filesystem::remove(HostFile(folder, name));
    }

    /// Every file of both folders, and that as many numbers were drawn on both sides.
    void ExpectSame()
    {
        for (const WCHAR* folder : {FirstFolder, SecondFolder}) {
            std::map<std::string, std::vector<u8>> found;
            for (const auto& file : FilesIn(folder))
                found[file.first] = ReadHostFile(HostFile(folder, file.first));
            const auto& meant = plain.folders[folder].files;
            if (found != meant)
                ADD_FAILURE() << "files of " << tavrix::testing::Utf8(folder) << " are"
                              << TextOf(found) << "\nand should be" << TextOf(meant);
        }
        if (!plain.numbers.empty()) {
            EXPECT_EQ(Random(), plain.Draw()) << "another number of names was drawn";
        }
    }

    /// Removes what tests have put there.
    void RemoveFiles()
    {
        for (const WCHAR* folder : {FirstFolder, SecondFolder})
            while (!plain.folders[folder].files.empty())
                RemoveFile(folder, plain.folders[folder].files.begin()->first);
    }

private:
    /// Names with sizes and the sum of the bytes.
    static std::string TextOf(const std::map<std::string, std::vector<u8>>& files)
    {
        std::string text;
        for (const auto& [name, bytes] : files) {
            u32 sum = 0;
            for (const u8 byte : bytes)
                sum += byte;
            text += " " + name + ":" + std::to_string(bytes.size()) + "/" + std::to_string(sum);
        }
        return text;
    }

    u32 names;
    std::mt19937 random;
};

/// A raster and its plain form.
class StorageTwin
{
public:
    explicit StorageTwin(StorageDevice* where)
        : raster(&allocator), plain(&where->plain), device(where)
    {
    }
    ~StorageTwin()
    {
        plain.Reset();
        raster.Reset();
        EXPECT_EQ(allocator.blocks.size(), static_cast<size_t>(plain.table.lostLines))
            << "blocks that the raster lost";
    }
    StorageTwin(const StorageTwin&) = delete;
    StorageTwin& operator=(const StorageTwin&) = delete;

    KeepingAllocator allocator; // outlives the raster
    Raster raster;
    PlainPaging plain;

    /// Sets what fails of the real side's memory, for one operation, as the plain side's budgets
    /// say. `recordsAt`: which of the first three blocks of a change of height cannot be had.
    /// Lines must be larger than every table, so that sizes tell blocks apart.
    void ArmAllocator(bool changesHeight, int recordsAt = 1)
    {
        const u32 stride = plain.stride;
        allocator.fails = [stride, changesHeight, recordsAt, nth = 0,
                           lineBlocks = device->plain.lineBlocks,
                           nameBlocks = device->plain.nameBlocks, noTables = device->plain.noTables,
                           noRecords = device->plain.noRecords](u32 size) mutable {
            ++nth;
            if (changesHeight && nth <= 3)
                return noRecords && nth == recordsAt;
            if (size == stride)
                return !PagingDevice::Take(lineBlocks);
            if (IsName(size))
                return !PagingDevice::Take(nameBlocks);
            return noTables && size > 1; // an empty table is no matter
        };
    }

    /// Locks on both sides and fills what was locked anew.
    void Lock(i32 line, u32* count)
    {
        const u32 wanted = count != nullptr ? *count : 1;
        std::vector<u8*> out(plain.height + 2, nullptr);
        std::vector<std::shared_ptr<PlainBlock>> blocks;
        u32 plainCount = wanted;
        u32 realCount = wanted;
        const i32 meant = plain.LockLines(line, count != nullptr ? &plainCount : nullptr, &blocks);
        const i32 result =
            raster.LockLines(line, out.data(), count != nullptr ? &realCount : nullptr);
        ASSERT_EQ(result, meant) << "lock " << line << ", " << wanted;
        ASSERT_EQ(realCount, plainCount);
        if (count != nullptr)
            *count = realCount;
        for (size_t i = 0; i < blocks.size(); ++i) {
            PlainBlock& block = *blocks[i];
            ASSERT_NE(out[i], nullptr);
            if (block.real == nullptr)
                block.real = out[i];
            ASSERT_EQ(out[i], block.real) << "line " << line << " + " << i << " has moved";
        }
        ExpectSamePinned();
        for (const auto& block : blocks)
            Refill(*block);
        if (blocks.size() < out.size()) {
            ASSERT_EQ(out[blocks.size()], nullptr) << "more addresses than lines";
        }
    }

    /// Reads every line, on both sides, and leaves none locked.
    void ReadAll()
    {
        for (u32 y = 0; y < plain.height; ++y) {
            device->DrawNumbers(NumbersAStep);
            Lock(static_cast<i32>(y), nullptr);
            if (::testing::Test::HasFatalFailure())
                return;
        }
        EXPECT_EQ(raster.UnlockAll(), plain.UnlockAll());
    }

    void ExpectSame()
    {
        RasterInfo info = {};
        info.size = sizeof info;
        EXPECT_EQ(raster.GetInfo(&info), 1);
        EXPECT_EQ(info.size, 24u);
        EXPECT_EQ(info.width, plain.width);
        EXPECT_EQ(info.height, plain.height);
        EXPECT_EQ(info.depth, plain.depth);
        EXPECT_EQ(info.stride, plain.stride);
        EXPECT_EQ(info.colorCount, plain.palette.size());
        ExpectSameFolders();
        ExpectSamePinned();
    }

private:
    static bool IsName(u32 size)
    {
        for (const WCHAR* folder : {FirstFolder, SecondFolder, AbsentFolder})
            if (size == 2 * (std::u16string(folder).size() + 13))
                return true;
        return false;
    }

    void ExpectSameFolders()
    {
        SwapDirs folders = {};
        EXPECT_EQ(raster.GetSwapDirs(&folders), 1);
        EXPECT_EQ(folders.primary != nullptr, plain.primary.has_value());
        EXPECT_EQ(folders.secondary != nullptr, plain.secondary.has_value());
        if (folders.primary != nullptr && plain.primary) {
            EXPECT_EQ(std::u16string(folders.primary), *plain.primary);
        }
        if (folders.secondary != nullptr && plain.secondary) {
            EXPECT_EQ(std::u16string(folders.secondary), *plain.secondary);
        }
    }

    void ExpectSamePinned()
    {
        for (size_t y = 0; y < plain.lines.size(); ++y) {
            const PlainRecord& line = plain.lines[y];
            const std::shared_ptr<PlainBlock> block =
                line.locked ? plain.table.Slot(line.ref.physical) : nullptr;
            if (block != nullptr && block->real != nullptr) {
                ASSERT_EQ(std::memcmp(block->real, block->bytes.data(), plain.stride), 0)
                    << "pinned line " << y;
            }
        }
    }

    void Refill(PlainBlock& block)
    {
        for (u32 x = 0; x < plain.stride; ++x)
            block.bytes[x] = block.real[x] = device->Byte();
    }

    StorageDevice* device;
};
