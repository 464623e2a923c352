// Lines and bytes of a stream in memory, against the same text cut up in one piece. The input's
// first byte is the size of the reader's buffer, the next four say in turn what is read: a line of
// that capacity, with an odd byte from 128 on so many bytes; 0 asks for the end.
#include "foundation/LineReader.h"
#include "foundation/MemoryStream.h"
#include "fuzz/Entry.h"

#include <algorithm>
#include <memory>

namespace
{

void ReadLine(LineReader& reader, const std::string& text, size_t* place, u32 capacity)
{
    const auto line = std::make_unique<char[]>(capacity);
    u32 length = capacity;
    Require(reader.ReadLine(line.get(), &length) == 1, "a line is always read");

    const size_t feed = text.find('\n', *place);
    std::string expected = text.substr(*place, feed == text.npos ? feed : feed - *place);
    if (expected.size() >= capacity) {
        expected.resize(capacity);
        *place += capacity;
    } else {
        *place = feed == text.npos ? text.size() : feed + 1;
        if (feed != text.npos && !expected.empty() && expected.back() == '\r')
            expected.pop_back();
        Require(line[expected.size()] == 0, "a line that fits is terminated");
    }
    Require(length == expected.size(), "the line's length");
    Require(std::equal(expected.begin(), expected.end(), line.get()), "the line's bytes");
}

void ReadBytes(LineReader& reader, const std::string& text, size_t* place, u32 wanted)
{
    const auto bytes = std::make_unique<char[]>(wanted);
    u32 got = wanted;
    const i32 result = reader.ReadBytes(bytes.get(), &got);
    const std::string expected = text.substr(*place, wanted);
    *place += expected.size();
    Require(result == (expected.empty() ? 0 : 1), "bytes are read up to the end");
    Require(got == expected.size(), "the number of bytes");
    Require(std::equal(expected.begin(), expected.end(), bytes.get()), "the bytes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input{data, size};
    const u32 bufferSize = 1u + input.Byte();
    u32 steps[4];
    for (u32& step : steps)
        step = input.Byte();
    std::string text = input.Bytes(input.left);

    MemoryStream stream;
    const std::string whole = text;
    if (stream.Open(text.data(), static_cast<u32>(text.size()), 1, nullptr) < 1)
        return 0;
    LineReader reader(nullptr, bufferSize);
    Require(reader.Attach(&stream) == 1, "a reader takes a stream");
    size_t place = 0;
    for (u32 i = 0; i < 2 * whole.size() + 8; ++i) {
        const u32 step = steps[i % 4];
        i32 end = 5;
        if (step == 0)
            Require(reader.AtEnd(&end) == 1 && end != 1, "a stream in memory never ends");
        else if (step >= 128 && step % 2 == 1)
            ReadBytes(reader, whole, &place, step - 128);
        else
            ReadLine(reader, whole, &place, step);
    }
    Require(text == whole, "the stream's bytes stay");
    return 0;
}
