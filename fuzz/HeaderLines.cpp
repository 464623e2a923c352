// Header lines of any bytes through a reader with a buffer of any size, which is the input's first
// byte.
#include "foundation/MemoryStream.h"
#include "fuzz/HeadModel.h"
#include "transfer/HttpHead.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input{data, size};
    const u32 bufferSize = 1u + input.Byte();
    std::string text = input.Bytes(input.left);
    MemoryStream source;
    if (source.Open(text.data(), static_cast<u32>(text.size()), 1, nullptr) < 1)
        return 0;
    LineReader reader(nullptr, bufferSize);
    Require(reader.Attach(&source) == 1, "a reader takes a stream");
    PropertyList headers;
    Require(headers.SetWide(u"a", u"before") == 3, "the list takes a name");
    const i32 result = ReadHeaderLines(reader, headers);

    size_t place = 0;
    Headers expected = {{u"a", u"before"}};
    const bool isWhole = ReadHeadersPlainly(text, &place, &expected);
    Require(result == (isWhole ? 1 : -1), "a line without a colon is told");
    RequireHeaders(headers, expected);

    std::string rest(text.size() + 1, '\0');
    u32 length = static_cast<u32>(rest.size());
    (void)reader.ReadBytes(rest.data(), &length);
    Require(rest.substr(0, length) == text.substr(place), "the reader stands behind the last line");
    return 0;
}
