#include "SocketCalls.h"

#include <cstdio>
#include <mutex>
#include <utility>

namespace
{

// The object of the test, which may go while a thread still makes a call: guarded. Its hooks are
// the test's own thread's alone.
std::mutex lock;
SocketCalls* current = nullptr;

void Note(const std::string& entry)
{
    const std::lock_guard<std::mutex> guard(lock);
    if (current != nullptr)
        current->log.push_back(entry);
}

/// The object as the test's own thread sees it.
SocketCalls* Current()
{
    const std::lock_guard<std::mutex> guard(lock);
    return current;
}

std::string Number(long value)
{
    return " " + std::to_string(value);
}

std::string Hex(const void* bytes, int length)
{
    std::string text;
    for (int i = 0; i < length; ++i) {
        char two[4];
        std::snprintf(two, sizeof(two), "%02x", static_cast<const unsigned char*>(bytes)[i]);
        text += two;
    }
    return text;
}

} // namespace

SocketCalls::SocketCalls()
{
    const std::lock_guard<std::mutex> guard(lock);
    current = this;
}

SocketCalls::~SocketCalls()
{
    const std::lock_guard<std::mutex> guard(lock);
    current = nullptr;
}

std::vector<std::string> SocketCalls::Log()
{
    const std::lock_guard<std::mutex> guard(lock);
    return log;
}

std::string SocketCalls::Entries(const std::string& word)
{
    std::string joined;
    for (const std::string& entry : Log())
        if (entry.starts_with(word))
            joined += (joined.empty() ? "" : "; ") + entry;
    return joined;
}

extern "C" {

int __real_WSAStartup(WORD version, LPWSADATA data);
int __real_WSACleanup(void);
int __real_tavrix_bind(SOCKET socket, const sockaddr* address, int length);
int __real_tavrix_connect(SOCKET socket, const sockaddr* address, int length);
int __real_tavrix_listen(SOCKET socket, int backlog);
SOCKET __real_tavrix_accept(SOCKET socket, sockaddr* address, int* length);
int __real_tavrix_shutdown(SOCKET socket, int how);
int __real_closesocket(SOCKET socket);
int __real_tavrix_getsockopt(SOCKET socket, int level, int name, char* value, int* length);
int __real_tavrix_setsockopt(SOCKET socket, int level, int name, const char* value, int length);
HANDLE __real_CreateEventW(LPSECURITY_ATTRIBUTES security, BOOL manual, BOOL set, LPCWSTR name);
BOOL __real_TerminateThread(HANDLE thread, DWORD exitCode);

int __wrap_WSAStartup(WORD version, LPWSADATA data)
{
    Note("WSAStartup " + Hex(&version, 2));
    return __real_WSAStartup(version, data);
}

int __wrap_WSACleanup(void)
{
    Note("WSACleanup");
    return __real_WSACleanup();
}

int __wrap_tavrix_bind(SOCKET socket, const sockaddr* address, int length)
{
    Note("bind" + Number(length) + " " + Hex(address, length));
    return __real_tavrix_bind(socket, address, length);
}

int __wrap_tavrix_connect(SOCKET socket, const sockaddr* address, int length)
{
    Note("connect" + Number(length) + " " + Hex(address, length));
    return __real_tavrix_connect(socket, address, length);
}

int __wrap_tavrix_listen(SOCKET socket, int backlog)
{
    Note("listen" + Number(backlog));
    return __real_tavrix_listen(socket, backlog);
}

SOCKET __wrap_tavrix_accept(SOCKET socket, sockaddr* address, int* length)
{
    Note(std::string("accept ") +
         (address == nullptr && length == nullptr ? "null" : "address" + Number(*length)));
    const SOCKET accepted = __real_tavrix_accept(socket, address, length);
    if (accepted != INVALID_SOCKET)
        Note("taken");
    const std::lock_guard<std::mutex> guard(lock);
    if (current != nullptr)
        current->accepted = accepted;
    return accepted;
}

int __wrap_tavrix_shutdown(SOCKET socket, int how)
{
    Note("shutdown" + Number(how));
    return __real_tavrix_shutdown(socket, how);
}

int __wrap_closesocket(SOCKET socket)
{
    Note("closesocket");
    return __real_closesocket(socket);
}

int __wrap_tavrix_getsockopt(SOCKET socket, int level, int name, char* value, int* length)
{
    Note("getsockopt" + Number(level) + Number(name) + Number(*length));
    const SocketCalls* const calls = Current();
    if (calls != nullptr && calls->devices)
        return calls->devices(value, length);
    return __real_tavrix_getsockopt(socket, level, name, value, length);
}

int __wrap_tavrix_setsockopt(SOCKET socket, int level, int name, const char* value, int length)
{
    Note("setsockopt" + Number(level) + Number(name) + " " + Hex(value, length));
    return __real_tavrix_setsockopt(socket, level, name, value, length);
}

HANDLE __wrap_CreateEventW(LPSECURITY_ATTRIBUTES security, BOOL manual, BOOL set, LPCWSTR name)
{
    {
        const std::lock_guard<std::mutex> guard(lock);
        if (current != nullptr && current->failEvents)
            return nullptr;
    }
    return __real_CreateEventW(security, manual, set, name);
}

BOOL __wrap_TerminateThread(HANDLE thread, DWORD exitCode)
{
    Note("TerminateThread " + Hex(&exitCode, 4));
    SocketCalls* const calls = Current();
    if (calls != nullptr && calls->beforeTerminate)
        std::exchange(calls->beforeTerminate, nullptr)(thread);
    return __real_TerminateThread(thread, exitCode);
}

} // extern "C"
