// One picture over HTTP/1.0 (RFC 1945): the body of the response as a stream that stands on the
// socket, with no file and no memory between them. One request, one connection. Open runs on one
// thread; then one thread may read while another writes; seeking is for the thread that reads.
// Nothing here has a time-out: a silent server holds the calling thread.
//
// On the wire is the device's ANSI code page. Lines of the request end in a bare LF, the request
// line is always absolute and a Range always asked for: meant, since servers answer to it.
#pragma once

#include "foundation/DualString.h"
#include "foundation/Stream.h"
#include "settings/PropertyList.h"
#include "transfer/HttpCredentials.h"
#include "transfer/SocketStream.h"

#include <atomic>

struct HttpHead;

/// Asks for a name and a password. `realm` begins with its quote. Both buffers have 256 characters;
/// they are empty at first and keep what was put there. A result below 1 gives up.
using HttpAuthCallback = i32 (*)(const WCHAR* realm, WCHAR* user, WCHAR* password, u32 context);

class HttpClient final : public Stream
{
public:
    enum : u32 { UrlSize = 4096, HostSize = 1024, CredentialSize = HttpCredentialSize };

    HttpClient();
    ~HttpClient() override;

    /// Connects, asks for `url` and follows redirects without end. `extra` may be null: its entries
    /// become header lines. Done with an answer of 200 to 206; 3 with any other, so that a missing
    /// page is no failure here: the first Read is. BadArgument for null; NoMemory; Failed for an
    /// address without "http://" (the connection stays as it was then, and GetUrl gives that
    /// address) and for a server that cannot be reached; for an unreadable status line the number
    /// of its fields that could be read, from -1 on; what the callback gave up with. `*status` is
    /// the answer's code in 16 bits, untouched where none was read. Addresses are cut to 4,095
    /// characters, hosts to 1,023. The port is always 80: a ":port" counts as part of the name.
    [[nodiscard]] i32 Open(const WCHAR* url, u16* status, PropertyList* extra);
    /// Asks again for the same address, from `position` on. Done; else the client is as after
    /// Reset. Failed unless open and for a server that cannot be reached; for another answer 3, for
    /// an unreadable one the number of its fields.
    ///
    /// Meant, all of it: of the position only the first digit goes out, credentials do not, and
    /// neither a redirect nor a refusal for want of them is looked into.
    [[nodiscard]] i32 Reconnect();
    /// Back to a client that was never opened; address, proxy and callback stay. Done.
    i32 Reset();

    /// BadArgument for null.
    i32 SetAuthCallback(HttpAuthCallback callback, u32 context);
    /// NothingDone when there is none.
    i32 ClearAuthCallback();
    /// `host` is four numbers with points or a name. BadArgument for null; Failed for a name that
    /// stands for no address.
    [[nodiscard]] i32 SetProxy(const WCHAR* host, i32 port);
    /// NothingDone when there is none. Meant: on an open client what Reconnect asks for then is
    /// "/", if the address has a "/" behind its first 7 characters.
    i32 ClearProxy();

    /// A header of the response, as PropertyList::Get. Failed unless open.
    [[nodiscard]] i32 GetHeader(Variant* query) const;
    /// The address as last asked for: after redirects the final one. Never null.
    const WCHAR* GetUrl() const { return url.Get(); }

    /// What follows the last "/" of the address as asked for, up to a "?". BadArgument; Failed when
    /// there is no "/"; NothingDone when cut.
    i32 GetName(WCHAR* buffer, i32 capacity) override;
    /// The position behind the body. BadArgument; Failed unless open, and when the server did not
    /// tell.
    i32 GetSize(u64* size) override;
    /// Asks the server again from the new position on; `newPosition` is never written. A position
    /// below 0 counts as 0. Meant: from the end (origin 2) it is one byte less than told; an origin
    /// beyond asks again from where the stream is. BadArgument; Failed unless open, and when the
    /// end is not known, afterwards too, though the client is open then.
    i32 Seek(const i64* offset, u64* newPosition, u32 origin) override;
    /// Reads until the buffer is full or the server has closed: fewer bytes with Done are the end.
    /// The end that the server told of is not looked at. BadArgument; Failed unless open.
    i32 Read(void* buffer, u32* length) override;
    /// BadArgument; Failed unless open; else as SocketStream::Write.
    i32 Write(const void* buffer, u32* length) override;
    /// Reset.
    i32 Close() override;

private:
    enum : i32 { Rejected = 3 };
    static constexpr u64 Unknown = UINT64_MAX;

    struct Login {
        WCHAR user[CredentialSize];
        WCHAR password[CredentialSize];
        WCHAR credentials[CredentialSize]; // both, as they go out; empty as long as nobody asked
    };

    static bool IsGood(u32 status) { return status >= 200 && status <= 206; }

    [[nodiscard]] i32 RenewConnection();
    [[nodiscard]] i32 GiveUp(i32 result);
    [[nodiscard]] i32 TakeUrl(WCHAR* address);
    [[nodiscard]] i32 FindAddress(const WCHAR* name, u32* address);
    [[nodiscard]] i32 FindServer();
    [[nodiscard]] i32 Ask(PropertyList* extra, const WCHAR* credentials, HttpHead& head);
    [[nodiscard]] i32 BuildRequest(const WCHAR* positionText, const WCHAR* credentials);
    [[nodiscard]] i32 SendRequest();
    [[nodiscard]] i32 ReadHead(HttpHead& head);
    [[nodiscard]] i32 AskAgain(HttpHead& head);
    [[nodiscard]] i32 AskForLogin(Login& login);
    void TakeContentEnd();
    void AdvancePosition(u32 count);

    SocketStream* socket; // a new one for each connection; null without memory
    i32 useProxy;
    u32 proxyAddress; // host order
    u32 proxyPort;
    i32 isOpen;
    u32 serverAddress; // host order
    u16 serverPort;
    DualString host; // with its ":port", if it has one
    DualString path; // what the request line asks for
    DualString request;
    DualString extraHeaders;
    DualString url;
    HttpAuthCallback authCallback;
    u32 authContext;
    PropertyList* headers;
    u64 contentEnd; // Unknown, or the position behind the body
    // Of the next byte of the body, in the file. A reader and a writer both move it.
    std::atomic<u64> position;
    CRITICAL_SECTION readLock;
    CRITICAL_SECTION writeLock;
};
