// Random runs of every operation on two rasters that share folders, under free memory that changes
// from step to step, against the plain form that goes step by step.

#include "image/tests/StorageTwin.h"

#include <memory>

namespace
{

class StorageModel : public PagingTest
{
protected:
    struct Options {
        bool folderFaults = false;
        bool memoryFaults = false;
        u32 baseWidth = 1; // wide lines let an allocator tell a line from a table
        u32 depth = 0;     // 0: any
        u32 rasters = 2;
        u32 names = 24; // that Random gives
    };

    void Begin(u32 seed, const Options& given)
    {
        options = given;
        device = std::make_unique<StorageDevice>(seed, given.names);
        for (u32 i = 0; i < given.rasters; ++i)
            twins.push_back(std::make_unique<StorageTwin>(device.get()));
        for (auto& twin : twins)
            Create(*twin);
    }

    void End()
    {
        device->Rest();
        device->SetFree(1u << 30);
        twins.clear();
        device->RemoveFiles();
    }

    void Run(u32 seed, int steps, const Options& given)
    {
        Begin(seed, given);
        for (int step = 0; step < steps && !HasFailure(); ++step) {
            SCOPED_TRACE(::testing::Message() << "seed " << seed << " step " << step);
            Step();
        }
        End();
    }

    u32 Below(u32 count) { return device->Below(count); }

    StorageTwin& AnyTwin() { return *twins[Below(options.rasters)]; }

    void Step()
    {
        StorageTwin& twin = AnyTwin();
        SetMemory();
        device->DrawNumbers(NumbersAStep);
        const u32 draw = Below(100);
        SCOPED_TRACE(::testing::Message() << "operation " << draw);
        if (options.folderFaults && Below(3) == 0)
            SpoilFolders();
        if (draw < 30)
            Lock(twin);
        else if (draw < 56)
            Release(twin);
        else if (draw < 66)
            Insert(twin);
        else if (draw < 73)
            Remove(twin);
        else if (draw < 81)
            Swap(twin);
        else if (draw < 83)
            EXPECT_EQ(twin.raster.FlipVertical(), twin.plain.FlipVertical());
        else if (draw < 87)
            EXPECT_EQ(twin.raster.UnlockAll(), twin.plain.UnlockAll());
        else if (draw < 90)
            Load(twin);
        else if (draw < 92)
            Take(twin);
        else if (draw < 95)
            Create(twin);
        else if (draw < 96)
            Reset(twin);
        else if (draw < 97)
            Info(twin);
        else if (draw < 98)
            twin.ReadAll();
        else
            Tamper();
        device->Rest();
        for (auto& each : twins)
            each->allocator.fails = nullptr;
        device->ExpectSame();
        for (auto& each : twins)
            each->ExpectSame();
    }

    /// Plenty, none, or a figure at the very edge of what one of the rasters needs.
    void SetMemory()
    {
        const u32 edge = 0xA0000 + AnyTwin().plain.stride;
        const u32 figures[] = {1u << 30, 1u << 30, 1u << 30, 0xA0000, edge, edge + 1};
        device->SetFree(figures[Below(6)]);
    }

    void SpoilFolders()
    {
        PlainFolder& first = device->plain.folders[FirstFolder];
        PlainFolder& second = device->plain.folders[SecondFolder];
        PlainFolder& either = Below(2) == 0 ? first : second;
        const u32 draw = Below(8);
        if (draw == 0 || draw == 1)
            either.refusesFiles = true;
        else if (draw == 2)
            first.refusesFiles = second.refusesFiles = true;
        else if (draw == 3)
            either.writesShortBy = 1 + Below(3) * 100;
        else if (draw == 4)
            first.writesShortBy = second.writesShortBy = 1;
        else if (draw == 5)
            either.hidesFiles = true;
        else if (draw == 6)
            either.readsShortBy = Below(3) * 5;
        else
            device->SetDiskSpace(Below(4) * twins[0]->plain.stride + Below(3));
        device->ArmFolders();
    }

    void SpoilMemory(StorageTwin& twin, bool changesHeight)
    {
        if (!options.memoryFaults || Below(4) != 0)
            return;
        const u32 draw = Below(changesHeight ? 5 : 4);
        if (draw == 4)
            device->plain.noRecords = true;
        else if (draw < 2)
            device->plain.lineBlocks = Below(3);
        else if (draw == 2)
            device->plain.nameBlocks = Below(3);
        else
            device->plain.noTables = true;
        twin.ArmAllocator(changesHeight, 1 + static_cast<int>(Below(3)));
    }

    /// Mostly a line there is, from either end.
    i32 Line(const StorageTwin& twin)
    {
        const u32 height = twin.plain.height;
        if (height != 0 && Below(3) != 0)
            return static_cast<i32>(Below(height));
        return static_cast<i32>(Below(2 * height + 4)) - static_cast<i32>(height) - 2;
    }

    u32 Count(const StorageTwin& twin)
    {
        if (Below(20) == 0)
            return 0x7FFFFFF0u + Below(32);
        if (Below(20) == 0)
            return 0xFFFFFFFFu - Below(16);
        return Below(2) == 0 ? 1 : Below(twin.plain.height + 2);
    }

    void Lock(StorageTwin& twin)
    {
        u32 count = Count(twin);
        SpoilMemory(twin, false);
        twin.Lock(Line(twin), Below(3) == 0 ? nullptr : &count);
    }

    void Release(StorageTwin& twin)
    {
        const i32 line = Line(twin);
        const u32 count = Count(twin);
        const i32 force = Below(2) == 0 ? 1 : 0;
        SpoilMemory(twin, false);
        const i32 meant = twin.plain.ReleaseLines(line, count, force);
        EXPECT_EQ(twin.raster.ReleaseLines(line, count, force), meant)
            << "release " << line << ", " << count;
        if (meant == 0 && Below(2) == 0)
            LookAtLostLines(twin);
    }

    /// Which line a lost one refers to shows when it is locked.
    void LookAtLostLines(StorageTwin& twin)
    {
        device->Rest();
        twin.allocator.fails = nullptr;
        device->SetFree(1u << 30);
        twin.ReadAll();
    }

    void Insert(StorageTwin& twin)
    {
        if (twin.plain.height > 14)
            return;
        const i32 at = Line(twin);
        u32 count = Below(4);
        const bool single = Below(3) == 0;
        SpoilMemory(twin, true);
        const u32 asked = count;
        const i32 meant = twin.plain.InsertLines(at, single ? 1 : count);
        EXPECT_EQ(twin.raster.InsertLines(at, single ? nullptr : &count), meant) << "insert " << at;
        EXPECT_EQ(count, asked) << "the count is not told back";
        ResetWithoutRecords(twin);
    }

    void Remove(StorageTwin& twin)
    {
        const i32 at = Line(twin);
        u32 count = Below(4) == 0 ? Count(twin) : 2 + Below(2);
        const bool single = Below(2) == 0;
        const u32 asked = count;
        SpoilMemory(twin, true);
        const i32 meant = twin.plain.RemoveLines(at, single ? 1 : count);
        EXPECT_EQ(twin.raster.RemoveLines(at, single ? nullptr : &count), meant)
            << "remove " << at << ", " << count;
        EXPECT_EQ(count, asked) << "the count is not told back";
        ResetWithoutRecords(twin);
    }

    /// A height that has no records any more: nothing but its size is compared.
    void ResetWithoutRecords(StorageTwin& twin)
    {
        if (!device->plain.noRecords || twin.plain.lines.size() == twin.plain.height)
            return;
        EXPECT_EQ(InfoOf(twin.raster).height, twin.plain.height);
        Reset(twin);
    }

    void Swap(StorageTwin& twin)
    {
        const i32 a = Line(twin);
        const i32 b = Line(twin);
        EXPECT_EQ(twin.raster.SwapLines(a, b), twin.plain.SwapLines(a, b)) << a << ", " << b;
    }

    void Load(StorageTwin& twin)
    {
        std::vector<u8> block(size_t{twin.plain.height} * twin.plain.stride + 1);
        for (u8& byte : block)
            byte = device->Byte();
        SpoilMemory(twin, false);
        const i32 meant = twin.plain.LoadRaw(block);
        EXPECT_EQ(twin.raster.LoadRaw(block.data()), meant);
    }

    void Take(StorageTwin& twin)
    {
        StorageTwin& source = AnyTwin();
        if (&source == &twin) {
            EXPECT_EQ(twin.raster.TakeFrom(&source.raster), -4);
            return;
        }
        const i32 meant = twin.plain.TakeFrom(source.plain);
        EXPECT_EQ(twin.raster.TakeFrom(&source.raster), meant);
        if (Below(2) == 0)
            Reset(source);
    }

    void Create(StorageTwin& twin)
    {
        const WCHAR* firsts[] = {nullptr,     FirstFolder,  FirstFolder,
                                 FirstFolder, AbsentFolder, SecondFolder};
        const WCHAR* seconds[] = {nullptr, SecondFolder, SecondFolder, FirstFolder};
        const u32 depths[] = {8, 16, 24, 32, 24, 24, 24, 32, 8, 12};
        const WCHAR* first = firsts[Below(6)];
        const WCHAR* second = seconds[Below(4)];
        const u32 depth = options.depth != 0 ? options.depth : depths[Below(10)];
        const u32 width = options.baseWidth + Below(12);
        const u32 height = Below(4) == 0 ? Below(3) : 4 + Below(8);
        const auto text = [](const WCHAR* folder) {
            return folder == nullptr ? std::nullopt
                                     : std::optional<std::u16string>(std::u16string(folder));
        };
        const i32 meant = twin.plain.Create(width, height, depth, text(first), text(second));
        EXPECT_EQ(twin.raster.Create(width, height, depth, first, second), meant);
        if (twin.plain.created && Below(3) == 0)
            FillPalette(twin);
    }

    void FillPalette(StorageTwin& twin)
    {
        ColorTable* table = nullptr;
        ASSERT_EQ(twin.raster.GetPalette(&table), 1);
        twin.plain.palette.clear();
        for (u32 i = 0; i < 1 + Below(4); ++i)
            twin.plain.palette.push_back({i, Below(256), Below(256), 0});
        ASSERT_EQ(table->SetEntries(twin.plain.palette.data(),
                                    static_cast<u32>(twin.plain.palette.size())),
                  1);
    }

    void Reset(StorageTwin& twin)
    {
        twin.plain.Reset();
        twin.raster.Reset();
    }

    void Info(StorageTwin& twin)
    {
        const PlainPaging& plain = twin.plain;
        const u32 whole[] = {24,          plain.width,  plain.height,
                             plain.depth, plain.stride, static_cast<u32>(plain.palette.size())};
        const u32 size = Below(30);
        u32 got[8];
        u32 meant[8];
        std::memset(got, 0xA5, sizeof got);
        got[0] = size;
        std::memcpy(meant, got, sizeof meant);
        std::memcpy(meant, whole, std::min<size_t>(size, sizeof whole));
        RasterInfo info;
        std::memcpy(&info, got, sizeof info);
        EXPECT_EQ(twin.raster.GetInfo(&info), 1);
        std::memcpy(got, &info, sizeof info);
        EXPECT_EQ(std::memcmp(got, meant, sizeof got), 0) << "size " << size;
    }

    /// Somebody else makes, changes or removes a file of the folders.
    void Tamper()
    {
        const WCHAR* folder = Below(2) == 0 ? FirstFolder : SecondFolder;
        char name[16];
        std::snprintf(name, sizeof name, "%06u.tmp", Below(options.names));
        if (Below(2) == 0 && device->plain.folders[folder].files.count(name) != 0) {
            device->RemoveFile(folder, name);
            return;
        }
        std::vector<u8> bytes(Below(64));
        for (u8& byte : bytes)
            byte = device->Byte();
        device->PutFile(folder, name, bytes);
    }

    Options options;
    std::unique_ptr<StorageDevice> device;
    std::vector<std::unique_ptr<StorageTwin>> twins;
};

TEST_F(StorageModel, RandomRunsGiveWhatThePlainStepsGive)
{
    for (u32 seed = 1; seed <= 5 && !HasFailure(); ++seed)
        Run(seed, 300, {});
}

TEST_F(StorageModel, RunsInWhichFoldersFailGiveWhatThePlainStepsGive)
{
    Options wanted;
    wanted.folderFaults = true;
    for (u32 seed = 101; seed <= 106 && !HasFailure(); ++seed)
        Run(seed, 300, wanted);
}

TEST_F(StorageModel, ManyRastersShareTheirFoldersAndFindTheirOwnLinesAgain)
{
    Options wanted;
    wanted.rasters = 12;
    wanted.names = 150;
    for (u32 seed = 301; seed <= 302 && !HasFailure(); ++seed)
        Run(seed, 400, wanted);
}

TEST_F(StorageModel, RunsInWhichLinesAndNamesCannotBeHadGiveWhatThePlainStepsGive)
{
    Options wanted;
    wanted.memoryFaults = true;
    wanted.baseWidth = 400;
    wanted.depth = 8;
    for (u32 seed = 201; seed <= 206 && !HasFailure(); ++seed)
        Run(seed, 300, wanted);
}

} // namespace
