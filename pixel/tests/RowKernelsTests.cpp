// The rows' loops of every level of the processor against the plain ones: every count up to some
// blocks and long rows, every place of the first byte, and not a byte beside the row.

#include "pixel/BoxRow.h"
#include "pixel/OrderedDither.h"
#include "pixel/PlainRows.h"
#include "pixel/RowKernels.h"
#include "pixel/TextCoverage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <random>
#include <vector>

namespace
{

using Bytes = std::vector<u8>;

/// The whole program's tests run at the level that TAVRIX_TEST_PROCESSOR names, 0 for the plain
/// one.
class ChosenLevel : public testing::Environment
{
public:
    void SetUp() override
    {
        if (const char* level = std::getenv("TAVRIX_TEST_PROCESSOR"))
            (void)UseLevel(static_cast<ProcessorLevel>(level[0] - '0'));
    }
};
const auto* const chosenLevel = testing::AddGlobalTestEnvironment(new ChosenLevel);

constexpr size_t Beside = 64; // bytes around each row

class RowKernelsTest : public testing::TestWithParam<ProcessorLevel>
{
protected:
    void SetUp() override
    {
        kernels = KernelsOf(GetParam());
        if (kernels == nullptr)
            GTEST_SKIP() << "this processor lacks the level";
    }

    /// Ends of the scale come up often, since sums are at their limits there.
    Bytes Random(size_t count)
    {
        Bytes bytes(count);
        for (u8& byte : bytes) {
            const u32 number = static_cast<u32>(random());
            byte = number % 4 == 0 ? 0 : number % 4 == 1 ? 255 : static_cast<u8>(number >> 8);
        }
        return bytes;
    }

    /// `draw(kernel's or plain's choice, first byte, count)` on two copies of the same bytes.
    template <typename Draw>
    void ExpectSame(size_t step, const Draw& draw)
    {
        std::vector<size_t> counts = {255, 256, 1000, 4099};
        for (size_t count = 0; count <= 101; ++count)
            counts.push_back(count);
        for (const size_t count : counts)
            for (size_t place = 0; place<16; place += count> 101 ? 5 : 1) {
                Bytes drawn = Random(2 * Beside + step * count);
                Bytes expected = drawn;
                draw(true, drawn.data() + Beside + place - 8, count);
                draw(false, expected.data() + Beside + place - 8, count);
                ASSERT_EQ(drawn, expected) << count << " pixels at place " << place;
            }
    }

    /// All bits of a number, or few of them.
    u32 RandomNumber() { return static_cast<u32>(random()) >> random() % 32; }

    const RowKernels* kernels = nullptr;
    std::mt19937 random{1};
};

std::string NameOf(const testing::TestParamInfo<ProcessorLevel>& entry)
{
    constexpr const char* names[] = {"Plain", "Sse41", "Avx2"};
    return names[static_cast<int>(entry.param)];
}

INSTANTIATE_TEST_SUITE_P(Level, RowKernelsTest,
                         testing::Values(ProcessorLevel::Plain, ProcessorLevel::Sse41,
                                         ProcessorLevel::Avx2),
                         NameOf);

constexpr ColorBytes colors[] = {
    {1, 2, 3, 255}, {255, 0, 128, 0}, {0, 255, 255, 127}, {200, 100, 50, 128}, {9, 99, 199, 254}};

} // namespace

TEST_P(RowKernelsTest, StoresOneColour)
{
    for (const ColorBytes& color : colors)
        ExpectSame(3, [&](bool fast, u8* row, size_t count) {
            (fast ? kernels->storeRow24 : plain::StoreRow24)(row, count, color);
        });
}

TEST_P(RowKernelsTest, BlendsOneColour)
{
    for (const ColorBytes& color : colors)
        ExpectSame(3, [&](bool fast, u8* row, size_t count) {
            (fast ? kernels->blendRow24 : plain::BlendRow24)(row, count, BlendOf(color));
        });
}

TEST_P(RowKernelsTest, InvertsEachByte)
{
    ExpectSame(3, [&](bool fast, u8* row, size_t count) {
        (fast ? kernels->invertRow24 : plain::InvertRow24)(row, count);
    });
}

TEST_P(RowKernelsTest, ExchangesThePixelsEndForEnd)
{
    ExpectSame(3, [&](bool fast, u8* row, size_t count) {
        (fast ? kernels->reverseRow24 : plain::ReverseRow24)(row, count);
    });
}

TEST_P(RowKernelsTest, BlendsThroughAMask)
{
    const Bytes masks[] = {Random(8000), Bytes(8000, 0), Bytes(8000, 255)};
    for (const ColorBytes& color : colors)
        for (const Bytes& mask : masks)
            ExpectSame(3, [&](bool fast, u8* row, size_t count) {
                const u8* cells[2] = {mask.data() + count % 17, mask.data() + count / 2};
                u8* const rows[2] = {row, row + 3 * (count / 2)};
                const auto blend = fast ? kernels->blendMaskRows24 : plain::BlendMaskRows24;
                blend(rows, cells, 2, count / 2, color);
                blend(rows, cells + 1, 1, count, color);
            });
}

TEST_P(RowKernelsTest, BlendsByEveryWeightOnEveryByte)
{
    // Each byte of the picture under each byte of the mask, for some colours of every alpha.
    for (u32 alpha = 0; alpha < 256; alpha += 5)
        for (const u8 level : {0, 1, 100, 254, 255}) {
            const ColorBytes color = {level, static_cast<u8>(255 - level), 77,
                                      static_cast<u8>(alpha)};
            for (u32 cell = 0; cell < 256; cell += 3) {
                const Bytes mask(86, static_cast<u8>(cell));
                Bytes drawn(258);
                for (size_t i = 0; i < drawn.size(); ++i)
                    drawn[i] = static_cast<u8>(i);
                Bytes expected = drawn;
                const u8* const cells = mask.data();
                u8* row = drawn.data();
                kernels->blendMaskRows24(&row, &cells, 1, mask.size(), color);
                row = expected.data();
                plain::BlendMaskRows24(&row, &cells, 1, mask.size(), color);
                ASSERT_EQ(drawn, expected) << alpha << " " << u32{level} << " " << cell;
            }
        }
}

TEST_P(RowKernelsTest, CopiesThroughAMask)
{
    const Bytes source = Random(15000);
    const Bytes mask = Random(5000);
    ExpectSame(3, [&](bool fast, u8* row, size_t count) {
        (fast ? kernels->copyMaskedRow24 : plain::CopyMaskedRow24)(row, source.data() + count % 13,
                                                                   mask.data() + count % 17, count);
    });
}

TEST_P(RowKernelsTest, LaysAPictureOverAnotherByItsAlpha)
{
    const Bytes source = Random(20000);
    ExpectSame(3, [&](bool fast, u8* row, size_t count) {
        (fast ? kernels->compositeRow24 : plain::CompositeRow24)(row, source.data() + count % 13,
                                                                 count);
    });
}

TEST_P(RowKernelsTest, DithersEachRowOfTheMatrix)
{
    u8 table[DitherTableSize];
    FillDitherTable(table);
    Bytes source = Random(15000);
    for (size_t i = 0; i < 3 * 256 * 4; ++i) // each value at each threshold
        source[100 + i] = static_cast<u8>(i / 3 / 4 + (i / 3 % 4) * 64);
    for (u32 y = 0; y < 4; ++y)
        ExpectSame(3, [&](bool fast, u8* row, size_t count) {
            (fast ? kernels->ditherRow : plain::DitherRow)(row, source.data() + 100,
                                                           static_cast<u32>(count), table, y);
        });
}

TEST_P(RowKernelsTest, TakesTheBrightnessOfEachPixel)
{
    for (size_t count = 0; count < 70; ++count)
        for (size_t place = 0; place < 16; ++place) {
            const Bytes source = Random(300);
            std::vector<u16> drawn(80, 7);
            std::vector<u16> expected = drawn;
            kernels->lumaRow24(drawn.data() + 3, source.data() + place, count);
            plain::LumaRow24(expected.data() + 3, source.data() + place, count);
            ASSERT_EQ(drawn, expected) << count << " pixels at place " << place;
        }
    const Bytes white(24, 255);
    u16 luma[8];
    kernels->lumaRow24(luma, white.data(), 8);
    EXPECT_EQ(luma[7], 255);
}

TEST_P(RowKernelsTest, LaysInkOnARow)
{
    constexpr size_t rowBytes = 5004;
    // Much of a text's ground is empty, and the middle of a letter is full.
    Bytes bits = Random(TextScale * rowBytes);
    for (size_t i = 0; i < bits.size(); ++i)
        if (i / 40 % 3 < 2)
            bits[i] = i / 40 % 3 == 0 ? 0 : 255;
    for (const ColorBytes& color : colors)
        ExpectSame(3, [&](bool fast, u8* row, size_t count) {
            (fast ? kernels->blendTextRow : plain::BlendTextRow)(row, bits.data() + count % 29,
                                                                 rowBytes, count, color);
        });
}

TEST_P(RowKernelsTest, LaysEveryShareOfInkOnEveryByte)
{
    for (u32 alpha = 0; alpha < 256; alpha += 15)
        for (const u8 level : {0, 77, 255})
            for (u32 coverage = 0; coverage <= 64; ++coverage) {
                const ColorBytes color = {level, static_cast<u8>(255 - level), 128,
                                          static_cast<u8>(alpha)};
                Bytes bits(TextScale * 86);
                for (u32 bit = 0; bit < coverage; ++bit)
                    for (size_t x = 0; x < 86; ++x)
                        bits[bit % TextScale * 86 + x] |= static_cast<u8>(1 << bit / TextScale);
                Bytes drawn(258);
                for (size_t i = 0; i < drawn.size(); ++i)
                    drawn[i] = static_cast<u8>(i);
                Bytes expected = drawn;
                kernels->blendTextRow(drawn.data(), bits.data(), 86, 86, color);
                plain::BlendTextRow(expected.data(), bits.data(), 86, 86, color);
                ASSERT_EQ(drawn, expected) << alpha << " " << u32{level} << " " << coverage;
            }
}

TEST_P(RowKernelsTest, ExchangesRowsAndColumnsOfFour)
{
    constexpr size_t width = 20;
    for (const size_t count : {size_t{4}, size_t{8}, size_t{64}, size_t{128}})
        for (size_t column = 0; column + 6 <= width; ++column) {
            std::vector<Bytes> rows;
            std::vector<const u8*> sources;
            for (size_t i = 0; i < count; ++i)
                rows.push_back(Random(3 * width));
            for (const Bytes& row : rows)
                sources.push_back(row.data());
            Bytes lines[2][4];
            for (int fast = 0; fast < 2; ++fast) {
                u8* targets[4];
                for (size_t n = 0; n < 4; ++n) {
                    lines[fast][n].assign(3 * count + 8, 77);
                    targets[n] = lines[fast][n].data() + 4;
                }
                (fast ? kernels->crossFour24 : plain::CrossFour24)(targets, sources.data(), column,
                                                                   count);
            }
            for (size_t n = 0; n < 4; ++n)
                ASSERT_EQ(lines[1][n], lines[0][n]) << count << " rows, column " << column + n;
            EXPECT_EQ(lines[0][3][4 + 3], rows[1][3 * (column + 3)]);
        }
}

namespace
{

constexpr u32 boxColumns = 300; // of the rows that are averaged

/// Rows of three groups, of bytes of both ends of the scale.
struct BoxGroupsOfRows {
    std::vector<Bytes> bytes;
    std::vector<const u8*> pointers;
    BoxRows rows;

    template <typename Random>
    BoxGroupsOfRows(u32 between, u32 last, const Random& random)
    {
        for (u32 i = 0; i < between + 2; ++i)
            bytes.push_back(random(size_t{3} * boxColumns));
        for (const Bytes& row : bytes)
            pointers.push_back(row.data());
        const u8* const* const first = pointers.data();
        rows = {
            {first, first + 1, first + 1 + between}, {1024, 1024, 1024 * last}, {1, between, last}};
    }
};

using Numbers = std::vector<u16>;

/// Sums of whole rows, with what may be read behind them.
Numbers PlainSums(const BoxRows& rows)
{
    constexpr size_t bytes = size_t{3} * boxColumns;
    Numbers sums(bytes * BoxGroups + BoxSumsBeside, 0);
    plain::SumRows(sums.data(), rows, 0, bytes);
    return sums;
}

constexpr u32 rowCounts[] = {0, 1, 2, 3, 4, 5, 64, 65, 127, 128, 129, 200, 255, 256};

} // namespace

TEST_P(RowKernelsTest, SumsUpToThreeGroupsOfRows)
{
    for (const u32 between : rowCounts)
        for (const u32 last : {0u, 1u}) {
            const BoxGroupsOfRows of(between, last, [&](size_t count) { return Random(count); });
            for (size_t bytes = 0; bytes <= 101; ++bytes)
                for (size_t offset = 0; offset < 64; offset += 7) {
                    Numbers drawn(110 * BoxGroups, 7);
                    Numbers expected = drawn;
                    kernels->sumRows(drawn.data() + 4, of.rows, offset, bytes);
                    plain::SumRows(expected.data() + 4, of.rows, offset, bytes);
                    ASSERT_EQ(drawn, expected) << between << " rows, " << bytes << " bytes";
                }
        }
}

TEST_P(RowKernelsTest, SumsOfTheBrightestRowsFillTheirNumbers)
{
    const BoxGroupsOfRows of(256, 1, [](size_t count) { return Bytes(count, 255); });
    Numbers sums(99 * BoxGroups, 7);
    kernels->sumRows(sums.data(), of.rows, 0, 99);
    for (size_t i = 0; i < sums.size(); i += BoxGroups)
        ASSERT_EQ(Numbers(sums.begin() + static_cast<std::ptrdiff_t>(i),
                          sums.begin() + static_cast<std::ptrdiff_t>(i + BoxGroups)),
                  (Numbers{255, 128 * 255, 255, 128 * 255}));
}

TEST_P(RowKernelsTest, PlacesColumnsOfEveryRatio)
{
    for (u32 round = 0; round < 2000; ++round) {
        const u32 size = 1 + static_cast<u32>(random()) % (round % 4 == 0 ? 100000 : 1000);
        const u32 width = 1 + static_cast<u32>(random()) % (round % 3 == 0 ? 100 : 2000);
        const u32 pixel = static_cast<u32>(random()) % width;
        const u32 count = 1 + static_cast<u32>(random()) % std::min(BoxTilePixels, width - pixel);
        const BoxAxis axis = MakeBoxAxis(size, width);
        BoxColumns columns = {};
        kernels->placeColumns(&columns, axis, pixel, count);
        ASSERT_EQ(columns.count, count);
        ASSERT_EQ(columns.unit, axis.unit);
        const u32 begin = BoxSpanOf(axis, pixel).first;
        for (u32 i = 0; i < count; ++i) {
            const BoxSpan span = BoxSpanOf(axis, pixel + i);
            const u32 end = std::min(span.last, size - 1);
            const bool hasLast = span.last > span.first && span.last < size;
            ASSERT_EQ(columns.first[i], span.first - begin) << size << " to " << width;
            ASSERT_EQ(columns.last[i], end - begin) << size << " to " << width;
            ASSERT_EQ(columns.between[i], end - span.first - (hasLast ? 1 : 0));
            ASSERT_EQ(columns.firstCovers[i], span.firstCover);
            ASSERT_EQ(columns.lastCovers[i], hasLast ? span.lastCover : 0);
        }
    }
}

TEST_P(RowKernelsTest, AveragesColumnsOfAnyCovers)
{
    for (u32 round = 0; round < 300; ++round) {
        const u32 between = rowCounts[round % std::size(rowCounts)];
        const u32 last = static_cast<u32>(random()) % 2;
        BoxGroupsOfRows of(between, last, [&](size_t count) {
            return round % 5 == 0 ? Bytes(count, 255) : Random(count);
        });
        const u32 least = round % 3 == 0 ? 0 : 64; // whose weights hardly ever make 0
        of.rows.covers[0] = RandomNumber() | least;
        of.rows.covers[1] = between > 0 ? RandomNumber() : 0;
        of.rows.covers[2] = last > 0 ? RandomNumber() : 0;
        BoxColumns columns = {};
        columns.count = 1 + static_cast<u32>(random()) % BoxTilePixels;
        columns.unit = RandomNumber();
        const u32 most = round % 2 == 0 ? 5 : boxColumns;
        for (u32 i = 0; i < columns.count; ++i) {
            columns.first[i] = static_cast<u32>(random()) % boxColumns;
            const u32 behind = boxColumns - 1 - columns.first[i];
            columns.between[i] = static_cast<u32>(random()) % (std::min(behind, most) + 1);
            columns.last[i] = static_cast<u32>(random()) % boxColumns;
            columns.firstCovers[i] = RandomNumber() | least;
            columns.lastCovers[i] = RandomNumber();
        }
        const Numbers sums = PlainSums(of.rows);
        Bytes drawn(3 * BoxTilePixels + 20, 77);
        Bytes expected = drawn;
        kernels->averageColumns(drawn.data() + 3, sums.data(), of.rows, columns);
        plain::AverageColumns(expected.data() + 3, sums.data(), of.rows, columns);
        ASSERT_EQ(drawn, expected) << columns.count << " pixels, " << between << " rows";
    }
}

TEST_P(RowKernelsTest, PixelsWhoseWeightsMakeNothingOrOneAreAmongTheOthers)
{
    // A row cover of 1 and a column cover of 16 make a weight of 1.
    BoxGroupsOfRows of(1, 0, [&](size_t count) { return Random(count); });
    of.rows.covers[0] = 1;
    of.rows.covers[1] = 0;
    const Numbers sums = PlainSums(of.rows);
    for (u32 count = 1; count <= 40; ++count)
        for (u32 at = 0; at < count; ++at)
            for (const u32 cover : {0u, 15u, 16u, 31u, 32u, 1u << 24}) {
                BoxColumns columns = {};
                columns.count = count;
                for (u32 i = 0; i < count; ++i) {
                    columns.first[i] = i;
                    columns.firstCovers[i] = i == at ? cover : 1024;
                }
                Bytes drawn(3 * count + 20, 77);
                kernels->averageColumns(drawn.data(), sums.data(), of.rows, columns);
                Bytes expected(3 * count + 20, 77);
                for (u32 i = 0; i < 3 * count; ++i)
                    if (cover >= 16 || i / 3 != at)
                        expected[i] = of.bytes[0][i];
                ASSERT_EQ(drawn, expected) << count << " pixels, cover " << cover << " at " << at;
            }
}

TEST_P(RowKernelsTest, AQuotientOfAllBitsGivesItsLowByte)
{
    // 32 columns of a weight of 2^27 make 0, and what they bring to the sum has no low byte.
    BoxGroupsOfRows of(0, 0, [&](size_t count) { return Random(count); });
    of.rows.covers[0] = 1;
    const Numbers sums = PlainSums(of.rows);
    BoxColumns columns = {};
    columns.count = 100;
    columns.unit = 1u << 31;
    for (u32 i = 0; i < columns.count; ++i) {
        columns.first[i] = i;
        columns.firstCovers[i] = 16;
        columns.between[i] = 32;
    }
    Bytes drawn(3 * columns.count);
    kernels->averageColumns(drawn.data(), sums.data(), of.rows, columns);
    EXPECT_EQ(drawn, Bytes(of.bytes[0].begin(), of.bytes[0].begin() + 300));
}

TEST_P(RowKernelsTest, HalvesTwoRows)
{
    for (size_t count = 0; count <= 101; ++count)
        for (size_t place = 0; place < 16; ++place) {
            const Bytes upper = Random(place + 6 * count);
            const Bytes lower = Random(6 * count);
            Bytes drawn(3 * count + 16, 77);
            Bytes expected = drawn;
            kernels->halveRows24(drawn.data() + 3, upper.data() + place, lower.data(), count);
            plain::HalveRows24(expected.data() + 3, upper.data() + place, lower.data(), count);
            ASSERT_EQ(drawn, expected) << count << " pixels at place " << place;
        }
    const u8 pixels[] = {1, 255, 0, 2, 255, 0};
    const u8 others[] = {3, 255, 1, 1, 255, 2};
    u8 out[3];
    kernels->halveRows24(out, pixels, others, 1);
    EXPECT_EQ(Bytes(out, out + 3), (Bytes{1, 255, 0}));
}

TEST(ProcessorLevels, TheHighestThatIsThereIsInUse)
{
    if (std::getenv("TAVRIX_TEST_PROCESSOR"))
        GTEST_SKIP() << "another was chosen";
    const RowKernels* highest = KernelsOf(ProcessorLevel::Plain);
    ASSERT_NE(highest, nullptr);
    for (const ProcessorLevel level : {ProcessorLevel::Sse41, ProcessorLevel::Avx2})
        if (const RowKernels* kernels = KernelsOf(level))
            highest = kernels;
    EXPECT_EQ(&Kernels(), highest);
    EXPECT_TRUE(UseLevel(ProcessorLevel::Plain));
    EXPECT_EQ(&Kernels(), KernelsOf(ProcessorLevel::Plain));
    for (const ProcessorLevel level : {ProcessorLevel::Sse41, ProcessorLevel::Avx2})
        EXPECT_EQ(UseLevel(level), KernelsOf(level) != nullptr);
    EXPECT_EQ(&Kernels(), highest);
}
