// Asking the server again, which is what seeking comes to.
#include "transfer/HttpClient.h"
#include "transfer/HttpHead.h"

namespace
{

constexpr u32 PositionSize = 32;

/// Stays between 0 and what 64 bits hold.
u64 Moved(u64 from, i64 by)
{
    if (by < 0) {
        const u64 back = 0 - static_cast<u64>(by);
        return from > back ? from - back : 0;
    }
    const u64 forward = static_cast<u64>(by);
    return from < UINT64_MAX - forward ? from + forward : UINT64_MAX;
}

} // namespace

i32 HttpClient::Seek(const i64* offset, u64*, u32 origin)
{
    if (offset == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    if (origin == 0)
        position = Moved(0, *offset);
    else if (origin == 1)
        position = Moved(position, *offset);
    else if (origin == 2) {
        if (contentEnd == Unknown)
            return Failed;
        // One byte less than one would think: meant.
        const u64 place = Moved(contentEnd, *offset);
        position = place > 0 ? place - 1 : 0;
    }
    const i32 result = Reconnect();
    if (result < NothingDone)
        return result;
    return contentEnd == Unknown ? Failed : Done;
}

i32 HttpClient::Reconnect()
{
    if (isOpen == 0)
        return Failed;
    isOpen = 0;
    HttpHead head;
    const i32 result = AskAgain(head);
    if (result < Done)
        return GiveUp(result);
    if (head.fields != 3 || !IsGood(static_cast<u16>(head.status)))
        return GiveUp(head.fields);
    isOpen = 1;
    TakeContentEnd();
    return Done;
}

i32 HttpClient::AskAgain(HttpHead& head)
{
    if (RenewConnection() < Done)
        return NoMemory;
    // The proxy through which the client was opened may be gone, and nobody ever asked for the
    // server's own address then.
    if (useProxy == 0 && serverAddress == 0)
        return Failed;
    WCHAR text[PositionSize];
    wsprintfW(text, TEXT("%u"), static_cast<u32>(position));
    // Meant: of the position the first digit alone, and no credentials.
    text[1] = 0;
    i32 result = BuildRequest(text, TEXT(""));
    if (result > NothingDone)
        result = SendRequest();
    return result > NothingDone ? ReadHead(head) : result;
}
