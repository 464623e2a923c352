// What the tests of the roads from the wire share: a web server whose pages a test sets, a person
// who answers the dialog for an address, and a device that pushes an object over the infrared link.
#pragma once

#include "platform/testing/Wire.h"
#include "shell/tests/RoadTesting.h"

#include <cstdlib>
#include <mutex>

namespace wiretest
{

using namespace roadtest;

inline constexpr u32 UrlCommand = 40197;
inline constexpr u32 IrObexCommand = 40202;

inline std::u16string AddressOf(const std::string& page)
{
    return Wide("http://" + OwnAddress() + page);
}

/// A whole answer with a body.
inline std::string Answer(const std::string& body)
{
    return "HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

/// Listens on port 80 of this process's address. A page that was not set answers 404.
class Site
{
public:
    void Set(const std::string& page, const std::string& answer)
    {
        const std::lock_guard hold(lock);
        answers[page] = answer;
    }
    /// The requests so far, and forgets them.
    std::vector<std::string> TakeRequests()
    {
        const std::lock_guard hold(lock);
        return std::exchange(requests, {});
    }

private:
    void Serve(Connection& connection)
    {
        const std::string request = connection.ReadUntil("\n\n");
        std::string answer = "HTTP/1.0 404 Not Found\r\n\r\nnothing here";
        {
            const std::lock_guard hold(lock);
            requests.push_back(request);
            const std::string line = request.substr(0, request.find(" HTTP/"));
            const std::string before = "GET http://" + OwnAddress();
            const auto page = line.rfind(before, 0) == 0 ? answers.find(line.substr(before.size()))
                                                         : answers.end();
            if (page != answers.end())
                answer = page->second;
        }
        connection.Write(answer);
    }

    std::mutex lock;
    std::map<std::string, std::string> answers;
    std::vector<std::string> requests;
    WireServer server{80, [this](Connection& connection, int) { Serve(connection); }};
};

/// Answers the dialog for an address; each visit is what is typed there, or none to give it up.
class Surfer : public Person
{
public:
    std::deque<std::optional<std::u16string>> visits;
    std::vector<std::u16string> shown; // what stood in the field, of each dialog
    std::vector<std::u16string> captions;
    std::function<void()> onUrlDialog; // before the answer

    Surfer()
    {
        onDialog = [this](HWND dialog) { Visit(dialog); };
    }

private:
    void Visit(HWND dialog)
    {
        ASSERT_NE(GetDlgItem(dialog, ControlUrl), nullptr) << "another dialog";
        shown.push_back(ControlText(dialog, ControlUrl));
        WCHAR caption[100] = {};
        GetWindowTextW(dialog, caption, 100);
        captions.push_back(caption);
        if (onUrlDialog)
            onUrlDialog();
        if (visits.empty()) {
            ADD_FAILURE() << "an unexpected dialog for an address";
            visits.push_back({});
        }
        const std::optional<std::u16string> visit = visits.front();
        visits.pop_front();
        if (visit)
            SetDlgItemTextW(dialog, ControlUrl, visit->c_str());
        PostMessageW(dialog, WM_COMMAND, visit ? IDOK : IDCANCEL, 0);
    }
};

/// From now on objects come over a socket in the test's home.
inline std::string UseInfraredPath()
{
    const std::string path = TestHome() + "/infrared";
    setenv("TAVRIX_IR", ("unix:" + path).c_str(), 1);
    return path;
}

/// The name header of a packet, with its final zero.
inline std::string NameHeader(const std::u16string& name)
{
    const size_t length = 3 + 2 * (name.size() + 1);
    std::string bytes = {1, static_cast<char>(length >> 8), static_cast<char>(length)};
    for (const char16_t unit : name + u'\0') {
        bytes.push_back(static_cast<char>(unit >> 8));
        bytes.push_back(static_cast<char>(unit));
    }
    return bytes;
}

/// A header of bytes: 0x48 the body, 0x49 its end.
inline std::string BodyHeader(int id, const std::string& body)
{
    const size_t length = 3 + body.size();
    return std::string{static_cast<char>(id), static_cast<char>(length >> 8),
                       static_cast<char>(length)} +
           body;
}

inline std::string Packet(int opcode, const std::string& payload)
{
    const size_t length = 3 + payload.size();
    return std::string{static_cast<char>(opcode), static_cast<char>(length >> 8),
                       static_cast<char>(length)} +
           payload;
}

/// A device that sends packets, each once the one before it was answered, as soon as somebody
/// listens; then it ends the link.
class Sender
{
public:
    Sender(const std::string& path, std::vector<std::string> packets)
        : thread([this, path, packets = std::move(packets)] { Run(path, packets); })
    {
    }
    ~Sender()
    {
        stop = true;
        thread.join();
    }
    Sender(const Sender&) = delete;
    Sender& operator=(const Sender&) = delete;

private:
    void Run(const std::string& path, const std::vector<std::string>& packets)
    {
        Connection connection;
        while (!stop && !connection.IsOpen()) {
            connection = ConnectToPath(path);
            if (!connection.IsOpen())
                std::this_thread::sleep_for(std::chrono::milliseconds(3));
        }
        for (const std::string& packet : packets) {
            if (!connection.Write(packet))
                return;
            const std::string head = connection.ReadExactly(3);
            if (head.size() == 3)
                (void)connection.ReadExactly(static_cast<size_t>(head[2]) - 3);
        }
    }

    std::atomic<bool> stop{false};
    std::thread thread;
};

/// The packets of a push of one small object, as a device sends them.
inline std::vector<std::string> PushOf(const std::u16string& name, const std::string& body)
{
    return {Packet(0x80, std::string("\x10\0\x04\0", 4)),
            Packet(0x82, NameHeader(name) + BodyHeader(0x49, body)), Packet(0x81, "")};
}

} // namespace wiretest
