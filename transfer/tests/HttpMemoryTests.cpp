// What a transfer costs in memory: nothing that grows with the body.

#include "platform/testing/Testing.h"
#include "platform/testing/Wire.h"
#include "transfer/HttpClient.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <string>

using namespace tavrix::testing;

namespace
{

constexpr size_t BodySize = size_t{100} << 20;
constexpr size_t ChunkSize = size_t{1} << 18;

/// A byte of the body by its place.
char BodyByte(size_t at)
{
    return static_cast<char>((at * 2654435761u) >> 13);
}

const std::string& Chunk()
{
    static const std::string chunk = [] {
        std::string bytes(ChunkSize, '\0');
        for (size_t at = 0; at < ChunkSize; ++at)
            bytes[at] = BodyByte(at);
        return bytes;
    }();
    return chunk;
}

void ServeBody(Connection& connection, int)
{
    (void)connection.ReadUntil("\n\n");
    connection.Write("HTTP/1.0 200 OK\r\nContent-Length: 104857600\r\n\r\n");
    for (size_t sent = 0; sent < BodySize; sent += ChunkSize)
        if (!connection.Write(Chunk()))
            return;
}

/// Kilobytes that the host tells of this process.
long Kilobytes(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name + ":"))
            return std::stol(line.substr(name.size() + 1));
    ADD_FAILURE() << name;
    return 0;
}

/// The host's record of the most memory begins anew.
void ForgetThePeak()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

} // namespace

TEST(HttpMemory, ABodyOf100MegabytesPassesThroughWithoutAnAllocationOrAGrowingProcess)
{
    const Scope scope;
    (void)Chunk();
    const WireServer server(80, ServeBody);
    HttpClient client;
    u16 status = 0;
    ASSERT_EQ(client.Open(Wide("http://" + OwnAddress() + "/big.png").c_str(), &status, nullptr),
              1);
    std::string buffer(65536, '\0');
    // The first read brings in whatever is needed once.
    u32 length = 65536;
    ASSERT_EQ(client.Read(buffer.data(), &length), 1);
    ASSERT_EQ(length, 65536u);

    std::atomic<unsigned> allocations{0};
    SetAllocationFault([&allocations](SIZE_T) {
        ++allocations;
        return false;
    });
    ForgetThePeak();
    const long before = Kilobytes("VmRSS");
    size_t received = length;
    size_t wrong = 0;
    while (length > 0) {
        length = 65536;
        ASSERT_EQ(client.Read(buffer.data(), &length), 1);
        for (u32 at = 0; at < length; at += 997)
            wrong += buffer[at] != Chunk()[(received + at) % ChunkSize];
        received += length;
    }
    const long peak = Kilobytes("VmHWM");
    SetAllocationFault(nullptr);

    EXPECT_EQ(received, BodySize);
    EXPECT_EQ(wrong, 0u);
    EXPECT_EQ(allocations, 0u);
    EXPECT_LT(peak - before, 4096);
    RecordProperty("grown_kb", static_cast<int>(peak - before));
}
