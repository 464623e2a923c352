// Receiving an object over infrared. No plugin is in it, so the worker is of its own making: it
// does not wait at its start (looking for a client takes its time anyway), and the receiver is
// still there when it posts the end.

#include "foundation/Language.h"
#include "shell/Job.h"
#include "shell/JobEnd.h"
#include "shell/JobThreads.h"
#include "shell/PluginCallbacks.h"
#include "transfer/ObexServer.h"

namespace
{

constexpr u32 SecondsToFindAClient = 15;

void Report(const WCHAR* text)
{
    ShowPluginMessage(text, InLanguage(TEXT("REPORT"), TEXT("報告")), 0);
}

/// `context` is the BlockStream that the object goes to.
i32 OnObexEvent(u32 event, void* argument, void* context)
{
    WCHAR text[128];
    switch (event) {
    case ObexWaiting:
        Report(
            InLanguage(TEXT("Finding IrOBEX Client..."), TEXT("赤外線デバイスを探しています。")));
        break;
    case ObexClientFound:
        wsprintfW(text, InLanguage(TEXT("Found %s."), TEXT("%sが見つかりました。")),
                  static_cast<const WCHAR*>(argument));
        Report(text);
        break;
    case ObexObjectName:
        (void)static_cast<BlockStream*>(context)->SetName(static_cast<const WCHAR*>(argument));
        break;
    case ObexProgress: {
        const u32 received = *static_cast<const u32*>(argument);
        wsprintfW(text, InLanguage(TEXT("Received %u.%u KB."), TEXT("%u.%u KB 受信しました。")),
                  received >> 10, ((received & 1023) * 10) >> 10);
        Report(text);
        break;
    }
    case ObexFinished:
        Report(InLanguage(TEXT("Finished."), TEXT("受信完了しました。")));
        break;
    default:
        break;
    }
    return Done;
}

} // namespace

DWORD WINAPI ReceiveJobThread(LPVOID parameter)
{
    const auto& arguments = *static_cast<const ReceiveArguments*>(parameter);
    ObexServer server;
    if (server.Receive(arguments.destination, SecondsToFindAClient, OnObexEvent,
                       arguments.destination) < 0)
        ReportJobError(JobReceive);
    PostJobEnd();
    return 0;
}
