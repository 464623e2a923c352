// Life and small operations of the client. The others: HttpOpen.cpp, HttpReconnect.cpp.
#include "transfer/HttpClient.h"

#include "foundation/BoundedText.h"
#include "foundation/TextSearch.h"
#include "transfer/HttpRequest.h"
#include "transfer/ScanNumbers.h"

#include <new>

namespace
{

constexpr u32 SchemeLength = 7; // of "http://"

} // namespace

HttpClient::HttpClient()
    : socket(new (std::nothrow) SocketStream(SOCK_STREAM)), useProxy(0), proxyAddress(0),
      proxyPort(0), isOpen(0), serverAddress(0), serverPort(0), authCallback(nullptr),
      authContext(0), headers(new (std::nothrow) PropertyList), contentEnd(Unknown), position(0)
{
    InitializeCriticalSection(&readLock);
    InitializeCriticalSection(&writeLock);
}

HttpClient::~HttpClient()
{
    (void)Reset();
    (void)ClearAuthCallback();
    delete socket;
    delete headers;
    DeleteCriticalSection(&writeLock);
    DeleteCriticalSection(&readLock);
}

i32 HttpClient::Reset()
{
    isOpen = 0;
    (void)RenewConnection();
    contentEnd = Unknown;
    position = 0;
    return Done;
}

i32 HttpClient::RenewConnection()
{
    if (headers != nullptr)
        (void)headers->Clear();
    if (socket != nullptr)
        (void)socket->Close();
    delete socket;
    socket = new (std::nothrow) SocketStream(SOCK_STREAM);
    return socket != nullptr ? Done : NoMemory;
}

i32 HttpClient::GiveUp(i32 result)
{
    (void)Reset();
    return result;
}

i32 HttpClient::SetAuthCallback(HttpAuthCallback callback, u32 context)
{
    if (callback == nullptr)
        return BadArgument;
    authCallback = callback;
    authContext = context;
    return Done;
}

i32 HttpClient::ClearAuthCallback()
{
    if (authCallback == nullptr)
        return NothingDone;
    authCallback = nullptr;
    authContext = 0;
    return Done;
}

i32 HttpClient::SetProxy(const WCHAR* proxy, i32 port)
{
    if (proxy == nullptr)
        return BadArgument;
    (void)ClearProxy();
    u32 address = 0;
    const i32 result = FindAddress(proxy, &address);
    if (result < Done)
        return result;
    useProxy = 1;
    proxyAddress = address;
    proxyPort = static_cast<u32>(port);
    return Done;
}

i32 HttpClient::ClearProxy()
{
    if (useProxy == 0)
        return NothingDone;
    useProxy = 0;
    if (isOpen == 0)
        return Done;
    u32 length = 0;
    (void)TextLength(path.Get(), &length);
    if (length <= SchemeLength || FindChar(path.Get() + SchemeLength, '/') < Done)
        return Done;
    return Keep(path, TEXT("/"));
}

/// In host order. Failed for a name that stands for none.
i32 HttpClient::FindAddress(const WCHAR* name, u32* address)
{
    u32 fields[4] = {};
    if (ScanAddress(name, fields) == 4) {
        *address = 0;
        for (const u32 field : fields)
            *address = *address << 8 | (field & 0xFF);
        return Done;
    }
    if (socket == nullptr)
        return NoMemory;
    hostent* record = nullptr;
    const i32 result = socket->ResolveHost(name, &record);
    if (result < Done)
        return result;
    if (record == nullptr || record->h_addr_list == nullptr || *record->h_addr_list == nullptr ||
        record->h_length != 4)
        return Failed;
    *address = 0;
    for (i32 i = 0; i < 4; ++i)
        *address = *address << 8 | static_cast<u8>((*record->h_addr_list)[i]);
    return Done;
}

i32 HttpClient::GetHeader(Variant* query) const
{
    return isOpen == 0 ? Failed : headers->Get(query);
}

i32 HttpClient::GetName(WCHAR* buffer, i32 capacity)
{
    if (buffer == nullptr || capacity <= 0)
        return BadArgument;
    const WCHAR* slash = nullptr;
    if (FindLastChar(path.Get(), '/', &slash) < Done)
        return Failed;
    return CopyText(buffer, static_cast<u32>(capacity), slash + 1, '?');
}

i32 HttpClient::GetSize(u64* size)
{
    if (size == nullptr)
        return BadArgument;
    if (isOpen == 0 || contentEnd == Unknown)
        return Failed;
    *size = contentEnd;
    return Done;
}

i32 HttpClient::Read(void* buffer, u32* length)
{
    if (buffer == nullptr || length == nullptr)
        return BadArgument;
    const u32 wanted = *length;
    *length = 0;
    if (isOpen == 0)
        return Failed;
    EnterCriticalSection(&readLock);
    i32 result = Done;
    while (*length < wanted) {
        u32 count = wanted - *length;
        result = socket->Read(static_cast<u8*>(buffer) + *length, &count);
        if (result < Done || count == 0)
            break;
        *length += count;
    }
    AdvancePosition(*length);
    LeaveCriticalSection(&readLock);
    return result;
}

i32 HttpClient::Write(const void* buffer, u32* length)
{
    if (buffer == nullptr || length == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    EnterCriticalSection(&writeLock);
    const i32 result = socket->Write(buffer, length);
    // Whatever the result: the stream tells no other count than the one that it was given.
    AdvancePosition(*length);
    LeaveCriticalSection(&writeLock);
    return result;
}

i32 HttpClient::Close()
{
    return Reset();
}

void HttpClient::AdvancePosition(u32 count)
{
    u64 old = position;
    while (!position.compare_exchange_weak(old, count < Unknown - old ? old + count : Unknown)) {
    }
}

void HttpClient::TakeContentEnd()
{
    u32 length = 0;
    contentEnd = Unknown;
    if (headers->GetUnsigned(TEXT("Content-Length"), &length) < Done)
        return;
    const u64 start = position;
    contentEnd = length < Unknown - start ? start + length : Unknown;
}
