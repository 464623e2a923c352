// What a body costs on its way from a web server on this machine into a file: through HttpClient,
// and through curl, which many programs would use instead. "of_curl" is the ratio of the two in the
// same run: above 1 is faster than curl. Both fetch the same body from the same server, over
// HTTP/1.0. Times are the clock's, since client and server work at once; curl's own start, some ten
// milliseconds, is measured with an empty body and taken off.

#include "platform/testing/Wire.h"
#include "transfer/HttpClient.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

using namespace tavrix::testing;

namespace
{

constexpr size_t BodySize = size_t{256} << 20;
constexpr size_t ChunkSize = size_t{1} << 20;
constexpr u32 BufferSize = 65536;

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point from, Clock::time_point to)
{
    return std::chrono::duration<double>(to - from).count();
}

/// Whatever is asked for is BodySize bytes long, but for "/empty". Either client's head is read:
/// ours ends its lines in a bare LF.
void Serve(Connection& connection, int)
{
    static const std::string chunk(ChunkSize, 'x');
    std::string head;
    while (!head.ends_with("\n\n") && !head.ends_with("\r\n\r\n")) {
        const std::string more = connection.Read(1);
        if (more.empty())
            return;
        head += more;
    }
    const size_t size = head.find("/empty") != head.npos ? 0 : BodySize;
    (void)connection.Write("HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(size) +
                           "\r\n\r\n");
    for (size_t sent = 0; sent < size; sent += ChunkSize)
        if (!connection.Write(chunk))
            return;
}

std::string Address(const char* path)
{
    return "http://" + OwnAddress() + path;
}

std::string TargetFile()
{
    return (std::filesystem::temp_directory_path() / "tavrix-transfer-bench").string();
}

/// Giving the last file's memory back is nobody's part of the work.
void RemoveTarget()
{
    std::error_code ignored;
    std::filesystem::remove(TargetFile(), ignored);
}

/// Seconds; negative when not all of the body came.
double FetchOurs()
{
    const std::string address = Address("/body");
    const std::u16string url(address.begin(), address.end());
    std::vector<char> buffer(BufferSize);
    RemoveTarget();
    const auto start = Clock::now();
    FILE* const file = std::fopen(TargetFile().c_str(), "wb");
    HttpClient client;
    u16 status = 0;
    size_t received = 0;
    if (file == nullptr || client.Open(url.c_str(), &status, nullptr) < Done)
        return -1;
    std::setbuf(file, nullptr);
    for (;;) {
        u32 length = BufferSize;
        if (client.Read(buffer.data(), &length) < Done || length == 0)
            break;
        received += std::fwrite(buffer.data(), 1, length, file);
    }
    std::fclose(file);
    return received == BodySize ? Seconds(start, Clock::now()) : -1;
}

double RunCurl(const char* path)
{
    const std::string command =
        "curl --http1.0 --silent --noproxy '*' -o " + TargetFile() + " " + Address(path);
    RemoveTarget();
    const auto start = Clock::now();
    if (std::system(command.c_str()) != 0)
        return -1;
    return Seconds(start, Clock::now());
}

/// The quickest of the rounds counts for each: what disturbs one only ever makes it slower.
struct Best {
    double seconds = 1e9;
    bool Take(double now)
    {
        if (now < 0)
            return false;
        seconds = std::min(seconds, now);
        return true;
    }
};

void BodyIntoAFile(benchmark::State& state)
{
    const WireServer server(80, Serve);
    Best ours;
    Best curl;
    Best curlStart;
    for (auto _ : state) {
        const double now = FetchOurs();
        const bool complete = curl.Take(RunCurl("/body")) &&
                              std::filesystem::file_size(TargetFile()) == BodySize &&
                              curlStart.Take(RunCurl("/empty"));
        if (!ours.Take(now) || !complete) {
            state.SkipWithError(complete ? "ours failed" : "curl failed or is not there");
            break;
        }
        state.SetIterationTime(now);
    }
    RemoveTarget();
    constexpr double Megabytes = static_cast<double>(BodySize >> 20);
    const double curlAlone = curl.seconds - curlStart.seconds;
    state.counters["ours_MB_s"] = Megabytes / ours.seconds;
    state.counters["curl_MB_s"] = Megabytes / curlAlone;
    state.counters["of_curl"] = curlAlone / ours.seconds;
}
BENCHMARK(BodyIntoAFile)->UseManualTime()->Iterations(7)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
