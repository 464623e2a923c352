// One socket of the device, and the technique by which a blocking call on it is given up: the call
// runs on a thread of its own, reports through an event, and is ended with its thread when it is no
// longer wanted. The object owns the handle. Made and destroyed on one thread at a time; between
// starting an asynchronous accept and seeing it completed the owner touches neither the caller's
// handle word nor the socket. A connection is the caller's once IsCompleted has told of it; one
// that an accept brings in the moment in which it is given up is nobody's and is closed.
//
// No error number of the device is kept: every failure is a result code.
#pragma once

#include "foundation/Event.h"
#include "foundation/Result.h"

#include <winsock.h>

#include <atomic>

class Socket
{
public:
    /// A new socket; closed when the device gives none.
    Socket(i32 family, i32 type, i32 protocol);
    /// Takes over an accepted handle.
    explicit Socket(SOCKET accepted);
    /// Closes. Not virtual: who owns a derived object deletes it as what it is.
    ~Socket();
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    // Failed on a closed socket, unless told otherwise.

    /// This machine's name. BadArgument for null or a size of 0.
    [[nodiscard]] i32 GetHostName(char* name, i32 size);
    /// NothingDone as long as an asynchronous accept runs, Done once it has ended. A `reset` other
    /// than 0 collects it: only then can the next one start.
    [[nodiscard]] i32 IsCompleted(i32 reset);
    /// What the last completed asynchronous accept reported: Done or Failed.
    i32 GetAcceptResult() const { return workerResult; }
    [[nodiscard]] i32 GetOption(i32 level, i32 name, void* value, i32* length);
    [[nodiscard]] i32 SetOption(i32 level, i32 name, const void* value, i32 length);
    [[nodiscard]] i32 Bind(const sockaddr* address, i32 length);
    [[nodiscard]] i32 Listen(i32 backlog);
    [[nodiscard]] i32 Connect(const sockaddr* address, i32 length);
    /// 0 ends receiving, 1 sending, 2 both.
    i32 Shutdown(i32 how);

    /// Waits for a connection. `*accepted` is its handle, the caller's from then on, or
    /// INVALID_SOCKET. `address` and `length` may be null. BadArgument for a null `accepted`;
    /// Failed when an asynchronous accept has ended and was not collected; one that still runs is
    /// given up.
    [[nodiscard]] i32 AcceptHandle(sockaddr* address, i32* length, SOCKET* accepted);
    /// As AcceptHandle, with a new object that the caller deletes. Failed, not BadArgument, for a
    /// null `accepted`, and when the object cannot be made.
    [[nodiscard]] i32 Accept(sockaddr* address, i32* length, Socket** accepted);
    /// Starts to wait on a thread of its own and returns. What the arguments point to must live
    /// until the end is seen by IsCompleted, or until the call is given up. Failed for a null
    /// `accepted`, with the last one uncollected, and without a thread; one that still runs is
    /// given up.
    [[nodiscard]] i32 AcceptAsync(sockaddr* address, i32* length, SOCKET* accepted);

    /// `*sent`, which may be null, is the number of bytes sent.
    [[nodiscard]] i32 Send(const void* buffer, i32 length, i32* sent, i32 flags);
    /// `*got`, which may be null: 0 bytes with Done mean that the peer has closed.
    [[nodiscard]] i32 Recv(void* buffer, i32 length, i32* got, i32 flags);
    /// Receives until `length` bytes have come or the peer has closed. `*got` stays 0 after an
    /// error. Done at once for a length below 1.
    [[nodiscard]] i32 RecvAll(void* buffer, i32 length, i32* got, i32 flags);

    /// Closes, and ends a running accept with its thread. Failed in every case, meant: its callers
    /// do not look.
    i32 Close();
    bool IsOpen() const { return handle != INVALID_SOCKET; }
    SOCKET Handle() const { return handle; }

private:
    void Prepare();
    [[nodiscard]] i32 Guard(SOCKET* accepted);
    void EndWorker();
    void DropUnseen();
    static DWORD WINAPI AcceptWorker(LPVOID parameter);

    // What the worker reads. The first, second and last pointers never change.
    struct AcceptCall {
        const std::atomic<SOCKET>* handle;
        Event* completed;
        SOCKET* accepted; // null once the end was seen: from then on the word is the caller's alone
        sockaddr* address;
        i32* length;
        i32* result;
    };

    std::atomic<SOCKET> handle; // a worker that only begins may look at it while it is closed
    HANDLE workerThread;
    i32 workerResult;
    Event completed;
    AcceptCall acceptCall;
};
