// The device's sockets: TCP over the host's network, and sockets of the infrared family, which are
// known by service names and which the platform carries over another stream transport (see
// TAVRIX_IR in platform/README.md). Meanings are the public ones of the interface; what this
// platform does not do of them is listed in platform/README.md. Included through <winsock.h> only.
//
// Every call may be made from any thread; a socket's own calls from two threads at once are safe.
// A call that blocks ends when its socket is closed (SOCKET_ERROR) and when its thread is ended by
// TerminateThread (then it does not return).
#pragma once

#include "device/Base.h"

// The host has functions of its own by the same names, and other meanings. What the linker sees are
// names of ours, so that neither is ever taken for the other. A source includes this header or the
// host's <sys/socket.h>, never both.
#define CE_SOCKET_NAME(name) __asm__("tavrix_" #name)

#ifdef __cplusplus
extern "C" {
#endif

typedef UINT_PTR SOCKET;

#define INVALID_SOCKET ((SOCKET)(~(SOCKET)0))
#define SOCKET_ERROR (-1)

typedef struct WSAData {
    WORD wVersion;
    WORD wHighVersion;
    char szDescription[257];
    char szSystemStatus[129];
    unsigned short iMaxSockets;
    unsigned short iMaxUdpDg;
    char* lpVendorInfo;
} WSADATA, *LPWSADATA;

struct in_addr {
    union {
        struct {
            UCHAR s_b1, s_b2, s_b3, s_b4;
        } S_un_b;
        ULONG S_addr; // network order
    } S_un;
};

struct sockaddr {
    USHORT sa_family;
    char sa_data[14];
};

struct sockaddr_in {
    short sin_family;
    USHORT sin_port; // network order
    struct in_addr sin_addr;
    char sin_zero[8];
};

struct hostent {
    char* h_name;
    char** h_aliases;
    short h_addrtype;
    short h_length;
    char** h_addr_list; // addresses in network order, ended by null
};

#define AF_INET 2
#define SOCK_STREAM 1
#define SOCK_DGRAM 2

// Options of SOL_SOCKET.
#define SOL_SOCKET 0xFFFF
#define SO_REUSEADDR 0x0004
#define SO_KEEPALIVE 0x0008
#define SO_LINGER 0x0080
#define SO_SNDBUF 0x1001
#define SO_RCVBUF 0x1002
#define SO_SNDTIMEO 0x1005 // milliseconds, DWORD
#define SO_RCVTIMEO 0x1006
#define SO_TYPE 0x1008
#define SOMAXCONN 5

CE_API int WINAPI WSAStartup(WORD version, LPWSADATA data);
CE_API int WINAPI WSACleanup(void);

CE_API SOCKET WINAPI socket(int family, int type, int protocol) CE_SOCKET_NAME(socket);
CE_API int WINAPI closesocket(SOCKET socket);
CE_API int WINAPI bind(SOCKET socket, const struct sockaddr* address, int length)
    CE_SOCKET_NAME(bind);
CE_API int WINAPI listen(SOCKET socket, int backlog) CE_SOCKET_NAME(listen);
CE_API SOCKET WINAPI accept(SOCKET socket, struct sockaddr* address, int* length)
    CE_SOCKET_NAME(accept);
CE_API int WINAPI connect(SOCKET socket, const struct sockaddr* address, int length)
    CE_SOCKET_NAME(connect);
CE_API int WINAPI shutdown(SOCKET socket, int how) CE_SOCKET_NAME(shutdown);
/// Sends all of the buffer, and less only where a time-out comes first.
CE_API int WINAPI send(SOCKET socket, const char* buffer, int length, int flags)
    CE_SOCKET_NAME(send);
CE_API int WINAPI recv(SOCKET socket, char* buffer, int length, int flags) CE_SOCKET_NAME(recv);
CE_API int WINAPI getsockopt(SOCKET socket, int level, int name, char* value, int* length)
    CE_SOCKET_NAME(getsockopt);
CE_API int WINAPI setsockopt(SOCKET socket, int level, int name, const char* value, int length)
    CE_SOCKET_NAME(setsockopt);
CE_API int WINAPI getsockname(SOCKET socket, struct sockaddr* address, int* length)
    CE_SOCKET_NAME(getsockname);
/// The record is the platform's, one a thread, and valid until that thread's next call.
CE_API struct hostent* WINAPI gethostbyname(const char* name) CE_SOCKET_NAME(gethostbyname);

CE_API ULONG WINAPI htonl(ULONG value) CE_SOCKET_NAME(htonl);
CE_API USHORT WINAPI htons(USHORT value) CE_SOCKET_NAME(htons);
CE_API ULONG WINAPI ntohl(ULONG value) CE_SOCKET_NAME(ntohl);
CE_API USHORT WINAPI ntohs(USHORT value) CE_SOCKET_NAME(ntohs);

#ifdef __cplusplus
}

// Beside the host's, which comes with headers that nobody can do without: told apart by the type of
// the length.
CE_API int WINAPI gethostname(char* name, int length);
#endif
