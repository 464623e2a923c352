// The line reader against one that is told plainly over the whole text, on random bytes.

#include "foundation/LineReader.h"
#include "foundation/tests/LineSources.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>

namespace
{

/// The reader told plainly over the whole text, as one who sees no buffer.
struct PlainReader {
    std::string text;
    End end;
    size_t at = 0;

    Line ReadLine(u32 capacity)
    {
        const std::string window = text.substr(at, capacity);
        const size_t feed = window.find('\n');
        if (capacity == 0)
            return Full("");
        if (feed == std::string::npos && window.size() == capacity) {
            at += capacity;
            return Full(window);
        }
        if (feed == std::string::npos) {
            at = text.size();
            return Ended(end == End::Empty ? 1 : -1, window, capacity);
        }
        at += feed + 1;
        std::string line = window.substr(0, feed);
        const bool carriage = !line.empty() && line.back() == '\r';
        if (!carriage)
            return Ended(1, line, capacity);
        Line dropped = Ended(1, line, capacity);
        dropped.bytes[--dropped.length] = '\0';
        // Behind the terminator the cell is as it was: nothing was stored there.
        dropped.bytes[line.size()] = '#';
        return dropped;
    }

    std::string ReadBytes(u32 wanted, i32* result)
    {
        const std::string got = text.substr(at, wanted);
        at += got.size();
        *result = got.size() == wanted ? 1 : end != End::Empty ? -1 : got.empty() ? 0 : 1;
        return got;
    }
};

} // namespace

TEST(LineReaderModel, ReadsRandomTextsAsAPlainReaderDoes)
{
    std::mt19937 random(8101);
    const auto upTo = [&random](u32 most) { return static_cast<u32>(random() % (most + 1)); };
    for (int round = 0; round < 4000; ++round) {
        std::string text(upTo(120), '\0');
        // Line ends are frequent, and every byte comes.
        for (char& byte : text) {
            const u32 kind = upTo(9);
            byte = kind < 2 ? '\n' : kind < 4 ? '\r' : static_cast<char>(random());
        }
        const End end = std::array{End::Empty, End::Nothing, End::Failure}[upTo(2)];
        const u32 bufferSize = 1 + upTo(39);
        TextStream source(text, end, 1 + upTo(39));
        LineReader reader(nullptr, bufferSize);
        ASSERT_EQ(1, reader.Attach(&source));
        PlainReader plain{text, end};
        for (int step = 0; step < 30; ++step) {
            const u32 capacity = upTo(40);
            const u32 kind = upTo(9);
            if (kind < 7) {
                ASSERT_EQ(plain.ReadLine(capacity), NextLine(reader, capacity))
                    << "round " << round << " step " << step;
            } else if (kind < 9) {
                i32 result = 0;
                const std::string expected = plain.ReadBytes(capacity, &result);
                ExactBytes bytes(capacity, '#');
                u32 count = capacity;
                ASSERT_EQ(result, reader.ReadBytes(bytes.data.get(), &count))
                    << "round " << round << " step " << step;
                ASSERT_EQ(expected, bytes.Text().substr(0, count));
                ASSERT_EQ(std::string(capacity - count, '#'), bytes.Text().substr(count));
            } else {
                i32 atEnd = 77;
                ASSERT_EQ(1, reader.AtEnd(&atEnd));
                if (plain.at < text.size())
                    ASSERT_TRUE(atEnd == 77 || atEnd == 0) << atEnd;
                else
                    ASSERT_EQ(end == End::Empty ? 0 : 1, atEnd);
            }
        }
    }
}
