// Critical sections: the host's recursive mutexes, in the caller's record.

#include <windows.h>

#include <pthread.h>

#include <new>

static_assert(sizeof(CRITICAL_SECTION) >= sizeof(pthread_mutex_t));
static_assert(alignof(CRITICAL_SECTION) >= alignof(pthread_mutex_t));

namespace
{

pthread_mutex_t* MutexOf(LPCRITICAL_SECTION section)
{
    return std::launder(reinterpret_cast<pthread_mutex_t*>(section->reserved));
}

} // namespace

void WINAPI InitializeCriticalSection(LPCRITICAL_SECTION section)
{
    pthread_mutexattr_t kind;
    pthread_mutexattr_init(&kind);
    pthread_mutexattr_settype(&kind, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(new (section->reserved) pthread_mutex_t, &kind);
    pthread_mutexattr_destroy(&kind);
}

void WINAPI DeleteCriticalSection(LPCRITICAL_SECTION section)
{
    pthread_mutex_destroy(MutexOf(section));
}

void WINAPI EnterCriticalSection(LPCRITICAL_SECTION section)
{
    pthread_mutex_lock(MutexOf(section));
}

void WINAPI LeaveCriticalSection(LPCRITICAL_SECTION section)
{
    pthread_mutex_unlock(MutexOf(section));
}
