// Opening: the address taken apart, the way to its server, redirects and passwords.
#include "foundation/BoundedText.h"
#include "foundation/TextFind.h"
#include "foundation/TextSearch.h"
#include "transfer/HttpClient.h"
#include "transfer/HttpHead.h"
#include "transfer/HttpRequest.h"

namespace
{

constexpr u16 HttpPort = 80;
constexpr u32 PositionSize = 32;
constexpr u16 Unauthorized = 401;

} // namespace

i32 HttpClient::Open(const WCHAR* wantedUrl, u16* status, PropertyList* extra)
{
    if (wantedUrl == nullptr || status == nullptr)
        return BadArgument;
    if (socket == nullptr || headers == nullptr || headers->Count() < 0)
        return NoMemory;
    WCHAR address[UrlSize];
    Login login = {};
    (void)CopyText(address, UrlSize, wantedUrl);
    i32 result = TakeUrl(address);
    if (result > NothingDone) {
        (void)Reset();
        serverAddress = 0;
    }
    for (;; result = TakeUrl(address)) {
        // A bad address changes no more than what GetUrl gives; a redirect's is one like others.
        if (result < Done)
            return result == NoMemory ? GiveUp(NoMemory) : result;
        HttpHead head;
        result = Ask(extra, login.credentials, head);
        if (result < Done)
            return GiveUp(result);
        // Whatever the answer is, and before it is looked at: meant.
        const WCHAR* location = nullptr;
        if (headers->GetWide(TEXT("Location"), &location) > NothingDone) {
            (void)CopyText(address, UrlSize, location);
        } else if (head.fields != 3) {
            return GiveUp(head.fields);
        } else {
            *status = static_cast<u16>(head.status);
            if (IsGood(*status)) {
                isOpen = 1;
                TakeContentEnd();
                return Done;
            }
            result = *status == Unauthorized ? AskForLogin(login) : Rejected;
            if (result != Done)
                return GiveUp(result);
        }
        if (RenewConnection() < Done)
            return GiveUp(NoMemory);
    }
}

/// Takes the address apart, and appends the "/" that it lacks behind its host, if it has room. That
/// "/" is missing in `path` and is there when the same address is tried again with a password:
/// meant.
i32 HttpClient::TakeUrl(WCHAR* address)
{
    if (Keep(url, address) < Done)
        return NoMemory;
    // A proxy is asked for any kind of address.
    const WCHAR* const mark = useProxy != 0 ? TEXT("://") : TEXT("http://");
    const WCHAR* found = nullptr;
    if (FindText(address, mark, &found) < Done)
        return Failed;
    if (Keep(path, useProxy != 0 ? address : found) < Done)
        return NoMemory;
    const WCHAR* const start = found + (useProxy != 0 ? 3 : 7);
    if (FindChar(start, '/') < Done)
        (void)AppendText(address, UrlSize, TEXT("/"));
    WCHAR name[HostSize];
    (void)CopyText(name, HostSize, start, '/');
    return Keep(host, name);
}

/// The connection, the request and the head of the answer.
i32 HttpClient::Ask(PropertyList* extra, const WCHAR* credentials, HttpHead& head)
{
    if (socket == nullptr || FormatExtraHeaders(extra, extraHeaders) < Done)
        return NoMemory;
    WCHAR text[PositionSize];
    wsprintfW(text, TEXT("%u"), static_cast<u32>(position));
    i32 result = BuildRequest(text, credentials);
    if (result > NothingDone && useProxy == 0)
        result = FindServer();
    if (result > NothingDone)
        result = SendRequest();
    return result > NothingDone ? ReadHead(head) : result;
}

i32 HttpClient::ReadHead(HttpHead& head)
{
    const i32 result = ReadHttpHead(socket, *headers, head);
    // What a socket that failed once would still give is not what follows the head.
    if (head.isBroken != 0)
        (void)socket->Close();
    return result;
}

i32 HttpClient::BuildRequest(const WCHAR* positionText, const WCHAR* credentials)
{
    return FormatRequest({path.Get(), host.Get(), positionText, extraHeaders.Get(), credentials},
                         request);
}

i32 HttpClient::FindServer()
{
    serverPort = HttpPort;
    return FindAddress(host.Get(), &serverAddress);
}

i32 HttpClient::SendRequest()
{
    const i32 connected = useProxy != 0 ? socket->Connect(proxyAddress, static_cast<u16>(proxyPort))
                                        : socket->Connect(serverAddress, serverPort);
    if (connected < Done)
        return connected;
    const char* bytes = nullptr;
    u32 left = 0;
    if (RequestBytes(request, &bytes, &left) < Done)
        return NoMemory;
    // In one piece, unless the device takes less.
    while (left > 0) {
        u32 sent = 0;
        const i32 result = socket->Send(bytes, left, &sent);
        if (result < Done)
            return result;
        if (sent == 0)
            return Failed;
        bytes += sent;
        left -= sent;
    }
    return Done;
}

/// Done with the credentials made. Rejected without a callback, and for a way to prove oneself that
/// the client does not know.
i32 HttpClient::AskForLogin(Login& login)
{
    constexpr u32 PrefixLength = 13;
    const WCHAR* const prefix = TEXT("Basic realm=\"");
    const WCHAR* text = nullptr;
    if (authCallback == nullptr || headers->GetWide(TEXT("WWW-Authenticate"), &text) < Done)
        return Rejected;
    for (u32 i = 0; i < PrefixLength; ++i)
        if (text[i] != prefix[i])
            return Rejected;
    const i32 given =
        authCallback(text + PrefixLength - 1, login.user, login.password, authContext);
    if (given < Done)
        return given;
    login.user[CredentialSize - 1] = 0;
    login.password[CredentialSize - 1] = 0;
    return EncodeCredentials(login.user, login.password, login.credentials);
}
