// A TCP connection as a stream: no name, no size, no position. Calls block, or run each on a thread
// of its own once EnableAsync was called: then they return at once, IsCompleted and GetResult tell
// the end, and what the arguments point to must live until then or until the call is given up. One
// call at a time. What a call leaves behind in the moment in which it is given up is nobody's, a
// connection included. A closed stream is not opened again.
#pragma once

#include "foundation/Stream.h"
#include "transfer/Socket.h"

class SocketStream final : public Stream
{
public:
    /// A new socket of the internet family: SOCK_STREAM or SOCK_DGRAM.
    explicit SocketStream(i32 type);
    /// Takes over an accepted handle.
    explicit SocketStream(SOCKET accepted);
    ~SocketStream() override;

    // Failed when closed, unless told otherwise.

    /// Meant: the two setters differ. When the device refuses, sending answers Done all the same
    /// and receiving Failed; the time-out is remembered only if the device agreed.
    i32 SetSendTimeout(u32 seconds);
    i32 SetReceiveTimeout(u32 seconds);
    /// Seconds; -1 when none was set.
    i32 GetSendTimeout() const { return sendTimeout; }
    i32 GetReceiveTimeout() const { return receiveTimeout; }
    /// From now on Send, Recv and Accept do not block. Done.
    i32 EnableAsync();
    /// Failed when not asynchronous; else as Socket::IsCompleted for the last call, also when
    /// closed.
    [[nodiscard]] i32 IsCompleted(i32 reset);
    /// What the last completed asynchronous call gave.
    i32 GetResult() const { return workerResult; }

    /// The own address in host order. BadArgument.
    [[nodiscard]] i32 GetLocalAddress(u32* localAddress);
    /// Its four bytes, most significant first. BadArgument.
    [[nodiscard]] i32 GetLocalAddressBytes(u8* b1, u8* b2, u8* b3, u8* b4);
    /// The record is the device's. BadArgument for a null `out`.
    [[nodiscard]] i32 ResolveHost(const WCHAR* name, hostent** out);
    /// Addresses are in host order.
    [[nodiscard]] i32 Bind(u32 localAddress, u16 port);
    [[nodiscard]] i32 Listen(i32 backlog);
    [[nodiscard]] i32 Connect(u32 peerAddress, u16 port);
    [[nodiscard]] i32 Connect(u8 b1, u8 b2, u8 b3, u8 b4, u16 port);

    // Failed with the last asynchronous call uncollected; one that still runs is given up.

    /// `sent` may be null. Asynchronous: Done once the thread runs, also on a closed stream, of
    /// which GetResult then tells; Failed without one.
    [[nodiscard]] i32 Send(const void* buffer, u32 length, u32* sent);
    /// `got` may be null: 0 bytes with Done mean that the peer has closed.
    [[nodiscard]] i32 Recv(void* buffer, u32 length, u32* got);
    /// The caller deletes the new stream. `peer` may be null. BadArgument for a null `accepted`. An
    /// object that cannot be made is NoMemory for GetResult when asynchronous; otherwise Done with
    /// `*accepted` null and, meant, the connection left open.
    [[nodiscard]] i32 Accept(sockaddr_in* peer, SocketStream** accepted);

    /// No name, no size and no position: always Failed.
    i32 GetName(WCHAR* buffer, i32 capacity) override;
    i32 GetSize(u64* size) override;
    i32 Seek(const i64* offset, u64* newPosition, u32 origin) override;
    /// One Recv: whatever has come, at least one byte unless the peer has closed.
    i32 Read(void* buffer, u32* length) override;
    /// One Send; `*length` stays as given.
    i32 Write(const void* buffer, u32* length) override;
    /// Closes, and ends a running call with its thread. Done.
    i32 Close() override;

private:
    // What a worker reads.
    struct Call {
        Socket* socket;
        Event* completed;
        void* buffer;
        u32 length;
        u32* count;
        sockaddr_in* address;
        SocketStream** accepted; // null once the end was seen: then the word is the caller's alone
        i32* result;
    };

    void Prepare();
    void ClearAddress();
    void FillAddress(u32 hostAddress, u16 port);
    [[nodiscard]] i32 Guard();
    void EndWorker();
    void DropUnseen();
    [[nodiscard]] i32 Start(LPTHREAD_START_ROUTINE worker);
    static DWORD WINAPI SendWorker(LPVOID parameter);
    static DWORD WINAPI RecvWorker(LPVOID parameter);
    static DWORD WINAPI AcceptWorker(LPVOID parameter);

    Socket socket;
    sockaddr_in address; // the peer after Connect, the local side after Bind
    HANDLE workerThread;
    i32 workerResult;
    Event completed;
    i32 sendTimeout;
    i32 receiveTimeout;
    i32 asynchronous;
    Call call;
};
