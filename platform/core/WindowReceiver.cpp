#include "platform/core/WindowReceiver.h"

#include "platform/core/BackgroundThread.h"
#include "platform/core/LocalSocket.h"
#include "platform/core/MessageQueue.h"
#include "platform/core/WindowMail.h"
#include "platform/core/WindowRegistry.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <memory>
#include <poll.h>
#include <sys/socket.h>
#include <vector>

namespace tavrix::platform
{

namespace
{

using Clock = std::chrono::steady_clock;

// Senders that have not sent yet. One sends right after it has connected.
constexpr size_t SilentLimit = 64;
constexpr auto Patience = std::chrono::seconds(5);
// Requests that the program has not come to yet.
constexpr int PendingLimit = 256;
// After a refusal of the host (no descriptor is left) nothing is accepted for so long.
constexpr int PauseMilliseconds = 100;

std::atomic<RaiseFunction> raiseForOthers{nullptr};
std::atomic<int> pending{0};

struct Silent {
    Descriptor connection;
    Clock::time_point since;
};

LRESULT DeliverData(HWND window, WindowMail& mail)
{
    COPYDATASTRUCT record = {};
    record.dwData = static_cast<ULONG_PTR>(mail.word);
    record.cbData = static_cast<DWORD>(mail.data.size());
    // No bytes and no pointer are two things; a block of no bytes has no address of its own.
    static unsigned char nothing[sizeof(WCHAR)];
    if (mail.hasData)
        record.lpData = mail.data.empty() ? nothing : mail.data.data();
    return CallWindow(window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record));
}

/// Carries a request out. User-interface thread.
MailAnswer Deliver(WindowMail& mail)
{
    const auto window = reinterpret_cast<HWND>(static_cast<uintptr_t>(mail.window));
    // Only what can be found can be written to: not a dialog, not a control.
    if (!IsPublished(window) || !IsWindow(window))
        return {};
    if (mail.kind == MailKind::CopyData)
        return {true, DeliverData(window, mail)};
    if (const RaiseFunction raise = raiseForOthers)
        raise(window, mail.kind == MailKind::Activate,
              std::string(mail.data.begin(), mail.data.end()));
    return {true, 0};
}

void Answer(const Descriptor& connection, const MailAnswer& answer)
{
    // A sender that is gone does not matter, and a packet so small finds its place at once.
    const std::vector<unsigned char> bytes = PackAnswer(answer);
    (void)!send(connection.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
}

/// Takes the request out of a connection that has one; the connection goes with it.
void TakeMail(Descriptor connection)
{
    // One more byte than there may be, so that a packet too large is seen as such.
    static std::vector<unsigned char> buffer(MailHeaderSize + MailDataLimit + 1);
    const ssize_t size =
        recv(connection.Get(), buffer.data(), buffer.size(), MSG_DONTWAIT | MSG_TRUNC);
    if (size <= 0 || static_cast<size_t>(size) > buffer.size())
        return;
    auto mail = UnpackMail(buffer.data(), static_cast<size_t>(size));
    if (!mail || pending >= PendingLimit)
        return;
    ++pending;
    struct Request {
        Descriptor connection;
        WindowMail mail;
    };
    const auto request = std::make_shared<Request>();
    request->connection = std::move(connection);
    request->mail = std::move(*mail);
    CallSoon([request]() -> LRESULT {
        Answer(request->connection, Deliver(request->mail));
        --pending;
        return 0;
    });
}

/// Takes all who want to connect. False when the host refuses for want of something.
bool AcceptAll(const Descriptor& listener, std::vector<Silent>& silent)
{
    for (;;) {
        Descriptor connection(
            accept4(listener.Get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!connection.IsOpen()) {
            if (errno == EINTR || errno == ECONNABORTED)
                continue;
            return errno == EAGAIN || errno == EWOULDBLOCK;
        }
        if (!PeerIsThisUser(connection.Get()))
            continue;
        if (silent.size() == SilentLimit)
            silent.erase(silent.begin());
        silent.push_back({std::move(connection), Clock::now()});
    }
}

int UntilPatienceEnds(const std::vector<Silent>& silent)
{
    if (silent.empty())
        return -1;
    const auto left = silent.front().since + Patience - Clock::now();
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    return milliseconds > 0 ? static_cast<int>(milliseconds) : 0;
}

void Receive(const Descriptor& listener)
{
    std::vector<Silent> silent; // the longest silent first
    bool paused = false;
    for (;;) {
        std::vector<pollfd> watched;
        for (const Silent& sender : silent)
            watched.push_back({sender.connection.Get(), POLLIN, 0});
        watched.push_back({paused ? -1 : listener.Get(), POLLIN, 0});
        const int limit = paused ? PauseMilliseconds : UntilPatienceEnds(silent);
        if (poll(watched.data(), watched.size(), limit) < 0)
            for (pollfd& entry : watched)
                entry.revents = 0;
        paused = false;

        std::vector<Silent> stillSilent;
        const auto latest = Clock::now() - Patience;
        for (size_t i = 0; i < silent.size(); ++i) {
            if (watched[i].revents != 0)
                TakeMail(std::move(silent[i].connection));
            else if (silent[i].since > latest)
                stillSilent.push_back(std::move(silent[i]));
        }
        silent = std::move(stillSilent);
        if (watched.back().revents != 0)
            paused = !AcceptAll(listener, silent);
    }
}

void* Run(void* parameter)
{
    // Never given up: the thread lives as long as the process.
    Receive(*static_cast<Descriptor*>(parameter));
    return nullptr;
}

} // namespace

bool StartWindowReceiver(const std::string& folder, const std::string& name)
{
    auto listener = std::make_unique<Descriptor>(ListenAs(folder, name));
    if (!listener->IsOpen() || !StartBackgroundThread(Run, listener.get()))
        return false;
    (void)listener.release();
    return true;
}

void SetRaiseForOthers(RaiseFunction raise)
{
    raiseForOthers = raise;
}

} // namespace tavrix::platform
