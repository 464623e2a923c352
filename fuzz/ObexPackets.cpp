// The payloads of an exchange's packets, against the model written out once more in the receiver's
// tests. The input's first byte says how many packets (1 to 8) and, by its high bit, whether the
// first is a CONNECT; each packet is a length byte (times 2, and one more where it is odd) and
// bytes.
#include "foundation/MemoryStream.h"
#include "fuzz/Entry.h"
#include "platform/core/TestHooks.h"
#include "transfer/tests/ObexModel.h"

#include <algorithm>
#include <memory>

using obextest::Listener;
using obextest::Model;
using obextest::Sink;

namespace
{

/// A payload in memory of just its size.
struct Payload {
    explicit Payload(const std::string& text) : bytes(new u8[text.size()])
    {
        std::copy(text.begin(), text.end(), bytes.get());
        const u32 size = static_cast<u32>(text.size());
        Require(parser.Open(bytes.get(), size, 1, nullptr) == 1, "a payload opens");
    }
    std::unique_ptr<u8[]> bytes;
    MemoryStream parser;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const auto before = tavrix::platform::CountHoldings();
    Input input{data, size};
    const unsigned head = input.Byte();
    Sink sink;
    Listener listener;
    Model model;
    ObexObject object = {&sink, Listener::Hear, &listener, nullptr, 0, 0};
    size_t held = 0;
    for (unsigned packet = 0; packet <= head % 8; ++packet) {
        const unsigned length = input.Byte();
        const std::string text = input.Bytes(length * 2 + length % 2);
        Payload payload(text);
        if (packet == 0 && head >= 128) {
            ParseObexConnect(payload.parser);
            continue;
        }
        held += text.size();
        const i32 result = ParseObexPut(payload.parser, payload.bytes.get(), object);
        Require(std::equal(text.begin(), text.end(), payload.bytes.get(),
                           [](char a, u8 b) { return static_cast<u8>(a) == b; }),
                "the payload stays");
        Require(result == model.Put(text), "the packet's result");
        Require(listener.told == model.told, "the events");
        Require(sink.bytes == model.object, "the object's bytes");
        Require(object.received == sink.bytes.size(), "the sum that is told");
        Require(sink.bytes.size() <= held, "no more than the packets hold");
        if (result < 1)
            break;
    }
    FreeObexName(object);
    Require(object.name == nullptr, "the name is given back");
    Require(tavrix::platform::CountHoldings() == before, "nothing is left behind");
    return 0;
}
