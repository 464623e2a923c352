// Rasters against a plain model that goes line by line as the operations are told, over long random
// sequences: contents, addresses and files.

#include "PagingTest.h"

#include "image/Raster.h"

#include <random>

namespace
{

constexpr u32 Stride = 8; // 2 pixels at 24 bits

/// A raster whose physical lines a test may look at.
class OpenRaster : public Raster
{
public:
    using Raster::Raster;
    std::vector<u8*> Physical() const { return {lines, lines + lineCount}; }
};

struct ModelLine {
    std::vector<u8> bytes; // what the line's file holds while it is out
    bool out = false;
    bool pinned = false;
    size_t physical = 0;
};

/// New lines enter one by one at physical index 0; removals name one line.
struct Model {
    std::vector<ModelLine> logical;
    std::vector<std::vector<u8>> physical;

    void EnterAt(size_t line)
    {
        physical.insert(physical.begin(), std::vector<u8>(Stride));
        for (ModelLine& other : logical)
            if (!other.out)
                ++other.physical;
        logical[line].out = false;
        logical[line].physical = 0;
    }
    void Leave(size_t index)
    {
        physical.erase(physical.begin() + static_cast<long>(index));
        for (ModelLine& other : logical)
            if (!other.out && other.physical > index)
                --other.physical;
    }
    void Insert(size_t at, size_t count, bool room)
    {
        logical.insert(logical.begin() + static_cast<long>(at), count, ModelLine{});
        for (size_t line = at; line < at + count; ++line) {
            if (room) {
                EnterAt(line);
            } else {
                logical[line].out = true;
                logical[line].bytes.clear();
            }
        }
    }
    void Remove(size_t at)
    {
        if (at + 1 >= logical.size())
            return;
        if (!logical[at].out) {
            const size_t index = logical[at].physical;
            logical[at].out = true;
            Leave(index);
        }
        logical.erase(logical.begin() + static_cast<long>(at));
    }
    void Out(size_t line)
    {
        ModelLine& one = logical[line];
        if (one.out || one.pinned)
            return;
        one.bytes = physical[one.physical];
        const size_t index = one.physical;
        one.out = true;
        Leave(index);
    }
    void In(size_t line, bool room)
    {
        if (!logical[line].out)
            return;
        while (!room) {
            // The farthest resident unpinned line, the lower of two at one distance.
            size_t victim = logical.size();
            size_t farthest = 0;
            for (size_t i = 0; i < logical.size(); ++i) {
                const size_t distance = i > line ? i - line : line - i;
                if (!logical[i].out && !logical[i].pinned && distance >= farthest) {
                    victim = i;
                    farthest = distance;
                }
            }
            if (victim == logical.size())
                break;
            Out(victim);
        }
        std::vector<u8> bytes = logical[line].bytes;
        bytes.resize(Stride);
        EnterAt(line);
        physical[0] = bytes;
    }
};

void Compare(OpenRaster& raster, const Model& model, int step)
{
    ASSERT_EQ(InfoOf(raster).height, model.logical.size()) << "step " << step;
    const std::vector<u8*> physical = raster.Physical();
    ASSERT_EQ(physical.size(), model.physical.size()) << "step " << step;
    for (size_t i = 0; i < physical.size(); ++i)
        ASSERT_EQ(std::vector<u8>(physical[i], physical[i] + Stride), model.physical[i])
            << "step " << step << " physical line " << i;
    size_t files = 0;
    for (const ModelLine& line : model.logical)
        files += line.out ? 1 : 0;
    ASSERT_EQ(FilesIn(FirstFolder).size(), files) << "step " << step;
}

using RasterModel = PagingTest;

} // namespace

TEST_F(RasterModel, RandomSequencesGiveWhatTheLineByLineModelGives)
{
    for (unsigned seed = 1; seed <= 12; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&random](size_t end) { return static_cast<size_t>(random() % end); };
        bool room = true;
        PlentyOfMemory();
        OpenRaster raster;
        Model model;
        ASSERT_EQ(raster.Create(2, 3, 24, FirstFolder, nullptr), 1);
        model.Insert(0, 3, true);
        for (int step = 0; step < 250; ++step) {
            const size_t height = model.logical.size();
            const size_t line = below(height);
            const i32 number =
                static_cast<i32>(line) - (below(2) != 0 ? static_cast<i32>(height) : 0);
            switch (below(8)) {
            case 0: {
                if (height > 40)
                    break;
                u32 count = static_cast<u32>(below(5));
                ASSERT_EQ(raster.InsertLines(number, &count), 1);
                model.Insert(line, count, room);
                break;
            }
            case 1:
                ASSERT_EQ(raster.RemoveLines(number, nullptr), 1);
                model.Remove(line);
                break;
            case 2: {
                const size_t other = below(height);
                ASSERT_EQ(raster.SwapLines(number, static_cast<i32>(other)), 1);
                std::swap(model.logical[line], model.logical[other]);
                break;
            }
            case 3:
            case 4: {
                u8* row = nullptr;
                ASSERT_EQ(raster.LockLines(number, &row, nullptr), 1);
                model.In(line, room);
                model.logical[line].pinned = true;
                ASSERT_EQ(raster.Physical()[model.logical[line].physical], row) << "step " << step;
                for (u32 x = 0; x < Stride; ++x)
                    row[x] = model.physical[model.logical[line].physical][x] =
                        static_cast<u8>(random());
                break;
            }
            case 5: {
                const bool force = below(2) != 0;
                ASSERT_EQ(raster.ReleaseLines(number, 1, force), 1);
                if (line + 1 < height) {
                    model.logical[line].pinned = false;
                    if (force || !room)
                        model.Out(line);
                }
                break;
            }
            case 6:
                ASSERT_EQ(raster.UnlockAll(), 1);
                for (ModelLine& one : model.logical)
                    one.pinned = false;
                break;
            case 7:
                room = below(3) != 0;
                room ? PlentyOfMemory() : ShortMemory();
                break;
            }
            ASSERT_NO_FATAL_FAILURE(Compare(raster, model, step)) << "seed " << seed;
        }
    }
}

TEST_F(RasterModel, ARunOfLinesEndsAsTheSameLinesInsertedSingly)
{
    for (u32 before = 0; before < 4; ++before)
        for (u32 count = 0; count < 6; ++count)
            for (u32 at = 0; at <= before; ++at)
                for (int failing = 0; failing <= static_cast<int>(count); ++failing) {
                    CountingAllocator memory;
                    OpenRaster raster(&memory);
                    ASSERT_EQ(raster.Create(2, before, 24, nullptr, nullptr), 1);
                    std::vector<u8*> expected;
                    for (u32 i = 0; i < before; ++i)
                        expected.push_back(AddressOf(raster, static_cast<i32>(i)));
                    raster.UnlockAll();
                    // The blocks of a run's single lines, told by their order: three arrays and the
                    // table come first.
                    memory.asked = 0;
                    memory.fails = [failing](int number, u32) {
                        return failing > 0 && number == 4 + failing;
                    };
                    u32 wanted = count;
                    const i32 status = raster.InsertLines(static_cast<i32>(at), &wanted);
                    memory.fails = nullptr;
                    ASSERT_EQ(status, failing > 0 ? -2 : 1);
                    ASSERT_EQ(InfoOf(raster).height, before + count);
                    const u32 entered = failing > 0 ? static_cast<u32>(failing) - 1 : count;
                    const std::vector<u8*> physical = raster.Physical();
                    ASSERT_EQ(physical.size(), before + entered);
                    for (u32 i = 0; i < before + count; ++i) {
                        u8* row = nullptr;
                        const i32 locked = raster.LockLines(static_cast<i32>(i), &row, nullptr);
                        if (i < at) {
                            ASSERT_EQ(row, expected[i]);
                        } else if (i >= at + count) {
                            ASSERT_EQ(row, expected[i - count]);
                        } else if (i - at < entered) {
                            ASSERT_EQ(row, physical[entered - 1 - (i - at)]);
                        } else if (before > 0) {
                            ASSERT_EQ(row, physical[entered]);
                        } else {
                            ASSERT_EQ(locked, 0);
                        }
                    }
                }
}

TEST_F(RasterModel, WithoutMemoryForTheTableOfARunTheLinesEnterSingly)
{
    CountingAllocator memory;
    {
        OpenRaster raster(&memory);
        ASSERT_EQ(raster.Create(2, 99, 24, nullptr, nullptr), 1);
        // The three arrays come first, then the table.
        memory.fails = [](int number, u32) { return number == 4; };
        memory.asked = 0;
        u32 count = 10;
        ASSERT_EQ(raster.InsertLines(50, &count), 1);
        memory.fails = nullptr;
        EXPECT_EQ(raster.Physical().size(), 109u);
        for (i32 y = 0; y < 109; ++y)
            *AddressOf(raster, y) = static_cast<u8>(y + 1);
        for (i32 y = 0; y < 109; ++y)
            EXPECT_EQ(*AddressOf(raster, y), y + 1);
    }
    EXPECT_EQ(memory.outstanding, 0);
}
