#include "platform/core/WindowMessenger.h"

#include "platform/core/LocalSocket.h"
#include "platform/core/MessageQueue.h"
#include "platform/core/NameSpace.h"
#include "platform/core/WindowMail.h"
#include "platform/core/WindowRegistry.h"

#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>
#include <sys/socket.h>

namespace tavrix::platform
{

namespace
{

constexpr DWORD InvalidWindowHandle = 1400;
constexpr size_t LongestToken = 1024;

/// Sends one request to the window's process; answers the connection that it went by.
Descriptor Post(HWND window, WindowMail mail)
{
    const auto foreign = ForeignWindowOf(window);
    if (!foreign)
        return Descriptor();
    mail.window = foreign->number;
    Descriptor connection = ConnectTo(SharedFolder(), foreign->socket);
    if (!connection.IsOpen())
        return Descriptor();
    const std::vector<unsigned char> bytes = PackMail(mail);
    if (send(connection.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) !=
        static_cast<ssize_t>(bytes.size()))
        return Descriptor();
    return connection;
}

std::optional<MailAnswer> AwaitAnswer(const Descriptor& connection)
{
    WaitForDescriptor(connection.Get());
    unsigned char bytes[MailAnswerSize + 1];
    const ssize_t size = recv(connection.Get(), bytes, sizeof bytes, MSG_DONTWAIT | MSG_TRUNC);
    return size > 0 ? UnpackAnswer(bytes, static_cast<size_t>(size)) : std::nullopt;
}

/// What the desktop gave this process at its start as the right to come to the front.
std::string_view ActivationToken()
{
    const char* token = std::getenv("XDG_ACTIVATION_TOKEN");
    const std::string_view text = token != nullptr ? token : "";
    return text.size() <= LongestToken ? text : std::string_view();
}

} // namespace

LRESULT SendToForeignWindow(HWND window, UINT message, LPARAM lParam)
{
    const auto* record = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
    if (message != WM_COPYDATA || record == nullptr ||
        (record->lpData != nullptr && record->cbData > MailDataLimit)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    WindowMail mail;
    mail.kind = MailKind::CopyData;
    mail.word = record->dwData;
    mail.hasData = record->lpData != nullptr;
    if (mail.hasData) {
        const auto* bytes = static_cast<const unsigned char*>(record->lpData);
        mail.data.assign(bytes, bytes + record->cbData);
    }
    const Descriptor connection = Post(window, std::move(mail));
    const auto answer = connection.IsOpen() ? AwaitAnswer(connection) : std::nullopt;
    if (!answer || !answer->delivered) {
        SetLastError(InvalidWindowHandle);
        return 0;
    }
    return static_cast<LRESULT>(answer->result);
}

bool RaiseForeignWindow(HWND window, bool activate)
{
    WindowMail mail;
    mail.kind = activate ? MailKind::Activate : MailKind::Raise;
    const std::string_view token = activate ? ActivationToken() : std::string_view();
    mail.hasData = !token.empty();
    mail.data.assign(token.begin(), token.end());
    if (!Post(window, std::move(mail)).IsOpen()) {
        SetLastError(InvalidWindowHandle);
        return false;
    }
    return true;
}

} // namespace tavrix::platform
