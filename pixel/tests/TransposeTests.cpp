// Rows and columns exchanged, held against the walk from pixel to pixel that locks and releases a
// line of each raster for every one of them: on plain twins, and on rasters of the same make.

#include "Pictures.h"
#include "Rasters.h"

#include "platform/testing/Faults.h"

#include <algorithm>

namespace
{

class TransposeTo : public PagingTest
{
};

bool IsInside(u32 pixel, u32 stride)
{
    return 3 * pixel + 3 <= stride;
}

i32 PlainTranspose(PlainRaster& source, PlainRaster& target)
{
    for (u32 y = 0; y < source.height; ++y)
        for (u32 x = 0; x < source.width; ++x) {
            i32 status = source.Lock(y);
            if (status < 1)
                return status;
            status = target.Lock(x);
            if (status < 1)
                return status;
            if (IsInside(x, source.stride) && IsInside(y, target.stride))
                std::copy_n(source.Row(y).begin() + 3 * x, 3, target.Row(x).begin() + 3 * y);
            source.Release(y);
            target.Release(x);
        }
    return Done;
}

/// The same on rasters.
i32 Walk(Raster& source, Raster& target)
{
    const RasterInfo from = InfoOf(source);
    const RasterInfo to = InfoOf(target);
    for (u32 y = 0; y < from.height; ++y)
        for (u32 x = 0; x < from.width; ++x) {
            u8* read = nullptr;
            u8* written = nullptr;
            i32 status = source.LockLines(static_cast<i32>(y), &read, nullptr);
            if (status < 1)
                return status;
            status = target.LockLines(static_cast<i32>(x), &written, nullptr);
            if (status < 1)
                return status;
            if (IsInside(x, from.stride) && IsInside(y, to.stride))
                std::memcpy(written + 3 * y, read + 3 * x, 3);
            source.ReleaseLines(static_cast<i32>(y), 1, 0);
            target.ReleaseLines(static_cast<i32>(x), 1, 0);
        }
    return Done;
}

void Check(Twin& source, Twin& target)
{
    SCOPED_TRACE(::testing::Message() << source.plain.width << " x " << source.plain.height << " x "
                                      << source.plain.depth);
    EXPECT_EQ(source.raster.TransposeTo(&target.raster),
              PlainTranspose(source.plain, target.plain));
    ExpectSame({&source, &target});
}

using Contents = std::multiset<std::string>;

/// What can be seen of two rasters after the work.
struct Seen {
    i32 status = 0;
    Contents files;
    Contents filesOfUnlocked; // when every line that is not locked has gone
    Rows source;              // a lost line is empty
    Rows target;
    bool operator==(const Seen&) const = default;
};

/// Sends out whatever may go. A raster without folders has nothing to show.
void SendOut(Raster& raster)
{
    SwapDirs folders = {};
    raster.GetSwapDirs(&folders);
    if (folders.primary == nullptr)
        return;
    u8* row = nullptr;
    (void)raster.InsertLines(static_cast<i32>(InfoOf(raster).height), nullptr);
    (void)raster.LockLines(-1, &row, nullptr);
}

Rows ReadableRows(Raster& raster)
{
    Rows rows;
    const RasterInfo info = InfoOf(raster);
    for (u32 y = 0; y < info.height; ++y) {
        u8* row = nullptr;
        rows.emplace_back();
        if (raster.LockLines(static_cast<i32>(y), &row, nullptr) == Done)
            rows.back().assign(row, row + info.stride);
    }
    return rows;
}

/// A pair of rasters of one make, and what is done to them before the work.
struct Make {
    u32 width;
    u32 height;
    u32 depth = 24;
    Paging sourcePages = Paging::None;
    Paging targetPages = Paging::None;
    std::function<void(Raster& source, Raster& target)> prepare = {};
    std::function<void()> squeeze = {}; // memory during the work
    std::function<bool(int number, u32 size)> fails = {};
    // Where the work ends within a row the walk, which fetched the row's line again, has sent out
    // lines of the source that are still in memory here.
    bool sameFiles = true;
};

template <class Work>
Seen Look(const Make& make, const Work& work)
{
    CountingAllocator memory;
    Seen seen;
    {
        Raster source(&memory);
        Raster target(&memory);
        MakeRaster(source, make.width, make.height, make.depth, 3, make.sourcePages);
        MakeRaster(target, make.height, make.width, make.depth, 9, make.targetPages);
        if (make.prepare)
            make.prepare(source, target);
        if (make.squeeze)
            make.squeeze();
        memory.asked = 0;
        memory.fails = make.fails;
        seen.status = work(source, target);
        memory.fails = nullptr;
        seen.files = twin_detail::FilesFound();
        ShortMemory();
        SendOut(source);
        SendOut(target);
        seen.filesOfUnlocked = twin_detail::FilesFound();
        PlentyOfMemory();
        seen.source = ReadableRows(source);
        seen.target = ReadableRows(target);
    }
    EXPECT_EQ(memory.outstanding, 0);
    return seen;
}

/// The same is seen after both works; answers it.
Seen ExpectAsTheWalk(const Make& make)
{
    const Seen done =
        Look(make, [](Raster& source, Raster& target) { return source.TransposeTo(&target); });
    const Seen walked =
        Look(make, [](Raster& source, Raster& target) { return Walk(source, target); });
    EXPECT_EQ(done.status, walked.status);
    if (make.sameFiles) {
        EXPECT_TRUE(done.files == walked.files) << "other line files";
    }
    EXPECT_TRUE(done.filesOfUnlocked == walked.filesOfUnlocked) << "other lines are locked";
    EXPECT_TRUE(done.source == walked.source) << "other bytes in the source";
    EXPECT_TRUE(done.target == walked.target) << "other bytes in the target";
    return done;
}

/// No name is left for the file of `line`, which is lost then. Its number must not be in use.
void Lose(Raster& raster, i32 line)
{
    Raster other;
    ASSERT_EQ(other.Create(1, 2, 24, FirstFolder, nullptr), 1);
    tavrix::testing::SetRandom({7});
    ASSERT_EQ(other.ReleaseLines(0, 1, 1), 1);
    tavrix::testing::SetRandom(std::vector<LONG>(101, 7));
    ASSERT_EQ(raster.ReleaseLines(line, 1, 1), 0);
    u8* row = nullptr;
    ASSERT_EQ(raster.LockLines(line, &row, nullptr), 0);
}

constexpr u32 Primes[] = {1, 2, 3, 5, 13, 31, 61, 67, 127, 131, 193, 257};

} // namespace

TEST_F(TransposeTo, IsItsFormulaForEverySizeAtAllDepths)
{
    for (const u32 depth : {8u, 16u, 24u, 32u})
        for (u32 width = 1; width <= 12; ++width)
            for (u32 height = 1; height <= 12; ++height) {
                Twin source(width, height, depth, width);
                Twin target(height, width, depth, 77);
                Check(source, target);
            }
}

TEST_F(TransposeTo, IsItsFormulaForLargeSizes)
{
    for (const u32 width : Primes)
        for (const u32 height : Primes) {
            Twin source(width, height, 24, width);
            Twin target(height, width, 24, 77);
            Check(source, target);
        }
    for (const u32 height : {63u, 64u, 65u, 66u, 128u, 129u, 130u}) {
        Twin source(70, height, 32, 1);
        Twin target(height, 70, 32, 77);
        Check(source, target);
    }
}

TEST_F(TransposeTo, RowsBecomeColumns)
{
    Twin source(3, 2, 24, 1);
    source.SetRows(
        {{1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 0, 0}, {11, 12, 13, 14, 15, 16, 17, 18, 19, 0, 0, 0}});
    Twin target(2, 3, 24, 1);
    target.SetRows(Rows(3, std::vector<u8>(8, 99)));
    EXPECT_EQ(source.raster.TransposeTo(&target.raster), Done);
    EXPECT_EQ(RowsOf(target.raster), (Rows{{1, 2, 3, 11, 12, 13, 99, 99},
                                           {4, 5, 6, 14, 15, 16, 99, 99},
                                           {7, 8, 9, 17, 18, 19, 99, 99}}));
}

TEST_F(TransposeTo, WhereRastersPageTheSameLinesLieInFilesAndAreLockedAfterwards)
{
    const u32 sizes[][2] = {{1, 1}, {1, 6}, {6, 1}, {2, 2}, {7, 5}, {5, 7}, {13, 11}, {3, 70}};
    for (const u32 depth : {24u, 32u})
        for (const auto& size : sizes)
            for (const Storage from : {Storage::Resident, Storage::Paging})
                for (const Storage to : {Storage::Resident, Storage::Paging}) {
                    Twin source(size[0], size[1], depth, 5, from);
                    Twin target(size[1], size[0], depth, 77, to);
                    {
                        const WithShortMemory memory;
                        EXPECT_EQ(source.raster.TransposeTo(&target.raster),
                                  PlainTranspose(source.plain, target.plain));
                    }
                    ExpectSame({&source, &target});
                }
}

TEST_F(TransposeTo, WithTheSourceOnFilesEachOfItsLinesComesInOnce)
{
    Raster source;
    MakeRaster(source, 40, 6, 24, 3, Paging::Under); // lines of 120 bytes
    Raster target;
    MakeRaster(target, 6, 40, 24, 9, Paging::None); // of 20
    tavrix::testing::SetFreeMemory(0xA0000ull + 100);
    MemoryGauge::Sample();
    unsigned opened = 0;
    tavrix::testing::SetFileFault(
        [&](tavrix::platform::FileOperation operation, const WCHAR*, DWORD*) {
            opened += operation == tavrix::platform::FileOperation::Create;
            return false;
        });
    EXPECT_EQ(source.TransposeTo(&target), Done);
    tavrix::testing::SetFileFault(nullptr);
    EXPECT_EQ(opened, 5u) << "a file for each line but the last, and none written twice";
    EXPECT_EQ(FilesIn(FirstFolder).size(), 5u);
    PlentyOfMemory();
}

TEST_F(TransposeTo, OfASourceOnFilesOneLineAtATimeIsInMemory)
{
    CountingAllocator memory;
    Raster source(&memory);
    MakeRaster(source, 40, 70, 24, 3, Paging::Under); // lines of 120 bytes
    Raster target;
    MakeRaster(target, 70, 40, 24, 9, Paging::None); // of 212
    for (i32 line = 0; line < 69; ++line)
        ASSERT_EQ(source.ReleaseLines(line, 1, 1), 1);
    ShortMemory();
    size_t fewest = 69;
    memory.fails = [&](int, u32) {
        fewest = std::min(fewest, FilesIn(FirstFolder).size());
        return false;
    };
    EXPECT_EQ(source.TransposeTo(&target), Done);
    memory.fails = nullptr;
    EXPECT_GE(fewest, 68u);
    PlentyOfMemory();
}

TEST_F(TransposeTo, WhereRastersCouldPageAndNeedNotItIsTheWalkAll)
{
    for (const u32 height : {3u, 70u, 131u}) {
        Make make = {9, height, 24, Paging::Under, Paging::Under};
        ExpectAsTheWalk(make);
        // With lines in files, some of them the walk's last ones.
        make.prepare = [height](Raster& source, Raster& target) {
            for (u32 line = 0; line + 1 < height; line += 2)
                ASSERT_EQ(source.ReleaseLines(static_cast<i32>(line), 1, 1), 1);
            for (i32 line = 0; line < 8; line += 3)
                ASSERT_EQ(target.ReleaseLines(line, 1, 1), 1);
        };
        ExpectAsTheWalk(make);
    }
}

TEST_F(TransposeTo, LinesThatWereLockedBeforeAreReleasedAsByTheWalk)
{
    for (const bool isShort : {false, true}) {
        Make make = {9, 70, 24, Paging::Under, Paging::Under};
        make.prepare = [](Raster& source, Raster& target) {
            u8* rows[70] = {};
            u32 count = 70;
            ASSERT_EQ(source.LockLines(0, rows, &count), Done);
            ASSERT_EQ(target.LockLines(3, rows, nullptr), Done);
        };
        if (isShort)
            make.squeeze = ShortMemory;
        ExpectAsTheWalk(make);
    }
}

TEST_F(TransposeTo, ALineThatDoesNotLockEndsItWhereTheWalkEnds)
{
    for (const u32 height : {5u, 67u})
        for (const u32 depth : {24u, 32u})
            for (u32 line = 0; line < height; line += line == 3 && height > 60 ? 59 : 1) {
                Twin source(7, height, depth, 1, Storage::Paging);
                Twin target(height, 7, depth, 77);
                source.Refuse(line);
                EXPECT_EQ(source.raster.TransposeTo(&target.raster), NoMemory);
                EXPECT_EQ(PlainTranspose(source.plain, target.plain), NoMemory);
                ExpectSame({&source, &target});
                if (HasFatalFailure() || HasNonfatalFailure())
                    return;
            }
    for (const u32 height : {5u, 67u})
        for (u32 line = 0; line < 9; ++line) {
            Twin source(9, height, 24, 1);
            Twin target(height, 9, 24, 77, Storage::Paging);
            target.Refuse(line);
            EXPECT_EQ(source.raster.TransposeTo(&target.raster), NoMemory);
            EXPECT_EQ(PlainTranspose(source.plain, target.plain), NoMemory);
            ExpectSame({&source, &target});
        }
}

// The source sends its lines out after each row; the target has room for its shorter ones.
TEST_F(TransposeTo, ALineOfTheTargetThatDoesNotLockEndsItWhereTheSourcePages)
{
    for (i32 line = 0; line < 39; ++line) {
        Make make = {40, 6, 24, Paging::Under, Paging::Under};
        make.prepare = [line](Raster&, Raster& target) {
            ASSERT_EQ(target.ReleaseLines(line, 1, 1), 1);
        };
        make.squeeze = [] {
            tavrix::testing::SetFreeMemory(0xA0000ull + 100);
            MemoryGauge::Sample();
        };
        make.fails = [](int, u32 size) { return size == 40 * sizeof(void*); };
        make.sameFiles = line == 0;
        EXPECT_EQ(ExpectAsTheWalk(make).status, NoMemory);
    }
}

TEST_F(TransposeTo, AnyShortageOfMemoryEndsItWhereTheWalkEnds)
{
    int failures = 0;
    for (int number = 1;; ++number) {
        ASSERT_LT(number, 200);
        Make make = {5, 67, 24, Paging::Under, Paging::Under};
        make.prepare = [](Raster& source, Raster& target) {
            for (i32 line = 0; line < 66; line += 5)
                ASSERT_EQ(source.ReleaseLines(line, 1, 1), 1);
            ASSERT_EQ(target.ReleaseLines(2, 1, 1), 1);
        };
        make.fails = [number](int asked, u32) { return asked == number; };
        const Seen seen = ExpectAsTheWalk(make);
        if (seen.status == Done)
            break;
        EXPECT_EQ(seen.status, NoMemory);
        ++failures;
    }
    EXPECT_EQ(failures, 30) << "two blocks for each of 14 lines and one";
}

// The target's lines come and go for every pixel.
TEST_F(TransposeTo, AnyLineThatFindsNoMemoryEndsItWhereTheWalkEndsWhereTheTargetPages)
{
    for (int number = 1;; ++number) {
        Make make = {4, 9, 24, Paging::None, Paging::Under};
        int lines = 0;
        make.squeeze = [&lines] {
            lines = 0;
            ShortMemory();
        };
        // Lines of 28 bytes; no table and no name has as many.
        make.fails = [&lines, number](int, u32 size) { return size == 28 && ++lines == number; };
        const Seen seen = ExpectAsTheWalk(make);
        if (seen.status == Done) {
            // Three of four lines leave memory after each of nine rows; the first was there.
            EXPECT_EQ(number, 3 * 8 + 1);
            break;
        }
        ASSERT_EQ(seen.status, NoMemory);
        ASSERT_LT(number, 100);
    }
}

TEST_F(TransposeTo, ALostLineOfTheSourceEndsItWithNothingDoneWhereTheWalkEnds)
{
    for (const i32 line : {0, 1, 40, 65, 68}) {
        Make make = {3, 70, 24, Paging::Under, Paging::None};
        make.prepare = [line](Raster& source, Raster&) { Lose(source, line); };
        const Seen seen = ExpectAsTheWalk(make);
        EXPECT_EQ(seen.status, NothingDone);
        // The rows before it are there, those behind it are not.
        for (u32 x = 0; x < 3; ++x)
            for (u32 y = 0; y < 70; ++y)
                for (u32 byte = 0; byte < 3; ++byte)
                    ASSERT_EQ(seen.target[x][3 * y + byte], static_cast<i32>(y) < line
                                                                ? PatternByte(3, y, 3 * x + byte)
                                                                : PatternByte(9, x, 3 * y + byte));
    }
}

TEST_F(TransposeTo, ALostLineOfTheTargetEndsItWithNothingDoneWhereTheWalkEnds)
{
    for (const bool isShort : {false, true})
        for (const i32 line : {0, 2, 7}) {
            Make make = {9, 70, 24, Paging::None, Paging::Under};
            make.prepare = [line](Raster&, Raster& target) { Lose(target, line); };
            if (isShort)
                make.squeeze = ShortMemory;
            const Seen seen = ExpectAsTheWalk(make);
            EXPECT_EQ(seen.status, NothingDone);
            EXPECT_EQ(seen.target[8][0], PatternByte(9, 8, 0)) << "only the first row was begun";
        }
}

// A line that is fetched asks the others to go, and a lost one cannot: the walk, which fetches the
// line of a row for every pixel, fails there; the line that is held has gone further by then.
TEST_F(TransposeTo, ALostLineOfASourceThatPagesEndsItAtItsRowAtTheLatest)
{
    for (const i32 line : {0, 1, 40, 65, 68}) {
        Make make = {3, 70, 24, Paging::Under, Paging::None};
        make.prepare = [line](Raster& source, Raster&) { Lose(source, line); };
        make.squeeze = ShortMemory;
        const Seen seen =
            Look(make, [](Raster& source, Raster& target) { return source.TransposeTo(&target); });
        EXPECT_EQ(seen.status, NothingDone);
        const Seen walked =
            Look(make, [](Raster& source, Raster& target) { return Walk(source, target); });
        EXPECT_LT(walked.status, Done);
        for (u32 x = 0; x < 3; ++x)
            for (u32 y = 0; y < 70; ++y)
                ASSERT_EQ(seen.target[x][3 * y], static_cast<i32>(y) < line
                                                     ? PatternByte(3, y, 3 * x)
                                                     : PatternByte(9, x, 3 * y));
    }
}

TEST_F(TransposeTo, TheLastLineOfEachIsLeftLockedAndNoOther)
{
    const Make make = {5, 70, 24, Paging::Under, Paging::Under};
    const Seen seen = ExpectAsTheWalk(make);
    EXPECT_TRUE(seen.files.empty());
    EXPECT_EQ(seen.filesOfUnlocked.size(), 69u + 4u);
    const auto bytes = [](const std::vector<u8>& row) { return twin_detail::TextOf(row); };
    EXPECT_EQ(seen.filesOfUnlocked.count(bytes(PatternRows(3, 70, 16)[69])), 0u);
    EXPECT_EQ(seen.filesOfUnlocked.count(bytes(PatternRows(3, 70, 16)[68])), 1u);
    EXPECT_EQ(seen.filesOfUnlocked.count(bytes(seen.target[4])), 0u);
    EXPECT_EQ(seen.filesOfUnlocked.count(bytes(seen.target[3])), 1u);
}

TEST_F(TransposeTo, ATargetOfAnotherSizeIsWrittenInsideItsLinesAndEndsItWhereItEnds)
{
    Twin source(5, 4, 24, 1);
    for (const u32 height : {5u, 9u}) {
        Twin narrow(2, height, 24, 77);
        Check(source, narrow);
        Twin wide(90, height, 24, 77);
        Check(source, wide);
        Twin eight(4, height, 8, 77);
        Check(source, eight);
    }
    Twin low(4, 3, 24, 77);
    EXPECT_EQ(source.raster.TransposeTo(&low.raster), Failed);
    EXPECT_EQ(PlainTranspose(source.plain, low.plain), Failed);
    ExpectSame({&source, &low});
}

TEST_F(TransposeTo, PicturesWithoutPixelsAreDone)
{
    for (const u32 height : {0u, 4u}) {
        Twin source(height == 0 ? 5 : 0, height, 24, 1, Storage::Paging);
        Twin target(height, source.plain.width, 24, 77, Storage::Paging);
        const Rows before = target.plain.rows;
        EXPECT_EQ(source.raster.TransposeTo(&target.raster), Done);
        ExpectSame({&source, &target});
    }
}

TEST_F(TransposeTo, RefusesNoTargetItselfAndWhatWasNotCreated)
{
    Twin source(4, 4, 24, 1);
    Raster none;
    EXPECT_EQ(source.raster.TransposeTo(nullptr), BadArgument);
    EXPECT_EQ(source.raster.TransposeTo(&source.raster), BadArgument);
    EXPECT_EQ(source.raster.TransposeTo(&none), WrongState);
    EXPECT_EQ(none.TransposeTo(&source.raster), WrongState);
    ExpectSame({&source});
}
