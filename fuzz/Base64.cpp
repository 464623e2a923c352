// Bytes encoded and text decoded, into streams that may be too small. The input's first byte is the
// length of a line, the second by how many bytes the streams are too small, the rest is both.
#include "foundation/MemoryStream.h"
#include "fuzz/Entry.h"
#include "transfer/Base64Codec.h"

#include <algorithm>

namespace
{

const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

struct Outcome {
    i32 result = 0;
    std::string bytes;
    bool operator==(const Outcome&) const = default;
};

/// By the bits of the whole.
std::string EncodePlainly(const std::string& bytes, size_t lineLength)
{
    std::string bits;
    for (const char byte : bytes)
        for (int bit = 7; bit >= 0; --bit)
            bits.push_back((static_cast<unsigned char>(byte) >> bit & 1) != 0 ? '1' : '0');
    bits.resize((bits.size() + 5) / 6 * 6, '0');
    std::string text;
    for (size_t at = 0; at < bits.size(); at += 6)
        text.push_back(alphabet[std::stoul(bits.substr(at, 6), nullptr, 2)]);
    text.resize((text.size() + 3) / 4 * 4, '=');
    if (lineLength == 0 || lineLength % 4 != 0)
        return text;
    std::string lines;
    for (size_t at = 0; at < text.size(); at += lineLength) {
        const std::string line = text.substr(at, lineLength);
        lines += line.size() == lineLength ? line + "\r\n" : line;
    }
    return lines;
}

Outcome DecodePlainly(const std::string& text)
{
    std::string kept;
    for (const char character : text)
        if (character != '\0' && (character == '=' || alphabet.find(character) != alphabet.npos))
            kept.push_back(character);
    Outcome all{1, ""};
    for (size_t at = 0; at < kept.size(); at += 4) {
        const std::string group = kept.substr(at, 4);
        if (group.size() < 4)
            return {-1, all.bytes};
        unsigned value = 0;
        for (const char character : group)
            value = value * 64 +
                    (character == '=' ? 0 : static_cast<unsigned>(alphabet.find(character)));
        const std::string three = {static_cast<char>(value >> 16), static_cast<char>(value >> 8),
                                   static_cast<char>(value)};
        const size_t count = group[2] == '=' ? 1 : group[3] == '=' ? 2 : 3;
        all.bytes += three.substr(0, count);
        if (count < 3)
            break;
    }
    return all;
}

/// `run` on a stream over `bytes` and one that takes `capacity` bytes.
template <class Run>
Outcome Through(std::string bytes, size_t capacity, Run run)
{
    std::string target(capacity, '\0');
    MemoryStream source;
    MemoryStream sink;
    Require(source.Open(bytes.data(), static_cast<u32>(bytes.size()), 1, nullptr) == 1, "a source");
    Require(sink.Open(target.data(), static_cast<u32>(capacity), 0, nullptr) == 1, "a sink");
    const i32 result = run(&source, &sink);
    u64 end = 0;
    const i64 here = 0;
    Require(sink.Seek(&here, &end, 1) == 1, "the sink tells what it took");
    return {result, target.substr(0, end)};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input{data, size};
    const u32 lineLength = input.Byte();
    const size_t missing = input.Byte();
    const std::string bytes = input.Bytes(input.left);
    const Base64Codec codec;
    const auto encode = [&](Stream* source, Stream* sink) {
        return codec.Encode(source, sink, lineLength);
    };
    const auto decode = [&](Stream* source, Stream* sink) { return codec.Decode(source, sink); };
    /// What is left of an outcome where so much is missing.
    const auto cut = [&](const Outcome& whole) {
        if (missing == 0 || whole.bytes.empty())
            return whole;
        const size_t kept = whole.bytes.size() - std::min(missing, whole.bytes.size());
        return Outcome{-1, whole.bytes.substr(0, kept)};
    };
    const auto capacity = [&](const Outcome& whole) { return cut(whole).bytes.size(); };

    const Outcome encoded = {1, EncodePlainly(bytes, lineLength)};
    Require(Through(bytes, capacity(encoded), encode) == cut(encoded), "encoded as told");
    const Outcome decoded = DecodePlainly(bytes);
    Require(Through(bytes, capacity(decoded), decode) == cut(decoded), "decoded as told");
    Require(Through(encoded.bytes, bytes.size(), decode) == Outcome{1, bytes},
            "what was encoded comes back");
    return 0;
}
