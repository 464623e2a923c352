// What the tests of the HTTP client share: a server on port 80 of this process's own address that
// keeps what it was asked and answers from a list, and the requests as they must be.
#pragma once

#include "transfer/HttpClient.h"

#include "platform/testing/Testing.h"
#include "platform/testing/Wire.h"

#include <gtest/gtest.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace tavrix::testing
{

/// "http://", this process's address and `rest`.
inline std::u16string UrlOf(const std::string& rest)
{
    return Wide("http://" + OwnAddress() + rest);
}

/// The request for an address of this server, `extra` being whole lines.
inline std::string RequestFor(const std::string& rest, const std::string& position = "0",
                              const std::string& extra = "")
{
    return "GET http://" + OwnAddress() + rest + " HTTP/1.0\nHost: " + OwnAddress() +
           "\nRange: bytes=" + position + "-\n" + extra + "\n";
}

inline std::string Good(const std::string& body)
{
    return "HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

inline std::string MovedTo(const std::string& location)
{
    return "HTTP/1.0 302 Found\r\nLocation: " + location + "\r\n\r\n";
}

/// Answers each connection with the next of its answers, the last one from then on, and ends its
/// side. Keeps all that came, up to the other side's end.
class HttpServer
{
public:
    explicit HttpServer(std::vector<std::string> theAnswers, unsigned short port = 80)
        : answers(std::move(theAnswers)), wire(port, [this](Connection& connection, int number) {
              Serve(connection, static_cast<size_t>(number));
          })
    {
    }

    int Count() const { return wire.Count(); }
    unsigned short Port() const { return wire.Port(); }
    /// What has come of the n-th request.
    std::string Request(size_t number)
    {
        const std::lock_guard<std::mutex> guard(lock);
        return number < requests.size() ? requests[number] : "none";
    }
    /// Waits until the n-th connection was ended by the client.
    void AwaitEnd(size_t number)
    {
        for (;; std::this_thread::sleep_for(std::chrono::milliseconds(1))) {
            const std::lock_guard<std::mutex> guard(lock);
            if (ended > number)
                return;
        }
    }

private:
    void Serve(Connection& connection, size_t number)
    {
        const std::string request = connection.ReadUntil("\n\n");
        {
            const std::lock_guard<std::mutex> guard(lock);
            requests.push_back(request);
        }
        connection.Write(answers[std::min(number, answers.size() - 1)]);
        connection.EndWriting();
        const std::string rest = connection.ReadAll();
        const std::lock_guard<std::mutex> guard(lock);
        requests.back() += rest;
        ++ended;
    }

    const std::vector<std::string> answers;
    std::mutex lock;
    std::vector<std::string> requests;
    size_t ended = 0;
    WireServer wire; // last: its thread uses the others
};

/// An open's result and status, 77 where the status was not written.
struct Opened {
    i32 result;
    u16 status;
    bool operator==(const Opened&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Opened& opened)
{
    return out << "result " << opened.result << ", status " << opened.status;
}

inline Opened OpenUrl(HttpClient& client, const std::u16string& url, PropertyList* extra = nullptr)
{
    u16 status = 77;
    const i32 result = client.Open(url.c_str(), &status, extra);
    return {result, status};
}

/// All that is left of the body; "failed" behind what came before a failure.
inline std::string ReadBody(HttpClient& client)
{
    std::string body(1 << 20, '\0');
    u32 length = static_cast<u32>(body.size());
    const i32 result = client.Read(body.data(), &length);
    body.resize(length);
    return result < 0 ? body + "failed" : body;
}

/// What GetSize tells, or its negative result. An end that is none must not be told.
inline i64 SizeTold(HttpClient& client)
{
    u64 size = 0;
    const i32 result = client.GetSize(&size);
    EXPECT_FALSE(result == 1 && size == UINT64_MAX);
    return result < 1 ? result : static_cast<i64>(size);
}

inline i32 SeekTo(HttpClient& client, i64 offset, u32 origin = 0)
{
    return client.Seek(&offset, nullptr, origin);
}

/// The client is as one that was never opened.
inline void ExpectClosed(HttpClient& client)
{
    Variant query{u"Content-Length", VariantWide, 0};
    EXPECT_EQ(-1, client.GetHeader(&query));
    EXPECT_EQ(-1, SizeTold(client));
    EXPECT_EQ(-1, client.Reconnect());
    EXPECT_EQ(-1, SeekTo(client, 0));
    char byte = 0;
    u32 length = 1;
    EXPECT_EQ(-1, client.Read(&byte, &length));
    EXPECT_EQ(0u, length);
    length = 1;
    EXPECT_EQ(-1, client.Write(&byte, &length));
}

} // namespace tavrix::testing
