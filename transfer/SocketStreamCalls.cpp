// The calls of SocketStream that may wait: on the caller's thread, or each on one of its own.

#include "transfer/SocketStream.h"
#include "transfer/WorkerThread.h"

#include <new>

namespace
{

/// The device counts in 31 bits, and may always send and receive less.
i32 AsCount(u32 length)
{
    constexpr u32 Most = 0x7FFFFFFF;
    return static_cast<i32>(length < Most ? length : Most);
}

} // namespace

i32 SocketStream::EnableAsync()
{
    asynchronous = 1;
    // Unset is as good as new, and safe under a worker that is about to set it.
    if (completed.Reset() < 0)
        (void)completed.Create(0);
    return Done;
}

i32 SocketStream::IsCompleted(i32 reset)
{
    if (asynchronous == 0)
        return Failed;
    const i32 set = completed.Wait(0);
    if (set != Done)
        return set;
    call.accepted = nullptr;
    if (reset != 0)
        (void)completed.Reset();
    return Done;
}

// Comes before the caller's words are cleared and noted: a worker that is given up may still write
// those of its own call, which can be the same.
i32 SocketStream::Guard()
{
    if (completed.Wait(0) == Done)
        return Failed;
    EndWorker();
    return Done;
}

void SocketStream::EndWorker()
{
    if (workerThread == nullptr)
        return;
    EndWorkerThread(workerThread);
    (void)completed.Reset();
    DropUnseen();
}

// A worker that has ended between the owner's last look and being given up may have brought a
// connection, of which nobody knows.
void SocketStream::DropUnseen()
{
    SocketStream** const word = call.accepted;
    call.accepted = nullptr;
    if (word == nullptr)
        return;
    delete *word;
    *word = nullptr;
}

i32 SocketStream::Start(LPTHREAD_START_ROUTINE worker)
{
    // Without an event nobody would learn of the end.
    if (completed.Wait(0) >= 0)
        workerThread = CreateThread(nullptr, 0, worker, &call, 0, nullptr);
    if (workerThread != nullptr)
        return Done;
    call.accepted = nullptr;
    return Failed;
}

i32 SocketStream::Send(const void* buffer, u32 length, u32* sent)
{
    const i32 guarded = Guard();
    if (sent != nullptr)
        *sent = 0;
    if (guarded < 0)
        return Failed;
    if (asynchronous != 0) {
        call.buffer = const_cast<void*>(buffer);
        call.length = length;
        call.count = sent;
        return Start(SendWorker);
    }
    i32 count = 0;
    const i32 result = socket.Send(buffer, AsCount(length), &count, 0);
    if (sent != nullptr)
        *sent = static_cast<u32>(count);
    return result;
}

i32 SocketStream::Recv(void* buffer, u32 length, u32* got)
{
    const i32 guarded = Guard();
    if (got != nullptr)
        *got = 0;
    if (guarded < 0)
        return Failed;
    if (asynchronous != 0) {
        call.buffer = buffer;
        call.length = length;
        call.count = got;
        return Start(RecvWorker);
    }
    i32 count = 0;
    const i32 result = socket.Recv(buffer, AsCount(length), &count, 0);
    if (got != nullptr)
        *got = static_cast<u32>(count);
    return result;
}

i32 SocketStream::Accept(sockaddr_in* peer, SocketStream** accepted)
{
    if (accepted == nullptr)
        return BadArgument;
    const i32 guarded = Guard();
    if (guarded < 0 && call.accepted == accepted)
        DropUnseen(); // it would be lost with the word
    *accepted = nullptr;
    if (guarded < 0)
        return Failed;
    if (asynchronous != 0) {
        call.address = peer;
        call.accepted = accepted;
        return Start(AcceptWorker);
    }
    i32 length = sizeof(sockaddr_in);
    SOCKET connection = INVALID_SOCKET;
    const i32 result = socket.AcceptHandle(reinterpret_cast<sockaddr*>(peer),
                                           peer != nullptr ? &length : nullptr, &connection);
    // Meant: an object that cannot be made is not noticed.
    if (result >= 0)
        *accepted = new (std::nothrow) SocketStream(connection);
    return result;
}

i32 SocketStream::Read(void* buffer, u32* length)
{
    return Recv(buffer, *length, length);
}

i32 SocketStream::Write(const void* buffer, u32* length)
{
    return Send(buffer, *length, nullptr);
}

DWORD WINAPI SocketStream::SendWorker(LPVOID parameter)
{
    const Call* const call = static_cast<const Call*>(parameter);
    i32 count = 0;
    *call->result = call->socket->Send(call->buffer, AsCount(call->length), &count, 0);
    if (call->count != nullptr)
        *call->count = static_cast<u32>(count);
    (void)call->completed->Set();
    return 0;
}

DWORD WINAPI SocketStream::RecvWorker(LPVOID parameter)
{
    const Call* const call = static_cast<const Call*>(parameter);
    i32 count = 0;
    *call->result = call->socket->Recv(call->buffer, AsCount(call->length), &count, 0);
    if (call->count != nullptr)
        *call->count = static_cast<u32>(count);
    (void)call->completed->Set();
    return 0;
}

DWORD WINAPI SocketStream::AcceptWorker(LPVOID parameter)
{
    const Call* const call = static_cast<const Call*>(parameter);
    i32 length = sizeof(sockaddr_in);
    SOCKET connection = INVALID_SOCKET;
    i32 result =
        call->socket->AcceptHandle(reinterpret_cast<sockaddr*>(call->address),
                                   call->address != nullptr ? &length : nullptr, &connection);
    if (result >= 0) {
        *call->accepted = new (std::nothrow) SocketStream(connection);
        if (*call->accepted == nullptr) {
            (void)closesocket(connection);
            result = NoMemory;
        }
    }
    *call->result = result;
    (void)call->completed->Set();
    return 0;
}
