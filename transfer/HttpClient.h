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
#include "transfer/SocketStream.h"

/// Asks for a name and a password. `realm` begins with its quote. Both buffers have 256 characters;
/// they are empty at first and keep what was put there. A result below 1 gives up.
using HttpAuthCallback = i32 (*)(const WCHAR* realm, WCHAR* user, WCHAR* password, u32 context);

class HttpClient final : public Stream
{
public:
    enum : u32 { UrlSize = 4096, HostSize = 1024, CredentialSize = 256 };

    HttpClient();
    ~HttpClient() override;

    /// Connects, asks for `url` and follows redirects without end. `extra` may be null: its entries
    /// become header lines. Done with an answer of 200 to 206; 3 with any other, so that a missing
    /// page is no failure here: the first Read is. BadArgument for null; NoMemory; Failed for an
    /// address without "http://" (nothing is changed then) and for a server that cannot be reached;
    /// for an unreadable status line the number of its fields that could be read, from -1 on.
    /// `*status` is the answer's code, untouched where none was read.
    [[nodiscard]] i32 Open(const WCHAR* url, u16* status, PropertyList* extra);
    /// Asks again for the same address, from `position` on. Failed unless open.
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
    /// NothingDone when there is none.
    i32 ClearProxy();

    /// A header of the response, as PropertyList::Get. Failed unless open.
    [[nodiscard]] i32 GetHeader(Variant* query) const;
    /// The address as last asked for: after redirects the final one. Never null.
    const WCHAR* GetUrl() const { return url.Get(); }

    /// What follows the last "/" of the address, up to a "?". Failed when there is no "/".
    i32 GetName(WCHAR* buffer, i32 capacity) override;
    /// The position behind the body. Failed unless open, and when the server did not tell.
    i32 GetSize(u64* size) override;
    /// Asks the server again from the new position on; `newPosition` is never written. A position
    /// below 0 counts as 0. Meant: from the end (origin 2) it is one byte less than told. Failed
    /// unless open, and when the end is not known, afterwards too.
    i32 Seek(const i64* offset, u64* newPosition, u32 origin) override;
    /// Reads until the buffer is full or the server has closed: fewer bytes with Done are the end.
    i32 Read(void* buffer, u32* length) override;
    i32 Write(const void* buffer, u32* length) override;
    /// Reset.
    i32 Close() override;

private:
    [[nodiscard]] i32 RenewSocket();
    [[nodiscard]] i32 TakeUrl(const WCHAR* text);
    [[nodiscard]] i32 FindServer();
    [[nodiscard]] i32 SendRequest(u32 targetAddress, u16 targetPort);
    void TakeContentEnd();

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
    u64 position;   // of the next byte of the body, in the file
    CRITICAL_SECTION readLock;
    CRITICAL_SECTION writeLock;
};
