// The streams that lie in memory against a plain vector and a plain position, in random sequences
// of reads, writes and seeks from fixed seeds.

#include "foundation/BlockStream.h"
#include "foundation/CountingStream.h"
#include "foundation/MemoryStream.h"
#include "foundation/tests/StreamTesting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace
{

/// What all three have in common: bytes, a place among them, and the rule of the seek.
struct Model {
    std::vector<u8> bytes;
    size_t position = 0;

    i32 Seek(i64 offset, u32 origin)
    {
        const i64 limit = static_cast<i64>(bytes.size());
        const i64 base = origin == 0 ? 0 : origin == 1 ? static_cast<i64>(position) : limit;
        // No sum of the offset, which may be any number of 64 bits.
        if (origin > 2 || offset < -base || offset > limit - base)
            return -1;
        position = static_cast<size_t>(base + offset);
        return 1;
    }

    std::vector<u8> Read(size_t wanted)
    {
        const size_t count = std::min(wanted, bytes.size() - position);
        const std::vector<u8> got(bytes.begin() + static_cast<i64>(position),
                                  bytes.begin() + static_cast<i64>(position + count));
        position += count;
        return got;
    }

    /// Writes as far as the vector goes, or lets it grow.
    size_t Write(const std::vector<u8>& source, bool grows)
    {
        size_t count = 0;
        for (const u8 byte : source) {
            if (position == bytes.size()) {
                if (!grows)
                    break;
                bytes.push_back(0);
            }
            bytes[position++] = byte;
            ++count;
        }
        return count;
    }
};

class Dice
{
public:
    explicit Dice(u32 seed) : random(seed) {}
    u32 UpTo(u32 most) { return static_cast<u32>(random() % (u64{most} + 1)); }

    std::vector<u8> Bytes(u32 most)
    {
        std::vector<u8> bytes(UpTo(most));
        for (u8& byte : bytes)
            byte = static_cast<u8>(random());
        return bytes;
    }

    /// Mostly within reach of `size`, at times absurd.
    i64 Offset(size_t size)
    {
        if (UpTo(19) == 0)
            return UpTo(1) == 0 ? std::numeric_limits<i64>::min() : std::numeric_limits<i64>::max();
        if (UpTo(19) == 0)
            return static_cast<i64>(random());
        const i64 reach = static_cast<i64>(size) + 3;
        return static_cast<i64>(random() % static_cast<u64>(2 * reach + 1)) - reach;
    }

private:
    std::mt19937_64 random;
};

void CompareSeek(Stream& stream, Model& model, Dice& dice)
{
    const i64 offset = dice.Offset(model.bytes.size());
    const u32 origin = dice.UpTo(3);
    const i32 expected = model.Seek(offset, origin);
    u64 told = NoPosition;
    ASSERT_EQ(expected, stream.Seek(&offset, &told, origin)) << offset << " from " << origin;
    ASSERT_EQ(expected == 1 ? model.position : NoPosition, told);
}

void CompareWrite(Stream& stream, Model& model, const std::vector<u8>& source, bool grows)
{
    const ExactBytes buffer(std::string(source.begin(), source.end()));
    u32 length = static_cast<u32>(source.size());
    const size_t expected = model.Write(source, grows);
    ASSERT_EQ(1, stream.Write(buffer.data.get(), &length));
    ASSERT_EQ(expected, length);
}

void CompareRead(Stream& stream, Model& model, u32 wanted, i32 expectedResult)
{
    const std::vector<u8> expected = model.Read(wanted);
    const ExactBytes buffer(wanted, 0x5A);
    u32 length = wanted;
    ASSERT_EQ(expectedResult, stream.Read(buffer.data.get(), &length));
    ASSERT_EQ(std::string(expected.begin(), expected.end()) +
                  std::string(wanted - expected.size(), 'Z'),
              buffer.Text());
    ASSERT_EQ(expected.size(), length);
}

void ComparePlaces(Stream& stream, const Model& model)
{
    ASSERT_EQ(model.position, PositionOf(stream));
    ASSERT_EQ(model.bytes.size(), SizeOf(stream));
}

std::vector<u32> OneToThirtyThreeAnd(std::initializer_list<u32> large)
{
    std::vector<u32> sizes;
    for (u32 size = 1; size <= 33; ++size)
        sizes.push_back(size);
    sizes.insert(sizes.end(), large);
    return sizes;
}

} // namespace

TEST(StreamModel, AMemoryStreamIsAVectorOfFixedSize)
{
    for (const u32 capacity : OneToThirtyThreeAnd({0, 1000, 4099})) {
        Dice dice(3100 + capacity);
        Model model{std::vector<u8>(capacity)};
        ExactBytes borrowed(capacity);
        MemoryStream stream;
        void* data = capacity % 2 == 0 ? borrowed.data.get() : nullptr;
        ASSERT_EQ(1, stream.Open(data, capacity, 0, nullptr));
        for (int step = 0; step < 400; ++step) {
            SCOPED_TRACE(testing::Message() << "capacity " << capacity << " step " << step);
            const u32 most = capacity + capacity / 3 + 2;
            switch (dice.UpTo(2)) {
            case 0:
                CompareSeek(stream, model, dice);
                break;
            case 1:
                CompareWrite(stream, model, dice.Bytes(most), false);
                break;
            default:
                CompareRead(stream, model, dice.UpTo(most), 1);
            }
            ComparePlaces(stream, model);
            if (testing::Test::HasFatalFailure())
                return;
        }
        if (data != nullptr) {
            ASSERT_EQ(std::string(model.bytes.begin(), model.bytes.end()), borrowed.Text());
        }
    }
}

TEST(StreamModel, ABlockStreamIsAVectorThatGrows)
{
    for (const u32 blockSize : OneToThirtyThreeAnd({1000, 4096, 1u << 20})) {
        Dice dice(4100 + blockSize);
        Model model;
        BlockStream stream;
        ASSERT_EQ(1, stream.Open(blockSize, nullptr));
        for (int step = 0; step < 400; ++step) {
            SCOPED_TRACE(testing::Message() << "block size " << blockSize << " step " << step);
            switch (dice.UpTo(2)) {
            case 0:
                CompareSeek(stream, model, dice);
                break;
            case 1:
                CompareWrite(stream, model, dice.Bytes(dice.UpTo(3) == 0 ? 100 : 12), true);
                break;
            default: {
                // 0 only where not even a block begins.
                const size_t blocks = (model.bytes.size() + blockSize - 1) / blockSize;
                const i32 expected = model.position / blockSize < blocks ? 1 : 0;
                CompareRead(stream, model, dice.UpTo(150), expected);
            }
            }
            ComparePlaces(stream, model);
            if (testing::Test::HasFatalFailure())
                return;
        }
        ASSERT_EQ(1, SeekTo(stream, 0, 0));
        model.position = 0;
        if (!model.bytes.empty())
            CompareRead(stream, model, static_cast<u32>(model.bytes.size()) + 1, 1);
    }
}

TEST(StreamModel, ACountingStreamIsAVectorWithoutItsBytes)
{
    for (u32 seed = 0; seed < 20; ++seed) {
        Dice dice(5100 + seed);
        Model model;
        CountingStream stream;
        for (int step = 0; step < 400; ++step) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << " step " << step);
            switch (dice.UpTo(2)) {
            case 0:
                CompareSeek(stream, model, dice);
                break;
            case 1: {
                const std::vector<u8> source = dice.Bytes(dice.UpTo(9) == 0 ? 3000 : 12);
                u32 length = static_cast<u32>(source.size());
                (void)model.Write(source, true);
                ASSERT_EQ(1, stream.Write(nullptr, &length));
                ASSERT_EQ(source.size(), length);
                break;
            }
            default: {
                u8 byte = 0;
                u32 length = 1;
                ASSERT_EQ(-1, stream.Read(&byte, &length));
                ASSERT_EQ(0u, length);
            }
            }
            ComparePlaces(stream, model);
            if (testing::Test::HasFatalFailure())
                return;
        }
    }
}
