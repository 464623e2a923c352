// The accepting half of Socket, and how a call that waits on a thread of its own is given up.

#include "transfer/Socket.h"
#include "transfer/WorkerThread.h"

#include <new>

i32 Socket::IsCompleted(i32 reset)
{
    if (!IsOpen())
        return Failed;
    const i32 set = completed.Wait(0);
    if (set != Done)
        return set;
    acceptCall.accepted = nullptr;
    if (reset != 0)
        (void)completed.Reset();
    return Done;
}

// Clears the caller's word also where it refuses, but only once no worker can write it any more.
i32 Socket::Guard(SOCKET* accepted)
{
    const bool uncollected = completed.Wait(0) == Done;
    if (!uncollected)
        EndWorker();
    else if (acceptCall.accepted == accepted)
        DropUnseen(); // its handle would be lost with the word
    *accepted = INVALID_SOCKET;
    return uncollected || !IsOpen() ? Failed : Done;
}

void Socket::EndWorker()
{
    if (workerThread == nullptr)
        return;
    EndWorkerThread(workerThread);
    (void)completed.Reset();
    DropUnseen();
}

// A worker that has ended between the owner's last look and being given up may have brought a
// connection, of which nobody knows.
void Socket::DropUnseen()
{
    SOCKET* const word = acceptCall.accepted;
    acceptCall.accepted = nullptr;
    if (word == nullptr || *word == INVALID_SOCKET)
        return;
    (void)closesocket(*word);
    *word = INVALID_SOCKET;
}

i32 Socket::AcceptHandle(sockaddr* address, i32* length, SOCKET* accepted)
{
    if (accepted == nullptr)
        return BadArgument;
    if (Guard(accepted) < 0)
        return Failed;
    *accepted = ::accept(handle, address, length);
    return *accepted != INVALID_SOCKET ? Done : Failed;
}

i32 Socket::Accept(sockaddr* address, i32* length, Socket** accepted)
{
    // Meant: not BadArgument, as everywhere else.
    if (accepted == nullptr)
        return Failed;
    *accepted = nullptr;
    SOCKET connection = INVALID_SOCKET;
    if (AcceptHandle(address, length, &connection) < 0)
        return Failed;
    *accepted = new (std::nothrow) Socket(connection);
    if (*accepted != nullptr)
        return Done;
    (void)closesocket(connection);
    return Failed;
}

i32 Socket::AcceptAsync(sockaddr* address, i32* length, SOCKET* accepted)
{
    if (accepted == nullptr || Guard(accepted) < 0)
        return Failed;
    // Without an event nobody would learn of the end.
    if (completed.Wait(0) < 0)
        return Failed;
    acceptCall.accepted = accepted;
    acceptCall.address = address;
    acceptCall.length = length;
    workerThread = CreateThread(nullptr, 0, AcceptWorker, &acceptCall, 0, nullptr);
    if (workerThread != nullptr)
        return Done;
    acceptCall.accepted = nullptr;
    return Failed;
}

DWORD WINAPI Socket::AcceptWorker(LPVOID parameter)
{
    const AcceptCall* const call = static_cast<const AcceptCall*>(parameter);
    *call->accepted = ::accept(*call->handle, call->address, call->length);
    *call->result = *call->accepted != INVALID_SOCKET ? Done : Failed;
    (void)call->completed->Set();
    return 0;
}
