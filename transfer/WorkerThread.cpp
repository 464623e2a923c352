#include "transfer/WorkerThread.h"

void EndWorkerThread(HANDLE& thread)
{
    (void)TerminateThread(thread, static_cast<DWORD>(-1));
    // What it works on is about to be used again: not before it is gone for certain.
    (void)WaitForSingleObject(thread, INFINITE);
    (void)CloseHandle(thread);
    thread = nullptr;
}
