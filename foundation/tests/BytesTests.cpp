#include "foundation/Bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

TEST(FillBytes, SetsJustTheBytesCounted)
{
    char bytes[] = "abcdef";
    EXPECT_EQ(1, FillBytes(bytes + 1, '#', 3));
    EXPECT_STREQ("a###ef", bytes);
    EXPECT_EQ(1, FillBytes(bytes, 0xFF, 1));
    EXPECT_EQ('\xFF', bytes[0]);
}

TEST(FillBytes, OfNothingIsDone)
{
    char bytes[] = "abc";
    EXPECT_EQ(1, FillBytes(bytes, '#', 0));
    EXPECT_STREQ("abc", bytes);
}

TEST(FillBytes, RefusesNull)
{
    EXPECT_EQ(-1, FillBytes(nullptr, 0, 4));
    EXPECT_EQ(-1, FillBytes(nullptr, 0, 0));
}

TEST(FillBytes, StaysInsideItsBlockAtEverySize)
{
    for (size_t count = 1; count < 70; ++count) {
        const std::unique_ptr<char[]> block(new char[count]);
        EXPECT_EQ(1, FillBytes(block.get(), 7, count));
        EXPECT_EQ(std::string(count, '\7'), std::string(block.get(), count));
    }
}

TEST(CopyBytes, CopiesJustTheBytesCounted)
{
    char bytes[] = "abcdef";
    EXPECT_EQ(1, CopyBytes(bytes + 1, "xyz", 2));
    EXPECT_STREQ("axydef", bytes);
    // A zero is a byte like others.
    EXPECT_EQ(1, CopyBytes(bytes, "\0z", 2));
    EXPECT_EQ(std::string("\0zydef", 6), std::string(bytes, 6));
}

TEST(CopyBytes, OfNothingIsDone)
{
    char bytes[] = "abc";
    EXPECT_EQ(1, CopyBytes(bytes, "x", 0));
    EXPECT_STREQ("abc", bytes);
}

TEST(CopyBytes, RefusesNullBeforeItLooksAtTheCount)
{
    char bytes[] = "abc";
    EXPECT_EQ(-1, CopyBytes(nullptr, bytes, 3));
    EXPECT_EQ(-1, CopyBytes(bytes, nullptr, 3));
    EXPECT_EQ(-1, CopyBytes(nullptr, bytes, 0));
    EXPECT_EQ(-1, CopyBytes(bytes, nullptr, 0));
    EXPECT_STREQ("abc", bytes);
}

TEST(CopyBytes, MovesOverlappingMemoryTowardsLowerAddresses)
{
    char bytes[] = "0123456789";
    EXPECT_EQ(1, CopyBytes(bytes, bytes + 1, 9));
    EXPECT_STREQ("1234567899", bytes);
}

TEST(CopyBytes, RepeatsTheBeginningWhereItMovesTowardsHigherAddresses)
{
    char bytes[] = "abcdefghij";
    EXPECT_EQ(1, CopyBytes(bytes + 3, bytes, 7));
    EXPECT_STREQ("abcabcabca", bytes);
    char same[] = "abcdefghij";
    EXPECT_EQ(1, CopyBytes(same + 1, same, 9));
    EXPECT_STREQ("aaaaaaaaaa", same);
}

TEST(CopyBytes, GoesForwardsAtAnyDistanceAndLength)
{
    std::mt19937 random(20);
    for (int round = 0; round < 3000; ++round) {
        const size_t size = 1 + random() % 200;
        const size_t source = random() % size;
        const size_t target = random() % size;
        const size_t count = random() % (size - std::max(source, target) + 1);
        const std::unique_ptr<unsigned char[]> block(new unsigned char[size]);
        std::vector<unsigned char> expected(size);
        for (size_t i = 0; i < size; ++i)
            expected[i] = block[i] = static_cast<unsigned char>(random());
        for (size_t i = 0; i < count; ++i)
            expected[target + i] = expected[source + i];
        ASSERT_EQ(1, CopyBytes(block.get() + target, block.get() + source, count));
        ASSERT_EQ(expected, std::vector<unsigned char>(block.get(), block.get() + size))
            << source << " to " << target << ", " << count << " of " << size;
    }
}
