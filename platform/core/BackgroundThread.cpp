#include "platform/core/BackgroundThread.h"

#include <csignal>
#include <pthread.h>

namespace tavrix::platform
{

bool StartBackgroundThread(void* (*run)(void*), void* parameter)
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    // A thread begins with the mask of the one that makes it.
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    const bool started = pthread_create(&thread, &attributes, run, parameter) == 0;
    pthread_attr_destroy(&attributes);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return started;
}

} // namespace tavrix::platform
