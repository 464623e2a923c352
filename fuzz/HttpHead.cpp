// A whole response of any bytes: the status line, the headers, and where the body begins.
#include "transfer/HttpHead.h"
#include "foundation/MemoryStream.h"
#include "fuzz/HeadModel.h"

#include <cctype>

namespace
{

struct Status {
    i32 fields = 0;
    u32 status = 0;
};

size_t BehindSpace(const std::string& line, size_t at)
{
    return std::min(line.find_first_not_of(" \t\n\v\f\r", at), line.size());
}

/// A sign and digits at `*at`, modulo 2^32.
bool TakeNumber(const std::string& line, size_t* at, u32* number)
{
    const size_t sign = line.find_first_of("+-", *at) == *at ? 1 : 0;
    const size_t start = *at + sign;
    size_t end = start;
    while (end < line.size() && std::isdigit(static_cast<unsigned char>(line[end])) != 0)
        ++end;
    if (end == start)
        return false;
    uint64_t value = 0;
    for (const char digit : line.substr(start, end - start))
        value = (value * 10 + static_cast<uint64_t>(digit - '0')) & 0xFFFFFFFF;
    *number = static_cast<u32>(line[*at] == '-' ? 0x100000000 - value : value);
    *at = end;
    return true;
}

Status StatusOf(const std::string& line)
{
    const std::string start = "HTTP/";
    if (line.size() < start.size() && start.starts_with(line))
        return {-1, 0};
    if (!line.starts_with(start))
        return {0, 0};
    size_t at = BehindSpace(line, start.size());
    if (at == line.size())
        return {-1, 0};
    u32 number = 0;
    if (!TakeNumber(line, &at, &number))
        return {0, 0};
    if (at == line.size() || line[at] != '.')
        return {1, 0};
    at = BehindSpace(line, at + 1);
    if (!TakeNumber(line, &at, &number))
        return {1, 0};
    at = BehindSpace(line, at);
    if (!TakeNumber(line, &at, &number))
        return {2, 0};
    return {3, number};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string text(reinterpret_cast<const char*>(data), size);
    MemoryStream source;
    if (source.Open(text.data(), static_cast<u32>(text.size()), 1, nullptr) < 1)
        return 0;
    PropertyList headers;
    HttpHead head = {77, 77, 77};
    Require(ReadHttpHead(&source, headers, head) == 1, "a head is always read");
    Require(head.isBroken == 0, "a stream in memory never fails");

    size_t place = 0;
    const Status status = StatusOf(UpToZero(NextLine(text, &place, 64)));
    Require(head.fields == status.fields, "the fields of the status line");
    Require(head.status == status.status, "the status");
    Headers expected;
    (void)ReadHeadersPlainly(text, &place, &expected);
    RequireHeaders(headers, expected);

    std::string body(text.size() + 1, '\0');
    u32 length = static_cast<u32>(body.size());
    Require(source.Read(body.data(), &length) == 1, "the body is read");
    Require(body.substr(0, length) == text.substr(place), "the body begins behind the head");
    return 0;
}
